// "brantel card", "get", "set" and "watch", as a shell sees them.

#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include "apps/CardProcess.h"
#include "support/TemporaryDirectory.h"

namespace {

using Arguments = std::vector<std::string>;

// Every test has a runtime directory of its own, and so cards of its own.
class CardCommand : public testing::Test {
protected:
    CommandResult brantel(const Arguments& arguments, const CommandSetting& setting = {}) const
    {
        CommandSetting own = setting;
        own.environment.insert(own.environment.end(), m_environment.begin(), m_environment.end());
        return runProgram(BRANTEL_COMMAND, arguments, own);
    }

    // The value that "get" shows.
    std::string value(const std::string& slot, const std::string& name) const
    {
        const std::string json = brantel({"get", slot, name, "--json"}).out;
        const std::string mark = "\"value\":";
        const std::size_t posValue = json.find(mark) + mark.size();
        return json.substr(posValue, json.rfind('}') - posValue);
    }

    const TemporaryDirectory m_directory;
    const std::vector<std::string> m_environment = {"XDG_RUNTIME_DIR=" + m_directory.path(),
                                                    "BRANTEL_MESSAGE_DIRECTORY="};
};

// `text` with `by` in place of whatever looks like `pattern`, in which "0" stands for any digit.
std::string replaced(std::string text, const std::string& pattern, const std::string& by)
{
    const auto looksLike = [](char patternCharacter, char character) {
        return (patternCharacter == '0') ? ((character >= '0') && (character <= '9')) : (patternCharacter == character);
    };
    for (;;) {
        const auto found = std::search(text.begin(), text.end(), pattern.begin(), pattern.end(),
                                       [&](char character, char wanted) { return looksLike(wanted, character); });
        if (found == text.end()) {
            return text;
        }
        text.replace(found, found + static_cast<std::ptrdiff_t>(pattern.size()), by);
    }
}

std::string withoutTimes(const std::string& text)
{
    return replaced(text, "0000-00-00T00:00:00.000", "TIME");
}

std::string withoutUptimes(const std::string& text)
{
    return replaced(replaced(text, "0 s  ", "# s  "), "\"card.uptime\":0", "\"card.uptime\":#");
}

constexpr const char* LED =
    "OID         Name      Type   Value\n"
    "0x0001000B  card.led  uint8  1\n";

TEST_F(CardCommand, SaysWhereItServes)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const std::string folder = "ipc://" + m_directory.path() + "/brantel/";
    EXPECT_EQ(card.readyLines(), "serves ICSCClient3.ReadWriteSync at " + folder + "ICSCClient3.ReadWriteSync\n" +
                                     "serves ICSCClient3.ReadWriteAsync at " + folder + "ICSCClient3.ReadWriteAsync\n");
}

TEST_F(CardCommand, ServesUntilASignal)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        CardProcess card({"--slot", "3"}, m_environment);
        EXPECT_EQ(card.end(signal), 0);
        EXPECT_FALSE(std::filesystem::exists(m_directory.path() + "/brantel/ICSCClient3.ReadWriteSync"));
    }
}

TEST_F(CardCommand, ServesASlotThatAKilledCardLeft)
{
    CardProcess killed({"--slot", "3"}, m_environment);
    EXPECT_EQ(killed.end(SIGKILL), -1);
    const CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(brantel({"get", "3", "card.led"}), (CommandResult{0, LED, ""}));
}

TEST_F(CardCommand, DoesNotServeASlotTwice)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(brantel({"card", "--slot", "3"}),
              (CommandResult{2, "",
                             "brantel: " + m_directory.path() +
                                 "/brantel/ICSCClient3.ReadWriteSync: served by another connection already\n"}));
}

