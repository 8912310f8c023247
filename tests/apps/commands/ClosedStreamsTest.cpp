// The command when its caller has closed standard streams, as some service managers and careless scripts do.

#include <sstream>

#include <gtest/gtest.h>

#include "apps/commands/CardProcess.h"
#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

// Each test in a directory of its own, with a database and a card in slot 3.
class ClosedStreams : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(run("db init && $B db component enable 7 && "
                      "$B db allow add --component 7 0x00020102 'expr=unsigned(value>=0)'")
                      .exitCode,
                  0);
    }

    /// Runs "brantel COMMAND" in a shell.
    CommandResult run(const std::string& command) const
    {
        return runProgram("/bin/sh", {"-c", "B=" BRANTEL_COMMAND "; $B " + command},
                          {"1\n", "", m_directory.path(), environment()});
    }

    std::vector<std::string> environment() const { return {"XDG_RUNTIME_DIR=" + m_directory.path(), "BRANTEL_DB="}; }

    std::string content(const std::string& file) const { return contentOf(m_directory.path() + "/" + file); }

    TemporaryDirectory m_directory;
};

TEST_F(ClosedStreams, AreAnErrorForACommandThatHasResults)
{
    const CardProcess card({"--slot", "3"}, environment());
    const CommandResult fails{2, "", "brantel: cannot write to standard output: Bad file descriptor\n"};
    for (const char* const command :
         {"rule check ''", "rule eval 'expr=signed(value>1)'", "db show", "db export", "db check",
          "db component enable 8", "get 3 card.slot", "set 3 card.led=uint8:1", "watch 3 card.slot --count 1",
          "card --slot 4", "card list", "card objects", "ports --backplane 3", "monitor --help"}) {
        EXPECT_EQ(run(std::string(command) + " >&-"), fails) << command;
        EXPECT_EQ(run(std::string(command) + " >&- 2>&-"), (CommandResult{2, "", ""})) << command;
    }
    EXPECT_EQ(run("rule check '' <&- >&-"), fails);
    EXPECT_EQ(run("get 3 card.slot <&- >&-"), fails);
    EXPECT_EQ(run("db show <&- >&-"), fails);
    EXPECT_EQ(run("db check"), (CommandResult{0, "events.db: nothing is wrong\n", ""}));
}

TEST_F(ClosedStreams, AreAnErrorForACommandThatReadsThem)
{
    const CommandResult fails{2, "", "brantel: cannot read standard input: Bad file descriptor\n"};
    for (const char* const command :
         {"rule check --file -", "rule eval 'expr=signed(value>1)'", "db import --format csv -"}) {
        EXPECT_EQ(run(std::string(command) + " <&-"), fails) << command;
    }
}

TEST_F(ClosedStreams, DoNotMatterToACommandThatDoesNotUseThem)
{
    const CardProcess card({"--slot", "3"}, environment());
    for (const char* const command : {"rule check ''", "db show", "get 3 --json card.slot", "ports --backplane 3"}) {
        EXPECT_EQ(run(std::string(command) + " <&- 2>&-"), run(command)) << command;
    }
}

TEST_F(ClosedStreams, NeverPutTextIntoTheFilesOfTheMonitor)
{
    int nRuns = 0;
    for (const char* const closings : {"<&-", ">&-", "2>&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&- >&- 2>&-"}) {
        const std::string name = std::to_string(++nRuns);
        run("monitor --cycles 2 --interval 10ms --journal " + name + ".jsonl --state " + name + ".state " + closings);

        std::istringstream journal(content(name + ".jsonl"));
        std::size_t nLines = 0;
        for (std::string line; std::getline(journal, line); ++nLines) {
            EXPECT_EQ(line.rfind("{\"event\":", 0), 0U) << closings << ": " << line;
        }
        EXPECT_GT(nLines, 0U) << closings;
        EXPECT_EQ(content(name + ".state.lock"), "") << closings;
    }
    EXPECT_EQ(run("db check"), (CommandResult{0, "events.db: nothing is wrong\n", ""}));
}

}  // namespace

}  // namespace brantel
