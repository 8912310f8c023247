// Memory: evaluating a parsed rule allocates nothing, and a parse that runs out of memory logs it and leaks nothing.

#include <new>
#include <string>
#include <vector>

#include "EventMgmtRulesParsing.h"
#include "library/rules/RuleTexts.h"
#include "support/Allocations.h"
#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

const std::vector<const char*> TOKENS = {"<=", ">=", "==", "!=", "<", ">"};
const std::vector<const char*> WORDS = {"signed", "unsigned"};

// Every comparison that the parser accepts between "value" or "delta" and a number, on both sides.
std::vector<std::string> comparisons(const std::string& fieldWord)
{
    std::vector<std::string> texts;
    for (const char* token : TOKENS) {
        texts.push_back(fieldWord + token + "5");
        texts.push_back(std::string("5") + token + fieldWord);
    }
    return texts;
}

std::vector<std::string> simpleRules(const std::string& fieldWord)
{
    std::vector<std::string> exprValues = comparisons(fieldWord);
    for (const std::string& left : comparisons(fieldWord)) {
        for (const std::string& right : comparisons(fieldWord)) {
            exprValues.push_back(left + " and " + right);
            exprValues.push_back(left + " or " + right);
        }
    }
    std::vector<std::string> rules;
    for (const std::string& exprValue : exprValues) {
        for (const char* word : WORDS) {
            rules.push_back(std::string("expr=") + word + "(" + exprValue + ")");
        }
    }
    return rules;
}

class Evaluating : public DiagnosticsTest {
protected:
    // Calls `evaluate` on each rule with samples around its threshold, once with errors logged and once without a trace
    // object, and returns the number of allocations of the calls.
    template <typename Evaluate>
    std::size_t allocationsOf(const std::vector<std::string>& rules, Evaluate evaluate)
    {
        std::size_t allocations = 0;
        for (const std::string& text : rules) {
            RuleObject rule;
            EXPECT_TRUE(parseRule(text, &rule)) << text;
            const std::size_t before = allocationTotals().count;
            for (const int sample : {-1, 0, 4, 5, 6, 100, 2147483647}) {
                m_diagnostics.setTraceLevel(ERRORS_ONLY);
                evaluate(rule, sample);
                m_diagnostics.removeTraceObject();
                evaluate(rule, sample);
            }
            allocations += allocationTotals().count - before;
        }
        EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
        return allocations;
    }
};

TEST_F(Evaluating, IsMeasuredByACountThatSeesTheLibrarysAllocations)
{
    RuleObject rule;
    const std::size_t before = allocationTotals().count;
    parseRule("expr=signed(value>5)", &rule);
    EXPECT_GT(allocationTotals().count, before);
}

TEST_F(Evaluating, AValueRuleAllocatesNothing)
{
    EXPECT_EQ(allocationsOf(simpleRules("value"),
                            [](const RuleObject& rule, int sample) {
                                checkSimpleValueRule<int>(rule, sample);
                                checkSimpleValueRule<unsigned int>(rule, static_cast<unsigned int>(sample));
                            }),
              0u);
}

TEST_F(Evaluating, ADeltaRuleAllocatesNothing)
{
    EXPECT_EQ(allocationsOf(simpleRules("delta"),
                            [](const RuleObject& rule, int sample) {
                                checkSimpleDeltaRule<int>(rule, 0, sample);
                                checkSimpleDeltaRule<unsigned int>(rule, 0, static_cast<unsigned int>(sample));
                            }),
              0u);
}

TEST_F(Evaluating, ASingleHysteresisRuleAllocatesNothing)
{
    EXPECT_EQ(allocationsOf({"expr=signed(hyshigh(4,5))", "expr=unsigned(hyshigh(4,5))", "expr=signed(hyslow(4,5))",
                             "expr=unsigned(hyslow(4,5))"},
                            [](const RuleObject& rule, int sample) {
                                for (const bool state : {false, true}) {
                                    checkSingleHysteresisRule<int>(rule, sample, state);
                                    checkSingleHysteresisRule<unsigned int>(rule, static_cast<unsigned int>(sample),
                                                                            state);
                                }
                            }),
              0u);
}

