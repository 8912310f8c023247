// "brantel card", "get", "set" and "watch", end to end.

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include "apps/commands/CardProcess.h"
#include "common/UtcTime.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

// Every test has its own runtime directory, and so its own cards.
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

// `text` with `by` for whatever looks like `pattern`, in which "0" stands for any digit.
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
    return replaced(text, "0000-00-00T00:00:00.000Z", "TIME");
}

std::string withoutUptimes(const std::string& text)
{
    return replaced(replaced(text, "0 s  ", "# s  "), "\"card.uptime\":0", "\"card.uptime\":#");
}

// Whether a process has a handler for the signal.
bool catchesSignal(int process, int signal)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string name;
    std::string value;
    while (status >> name && std::getline(status, value)) {
        if (name == "SigCgt:") {
            return ((std::stoull(value, nullptr, 16) >> (signal - 1)) & 1U) != 0;
        }
    }
    return false;
}

constexpr const char* LED =
    "OID         Name      Type   Value\n"
    "0x0001000B  card.led  uint8  1\n";

TEST_F(CardCommand, PrintsItsEndpoints)
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
                                 "/brantel/ICSCClient3.ReadWriteSync: already served by another connection\n"}));
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

TEST_F(CardCommand, ReadsGroupsOfObjects)
{
    const std::string signals = m_directory.write("signals.yaml", "signals:\n  - {name: one}\n  - {name: two}\n");
    const CardProcess card({"--slot", "3", "--source", "wave:" + signals}, m_environment);
    const std::string one =
        "OID         Name          Type    Value\n"
        "0x00040001  wave.1        int32   0\n"
        "0x00040101  wave.1.label  string  one\n";
    EXPECT_EQ(brantel({"get", "3", "wave.1."}).out,
              "OID         Name          Type    Value\n"
              "0x00040101  wave.1.label  string  one\n");
    EXPECT_EQ(brantel({"get", "3", "wave.1", "wave.1."}), (CommandResult{0, one, ""}));
    EXPECT_EQ(brantel({"get", "3", "wave."}), (CommandResult{0,
                                                             "OID         Name          Type    Value\n"
                                                             "0x00040001  wave.1        int32   0\n"
                                                             "0x00040002  wave.2        int32   0\n"
                                                             "0x00040101  wave.1.label  string  one\n"
                                                             "0x00040102  wave.2.label  string  two\n",
                                                             ""}));
    EXPECT_EQ(brantel({"get", "3", "cpu."}),
              (CommandResult{1, "", "brantel: slot 3: the card has none of these objects\n"}));
    EXPECT_EQ(brantel({"get", "3", "wave.3", "wave.3."}).exitCode, 1) << "one that is named is missed";
    EXPECT_EQ(
        brantel({"get", "3", "tape."}),
        (CommandResult{2, "", "brantel: no object has a name that begins with 'tape.' (brantel card objects)\n"}));

    const CommandResult all = brantel({"get", "3", "--all", "--json"});
    EXPECT_EQ(all.exitCode, 0);
    EXPECT_EQ(std::count(all.out.begin(), all.out.end(), '\n'), 18 + 4) << all.out;
    EXPECT_EQ(brantel({"get", "3", "--all", "card.led"}).exitCode, 2);
}

TEST_F(CardCommand, SaysOnATerminalThatItWaits)
{
    const CardProcess card({"--slot", "3", "--fault", "no-answer"}, m_environment);
    const CommandResult result = brantel({"get", "3", "--all", "--timeout", "1"});
    EXPECT_EQ(result,
              (CommandResult{1, "",
                             "brantel: slot 3: failed: no answer: no card is serving the slot, or nothing came back "
                             "in time\n"}));
    CommandSetting setting;
    setting.environment = m_environment;
    const CommandResult onTerminal = runProgram(
        "/usr/bin/script", {"-qec", std::string(BRANTEL_COMMAND) + " get 3 --all --timeout 1", "/dev/null"}, setting);
    EXPECT_EQ(onTerminal.exitCode, 1);
    EXPECT_EQ(onTerminal.out.rfind("brantel: waiting for the card in slot 3\r\n", 0), 0U) << onTerminal;
}

