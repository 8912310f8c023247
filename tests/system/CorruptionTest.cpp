// The command on files that were damaged at random: it never crashes, and never goes on from what is wrong as if it
// were right. tests/system/corruption-campaign does the same at length.

#include <algorithm>
#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

#include "support/Corruption.h"
#include "system/IntegrityCheck.h"
#include "system/ReplayingNode.h"

namespace brantel {
namespace {

std::size_t damageCount()
{
    return amount("CORRUPTIONS", 60);
}

std::uint64_t seed()
{
    return amount("CORRUPTION_SEED", 1);
}

// Says which damage it was where an expectation fails.
std::string titleOf(std::uint64_t number, const Corrupted& damage)
{
    return "CORRUPTION_SEED=" + std::to_string(seed()) + ", damage " + std::to_string(number) + ": " + damage.what;
}

void expectRefused(const CommandResult& result, const std::string& path)
{
    EXPECT_EQ(result.exitCode, 2) << result;
    EXPECT_EQ(result.err.rfind("brantel: ", 0), 0U) << result;
    EXPECT_NE(result.err.find(path), std::string::npos) << result;
}

// A node whose monitor has brought some events.
class DamagedMonitorFiles : public ::testing::Test {
protected:
    DamagedMonitorFiles() : m_node(12, 200)
    {
        EXPECT_EQ(runMonitor().exitCode, 0);
        m_state = contentOf(m_node.path("state"));
        m_journal = contentOf(m_node.path("journal"));
        EXPECT_NE(m_journal, "");
    }

