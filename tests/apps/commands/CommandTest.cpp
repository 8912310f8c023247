// What all subcommands share: help, version, diagnostics, output that cannot be written.

#include <gtest/gtest.h>

#include "support/CommandRun.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

CommandResult brantel(const Arguments& arguments, const CommandSetting& setting = {})
{
    return runProgram(BRANTEL_COMMAND, arguments, setting);
}

TEST(Command, PrintsItsVersion)
{
    EXPECT_EQ(brantel({"--version"}), (CommandResult{0, "brantel " PROJECT_VERSION "\n", ""}));
}

TEST(Command, HelpsWithExamplesOnEachLevel)
{
    for (const Arguments& level :
         {Arguments{}, Arguments{"rule"}, Arguments{"rule", "check"}, Arguments{"rule", "eval"}, Arguments{"db"},
          Arguments{"db", "import"}, Arguments{"ports"}, Arguments{"backplane"}}) {
        Arguments arguments = level;
        arguments.emplace_back("--help");
        const CommandResult result = brantel(arguments);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_NE(result.out.find("Usage: brantel"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("\nExamples:\n  "), std::string::npos) << result.out;
    }
}

// `text` with "#" for every number after `mark`.
std::string withoutNumbersAfter(const std::string& mark, std::string text)
{
    for (std::size_t pos = text.find(mark); pos != std::string::npos; pos = text.find(mark, pos)) {
        pos += mark.size();
        text.replace(pos, text.find_first_not_of("0123456789", pos) - pos, "#");
    }
    return text;
}

// The diagnostics of a refused rule, without process id and line numbers.
std::string diagnosticsOf(const Arguments& traceOptions)
{
    Arguments arguments = traceOptions;
    arguments.insert(arguments.end(), {"rule", "check", "expr"});
    return withoutNumbersAfter(".cpp:", withoutNumbersAfter("brantel[", brantel(arguments).err));
}

TEST(CommandDiagnostics, GoToStandardErrorOnRequest)
{
    constexpr const char* error =
        "brantel[#]: [ERROR] EventMgmtRulesParsing.cpp:# (parseExpression) - No = sign in expression 'expr'\n";

    EXPECT_EQ(diagnosticsOf({}), "");
    EXPECT_EQ(diagnosticsOf({"--log-stderr"}), error);
    EXPECT_EQ(diagnosticsOf({"--log-stderr", "-v", "2"}), "");
    EXPECT_EQ(diagnosticsOf({"--log-stderr", "-v", "0"}), "");
    EXPECT_EQ(diagnosticsOf({"--log-stderr", "--trace-level", "8"}), error);
    EXPECT_EQ(diagnosticsOf({"--log-stderr", "--trace-level", "9"}),
              std::string("brantel[#]: [DEBUG3] EventMgmtRulesParsing.cpp:# (parseRule) - part ") + "0 = 'expr'\n" +
                  "brantel[#]: [DEBUG3] EventMgmtRulesParsing.cpp:# (parseExpression) - parseExpression='expr'\n" +
                  error);
}

TEST(CommandDiagnostics, AreOneLineEachWhateverTheRuleContains)
{
    const CommandResult result = brantel({"--log-stderr", "rule", "check", "ex\nbrantel[1]: forged\x1B[31m"});

    EXPECT_EQ(withoutNumbersAfter(".cpp:", withoutNumbersAfter("brantel[", result.err)),
              "brantel[#]: [ERROR] EventMgmtRulesParsing.cpp:# (parseRule) - Failed to parse part = "
              "'ex?brantel[#]:forged?[31m' of rule = 'ex?brantel[#]: forged?[31m'\n");
}

TEST(CommandDiagnostics, TakeTheirOptionsAfterTheSubcommandToo)
{
    const CommandResult result = brantel({"rule", "check", "", "--log-stderr", "-v", "9"});

    EXPECT_EQ(result,
              (CommandResult{0, "argument 1: valid, empty rule: has no condition\n1 rule: 1 valid, 0 refused\n", ""}));
}

TEST(CommandOutput, ThatCannotBeWrittenIsAnError)
{
    const CommandSetting intoFullDevice{"1\n2\n", "/dev/full", "", {}};
    const CommandResult fails{2, "", "brantel: cannot write to standard output: No space left on device\n"};

    EXPECT_EQ(brantel({"rule", "check", ""}, intoFullDevice), fails);
    EXPECT_EQ(brantel({"rule", "check", "--json", ""}, intoFullDevice), fails);
    EXPECT_EQ(brantel({"rule", "eval", "expr=signed(value>1)"}, intoFullDevice), fails);
    EXPECT_EQ(brantel({"--help"}, intoFullDevice), fails);
    EXPECT_EQ(brantel({"--version"}, intoFullDevice), fails);
}

TEST(CommandOutput, IsColouredOnATerminalOnly)
{
    const Arguments check = {"rule", "check", "expr=signed(value>1)", ""};
    const auto firstLine = [&](const std::vector<std::string>& environment) {
        return LiveCommand(BRANTEL_COMMAND, check, LiveCommand::Output::TERMINAL, environment).readLine();
    };
    const std::string plain = "argument 1: valid, signed value rule: raised while value > 1";

    EXPECT_EQ(firstLine({"TERM=xterm", "NO_COLOR="}),
              "argument 1: \x1b[32mvalid\x1b[0m, signed value rule: raised while value > 1\r\n");
    EXPECT_EQ(firstLine({"TERM=xterm", "NO_COLOR=1"}), plain + "\r\n");
    EXPECT_EQ(firstLine({"TERM=dumb", "NO_COLOR="}), plain + "\r\n");
    EXPECT_EQ(brantel({"rule", "check", "expr=signed(value>1)"}, {"", "", "", {"TERM=xterm", "NO_COLOR="}}).out,
              plain + "\n1 rule: 1 valid, 0 refused\n");
}

}  // namespace

}  // namespace brantel