TEST_F(CardCommand, ShowsWhatCouldNotBeRead)
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
                             "{\"slot\":3,\"oid\":65544,\"object\":\"card.mac\",\"type\":\"mac\","
                             "\"value\":\"02:00:00:00:00:03\"}\n"
                             "{\"slot\":3,\"oid\":8,\"object\":\"0x00000008\",\"code\":7,"
                             "\"reason\":\"7=0x7=RESULT WRONG OID: the card has no such object\"}\n",
                             ""}));
}

TEST_F(CardCommand, ShowsThatACardDoesNotAnswer)
{
    const CardProcess card({"--slot", "3", "--fault", "no-answer"}, m_environment);
    EXPECT_EQ(
        brantel({"get", "3", "card.led", "--timeout", "1"}),
        (CommandResult{1,
                       "OID         Name      Type  Value\n"
                       "0x0001000B  card.led  -     failed: no answer: no card is serving the slot, or nothing came "
                       "back in time\n",
                       ""}));
    EXPECT_EQ(brantel({"set", "3", "card.led=uint8:1", "--timeout", "1"}),
              (CommandResult{
                  1, "card.led: failed: no answer: no card is serving the slot, or nothing came back in time\n", ""}));
}

// A request that is sent fails with another text.
TEST_F(CardCommand, DoesNotWaitForAnEmptySlot)
{
    const std::string led = "OID         Name      Type  Value\n0x0001000B  card.led  -     ";
    const std::string failed = "failed: no answer: no card is serving the slot\n";
    const auto expectNoCard = [&] {
        EXPECT_EQ(brantel({"get", "3", "card.led"}), (CommandResult{1, led + failed, ""}));
        EXPECT_EQ(brantel({"get", "3", "card."}), (CommandResult{1, "", "brantel: slot 3: " + failed}));
        EXPECT_EQ(brantel({"set", "3", "card.led=uint8:1"}), (CommandResult{1, "card.led: " + failed, ""}));
        const CommandResult watch = brantel({"watch", "3", "card.led", "--count", "2", "--interval", "0.01", "--json"});
        const std::string row =
            "{\"time\":\"TIME\",\"slot\":3,\"values\":{},\"failures\":{\"card.led\":{\"code\":null,"
            "\"reason\":\"no answer: no card is serving the slot\"}}}\n";
        EXPECT_EQ(withoutTimes(watch.out), row + row);
    };
    expectNoCard();
    CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(brantel({"get", "3", "card.led"}), (CommandResult{0, LED, ""}));
    card.end(SIGKILL);
    expectNoCard();
}

TEST_F(CardCommand, WatchesInUniversalTime)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const std::string row =
        brantel({"watch", "3", "card.led", "--count", "1", "--json"}, {"", "", "", {"TZ=EAST-9"}}).out;
    const std::string start = R"({"time":")";
    const std::optional<UtcTime> time = parseUtcTime(row.substr(start.size(), row.find('Z') + 1 - start.size()));
    ASSERT_TRUE(time) << row;
    EXPECT_LT(utcTimeNow() - *time, std::chrono::hours(1));
    EXPECT_GE(utcTimeNow() - *time, std::chrono::hours(0));
}

