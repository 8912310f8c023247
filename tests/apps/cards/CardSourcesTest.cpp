// The sources "csv" and "wave": values that change with time, by a clock that the test sets.

#include <filesystem>
#include <set>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "apps/cards/CardValues.h"
#include "cards/CardObjects.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace brantel {

using namespace oids;

namespace {

class CardSources : public testing::Test {
protected:
    CardObjects csvObjects(const std::string& content, const CsvReplay& how = {})
    {
        CsvReplay replay = how;
        replay.file = m_directory.write("file", content);
        CardObjects objects;
        addCsvObjects(objects, replay, clock());
        return objects;
    }

    CardObjects waveObjects(const std::string& content)
    {
        CardObjects objects;
        addWaveObjects(objects, m_directory.write("file", content), clock());
        return objects;
    }

    // The values of one object at these seconds after the start.
    std::vector<std::string> valuesAt(const CardObjects& objects, std::uint32_t oid, const std::vector<double>& times)
    {
        const double start = m_now;
        std::vector<std::string> values;
        for (const double time : times) {
            m_now = start + time;
            values.push_back(textsOf(objects).at(oid));
        }
        m_now = start;
        return values;
    }

    // What is wrong with a file, without its path.
    std::string csvError(const std::string& content, const CsvReplay& how = {})
    {
        return withoutPath(errorOf([&] { csvObjects(content, how); }));
    }

    std::string waveError(const std::string& content)
    {
        return withoutPath(errorOf([&] { waveObjects(content); }));
    }

    const TemporaryDirectory m_directory;

private:
    SecondsClock clock()
    {
        return [this] { return m_now; };
    }

    std::string withoutPath(std::string error) const
    {
        const std::string folder = m_directory.path() + "/";
        const std::size_t posFolder = error.find(folder);
        return (posFolder == std::string::npos) ? error : error.erase(posFolder, folder.size());
    }

