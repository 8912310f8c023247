#include "samples/SampleReader.h"

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "samples/SampleTime.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Samples = std::vector<std::string>;

class SampleReaderTest : public testing::Test {
protected:
    // Each sample as "number@line [time] value or fault", and the error that ended the reading.
    Samples samplesOf(const std::string& content, const ColumnChoice& choice = {})
    {
        const std::string path = m_directory.write("input", content);
        LineReader lines(path);
        SampleReader reader(lines, choice, -10, 99);
        Samples samples;
        try {
            while (const std::optional<Sample> sample = reader.next()) {
                samples.push_back(std::to_string(sample->number) + "@" + std::to_string(sample->line) + " " +
                                  (sample->time ? "[" + *sample->time + "] " : "") +
                                  (sample->fault.empty() ? std::to_string(sample->value) : sample->fault));
            }
        } catch (const CommandError& error) {
            samples.push_back(std::string("error ") + (error.what() + path.size()));
        }
        return samples;
    }

    TemporaryDirectory m_directory;
};

TEST_F(SampleReaderTest, ReadsOneSamplePerLine)
{
    EXPECT_EQ(samplesOf(""), (Samples{}));
    EXPECT_EQ(samplesOf("1\n-2\n007"), (Samples{"1@1 1", "2@2 -2", "3@3 7"}));
    EXPECT_EQ(samplesOf(" 1 \r\n\t2\r\n"), (Samples{"1@1 1", "2@2 2"}));
    EXPECT_EQ(samplesOf("load\n1\n"), (Samples{"1@2 1"}));
}

TEST_F(SampleReaderTest, NamesInvalidSamples)
{
    EXPECT_EQ(samplesOf("-10\n99\n-11\n100\n99999999999999999999\n"),
              (Samples{"1@1 -10", "2@2 99", "3@3 -11 is out of range, -10 to 99", "4@4 100 is out of range, -10 to 99",
                       "5@5 99999999999999999999 is out of range, -10 to 99"}));
    EXPECT_EQ(samplesOf("1\n1.5\n+1\n1a\n-\n0x1\nnan\n"),
              (Samples{"1@1 1", "2@2 '1.5' is not a whole number", "3@3 '+1' is not a whole number",
                       "4@4 '1a' is not a whole number", "5@5 '-' is not a whole number",
                       "6@6 '0x1' is not a whole number", "7@7 'nan' is not a whole number"}));
    EXPECT_EQ(samplesOf("1\n\n  \n\"\"\n2,3\n"),
              (Samples{"1@1 1", "2@2 the line is empty", "3@3 the line is empty", "4@4 the sample is empty",
                       "5@5 the number of columns is 2 and in the first row 1"}));
    EXPECT_EQ(samplesOf("\n1\n"), (Samples{"1@1 the line is empty", "2@2 1"}));
}

TEST_F(SampleReaderTest, ReadsTheChosenColumns)
{
    EXPECT_EQ(samplesOf("t,cpu\n5,1\n6,2\n", {"cpu", "t"}), (Samples{"1@2 [5] 1", "2@3 [6] 2"}));
    EXPECT_EQ(samplesOf("t,cpu\n5,1\n6,2\n", {"2", "1"}), (Samples{"1@2 [5] 1", "2@3 [6] 2"}));
    EXPECT_EQ(samplesOf("5,1\n6,2\n", {"2", ""}), (Samples{"1@1 1", "2@2 2"}));
    EXPECT_EQ(samplesOf("t,cpu\n5\n", {"cpu", "t"}),
              (Samples{"1@2 the number of columns is 1 and in the first row 2"}));
}

TEST_F(SampleReaderTest, TakesANameBeforeANumber)
{
    EXPECT_EQ(samplesOf("a,\"b\"\n1,2\n", {"b", ""}), (Samples{"1@2 2"}));
    EXPECT_EQ(samplesOf("_1,%2\n1,2\n", {"%2", ""}), (Samples{"1@2 2"}));
}

TEST_F(SampleReaderTest, TakesTheFirstRowForAHeaderIfEveryFieldStartsLikeAName)
{
    EXPECT_EQ(samplesOf("a,,Z\n1,2,3\n", {"3", ""}), (Samples{"1@2 3"}));
    EXPECT_EQ(samplesOf("2024-05-01,n/a\nx,3\n", {"2", ""}), (Samples{"1@1 'n/a' is not a whole number", "2@2 3"}));
    EXPECT_EQ(samplesOf("\"\"\n1\n"), (Samples{"1@1 the sample is empty", "2@2 1"}));
}