TEST_F(CardCommand, ShowsEveryResultCodeInJson)
{
    const auto failure = [&] {
        const std::string json = brantel({"get", "3", "card.led", "--timeout", "1", "--json"}).out;
        return json.substr(json.find("\"code\""));
    };
    EXPECT_EQ(failure(), "\"code\":null,\"reason\":\"no answer: no card is serving the slot\"}\n");
    CardProcess silent({"--slot", "3", "--fault", "no-answer"}, m_environment);
    EXPECT_EQ(failure(),
              "\"code\":null,\"reason\":\"no answer: no card is serving the slot, or nothing came back in time\"}\n");
    silent.end(SIGTERM);
    const CardProcess card({"--slot", "3", "--fault", "result=0xFFFFFFFF"}, m_environment);
    EXPECT_EQ(failure(), "\"code\":-1,\"reason\":\"-1=0xffffffff=unknown: a result code without a meaning\"}\n");
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

// A name may be any text: here it starts a terminal's colour by a C1 control and turns the direction of writing.
TEST_F(CardCommand, ShowsNoControlCharacterOfACard)
{
    const std::string rightToLeft = {'\xE2', '\x80', '\xAE'};
    const std::string name =
        "\xC2\x9B"
        "31m" +
        rightToLeft + "\x7F.";
    const std::string json = R"("\u009b31m\u202e\u007f.")";
    const std::string recording = m_directory.write("recording.csv",
                                                    "a\n\x9B"
                                                    "31m\n");
    const CardProcess card({"--slot", "3", "--source", "csv:" + recording}, m_environment);
    EXPECT_EQ(brantel({"set", "3", "card.name=string:" + name}), (CommandResult{0, "card.name: written\n", ""}));
    EXPECT_EQ(brantel({"get", "3", "card.name", "csv.1"}), (CommandResult{0,
                                                                          "OID         Name       Type    Value\n"
                                                                          "0x00010002  card.name  string  ?31m??.\n"
                                                                          "0x00030001  csv.1      string  \uFFFD31m\n",
                                                                          ""}));
    EXPECT_EQ(value("3", "card.name"), json);
    EXPECT_EQ(value("3", "csv.1"), "\"\uFFFD31m\"");
    EXPECT_EQ(withoutTimes(brantel({"watch", "3", "card.name", "csv.1", "--count", "1"}).out),
              "Time                      card.name  csv.1\n"
              "TIME  ?31m??.    \uFFFD31m\n");
    EXPECT_EQ(withoutTimes(brantel({"watch", "3", "card.name", "--count", "1", "--json"}).out),
              "{\"time\":\"TIME\",\"slot\":3,\"values\":{\"card.name\":" + json + "}}\n");
    EXPECT_EQ(withoutUptimes(brantel({"card", "list"}).out),
              "Slot  Uptime  Name     Source\n"
              "   3     # s  ?31m??.  csv:" +
                  recording + "\n");
    EXPECT_EQ(brantel({"set", "3", "card.led=string:" + name}),
              (CommandResult{1, "card.led: failed: 6=0x6=RESULT WRONG TYPE: the object has another type\n", ""}));
    EXPECT_EQ(
        brantel({"set", "3", name + "=uint8:1"}),
        (CommandResult{2, "",
                       "brantel: unknown object '?31m??.'; expected a number or a name of 'brantel card objects'\n"}));
}

TEST_F(CardCommand, WritesAndReadsBack)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    EXPECT_EQ(brantel({"set", "3", "card.led=uint8:2", "65538=string:a=b:c"}),
              (CommandResult{0, "card.led card.name: written\n", ""}));
    EXPECT_EQ(value("3", "card.led"), "2");
    EXPECT_EQ(value("3", "card.name"), "\"a=b:c\"");
    EXPECT_EQ(brantel({"set", "3", "0x1000B=uint8:3", "--json"}),
              (CommandResult{0, "{\"slot\":3,\"oids\":[65547],\"objects\":[\"card.led\"],\"written\":true}\n", ""}));
}

TEST_F(CardCommand, ShowsWhatWasNotWritten)
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
              "Time                      card.led  card.mac           0x00000008\n"
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
        EXPECT_EQ(watch.readLine(), "Time                      card.led\n");
        EXPECT_EQ(withoutTimes(watch.readLine()), "TIME  1\n");
        EXPECT_EQ(watch.endWith(signal), 0);
    }
}