    double m_now = 1000;
};

using CardCsv = CardSources;

TEST_F(CardCsv, ServesTheColumnsWithTheirNames)
{
    EXPECT_EQ(textsOf(csvObjects("time,load,state\n0,7,up\n")), (ValueTexts{{CSV_COLUMN, "int32 7"},
                                                                            {CSV_LABEL, "string load"},
                                                                            {CSV_COLUMN + 1, "string up"},
                                                                            {CSV_LABEL + 1, "string state"}}));
}

TEST_F(CardCsv, TakesTheNarrowestTypeForAColumn)
{
    const CardObjects objects = csvObjects(
        "a,b,c,d,e,f\n"
        "-1,0,-1,0,,0\n"
        "2147483647,4294967295,4294967296,18446744073709551615,1,0.5\n");
    EXPECT_EQ(textsOf(objects).at(CSV_COLUMN), "int32 -1");
    EXPECT_EQ(textsOf(objects).at(CSV_COLUMN + 1), "uint32 0");
    EXPECT_EQ(textsOf(objects).at(CSV_COLUMN + 2), "int64 -1");
    EXPECT_EQ(textsOf(objects).at(CSV_COLUMN + 3), "uint64 0");
    EXPECT_EQ(textsOf(objects).at(CSV_COLUMN + 4), "string ");
    EXPECT_EQ(textsOf(objects).at(CSV_COLUMN + 5), "string 0");
}

TEST_F(CardCsv, ReplaysByItsTimesAgainAndAgain)
{
    // Three rows in 30 s, so the last one stays for 15 s.
    const CardObjects objects =
        csvObjects("time,a\n2026-01-01T00:00:10,1\n2026-01-01T00:00:20,2\n2026-01-01T00:00:40,3\n");
    EXPECT_EQ(valuesAt(objects, CSV_COLUMN, {0, 9.9, 10, 29.9, 30, 44.9, 45, 55.5}),
              (std::vector<std::string>{"int32 1", "int32 1", "int32 2", "int32 2", "int32 3", "int32 3", "int32 1",
                                        "int32 2"}));
}

TEST_F(CardCsv, ReplaysFasterOrSlower)
{
    const char* const recording = "time,a\n0,1\n10,2\n";
    EXPECT_EQ(valuesAt(csvObjects(recording, {"", "", 1, 10}), CSV_COLUMN, {0.9, 1.1}),
              (std::vector<std::string>{"int32 1", "int32 2"}));
    EXPECT_EQ(valuesAt(csvObjects(recording, {"", "", 1, 0.1}), CSV_COLUMN, {99, 101}),
              (std::vector<std::string>{"int32 1", "int32 2"}));
}

TEST_F(CardCsv, ReplaysRowsWithoutTimesAtAnInterval)
{
    EXPECT_EQ(valuesAt(csvObjects("a\n1\n2\n", {"", "", 5, 1}), CSV_COLUMN, {4.9, 5.1, 9.9, 10.1}),
              (std::vector<std::string>{"int32 1", "int32 2", "int32 2", "int32 1"}));
}

TEST_F(CardCsv, TakesAnotherColumnForTheTimes)
{
    const CardObjects objects = csvObjects("a,at,time\n1,0,5\n2,3,5\n", {"", "at", 1, 1});
    EXPECT_EQ(valuesAt(objects, CSV_COLUMN, {2.9, 3.1}), (std::vector<std::string>{"int32 1", "int32 2"}));
    EXPECT_EQ(textsOf(objects).at(CSV_LABEL + 1), "string time");
}

TEST_F(CardCsv, StaysAtTheOnlyRow)
{
    EXPECT_EQ(valuesAt(csvObjects("time,a\n9,1\n"), CSV_COLUMN, {0, 0.5, 7}), (std::vector<std::string>(3, "int32 1")));
}

TEST_F(CardCsv, NamesTheLineThatCannotBeUsed)
{
    std::string many = "c1";
    for (int i = 2; i <= 65; ++i) {
        many += ",c" + std::to_string(i);
    }
    EXPECT_EQ(csvError(""), "file: no rows after the header");
    EXPECT_EQ(csvError("a,b\n"), "file: no rows after the header");
    EXPECT_EQ(csvError("a,b\n1,2\n3\n"), "file:3: 1 fields, but the header has 2");
    EXPECT_EQ(csvError("time,b\n1,2\nnoon,3\n"), "file:3: 'noon' is not a time");
    EXPECT_EQ(csvError("time,b\n2,2\n1,3\n"), "file:3: its time is before that of the row above");
    EXPECT_EQ(csvError("\ntime\n2\n"), "file:2: 0 columns of values, not 1 to 64");
    EXPECT_EQ(csvError(many + "\n"), "file:1: 65 columns of values, not 1 to 64");
    EXPECT_EQ(csvError("a\n" + std::string(1001, 'x') + "\n"), "file:2: a field is longer than 1000 bytes");
    EXPECT_EQ(csvError("a\n1\n", {"", "at", 1, 1}), "file:1: no column 'at'");
    EXPECT_EQ(csvError("at,b,at\n1,2,3\n", {"", "at", 1, 1}), "file:1: several columns are named 'at'");
    EXPECT_EQ(csvError("time,b,time\n1,2,3\n"), "file:1: several columns are named 'time'");
}

TEST_F(CardCsv, RefusesMoreThanAMillionRows)
{
    std::string rows = "a\n";
    for (int i = 0; i < 1'000'000; ++i) {
        rows += "1\n";
    }
    csvObjects(rows);
    EXPECT_EQ(csvError(rows + "1\n"), "file:1000002: more than 1000000 rows");
}

using CardWave = CardSources;

constexpr double HALF = 0.5;

std::string oneSignal(const std::string& fields)
{
    return "signals:\n  - {name: it, " + fields + "}\n";
}

TEST_F(CardWave, ServesTheSignalsWithTheirNames)
{
    EXPECT_EQ(textsOf(waveObjects("signals:\n  - name: one\n    low: 7\n  - {name: two words, type: uint8}\n")),
              (ValueTexts{{WAVE_SIGNAL, "int32 7"},
                          {WAVE_LABEL, "string one"},
                          {WAVE_SIGNAL + 1, "uint8 0"},
                          {WAVE_LABEL + 1, "string two words"}}));
}

struct Shaped {
    const char* fields;
    std::vector<std::string> values;  // at 0, 1, 2, 3 and 4 s
};

TEST_F(CardWave, FollowsTheShape)
{
    const Shaped signals[] = {
        {"shape: constant, low: -3", {"int32 -3", "int32 -3", "int32 -3", "int32 -3", "int32 -3"}},
        {"shape: sine, low: -10, high: 10, period: 4", {"int32 0", "int32 10", "int32 0", "int32 -10", "int32 0"}},
        {"shape: square, low: 1, high: 2, period: 4", {"int32 2", "int32 2", "int32 1", "int32 1", "int32 2"}},
        {"shape: triangle, high: 10, period: 4", {"int32 0", "int32 5", "int32 10", "int32 5", "int32 0"}},
        {"shape: sawtooth, high: 8, period: 4", {"int32 0", "int32 2", "int32 4", "int32 6", "int32 0"}},
        {"shape: sawtooth, high: 8, period: 4, phase: 0.25", {"int32 2", "int32 4", "int32 6", "int32 0", "int32 2"}},
        {"type: bool, shape: square, high: 1, period: 2",
         {"bool true", "bool false", "bool true", "bool false", "bool true"}},
    };
    for (const Shaped& signal : signals) {
        EXPECT_EQ(valuesAt(waveObjects(oneSignal(signal.fields)), WAVE_SIGNAL, {0, 1, 2, 3, 4}), signal.values)
            << signal.fields;
    }
}

TEST_F(CardWave, MakesNoiseBetweenLowAndHigh)
{
    const CardObjects objects = waveObjects(oneSignal("type: uint8, shape: noise, low: 3, high: 5"));
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        seen.insert(textsOf(objects).at(WAVE_SIGNAL));
    }
    EXPECT_EQ(seen, (std::set<std::string>{"uint8 3", "uint8 4", "uint8 5"}));
}

