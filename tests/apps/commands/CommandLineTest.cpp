// What the command prints for wrong arguments: one line that names what is wrong and what would be right, and how to
// get help. The exit code is 2.

#include <gtest/gtest.h>

#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

// In a directory without a database and without cards.
CommandResult brantel(const Arguments& arguments)
{
    const TemporaryDirectory directory;
    return runProgram(BRANTEL_COMMAND, arguments,
                      {"", "", directory.path(), {"XDG_RUNTIME_DIR=" + directory.path(), "BRANTEL_DB="}});
}

CommandResult misused(const std::string& reason)
{
    return {2, "", "brantel: " + reason + "\nRun with --help for more information.\n"};
}

struct Misuse {
    Arguments arguments;
    const char* reason;
};

std::ostream& operator<<(std::ostream& stream, const Misuse& misuse)
{
    return stream << testing::PrintToString(misuse.arguments);
}

class MisusedCommand : public testing::TestWithParam<Misuse> {};

TEST_P(MisusedCommand, ExitsWith2AndTheReason)
{
    EXPECT_EQ(brantel(GetParam().arguments), misused(GetParam().reason));
}

constexpr const char* ALL_COMMANDS = "rule, card, get, set, watch, db, monitor, ports or backplane";

TEST(CommandLine, NamesTheUnknownCommand)
{
    const std::string all = std::string("; expected ") + ALL_COMMANDS;
    EXPECT_EQ(brantel({"montior"}), misused("unknown command 'montior'; did you mean 'monitor'?"));
    EXPECT_EQ(brantel({"rul"}), misused("unknown command 'rul'; did you mean 'rule'?"));
    EXPECT_EQ(brantel({"help"}), misused("unknown command 'help'" + all));
    EXPECT_EQ(brantel({"frob", "rule"}), misused("unknown command 'frob'" + all));
    EXPECT_EQ(brantel({""}), misused("unknown command ''" + all));
    EXPECT_EQ(brantel({}), misused(std::string("a command is missing; expected ") + ALL_COMMANDS));
}

INSTANTIATE_TEST_SUITE_P(
    Subcommands, MisusedCommand,
    testing::Values(Misuse{{"rule"}, "a subcommand of 'brantel rule' is missing; expected check or eval"},
                    Misuse{{"rule", "chek", "x"}, "unknown subcommand 'chek' of 'brantel rule'; did you mean 'check'?"},
                    Misuse{{"rule", "rule"}, "unknown subcommand 'rule' of 'brantel rule'; expected check or eval"},
                    Misuse{{"db", "alow", "add", "--slot", "3"},
                           "unknown subcommand 'alow' of 'brantel db'; did you mean 'allow'?"},
                    Misuse{{"db", "card", "rename"},
                           "unknown subcommand 'rename' of 'brantel db card'; expected enable, disable or remove"},
                    Misuse{{"db", "card", "enabel", "3"},
                           "unknown subcommand 'enabel' of 'brantel db card'; did you mean 'enable'?"},
                    Misuse{{"card", "lst"}, "unknown subcommand 'lst' of 'brantel card'; did you mean 'list'?"},
                    Misuse{{"montior", "--journal", "x"}, "unknown command 'montior'; did you mean 'monitor'?"},
                    Misuse{{"card", "list", "--slot", "3"}, "--slot: not with a subcommand of 'brantel card'"}));

INSTANTIATE_TEST_SUITE_P(
    UnknownOptions, MisusedCommand,
    testing::Values(
        Misuse{{"--frob"}, "unknown option '--frob'"},
        Misuse{{"--verison"}, "unknown option '--verison'; did you mean '--version'?"},
        Misuse{{"--frob", "montior"}, "unknown option '--frob'"},
        Misuse{{"rule", "check", "--frob", ""}, "unknown option '--frob'"},
        Misuse{{"rule", "eval", "a", "--colunm", "load"}, "unknown option '--colunm'; did you mean '--column'?"},
        Misuse{{"rule", "eval", "a", "--colunm=load"}, "unknown option '--colunm=load'; did you mean '--column'?"},
        Misuse{{"rule", "eval", "a", "-column", "load"}, "unknown option '-column'; did you mean '--column'?"},
        Misuse{{"monitor", "--journl", "x"}, "unknown option '--journl'; did you mean '--journal'?"},
        Misuse{{"db", "show", "--bd", "x.db"}, "unknown option '--bd'; did you mean '--db'?"},
        Misuse{{"get", "3", "--log-stdrr"}, "unknown option '--log-stdrr'; did you mean '--log-stderr'?"},
        Misuse{{"get", "3", "--colour", "--frob"}, "unknown options '--colour' '--frob'"},
        Misuse{{"get", "3", "--frob", "--jsn"}, "unknown options '--frob' '--jsn'; did you mean '--json'?"},
        Misuse{{"get", "--slot", "3"}, "unknown option '--slot'"}));