    CommandResult runMonitor(const std::vector<std::string>& more = {"--interval", "1ms", "--cycles", "5"}) const
    {
        std::vector<std::string> arguments = {"monitor", "--journal", m_node.path("journal"), "--state",
                                              m_node.path("state")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return m_node.run(arguments);
    }

    void putBack(const std::string& journal) const
    {
        m_node.write("state", m_state);
        m_node.write("journal", journal);
        m_node.continueAfterState();
    }

    ReplayingNode m_node;
    std::string m_state;
    std::string m_journal;
};

TEST_F(DamagedMonitorFiles, AnyChangedStateIsRefusedAndNothingIsTouched)
{
    for (std::uint64_t number = 0; (number < damageCount()) && !HasFailure(); ++number) {
        const Corrupted damage = corrupted(m_state, seed(), number);
        SCOPED_TRACE(titleOf(number, damage) + "\n" + damage.content);
        m_node.write("state", damage.content);
        m_node.write("journal", m_journal);

        expectRefused(runMonitor({"--check"}), m_node.path("state"));
        expectRefused(runMonitor(), m_node.path("state"));
        EXPECT_EQ(contentOf(m_node.path("state")), damage.content);
        EXPECT_EQ(contentOf(m_node.path("journal")), m_journal);
    }
}

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text)
{
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The lines of a journal from the one on where it differs from what it was before, and the one before that, if any.
Lines linesAddedTo(const std::string& before, const std::string& journal, Lines& lastKept)
{
    const auto limit = static_cast<std::ptrdiff_t>(std::min(before.size(), journal.size()));
    const auto difference = std::mismatch(journal.begin(), journal.begin() + limit, before.begin()).first;
    const auto posDifference = static_cast<std::size_t>(difference - journal.begin());
    const std::size_t posLine = (posDifference == 0) ? 0 : journal.rfind('\n', posDifference - 1) + 1;
    const Lines kept = linesOf(journal.substr(0, posLine));
    lastKept.assign(kept.end() - (kept.empty() ? 0 : 1), kept.end());
    return linesOf(journal.substr(posLine));
}

// A last line whose number became larger cannot be distinguished from a state that is older than the journal, so
// numbers may continue from there; they never go back.
TEST_F(DamagedMonitorFiles, AnAcceptedJournalContinuesWithTheFollowingEvents)
{
    const std::uint64_t lastNumber = m_node.journal().back().number;
    const std::size_t lastRow = m_node.lastRowInState();
    std::size_t nRefused = 0;
    for (std::uint64_t number = 0; (number < damageCount()) && !HasFailure(); ++number) {
        const Corrupted damage = corrupted(m_journal, seed(), number);
        SCOPED_TRACE(titleOf(number, damage) + "\n" + damage.content);
        putBack(damage.content);

        const CommandResult checked = runMonitor({"--check"});
        EXPECT_EQ(contentOf(m_node.path("journal")), damage.content);
        const CommandResult result = runMonitor();
        EXPECT_EQ(checked.exitCode, result.exitCode) << checked;
        const std::string journal = contentOf(m_node.path("journal"));
        SCOPED_TRACE(journal);
        if (result.exitCode == 2) {
            ++nRefused;
            expectRefused(result, m_node.path("journal"));
            EXPECT_EQ(journal, damage.content);
            EXPECT_EQ(contentOf(m_node.path("state")), m_state);
            continue;
        }
        EXPECT_EQ(result.exitCode, 0) << result;
        Lines lastKept;
        const Lines added = linesAddedTo(damage.content, journal, lastKept);
        for (const std::string& line : lastKept) {
            EXPECT_TRUE(parseEvent(line)) << line;
        }
        std::vector<Event> newEvents;
        for (const std::string& line : added) {
            const std::optional<Event> event = parseEvent(line);
            ASSERT_TRUE(event) << line;
            if (event->number > lastNumber) {
                EXPECT_TRUE(newEvents.empty() || (event->number == newEvents.back().number + 1)) << line;
                newEvents.push_back(*event);
            } else {
                EXPECT_NE(m_journal.find(line + "\n"), std::string::npos) << line;
            }
        }
        EXPECT_EQ(ReplayingNode::bySeries(newEvents), m_node.eventsOfRows(lastRow, m_node.lastRowInState()));
        EXPECT_GT(m_node.lastRowInState(), lastRow);
    }
    std::printf("%zu of %zu damaged journals refused\n", nRefused, damageCount());
}

class DamagedDatabase : public ::testing::Test {
protected:
    DamagedDatabase()
    {
        std::string rows = "ComponentID,OID,Rule\n";
        for (int i = 0; i < 300; ++i) {
            rows += std::to_string(i % 20) + "," + std::to_string(131073 + i) + ",expr=unsigned(value>" +
                    std::to_string(1000 * i) + ")\n";
        }
        EXPECT_EQ(m_node.run({"db", "import", m_node.write("rules.csv", rows)}).exitCode, 0);
        EXPECT_EQ(m_node.run({"db", "component", "enable", "7"}).exitCode, 0);
        EXPECT_EQ(m_node.run({"db", "card", "enable", "3", "--type", "17"}).exitCode, 0);
        m_database = contentOf(m_node.path("events.db"));
        EXPECT_EQ(contentOf(m_node.path("events.db-wal")), "");
    }

    void putBack(const std::string& database) const
    {
        for (const char* suffix : {"-wal", "-shm"}) {
            static_cast<void>(std::remove((m_node.path("events.db") + suffix).c_str()));
        }
        m_node.write("events.db", database);
    }

    CommandResult runChecked(const std::vector<std::string>& arguments) const
    {
        CommandResult result = m_node.run(arguments);
        EXPECT_GE(result.exitCode, 0) << result;
        EXPECT_LE(result.exitCode, 2) << result;
        EXPECT_EQ(result.err.empty(), result.exitCode != 2) << result;
        return result;
    }

    TestNode m_node;
    std::string m_database;
};

// SQLite has no checksums: a value that became another valid one cannot be detected. The check finds everything else,
// including all damage that SQLite itself detects.
TEST_F(DamagedDatabase, IsFoundByTheCheckUnlessEveryRowIsIntact)
{
    const std::string exportedBefore = runChecked({"db", "export"}).out;
    std::size_t nFound = 0;
    std::size_t nHarmless = 0;
    for (std::uint64_t number = 0; (number < damageCount()) && !HasFailure(); ++number) {
        const Corrupted damage = corrupted(m_database, seed(), number);
        SCOPED_TRACE(titleOf(number, damage));
        putBack(damage.content);

        const CommandResult checked = runChecked({"db", "check"});
        const CommandResult exported = runChecked({"db", "export"});
        runChecked({"monitor", "--cycles", "1", "--interval", "1ms", "--slots", "9"});
        if (checked.exitCode != 0) {
            ++nFound;
        } else {
            EXPECT_TRUE(isIntact(m_node.path("events.db"))) << checked;
            EXPECT_EQ(exported.exitCode, 0) << exported;
            nHarmless += (exported.out == exportedBefore) ? 1 : 0;
        }
    }
    std::printf("%zu of %zu damaged databases found, %zu with the same rows, %zu with other sound rows\n", nFound,
                damageCount(), nHarmless, damageCount() - nFound - nHarmless);
}

}  // namespace

}  // namespace brantel