TEST_F(CardWave, ReachesTheLimitsOfEveryType)
{
    const struct {
        const char* type;
        const char* low;
        const char* high;
    } types[] = {
        {"uint64", "0", "9007199254740992"},
        {"uint32", "0", "4294967295"},
        {"uint16", "0", "65535"},
        {"uint8", "0", "255"},
        {"int64", "-9007199254740992", "9007199254740992"},
        {"int32", "-2147483648", "2147483647"},
        {"int16", "-32768", "32767"},
        {"int8", "-128", "127"},
    };
    for (const auto& each : types) {
        const CardObjects objects = waveObjects(oneSignal(std::string("shape: square, period: 1, type: ") + each.type +
                                                          ", low: " + each.low + ", high: " + each.high));
        const std::string type = std::string(each.type) + " ";
        EXPECT_EQ(valuesAt(objects, WAVE_SIGNAL, {0, HALF}),
                  (std::vector<std::string>{type + each.high, type + each.low}));
    }
}

TEST_F(CardWave, NamesThePlaceThatCannotBeUsed)
{
    std::string many = "signals:\n";
    for (int i = 0; i < 65; ++i) {
        many += "  - {name: it}\n";
    }
    const std::string noList = "the signals are written as a list of 1 to 64 below 'signals:'";
    const std::string noSignal = "a signal is written {name: ..., type: ..., ...}";
    const std::string noName = "a signal needs a name of 1 to 64 characters";
    const std::pair<std::string, std::string> cases[] = {
        {"", "1:1: " + noList},
        {"# nothing\n", "1:1: " + noList},
        {"word\n", "1:1: " + noList},
        {"signals:\n", "1:1: " + noList},
        {"signals: []\n", "1:10: " + noList},
        {"signals: 3\n", "1:10: " + noList},
        {"signals: {name: it}\n", "1:10: " + noList},
        {"- {name: it}\n", "1:1: " + noList},
        {"other: 3\n", "1:1: 'other' is not a field: " + noList},
        {many, "2:3: " + noList},
        {many.substr(0, 24) + "more: 1\n", "3:1: 'more' is not a field: " + noList},
        {many.substr(0, 24) + "signals: []\n", "3:1: 'signals' is a duplicate"},
        {many.substr(0, 24) + "---\n" + many, "3:1: a second document: a description is one"},
        {many.substr(0, 24) + "--- ,\n", "3:1: a second document: a description is one"},
        {",", "1:1: " + noList},
        {",time,value\n1,2,3\n", "1:1: " + noList},
        {"signals:\n  - {}\n", "2:5: " + noName},
        {"signals:\n  - word\n", "2:5: " + noSignal},
        {"signals:\n  - [name]\n", "2:5: " + noSignal},
        {"signals:\n  - {[name]: it}\n", "2:6: '' is not a field: " + noSignal},
        {"signals:\n  - name:\n", "2:5: " + noName},
        {"signals:\n  - {name: ''}\n", "2:12: " + noName},
        {"signals:\n  - {name: [it]}\n", "2:12: " + noName},
        {"signals:\n  - {name: " + std::string(65, 'x') + "}\n", "2:12: " + noName},
        {oneSignal("name: that"), "2:16: 'name' is a duplicate"},
        {oneSignal("colour: red"), "2:16: 'colour' is not a field: " + noSignal},
        {oneSignal("low: 2, high: 1"), "2:30: high: '1' is not a number from 2 to 2147483647"},
        {oneSignal("low: high"), "2:21: low: 'high' is not a number from -2147483648 to 2147483647"},
        {oneSignal("low: [1]"), "2:21: low: '' is not a number from -2147483648 to 2147483647"},
        {oneSignal("low:"), "2:16: low: '' is not a number from -2147483648 to 2147483647"},
        {oneSignal("type: uint8, low: -1"), "2:34: low: '-1' is not a number from 0 to 255"},
        {oneSignal("low: -1, type: uint8"), "2:21: low: '-1' is not a number from 0 to 255"},
        {oneSignal("type: uint8, high: 256"), "2:35: high: '256' is not a number from 0 to 255"},
        {oneSignal("type: bool, high: 2"), "2:34: high: '2' is not a number from 0 to 1"},
        {oneSignal("type: uint64, high: 9007199254740994"),
         "2:36: high: '9007199254740994' is not a number from 0 to 9007199254740992"},
        {oneSignal("high: .nan"), "2:22: high: '.nan' is not a number from 0 to 2147483647"},
        {oneSignal("high: nan"), "2:22: high: 'nan' is not a number from 0 to 2147483647"},
        {oneSignal("period: 0"), "2:24: period: '0' is not a number from 0.001 to 1000000"},
        {oneSignal("period: .inf"), "2:24: period: '.inf' is not a number from 0.001 to 1000000"},
        {oneSignal("phase: -0.1"), "2:23: phase: '-0.1' is not a number from 0 to 1"},
        {oneSignal("phase: 1.1"), "2:23: phase: '1.1' is not a number from 0 to 1"},
        {oneSignal("type: string"), "2:22: 'string': the type of a signal is uint8, ..., int64 or bool"},
        {oneSignal("type: [int8]"), "2:22: '': the type of a signal is uint8, ..., int64 or bool"},
        {oneSignal("shape: round"), "2:23: 'round': a shape is constant, sine, square, triangle, sawtooth or noise"},
        {"signals: [\n", "2:1: end of sequence flow not found"},
        {"signals: \"\xC3\n", "1:11: a control character, or bytes that are not UTF-8"},
        {"\xC3\xA4: 1\n\xC3\xA4 \xC3: 2\n", "2:3: a control character, or bytes that are not UTF-8"},
        {"# \x04\n", "1:3: a control character, or bytes that are not UTF-8"},
    };
    for (const auto& [description, error] : cases) {
        EXPECT_EQ(waveError(description), "file:" + error) << description;
    }
    EXPECT_EQ(waveError(std::string("signals\0", 8)), "file:1: the line contains a NUL byte");
}

