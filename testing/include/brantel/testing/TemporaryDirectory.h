#ifndef BRANTEL_TESTING_TEMPORARY_DIRECTORY_H
#define BRANTEL_TESTING_TEMPORARY_DIRECTORY_H

// Folders for one test, so that tests may run at the same time.

#include <string>

namespace brantelTesting {

/// A new directory, removed with its content. Throws std::runtime_error if it cannot be made.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return m_path; }

    /// Writes a file for this user alone, and returns its path.
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::string m_path;
};

/// A directory that the cards and components of this test, and no others, find one another in. Sets XDG_RUNTIME_DIR and
/// unsets BRANTEL_MESSAGE_DIRECTORY in the environment of the process, and leaves them so: to be made before any
/// component or thread.
class RuntimeDirectory : public TemporaryDirectory {
public:
    RuntimeDirectory();
};

}  // namespace brantelTesting

#endif
