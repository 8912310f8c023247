#include <csignal>
#include <random>

#include <gtest/gtest.h>

#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

CommandResult eval(const Arguments& arguments, const CommandSetting& setting)
{
    Arguments all = {"rule", "eval"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProgram(BRANTEL_COMMAND, all, setting);
}

CommandResult evalInput(const Arguments& arguments, const std::string& input)
{
    return eval(arguments, {input, "", "", {}});
}

TEST(RuleEvalCommand, PrintsEachChangeOfState)
{
    EXPECT_EQ(evalInput({"expr=signed(hyshigh(65,80))"}, "70\n85\n75\n60\n50\n"),
              (CommandResult{0,
                             "sample 2, value 85: raised\n"
                             "sample 4, value 60: cleared\n"
                             "5 samples, 0 skipped, 5 evaluations\n"
                             "raised 1 time, longest 2 samples\n",
                             ""}));
}

TEST(RuleEvalCommand, PrintsEverySampleOnRequest)
{
    EXPECT_EQ(evalInput({"--all", "expr=unsigned(delta>=10)"}, "70\n60\n40\n41\n40\n"),
              (CommandResult{0,
                             "sample 1, value 70: no sample before to compare with\n"
                             "sample 2, value 60: raised\n"
                             "sample 3, value 40: stays raised\n"
                             "sample 4, value 41: cleared\n"
                             "sample 5, value 40: stays cleared\n"
                             "5 samples, 0 skipped, 4 evaluations\n"
                             "raised 1 time, longest 2 samples\n",
                             ""}));
}

TEST(RuleEvalCommand, PrintsBothConditionsOfADoubleHysteresisWithTimes)
{
    const std::string csv = "time,temp\n10,75\n12.5,81\n13,9\n20,15\n30,20\n";
    EXPECT_EQ(evalInput({"expr=signed(hyslow(10,20) hyshigh(70,80))", "--column", "temp"}, csv),
              (CommandResult{0,
                             "sample 2, time 12.5, value 81: upper raised\n"
                             "sample 3, time 13, value 9: upper cleared\n"
                             "sample 3, time 13, value 9: lower raised\n"
                             "sample 5, time 30, value 20: lower cleared\n"
                             "5 samples, 0 skipped, 5 evaluations\n"
                             "upper raised 1 time, longest 1 sample, 0.5 s\n"
                             "lower raised 1 time, longest 2 samples, 17 s\n",
                             ""}));
}

TEST(RuleEvalCommand, TakesTimesFromTheColumnOfThatNameAndSamplesFromTheOther)
{
    const std::string expected =
        "sample 2, time 15, value 8: raised\n2 samples, 0 skipped, 2 evaluations\nraised 1 time, longest 1 sample, 0 "
        "s\n";
    const char* const rule = "expr=signed(value>5)";
    EXPECT_EQ(evalInput({rule}, "time,temp\n10,1\n15,8\n").out, expected);
    EXPECT_EQ(evalInput({rule}, "temp,TimeStamp\n1,10\n8,15\n").out, expected);
    EXPECT_EQ(evalInput({rule, "--time-column", "at"}, "temp,at\n1,10\n8,15\n").out, expected);
    EXPECT_EQ(evalInput({rule, "--time-column", "at", "--column", "2"}, "time,temp,at\n1,1,10\n2,8,15\n").out,
              expected);
    // A column that holds the samples does not hold their times too.
    const std::string withoutTime =
        "sample 2, value 8: raised\n2 samples, 0 skipped, 2 evaluations\nraised 1 time, longest 1 sample\n";
    EXPECT_EQ(evalInput({rule}, "time\n1\n8\n").out, withoutTime);
    EXPECT_EQ(evalInput({rule, "--column", "time"}, "time,temp\n1,0\n8,0\n").out, withoutTime);
}

TEST(RuleEvalCommand, PrintsJsonLines)
{
    const std::string delta =
        R"({"sample":1,"line":2,"time":"2024-05-01T00:00:00Z","value":1,"state":null,"changed":false}
{"sample":2,"line":3,"time":"2024-05-01T00:01:00Z","value":9,"state":"raised","changed":true}
{"summary":{"samples":2,"skipped":0,"evaluations":1,"conditions":[{"times_raised":1,"longest_samples":1,"longest_seconds":0.0}]}}
)";
    EXPECT_EQ(evalInput({"--json", "--all", "expr=signed(delta>5)", "--column", "2", "--time-column", "t"},
                        "t,v\n2024-05-01T00:00:00Z,1\n2024-05-01T00:01:00Z,9\n"),
              (CommandResult{0, delta, ""}));

    const std::string doubleHysteresis =
        R"({"sample":2,"line":2,"value":3,"condition":"upper","state":"raised","changed":true}
{"summary":{"samples":2,"skipped":0,"evaluations":2,"conditions":[{"condition":"upper","times_raised":1,"longest_samples":1,"longest_seconds":null},{"condition":"lower","times_raised":0,"longest_samples":0,"longest_seconds":null}]}}
)";
    EXPECT_EQ(evalInput({"--json", "expr=signed(hyshigh(1,2)hyslow(1,1))"}, "1\n3\n"),
              (CommandResult{0, doubleHysteresis, ""}));
}