INSTANTIATE_TEST_SUITE_P(
    Arguments, MisusedCommand,
    testing::Values(
        Misuse{{"rule", "check"}, "RULE or --file is required"},
        Misuse{{"rule", "check", "", "--file", "x"}, "RULE excludes --file"},
        Misuse{{"rule", "check", "[a,b]"}, "RULE: in brackets: give it with --file"},
        Misuse{{"rule", "check", "{}"}, "RULE: in brackets: give it with --file"},
        Misuse{{"rule", "check", "[]"}, "RULE: in brackets: give it with --file"},
        Misuse{{"rule", "check", "--json=perhaps", ""}, "--json takes no value"},
        Misuse{{"rule", "eval"}, "RULE is required"}, Misuse{{"rule", "eval", "a", "b"}, "unexpected argument: 'b'"},
        Misuse{{"db", "component", "enable", "8", "disable", "9"}, "unexpected arguments: 'disable' '9'"},
        Misuse{{"watch", "3"}, "OID is required"}, Misuse{{"set", "3"}, "OID=TYPE:VALUE is required"},
        Misuse{{"rule", "eval", "a", "--on-error", "ask"}, "--on-error: unknown value 'ask'; expected skip or fail"},
        Misuse{{"rule", "eval", "a", "--header", "y"}, "--header: unknown value 'y'; expected yes, no or auto"},
        Misuse{{"rule", "eval", "a", "--header", "atuo"}, "--header: unknown value 'atuo'; did you mean 'auto'?"},
        Misuse{{"db", "import", "--format", "1", "-"}, "--format: unknown value '1'; expected csv or json"},
        Misuse{{"db", "import", "--format", "jsn", "-"}, "--format: unknown value 'jsn'; did you mean 'json'?"},
        Misuse{{"db", "export", "--format", "CSV"}, "--format: unknown value 'CSV'; did you mean 'csv'?"},
        Misuse{{"rule", "eval", "", "--column", "a", "--column", "b"}, "--column is given 2 times"}));

TEST(CommandLine, NamesTheUnknownObject)
{
    const auto unusable = [](const std::string& reason) { return CommandResult{2, "", "brantel: " + reason + "\n"}; };
    EXPECT_EQ(brantel({"get", "3", "cpu.bsy"}), unusable("unknown object 'cpu.bsy'; did you mean 'cpu.busy'?"));
    EXPECT_EQ(brantel({"watch", "3", "mem.avaliable"}),
              unusable("unknown object 'mem.avaliable'; did you mean 'mem.available'?"));
    EXPECT_EQ(brantel({"get", "3", "frobnicate"}),
              unusable("unknown object 'frobnicate'; expected a number or a name of 'brantel card objects'"));
}

