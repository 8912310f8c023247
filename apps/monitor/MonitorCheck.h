#ifndef APPS_MONITOR_MONITOR_CHECK_H
#define APPS_MONITOR_MONITOR_CHECK_H

// What is checked before a monitor uses it.

#include "common/CommandLine.h"
#include "monitor/NodeMonitor.h"

namespace brantel {

/// Throws CommandError if two files of a monitor are the same, or if its metrics would replace another kind of file.
void requireDistinctFiles(const NodeMonitorOptions& options);

/// Checks everything that a monitor with these options would use, changes nothing, and reports on standard output what
/// it would watch. EXIT_NEGATIVE_ANSWER if rows of the database are refused. Throws CommandError and sql::Error.
ExitCode checkMonitor(const NodeMonitorOptions& options);

}  // namespace brantel

#endif