TEST(RuleEvalCommand, SkipsRowsWithoutASampleAndNamesThem)
{
    EXPECT_EQ(evalInput({"expr=unsigned(delta>5)"}, "1\n\n-1\nx\n9\n"),
              (CommandResult{0,
                             "sample 5, value 9: raised\n"
                             "5 samples, 3 skipped, 1 evaluation\n"
                             "raised 1 time, longest 1 sample\n",
                             "brantel: standard input:2: sample 2: the line is empty, skipped\n"
                             "brantel: standard input:3: sample 3: -1 is out of range, 0 to 4294967295, skipped\n"
                             "brantel: standard input:4: sample 4: 'x' is not a whole number, skipped\n"}));
}

TEST(RuleEvalCommand, EndsAtARowWithoutASampleOnRequest)
{
    EXPECT_EQ(evalInput({"--on-error", "fail", "expr=signed(value>0)"}, "1\n2147483648\n2\n"),
              (CommandResult{2, "sample 1, value 1: raised\n",
                             "brantel: standard input:2: sample 2: 2147483648 is out of range, -2147483648 to "
                             "2147483647\n"}));
}

TEST(RuleEvalCommand, TakesTheRangeOfSamplesFromTheRule)
{
    EXPECT_EQ(
        evalInput({"expr=unsigned(value==4294967295)"}, "4294967295\n").out,
        "sample 1, value 4294967295: raised\n1 sample, 0 skipped, 1 evaluation\nraised 1 time, longest 1 sample\n");
    EXPECT_EQ(evalInput({"expr=signed(value==-2147483648)"}, "-2147483648\n").out,
              "sample 1, value -2147483648: raised\n1 sample, 0 skipped, 1 evaluation\nraised 1 time, longest 1 "
              "sample\n");
    // "unsigned(" before the first "=" does not make the rule unsigned.
    EXPECT_EQ(evalInput({"exprunsigned(value<=-5)"}, "-5\n").out,
              "sample 1, value -5: raised\n1 sample, 0 skipped, 1 evaluation\nraised 1 time, longest 1 sample\n");
}

TEST(RuleEvalCommand, RefusesARuleWithItsReason)
{
    EXPECT_EQ(evalInput({"expr=signed(value=<2)"}, "1\n"), (CommandResult{1, "",
                                                                          "brantel: rule:18: refused: '=<' is not an "
                                                                          "operator\n"
                                                                          "    expr=signed(value=<2)\n"
                                                                          "                     ^~\n"
                                                                          "    write '<='\n"}));
    EXPECT_EQ(evalInput({""}, "1\n"),
              (CommandResult{
                  1, "", "brantel: rule: refused: there is nothing to evaluate: the rule is empty or a comment\n"}));
    EXPECT_EQ(evalInput({"expr=signed(value>1);expr=signed(value>1)"}, "1\n"),
              (CommandResult{1, "",
                             "brantel: rule: refused: a rule of several parts is never evaluated: make each part a "
                             "rule of its own\n"}));
}

TEST(RuleEvalCommand, PrintsARefusalAsJson)
{
    const std::string atItsPlace =
        "{\"refused\":{\"rule\":\"expr=signed(value=<2)\",\"column\":18,\"length\":2,"
        "\"reason\":\"'=<' is not an operator\",\"remedy\":\"write '<='\"}}\n";
    EXPECT_EQ(evalInput({"--json", "expr=signed(value=<2)"}, "1\n"), (CommandResult{1, atItsPlace, ""}));
    const std::string asAWhole =
        "{\"refused\":{\"rule\":\"\",\"reason\":\"there is nothing to evaluate: the rule is "
        "empty or a comment\"}}\n";
    EXPECT_EQ(evalInput({"--json", ""}, "1\n"), (CommandResult{1, asAWhole, ""}));
}

