#include "EventMgmtRulesParsing.h"

#include <exception>
#include <locale>
#include <type_traits>
#include <utility>

#include <boost/algorithm/cxx11/any_of.hpp>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/find.hpp>
#include <boost/algorithm/string/find_iterator.hpp>
#include <boost/algorithm/string/finder.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/lexical_cast.hpp>

#include "Log.h"

namespace vemorRules {

namespace {

using Position = std::string::size_type;
constexpr Position N_POS = std::string::npos;

struct OperatorToken {
    const char* token;
    RelationalOperator relationalOperator;
};

// In search order: the first token that occurs anywhere wins, so "<=" comes before "<".
constexpr OperatorToken OPERATOR_TOKENS[] = {
    {"<=", LESS_OR_EQUAL},  //
    {">=", GREATER_OR_EQUAL}, {"==", EQUAL}, {"!=", NOT_EQUAL}, {"<", LESS_THAN}, {">", GREATER_THAN},
};

const OperatorToken* findOperatorToken(const std::string& text)
{
    for (const OperatorToken& candidate : OPERATOR_TOKENS) {
        if (boost::find_first(text, candidate.token)) {
            return &candidate;
        }
    }
    return nullptr;
}

std::vector<std::string> splitAtEvery(const std::string& text, const char* token)
{
    std::vector<std::string> pieces;
    pieces.reserve(2);  // what nearly every text has
    for (auto piece = boost::make_split_iterator(text, boost::first_finder(token)); !piece.eof(); ++piece) {
        pieces.emplace_back(piece->begin(), piece->end());
    }
    return pieces;
}

bool isFieldWord(const std::string& text)
{
    return (text == "value") || (text == "delta");
}

ExpressionType simpleExpressionType(bool isDelta)
{
    return isDelta ? SIMPLE_EXPRESSION_DELTA : SIMPLE_EXPRESSION_VALUE;
}

// The operands are moved into the expression; its constructor would copy their trees.
Expression makeExpression(RelationalOperator relationalOperator, boost::any&& left, boost::any&& right)
{
    Expression expression;
    expression.m_relationalOperator = relationalOperator;
    expression.m_leftOperand = std::move(left);
    expression.m_rightOperand = std::move(right);
    return expression;
}

// "<MemoryField> and|or (<ParamField> >|< threshold)", the form of every hysteresis expression.
Expression hysteresisExpression(RelationalOperator joining, RelationalOperator comparison, int threshold)
{
    return makeExpression(joining, MemoryField(), makeExpression(comparison, ParamField(), threshold));
}

bool hasCapitals(const std::string& text)
{
    return boost::algorithm::any_of(text, boost::is_from_range('A', 'Z'));
}

}  // namespace

bool isEmptyRule(const std::string& rule)
{
    return rule.empty() || (rule[0] == '/');
}

bool isValidRule(const std::string& rule)
{
    return isEmptyRule(rule) || parseRule(rule, nullptr);
}

bool parseRule(const std::string& rule, RuleObject* pRuleObject)
{
    if (isEmptyRule(rule)) {
        return true;
    }
    try {
        std::string normalised = rule;
        boost::erase_all(normalised, " ");
        // Rules have few capitals, and asking a locale about each letter would cost more than the rest of the parse.
        if (hasCapitals(normalised)) {
            boost::to_lower(normalised, std::locale::classic());
        }

        const std::vector<std::string> parts = splitAtEvery(normalised, ";");
        // GCOVR_EXCL_START: a split yields at least one part, if an empty one.
        if (parts.empty()) {
            LOG_ERROR("Failed to split rule = '%s' in parts", rule.c_str());
            return false;
        }
        // GCOVR_EXCL_STOP
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const std::string& part = parts[i];
            LOG_DEBUG3("part %d = '%s'", static_cast<int>(i), part.c_str());
            if (!boost::find_first(part, "expr")) {
                LOG_ERROR("Failed to parse part = '%s' of rule = '%s'", part.c_str(), rule.c_str());
                return false;
            }
            if (!parseExpression(part, pRuleObject)) {
                return false;
            }
        }
        return true;
    } catch (const boost::bad_lexical_cast& exception) {
        LOG_ERROR("parseRule() threw bad_lexical_cast:");
        LOG_ERROR("   - rule = '%s'", rule.c_str());
        LOG_ERROR("   - info = %s", exception.what());
    } catch (...) {
        LOG_ERROR("parseRule() threw exception. (rule='%s')", rule.c_str());
    }
    return false;
}

