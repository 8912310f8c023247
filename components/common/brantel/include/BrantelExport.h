#ifndef BRANTEL_EXPORT_H
#define BRANTEL_EXPORT_H

/// Marks what the library exports; everything else is built hidden.
#define BRANTEL_EXPORT __attribute__((visibility("default")))

/// Marks what a later version removes; comes before BRANTEL_EXPORT. Each use is a warning of the compiler that shows
/// `reason`, a literal: what to use instead, and the version that removes it.
#define BRANTEL_DEPRECATED(reason) [[deprecated(reason)]]

#endif
