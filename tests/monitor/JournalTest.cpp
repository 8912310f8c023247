#include "monitor/Journal.h"

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "monitor/Monitored.h"
#include "support/TemporaryDirectory.h"

namespace {

std::string lineOf(std::uint64_t number)
{
    Event event;
    event.number = number;
    event.time = NOON;
    event.kind = EventKind::FAILED;
    event.place = slotPlace(3);
    event.why = "no sound answer";
    return jsonLineOf(event);
}

class JournalTest : public testing::Test {
protected:
    std::string path() const { return m_directory.path() + "/journal"; }
    void write(const std::string& content) const { m_directory.write("journal", content); }
    std::string content() const { return contentOf(path()); }

private:
    TemporaryDirectory m_directory;
};

TEST_F(JournalTest, StartsEmptyAndGrowsByLines)
{
    Journal journal(path());
    EXPECT_EQ(journal.lastEvent(), 0U);

    journal.append(1, lineOf(1));
    journal.append(2, lineOf(2));
    journal.synchronise();

    EXPECT_EQ(content(), lineOf(1) + "\n" + lineOf(2) + "\n");
    EXPECT_EQ(journal.lastEvent(), 2U);
}

TEST_F(JournalTest, GoesOnAfterTheLastEvent)
{
    write(lineOf(7) + "\n" + lineOf(8) + "\n");
    Journal journal(path());
    EXPECT_EQ(journal.lastEvent(), 8U);

    journal.append(9, lineOf(9));

    EXPECT_EQ(content(), lineOf(7) + "\n" + lineOf(8) + "\n" + lineOf(9) + "\n");
}

TEST_F(JournalTest, TakesAwayALineThatIsNotWhole)
{
    const std::string whole = lineOf(8);
    for (std::size_t length = 1; length < whole.size(); ++length) {
        write(lineOf(7) + "\n" + whole.substr(0, length));

        EXPECT_EQ(Journal(path()).lastEvent(), 7U);
        EXPECT_EQ(content(), lineOf(7) + "\n") << "torn after " << length << " bytes";
    }
}

TEST_F(JournalTest, TakesAwayAFirstLineThatIsNotWhole)
{
    write(lineOf(1).substr(0, 20));

    EXPECT_EQ(Journal(path()).lastEvent(), 0U);
    EXPECT_EQ(content(), "");
}

TEST_F(JournalTest, EndsAWholeLineThatLacksItsEnd)
{
    write(lineOf(7) + "\n" + lineOf(8));

    EXPECT_EQ(Journal(path()).lastEvent(), 8U);
    EXPECT_EQ(content(), lineOf(7) + "\n" + lineOf(8) + "\n");
}

TEST_F(JournalTest, FindsTheLastEventBehindManyAndLongLines)
{
    Event event;
    event.number = 3;
    event.why = std::string(200'000, 'x');
    std::string text;
    for (int i = 0; i < 2000; ++i) {
        text += lineOf(1) + "\n";
    }
    write(text + lineOf(2) + "\n" + jsonLineOf(event) + "\n" + lineOf(4).substr(0, 30));

    EXPECT_EQ(Journal(path()).lastEvent(), 3U);
}

TEST_F(JournalTest, LeavesAFileAloneThatIsNone)
{
    for (const std::string& text : {std::string("root:x:0:0"), std::string("a line\n"), lineOf(1) + "\nroot:x",
                                    lineOf(1) + "\nanother line\n", std::string("\n")}) {
        write(text);

        EXPECT_THROW(Journal journal(path()), CommandError) << text;
        EXPECT_EQ(content(), text);
    }
}

TEST_F(JournalTest, BelongsToOneMonitorAtATime)
{
    const Journal first(path());

    EXPECT_THROW(Journal second(path()), CommandError);
}

TEST_F(JournalTest, SaysThatItCannotBeOpenedOrWritten)
{
    EXPECT_THROW(Journal("/nowhere/journal"), CommandError);
    EXPECT_THROW(Journal("/dev/full").append(1, lineOf(1)), CommandError);
}

}  // namespace