TEST_F(CardCommand, WatchesAnEmptySlotUntilASignal)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        LiveCommand watch(BRANTEL_COMMAND, {"watch", "3", "card.led"}, LiveCommand::Output::PIPE, m_environment);
        while (!catchesSignal(watch.process(), signal)) {
            std::this_thread::yield();
        }
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(watch.endWith(signal), 1) << "nothing was read";
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4)) << "a reading is given up after 7";
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
              "   9       -  -       failed: malformed value: the value does not have the type of the object, or the "
              "length of its type\n");
    EXPECT_EQ(
        withoutUptimes(brantel({"card", "list", "--json"}).out),
        "{\"slot\":3,\"card.name\":\"card 3\",\"card.source\":\"host\",\"card.uptime\":#}\n"
        "{\"slot\":9,\"code\":null,\"reason\":\"malformed value: the value does not have "
        "the type of the object, or the length of its type\",\"card.name\":\"card 9\",\"card.source\":\"host\"}\n");
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
    EXPECT_NE(json.out.find("{\"oid\":65547,\"object\":\"card.led\",\"type\":\"uint8\",\"writable\":true,"
                            "\"meaning\":\"0 off, 1 green, 2 amber, 3 red\"}\n"),
              std::string::npos)
        << json.out;
    EXPECT_EQ(std::count(table.out.begin(), table.out.end(), '\n'),
              std::count(json.out.begin(), json.out.end(), '\n') + 1);
}

