#ifndef APPS_MONITOR_JOURNAL_H
#define APPS_MONITOR_JOURNAL_H

// The file that all events are appended to, a JSON object per line, each with one write. An incomplete line after a
// kill, or NULs after a power failure, are removed when the file is opened, so that readers only ever find whole lines.
//
// The journal may be a pipe or a device; if it would block, that is an error.

#include <cstdint>
#include <optional>
#include <string>

#include "common/FileDescriptor.h"

namespace brantel {

class Journal {
public:
    /// Opens or creates the file, repairs its end, and keeps other monitors from it. A file whose last lines are not
    /// events is left alone. Throws CommandError.
    explicit Journal(const std::string& path);

    /// The number of the last event that the constructor would find, 0 if there is none; changes nothing. Throws
    /// CommandError.
    static std::uint64_t inspect(const std::string& path);

    /// The number of the last event in the file; 0 if there is none.
    std::uint64_t lastEvent() const { return m_lastEvent; }

    /// Appends the line of event `number`. On failure the file is unchanged. Throws CommandError.
    void append(std::uint64_t number, const std::string& line);

    /// Completes the line of which a pipe has taken a part. Throws CommandError.
    void completeLine();
    bool isLineComplete() const { return m_rest.empty(); }

    /// Waits until all appended lines are on disk. Throws CommandError.
    void synchronise();

private:
    void repair();
    void appendToFile(const std::string& text);
    [[noreturn]] void throwCannot(const std::string& verb) const;

    const std::string m_path;
    const FileDescriptor m_file;
    bool m_isRegular = true;
    std::optional<std::size_t> m_tornAt;  ///< the start of an incomplete line that could not be removed
    std::string m_rest;                   ///< of the last line, not yet taken by a pipe
    std::uint64_t m_lastEvent = 0;
};

}  // namespace brantel

#endif
