// The documents show what the command really prints. Each document has a directory, in which the lines of its console
// blocks that begin with "$ " are run by a shell; the lines after them are the output, standard error included. The
// cards that a document needs are served meanwhile.

#include <cstdlib>
#include <fstream>
#include <list>

#include <gtest/gtest.h>

#include "apps/commands/CardProcess.h"
#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

struct DocumentedRun {
    std::string command;
    std::string output;
};

std::vector<DocumentedRun> documentedRuns(const std::string& name)
{
    std::ifstream document(DOCS_DIR "/" + name);
    std::vector<DocumentedRun> runs;
    bool isInBlock = false;
    for (std::string line; std::getline(document, line);) {
        if (line.rfind("```", 0) == 0) {
            isInBlock = (line == "```console");
        } else if (isInBlock && (line.rfind("$ ", 0) == 0)) {
            runs.push_back({line.substr(2), ""});
        } else if (isInBlock) {
            runs.back().output += line + "\n";
        }
    }
    return runs;
}

struct Document {
    const char* name;
    std::size_t nRunsAtLeast;
    std::vector<std::vector<std::string>> cards = {};
};

std::ostream& operator<<(std::ostream& stream, const Document& document)
{
    return stream << document.name;
}

class CommandDocument : public testing::TestWithParam<Document> {};

TEST_P(CommandDocument, ShowsWhatTheCommandPrints)
{
    const TemporaryDirectory directory;
    const std::string command = BRANTEL_COMMAND;
    const char* const searchPath = std::getenv("PATH");
    const std::string path = "PATH=" + command.substr(0, command.rfind('/')) + ":" + searchPath;
    const std::vector<DocumentedRun> runs = documentedRuns(GetParam().name);
    const std::string runtimeDirectory = "XDG_RUNTIME_DIR=" + directory.path();
    std::list<CardProcess> cards;
    for (const std::vector<std::string>& card : GetParam().cards) {
        cards.emplace_back(card, std::vector<std::string>{runtimeDirectory});
    }

    EXPECT_GE(runs.size(), GetParam().nRunsAtLeast);
    for (const DocumentedRun& run : runs) {
        const CommandResult result = runProgram("/bin/sh", {"-c", "exec 2>&1; " + run.command},
                                                {"", "", directory.path(), {path, runtimeDirectory, "BRANTEL_DB="}});
        EXPECT_EQ(result.out, run.output) << run.command;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Every, CommandDocument,
    testing::Values(Document{"command.md", 8}, Document{"tables.md", 20}, Document{"ports.md", 1},
                    Document{"monitor.md", 12, {{"--slot", "3"}}},
                    Document{"cards.md",
                             15,
                             {{"--slot", "3"}, {"--slot", "5", "--source", "wave:" EXAMPLES_DIR "/signals.yaml"}}}));

}  // namespace

}  // namespace brantel
