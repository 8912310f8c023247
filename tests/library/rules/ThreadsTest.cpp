// Several threads evaluate the same rule object at once, each with its own samples and states.

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "EventMgmtRulesParsing.h"
#include "library/rules/RuleTexts.h"
#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

constexpr int THREADS = 4;
constexpr int SAMPLES = 500;

// The states of a double-hysteresis rule over a course of samples that crosses every threshold, as one text.
template <typename T>
std::string courseOf(const RuleObject& rule)
{
    std::string course;
    bool upper = false;
    bool lower = false;
    for (int i = 0; i < SAMPLES; ++i) {
        checkDoubleHysteresisRule<T>(rule, static_cast<T>((i * 37) % 101), upper, lower);
        course += upper ? (lower ? 'b' : 'u') : (lower ? 'l' : '-');
    }
    return course;
}

std::vector<std::string> coursesOfThreads(const RuleObject& rule)
{
    std::vector<std::string> courses(THREADS);
    std::vector<std::thread> threads;
    for (std::string& course : courses) {
        const bool isSigned = threads.size() % 2 == 0;
        threads.emplace_back(
            [&course, &rule, isSigned] { course = isSigned ? courseOf<int>(rule) : courseOf<unsigned int>(rule); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return courses;
}

class ThreadsOnOneRule : public DiagnosticsTest {
protected:
    // All threads must see the course that one alone sees, and write its lines once each.
    void expectAllToSeeTheSame(const RuleObject& rule, std::size_t distinctCharacters)
    {
        m_diagnostics.take();
        const std::string alone = courseOf<int>(rule);
        EXPECT_EQ(courseOf<unsigned int>(rule), alone);
        Diagnostics expected = m_diagnostics.take();
        expected.reserve(expected.size() * THREADS / 2);
        const Diagnostics once = expected;
        for (int i = 1; i < THREADS / 2; ++i) {
            expected.insert(expected.end(), once.begin(), once.end());
        }
        std::sort(expected.begin(), expected.end());

        EXPECT_EQ(coursesOfThreads(rule), std::vector<std::string>(THREADS, alone));
        Diagnostics actual = m_diagnostics.take();
        std::sort(actual.begin(), actual.end());
        EXPECT_EQ(actual, expected);

        std::string characters = alone;
        std::sort(characters.begin(), characters.end());
        characters.erase(std::unique(characters.begin(), characters.end()), characters.end());
        EXPECT_EQ(characters.size(), distinctCharacters) << "the course crosses too few thresholds";
    }
};

RuleObject doubleHysteresis()
{
    RuleObject rule;
    EXPECT_TRUE(parseRule("expr=signed(hyshigh(70,80) hyslow(10,20))", &rule));
    return rule;
}

TEST_F(ThreadsOnOneRule, SeeTheSameStates)
{
    expectAllToSeeTheSame(doubleHysteresis(), 3);
}

TEST_F(ThreadsOnOneRule, LogEveryEvaluation)
{
    m_diagnostics.setTraceLevel(EVERYTHING);
    expectAllToSeeTheSame(doubleHysteresis(), 3);
}

TEST_F(ThreadsOnOneRule, ReportAMalformedRuleEach)
{
    RuleObject rule = doubleHysteresis();
    rule.m_expressions[0].m_relationalOperator = static_cast<RelationalOperator>(9);
    rule.m_expressions[3].m_rightOperand = boost::any();
    expectAllToSeeTheSame(rule, 2);
}

TEST(ThreadsWithTheirOwnRules, ParseAtOnce)
{
    std::vector<std::string> parsed(THREADS);
    std::vector<std::thread> threads;
    threads.reserve(THREADS);
    for (std::string& text : parsed) {
        threads.emplace_back([&text] {
            for (int i = 0; i < 50; ++i) {
                RuleObject rule;
                parseRule("Expr = Signed( value > 5 or value < -5 )", &rule);
                text = described(rule);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(parsed, std::vector<std::string>(
                          THREADS, "SIMPLE_EXPRESSION_VALUE: ((ParamField > int 5) or (ParamField < int -5))"));
}

}  // namespace
}  // namespace vemorRules
