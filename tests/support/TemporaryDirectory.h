#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <string>

// A directory for one test, removed with its content.
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

std::string contentOf(const std::string& path);

#endif
