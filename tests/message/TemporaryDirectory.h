#ifndef TESTS_MESSAGE_TEMPORARY_DIRECTORY_H
#define TESTS_MESSAGE_TEMPORARY_DIRECTORY_H

// A directory of the test's own, removed with everything in it.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        std::string path = (std::filesystem::temp_directory_path() / "brantel-test-XXXXXX").string();
        if (::mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        m_path = path;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return m_path; }

    /// Writes a file for this user alone, and returns its path.
    std::string write(const std::string& name, const std::string& contents) const
    {
        const std::string file = m_path + "/" + name;
        std::ofstream(file) << contents;
        std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        return file;
    }

private:
    std::string m_path;
};

/// What `act` throws, as text; empty if it throws nothing.
template <typename Action>
std::string errorOf(Action act)
{
    try {
        act();
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

#endif
