#ifndef TRACE_LOG_ASSERT_FAILED_H
#define TRACE_LOG_ASSERT_FAILED_H

// Reports of violated invariants. Libraries and components report and continue; the program chooses what happens with a
// report.
//
// logAssertFailed is the platform's on every node. The handler is of the stand-alone edition only: code that installs
// one does not build against another platform, so leave it to main or to tests.

/// Reports that `condition`, found false at `file`:`line` in `function` (its full signature), does not hold. Writes one
/// syslog line at priority error, whatever the trace level, unless the program installed a handler.
/// May be called on any thread.
__attribute__((visibility("default"))) void logAssertFailed(const char* condition, const char* file, int line,
                                                            const char* function);

/// Receives what logAssertFailed was called with, on the calling thread. The texts are valid during the call only.
using AssertFailedHandler = void (*)(const char* condition, const char* file, int line, const char* function);

/// Installs `handler` in place of the syslog line and returns the handler that it replaces, to be put back later; null
/// means the syslog line, both ways. May be called on any thread.
__attribute__((visibility("default"))) AssertFailedHandler setAssertFailedHandler(AssertFailedHandler handler);

#endif
