#include <gtest/gtest.h>

#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

CommandResult check(const Arguments& arguments, const CommandSetting& setting = {})
{
    Arguments all = {"rule", "check"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProgram(BRANTEL_COMMAND, all, setting);
}

TEST(RuleCheckCommand, ShowsWhatAValidRuleMeans)
{
    EXPECT_EQ(
        check({"expr=signed(value>100)"}),
        (CommandResult{
            0, "argument 1: valid, signed value rule: raised while value > 100\n1 rule: 1 valid, 0 refused\n", ""}));
    EXPECT_EQ(check({""}),
              (CommandResult{0, "argument 1: valid, empty rule: has no condition\n1 rule: 1 valid, 0 refused\n", ""}));
}

TEST(RuleCheckCommand, ShowsWhereARuleIsRefused)
{
    EXPECT_EQ(check({"expr=signed(value =< 5)"}), (CommandResult{1,
                                                                 "argument 1:19: refused: '=<' is not an operator\n"
                                                                 "    expr=signed(value =< 5)\n"
                                                                 "                      ^~\n"
                                                                 "    write '<='\n"
                                                                 "1 rule: 0 valid, 1 refused\n",
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
                             "argument 3: valid, empty rule: has no condition\n"
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
                       "rules.txt:2: valid, empty rule: has no condition\n"
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
                             "value <= 1\n"
                             "1 rule: 1 valid, 0 refused\n",
                             ""}));
    EXPECT_EQ(check({"--file", "-"}), (CommandResult{0, "0 rules: 0 valid, 0 refused\n", ""}));
    EXPECT_EQ(check({"--file", "-", "--json"}), (CommandResult{0, "", ""}));
}

TEST(RuleCheckCommand, PrintsJsonLines)
{
    const std::string expected =
        R"JSON({"source":"argument","argument":1,"rule":"expr=unsigned(hyshigh(5,5))","valid":true,"type":"SINGLE_HYSTERESIS","unsigned":true,"meaning":"raised when value > 5, cleared when value <= 5","notes":["the hysteresis has equal thresholds: it is a plain comparison"]}
{"source":"argument","argument":2,"rule":"","valid":true,"type":"NO_EXPRESSION","meaning":"has no condition","notes":[]}
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

TEST(RuleCheckCommand, PutsTheCaretBelowTheCharacterWhateverPrecedesIt)
{
    EXPECT_EQ(check({"\xC3\xBC\t\x1b expr=signed(value=5)"}), (CommandResult{1,
                                                                             "argument 1:22: refused: '=' is not an "
                                                                             "operator\n"
                                                                             "    \xC3\xBC ? expr=signed(value=5)\n"
                                                                             "                         ^\n"
                                                                             "    write '==' to compare\n"
                                                                             "1 rule: 0 valid, 1 refused\n",
                                                                             ""}));
}

TEST(RuleCheckCommand, CountsCharactersAsItShowsThem)
{
    // Bytes that are not UTF-8, a C1 control character and a mark that changes the direction of writing.
    const std::string rule =
        "\x80\xFF\xE4\xBD\xC2\x9B\u202E"
        "expr=signed(value=\xFF)";
    EXPECT_EQ(check({rule}), (CommandResult{1,
                                            "argument 1:23: refused: '=' is not an operator\n"
                                            "    \uFFFD\uFFFD\uFFFD??expr=signed(value=\uFFFD)\n"
                                            "                          ^\n"
                                            "    write '==' to compare\n"
                                            "1 rule: 0 valid, 1 refused\n",
                                            ""}));
    EXPECT_EQ(
        check({"--json", rule}),
        (CommandResult{1,
                       "{\"source\":\"argument\",\"argument\":1,\"rule\":\"\uFFFD\uFFFD\uFFFD\\u009b\\u202e"
                       "expr=signed(value=\uFFFD)\",\"valid\":false,\"column\":23,\"length\":1,\"reason\":\"'=' is "
                       "not an operator\",\"remedy\":\"write '==' to compare\"}\n",
                       ""}));
    EXPECT_EQ(
        check({"--json",
               "\x80\x80\x80"
               "expr=signed(value>\xE4\xBD)"})
            .out,
        "{\"source\":\"argument\",\"argument\":1,\"rule\":\"\uFFFD\uFFFD\uFFFDexpr=signed(value>\uFFFD)\",\"valid\":"
        "false,\"column\":22,\"length\":1,\"reason\":\"'\uFFFD' is not a whole number\",\"remedy\":\"write decimal "
        "digits only, with '-' before them if negative\"}\n");
}

TEST(RuleCheckCommand, ShowsTheTextAroundTheFaultOfALongRule)
{
    const std::string blanks(500000, ' ');
    const std::string rule = "expr=signed(" + blanks + "value=5" + blanks + ")\n";
    EXPECT_EQ(check({"--file", "-"}, {rule, "", "", {}}),
              (CommandResult{1,
                             "standard input:1:500018: refused: '=' is not an operator\n"
                             "    ..." +
                                 std::string(55, ' ') + "value=5" + std::string(138, ' ') + "...\n" + "    " +
                                 std::string(63, ' ') +
                                 "^\n"
                                 "    write '==' to compare\n"
                                 "1 rule: 0 valid, 1 refused\n",
                             ""}));
    const CommandResult word = check({"--file", "-"}, {std::string(1000000, 'x') + "\n", "", "", {}});
    EXPECT_EQ(word.exitCode, 1);
    EXPECT_LT(word.out.size(), 1000U) << word.out;
    const CommandResult number =
        check({"--file", "-"}, {"expr=signed(value>" + std::string(1000000, 'x') + ")", "", "", {}});
    EXPECT_EQ(number.exitCode, 1);
    EXPECT_LT(number.out.size(), 1000U) << number.out;
}

TEST(RuleCheckCommand, PrintsNamesWithoutControlCharacters)
{
    EXPECT_EQ(check({"--file", "no\x1b[31m\xC2\x9B\u202E\xFF"}),
              (CommandResult{2, "", "brantel: cannot read no?[31m??\uFFFD: No such file or directory\n"}));
    const TemporaryDirectory directory;
    directory.write("rules\x1b[31m", "expr=signed(value>5)\n");
    directory.write("[rules]", "");
    EXPECT_EQ(check({"--file", "[rules]"}, {"", "", directory.path(), {}}).out, "0 rules: 0 valid, 0 refused\n");
    EXPECT_EQ(check({"--file", "rules\x1b[31m"}, {"", "", directory.path(), {}}).out,
              "rules?[31m:1: valid, signed value rule: raised while value > 5\n1 rule: 1 valid, 0 refused\n");
}

TEST(RuleCheckCommand, RefusesFilesThatAreNotText)
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

}  // namespace brantel
