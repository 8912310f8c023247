#include <gtest/gtest.h>

#include "apps/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace {

using Arguments = std::vector<std::string>;

CommandResult check(const Arguments& arguments, const CommandSetting& setting = {})
{
    Arguments all = {"rule", "check"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProgram(BRANTEL_COMMAND, all, setting);
}

TEST(RuleCheckCommand, SaysWhatAValidRuleMeans)
{
    EXPECT_EQ(check({"expr=signed(value>100)"}),
              (CommandResult{0, "argument 1: valid, signed value rule: raised while value > 100\n", ""}));
    EXPECT_EQ(check({""}), (CommandResult{0, "argument 1: valid, empty rule: decides nothing\n", ""}));
}

TEST(RuleCheckCommand, ShowsWhereARuleIsRefused)
{
    EXPECT_EQ(check({"expr=signed(value =< 5)"}), (CommandResult{1,
                                                                 "argument 1:19: refused: '=<' is not an operator\n"
                                                                 "    expr=signed(value =< 5)\n"
                                                                 "                      ^~\n"
                                                                 "    write '<='\n",
                                                                 ""}));
}

TEST(RuleCheckCommand, ChecksSeveralRulesAndCountsThem)
{
    EXPECT_EQ(check({"expr=unsigned(value<0)", "expr=signed(value>5", "/ later"}),
              (CommandResult{1,
                             "argument 1: valid, unsigned value rule: raised while value < 0\n"
                             "    note: the condition never holds: the rule is never raised\n"
                             "argument 2:12: refused: the ')' of this bracket is missing\n"
                             "    expr=signed(value>5\n"
                             "               ^\n"
                             "    close it with ')'\n"
                             "argument 3: valid, empty rule: decides nothing\n"
                             "3 rules: 2 valid, 1 refused\n",
                             ""}));
}

TEST(RuleCheckCommand, ChecksAFileLineByLine)
{
    const TemporaryDirectory directory;
    directory.write("rules.txt", "expr=signed(delta>=5)\r\n\nexpr=signed(value=5)");

    EXPECT_EQ(
        check({"--file", "rules.txt"}, {"", "", directory.path(), {}}),
        (CommandResult{1,
                       "rules.txt:1: valid, signed delta rule: raised while the change between two samples is >= 5\n"
                       "rules.txt:2: valid, empty rule: decides nothing\n"
                       "rules.txt:3:18: refused: '=' is not an operator\n"
                       "    expr=signed(value=5)\n"
                       "                     ^\n"
                       "    write '==' to compare\n"
                       "3 rules: 2 valid, 1 refused\n",
                       ""}));
}

TEST(RuleCheckCommand, ChecksStandardInput)
{
    EXPECT_EQ(check({"--file", "-"}, {"expr=signed(hyshigh(1,2))\n", "", "", {}}),
              (CommandResult{0,
                             "standard input:1: valid, signed single hysteresis: raised when value > 2, cleared when "
                             "value <= 1\n",
                             ""}));
    EXPECT_EQ(check({"--file", "-"}), (CommandResult{0, "", ""}));
}

TEST(RuleCheckCommand, TellsJsonLines)
{
    const std::string expected =
        R"JSON({"source":"argument","argument":1,"rule":"expr=unsigned(hyshigh(5,5))","valid":true,"type":"SINGLE_HYSTERESIS","unsigned":true,"meaning":"raised when value > 5, cleared when value <= 5","notes":["the hysteresis has equal thresholds: it is a plain comparison"]}
{"source":"argument","argument":2,"rule":"","valid":true,"type":"NO_EXPRESSION","meaning":"decides nothing","notes":[]}
{"source":"argument","argument":3,"rule":"expr=signed(value=\"5\")","valid":false,"column":18,"length":1,"reason":"'=' is not an operator","remedy":"write '==' to compare"}
)JSON";
    EXPECT_EQ(check({"--json", "expr=unsigned(hyshigh(5,5))", "", "expr=signed(value=\"5\")"}),
              (CommandResult{1, expected, ""}));
    EXPECT_EQ(check({"--json", "--file", "-"}, {"expr=signed(value>\xFF)\n", "", "", {}}),
              (CommandResult{
                  1,
                  "{\"source\":\"standard input\",\"line\":1,\"rule\":\"expr=signed(value>\uFFFD)\",\"valid\":false,"
                  "\"column\":19,\"length\":1,\"reason\":\"'\uFFFD' is not a whole number\",\"remedy\":\"write decimal "
                  "digits only, with '-' before them if negative\"}\n",
                  ""}));
}

TEST(RuleCheckCommand, PutsTheCaretBelowTheCharacterWhateverStandsBefore)
{
    EXPECT_EQ(check({"\xC3\xBC\t\x1b expr=signed(value=5)"}), (CommandResult{1,
                                                                             "argument 1:22: refused: '=' is not an "
                                                                             "operator\n"
                                                                             "    \xC3\xBC ? expr=signed(value=5)\n"
                                                                             "                         ^\n"
                                                                             "    write '==' to compare\n",
                                                                             ""}));
}

TEST(RuleCheckCommand, RefusesFilesThatAreNoText)
{
    const TemporaryDirectory directory;
    const CommandSetting setting{"", "", directory.path(), {}};
    directory.write("nul", std::string("expr=signed(value>5)\0\n", 22));
    directory.write("long", std::string(2000000, 'x'));

    EXPECT_EQ(check({"--file", "nul"}, setting),
              (CommandResult{2, "", "brantel: nul:1: the line contains a NUL byte\n"}));
    EXPECT_EQ(check({"--file", "long"}, setting),
              (CommandResult{2, "", "brantel: long:1: the line is longer than 1048576 bytes\n"}));
    EXPECT_EQ(check({"--file", "none"}, setting),
              (CommandResult{2, "", "brantel: cannot read none: No such file or directory\n"}));
    EXPECT_EQ(check({"--file", "."}, setting), (CommandResult{2, "", "brantel: cannot read .: Is a directory\n"}));
    EXPECT_EQ(check({"--file", ""}, setting).exitCode, 2);
}

}  // namespace