TEST_F(CardCommand, ServesEverySource)
{
    const std::string recording = m_directory.write("recording.csv", "time,load\n0,7\n");
    const std::string signals =
        m_directory.write("signals.yaml", "signals:\n  - {name: level, type: int16, low: -4}\n");
    const CardProcess host({"--slot", "0"}, m_environment);
    const CardProcess csv({"--slot", "4", "--source", "csv:" + recording, "--speed", "2"}, m_environment);
    const CardProcess wave({"--slot", "9", "--source", "wave:" + signals}, m_environment);

    EXPECT_EQ(brantel({"get", "0", "mem.total"}).exitCode, 0);
    EXPECT_EQ(brantel({"get", "4", "csv.1", "csv.1.label"}), (CommandResult{0,
                                                                            "OID         Name         Type    Value\n"
                                                                            "0x00030001  csv.1        int32   7\n"
                                                                            "0x00030101  csv.1.label  string  load\n",
                                                                            ""}));
    EXPECT_EQ(brantel({"get", "9", "wave.1", "wave.1.label"}),
              (CommandResult{0,
                             "OID         Name          Type    Value\n"
                             "0x00040001  wave.1        int16   -4\n"
                             "0x00040101  wave.1.label  string  level\n",
                             ""}));
}

TEST_F(CardCommand, ServesTheExamples)
{
    const CardProcess csv({"--slot", "4", "--source", "csv:" EXAMPLES_DIR "/host-recording.csv"}, m_environment);
    const CardProcess wave({"--slot", "5", "--source", "wave:" EXAMPLES_DIR "/signals.yaml"}, m_environment);
    EXPECT_EQ(value("4", "csv.1.label"), "\"cpu_percent\"");
    EXPECT_EQ(value("5", "wave.3.label"), "\"loss of signal\"");
}

TEST_F(CardCommand, ReadsByNumberAndByName)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const CommandResult led{0, LED, ""};
    EXPECT_EQ(brantel({"get", "3", "card.led"}), led);
    EXPECT_EQ(brantel({"get", "3", "0x0001000B"}), led);
    EXPECT_EQ(brantel({"get", "3", "65547"}), led);
    EXPECT_EQ(brantel({"get", "3", "65547", "card.led"}), led);
}

TEST_F(CardCommand, TellsWhatCouldNotBeRead)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(
        brantel({"get", "3", "card.led", "8", "card.name"}),
        (CommandResult{1,
                       "OID         Name        Type    Value\n"
                       "0x0001000B  card.led    uint8   1\n"
                       "0x00000008  0x00000008  -       failed: 7=0x7=RESULT WRONG OID: the card has no such object\n"
                       "0x00010002  card.name   string  card 3\n",
                       ""}));
    EXPECT_EQ(brantel({"get", "3", "card.mac", "8", "--json"}),
              (CommandResult{1,
                             "{\"slot\":3,\"oid\":65544,\"name\":\"card.mac\",\"type\":\"mac\","
                             "\"value\":\"02:00:00:00:00:03\"}\n"
                             "{\"slot\":3,\"oid\":8,\"name\":\"0x00000008\",\"failure\":{\"code\":7,"
                             "\"name\":\"RESULT WRONG OID\",\"meaning\":\"the card has no such object\"}}\n",
                             ""}));
}

TEST_F(CardCommand, TellsWhenNobodyAnswers)
{
    EXPECT_EQ(brantel({"get", "3", "card.led", "--timeout", "1"}),
              (CommandResult{1,
                             "OID         Name      Type  Value\n"
                             "0x0001000B  card.led  -     failed: no answer: nobody serves the slot, or nothing came "
                             "back in time\n",
                             ""}));
    EXPECT_EQ(
        brantel({"set", "3", "card.led=uint8:1", "--timeout", "1"}),
        (CommandResult{1, "card.led: failed: no answer: nobody serves the slot, or nothing came back in time\n", ""}));
}

TEST_F(CardCommand, TellsEveryResultCodeFromNoAnswer)
{
    const auto failure = [&] {
        const std::string json = brantel({"get", "3", "card.led", "--timeout", "1", "--json"}).out;
        return json.substr(json.find("\"code\""));
    };
    EXPECT_EQ(failure(),
              "\"code\":null,\"name\":\"no answer\",\"meaning\":\"nobody serves the slot, or nothing came "
              "back in time\"}}\n");
    const CardProcess card({"--slot", "3", "--fault", "result=0xFFFFFFFF"}, m_environment);
    EXPECT_EQ(failure(), "\"code\":-1,\"name\":\"unknown\",\"meaning\":\"a result code without a meaning\"}}\n");
}