TEST(RuleEvalCommand, OmitsTheLongestTimeIfTimesGoBackOrAreOfTwoKindsOrDoNotExist)
{
    const auto lastLineOf = [](const std::string& times) {
        const std::string out =
            evalInput({"expr=signed(value>5)", "--time-column", "t", "--column", "v"}, "t,v\n" + times).out;
        return out.substr(out.rfind('\n', out.size() - 2) + 1);
    };
    const std::string unknown = "raised 1 time, longest 3 samples\n";
    EXPECT_EQ(lastLineOf("10,6\n20,7\n30,8\n"), "raised 1 time, longest 3 samples, 20 s\n");
    EXPECT_EQ(lastLineOf("30,6\n20,7\n10,8\n"), unknown);
    EXPECT_EQ(lastLineOf("10,6\n30,7\n20,8\n"), unknown);
    EXPECT_EQ(lastLineOf("1,6\n2024-05-01T12:30:00,7\n3,8\n"), unknown);
    EXPECT_EQ(lastLineOf("2024-05-01T12:30:00,6\n5,7\n2024-05-01T12:30:10,8\n"), unknown);
    EXPECT_EQ(lastLineOf("2023-02-28T00:00:00,6\n2023-02-29T00:00:00,7\n2023-03-01T00:00:00,8\n"), unknown);
    // Times may go back while nothing is raised.
    EXPECT_EQ(lastLineOf("50,1\n10,6\n20,7\n30,8\n"), "raised 1 time, longest 3 samples, 20 s\n");
}

TEST(RuleEvalCommand, TakesTheHeaderFromTheFirstRowOrFromTheCaller)
{
    const char* const rule = "expr=signed(value>5)";
    EXPECT_EQ(evalInput({rule, "--header", "yes"}, "1\n9\n").out,
              "sample 1, value 9: raised\n1 sample, 0 skipped, 1 evaluation\nraised 1 time, longest 1 sample\n");
    EXPECT_EQ(evalInput({rule, "--header", "no"}, "load\n9\n"),
              (CommandResult{0,
                             "sample 2, value 9: raised\n2 samples, 1 skipped, 1 evaluation\nraised 1 time, longest 1 "
                             "sample\n",
                             "brantel: standard input:1: sample 1: 'load' is not a whole number, skipped\n"}));
    EXPECT_EQ(evalInput({rule, "--header", "auto"}, "load\n9\n"), evalInput({rule}, "load\n9\n"));
}

TEST(RuleEvalCommand, PrintsNamesWithoutControlCharacters)
{
    EXPECT_EQ(
        evalInput({"expr=signed(value>5)", "--column", "\x1b[31m\xC2\x9B\u202E\xFF"}, "a\x1b[2J,b\n1,2\n"),
        (CommandResult{2, "",
                       "brantel: standard input:1: there is no column '?[31m??\uFFFD'; the columns are 1 'a?[2J', "
                       "2 'b'\n"}));
    EXPECT_EQ(evalInput({"expr=signed(value>5)"}, "\x1b[2J\xC2\x9B\n9\n").err,
              "brantel: standard input:1: sample 1: '?[2J?' is not a whole number, skipped\n");
}

TEST(RuleEvalCommand, RefusesInputThatItCannotRead)
{
    const TemporaryDirectory directory;
    const CommandSetting setting{"", "", directory.path(), {}};
    directory.write("nul", std::string("1\n\0\n", 4));
    directory.write("quote", "1\n\"2\n");
    directory.write("wide", "1,2\n");
    directory.write("header", "load\n");
    directory.write("bad", "load\nx\n");
    const auto evalFile = [&](const std::string& file) {
        return eval({"expr=signed(value>5)", "--input", file}, setting);
    };

    EXPECT_EQ(evalFile("none"), (CommandResult{2, "", "brantel: cannot read none: No such file or directory\n"}));
    EXPECT_EQ(evalFile("."), (CommandResult{2, "", "brantel: cannot read .: Is a directory\n"}));
    EXPECT_EQ(evalFile("nul"), (CommandResult{2, "", "brantel: nul:2: the line contains a NUL byte\n"}));
    EXPECT_EQ(evalFile("quote"), (CommandResult{2, "", "brantel: quote:2: the closing quote is missing\n"}));
    EXPECT_EQ(evalFile("wide"),
              (CommandResult{2, "", "brantel: wide:1: there are several columns; choose one with --column: 1, 2\n"}));
    EXPECT_EQ(evalFile("header"), (CommandResult{2, "", "brantel: header: there is no sample to evaluate\n"}));
    EXPECT_EQ(evalFile("bad"), (CommandResult{2, "",
                                              "brantel: bad:2: sample 1: 'x' is not a whole number, skipped\n"
                                              "brantel: bad: there is no sample to evaluate\n"}));
}

