#ifndef APPS_COMMON_STANDARD_STREAMS_H
#define APPS_COMMON_STANDARD_STREAMS_H

// Standard input, output and error when the caller has closed them. Whatever is opened next would get their numbers,
// and results and messages would land in a journal, a database or a socket.

namespace brantel {

/// Replaces each closed standard stream by something that can be neither read nor written: the stream fails with "Bad
/// file descriptor", as if it were still closed. Call it before anything else opens a file. Throws CommandError.
void occupyClosedStandardStreams();

}  // namespace brantel

#endif
