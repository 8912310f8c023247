#include "RuleDiagnosis.h"

#include <charconv>
#include <cstddef>
#include <system_error>
#include <type_traits>
#include <vector>

#include "RuleText.h"

namespace vemorRules {
namespace {

using Fault = std::optional<RuleFault>;

// In the parser's search order.
const char* const OPERATOR_TOKENS[] = {"<=", ">=", "==", "!=", "<", ">"};
constexpr const char* OPERATORS = "the operators are < <= > >= == !=";
constexpr const char* ONE_COMPARISON =
    "compare once, or join two comparisons with 'and' or 'or': value > 1 and value < 5";
constexpr const char* SIGNED_OR_UNSIGNED = "write expr=signed(...) or expr=unsigned(...)";
constexpr const char* SIZE_OF_CHANGE = "write the size of the change: 0 or more";
constexpr const char* REMOVE_TAB = "remove the tab: only spaces are ignored";

// A piece of a rule as a reason quotes it: 80 characters of UTF-8 at the most.
std::string inQuotes(const std::string& text)
{
    constexpr std::size_t LONGEST = 80;
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isContinuation = ((static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80U);
        characters += isContinuation ? 0 : 1;
        if (characters > LONGEST) {
            return "'" + text.substr(0, i) + "...'";
        }
    }
    return "'" + text + "'";
}

bool contains(const std::string& text, const std::string& word)
{
    return text.find(word) != std::string::npos;
}

bool isFieldWord(const std::string& text)
{
    return (text == "value") || (text == "delta");
}

bool namesField(const std::string& text)
{
    return contains(text, "value") || contains(text, "delta");
}

RuleFault faultAt(const MappedText& text, std::size_t pos, std::size_t length, const std::string& reason,
                  const std::string& remedy)
{
    const TextSpan span = text.originOf(pos, length);
    return {span.begin, span.length, reason, remedy};
}

RuleFault faultOf(const MappedText& text, const std::string& reason, const std::string& remedy)
{
    return faultAt(text, 0, text.text().size(), reason, remedy);
}

// What would be right in place of the first character of `number` that is not a digit.
std::string remedyForNonDigit(const std::string& number, std::size_t pos, bool isUnsigned)
{
    if (namesField(number)) {
        return "compare with a number";
    }
    switch (number[pos]) {
        case '\t': return REMOVE_TAB;
        case '.': return "write a whole number, in a smaller unit if need be";
        case '+': return "write the number without '+'";
        case 'x': return "write the number in decimal";
        case '<':
        case '>':
        case '=':
        case '!': return OPERATORS;
        default: break;
    }
    return isUnsigned ? "write decimal digits only" : "write decimal digits only, with '-' before them if negative";
}

template <typename T>
Fault faultOfNumber(const MappedText& number, bool isDelta)
{
    constexpr bool isUnsigned = std::is_unsigned_v<T>;
    constexpr const char* RANGE =
        isUnsigned ? "unsigned numbers are 0 to 4294967295" : "signed numbers are -2147483648 to 2147483647";
    const std::string& text = number.text();
    if (text.empty()) {
        return faultOf(number, "a number is missing", "write a whole number here");
    }
    const bool isNegative = (text[0] == '-');
    if (isNegative && isUnsigned) {
        return faultOf(number, "an unsigned rule takes no negative number",
                       isDelta ? SIZE_OF_CHANGE : "write 'signed(' for a signed rule");
    }
    const std::size_t posNonDigit = text.find_first_not_of("0123456789", isNegative ? 1 : 0);
    if (posNonDigit != std::string::npos) {
        return faultAt(number, posNonDigit, 1, inQuotes(text) + " is not a whole number",
                       remedyForNonDigit(text, posNonDigit, isUnsigned));
    }
    T value = 0;
    const std::errc error = std::from_chars(text.data(), text.data() + text.size(), value).ec;
    if (error == std::errc::result_out_of_range) {
        return faultOf(number, inQuotes(text) + " is out of range", RANGE);
    }
    if (error != std::errc()) {
        return faultOf(number, "'-' without a number", "write digits after the '-'");
    }
    if (isDelta && isNegative && (value != 0)) {
        return faultOf(number, "a delta is never negative", SIZE_OF_CHANGE);
    }
    return std::nullopt;
}

Fault faultOfNumber(const MappedText& number, bool isUnsigned, bool isDelta)
{
    return isUnsigned ? faultOfNumber<unsigned int>(number, isDelta) : faultOfNumber<int>(number, isDelta);
}

RuleFault missingOperator(const MappedText& comparison)
{
    const std::string& text = comparison.text();
    const std::size_t posEqual = text.find('=');
    if (posEqual != std::string::npos) {
        return faultAt(comparison, posEqual, 1, "'=' is not an operator", "write '==' to compare");
    }
    return faultOf(comparison, text.empty() ? "a comparison is missing" : "there is no relational operator", OPERATORS);
}

// Neither side of the operator that the parser chose is "value" or "delta" alone.
RuleFault missingField(const MappedText& comparison, const std::vector<MappedText>& sides)
{
    const std::string& text = comparison.text();
    for (const char* const reversed : {"=<", "=>"}) {
        const std::size_t pos = text.find(reversed);
        if (pos != std::string::npos) {
            return faultAt(comparison, pos, 2, inQuotes(reversed) + " is not an operator",
                           std::string("write '") + reversed[1] + "='");
        }
    }
    const std::size_t posTab = text.find('\t');
    if (posTab != std::string::npos) {
        return faultAt(comparison, posTab, 1, "there is a tab", REMOVE_TAB);
    }
    const MappedText& side = (namesField(sides[1].text()) && !namesField(sides[0].text())) ? sides[1] : sides[0];
    const std::string& sideText = side.text();
    if (contains(sideText, "and")) {
        return faultAt(side, sideText.find("and"), 3, "more than two comparisons are joined",
                       "join two comparisons at the most, with one 'and' or one 'or'");
    }
    const std::size_t posOperator = sideText.find_first_of("<>=!");
    if (posOperator != std::string::npos) {
        return faultAt(side, posOperator, 1, "there is more than one operator", ONE_COMPARISON);
    }
    return faultOf(side, "neither side is 'value' or 'delta'",
                   "one side is 'value' or 'delta' alone, the other a number");
}

Fault faultOfComparison(const MappedText& expr, bool isUnsigned, bool& isDelta)
{
    const MappedText comparison = expr.without('(').without(')');
    const char* token = nullptr;
    for (const char* const candidate : OPERATOR_TOKENS) {
        if (contains(comparison.text(), candidate)) {
            token = candidate;
            break;
        }
    }
    if (token == nullptr) {
        return missingOperator(comparison);
    }
    const std::vector<MappedText> sides = comparison.splitAt(token);
    if (sides.size() != 2) {
        const std::string operatorText = token;
        const std::size_t posSecond = sides[0].text().size() + operatorText.size() + sides[1].text().size();
        return faultAt(comparison, posSecond, operatorText.size(), "there is more than one operator", ONE_COMPARISON);
    }
    const bool isFieldLeft = isFieldWord(sides[0].text());
    if (!isFieldLeft && !isFieldWord(sides[1].text())) {
        return missingField(comparison, sides);
    }
    isDelta = (sides[isFieldLeft ? 0 : 1].text() == "delta");
    return faultOfNumber(sides[isFieldLeft ? 1 : 0], isUnsigned, isDelta);
}

Fault faultOfJoinedComparisons(const MappedText& expr, bool isUnsigned, const std::string& joiningWord)
{
    const std::vector<MappedText> pieces = expr.splitAt(joiningWord);
    if (pieces.size() != 2) {
        const std::size_t posSecond = pieces[0].text().size() + joiningWord.size() + pieces[1].text().size();
        return faultAt(expr, posSecond, joiningWord.size(), "more than two comparisons are joined",
                       "join two comparisons at the most, with one 'and' or one 'or'");
    }
    bool isFirstDelta = false;
    bool isSecondDelta = false;
    if (Fault fault = faultOfComparison(pieces[0], isUnsigned, isFirstDelta)) {
        return fault;
    }
    if (Fault fault = faultOfComparison(pieces[1], isUnsigned, isSecondDelta)) {
        return fault;
    }
    if (isFirstDelta != isSecondDelta) {
        return faultOf(pieces[1], "one comparison is about 'value' and the other about 'delta'",
                       "use the same word on both sides of the " + inQuotes(joiningWord));
    }
    return std::nullopt;
}

Fault faultOfHysteresisCall(const MappedText& expr, bool isUnsigned, std::size_t posWord, const std::string& word)
{
    const std::size_t posArguments = posWord + word.size();
    const std::size_t posClosing = expr.text().find(')', posArguments);
    if (posClosing == std::string::npos) {
        return faultAt(expr, posWord, word.size(), "the " + inQuotes(")") + " of " + inQuotes(word) + " is missing",
                       "close both brackets: " + word + "80,90))");
    }
    const std::vector<MappedText> arguments = expr.part(posArguments, posClosing - posArguments).splitAt(",");
    if (arguments.size() != 2) {
        return faultAt(expr, posArguments, posClosing - posArguments, "a hysteresis takes two thresholds",
                       "write two numbers with one ',' between them: " + word + "80,90)");
    }
    for (const MappedText& argument : arguments) {
        if (Fault fault = faultOfNumber(argument, isUnsigned, false)) {
            return fault;
        }
    }
    return std::nullopt;
}

Fault faultOfHysteresis(const MappedText& expr, bool isUnsigned)
{
    bool isCallFound = false;
    for (const char* const word : {"hyshigh(", "hyslow("}) {
        const std::size_t posWord = expr.text().find(word);
        if (posWord == std::string::npos) {
            continue;
        }
        isCallFound = true;
        if (Fault fault = faultOfHysteresisCall(expr, isUnsigned, posWord, word)) {
            return fault;
        }
    }
    if (!isCallFound) {
        return faultAt(expr, expr.text().find("hys"), 3, "there is neither 'hyshigh(' nor 'hyslow('",
                       "write hyshigh(80,90), hyslow(10,20) or both");
    }
    return std::nullopt;
}

Fault faultOfExpression(const MappedText& expr, bool isUnsigned)
{
    if (contains(expr.text(), "hys")) {
        return faultOfHysteresis(expr, isUnsigned);
    }
    if (contains(expr.text(), "or")) {
        return faultOfJoinedComparisons(expr, isUnsigned, "or");
    }
    if (contains(expr.text(), "and")) {
        return faultOfJoinedComparisons(expr, isUnsigned, "and");
    }
    bool isDelta = false;
    return faultOfComparison(expr, isUnsigned, isDelta);
}

RuleFault missingExpr(const MappedText& part)
{
    if (part.text()[0] == '/') {
        return faultOf(part, "this is not a comment", "a comment starts with '/' as the very first character");
    }
    return faultOf(part, "there is no 'expr'", SIGNED_OR_UNSIGNED);
}

// An empty part is shown by the ';' after it; the last one by the ';' before it.
RuleFault emptyPart(const std::string& rule, const MappedText& part)
{
    const std::size_t posAfter = part.origin().begin;
    const std::size_t posSeparator = (posAfter < rule.size()) ? posAfter : rule.rfind(';');
    if (posSeparator == std::string::npos) {
        return {0, rule.size(), "there are only blanks", "leave the rule empty, or write one"};
    }
    return {posSeparator, 1, "there is an empty part next to this ';'",
            "remove the ';', or write a rule on both sides"};
}

Fault faultOfPart(const MappedText& part)
{
    if (!contains(part.text(), "expr")) {
        return missingExpr(part);
    }
    const PartMarks marks = marksOf(part);
    if (marks.equalSign == NOT_FOUND) {
        return faultAt(part, part.text().find("expr"), 4, "there is no '=' after 'expr'", SIGNED_OR_UNSIGNED);
    }
    if (marks.signednessWord == NOT_FOUND) {
        return faultOf(part.partFrom(marks.equalSign + 1), "there is neither 'signed(' nor 'unsigned('",
                       SIGNED_OR_UNSIGNED);
    }
    if (marks.closingBracket == NOT_FOUND) {
        return faultAt(part, marks.openingBracket, 1, "the ')' of this bracket is missing", "close it with ')'");
    }
    if (marks.openingBracket + 1 >= marks.closingBracket) {
        return faultAt(part, marks.openingBracket, 1, "there is nothing between this bracket and the last ')'",
                       "write a condition between them: (value>5)");
    }
    return faultOfExpression(expressionOf(part, marks), marks.isUnsigned);
}

}  // namespace

std::optional<RuleFault> findFault(const std::string& rule)
{
    if (isEmptyOrComment(rule)) {
        return std::nullopt;
    }
    for (const MappedText& part : partsOf(rule)) {
        if (part.text().empty()) {
            return emptyPart(rule, part);
        }
        if (Fault fault = faultOfPart(part)) {
            return fault;
        }
    }
    return std::nullopt;
}

bool isUnsignedRule(const std::string& rule)
{
    return !isEmptyOrComment(rule) && marksOf(partsOf(rule).back()).isUnsigned;
}

}  // namespace vemorRules