TEST_F(CardCommand, FailsOnDemand)
{
    const CardProcess card({"--slot", "3"}, m_environment);
    const std::string malformedAnswer =
        "failed: malformed answer: the card sent something other than the requested values\n";
    const std::string malformedValue =
        "failed: malformed value: the value does not have the type of the object, or the length of its type\n";
    const struct {
        const char* fault;
        std::string shows;
    } cases[] = {
        {"result=13", "failed: 13=0xd=RESULT WRONG MAGIC: the card did not recognise the message\n"},
        {"silence", "failed: 33554432=0x2000000=TIMEOUT: the card did not answer in time\n"},
        {"delay=9", "failed: 33554432=0x2000000=TIMEOUT: the card did not answer in time\n"},
        {"no-answer", "failed: no answer: no card is serving the slot, or nothing came back in time\n"},
        {"duplicate-oid", malformedAnswer},
        {"missing-oid", malformedAnswer},
        {"foreign-oid", malformedAnswer},
        {"wrong-count", malformedAnswer},
        {"wrong-type", malformedValue},
        {"wrong-type=8", malformedValue},
        {"wrong-length=2", malformedValue},
        {"truncated", malformedAnswer},
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

// Silence is not among them: what waits for a timeout each time is tried above.
TEST_F(CardCommand, OutlivesEveryFaultAtBothEndsOfItsRange)
{
    CardProcess card({"--slot", "3"}, m_environment);
    for (const std::string fault :
         {"delay=0", "result=1", "result=4294967295", "duplicate-oid", "missing-oid", "foreign-oid", "wrong-count",
          "wrong-type=0", "wrong-type=255", "wrong-length=0", "wrong-length=1000", "truncated",
          "duplicate-oid,missing-oid,foreign-oid,wrong-count,wrong-type=0,wrong-length=1000,truncated"}) {
        const CardProcess startedSo({"--slot", "4", "--fault", fault}, m_environment);
        for (const std::string slot : {"3", "4"}) {
            EXPECT_EQ(brantel({"set", slot, "card.fault=string:" + fault}).exitCode, 0) << fault;
            EXPECT_NE(brantel({"get", slot, "card.led", "card.name", "card.mac"}).exitCode, -1) << fault;
            EXPECT_NE(brantel({"set", slot, "card.led=uint8:1"}).exitCode, -1) << fault;
            EXPECT_NE(brantel({"watch", slot, "card.led", "--count", "1"}).exitCode, -1) << fault;
            EXPECT_EQ(brantel({"set", slot, "card.fault=string:"}).exitCode, 0) << fault;
            EXPECT_EQ(brantel({"get", slot, "card.led"}), (CommandResult{0, LED, ""})) << fault;
        }
    }
    for (const std::string fault :
         {"delay=-1", "delay=3600.1", "delay=nan", "result=0", "result=-1", "result=4294967296", "wrong-type=-1",
          "wrong-type=256", "wrong-length=-1", "wrong-length=1001", ",silence", "silence,"}) {
        EXPECT_EQ(brantel({"set", "3", "card.fault=string:" + fault}),
                  (CommandResult{
                      1, "card.fault: failed: 9=0x9=RESULT WRONG VALUE: the object does not take this value\n", ""}))
            << fault;
        EXPECT_EQ(brantel({"card", "--slot", "4", "--fault", fault}).exitCode, 2) << fault;
        EXPECT_EQ(brantel({"get", "3", "card.led"}), (CommandResult{0, LED, ""})) << fault;
    }
    EXPECT_EQ(card.end(SIGTERM), 0);
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
        {{"card", "--slot", "3", "--source", "tape"}, "unknown source 'tape'; expected host, csv:FILE or wave:FILE"},
        {{"card", "--slot", "3", "--source", "hots"}, "unknown source 'hots'; did you mean 'host'?"},
        {{"card", "--slot", "3", "--source", "csv:"}, "unknown source 'csv:'; expected host, csv:FILE or wave:FILE"},
        {{"card", "--slot", "3", "--source", "csv:/nowhere"}, "cannot read /nowhere: No such file or directory"},
        {{"card", "--slot", "3", "--fault", "noise"},
         "--fault: 'noise': the faults are delay=SECONDS, silence, no-answer, result=CODE, duplicate-oid, missing-oid, "
         "foreign-oid, wrong-count, wrong-type[=CODE], wrong-length=BYTES and truncated"},
        {{"card", "--slot", "3", "--fault", "silence,result=0"},
         "--fault: 'result=0': the result code of a failure is a number from 1 to 4294967295"},
        {{"get", "3", "card"}, "unknown object 'card'; expected a number or a name of 'brantel card objects'"},
        {{"watch", "3", "4294967296"},
         "unknown object '4294967296'; expected a number or a name of 'brantel card objects'"},
        {{"set", "3", "card.led"}, "invalid assignment 'card.led'; expected OID=TYPE:VALUE"},
        {{"set", "3", "card.led=2"}, "invalid assignment 'card.led=2'; expected OID=TYPE:VALUE"},
        {{"set", "3", "card.led=byte:2"},
         "'card.led=byte:2': unknown type 'byte'; expected uint64, uint32, uint16, uint8, int64, int32, int16, int8, "
         "bool, string, buffer, ipv4 or mac"},
        {{"set", "3", "card.led=unit8:2"}, "'card.led=unit8:2': unknown type 'unit8'; did you mean 'uint8'?"},
        {{"set", "3", "card.led=uint8:256"}, "'card.led=uint8:256': '256' is not of type uint8"},
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
        {{"card", "--slot", "10"}, "--slot: '10' is not a number from 0 to 9 (decimal or 0x)"},
        {{"card", "--slot", "3", "--speed", "0"}, "--speed: '0' is not a number from 0.001 to 1000"},
        {{"card", "--slot", "3", "--time-column", "t"}, "--time-column: only with --source csv:FILE"},
        {{"card", "--slot", "3", "--source", "host", "--interval", "1"}, "--interval: only with --source csv:FILE"},
        {{"card", "--slot", "3", "--source", "wave:FILE", "--speed", "1"}, "--speed: only with --source csv:FILE"},
        {{"card", "--step", "--slot", "3"}, "--step: only with --source csv:FILE"},
        {{"get"}, "SLOT is required"},
        {{"get", "10", "1"}, "SLOT: '10' is not a number from 0 to 9 (decimal or 0x)"},
        {{"get", "3"}, "OID or --all is required"},
        {{"set", "3"}, "OID=TYPE:VALUE is required"},
        {{"set", "3", "1=uint8:1", "--timeout", "0"}, "--timeout: '0' is not a number from 1 to 3600 (decimal or 0x)"},
        {{"watch", "3", "1", "--count", "0"}, "--count: '0' is not a number from 1 to 1000000000 (decimal or 0x)"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(
            brantel(each.arguments),
            (CommandResult{2, "", "brantel: " + std::string(each.says) + "\nRun with --help for more information.\n"}));
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

}  // namespace brantel
