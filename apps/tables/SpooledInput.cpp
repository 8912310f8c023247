#include "tables/SpooledInput.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace brantel {
namespace {

using Buffer = std::array<char, 65536>;

std::string temporaryFolder()
{
    const char* const folder = std::getenv("TMPDIR");
    return ((folder != nullptr) && (*folder != '\0')) ? folder : "/tmp";
}

[[noreturn]] void throwCannot(const std::string& what)
{
    throw CommandError("cannot " + what + ": " + std::generic_category().message(errno));
}

// A file without a name, which is removed when it is closed.
FileDescriptor temporaryFile()
{
    std::string path = temporaryFolder() + "/brantel-import-XXXXXX";
    FileDescriptor file(mkostemp(path.data(), O_CLOEXEC));
    if (file.number() < 0) {
        throwCannot("create a temporary file in " + temporaryFolder());
    }
    ::unlink(path.c_str());
    return file;
}

FileDescriptor opened(const std::string& path)
{
    FileDescriptor file((path == "-") ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) {
        throwCannot("read " + path);
    }
    return file;
}

}  // namespace

SpooledInput::SpooledInput(const std::string& path)
    : m_name((path == "-") ? "standard input" : path), m_file(opened(path))
{
    struct stat status = {};
    if (::fstat(file(), &status) != 0) {
        throwCannot("read " + m_name);
    }
    if (!S_ISREG(status.st_mode)) {
        m_file = spooled();
    }
}

std::size_t SpooledInput::read(char* buffer, std::size_t size) const
{
    ssize_t count = -1;
    do {
        count = ::read(file(), buffer, size);
    } while ((count < 0) && (errno == EINTR));
    if (count < 0) {
        throwCannot("read " + m_name);
    }
    return static_cast<std::size_t>(count);
}

FileDescriptor SpooledInput::spooled() const
{
    FileDescriptor copy = temporaryFile();
    Buffer buffer;
    while (const std::size_t count = read(buffer.data(), buffer.size())) {
        if (const int error = writeAll(copy.number(), {buffer.data(), count})) {
            errno = error;
            throwCannot("write a temporary file in " + temporaryFolder());
        }
    }
    ::lseek(copy.number(), 0, SEEK_SET);
    return copy;
}

// Visits the rest of the input, block by block, until `visit` returns true.
void SpooledInput::lookAhead(const std::function<bool(const char* pBegin, const char* pEnd)>& visit) const
{
    const off_t position = ::lseek(file(), 0, SEEK_CUR);
    Buffer buffer;
    bool isEnough = false;
    while (!isEnough) {
        const std::size_t count = read(buffer.data(), buffer.size());
        isEnough = (count == 0) || visit(buffer.data(), buffer.data() + count);
    }
    ::lseek(file(), position, SEEK_SET);
}

std::size_t SpooledInput::count(char byte) const
{
    std::size_t sum = 0;
    lookAhead([&](const char* pBegin, const char* pEnd) {
        sum += static_cast<std::size_t>(std::count(pBegin, pEnd, byte));
        return false;
    });
    return sum;
}

char SpooledInput::firstByte() const
{
    constexpr std::string_view SKIPPED = "\xEF\xBB\xBF \t\r\n";
    char first = '\0';
    lookAhead([&](const char* pBegin, const char* pEnd) {
        const char* const pFirst =
            std::find_if(pBegin, pEnd, [&](char byte) { return SKIPPED.find(byte) == std::string_view::npos; });
        first = (pFirst == pEnd) ? '\0' : *pFirst;
        return pFirst != pEnd;
    });
    return first;
}

}  // namespace brantel
