// Changes of the database while writes of its files go wrong, at each call in turn: a command that says that it is done
// has done all of it, one that fails has done all or nothing and says reason, and the database stays sound.

#include <algorithm>
#include <functional>

#include <gtest/gtest.h>

#include "support/FaultyWrites.h"
#include "system/TestNode.h"

namespace brantel {
namespace {

struct Scenario {
    const char* mode;
    bool isLasting;
    bool isEachCall;  ///< and not the first alone
};

void PrintTo(const Scenario& scenario, std::ostream* pStream)
{
    *pStream << scenario.mode << (scenario.isLasting ? "_lasting" : "_once");
}

class DatabaseWrites : public ::testing::TestWithParam<Scenario> {
protected:
    DatabaseWrites()
    {
        EXPECT_EQ(m_node.run({"db", "allow", "add", "--component", "7", "5", "expr=signed(value>1)"}).exitCode, 0);
        m_database = contentOf(m_node.path("events.db"));
        EXPECT_EQ(contentOf(m_node.path("events.db-wal")), "");
        m_before = exported();
    }

    std::string exported() const
    {
        const CommandResult result = m_node.run({"db", "export"});
        EXPECT_EQ(result.exitCode, 0) << result;
        return result.out;
    }

    void removeDatabase(const std::string& name) const
    {
        for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
            static_cast<void>(std::remove((m_node.path(name) + suffix).c_str()));
        }
    }

    // Runs a command with what is added to its environment.
    using Run = std::function<CommandResult(const std::vector<std::string>& environment)>;

    Run runOf(const std::vector<std::string>& command) const
    {
        return
            [this, command](const std::vector<std::string>& environment) { return m_node.run(command, environment); };
    }

    CommandResult runFaulty(const Run& run, const WriteFault& fault) const
    {
        m_node.write("calls", "");
        CommandResult faulty = run(environmentOf(fault, m_node.path("calls")));
        EXPECT_TRUE((faulty.exitCode == 0) || (faulty.exitCode == 2)) << faulty;
        EXPECT_EQ(faulty.err.empty(), faulty.exitCode == 0) << faulty;
        return faulty;
    }

    /// How many calls on the files the faulty run made.
    long callCount() const
    {
        const std::string calls = contentOf(m_node.path("calls"));
        return std::count(calls.begin(), calls.end(), '\n');
    }

    // Runs the command with the fault. False if it came to its end without the faulty call.
    bool isReached(const Run& run, const WriteFault& fault, const std::string& after) const
    {
        SCOPED_TRACE(::testing::PrintToString(fault));
        removeDatabase("events.db");
        m_node.write("events.db", m_database);
        const CommandResult faulty = runFaulty(run, fault);
        SCOPED_TRACE(faulty);
        EXPECT_EQ(m_node.run({"db", "check"}).exitCode, 0);
        const std::string now = exported();
        EXPECT_TRUE((now == after) || ((faulty.exitCode == 2) && (now == m_before))) << now;
        EXPECT_EQ(m_node.run({"db", "component", "enable", "9"}).exitCode, 0);
        return callCount() >= fault.call;
    }

    void expectAllOrNothing(const Run& run, const std::string& files) const
    {
        ASSERT_EQ(run({}).exitCode, 0);
        const std::string after = exported();
        ASSERT_NE(after, m_before);
        WriteFault fault{GetParam().mode, m_node.path(files), GetParam().isLasting, 1};
        ASSERT_TRUE(isReached(run, fault, after));
        do {
            ++fault.call;
        } while (GetParam().isEachCall && !HasFailure() && isReached(run, fault, after));
    }

    std::string fileOfRules() const
    {
        std::string rows = "ComponentID,OID,Rule\n";
        for (int i = 0; i < 200; ++i) {
            const std::string number = std::to_string(i);
            rows += std::to_string(i % 50) + "," + number + ",expr=unsigned(value>" + number + ")\n";
        }
        return m_node.write("rules.csv", rows);
    }

    TestNode m_node;
    std::string m_database;
    std::string m_before;
};

TEST_P(DatabaseWrites, OfAnImportDoAllOrNothing)
{
    expectAllOrNothing(runOf({"db", "import", fileOfRules()}), "events.db*");
}

TEST_P(DatabaseWrites, OfWhatIsImportedFromAPipeDoAllOrNothing)
{
    const std::string pipeline = "cat " + fileOfRules() + " | " + BRANTEL_COMMAND + " db import -";
    const auto run = [&](std::vector<std::string> environment) {
        environment.insert(environment.end(), {"BRANTEL_DB=" + m_node.path("events.db"), "TMPDIR=" + m_node.path("")});
        return runProgram("/bin/sh", {"-c", pipeline}, {"", "", "", environment});
    };
    expectAllOrNothing(run, "*brantel-import-*");
}

TEST_P(DatabaseWrites, OfASingleChangeDoAllOrNothing)
{
    expectAllOrNothing(runOf({"db", "component", "disable", "7"}), "events.db*");
}

TEST_P(DatabaseWrites, OfANewDatabaseCanBeDoneAgain)
{
    const std::vector<std::string> command = {"db", "init", m_node.path("new.db")};
    WriteFault fault{GetParam().mode, m_node.path("new.db*"), GetParam().isLasting, 1};
    for (bool isReached = true; isReached && !HasFailure(); ++fault.call) {
        SCOPED_TRACE(::testing::PrintToString(fault));
        removeDatabase("new.db");
        const CommandResult faulty = runFaulty(runOf(command), fault);
        SCOPED_TRACE(faulty);
        isReached = GetParam().isEachCall && (callCount() >= fault.call);
        const CommandResult again = m_node.run(command);
        EXPECT_EQ(again.exitCode, 0) << again;
        const CommandResult checked = m_node.run({"db", "--db", m_node.path("new.db"), "check"});
        EXPECT_EQ(checked.exitCode, 0) << checked;
    }
}

INSTANTIATE_TEST_SUITE_P(Under, DatabaseWrites,
                         ::testing::Values(Scenario{"full", true, true}, Scenario{"failing", false, true},
                                           Scenario{"failing", true, true}, Scenario{"short", true, false},
                                           Scenario{"slow", true, false}),
                         ::testing::PrintToStringParamName());

}  // namespace

}  // namespace brantel