INSTANTIATE_TEST_SUITE_P(
    MissingValues, MisusedCommand,
    testing::Values(
        Misuse{{"rule", "eval", "", "--column", ""}, "--column: the value is empty"},
        Misuse{{"rule", "eval", "", "--column="}, "--column: the value is empty"},
        Misuse{{"rule", "eval", "", "--column=", "--json"}, "--column: the value is empty"},
        Misuse{{"rule", "eval", "", "--column"}, "--column: the value is missing"},
        Misuse{{"rule", "eval", "", "--column", "--json"}, "--column: the value is missing: '--json' is an option"},
        Misuse{{"rule", "eval", "", "--time-column", ""}, "--time-column: the value is empty"},
        Misuse{{"rule", "eval", "", "--input", ""}, "--input: the value is empty"},
        Misuse{{"rule", "check", "--file", ""}, "--file: the value is empty"},
        Misuse{{"db", "init", ""}, "FILE: the value is empty"},
        Misuse{{"db", "--db", "", "show"}, "--db: the value is empty"},
        Misuse{{"db", "show", ""}, "TABLE: the value is empty"},
        Misuse{{"db", "import", ""}, "FILE: the value is empty"},
        Misuse{{"db", "export", "--table", ""}, "--table: the value is empty"},
        Misuse{{"db", "allow", "list", "--oid", ""}, "--oid: the value is empty"},
        Misuse{{"monitor", "--journal", ""}, "--journal: the value is empty"},
        Misuse{{"monitor", "--journal", "--json"}, "--journal: the value is missing: '--json' is an option"},
        Misuse{{"card", "--slot", "3", "--source", ""}, "--source: the value is empty"},
        Misuse{{"card", "--slot", "3", "--fault", ""}, "--fault: the value is empty"},
        Misuse{{"card", "keys", ""}, "FILE: the value is empty"}, Misuse{{"get", "3", ""}, "OID: the value is empty"}));

struct NumberOption {
    Arguments before;
    const char* name;
    const char* expected;
};

// Every number of the command line, and texts that are not numbers.
TEST(CommandLine, TakesEveryNumberInTheSameWay)
{
    constexpr const char* slot = "0 to 9 (decimal or 0x)";
    constexpr const char* any = "0 to 4294967295 (decimal or 0x)";
    constexpr const char* seconds = "0.001 to 86400";
    const NumberOption options[] = {
        {{"-v"}, "--trace-level", "0 to 9 (decimal or 0x)"},
        {{"get"}, "SLOT", slot},
        {{"set"}, "SLOT", slot},
        {{"watch"}, "SLOT", slot},
        {{"card", "--slot"}, "--slot", slot},
        {{"get", "3", "card.led", "--timeout"}, "--timeout", "1 to 3600 (decimal or 0x)"},
        {{"watch", "3", "card.led", "--count"}, "--count", "1 to 1000000000 (decimal or 0x)"},
        {{"watch", "3", "card.led", "--interval"}, "--interval", seconds},
        {{"card", "--slot", "3", "--interval"}, "--interval", seconds},
        {{"card", "--slot", "3", "--speed"}, "--speed", "0.001 to 1000"},
        {{"db", "component", "enable"}, "ID", any},
        {{"db", "component", "disable"}, "ID", any},
        {{"db", "card", "enable"}, "SLOT", any},
        {{"db", "card", "enable", "3", "--type"}, "--type", any},
        {{"monitor", "--cycles"}, "--cycles", "1 to 1000000000 (decimal or 0x)"},
        {{"ports", "--backplane"}, "--backplane", "0 to 4 (decimal or 0x)"},
        {{"backplane", "publish"}, "N", "0 to 4 (decimal or 0x)"},
    };
    for (const NumberOption& option : options) {
        for (const char* const text : {"", "+1", " 1", "1 ", "011x", "-1", "-0x0", "0x", "x", "1,0", "nan", "inf",
                                       "1e400", "99999999999999999999"}) {
            Arguments arguments = option.before;
            arguments.emplace_back(text);
            EXPECT_EQ(brantel(arguments),
                      misused(std::string(option.name) + ": '" + text + "' is not a number from " + option.expected));
        }
    }
}

