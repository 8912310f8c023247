// docs/command.md shows what the command really prints: every console block is run, "$ " lines as commands in one
// shell directory, and what follows them is their output, standard error included.

#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "apps/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace {

struct DocumentedRun {
    std::string command;
    std::string output;
};

std::vector<DocumentedRun> documentedRuns()
{
    std::ifstream document(DOCS_DIR "/command.md");
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

TEST(CommandDocument, ShowsWhatTheCommandPrints)
{
    const TemporaryDirectory directory;
    const std::string command = BRANTEL_COMMAND;
    const std::string path = "PATH=" + command.substr(0, command.rfind('/')) + ":" + std::getenv("PATH");
    const std::vector<DocumentedRun> runs = documentedRuns();

    EXPECT_GE(runs.size(), 8U);
    for (const DocumentedRun& run : runs) {
        const CommandResult result =
            runProgram("/bin/sh", {"-c", "exec 2>&1; " + run.command}, {"", "", directory.path(), {path}});
        EXPECT_EQ(result.out, run.output) << run.command;
    }
}

}  // namespace
