#ifndef APPS_TABLES_SPOOLED_INPUT_H
#define APPS_TABLES_SPOOLED_INPUT_H

// An input whose end is known before its first row is used: what a pipe or a terminal delivers goes to a temporary file
// first, so that no database is locked while its writer is awaited.

#include <cstddef>
#include <functional>
#include <string>

#include "common/FileDescriptor.h"

namespace brantel {

class SpooledInput {
public:
    /// Opens `path`; "-" is standard input. Reads a pipe or a terminal to its end. Throws CommandError.
    explicit SpooledInput(const std::string& path);

    /// The name of the input in messages.
    const std::string& name() const { return m_name; }

    /// The descriptor, to be read from its current position.
    int file() const { return m_file.number(); }

    /// Reads on into `buffer`. Returns the number of bytes, 0 at the end. Throws CommandError.
    std::size_t read(char* buffer, std::size_t size) const;

    /// The number of times that a byte occurs in the rest of the input. Throws CommandError.
    std::size_t count(char byte) const;

    /// The first byte of the rest that is not part of a byte order mark and not blank, or '\0'. Throws CommandError.
    char firstByte() const;

private:
    FileDescriptor spooled() const;
    void lookAhead(const std::function<bool(const char* pBegin, const char* pEnd)>& visit) const;

    std::string m_name;
    FileDescriptor m_file;
};

}  // namespace brantel

#endif
