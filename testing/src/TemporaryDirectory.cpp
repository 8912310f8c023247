#include "brantel/testing/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace brantelTesting {

TemporaryDirectory::TemporaryDirectory() : m_path(std::filesystem::temp_directory_path() / "brantel-test-XXXXXX")
{
    if (::mkdtemp(m_path.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary directory");
    }
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryDirectory::write(const std::string& name, const std::string& content) const
{
    std::string path = m_path + "/" + name;
    std::ofstream(path, std::ios::binary) << content;
    std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    return path;
}

RuntimeDirectory::RuntimeDirectory()
{
    ::setenv("XDG_RUNTIME_DIR", path().c_str(), 1);
    ::unsetenv("BRANTEL_MESSAGE_DIRECTORY");
}

}  // namespace brantelTesting
