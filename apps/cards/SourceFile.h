#ifndef APPS_CARDS_SOURCE_FILE_H
#define APPS_CARDS_SOURCE_FILE_H

// The files that a card takes its values from.

#include <cstddef>
#include <string>

namespace brantel {

/// Throws CommandError for what is there and is larger than `maxSize`, or neither a file nor a folder (which the reader
/// refuses itself): reading a pipe may wait for a writer, and a device need not end. "-" is standard input.
void checkSourceFile(const std::string& path, std::size_t maxSize);

/// The lines of a file of at most 1 MiB in UTF-8, each with a line feed. Throws CommandError, with the line and column
/// of what is not UTF-8, or is a control character.
std::string wholeText(const std::string& path);

}  // namespace brantel

#endif