TEST_F(CardCommand, SplitsManyObjectsOverRequests)
{
    std::string signals = "signals:\n";
    for (int i = 0; i < 64; ++i) {
        signals += "  - {name: " + std::string(64, 'n') + "}\n";
    }
    const CardProcess card({"--slot", "3", "--source", "wave:" + m_directory.write("signals.yaml", signals)},
                           m_environment);
    Arguments get = {"get", "3"};
    for (int i = 1; i <= 64; ++i) {
        get.push_back("wave." + std::to_string(i) + ".label");
    }
    const CommandResult result = brantel(get);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 65);
    EXPECT_EQ(value("3", "card.reads"), "4") << "26, 26 and 12 labels, and this request";
}

TEST_F(CardCommand, WritesAndReadsBack)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(brantel({"set", "3", "card.led=uint8:2", "65538=string:a=b:c"}),
              (CommandResult{0, "card.led card.name: written\n", ""}));
    EXPECT_EQ(value("3", "card.led"), "2");
    EXPECT_EQ(value("3", "card.name"), "\"a=b:c\"");
    EXPECT_EQ(brantel({"set", "3", "0x1000B=uint8:3", "--json"}),
              (CommandResult{0,
                             "{\"slot\":3,\"oids\":[65547],\"written\":true,\"result\":{\"code\":0,\"name\":\"RESULT "
                             "OK\",\"meaning\":\"done\"}}\n",
                             ""}));
}

TEST_F(CardCommand, TellsWhatWasNotWritten)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(
        brantel({"set", "3", "card.led=uint8:2", "card.slot=uint8:4"}),
        (CommandResult{1, "card.led card.slot: failed: 10=0xa=RESULT READ ONLY: the object cannot be written\n", ""}));
    EXPECT_EQ(value("3", "card.led"), "1");
}

TEST_F(CardCommand, TakesAWarningForSuccess)
{
    const CardProcess card({"--slot", "3", "--fault", "result=3"}, m_environment);
    EXPECT_EQ(brantel({"set", "3", "card.led=uint8:2"}),
              (CommandResult{0, "card.led: written: 3=0x3=RESULT LOST MSG: the card missed a message before this one\n",
                             ""}));
}

TEST_F(CardCommand, SplitsManyValuesOverRequestsUntilOneIsRefused)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    // 77 bytes each: 26 in a request.
    Arguments set(54, "card.location=buffer:" + std::string(128, 'a'));
    set.insert(set.begin(), {"set", "3", "--json"});
    EXPECT_EQ(brantel(set).exitCode, 0);
    EXPECT_EQ(value("3", "card.writes"), "3");

    set[30] = "card.location=uint8:1";
    const CommandResult refused = brantel(set);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(std::count(refused.out.begin(), refused.out.end(), '\n'), 2);
    EXPECT_EQ(value("3", "card.writes"), "5") << "the third request is not sent";
}

TEST_F(CardCommand, WatchesWithARowForEachReading)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const Arguments watch = {"watch", "3", "card.led", "card.mac", "8", "--interval", "0.01", "--count", "2"};
    const CommandResult rows = brantel(watch);
    EXPECT_EQ(rows.exitCode, 1);
    EXPECT_EQ(withoutTimes(rows.out),
              "Time                     card.led  card.mac           0x00000008\n"
              "TIME  1         02:00:00:00:00:03  RESULT WRONG OID\n"
              "TIME  1         02:00:00:00:00:03  RESULT WRONG OID\n");

    const CommandResult json =
        brantel({"watch", "3", "card.led", "card.enabled", "--interval", "0.01", "--count", "1", "--json"});
    EXPECT_EQ(json.exitCode, 0);
    EXPECT_EQ(withoutTimes(json.out),
              "{\"time\":\"TIME\",\"slot\":3,\"values\":{\"card.led\":1,\"card.enabled\":true}}\n");
}