bool parseExpression(const std::string& part, RuleObject* pRuleObject)
{
    LOG_DEBUG3("parseExpression='%s'", part.c_str());
    const Position posEqual = part.find('=');
    if (posEqual == N_POS) {
        LOG_ERROR("No = sign in expression '%s'", part.c_str());
        return false;
    }
    // "signed(" is searched from the start and not from the "=": rules in the field rely on it.
    const Position posUnsigned = part.find("unsigned(", posEqual);
    const bool isUnsigned = (posUnsigned != N_POS);
    const Position posWord = isUnsigned ? posUnsigned : part.find("signed(");
    if (posWord == N_POS) {
        LOG_ERROR("Failed to find 'signed' or 'unsigned' in expression = '%s'", part.c_str());
        return false;
    }
    const Position posFirstLeftRoundBracket = part.find('(', posWord);
    // GCOVR_EXCL_START: the word that was found ends in a "(".
    if (posFirstLeftRoundBracket == N_POS) {
        LOG_ERROR("Failed to find '(' character after '(un)signed' word in expression = '%s'", part.c_str());
        return false;
    }
    // GCOVR_EXCL_STOP
    const Position posLastRightRoundBracket = part.rfind(')');
    if (posLastRightRoundBracket == N_POS) {
        LOG_ERROR("Failed to find ')' character in expression = '%s'", part.c_str());
        return false;
    }
    const Position posCharAfterFirstLeftRoundBracket = posFirstLeftRoundBracket + 1;
    if (posCharAfterFirstLeftRoundBracket >= posLastRightRoundBracket) {
        LOG_ERROR("posCharAfterFirstLeftRoundBracket >= posLastRightRoundBracket in expression = '%s'", part.c_str());
        return false;
    }
    const std::string exprValue =
        part.substr(posCharAfterFirstLeftRoundBracket, posLastRightRoundBracket - posCharAfterFirstLeftRoundBracket);
    LOG_DEBUG3("exprValue='%s'", exprValue.c_str());

    if (boost::find_first(exprValue, "hys")) {
        LOG_DEBUG3("hysteresis expression");
        return parseHysteresisExpression(exprValue, isUnsigned, pRuleObject);
    }
    if (boost::find_first(exprValue, "or")) {
        LOG_DEBUG3("or expression");
        return parseExpressionWithAndOrOr(exprValue, isUnsigned, true, pRuleObject);
    }
    if (boost::find_first(exprValue, "and")) {
        LOG_DEBUG3("and expression");
        return parseExpressionWithAndOrOr(exprValue, isUnsigned, false, pRuleObject);
    }
    LOG_DEBUG3("basic expression");
    bool isDelta = false;
    Expression expression;
    if (!parseBasicExpression(exprValue, isUnsigned, isDelta, (pRuleObject != nullptr) ? &expression : nullptr)) {
        return false;
    }
    if (pRuleObject != nullptr) {
        pRuleObject->m_expressionType = simpleExpressionType(isDelta);
        pRuleObject->m_expressions.push_back(std::move(expression));
    }
    return true;
}

bool parseExpressionWithAndOrOr(const std::string& expr, bool isUnsigned, bool isOr, RuleObject* pRuleObject)
{
    const char* const joiningWord = isOr ? "or" : "and";
    const std::vector<std::string> pieces = splitAtEvery(expr, joiningWord);
    if (pieces.size() != 2) {
        LOG_ERROR("Failed to get 2 elements of %s expression: %s", joiningWord, expr.c_str());
        return false;
    }
    bool isDelta1 = false;
    bool isDelta2 = false;
    Expression expression1;
    Expression expression2;
    const bool store = (pRuleObject != nullptr);
    if (!parseBasicExpression(pieces[0], isUnsigned, isDelta1, store ? &expression1 : nullptr) ||
        !parseBasicExpression(pieces[1], isUnsigned, isDelta2, store ? &expression2 : nullptr)) {
        return false;
    }
    if (isDelta1 != isDelta2) {
        LOG_ERROR("Expression contains both 'value' and 'delta' (expr=%s)", expr.c_str());
        return false;
    }
    if (store) {
        pRuleObject->m_expressionType = simpleExpressionType(isDelta1);
        pRuleObject->m_expressions.push_back(
            makeExpression(isOr ? LOGICAL_OR : LOGICAL_AND, std::move(expression1), std::move(expression2)));
    }
    return true;
}

