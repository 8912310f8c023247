#include "monitor/Journal.h"

#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"
#include "common/CommandLine.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

std::string lineOf(std::uint64_t number)
{
    Event event;
    event.number = number;
    event.time = NOON;
    event.kind = EventKind::FAILED;
    event.place = slotPlace(3);
    event.reason = "no answer";
    return eventJson(event);
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

TEST_F(JournalTest, ContinuesAfterTheLastEvent)
{
    write(lineOf(7) + "\n" + lineOf(8) + "\n");
    Journal journal(path());
    EXPECT_EQ(journal.lastEvent(), 8U);

    journal.append(9, lineOf(9));

    EXPECT_EQ(content(), lineOf(7) + "\n" + lineOf(8) + "\n" + lineOf(9) + "\n");
}

TEST_F(JournalTest, RemovesAnIncompleteLine)
{
    const std::string whole = lineOf(8);
    for (std::size_t length = 1; length < whole.size(); ++length) {
        write(lineOf(7) + "\n" + whole.substr(0, length));

        EXPECT_EQ(Journal(path()).lastEvent(), 7U);
        EXPECT_EQ(content(), lineOf(7) + "\n") << "torn after " << length << " bytes";
    }
}

TEST_F(JournalTest, RemovesAnIncompleteFirstLine)
{
    write(lineOf(1).substr(0, 20));

    EXPECT_EQ(Journal(path()).lastEvent(), 0U);
    EXPECT_EQ(content(), "");
}

TEST_F(JournalTest, EndsAWholeLineWithoutALineEnd)
{
    write(lineOf(7) + "\n" + lineOf(8));

    EXPECT_EQ(Journal(path()).lastEvent(), 8U);
    EXPECT_EQ(content(), lineOf(7) + "\n" + lineOf(8) + "\n");
}

TEST_F(JournalTest, FindsTheLastEventAfterManyLongLines)
{
    Event event;
    event.number = 3;
    event.reason = std::string(200'000, 'x');
    std::string text;
    for (int i = 0; i < 2000; ++i) {
        text += lineOf(1) + "\n";
    }
    write(text + lineOf(2) + "\n" + eventJson(event) + "\n" + lineOf(4).substr(0, 30));

    EXPECT_EQ(Journal(path()).lastEvent(), 3U);
}

TEST_F(JournalTest, LeavesAForeignFileAlone)
{
    for (const std::string& text : {std::string("root:x:0:0"), std::string("a line\n"), lineOf(1) + "\nroot:x",
                                    lineOf(1) + "\nanother line\n", std::string("\n")}) {
        write(text);

        EXPECT_THROW(Journal journal(path()), CommandError) << text;
        EXPECT_EQ(content(), text);
    }
}

TEST_F(JournalTest, RemovesWhatAPowerFailureLeftAfterTheLastLine)
{
    for (const std::size_t nNuls : {1U, 4096U, 200'000U}) {
        for (const std::string& torn : {std::string(), lineOf(8).substr(0, 30)}) {
            write(lineOf(7) + "\n" + torn + std::string(nNuls, '\0'));

            EXPECT_EQ(Journal(path()).lastEvent(), 7U);
            EXPECT_EQ(content(), lineOf(7) + "\n") << nNuls << " NULs after '" << torn << "'";
        }
        write(lineOf(7) + "\n" + lineOf(8) + std::string(nNuls, '\0'));

        EXPECT_EQ(Journal(path()).lastEvent(), 8U);
        EXPECT_EQ(content(), lineOf(7) + "\n" + lineOf(8) + "\n");
    }
}

TEST_F(JournalTest, RefusesInvalidEventNumbers)
{
    const std::string line = lineOf(7);
    const std::size_t posNumber = line.find('7');
    for (const char* const number : {"-1", "0", "1.5", "1e3", "true", "\"7\"", "1000000000000001",
                                     "18446744073709551615", "18446744073709551616"}) {
        const std::string text = line.substr(0, posNumber) + number + line.substr(posNumber + 1) + "\n";
        write(text);

        EXPECT_THROW(Journal journal(path()), CommandError) << number;
        EXPECT_EQ(content(), text);
    }
}

TEST_F(JournalTest, IsInspectedWithoutBeingChanged)
{
    const std::pair<std::string, std::uint64_t> cases[] = {
        {"", 0},
        {lineOf(7) + "\n", 7},
        {lineOf(7) + "\n" + lineOf(8), 8},
        {lineOf(7) + "\n" + lineOf(8).substr(0, 30), 7},
    };
    EXPECT_EQ(Journal::inspect(path()), 0U);
    for (const auto& [text, last] : cases) {
        write(text);

        EXPECT_EQ(Journal::inspect(path()), last);
        EXPECT_EQ(content(), text);
    }
    write("root:x:0:0\n");

    EXPECT_THROW(Journal::inspect(path()), CommandError);
}

TEST_F(JournalTest, DoesNotWaitForAFullPipeAndContinuesWithWholeLines)
{
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    const int reader = ::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    Journal journal(path());
    Event event;
    event.reason = std::string(10'000, 'x');  // more than a pipe takes as a whole
    std::string appended;
    const auto appendUntilFull = [&](std::uint64_t number) {
        const std::string fault = errorOf([&] {
            for (;; ++number) {
                event.number = number;
                journal.append(number, eventJson(event));
                appended += eventJson(event) + "\n";
            }
        });
        EXPECT_EQ(fault, "cannot write '" + path() + "': it is full, and its reader does not keep up");
        return number;
    };
    std::string received;
    const auto readAll = [&] {
        std::array<char, 4096> part{};
        for (ssize_t count = 0; (count = ::read(reader, part.data(), part.size())) > 0;) {
            received.append(part.data(), static_cast<std::size_t>(count));
        }
    };
    const std::uint64_t next = appendUntilFull(1);
    EXPECT_FALSE(journal.isLineComplete());
    readAll();
    appendUntilFull(next);
    readAll();
    journal.completeLine();
    readAll();
    ::close(reader);

    EXPECT_TRUE(journal.isLineComplete());
    EXPECT_EQ(received, appended);
}

TEST_F(JournalTest, BelongsToOneMonitorAtATime)
{
    const Journal first(path());

    EXPECT_THROW(Journal second(path()), CommandError);

    const Journal onDevice("/dev/null");
    EXPECT_NO_THROW(Journal("/dev/null").append(1, lineOf(1))) << "a device is everybody's";
}

TEST_F(JournalTest, SaysThatItCannotBeOpenedOrWritten)
{
    EXPECT_THROW(Journal("/nowhere/journal"), CommandError);
    EXPECT_THROW(Journal("/dev/full").append(1, lineOf(1)), CommandError);
}

}  // namespace

}  // namespace brantel