TEST_F(CardCommand, WatchesUntilASignal)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    for (const int signal : {SIGTERM, SIGINT}) {
        LiveCommand watch(BRANTEL_COMMAND, {"watch", "3", "card.led"}, LiveCommand::Output::PIPE, m_environment);
        EXPECT_EQ(watch.readLine(), "Time                     card.led\n");
        EXPECT_EQ(withoutTimes(watch.readLine()), "TIME  1\n");
        EXPECT_EQ(watch.endWith(signal), 0);
    }
}

TEST_F(CardCommand, WatchesOnWhenTheCardComesBack)
{
    CardProcess killed({"--slot", "3"}, m_environment);
    LiveCommand watch(BRANTEL_COMMAND, {"watch", "3", "card.led", "--interval", "0.01"}, LiveCommand::Output::PIPE,
                      m_environment);
    watch.readLine();
    EXPECT_EQ(withoutTimes(watch.readLine()), "TIME  1\n");
    killed.end(SIGKILL);
    std::string row = "TIME  1\n";
    while (row == "TIME  1\n") {
        row = withoutTimes(watch.readLine());
    }
    EXPECT_TRUE((row == "TIME  no answer\n") || (row == "TIME  TIMEOUT\n")) << row;
    const CardProcess card({"--slot", "3"}, m_environment);
    while ((row == "TIME  no answer\n") || (row == "TIME  TIMEOUT\n")) {
        row = withoutTimes(watch.readLine());
    }
    EXPECT_EQ(row, "TIME  1\n");
    watch.endWith(SIGTERM);
}

TEST_F(CardCommand, ListsTheCards)
{
    EXPECT_EQ(brantel({"card", "list"}), (CommandResult{1, "no slot is served\n", ""}));
    EXPECT_EQ(brantel({"card", "list", "--json"}), (CommandResult{1, "", ""}));

    const CardProcess three({"--slot", "3"}, m_environment);
    const CardProcess nine({"--slot", "9", "--fault", "wrong-type"}, m_environment);
    const CommandResult list = brantel({"card", "list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(withoutUptimes(list.out),
              "Slot  Uptime  Name    Source\n"
              "   3     # s  card 3  host\n"
              "   9       -  -       failed: unsound answer: the card sent something else than the values that were "
              "asked for\n");
    EXPECT_EQ(
        withoutUptimes(brantel({"card", "list", "--json"}).out),
        "{\"slot\":3,\"card.name\":\"card 3\",\"card.source\":\"host\",\"card.uptime\":#}\n"
        "{\"slot\":9,\"failure\":{\"code\":null,\"name\":\"unsound answer\",\"meaning\":\"the card sent something "
        "else than the values that were asked for\"}}\n");
}

TEST_F(CardCommand, ListsTheObjects)
{
    const CommandResult table = brantel({"card", "objects"});
    EXPECT_EQ(table.exitCode, 0);
    EXPECT_NE(
        table.out.find("0x0001000B  card.led                 uint8   writable   0 off, 1 green, 2 amber, 3 red\n"),
        std::string::npos)
        << table.out;
    const CommandResult json = brantel({"card", "objects", "--json"});
    EXPECT_NE(json.out.find("{\"oid\":65547,\"name\":\"card.led\",\"type\":\"uint8\",\"writable\":true,"
                            "\"meaning\":\"0 off, 1 green, 2 amber, 3 red\"}\n"),
              std::string::npos)
        << json.out;
    EXPECT_EQ(std::count(table.out.begin(), table.out.end(), '\n'),
              std::count(json.out.begin(), json.out.end(), '\n') + 1);
}

TEST_F(CardCommand, FailsOnDemand)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const std::string unsound =
        "failed: unsound answer: the card sent something else than the values that were asked for\n";
    const struct {
        const char* fault;
        std::string shows;
    } cases[] = {
        {"result=13", "failed: 13=0xd=RESULT WRONG MAGIC: the card did not recognise the message\n"},
        {"silence", "failed: 33554432=0x2000000=TIMEOUT: the card did not answer in time\n"},
        {"delay=9", "failed: 33554432=0x2000000=TIMEOUT: the card did not answer in time\n"},
        {"no-answer", "failed: no answer: nobody serves the slot, or nothing came back in time\n"},
        {"duplicate-oid", unsound},
        {"missing-oid", unsound},
        {"foreign-oid", unsound},
        {"wrong-count", unsound},
        {"wrong-type", unsound},
        {"truncated", unsound},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(brantel({"set", "3", std::string("card.fault=string:") + each.fault}).exitCode, 0) << each.fault;
        const CommandResult result = brantel({"get", "3", "card.led", "--timeout", "1"});
        EXPECT_EQ(result.out, "OID         Name      Type  Value\n0x0001000B  card.led  -     " + each.shows)
            << each.fault;
    }
    EXPECT_EQ(brantel({"set", "3", "card.fault=string:"}).exitCode, 0);
    EXPECT_EQ(brantel({"get", "3", "card.led"}), (CommandResult{0, LED, ""}));
}