TEST_F(SampleReaderTest, TakesLettersOfEveryAlphabetForNamesButNotWordsForMissingValues)
{
    EXPECT_EQ(samplesOf("zeit,\u00DCber\n1,9\n", {"\u00DCber", ""}), (Samples{"1@2 9"}));
    EXPECT_EQ(samplesOf("\u6E29\u5EA6\n9\n"), (Samples{"1@2 9"}));
    EXPECT_EQ(samplesOf("\u22125\n9\n"), (Samples{"1@1 '\u22125' is not a whole number", "2@2 9"}));
    for (const std::string word : {"N/A", "nan", "NULL", "none", "inf"}) {
        EXPECT_EQ(samplesOf(word + "\n9\n"), (Samples{"1@1 '" + word + "' is not a whole number", "2@2 9"}));
    }
}

TEST_F(SampleReaderTest, LetsTheCallerDecideAboutTheHeader)
{
    EXPECT_EQ(samplesOf("5\n9\n", {"", "", Header::PRESENT}), (Samples{"1@2 9"}));
    EXPECT_EQ(samplesOf("2024,n/a\n1,9\n", {"n/a", "2024", Header::PRESENT}), (Samples{"1@2 [1] 9"}));
    EXPECT_EQ(samplesOf("load\n9\n", {"", "", Header::ABSENT}), (Samples{"1@1 'load' is not a whole number", "2@2 9"}));
    EXPECT_EQ(samplesOf("t,cpu\n5,1\n", {"cpu", "", Header::ABSENT}),
              (Samples{"error :1: there is no column 'cpu'; the columns are 1, 2"}));
}

TEST_F(SampleReaderTest, RefusesANameThatSeveralColumnsHave)
{
    EXPECT_EQ(samplesOf("a,b,a\n1,2,3\n", {"a", ""}),
              (Samples{"error :1: several columns are named 'a'; choose one by its number: 1, 3"}));
    EXPECT_EQ(samplesOf("a,b,a\n1,2,3\n", {"b", "a"}),
              (Samples{"error :1: several columns are named 'a'; choose one by its number: 1, 3"}));
    EXPECT_EQ(samplesOf("a,b,a\n1,2,3\n", {"b", ""}), (Samples{"1@2 2"}));
    EXPECT_EQ(samplesOf("a,b,a\n1,2,3\n", {"3", ""}), (Samples{"1@2 3"}));
    EXPECT_EQ(
        samplesOf("time,Timestamp,a\n1,2,3\n", {"a", ""}),
        (Samples{
            "error :1: there are several columns of times; choose one with --time-column: 1 'time', 2 'Timestamp'"}));
    EXPECT_EQ(samplesOf("time,Timestamp,a\n1,2,3\n", {"a", "2"}), (Samples{"1@2 [2] 3"}));
    EXPECT_EQ(samplesOf("time,Timestamp\n1,2\n", {"time", ""}), (Samples{"1@2 [2] 1"}));
}

TEST_F(SampleReaderTest, LimitsListsAndQuotes)
{
    std::string header = "c1";
    std::string list = "1 'c1'";
    for (int i = 2; i <= 120; ++i) {
        header += ",c" + std::to_string(i);
        list += (i > 20) ? "" : ", " + std::to_string(i) + " 'c" + std::to_string(i) + "'";
    }
    EXPECT_EQ(samplesOf(header + "\n"),
              (Samples{"error :1: there are several columns; choose one with --column: " + list + " and 100 more"}));
    const std::string eighty(80, 'x');
    EXPECT_EQ(samplesOf("1\n" + std::string(1000000, 'x') + "\n" + std::string(1000000, '9') + "\n"),
              (Samples{"1@1 1", "2@2 '" + eighty + "...' is not a whole number",
                       "3@3 " + std::string(80, '9') + "... is out of range, -10 to 99"}));
    EXPECT_EQ(samplesOf("a," + std::string(1000, 'x') + "\n"),
              (Samples{"error :1: there are several columns; choose one with --column: 1 'a', 2 '" + eighty + "...'"}));
}

TEST_F(SampleReaderTest, RequiresAnExistingColumn)
{
    EXPECT_EQ(samplesOf("t,cpu\n5,1\n"),
              (Samples{"error :1: there are several columns; choose one with --column: 1 't', 2 'cpu'"}));
    EXPECT_EQ(samplesOf("5,1\n"), (Samples{"error :1: there are several columns; choose one with --column: 1, 2"}));
    for (const char* const column : {"mem", "0", "3", "-1", "1x", "99999999999999999999"}) {
        EXPECT_EQ(samplesOf("t,cpu\n5,1\n", {column, ""}), (Samples{std::string("error :1: there is no column '") +
                                                                    column + "'; the columns are 1 't', 2 'cpu'"}));
    }
    EXPECT_EQ(samplesOf("5,1\n", {"1", "time"}),
              (Samples{"error :1: there is no column 'time'; the columns are 1, 2"}));
}