bool parseBasicExpression(const std::string& expr, bool isUnsigned, bool& isDelta, Expression* pExpression)
{
    LOG_DEBUG3("parseBasicExpression='%s'", expr.c_str());
    isDelta = false;

    std::string basicExpression = expr;
    boost::erase_all(basicExpression, "(");
    boost::erase_all(basicExpression, ")");
    LOG_DEBUG3("basicExpression after 1st processing = '%s'", basicExpression.c_str());

    const OperatorToken* const pOperator = findOperatorToken(basicExpression);
    if (pOperator == nullptr) {
        LOG_ERROR("Failed to find relational operator in expression '%s'", expr.c_str());
        return false;
    }
    if (pExpression != nullptr) {
        pExpression->m_relationalOperator = pOperator->relationalOperator;
    }

    const std::vector<std::string> splitVec = splitAtEvery(basicExpression, pOperator->token);
    LOG_DEBUG3("splitVec.size()=%d", static_cast<int>(splitVec.size()));
    for (std::size_t i = 0; i < splitVec.size(); ++i) {
        LOG_DEBUG3("- splitVec[%d]='%s'", static_cast<int>(i), splitVec[i].c_str());
    }
    if (splitVec.size() != 2) {
        LOG_ERROR("Failed to get 2 entities of relational expression %s", expr.c_str());
        return false;
    }

    const bool isFieldLeft = isFieldWord(splitVec[0]);
    if (!isFieldLeft && !isFieldWord(splitVec[1])) {
        LOG_ERROR("Expression = '%s' does not contain 'value' or 'delta'", expr.c_str());
        return false;
    }
    const std::string& fieldWord = isFieldLeft ? splitVec[0] : splitVec[1];
    const std::string& numberText = isFieldLeft ? splitVec[1] : splitVec[0];
    isDelta = (fieldWord == "delta");

    boost::any* pNumberOperand = nullptr;
    if (pExpression != nullptr) {
        (isFieldLeft ? pExpression->m_leftOperand : pExpression->m_rightOperand) = ParamField();
        pNumberOperand = isFieldLeft ? &pExpression->m_rightOperand : &pExpression->m_leftOperand;
    }
    return isUnsigned ? handleNumericValue<unsigned int>(expr, numberText, 0, isUnsigned, isDelta, pNumberOperand)
                      : handleNumericValue<int>(expr, numberText, 0, isUnsigned, isDelta, pNumberOperand);
}

bool parseHysteresisExpression(const std::string& expr, bool isUnsigned, RuleObject* pRuleObject)
{
    constexpr const char* functionText =
        "bool vemorRules::parseHysteresisExpression(const string&, bool, vemorRules::RuleObject*)";

    const Position posHysHigh = expr.find("hyshigh(");
    const Position posHysLow = expr.find("hyslow(");
    if ((posHysHigh == N_POS) && (posHysLow == N_POS)) {
        LOG_ERROR("Expression does not contain HysHigh or HysLow (%s)", expr.c_str());
        return false;
    }
    if ((posHysHigh != N_POS) &&
        !parseSingleHysterisExpression(expr, isUnsigned, static_cast<unsigned int>(posHysHigh), true, pRuleObject)) {
        return false;
    }
    if ((posHysLow != N_POS) &&
        !parseSingleHysterisExpression(expr, isUnsigned, static_cast<unsigned int>(posHysLow), false, pRuleObject)) {
        return false;
    }
    if (pRuleObject == nullptr) {
        return true;
    }
    if ((posHysHigh != N_POS) && (posHysLow != N_POS)) {
        pRuleObject->m_expressionType = DOUBLE_HYSTERESIS;
        ASSERT_OR_REPORT_AS(pRuleObject->m_expressions.size() == 4, functionText);
    } else {
        // GCOVR_EXCL_START: refused above where neither was found.
        ASSERT_OR_REPORT_AS((posHysHigh != N_POS) || (posHysLow != N_POS), functionText);
        // GCOVR_EXCL_STOP
        pRuleObject->m_expressionType = SINGLE_HYSTERESIS;
        ASSERT_OR_REPORT_AS(pRuleObject->m_expressions.size() == 2, functionText);
    }
    return true;
}

bool parseSingleHysterisExpression(const std::string& expr, bool isUnsigned, unsigned int pos, bool isHigh,
                                   RuleObject* pRuleObject)
{
    const Position posLeftBracket = expr.find('(', pos);
    if (posLeftBracket == N_POS) {
        LOG_ERROR("Failed to find left round bracket in expression '%s'", expr.c_str());
        return false;
    }
    // GCOVR_EXCL_START: the bracket's own position is tested and not the one after it, so this never holds; the missing
    // ")" is reported below instead.
    if (posLeftBracket >= expr.length()) {
        LOG_ERROR("No characters anymore after left round bracket in expression '%s'", expr.c_str());
        return false;
    }
    // GCOVR_EXCL_STOP
    const Position posRightBracket = expr.find(')', posLeftBracket);
    if (posRightBracket == N_POS) {
        LOG_ERROR("Failed to find right round bracket in expression '%s'", expr.c_str());
        return false;
    }
    const std::string hystValues = expr.substr(posLeftBracket + 1, posRightBracket - posLeftBracket - 1);
    LOG_DEBUG3("hystValues = '%s'", hystValues.c_str());

    const std::vector<std::string> args = splitAtEvery(hystValues, ",");
    if (args.size() != 2) {
        // The position of the ")" is the length: the text may go beyond the call.
        LOG_ERROR("Failed to find 2 arguments of hysteresis function : %s)", expr.substr(pos, posRightBracket).c_str());
        return false;
    }
    return isUnsigned ? parseSingleHysterisExpressionAux<unsigned int>(0, 0, true, args, isHigh, pRuleObject)
                      : parseSingleHysterisExpressionAux<int>(0, 0, false, args, isHigh, pRuleObject);
}

