// Rule objects: what they hold, how they are copied and destroyed, and getOtherType.

#include <algorithm>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "EventMgmtRulesCppObjects.h"
#include "library/rules/RuleTexts.h"
#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

const SourceLines lines{"EventMgmtRulesCppObjects.cpp"};

TEST(RelationalOperatorValues, AreFixed)
{
    const std::vector<int> values = {GREATER_THAN, GREATER_OR_EQUAL, LESS_THAN,   LESS_OR_EQUAL,
                                     EQUAL,        NOT_EQUAL,        LOGICAL_AND, LOGICAL_OR};
    EXPECT_EQ(values, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    static_assert(std::is_same_v<std::underlying_type_t<RelationalOperator>, std::int32_t>);
}

TEST(ExpressionTypeValues, AreFixedAndNamed)
{
    const std::vector<int> values = {NO_EXPRESSION, SIMPLE_EXPRESSION_VALUE, SIMPLE_EXPRESSION_DELTA, SINGLE_HYSTERESIS,
                                     DOUBLE_HYSTERESIS};
    EXPECT_EQ(values, (std::vector<int>{0, 1, 2, 3, 4}));
    static_assert(std::is_same_v<std::underlying_type_t<ExpressionType>, std::int32_t>);

    const std::vector<std::string> names(std::begin(expressionTypeNames), std::end(expressionTypeNames));
    EXPECT_EQ(names, (std::vector<std::string>{"NO_EXPRESSION", "SIMPLE_EXPRESSION_VALUE", "SIMPLE_EXPRESSION_DELTA",
                                               "SINGLE_HYSTERESIS", "DOUBLE_HYSTERESIS"}));
}

TEST(RuleObjects, StartWithoutTypeAndExpressions)
{
    EXPECT_EQ(described(RuleObject()), "NO_EXPRESSION");
}

TEST(Expressions, StartWithEmptyOperands)
{
    const Expression expression;
    EXPECT_TRUE(expression.m_leftOperand.empty());
    EXPECT_TRUE(expression.m_rightOperand.empty());
}

TEST(Expressions, HoldTheOperatorAndTheOperandsTheyAreBuiltFrom)
{
    EXPECT_EQ(described(Expression(LESS_OR_EQUAL, 5, MemoryField())), "(int 5 <= MemoryField)");
}

Expression betweenFiveAndNine()
{
    return {LOGICAL_AND, Expression(GREATER_THAN, ParamField(), 5), Expression(LESS_THAN, ParamField(), 9)};
}

TEST(Expressions, KeepTheirOperandsWhenTheParamFieldOfACopyIsReplaced)
{
    const Expression source = betweenFiveAndNine();
    Expression copy(source);
    boost::any_cast<Expression&>(copy.m_leftOperand).m_leftOperand = 7;

    EXPECT_EQ(described(source), "((ParamField > int 5) and (ParamField < int 9))");
    EXPECT_EQ(described(copy), "((int 7 > int 5) and (ParamField < int 9))");
}

TEST(Expressions, KeepTheirOperandsWhenAnAssignedCopyIsChanged)
{
    const Expression source = betweenFiveAndNine();
    Expression copy;
    copy = source;
    boost::any_cast<Expression&>(copy.m_rightOperand).m_rightOperand = 8u;

    EXPECT_EQ(described(source), "((ParamField > int 5) and (ParamField < int 9))");
    EXPECT_EQ(described(copy), "((ParamField > int 5) and (ParamField < unsigned 8))");
}

TEST(Expressions, CanBeAssignedAPartOfThemselves)
{
    Expression expression = betweenFiveAndNine();
    expression = boost::any_cast<const Expression&>(expression.m_leftOperand);
    EXPECT_EQ(described(expression), "(ParamField > int 5)");
    expression = static_cast<const Expression&>(expression);
    EXPECT_EQ(described(expression), "(ParamField > int 5)");
}

TEST(RuleObjects, ShareNothingWithTheirCopies)
{
    const RuleObject source{SIMPLE_EXPRESSION_VALUE, {betweenFiveAndNine()}};
    RuleObject copy(source);
    copy.m_expressionType = SIMPLE_EXPRESSION_DELTA;
    boost::any_cast<Expression&>(copy.m_expressions[0].m_leftOperand).m_relationalOperator = NOT_EQUAL;

    EXPECT_EQ(described(source), "SIMPLE_EXPRESSION_VALUE: ((ParamField > int 5) and (ParamField < int 9))");
    EXPECT_EQ(described(copy), "SIMPLE_EXPRESSION_DELTA: ((ParamField != int 5) and (ParamField < int 9))");
}

// An operand that records its copies and its end.
class Witness {
public:
    explicit Witness(std::string name) : m_name(std::move(name)) {}
    Witness(const Witness& other) : m_name(other.m_name) { s_events.push_back("copy " + m_name); }
    Witness& operator=(const Witness&) = delete;
    ~Witness() { s_events.push_back("release " + m_name); }

    static std::vector<std::string> takeEvents() { return std::exchange(s_events, {}); }

private:
    std::string m_name;
    static inline std::vector<std::string> s_events;
};

boost::any witness(const char* name)
{
    return Witness(name);
}

TEST(Expressions, CloneTheLeftOperandBeforeTheRightAndReleaseTheRightBeforeTheLeft)
{
    const boost::any left = witness("left");
    const boost::any right = witness("right");
    Witness::takeEvents();
    {
        const Expression expression(EQUAL, left, right);
    }
    EXPECT_EQ(Witness::takeEvents(),
              (std::vector<std::string>{"copy left", "copy right", "release right", "release left"}));
}

// Can be copied once, into an operand, but not with the operand.
struct CopyableOnce {
    CopyableOnce() = default;
    CopyableOnce(const CopyableOnce& other) : m_copies(other.m_copies + 1)
    {
        if (m_copies > 1) {
            throw std::bad_alloc();
        }
    }
    CopyableOnce& operator=(const CopyableOnce&) = delete;
    ~CopyableOnce() = default;
    int m_copies = 0;
};

TEST(Expressions, ReleaseTheLeftOperandWhenTheRightCannotBeCloned)
{
    const boost::any left = witness("left");
    const boost::any right = CopyableOnce();
    Witness::takeEvents();

    EXPECT_THROW(Expression(EQUAL, left, right), std::bad_alloc);
    EXPECT_EQ(Witness::takeEvents(), (std::vector<std::string>{"copy left", "release left"}));
}

TEST(Expressions, ReleaseEveryNestedOperandExactlyOnce)
{
    const std::vector<std::string> names = {"a", "b", "c", "d", "e", "f", "g", "h"};
    {
        std::vector<Expression> level;
        for (std::size_t i = 0; i < names.size(); i += 2) {
            level.emplace_back(EQUAL, witness(names[i].c_str()), witness(names[i + 1].c_str()));
        }
        const Expression tree(LOGICAL_AND, Expression(LOGICAL_OR, level[0], level[1]),
                              Expression(LOGICAL_OR, level[2], level[3]));
        level.clear();
        Witness::takeEvents();  // from here on only the tree holds witnesses
    }
    std::vector<std::string> released = Witness::takeEvents();
    std::sort(released.begin(), released.end());
    EXPECT_EQ(released, (std::vector<std::string>{"release a", "release b", "release c", "release d", "release e",
                                                  "release f", "release g", "release h"}));
}

TEST(Expressions, ReleaseEveryCopyOfAnOperandThatTheyMade)
{
    Witness::takeEvents();
    {
        const Expression source(LOGICAL_AND, Expression(EQUAL, witness("x"), 1), 2);
        Expression copy(source);
        copy.m_relationalOperator = LOGICAL_OR;
        Expression assigned;
        assigned = copy;
    }
    const std::vector<std::string> events = Witness::takeEvents();
    const auto copies = std::count(events.begin(), events.end(), "copy x");
    const auto releases = std::count(events.begin(), events.end(), "release x");
    EXPECT_EQ(releases, copies + 1);  // and the one that was not a copy
}

class GetOtherType : public DiagnosticsTest {};

TEST_F(GetOtherType, OfParamFieldIsMemoryField)
{
    expectAtEveryTraceLevel([] { return &getOtherType(typeid(ParamField)); }, &typeid(MemoryField), {});
}

TEST_F(GetOtherType, OfMemoryFieldIsParamField)
{
    expectAtEveryTraceLevel([] { return &getOtherType(typeid(MemoryField)); }, &typeid(ParamField), {});
}

TEST_F(GetOtherType, OfAnyOtherTypeIsParamFieldAndLogsAnError)
{
    for (const std::type_info* pType : {&typeid(int), &typeid(void), &typeid(Expression)}) {
        SCOPED_TRACE(pType->name());
        expectAtEveryTraceLevel([pType] { return &getOtherType(*pType); }, &typeid(ParamField),
                                {lines.error("getOtherType", "getOtherType(): Unknown typeInfo")});
    }
}

}  // namespace
}  // namespace vemorRules