TEST_F(SampleReaderTest, ReadsQuotedFieldsOverSeveralLines)
{
    EXPECT_EQ(samplesOf("note,n\n\"a \"\"b\"\"\nc,d\",5\n\"\",\" 6\"\n", {"n", "note"}),
              (Samples{"1@2 [a \"b\"\nc,d] 5", "2@4 [] ' 6' is not a whole number"}));
}

TEST_F(SampleReaderTest, RefusesBrokenQuotes)
{
    EXPECT_EQ(samplesOf("1\n\"2\n3\n"), (Samples{"1@1 1", "error :2: the closing quote is missing"}));
    EXPECT_EQ(
        samplesOf("1\n2\"3\n"),
        (Samples{"1@1 1", "error :2: a quote is misplaced: quote whole fields, and write a quote inside as two"}));
    EXPECT_EQ(
        samplesOf("1\n\"2\"3\n"),
        (Samples{"1@1 1", "error :2: a quote is misplaced: quote whole fields, and write a quote inside as two"}));
}

TEST_F(SampleReaderTest, RefusesARowWithoutEnd)
{
    std::string content = "1\n\"2\n";
    while (content.size() < 2 * LineReader::MAX_LINE_LENGTH) {
        content += std::string(1000, 'x') + "\n";
    }
    EXPECT_EQ(samplesOf(content),
              (Samples{"1@1 1", "error :2: the row is longer than 1048576 bytes; is a closing quote missing?"}));
}

TEST(SampleTime, IsReadFromSecondsAndFromIso8601)
{
    EXPECT_EQ(SampleTimes().parse("12"), 12.0);
    EXPECT_EQ(SampleTimes().parse("-0.5"), -0.5);
    EXPECT_EQ(SampleTimes().parse("1970-01-01T00:00:01"), 1.0);
    EXPECT_EQ(SampleTimes().parse("1970-01-02 01:02:03.25"), 86400.0 + 3723.25);
    EXPECT_EQ(SampleTimes().parse("2024-05-01T12:30:00Z"), 1714566600.0);
}

TEST(SampleTime, IsNotReadFromOtherTexts)
{
    for (const char* const text : {"",
                                   "noon",
                                   "12 s",
                                   "1970-01-01",
                                   "1970-01-01T00:00",
                                   "1970-01-01T00:00:01+01:00",
                                   "1970-13-01T00:00:01",
                                   "1e3",
                                   "inf",
                                   "nan",
                                   "1e400",
                                   " 12",
                                   "+12",
                                   "0x10",
                                   "2024-5-01T12:30:00",
                                   "2024-05-01T1:30:00",
                                   "2024-05-01t12:30:00",
                                   "2024-05-01T12:30:00z",
                                   "2024-05-01T12:30:00ZZ",
                                   "2024-05-01  12:30:00"}) {
        EXPECT_EQ(SampleTimes().parse(text), std::nullopt) << text;
    }
}

TEST(SampleTime, IsNotReadFromDatesAndTimesThatDoNotExist)
{
    for (const char* const text :
         {"2023-02-29T00:00:00", "2024-02-30T00:00:00", "2024-04-31T00:00:00", "2024-00-01T00:00:00",
          "2024-01-00T00:00:00", "2024-01-32T00:00:00", "2024-05-01T24:00:00", "2024-05-01T12:60:00",
          "2024-05-01T12:30:-10", "2024-05-01T12:30:99999", "2024-05-01T12:30:61", "2024-05-01T12:30:00.",
          "2024-05-01T12:30:00.5.5", "2024-05-01T12:30:00.-5"}) {
        EXPECT_EQ(SampleTimes().parse(text), std::nullopt) << text;
    }
    EXPECT_NE(SampleTimes().parse("2024-02-29T23:59:60.5Z"), std::nullopt);
}

TEST(SampleTime, IsOfOneKindInASeries)
{
    SampleTimes numbers;
    EXPECT_EQ(numbers.parse("noon"), std::nullopt);
    EXPECT_EQ(numbers.parse("10"), 10.0);
    EXPECT_EQ(numbers.parse("2024-05-01T12:30:00"), std::nullopt);
    EXPECT_EQ(numbers.parse("11"), 11.0);
    SampleTimes dates;
    EXPECT_EQ(dates.parse("1970-01-01T00:00:01"), 1.0);
    EXPECT_EQ(dates.parse("11"), std::nullopt);
    EXPECT_EQ(dates.parse("1970-01-01T00:00:02"), 2.0);
}

}  // namespace

}  // namespace brantel