TEST_F(Evaluating, ADoubleHysteresisRuleAllocatesNothing)
{
    EXPECT_EQ(allocationsOf({"expr=signed(hyshigh(4,5)hyslow(0,1))", "expr=unsigned(hyslow(0,1)hyshigh(4,5))"},
                            [](const RuleObject& rule, int sample) {
                                for (const bool state : {false, true}) {
                                    bool upper = state;
                                    bool lower = state;
                                    checkDoubleHysteresisRule<int>(rule, sample, upper, lower);
                                    checkDoubleHysteresisRule<unsigned int>(rule, static_cast<unsigned int>(sample),
                                                                            upper, lower);
                                }
                            }),
              0u);
}

class ParsingWithoutMemory : public DiagnosticsTest {};

// Whichever allocation of a parse fails, the parse is refused with one line; with fewer allocations it succeeds.
TEST_F(ParsingWithoutMemory, IsRefusedWithOneLineWhicheverAllocationFails)
{
    const std::vector<std::string> rules = {
        "Expr = signed( value > 1234567 or 7654321 <= value )",
        "Expr = unsigned( delta >= 1234567 );expr=signed(value<5)",
        "Expr = signed( HysLow(1,2) HysHigh(1000,2000) )",
    };
    for (const std::string& text : rules) {
        bool isAccepted = false;
        std::size_t number = 0;
        while (!isAccepted) {
            ++number;
            SCOPED_TRACE(text + " with allocation " + std::to_string(number));
            RuleObject rule;
            bool hasFailed = false;
            {
                const FailingAllocation failing(number);
                isAccepted = parseRule(text, &rule);
                hasFailed = failing.hasFailed();
            }
            ASSERT_EQ(isAccepted, !hasFailed);
            const std::string error =
                errorLine("EventMgmtRulesParsing.cpp", "parseRule", "parseRule() threw exception. (rule='%s')",
                          "parseRule() threw exception. (rule='" + text + "')");
            ASSERT_EQ(m_diagnostics.take(), hasFailed ? Diagnostics{error} : Diagnostics{});
        }
        EXPECT_GT(number, 10u) << text;
    }
}

TEST_F(ParsingWithoutMemory, WritesItsLineAtTheLevelOfErrors)
{
    const std::string text = "expr=signed(value>1234567)";
    const auto parseWithoutMemory = [&text] {
        const FailingAllocation failing(1);
        return parseRule(text, nullptr);
    };
    expectAtEveryTraceLevel(
        parseWithoutMemory, false,
        {errorLine("EventMgmtRulesParsing.cpp", "parseRule", "parseRule() threw exception. (rule='%s')",
                   "parseRule() threw exception. (rule='" + text + "')")});
}

TEST_F(ParsingWithoutMemory, KeepsThePartsThatWereStoredBefore)
{
    const std::string text = "expr=signed(value>1);expr=signed(value<1234567)";
    std::string left;
    for (std::size_t number = 1; left.empty(); ++number) {
        RuleObject rule;
        const FailingAllocation failing(number);
        ASSERT_FALSE(parseRule(text, &rule));
        left = rule.m_expressions.empty() ? "" : described(rule);
    }
    EXPECT_EQ(left, "SIMPLE_EXPRESSION_VALUE: (ParamField > int 1)");
}

// Substitution does allocate: what it throws passes to the caller, and nothing is leaked.
TEST(EvaluatingWithoutMemory, ThrowsBadAllocWhicheverAllocationFails)
{
    const Expression malformed(LOGICAL_AND, Expression(EQUAL, ParamField(), 1), MemoryField());
    const DiagnosticsCapture diagnostics(0);
    bool hasFailed = true;
    std::size_t number = 0;
    while (hasFailed) {
        const FailingAllocation failing(++number);
        bool hasThrown = false;
        try {
            EXPECT_FALSE(checkInt(malformed, 1));
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
        hasFailed = failing.hasFailed();
        ASSERT_EQ(hasThrown, hasFailed);
    }
    EXPECT_GT(number, 5u);
}

}  // namespace
}  // namespace vemorRules