TEST_F(CardCommand, IsReachedOverTcpWithKeysByWhomItAdmits)
{
    const auto createKeys = [&](const std::string& name) {
        const CommandResult keys = brantel({"card", "keys", m_directory.path() + "/" + name});
        EXPECT_EQ(keys.exitCode, 0) << keys;
        return keys.out.substr(0, keys.out.size() - 1);
    };
    const std::string serviceKey = createKeys("service.key");
    m_directory.write("clients", "client " + createKeys("caller.key") + " the operator's desk\n");
    createKeys("stranger.key");
    const std::string serves = " tcp://127.0.0.1:* own-key=service.key clients=clients\n";
    const std::string directory =
        m_directory.write("service", "ICSCClient3.ReadWriteSync" + serves + "ICSCClient3.ReadWriteAsync" + serves);
    const CardProcess card({"--slot", "3"}, {"BRANTEL_MESSAGE_DIRECTORY=" + directory});

    const auto getWith = [&](const std::string& key) {
        const std::string file =
            m_directory.write("caller", card.directoryLines("own-key=" + key + " service-key=" + serviceKey));
        return runProgram(BRANTEL_COMMAND, {"get", "3", "card.led", "--timeout", "1"},
                          {"", "", "", {"BRANTEL_MESSAGE_DIRECTORY=" + file}});
    };
    EXPECT_EQ(getWith("caller.key"), (CommandResult{0, LED, ""}));
    EXPECT_EQ(getWith("stranger.key").exitCode, 1);
}

TEST_F(CardCommand, DoesNotOverwriteKeys)
{
    const std::string file = m_directory.write("some.key", "mine");
    EXPECT_EQ(brantel({"card", "keys", file}), (CommandResult{2, "", "brantel: " + file + ": File exists\n"}));
    EXPECT_EQ(contentOf(file), "mine");
}

