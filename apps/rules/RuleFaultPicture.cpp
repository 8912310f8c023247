#include "rules/RuleFaultPicture.h"

#include <algorithm>
#include <string_view>

#include "common/Message.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

// The part of a rule that is shown: all of it, or the text around a fault.
struct RuleWindow {
    std::size_t begin;
    std::size_t end;
    std::string cutBefore;
    std::string cutAfter;
};

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

RuleWindow windowAround(const std::string& rule, std::size_t posFault)
{
    constexpr std::size_t LONGEST_WHOLE = 400;
    constexpr std::size_t SHOWN_BEFORE = 60;
    constexpr std::size_t SHOWN_AFTER = 140;
    if (rule.size() <= LONGEST_WHOLE) {
        return {0, rule.size(), "", ""};
    }
    std::size_t begin = posFault - std::min(posFault, SHOWN_BEFORE);
    std::size_t end = std::min(posFault + SHOWN_AFTER, rule.size());
    while ((begin < posFault) && isContinuation(rule[begin])) {
        ++begin;
    }
    while ((end < rule.size()) && (end > posFault + 1) && isContinuation(rule[end])) {
        --end;
    }
    return {begin, end, (begin > 0) ? "..." : "", (end < rule.size()) ? "..." : ""};
}

}  // namespace

RuleFault explainRefusal(const std::string& rule)
{
    const std::size_t wholeRule = std::max<std::size_t>(rule.size(), 1);
    return vemorRules::findFault(rule).value_or(
        RuleFault{0, wholeRule, "the parser refuses it", "compare it with a rule that is valid"});
}

std::size_t faultColumn(const std::string& rule, const RuleFault& fault)
{
    return characterCount(rule, fault.position) + 1;
}

std::size_t faultLength(const std::string& rule, const RuleFault& fault)
{
    return characterCount(std::string_view(rule).substr(fault.position), fault.length);
}

std::vector<std::string> faultPicture(const std::string& rule, const RuleFault& fault)
{
    constexpr const char* INDENT = "    ";
    const RuleWindow window = windowAround(rule, fault.position);
    const std::size_t markedBytes = std::min(fault.length, window.end - std::min(fault.position, window.end));
    const std::size_t marked = characterCount(std::string_view(rule).substr(fault.position), markedBytes);
    const std::string before(window.cutBefore.size() + characterCount(std::string_view(rule).substr(window.begin),
                                                                      fault.position - window.begin),
                             ' ');
    return {INDENT + window.cutBefore +
                printable(std::string_view(rule).substr(window.begin, window.end - window.begin)) + window.cutAfter,
            INDENT + before + "^" + std::string(std::max<std::size_t>(marked, 1) - 1, '~'),
            INDENT + printable(fault.remedy)};
}

void printRefusal(const std::string& subject, const std::string& rule, const RuleFault& fault)
{
    printMessage(subject + ":" + std::to_string(faultColumn(rule, fault)) + ": refused: " + fault.reason);
    for (const std::string& line : faultPicture(rule, fault)) {
        printDetail(line);
    }
}

}  // namespace brantel