TEST_F(CardWave, CountsTheCharactersOfAName)
{
    std::string name;
    for (int i = 0; i < 64; ++i) {
        name += "\xC3\xA4";
    }
    EXPECT_EQ(textsOf(waveObjects("signals:\n  - name: " + name + "\n")).at(WAVE_LABEL), "string " + name);
    EXPECT_EQ(waveError("signals:\n  - name: " + name + "x\n"),
              "file:2:11: a signal needs a name of 1 to 64 characters");
}

TEST_F(CardSources, NeedAFileThatCanBeRead)
{
    CardObjects objects;
    const std::string pipe = m_directory.path() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::pair<std::string, std::string> cases[] = {
        {"/nowhere", "cannot read /nowhere: No such file or directory"},
        {m_directory.path(), "cannot read " + m_directory.path() + ": Is a directory"},
        {pipe, pipe + ": not a regular file"},
        {"/dev/zero", "/dev/zero: not a regular file"},
        {m_directory.write("huge", ""), m_directory.path() + "/huge: larger than "},
    };
    std::filesystem::resize_file(m_directory.path() + "/huge", std::uintmax_t{300} << 20U);
    for (const auto& [file, error] : cases) {
        const bool isHuge = error.find("larger") != std::string::npos;
        EXPECT_EQ(errorOf([&, path = file] {
                      addCsvObjects(objects, {path, "", 1, 1});
                  }),
                  error + (isHuge ? "268435456 bytes" : ""));
        EXPECT_EQ(errorOf([&, path = file] { addWaveObjects(objects, path); }),
                  error + (isHuge ? "1048576 bytes" : ""));
    }
}

TEST_F(CardCsv, RefusesColumnNamesThatAreNotUtf8)
{
    EXPECT_EQ(csvError("a,\xE4\n1,2\n"), "file:1: the name of the column '\xE4' is not UTF-8");
    EXPECT_EQ(textsOf(csvObjects("\xC3\xA4\n1\n")).at(CSV_LABEL), "string \xC3\xA4");
}

}  // namespace

}  // namespace brantel
