#include "common/LineReader.h"

#include <vector>

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Lines = std::vector<std::string>;

class LineReaderTest : public testing::Test {
protected:
    // The lines of a file, only the length of long ones, and the error that ended the reading.
    Lines linesOf(const std::string& content)
    {
        const std::string path = m_directory.write("input", content);
        LineReader reader(path);
        Lines lines;
        try {
            while (const std::optional<std::string> line = reader.next()) {
                lines.push_back((line->size() < 100) ? *line : std::to_string(line->size()) + " bytes");
            }
        } catch (const CommandError& error) {
            lines.push_back(std::string("error ") + (error.what() + path.size()));
        }
        return lines;
    }

    TemporaryDirectory m_directory;
};

TEST_F(LineReaderTest, ReadsLinesWithoutTheirEnds)
{
    EXPECT_EQ(linesOf(""), (Lines{}));
    EXPECT_EQ(linesOf("a"), (Lines{"a"}));
    EXPECT_EQ(linesOf("a\n"), (Lines{"a"}));
    EXPECT_EQ(linesOf("a\n\nb\n"), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOf("a\r\n\r\nb\r\n"), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOf("a\rb\r\r\n"), (Lines{"a\rb\r"}));
}

TEST_F(LineReaderTest, LeavesOutAByteOrderMarkBeforeTheFirstLine)
{
    EXPECT_EQ(linesOf("\xEF\xBB\xBF/x\n\xEF\xBB\xBF/y\n"), (Lines{"/x", "\xEF\xBB\xBF/y"}));
}

TEST_F(LineReaderTest, ReadsLinesUpToTheLimit)
{
    const std::string longest(LineReader::MAX_LINE_LENGTH, 'x');

    EXPECT_EQ(linesOf("a\n" + longest + "\nb\n"), (Lines{"a", "1048576 bytes", "b"}));
    EXPECT_EQ(linesOf("a\n" + longest + longest), (Lines{"a", "error :2: the line is longer than 1048576 bytes"}));
    EXPECT_EQ(linesOf("a\n" + longest + "x\n"), (Lines{"a", "error :2: the line is longer than 1048576 bytes"}));
}

TEST_F(LineReaderTest, DoesNotCountWhatDoesNotBelongToALine)
{
    const std::string longest(LineReader::MAX_LINE_LENGTH, 'x');
    const std::string mark = "\xEF\xBB\xBF";
    const Lines tooLong = {"error :1: the line is longer than 1048576 bytes"};

    for (const std::string end : {"", "\n", "\r\n", "\r"}) {
        EXPECT_EQ(linesOf(longest + end), (Lines{"1048576 bytes"}));
        EXPECT_EQ(linesOf(mark + longest + end), (Lines{"1048576 bytes"}));
        EXPECT_EQ(linesOf(longest + "x" + end), tooLong);
        EXPECT_EQ(linesOf(mark + longest + "x" + end), tooLong);
    }
    EXPECT_EQ(linesOf(longest + "\r\r\n"), tooLong);
    EXPECT_EQ(linesOf("a\r\n" + longest + "\r\nb\r\n"), (Lines{"a", "1048576 bytes", "b"}));
}

TEST_F(LineReaderTest, RefusesNulBytes)
{
    EXPECT_EQ(linesOf(std::string("a\nb\0c\n", 6)), (Lines{"a", "error :2: the line contains a NUL byte"}));
}

}  // namespace

}  // namespace brantel
