// The sources "csv" and "wave": values that change with time, by a clock that the test sets.

#include <set>

#include <gtest/gtest.h>

#include "apps/CardValues.h"
#include "cards/CardObjects.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

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
    const std::string noList = "file: 'signals' is not a list of 1 to 64";
    const std::string notInRange = "file:2:5: low and high are not in order, or not within the type";
    const std::string noPeriod =
        "file:2:5: the period is not from 0.001 to 1000000 seconds, or the phase not from 0 to 1";
    const std::string noName = "file:2:5: a signal needs a name of 1 to 64 characters";

    EXPECT_EQ(waveError(""), noList);
    EXPECT_EQ(waveError("signals: []\n"), noList);
    EXPECT_EQ(waveError("signals: 3\n"), noList);
    EXPECT_EQ(waveError("other: 3\n"), noList);
    EXPECT_EQ(waveError(many), noList);
    EXPECT_EQ(waveError("signals:\n  - {}\n"), noName);
    EXPECT_EQ(waveError("signals:\n  - word\n"), "file:2:5: a signal is written {name: ..., type: ..., ...}");
    EXPECT_EQ(waveError("signals:\n  - {name: " + std::string(65, 'x') + "}\n"), noName);
    EXPECT_EQ(waveError(oneSignal("low: 2, high: 1")), notInRange);
    EXPECT_EQ(waveError(oneSignal("type: uint8, low: -1")), notInRange);
    EXPECT_EQ(waveError(oneSignal("type: uint8, high: 256")), notInRange);
    EXPECT_EQ(waveError(oneSignal("type: bool, high: 2")), notInRange);
    EXPECT_EQ(waveError(oneSignal("high: .nan")), notInRange);
    EXPECT_EQ(waveError(oneSignal("period: 0")), noPeriod);
    EXPECT_EQ(waveError(oneSignal("period: .inf")), noPeriod);
    EXPECT_EQ(waveError(oneSignal("phase: -0.1")), noPeriod);
    EXPECT_EQ(waveError(oneSignal("colour: red")),
              "file:2:24: 'colour' is none of name, type, shape, low, high, period and phase");
    EXPECT_EQ(waveError(oneSignal("type: string")), "file:2:22: the type of a signal is uint8, ..., int64 or bool");
    EXPECT_EQ(waveError(oneSignal("shape: round")),
              "file:2:23: a shape is constant, sine, square, triangle, sawtooth or noise");
    EXPECT_EQ(waveError(oneSignal("low: high")), "file:2:21: bad conversion");
}

TEST_F(CardSources, NeedAFileThatCanBeRead)
{
    CardObjects objects;
    EXPECT_EQ(errorOf([&] {
                  addCsvObjects(objects, {"/nowhere", "", 1, 1});
              }),
              "cannot read /nowhere: No such file or directory");
    EXPECT_EQ(errorOf([&] { addWaveObjects(objects, "/nowhere"); }), "cannot read /nowhere: No such file or directory");
}

}  // namespace
