#ifndef FOREIGN_PLATFORM_H
#define FOREIGN_PLATFORM_H

// A platform that keeps the contract of the library and has nothing else in common with the tree's own.

#include <string>

#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

namespace foreignPlatform {

/// How often the library asked for the trace level and reported a broken invariant.
extern int levelQuestions;
extern int assertionReports;

/// The service that the library subscribed to last.
extern std::string subscribedService;

}  // namespace foreignPlatform

#endif