TEST(RuleEvalCommand, FollowsALivePipe)
{
    LiveCommand command(BRANTEL_COMMAND, {"rule", "eval", "expr=signed(value>5)"}, LiveCommand::Output::PIPE);

    command.write("1\n6\n7");
    EXPECT_EQ(command.readLine(), "sample 2, value 6: raised\n");
    command.write("\n5\n");
    EXPECT_EQ(command.readLine(), "sample 4, value 5: cleared\n");
    command.closeInput();
    EXPECT_EQ(command.readLine(), "4 samples, 0 skipped, 4 evaluations\n");
    EXPECT_EQ(command.readLine(), "raised 1 time, longest 2 samples\n");
    EXPECT_EQ(command.readLine(), "");
}

// The samples end there; half a line, or half a quoted field, is not a sample.
TEST(RuleEvalCommand, SumsUpWhenItIsStopped)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        for (const char* const rest : {"", "77", "\"7"}) {
            LiveCommand command(BRANTEL_COMMAND, {"rule", "eval", "expr=signed(value>5)"}, LiveCommand::Output::PIPE);
            command.write(std::string("1\n6\n") + rest);
            EXPECT_EQ(command.readLine(), "sample 2, value 6: raised\n");
            EXPECT_EQ(command.endWith(signal), 0);
            EXPECT_EQ(command.readLine(), "2 samples, 0 skipped, 2 evaluations\n");
            EXPECT_EQ(command.readLine(), "raised 1 time, longest 1 sample\n");
            EXPECT_EQ(command.readLine(), "");
        }
    }
}

TEST(RuleEvalCommand, EscapesControlCharactersInJson)
{
    EXPECT_EQ(
        evalInput({"--json", "--all", "expr=signed(value>5)", "--time-column", "t"}, "t,v\n\x1b[2J\xC2\x9B\u202E,9\n")
            .out.substr(0, 56),
        "{\"sample\":1,\"line\":2,\"time\":\"\\u001b[2J\\u009b\\u202e\",\"val");
    EXPECT_EQ(evalInput({"--json", "\xC2\x9B\u202E"}, "").out.substr(0, 38),
              "{\"refused\":{\"rule\":\"\\u009b\\u202e\",\"col");
}

TEST(RuleEvalCommand, EvaluatesALongRandomSeriesAsTheRuleReads)
{
    std::mt19937 engine(20240501U);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same series every time
    std::string input;
    std::string expected;
    std::uint64_t raises = 0;
    std::uint64_t inARow = 0;
    std::uint64_t longest = 0;
    bool isRaised = false;
    constexpr int SAMPLES = 20000;
    for (int number = 1; number <= SAMPLES; ++number) {
        const std::string value = std::to_string(engine() % 100U);
        const bool wasRaised = isRaised;
        if (std::stoi(value) < 10) {
            isRaised = true;
        } else if (std::stoi(value) >= 20) {
            isRaised = false;
        }
        if (isRaised != wasRaised) {
            expected +=
                "sample " + std::to_string(number) + ", value " + value + (isRaised ? ": raised\n" : ": cleared\n");
        }
        raises += (isRaised && !wasRaised) ? 1 : 0;
        inARow = isRaised ? inARow + 1 : 0;
        longest = std::max(longest, inARow);
        input += value + "\n";
    }
    expected += "20000 samples, 0 skipped, 20000 evaluations\nraised " + std::to_string(raises) + " times, longest " +
                std::to_string(longest) + " samples\n";

    EXPECT_EQ(evalInput({"expr=unsigned(hyslow(10,20))"}, input), (CommandResult{0, expected, ""}));
}

}  // namespace

}  // namespace brantel
