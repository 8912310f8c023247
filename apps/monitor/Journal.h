#ifndef APPS_MONITOR_JOURNAL_H
#define APPS_MONITOR_JOURNAL_H

// The file that all events are appended to, a JSON object a line, each with one write. What a program that was killed
// in the middle of a line left behind is put right when the file is opened, so that others only ever find whole lines.

#include <cstdint>
#include <string>

class Journal {
public:
    /// Opens or creates the file, repairs its end, and keeps other monitors from it. A file whose last lines are no
    /// events is left alone. Throws CommandError.
    explicit Journal(const std::string& path);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// The number of the last event in the file; 0 if there is none.
    std::uint64_t lastEvent() const { return m_lastEvent; }

    /// Appends a line of event `number`. On failure the file is as it was. Throws CommandError.
    void append(std::uint64_t number, const std::string& line);

    /// Waits until all that was appended is on disk. Throws CommandError.
    void synchronise();

private:
    void repair();
    std::string tail(std::size_t size) const;
    [[noreturn]] void throwCannot(const std::string& verb) const;

    const std::string m_path;
    int m_file;
    std::uint64_t m_lastEvent = 0;
};

#endif
