#ifndef BRANTEL_VERSION_H
#define BRANTEL_VERSION_H

// The version of the library: the one that a component is compiled against, and the one that it runs with.
//
//     #if BRANTEL_VERSION < 200
//     #error "needs brantel 0.2"
//     #endif
//
//     std::puts(brantelVersion());  // the library that is loaded: "0.2.0"

#include "BrantelExport.h"

#define BRANTEL_VERSION_MAJOR 0
#define BRANTEL_VERSION_MINOR 2
#define BRANTEL_VERSION_PATCH 0

/// The version as one number to compare: 10000 for each major version, 100 for each minor one, 1 for each patch.
#define BRANTEL_VERSION (BRANTEL_VERSION_MAJOR * 10000 + BRANTEL_VERSION_MINOR * 100 + BRANTEL_VERSION_PATCH)

/// The version of the library that the program runs with, as "MAJOR.MINOR.PATCH"; valid as long as the library is
/// loaded. May be called on any thread. Does not fail and logs nothing.
BRANTEL_EXPORT const char* brantelVersion();

#endif