TEST(CommandLine, TakesNumbersInDecimalAndInHexadecimalButNeverInOctal)
{
    const TemporaryDirectory directory;
    const auto db = [&](const Arguments& arguments) {
        Arguments all{"db"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return runProgram(BRANTEL_COMMAND, all, {"", "", directory.path(), {"BRANTEL_DB="}}).out;
    };
    db({"init"});
    EXPECT_EQ(db({"component", "enable", "010"}), "component 10: events enabled\n");
    EXPECT_EQ(db({"component", "enable", "08"}), "component 8: events enabled\n");
    EXPECT_EQ(db({"component", "enable", "0x1f"}), "component 31: events enabled\n");
    EXPECT_EQ(db({"component", "enable", "-v", "09", "0X20"}), "component 32: events enabled\n");
    EXPECT_EQ(db({"card", "enable", "007", "--type", "012"}), "slot 7: events enabled\n");
    EXPECT_EQ(db({"show", "IfcCardsConfigTable", "--json"}), "{\"Slot\":7,\"CardType\":12,\"EnableEvents\":true}\n");
    EXPECT_EQ(brantel({"ports", "--backplane", "0x3"}), brantel({"ports", "--backplane", "03"}));
}

TEST(CommandLine, TakesTimesAndListsInTheSameWay)
{
    for (const char* const time :
         {"nan", "+1s", " 1s", "1 s", "0", "-1s", "1e400ms", "inf", "s", "ms", "1m", "86401"}) {
        EXPECT_EQ(brantel({"monitor", "--interval", time}),
                  misused("--interval: invalid interval '" + std::string(time) + "': expected 1ms to 86400s"));
    }
    constexpr const char* slots = "0 to 9, such as 0-3,7";
    constexpr const char* any = "0 to 4294967295, such as 0-3,7, at most 1000 numbers";
    const NumberOption lists[] = {
        {{"monitor", "--slots"}, "--slots", slots},
        {{"db", "allow", "list", "--component"}, "--component", any},
        {{"db", "ignore", "add", "5", "--slot"}, "--slot", any},
    };
    for (const NumberOption& list : lists) {
        for (const std::string text : {"", "+1", " 1", "1 ", "011x", "-1", "-0x0", "0x", "x", "nan", "inf", "1e400",
                                       "99999999999999999999", "0,1-", "0,3-1", "0,1-2-3", "0,", ",0"}) {
            Arguments arguments = list.before;
            arguments.push_back(text);
            EXPECT_EQ(brantel(arguments), misused(std::string(list.name) + ": invalid list '" + text +
                                                  "': expected numbers and ranges from " + list.expected));
        }
    }
    EXPECT_EQ(brantel({"monitor", "--slots", "0,10"}),
              misused("--slots: invalid list '0,10': expected numbers and ranges from " + std::string(slots)));
}

TEST(CommandLine, PrintsUnexpectedArgumentsWithoutControlCharacters)
{
    EXPECT_EQ(brantel({"ports", "\x1b[31m",
                       "\xC2\x9B"
                       "2J",
                       "\u202Egnp", "\xFF", "a\nb"}),
              misused("unexpected arguments: '?[31m' '?2J' '?gnp' '\uFFFD' 'a?b'"));
    EXPECT_EQ(brantel({"rule", "--\x1b[31m"}), misused("unknown option '--?[31m'"));
    EXPECT_EQ(brantel({"ports", "--backplane",
                       "\u202E"
                       "5"}),
              misused("--backplane: '?5' is not a number from 0 to 4 (decimal or 0x)"));
    EXPECT_EQ(brantel({"ports", std::string(100000, 'x')}),
              misused("unexpected argument: '" + std::string(80, 'x') + "...'"));
    EXPECT_EQ(brantel({"ports", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"}),
              misused("unexpected arguments: '1' '2' '3' '4' '5' '6' '7' '8' '9' '10' ..."));
}

TEST(CommandLine, ListsTheOptionsOfTheCommandsAboveInHelp)
{
    for (const Arguments& command :
         {Arguments{"db", "init"}, Arguments{"db", "allow", "add"}, Arguments{"db", "component", "enable"}}) {
        Arguments arguments = command;
        arguments.emplace_back("--help");
        const std::string out = brantel(arguments).out;
        EXPECT_NE(out.find("\nOptions of brantel db:\n  --db FILE=events.db (Env:BRANTEL_DB)"), std::string::npos)
            << out;
        EXPECT_NE(out.find("\nOptions of brantel:\n  -v,--trace-level N"), std::string::npos) << out;
    }
    const std::string list = brantel({"card", "list", "--help"}).out;
    EXPECT_EQ(list.find("--source"), std::string::npos) << list;
}

TEST(CommandLine, DocumentsExitCodesInHelp)
{
    for (const Arguments& command : {Arguments{"db", "import"}, Arguments{"db", "export"}, Arguments{"ports"},
                                     Arguments{"backplane"}, Arguments{"monitor"}, Arguments{"get"}}) {
        Arguments arguments = command;
        arguments.emplace_back("--help");
        const std::string out = brantel(arguments).out;
        EXPECT_NE(out.find("\nExit code: 0 "), std::string::npos) << out;
        EXPECT_EQ(out.find("value in {"), std::string::npos) << out;
    }
}

}  // namespace

}  // namespace brantel
