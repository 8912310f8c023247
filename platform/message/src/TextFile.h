#ifndef MESSAGE_TEXT_FILE_H
#define MESSAGE_TEXT_FILE_H

// The framework's text files: one entry a line, made of words; empty lines and lines that start with # are skipped.

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace obmessage {

/// What is wrong with a line; the reader adds file and line number.
class LineError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Calls `handleLine` with the words of each entry. Throws std::runtime_error, with the file's name and the line's
/// number where there is one, if the file cannot be read, if it belongs to a user other than this one and root or
/// others may write to it, or if `handleLine` throws a LineError.
void readTextFile(const std::string& path, const std::function<void(const std::vector<std::string>&)>& handleLine);

/// The same for a file with secrets: it must belong to this user or to root and be closed to all others.
void readPrivateTextFile(const std::string& path,
                         const std::function<void(const std::vector<std::string>&)>& handleLine);

}  // namespace obmessage

#endif
