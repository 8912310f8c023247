#include "monitor/MonitorCheck.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <unistd.h>

#include "common/ReplacedFile.h"
#include "common/ResultOutput.h"

namespace brantel {
namespace fs = std::filesystem;

namespace {

void requireWriteAccess(const std::string& path, const std::string& what)
{
    if (::access(path.c_str(), W_OK) != 0) {
        throw CommandError("cannot write '" + what + "': " + std::generic_category().message(errno));
    }
}

void requireWritableFolder(const std::string& path)
{
    requireWriteAccess(fs::path(resolvedPath(path)).parent_path().string(), path);
}

// A journal is appended to; state and metrics are replaced by new files in their folders.
void requireWritable(const NodeMonitorOptions& options)
{
    if (fs::is_directory(options.journal)) {
        throw CommandError("cannot open '" + options.journal + "': it is a directory");
    }
    if (fs::exists(options.journal)) {
        requireWriteAccess(options.journal, options.journal);
    } else if (!options.journal.empty()) {
        requireWritableFolder(options.journal);
    }
    for (const std::string& path : {options.stateFile, options.metricsFile}) {
        if (!path.empty()) {
            requireWritableFolder(path);
        }
    }
}

std::string placesText(const std::set<Place>& places)
{
    std::string text;
    for (const Place& place : places) {
        text += (text.empty() ? "" : ", ") + placeText(place);
    }
    return text.empty() ? "no place" : text;
}

}  // namespace

void requireDistinctFiles(const NodeMonitorOptions& options)
{
    // Files next to a file are next to the target of a link.
    const std::string database = resolvedPath(options.database);
    std::vector<NamedFile> files = {{"--db", options.database},
                                    {"the log of --db", database + "-wal"},
                                    {"the index of --db", database + "-shm"},
                                    {"the rollback journal of --db", database + "-journal"}};
    if (!options.journal.empty()) {
        files.push_back({"--journal", options.journal});
    }
    if (!options.stateFile.empty()) {
        files.push_back({"--state", options.stateFile});
        const std::string target = resolvedPath(options.stateFile);
        files.push_back({"the lock of --state", target + ".lock"});
        files.push_back({"the new file of --state", target + ".new"});
    }
    if (!options.metricsFile.empty()) {
        files.push_back({"--metrics", options.metricsFile});
        files.push_back({"the new file of --metrics", resolvedPath(options.metricsFile) + ".new"});
        requireReplaceable(options.metricsFile, METRICS_START);
    }
    requireDistinct(files);
}

ExitCode checkMonitor(const NodeMonitorOptions& options)
{
    requireDistinctFiles(options);
    requireWritable(options);
    const RuleSet ruleSet = RuleSetWatcher(options.database, options.slots).read();
    ResultOutput output;
    output.writeLine(counted(ruleSet.rules.size(), "rule") + " on " + placesText(ruleSet.enabledPlaces));
    for (const RefusedRow& row : ruleSet.refusedRows) {
        output.writeLine("refused: " + row.table + ", row " + std::to_string(row.row) + ": " + row.reason);
    }
    if (!options.stateFile.empty()) {
        const std::string path = resolvedPath(options.stateFile);
        const MonitorState state = loadState(path);
        ConditionMonitor monitor;
        restoreMemory(state, path, monitor);
        output.writeLine("state: " + counted(state.rules.size(), "rule") + ", last event " +
                         std::to_string(state.lastEvent));
    }
    if (!options.journal.empty()) {
        output.writeLine("journal: last event " + std::to_string(Journal::inspect(options.journal)));
    }
    output.finish();
    return ruleSet.refusedRows.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}

}  // namespace brantel