TEST_F(CardCommand, SaysWhatIsWrongWithItsInput)
{
    const struct {
        Arguments arguments;
        std::string says;
    } cases[] = {
        {{"card", "--slot", "3", "--source", "tape"}, "'tape' is none of the sources host, csv:FILE and wave:FILE"},
        {{"card", "--slot", "3", "--source", "csv:/nowhere"}, "cannot read /nowhere: No such file or directory"},
        {{"card", "--slot", "3", "--fault", "noise"},
         "'noise' is no list of faults, which are delay=SECONDS, silence, no-answer, result=CODE, duplicate-oid, "
         "missing-oid, foreign-oid, wrong-count, wrong-type[=CODE] and truncated"},
        {{"get", "3", "card"}, "'card' is neither a number nor the name of an object (brantel card objects)"},
        {{"watch", "3", "4294967296"},
         "'4294967296' is neither a number nor the name of an object (brantel card objects)"},
        {{"set", "3", "card.led"}, "'card.led' is not OID=TYPE:VALUE"},
        {{"set", "3", "card.led=2"}, "'card.led=2' is not OID=TYPE:VALUE"},
        {{"set", "3", "card.led=byte:2"},
         "'card.led=byte:2': 'byte' is none of the types uint64 uint32 uint16 uint8 int64 int32 int16 int8 bool "
         "string buffer ipv4 mac"},
        {{"set", "3", "card.led=uint8:256"}, "'card.led=uint8:256': '256' is no uint8"},
        {{"set", "3", "card.name=string:" + std::string(2032, 'n')},
         "the value for card.name does not fit into a request of 2048 bytes"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(brantel(each.arguments), (CommandResult{2, "", "brantel: " + each.says + "\n"}));
    }
}

TEST_F(CardCommand, SaysHowItIsUsed)
{
    const struct {
        Arguments arguments;
        const char* says;
    } cases[] = {
        {{"card"}, "--slot is required"},
        {{"card", "--slot", "10"}, "--slot: Value 10 not in range 0 to 9"},
        {{"card", "--slot", "3", "--speed", "0"}, "--speed: Value 0 not in range 0.001000 to 1000.000000"},
        {{"card", "--slot", "3", "--time-column", "t"}, "--time-column: only with --source csv:FILE"},
        {{"card", "--slot", "3", "--source", "host", "--interval", "1"}, "--interval: only with --source csv:FILE"},
        {{"card", "--slot", "3", "--source", "wave:FILE", "--speed", "1"}, "--speed: only with --source csv:FILE"},
        {{"card", "--step", "--slot", "3"}, "--step: only with --source csv:FILE"},
        {{"get"}, "slot is required"},
        {{"get", "10", "1"}, "slot: Value 10 not in range 0 to 9"},
        {{"get", "3"}, "oids is required"},
        {{"set", "3"}, "values is required"},
        {{"set", "3", "1=uint8:1", "--timeout", "0"}, "--timeout: Value 0 not in range 1 to 3600"},
        {{"watch", "3", "1", "--count", "0"}, "--count: Value 0 not in range 1 to 1000000000"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(brantel(each.arguments),
                  (CommandResult{2, "", std::string(each.says) + "\nRun with --help for more information.\n"}));
    }
    for (const Arguments& level : {Arguments{"card"}, Arguments{"card", "list"}, Arguments{"card", "objects"},
                                   Arguments{"card", "keys"}, Arguments{"get"}, Arguments{"set"}, Arguments{"watch"}}) {
        Arguments help = level;
        help.emplace_back("--help");
        EXPECT_NE(brantel(help).out.find("\nExamples:\n  brantel "), std::string::npos);
    }
}

TEST_F(CardCommand, ColoursFailuresOnATerminalOnly)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    std::vector<std::string> environment = m_environment;
    environment.insert(environment.end(), {"TERM=xterm", "NO_COLOR="});
    LiveCommand get(BRANTEL_COMMAND, {"get", "3", "8"}, LiveCommand::Output::TERMINAL, environment);
    get.readLine();
    const std::string row = "0x00000008  0x00000008  -     failed: 7=0x7=RESULT WRONG OID: the card has no such object";
    EXPECT_EQ(get.readLine(), "\x1b[31m" + row + "\x1b[0m\r\n");
    EXPECT_EQ(brantel({"get", "3", "8"}, {"", "", "", {"TERM=xterm", "NO_COLOR="}}).out,
              "OID         Name        Type  Value\n" + row + "\n");
}

TEST_F(CardCommand, SaysWhenItsOutputCannotBeWritten)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const CommandResult fails{2, "", "brantel: cannot write to standard output: No space left on device\n"};
    for (const Arguments& arguments : {Arguments{"get", "3", "card.led"}, Arguments{"set", "3", "card.led=uint8:1"},
                                       Arguments{"watch", "3", "card.led"}, Arguments{"card", "list"},
                                       Arguments{"card", "objects"}, Arguments{"card", "--slot", "4"}}) {
        EXPECT_EQ(brantel(arguments, {"", "/dev/full", "", {}}), fails) << arguments[0];
    }
}

}  // namespace
