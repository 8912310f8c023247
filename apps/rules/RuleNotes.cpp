#include "rules/RuleNotes.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "EventMgmtRulesParsing.h"
#include "RuleText.h"
#include "rules/RuleSession.h"

namespace brantel {
namespace {

using vemorRules::Expression;
using vemorRules::MappedText;
using vemorRules::NOT_FOUND;
using vemorRules::PartMarks;
using vemorRules::RuleObject;

using Notes = std::vector<std::string>;

// The text as written, blanks and letter case included.
std::string asWritten(const std::string& rule, const MappedText& text)
{
    const vemorRules::TextSpan span = text.origin();
    return "'" + rule.substr(span.begin, span.length) + "'";
}

void noteIgnored(Notes& notes, const std::string& rule, const MappedText& text)
{
    if (!text.text().empty()) {
        notes.push_back(asWritten(rule, text) + " is ignored");
    }
}

void noteIgnoredAroundBrackets(Notes& notes, const std::string& rule, const MappedText& part, const PartMarks& marks)
{
    if (marks.equalSign < marks.signednessWord) {
        noteIgnored(notes, rule, part.part(marks.equalSign + 1, marks.signednessWord - marks.equalSign - 1));
    } else if (part.text().find("unsigned(") < marks.equalSign) {
        notes.push_back("the rule is signed: 'unsigned(' counts only after the first '='");
    }
    noteIgnored(notes, rule, part.partFrom(marks.closingBracket + 1));
}

// A hysteresis expression is its first hyshigh call and its first hyslow call; "and" and "or" between them have no
// meaning.
void noteIgnoredAroundCalls(Notes& notes, const std::string& rule, const MappedText& expr)
{
    struct Call {
        std::size_t begin;
        std::size_t end;
    };
    std::vector<Call> calls;
    for (const char* const word : {"hyshigh(", "hyslow("}) {
        const std::size_t begin = expr.text().find(word);
        if (begin != NOT_FOUND) {
            calls.push_back({begin, expr.text().find(')', begin) + 1});
        }
    }
    std::sort(calls.begin(), calls.end(), [](const Call& one, const Call& other) { return one.begin < other.begin; });
    calls.push_back({expr.text().size(), expr.text().size()});
    std::size_t end = 0;
    for (const Call& call : calls) {
        const MappedText between = expr.part(end, call.begin - end);
        if ((between.text() != "and") && (between.text() != "or")) {
            noteIgnored(notes, rule, between);
        }
        end = call.end;
    }
}

void collectThresholds(const boost::any& operand, std::vector<SampleValue>& thresholds)
{
    if (const auto* const pSigned = boost::any_cast<int>(&operand)) {
        thresholds.push_back(*pSigned);
    } else if (const auto* const pUnsigned = boost::any_cast<unsigned int>(&operand)) {
        thresholds.push_back(*pUnsigned);
    } else if (const auto* const pExpression = boost::any_cast<Expression>(&operand)) {
        collectThresholds(pExpression->m_leftOperand, thresholds);
        collectThresholds(pExpression->m_rightOperand, thresholds);
    }
}

// The outcome of a condition changes only at its thresholds, so that there and next to them is every outcome.
// `canFail`: it can also fail outside of `range`.
template <typename T>
void noteConstantCondition(Notes& notes, const RuleObject& rule, SampleRange range, bool canFail)
{
    std::vector<SampleValue> thresholds{range.lowest, range.highest};
    collectThresholds(rule.m_expressions[0], thresholds);
    bool canHold = false;
    for (const SampleValue threshold : thresholds) {
        for (const SampleValue value : {threshold - 1, threshold, threshold + 1}) {
            if ((value >= range.lowest) && (value <= range.highest)) {
                (vemorRules::checkInt<T>(rule.m_expressions[0], static_cast<T>(value)) ? canHold : canFail) = true;
            }
        }
    }
    if (!canHold) {
        notes.push_back("the condition never holds: the rule is never raised");
    } else if (!canFail) {
        notes.push_back("the condition always holds: the rule is never cleared");
    }
}

template <typename T>
void noteHysteresis(Notes& notes, const Expression& keeping, const Expression& raising, const std::string& name)
{
    std::vector<SampleValue> thresholds;
    collectThresholds(keeping, thresholds);
    collectThresholds(raising, thresholds);
    if (thresholds[0] == thresholds[1]) {
        notes.push_back(name + " has equal thresholds: it is a plain comparison");
    }
    const auto isRaisedBy = [&](T sample) { return vemorRules::checkHysteresis<T>(keeping, raising, sample, false); };
    if (!isRaisedBy(std::numeric_limits<T>::min()) && !isRaisedBy(std::numeric_limits<T>::max())) {
        notes.push_back(name + " is never raised: no sample is beyond its raising threshold");
    }
}

template <typename T>
void noteOutcomes(Notes& notes, const RuleObject& rule, SampleRange range)
{
    const std::vector<Expression>& expressions = rule.m_expressions;
    switch (rule.m_expressionType) {
        case vemorRules::SIMPLE_EXPRESSION_VALUE: noteConstantCondition<T>(notes, rule, range, false); break;
        case vemorRules::SIMPLE_EXPRESSION_DELTA:
            // A signed delta above the range of int never holds.
            noteConstantCondition<T>(notes, rule, {0, range.highest}, std::is_signed_v<T>);
            break;
        case vemorRules::SINGLE_HYSTERESIS:
            noteHysteresis<T>(notes, expressions[0], expressions[1], "the hysteresis");
            break;
        case vemorRules::DOUBLE_HYSTERESIS:
            noteHysteresis<T>(notes, expressions[0], expressions[1], "the upper hysteresis");
            noteHysteresis<T>(notes, expressions[2], expressions[3], "the lower hysteresis");
            break;
        case vemorRules::NO_EXPRESSION: break;
    }
}

void notePart(Notes& notes, const std::string& rule, const MappedText& part)
{
    const PartMarks marks = marksOf(part);
    noteIgnoredAroundBrackets(notes, rule, part, marks);
    RuleObject parsedPart;
    vemorRules::parseExpression(part.text(), &parsedPart);
    if (parsedPart.m_expressionType >= vemorRules::SINGLE_HYSTERESIS) {
        noteIgnoredAroundCalls(notes, rule, expressionOf(part, marks));
    }
    const SampleRange range = sampleRange(marks.isUnsigned);
    marks.isUnsigned ? noteOutcomes<unsigned int>(notes, parsedPart, range)
                     : noteOutcomes<int>(notes, parsedPart, range);
}

}  // namespace

std::vector<std::string> notesOn(const std::string& rule)
{
    Notes notes;
    if (vemorRules::isEmptyRule(rule)) {
        return notes;
    }
    const std::vector<MappedText> parts = vemorRules::partsOf(rule);
    for (const MappedText& part : parts) {
        notePart(notes, rule, part);
    }
    if (parts.size() > 1) {
        notes.emplace_back(vemorRules::SEVERAL_PARTS);
    }
    return notes;
}

}  // namespace brantel
