#include "commands/RuleCheck.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "EventMgmtRulesParsing.h"
#include "common/LineReader.h"
#include "rules/RuleDescription.h"
#include "rules/RuleNotes.h"
#include "rules/RuleText.h"

using Json = nlohmann::ordered_json;

namespace {

struct RulePlace {
    std::string source;  ///< "argument", or the name of the file
    std::size_t number;  ///< of the argument or of the line, from 1
    bool isArgument;
};

std::string placeText(const RulePlace& place)
{
    return place.source + (place.isArgument ? " " : ":") + std::to_string(place.number);
}

class RuleChecker {
public:
    explicit RuleChecker(bool isJson) : m_isJson(isJson) {}

    void check(const std::string& rule, const RulePlace& place)
    {
        vemorRules::RuleObject parsed;
        const bool isValid = vemorRules::isEmptyRule(rule) || vemorRules::parseRule(rule, &parsed);
        ++(isValid ? m_valid : m_refused);
        if (isValid) {
            m_isJson ? tellJson(validRule(rule, place, parsed)) : tellValid(rule, place, parsed);
        } else {
            m_isJson ? tellJson(refusedRule(rule, place)) : tellRefused(rule, place);
        }
    }

    ExitCode finish()
    {
        if (!m_isJson && (m_valid + m_refused > 1)) {
            m_output.writeLine(std::to_string(m_valid + m_refused) + " rules: " + std::to_string(m_valid) + " valid, " +
                               std::to_string(m_refused) + " refused");
        }
        m_output.finish();
        return (m_refused == 0) ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
    }

private:
    void tellValid(const std::string& rule, const RulePlace& place, const vemorRules::RuleObject& parsed)
    {
        std::string kind = kindOfRule(parsed.m_expressionType);
        if (!vemorRules::isEmptyRule(rule)) {
            kind = (isUnsignedRule(rule) ? "unsigned " : "signed ") + kind;
        }
        m_output.writeLine(placeText(place) + ": " + m_output.coloured(Colour::GREEN, "valid") + ", " + kind + ": " +
                           describeRuleText(rule));
        for (const std::string& note : notesOn(rule)) {
            m_output.writeLine("    note: " + printable(note));
        }
    }

    void tellRefused(const std::string& rule, const RulePlace& place)
    {
        const RuleFault fault = explainRefusal(rule);
        m_output.writeLine(placeText(place) + ":" + std::to_string(columnOf(rule, fault)) + ": " +
                           m_output.coloured(Colour::RED, "refused") + ": " + printable(fault.reason));
        for (const std::string& line : pictureOf(rule, fault)) {
            m_output.writeLine(line);
        }
    }

    static Json placeAndRule(const std::string& rule, const RulePlace& place, bool isValid)
    {
        Json result;
        result["source"] = place.source;
        result[place.isArgument ? "argument" : "line"] = place.number;
        result["rule"] = rule;
        result["valid"] = isValid;
        return result;
    }

    static Json validRule(const std::string& rule, const RulePlace& place, const vemorRules::RuleObject& parsed)
    {
        Json result = placeAndRule(rule, place, true);
        result["type"] = vemorRules::expressionTypeNames[parsed.m_expressionType];
        if (!vemorRules::isEmptyRule(rule)) {
            result["unsigned"] = isUnsignedRule(rule);
        }
        result["meaning"] = describeRuleText(rule);
        result["notes"] = notesOn(rule);
        return result;
    }

    static Json refusedRule(const std::string& rule, const RulePlace& place)
    {
        const RuleFault fault = explainRefusal(rule);
        Json result = placeAndRule(rule, place, false);
        result["column"] = columnOf(rule, fault);
        result["length"] = characterCount(rule.substr(fault.span.begin), fault.span.length);
        result["reason"] = fault.reason;
        result["remedy"] = fault.remedy;
        return result;
    }

    void tellJson(const Json& result)
    {
        m_output.writeLine(result.dump(-1, ' ', false, Json::error_handler_t::replace));
    }

    bool m_isJson;
    ResultOutput m_output;
    std::size_t m_valid = 0;
    std::size_t m_refused = 0;
};

}  // namespace

ExitCode checkRules(const RuleCheckOptions& options)
{
    RuleChecker checker(options.isJson);
    if (!options.rules.empty()) {
        for (std::size_t i = 0; i < options.rules.size(); ++i) {
            checker.check(options.rules[i], {"argument", i + 1, true});
        }
    } else {
        LineReader lines(options.file);
        while (const std::optional<std::string> rule = lines.next()) {
            checker.check(*rule, {lines.name(), lines.lineNumber(), false});
        }
    }
    return checker.finish();
}

RuleFault explainRefusal(const std::string& rule)
{
    return findFault(rule).value_or(RuleFault{{0, std::max<std::size_t>(rule.size(), 1)}, "the parser refuses it", ""});
}

std::vector<std::string> pictureOf(const std::string& rule, const RuleFault& fault)
{
    constexpr const char* INDENT = "    ";
    const std::string before(characterCount(rule, fault.span.begin), ' ');
    const std::size_t marked =
        (fault.span.begin < rule.size()) ? characterCount(rule.substr(fault.span.begin), fault.span.length) : 1;
    return {INDENT + printable(rule), INDENT + before + "^" + std::string(std::max<std::size_t>(marked, 1) - 1, '~'),
            INDENT + printable(fault.remedy)};
}

std::size_t columnOf(const std::string& rule, const RuleFault& fault)
{
    return characterCount(rule, fault.span.begin) + 1;
}
