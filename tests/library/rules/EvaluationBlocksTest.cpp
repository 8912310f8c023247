// The building blocks of the evaluation: fillInValue, check, checkInt and checkHysteresis.

#include <limits>
#include <locale>
#include <string>
#include <utility>
#include <vector>

#include "library/rules/EvaluationTest.h"

namespace vemorRules {
namespace {

constexpr int INT_MINIMUM = std::numeric_limits<int>::min();
constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();
const auto UNKNOWN_OPERATOR = static_cast<RelationalOperator>(8);

class FillInValue : public EvaluationTest {
protected:
    // Filled or not, and the operand afterwards.
    template <typename T>
    static std::string filled(boost::any operand, T value, const std::type_info& typeInfo)
    {
        const bool isFilled = fillInValue(operand, value, typeInfo);
        return (isFilled ? "true " : "false ") + described(operand);
    }
};

TEST_F(FillInValue, ReplacesThePlaceholderByANumberOfItsOwnType)
{
    EXPECT_EQ(filled<int>(ParamField(), -3, typeid(ParamField)), "true int -3");
    EXPECT_EQ(filled<unsigned int>(ParamField(), UINT_MAXIMUM, typeid(ParamField)), "true unsigned 4294967295");
    EXPECT_EQ(filled<int>(MemoryField(), 1, typeid(MemoryField)), "true int 1");
    EXPECT_EQ(filled<unsigned int>(MemoryField(), 0, typeid(MemoryField)), "true unsigned 0");
}

TEST_F(FillInValue, LeavesNumbersAndTheOtherPlaceholderUnchanged)
{
    const std::vector<std::pair<boost::any, const char*>> operands = {
        {5, "true int 5"}, {5u, "true unsigned 5"}, {MemoryField(), "true MemoryField"}};
    for (const auto& [operand, result] : operands) {
        SCOPED_TRACE(result);
        expectAtEveryTraceLevel([o = operand] { return filled<int>(o, 9, typeid(ParamField)); }, result, {});
        expectAtEveryTraceLevel([o = operand] { return filled<unsigned int>(o, 9, typeid(ParamField)); }, result, {});
    }
    EXPECT_EQ(filled<int>(ParamField(), 9, typeid(MemoryField)), "true ParamField");
}

TEST_F(FillInValue, FillsNestedExpressionsOnBothSides)
{
    const Expression tree(LOGICAL_AND, Expression(LOGICAL_OR, MemoryField(), comparison(LESS_THAN, 3u)),
                          Expression(EQUAL, 4, ParamField()));
    EXPECT_EQ(filled<int>(tree, 7, typeid(ParamField)),
              "true ((MemoryField or (int 7 < unsigned 3)) and (int 4 == int "
              "7))");
    EXPECT_EQ(filled<unsigned int>(tree, 1, typeid(MemoryField)),
              "true ((unsigned 1 or (ParamField < unsigned 3)) and (int 4 == ParamField))");
}

TEST_F(FillInValue, ReportsAnOperandOfUnknownTypeAndLeavesIt)
{
    struct Foreign {};
    const std::vector<boost::any> operands = {boost::any(), std::string("5"), 5L, 5.0, true, Foreign(), 'c'};
    for (const boost::any& operand : operands) {
        SCOPED_TRACE(operand.type().name());
        const std::string result = "false " + described(operand);
        expectAtEveryTraceLevel([&operand] { return filled<int>(operand, 1, typeid(ParamField)); }, result,
                                unknownTypeToFillIn<int>());
        expectAtEveryTraceLevel([&operand] { return filled<unsigned int>(operand, 1, typeid(MemoryField)); }, result,
                                unknownTypeToFillIn<unsigned int>());
    }
}

TEST_F(FillInValue, LeavesAnExpressionUnchangedWhenItsRightSideFails)
{
    const Expression tree(LOGICAL_AND, ParamField(), boost::any());
    EXPECT_EQ(filled<int>(tree, 7, typeid(ParamField)), "false (ParamField and empty)");
    EXPECT_EQ(m_diagnostics.take(), unknownTypeToFillIn<int>());
}

TEST_F(FillInValue, DoesNotLookAtTheRightSideWhenTheLeftFails)
{
    const Expression tree(LOGICAL_AND, boost::any(), boost::any());
    EXPECT_EQ(filled<unsigned int>(tree, 7, typeid(ParamField)), "false (empty and empty)");
    EXPECT_EQ(m_diagnostics.take(), unknownTypeToFillIn<unsigned int>());
}

TEST_F(FillInValue, LeavesTheWholeTreeWhenSomethingDeepInsideFails)
{
    const Expression tree(LOGICAL_AND, comparison(EQUAL, 1),
                          Expression(LOGICAL_OR, ParamField(), Expression(EQUAL, ParamField(), std::string("x"))));
    EXPECT_EQ(filled<int>(tree, 7, typeid(ParamField)),
              "false ((ParamField == int 1) and (ParamField or (ParamField == foreign)))");
    EXPECT_EQ(m_diagnostics.take(), unknownTypeToFillIn<int>());
}

TEST_F(FillInValue, ReportsATypeThatIsNotAPlaceholderAndContinues)
{
    const std::string condition = "(typeInfo == typeid(ParamField)) || (typeInfo == typeid(MemoryField))";
    const Diagnostics once = {report(condition, fillInValueSignature<int>),
                              lines.error("getOtherType", "getOtherType(): Unknown typeInfo")};
    // The type named is replaced nevertheless, after numbers were left as they are; ParamField is the other
    // placeholder.
    struct Foreign {};
    expectAtEveryTraceLevel([] { return filled<int>(Foreign(), 1, typeid(Foreign)); }, "true int 1", once);
    expectAtEveryTraceLevel([] { return filled<int>(ParamField(), 1, typeid(Foreign)); }, "true ParamField", once);
    expectAtEveryTraceLevel([] { return filled<int>(5, 1, typeid(int)); }, "true int 5", once);
    expectAtEveryTraceLevel([] { return filled<int>(5u, 1, typeid(unsigned int)); }, "true unsigned 5", once);
    expectAtEveryTraceLevel([] { return filled<int>(MemoryField(), 1, typeid(Foreign)); }, "false MemoryField",
                            once + unknownTypeToFillIn<int>());
    expectAtEveryTraceLevel([] { return filled<int>(Expression(EQUAL, 1, Foreign()), 2, typeid(Foreign)); },
                            "true (int 1 == int 2)", once + once + once);

    EXPECT_EQ(filled<unsigned int>(Expression(EQUAL, 1, 2), 3, typeid(Expression)), "true unsigned 3");
    EXPECT_EQ(m_diagnostics.take(), (Diagnostics{report(condition, fillInValueSignature<unsigned int>),
                                                 lines.error("getOtherType", "getOtherType(): Unknown typeInfo")}));
}

class Check : public EvaluationTest {};

TEST_F(Check, ConvertsNumbersAsTheSame32Bits)
{
    EXPECT_EQ(check<int>(-1), -1);
    EXPECT_EQ(check<int>(UINT_MAXIMUM), -1);
    EXPECT_EQ(check<int>(2147483648u), INT_MINIMUM);
    EXPECT_EQ(check<unsigned int>(-1), UINT_MAXIMUM);
    EXPECT_EQ(check<unsigned int>(INT_MINIMUM), 2147483648u);
    EXPECT_EQ(check<unsigned int>(7u), 7u);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(Check, AppliesEveryOperator)
{
    struct Case {
        RelationalOperator relationalOperator;
        // For 3 and 5, 5 and 5, 7 and 5, 0 and 5, 5 and 0, 0 and 0.
        std::vector<int> results;
    };
    const std::vector<Case> cases = {
        {GREATER_THAN, {0, 0, 1, 0, 1, 0}}, {GREATER_OR_EQUAL, {0, 1, 1, 0, 1, 1}},
        {LESS_THAN, {1, 0, 0, 1, 0, 0}},    {LESS_OR_EQUAL, {1, 1, 0, 1, 0, 1}},
        {EQUAL, {0, 1, 0, 0, 0, 1}},        {NOT_EQUAL, {1, 0, 1, 1, 1, 0}},
        {LOGICAL_AND, {1, 1, 1, 0, 0, 0}},  {LOGICAL_OR, {1, 1, 1, 1, 1, 0}},
    };
    const std::vector<std::pair<int, int>> operands = {{3, 5}, {5, 5}, {7, 5}, {0, 5}, {5, 0}, {0, 0}};
    for (const Case& c : cases) {
        std::vector<int> signedResults;
        std::vector<int> unsignedResults;
        for (const auto& [left, right] : operands) {
            const Expression expression(c.relationalOperator, left, right);
            signedResults.push_back(check<int>(expression));
            unsignedResults.push_back(static_cast<int>(check<unsigned int>(expression)));
        }
        EXPECT_EQ(signedResults, c.results) << "operator " << c.relationalOperator;
        EXPECT_EQ(unsignedResults, c.results) << "operator " << c.relationalOperator;
    }
}

TEST_F(Check, ComparesAsItsInstanceWhateverTheOperandsHold)
{
    for (const boost::any& minusOne : std::vector<boost::any>{-1, UINT_MAXIMUM}) {
        for (const boost::any& five : std::vector<boost::any>{5, 5u}) {
            EXPECT_EQ(check<int>(Expression(GREATER_THAN, minusOne, five)), 0);
            EXPECT_EQ(check<unsigned int>(Expression(GREATER_THAN, minusOne, five)), 1u);
            EXPECT_EQ(check<int>(Expression(LESS_OR_EQUAL, minusOne, five)), 1);
            EXPECT_EQ(check<unsigned int>(Expression(LESS_OR_EQUAL, minusOne, five)), 0u);
            EXPECT_EQ(check<int>(Expression(EQUAL, minusOne, -1)), 1);
            EXPECT_EQ(check<unsigned int>(Expression(EQUAL, minusOne, -1)), 1u);
        }
    }
    EXPECT_EQ(check<int>(Expression(LESS_THAN, INT_MINIMUM, INT_MAXIMUM)), 1);
    EXPECT_EQ(check<unsigned int>(Expression(LESS_THAN, INT_MINIMUM, INT_MAXIMUM)), 0u);
}

TEST_F(Check, ReducesNestedExpressionsToOneOrZero)
{
    EXPECT_EQ(check<int>(Expression(EQUAL, Expression(LOGICAL_AND, 7, -7), 1)), 1);
    EXPECT_EQ(check<unsigned int>(Expression(GREATER_THAN, 1, Expression(LOGICAL_OR, 0, Expression(EQUAL, 2, 3)))), 1u);
}

TEST_F(Check, ReportsAPlaceholderThatIsNotFilledIn)
{
    const std::string param = lines.error("check", "ParamField not filled in");
    const std::string memory = lines.error("check", "MemoryField not filled in");
    expectAtEveryTraceLevel([] { return check<int>(ParamField()); }, 0, notReducible<int>(param));
    expectAtEveryTraceLevel([] { return check<unsigned int>(ParamField()); }, 0u, notReducible<unsigned int>(param));
    expectAtEveryTraceLevel([] { return check<int>(MemoryField()); }, 0, notReducible<int>(memory));
    expectAtEveryTraceLevel([] { return check<unsigned int>(MemoryField()); }, 0u, notReducible<unsigned int>(memory));
}

TEST_F(Check, ReportsAnOperandOfUnknownType)
{
    const std::string unknown = lines.error("check", "check(): unknown type");
    for (const boost::any& operand : std::vector<boost::any>{boost::any(), std::string("1"), 1L, true}) {
        SCOPED_TRACE(operand.type().name());
        expectAtEveryTraceLevel([&operand] { return check<int>(operand); }, 0, notReducible<int>(unknown));
        expectAtEveryTraceLevel([&operand] { return check<unsigned int>(operand); }, 0u,
                                notReducible<unsigned int>(unknown));
    }
}

TEST_F(Check, EvaluatesBothSidesLeftFirstAndCountsWhatItCannotReduceAsZero)
{
    const Diagnostics both = notReducible<int>(lines.error("check", "ParamField not filled in")) +
                             notReducible<int>(lines.error("check", "check(): unknown type"));
    expectAtEveryTraceLevel([] { return check<int>(Expression(EQUAL, ParamField(), boost::any())); }, 1, both);
    expectAtEveryTraceLevel([] { return check<int>(Expression(LOGICAL_AND, ParamField(), boost::any())); }, 0, both);
}

TEST_F(Check, TakesNoShortCut)
{
    const Diagnostics right = notReducible<int>(lines.error("check", "MemoryField not filled in"));
    const Expression no(EQUAL, 1, 2);
    const Expression yes(EQUAL, 1, 1);
    expectAtEveryTraceLevel([&] { return check<int>(Expression(LOGICAL_AND, no, MemoryField())); }, 0, right);
    expectAtEveryTraceLevel([&] { return check<int>(Expression(LOGICAL_OR, yes, MemoryField())); }, 1, right);
}

TEST_F(Check, ReportsAnOperatorOutsideTheTableWithoutALine)
{
    for (const int number : {-1, 8, INT_MAXIMUM, INT_MINIMUM}) {
        SCOPED_TRACE(number);
        const Expression expression(static_cast<RelationalOperator>(number), 1, 1);
        expectAtEveryTraceLevel([&] { return check<int>(expression); }, 0, {report("false", checkSignature<int>)});
        expectAtEveryTraceLevel([&] { return check<unsigned int>(expression); }, 0u,
                                {report("false", checkSignature<unsigned int>)});
    }
}

TEST_F(Check, EvaluatesTheOperandsOfAnUnknownOperatorFirst)
{
    expectAtEveryTraceLevel([] { return check<int>(Expression(UNKNOWN_OPERATOR, 1, ParamField())); }, 0,
                            notReducible<int>(lines.error("check", "ParamField not filled in")) +
                                Diagnostics{report("false", checkSignature<int>)});
}

// While one lives, the program's locale groups digits by three: 1'000'000.
class GroupingLocale {
public:
    GroupingLocale() : m_before(std::locale::global(std::locale(std::locale(), new Grouping))) {}
    ~GroupingLocale() { std::locale::global(m_before); }
    GroupingLocale(const GroupingLocale&) = delete;
    GroupingLocale& operator=(const GroupingLocale&) = delete;

private:
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '\''; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale m_before;
};

class CheckInt : public EvaluationTest {};

TEST_F(CheckInt, EvaluatesAndLogsTheValueAndTheResult)
{
    const Expression aboveFive = comparison(GREATER_THAN, 5);
    expectAtEveryTraceLevel([&] { return checkInt<int>(aboveFive, 42); }, true,
                            {lines.debug("checkInt", "%s", "x=42: result=1")});
    expectAtEveryTraceLevel([&] { return checkInt<int>(aboveFive, -2147483647 - 1); }, false,
                            {lines.debug("checkInt", "%s", "x=-2147483648: result=0")});
    expectAtEveryTraceLevel([&] { return checkInt<unsigned int>(aboveFive, UINT_MAXIMUM); }, true,
                            {lines.debug("checkInt", "%s", "x=4294967295: result=1")});
}

TEST_F(CheckInt, LogsTheValueWithoutSeparatorsWhateverTheLocale)
{
    const GroupingLocale grouping;
    expectAtEveryTraceLevel([] { return checkInt<int>(comparison(GREATER_THAN, 5), 1000000); }, true,
                            {lines.debug("checkInt", "%s", "x=1000000: result=1")});
}

TEST_F(CheckInt, ComparesTheOtherOperandAndNotTheValueWithoutAPlaceholder)
{
    expectAtEveryTraceLevel([] { return checkInt<int>(Expression(EQUAL, 5, 5), 7); }, true,
                            {lines.debug("checkInt", "%s", "x=7: result=1")});
    expectAtEveryTraceLevel([] { return checkInt<unsigned int>(Expression(EQUAL, 5u, 6u), 5); }, false,
                            {lines.debug("checkInt", "%s", "x=5: result=0")});
    expectAtEveryTraceLevel([] { return checkInt<int>(Expression(GREATER_THAN, 5, MemoryField()), 7); }, true,
                            notReducible<int>(lines.error("check", "MemoryField not filled in")) +
                                Diagnostics{lines.debug("checkInt", "%s", "x=7: result=1")});
    expectAtEveryTraceLevel([] { return checkInt<int>(Expression(LESS_THAN, 5, boost::any()), 7); }, false,
                            unknownTypeToFillIn<int>());
}

TEST_F(CheckInt, ComparesAsItsInstance)
{
    for (const boost::any& five : std::vector<boost::any>{5, 5u}) {
        EXPECT_FALSE(checkInt<int>(comparison(GREATER_THAN, five), -1));
        EXPECT_TRUE(checkInt<unsigned int>(comparison(GREATER_THAN, five), UINT_MAXIMUM));
    }
}

TEST_F(CheckInt, LeavesTheExpressionAsItIs)
{
    const Expression expression(LOGICAL_AND, comparison(GREATER_THAN, 5), Expression(EQUAL, boost::any(), 1));
    const std::string before = described(expression);
    checkInt<int>(expression, 42);
    EXPECT_EQ(described(expression), before);
}

TEST_F(CheckInt, IsFalseWithoutADebugLineWhenAnOperandIsEmpty)
{
    expectAtEveryTraceLevel([] { return checkInt<int>(comparison(EQUAL, boost::any()), 1); }, false,
                            unknownTypeToFillIn<int>());
    expectAtEveryTraceLevel([] { return checkInt<unsigned int>(Expression(), 1); }, false,
                            unknownTypeToFillIn<unsigned int>());
}

TEST_F(CheckInt, ReportsAPlaceholderLeftOnTheRightOfASettledAnd)
{
    const Expression expression(LOGICAL_AND, comparison(GREATER_THAN, 5), MemoryField());
    expectAtEveryTraceLevel([&] { return checkInt<int>(expression, 1); }, false,
                            notReducible<int>(lines.error("check", "MemoryField not filled in")) +
                                Diagnostics{lines.debug("checkInt", "%s", "x=1: result=0")});
}

TEST_F(CheckInt, ReportsAnUnknownOperatorAndLogsTheResult)
{
    expectAtEveryTraceLevel([] { return checkInt<int>(comparison(UNKNOWN_OPERATOR, 1), 1); }, false,
                            {report("false", checkSignature<int>), lines.debug("checkInt", "%s", "x=1: result=0")});
}

class CheckHysteresis : public EvaluationTest {
protected:
    struct Step {
        int sample;
        bool previousState;
        bool newState;
    };

    static void expectSteps(const Expression& first, const Expression& second, const std::vector<Step>& steps)
    {
        for (const Step& step : steps) {
            EXPECT_EQ(checkHysteresis<int>(first, second, step.sample, step.previousState), step.newState)
                << step.sample << " with " << step.previousState;
            if (step.sample >= 0) {
                EXPECT_EQ(checkHysteresis<unsigned int>(first, second, static_cast<unsigned int>(step.sample),
                                                        step.previousState),
                          step.newState)
                    << step.sample << "u with " << step.previousState;
            }
        }
    }

    const Expression m_upperFirst{LOGICAL_AND, MemoryField(), comparison(GREATER_THAN, 70)};
    const Expression m_upperSecond{LOGICAL_OR, MemoryField(), comparison(GREATER_THAN, 80)};
    const Expression m_lowerFirst{LOGICAL_AND, MemoryField(), comparison(LESS_THAN, 20)};
    const Expression m_lowerSecond{LOGICAL_OR, MemoryField(), comparison(LESS_THAN, 10)};
};

TEST_F(CheckHysteresis, OfAnUpperPairRisesAboveHighAndFallsAtLow)
{
    expectSteps(m_upperFirst, m_upperSecond,
                {{75, false, false},
                 {81, false, true},
                 {75, true, true},
                 {71, true, true},
                 {70, true, false},
                 {80, false, false},
                 {80, true, true},
                 {81, true, true},
                 {-100, true, false}});
}

TEST_F(CheckHysteresis, OfALowerPairRisesBelowLowAndFallsAtHigh)
{
    expectSteps(m_lowerFirst, m_lowerSecond,
                {{9, false, true},
                 {15, true, true},
                 {19, true, true},
                 {20, true, false},
                 {10, false, false},
                 {10, true, true},
                 {15, false, false},
                 {-100, false, true}});
}

TEST_F(CheckHysteresis, LogsTheSampleWithoutSeparatorsWhateverTheLocale)
{
    const GroupingLocale grouping;
    expectAtEveryTraceLevel([this] { return checkHysteresis<int>(m_upperFirst, m_upperSecond, 1000000, false); }, true,
                            {lines.debug("checkHysteresis", "%s", "x=1000000: result=1")});
}

TEST_F(CheckHysteresis, LogsTheSampleAndTheNewState)
{
    expectAtEveryTraceLevel([this] { return checkHysteresis<int>(m_lowerFirst, m_lowerSecond, -7, false); }, true,
                            {lines.debug("checkHysteresis", "%s", "x=-7: result=1")});
    expectAtEveryTraceLevel(
        [this] { return checkHysteresis<unsigned int>(m_lowerFirst, m_lowerSecond, UINT_MAXIMUM, true); }, false,
        {lines.debug("checkHysteresis", "%s", "x=4294967295: result=0")});
}

TEST_F(CheckHysteresis, ComparesIntThresholdsAsItsInstance)
{
    // -294967296 has the bits of 4000000000.
    const Expression first(LOGICAL_AND, MemoryField(), comparison(GREATER_THAN, 10));
    const Expression second(LOGICAL_OR, MemoryField(), comparison(GREATER_THAN, -294967296));
    EXPECT_FALSE(checkHysteresis<unsigned int>(first, second, 4000000000u, false));
    EXPECT_TRUE(checkHysteresis<unsigned int>(first, second, 4000000001u, false));
    EXPECT_TRUE(checkHysteresis<int>(first, second, 0, false));
}

TEST_F(CheckHysteresis, GivesTheSecondExpressionTheResultOfTheFirst)
{
    const Expression isMemory(EQUAL, MemoryField(), 1);
    const Expression isNotMemory(NOT_EQUAL, MemoryField(), 1);
    EXPECT_TRUE(checkHysteresis<int>(isMemory, isMemory, 0, true));
    EXPECT_FALSE(checkHysteresis<int>(isMemory, isNotMemory, 0, true));
    EXPECT_TRUE(checkHysteresis<int>(isNotMemory, isNotMemory, 0, true));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(CheckHysteresis, AcceptsAnyTwoExpressions)
{
    const Expression first(LOGICAL_AND, Expression(LOGICAL_OR, comparison(EQUAL, 3u), MemoryField()), 1);
    EXPECT_TRUE(checkHysteresis<int>(first, comparison(EQUAL, 3), 3, false));
    EXPECT_FALSE(checkHysteresis<unsigned int>(first, comparison(EQUAL, 4), 3, true));
}

TEST_F(CheckHysteresis, IsFalseWithoutADebugLineWhenAFillFails)
{
    const Expression good(LOGICAL_AND, MemoryField(), comparison(GREATER_THAN, 70));
    const Expression bad(LOGICAL_AND, MemoryField(), boost::any());
    expectAtEveryTraceLevel([&] { return checkHysteresis<int>(bad, bad, 75, true); }, false,
                            unknownTypeToFillIn<int>());
    expectAtEveryTraceLevel([&] { return checkHysteresis<unsigned int>(good, bad, 75, true); }, false,
                            unknownTypeToFillIn<unsigned int>());
}

TEST_F(CheckHysteresis, ReportsAnUnknownOperatorOfEitherExpression)
{
    const Expression unknown(UNKNOWN_OPERATOR, MemoryField(), comparison(GREATER_THAN, 70));
    const std::string reported = report("false", checkSignature<int>);
    // The first counts as 0 for the second.
    expectAtEveryTraceLevel([&] { return checkHysteresis<int>(unknown, m_upperSecond, 75, true); }, false,
                            {reported, lines.debug("checkHysteresis", "%s", "x=75: result=0")});
    expectAtEveryTraceLevel([&] { return checkHysteresis<int>(unknown, m_upperSecond, 81, false); }, true,
                            {reported, lines.debug("checkHysteresis", "%s", "x=81: result=1")});
    expectAtEveryTraceLevel([&] { return checkHysteresis<int>(m_upperFirst, unknown, 81, true); }, false,
                            {reported, lines.debug("checkHysteresis", "%s", "x=81: result=0")});
}

}  // namespace
}  // namespace vemorRules
