#ifndef BRANTEL_EXPORT_H
#define BRANTEL_EXPORT_H

/// Marks what the library exports; everything else is built hidden.
#define BRANTEL_EXPORT __attribute__((visibility("default")))

#endif
