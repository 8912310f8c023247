#ifndef MESSAGE_EXPORT_H
#define MESSAGE_EXPORT_H

/// Marks what the message framework exports; everything else is built hidden.
#define MESSAGE_EXPORT __attribute__((visibility("default")))

#endif
