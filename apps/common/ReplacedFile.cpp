#include "common/ReplacedFile.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace {

std::string folderOf(const std::string& path)
{
    const std::size_t posSlash = path.rfind('/');
    return (posSlash == std::string::npos) ? "." : path.substr(0, posSlash + 1);
}

[[noreturn]] void throwCannotWrite(const std::string& path)
{
    throw CommandError("cannot write '" + path + "': " + std::generic_category().message(errno));
}

// The name of a file is in its folder, which is on disk only when it was synchronised, too.
void synchroniseFolder(const std::string& folder)
{
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        ::fsync(file);
        ::close(file);
    }
}

}  // namespace

bool writeAll(int file, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(file, text.data() + done, text.size() - done);
        if (written >= 0) {
            done += static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

void replaceFile(const std::string& path, const std::string& text, Durability durability)
{
    const std::string newPath = path + ".new";
    const int file = ::open(newPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) {
        throwCannotWrite(newPath);
    }
    const bool isDurable = (durability == Durability::POWER_FAILURE);
    const bool isWritten = writeAll(file, text) && (!isDurable || (::fsync(file) == 0));
    const int error = errno;
    ::close(file);
    if (!isWritten || (std::rename(newPath.c_str(), path.c_str()) != 0)) {
        errno = isWritten ? errno : error;
        throwCannotWrite(path);
    }
    if (isDurable) {
        synchroniseFolder(folderOf(path));
    }
}
