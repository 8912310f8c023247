// States of a monitor: what is refused is named, what is accepted is the same after it is saved and loaded again,
// and a state in which a byte changed is refused.
//
// Input: one byte, odd if the rest gets the checksum of a state, and the file.

#include "common/CommandLine.h"
#include "fuzz/FuzzFiles.h"
#include "monitor/ConditionMonitor.h"
#include "monitor/StateFile.h"

namespace brantel {
namespace {

// As a monitor starts from it and saves it at once; nothing if it holds a rule that cannot be evaluated.
std::optional<std::string> savedAgain(const MonitorState& state)
{
    ConditionMonitor monitor;
    for (const RememberedRule& rule : state.rules) {
        if (!monitor.restoreRule(rule.key, rule.memory)) {
            return std::nullopt;
        }
    }
    for (const RememberedFailure& failure : state.failures) {
        monitor.restoreFailure(failure.place, failure.oid, failure.failure);
    }
    for (const RefusedRow& row : state.refusedRows) {
        monitor.restoreRefusal(row);
    }
    return stateText(state.lastEvent, monitor, state.waiting);
}

void requireThatChangesAreRefused(std::string content, std::size_t position)
{
    content[position % content.size()] = static_cast<char>(content[position % content.size()] ^ 1);
    const std::string path = fileOf(content, "changed");
    require(!isAccepted<CommandError>(path, [&] { loadState(path); }));
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    if (size == 0) {
        return 0;
    }
    const std::string text = textOf(pData + 1, size - 1);
    const std::string content = ((pData[0] & 1U) != 0) ? sealedState(text) : text;
    const std::string path = fileOf(content, "state");
    MonitorState state;
    if (!isAccepted<CommandError>(path, [&] { state = loadState(path); })) {
        return 0;
    }
    requireThatChangesAreRefused(content, pData[0]);
    const std::optional<std::string> saved = savedAgain(state);
    if (saved) {
        require(savedAgain(loadState(fileOf(*saved, "again"))) == saved);
    }
    return 0;
}

}  // namespace brantel