template <typename T>
bool parseSingleHysterisExpressionAux(T highestValue, T lowestValue, bool isUnsigned,
                                      const std::vector<std::string>& args, bool isHigh, RuleObject* pRuleObject)
{
    T firstValue = highestValue;
    T secondValue = lowestValue;
    if (!extractIntegerValue<T>(args[0], firstValue, isUnsigned) ||
        !extractIntegerValue<T>(args[1], secondValue, isUnsigned)) {
        return false;
    }
    if (pRuleObject == nullptr) {
        return true;
    }
    highestValue = (firstValue < secondValue) ? secondValue : firstValue;
    lowestValue = (firstValue < secondValue) ? firstValue : secondValue;
    if (isUnsigned) {
        LOG_DEBUG3("highestValue=%u", static_cast<unsigned int>(highestValue));
        LOG_DEBUG3("lowestValue=%u", static_cast<unsigned int>(lowestValue));
    } else {
        LOG_DEBUG3("highestValue=%d", static_cast<int>(highestValue));
        LOG_DEBUG3("lowestValue=%d", static_cast<int>(lowestValue));
    }

    // Thresholds are int in unsigned rules too; the evaluation converts them back to the sample's type.
    const int high = static_cast<int>(highestValue);
    const int low = static_cast<int>(lowestValue);
    const RelationalOperator comparison = isHigh ? GREATER_THAN : LESS_THAN;
    const int keepingThreshold = isHigh ? low : high;
    const int raisingThreshold = isHigh ? high : low;
    pRuleObject->m_expressions.push_back(hysteresisExpression(LOGICAL_AND, comparison, keepingThreshold));
    pRuleObject->m_expressions.push_back(hysteresisExpression(LOGICAL_OR, comparison, raisingThreshold));
    return true;
}

template <typename T>
bool handleNumericValue(const std::string& expr, const std::string& numberText, T value, bool isUnsigned, bool isDelta,
                        boost::any* pOperand)
{
    if (!extractIntegerValue<T>(numberText, value, isUnsigned)) {
        return false;
    }
    if constexpr (std::is_signed_v<T>) {
        if (isDelta && (value < 0)) {
            LOG_ERROR("Expression with 'delta' contains negative number (%s)", expr.c_str());
            return false;
        }
    }
    if (pOperand != nullptr) {
        *pOperand = value;
        if (isUnsigned) {
            LOG_DEBUG3("numericValue=%u", static_cast<unsigned int>(boost::any_cast<T>(*pOperand)));
        } else {
            LOG_DEBUG3("numericValue=%d", static_cast<int>(boost::any_cast<T>(*pOperand)));
        }
    }
    return true;
}

template <typename T>
bool extractIntegerValue(const std::string& text, T& value, bool isUnsigned)
{
    if (text.empty()) {
        LOG_ERROR("Can not extract integer from empty expression");
        return false;
    }
    const bool isNegative = (text[0] == '-');
    if (isNegative && isUnsigned) {
        LOG_ERROR("expression='%s' contains negative number", text.c_str());
        return false;
    }
    // A lone "-" leaves nothing to check here and is refused by the conversion.
    const std::string digits = isNegative ? text.substr(1) : text;
    if (!boost::all(digits, boost::is_from_range('0', '9'))) {
        LOG_ERROR("Not all characters of '%s' are digits", digits.c_str());
        return false;
    }
    value = boost::lexical_cast<T>(text);
    return true;
}

#define INSTANTIATE_NUMBER_PARSING(T)                                                                             \
    template BRANTEL_EXPORT bool parseSingleHysterisExpressionAux<T>(T, T, bool, const std::vector<std::string>&, \
                                                                     bool, RuleObject*);                          \
    template BRANTEL_EXPORT bool handleNumericValue<T>(const std::string&, const std::string&, T, bool, bool,     \
                                                       boost::any*);                                              \
    template BRANTEL_EXPORT bool extractIntegerValue<T>(const std::string&, T&, bool);

INSTANTIATE_NUMBER_PARSING(int)
INSTANTIATE_NUMBER_PARSING(unsigned int)

}  // namespace vemorRules
