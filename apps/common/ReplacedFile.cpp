#include "common/ReplacedFile.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/CommandLine.h"
#include "common/FileDescriptor.h"

namespace brantel {
namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwCannot(const std::string& verb, const std::string& path, int error)
{
    throw CommandError("cannot " + verb + " '" + path + "': " + std::generic_category().message(error));
}

// The first `size` bytes of a file, fewer if it is shorter; nothing if there is no file. It must be a regular one.
std::optional<std::string> beginningOf(const std::string& path, std::size_t size)
{
    // A pipe without a writer would keep a blocking open waiting.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.number() < 0) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        throwCannot("read", path, errno);
    }
    struct stat status = {};
    if ((::fstat(file.number(), &status) != 0) || !S_ISREG(status.st_mode)) {
        throw CommandError("'" + path + "' is not a regular file, and is not replaced: name another one");
    }
    std::string text(size, '\0');
    const ssize_t count = ::read(file.number(), text.data(), size);
    if (count < 0) {
        throwCannot("read", path, errno);
    }
    text.resize(static_cast<std::size_t>(count));
    return text;
}

// Whether a file holds nothing but NULs, as one may after a power failure.
bool isEmptied(const std::string& path)
{
    constexpr std::size_t MOST_BYTES = std::size_t{16} << 20U;
    const std::optional<std::string> text = beginningOf(path, MOST_BYTES);
    return text && (text->size() < MOST_BYTES) && (text->find_first_not_of('\0') == std::string::npos);
}

// The file of a program that was killed while it wrote may hold a part of the start.
void requireOwn(const std::string& path, std::string_view start)
{
    const std::optional<std::string> beginning = beginningOf(path, start.size());
    if (beginning && (*beginning != start.substr(0, beginning->size())) && !isEmptied(path)) {
        throw CommandError("'" + path + "' is not replaced, because it does not begin with '" + std::string(start) +
                           "': name another file, or remove it");
    }
}

// The name of a file is in its folder, which has to be synchronised too.
void synchroniseFolder(const std::string& folder)
{
    const FileDescriptor file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.number() >= 0) {
        ::fsync(file.number());
    }
}

// Returns 0 or an errno.
int writeNew(const std::string& path, const std::string& text, bool isDurable)
{
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644));
    if (file.number() < 0) {
        return errno;
    }
    const int error = writeAll(file.number(), text);
    return ((error == 0) && isDurable && (::fsync(file.number()) != 0)) ? errno : error;
}

bool areSame(const NamedFile& one, const NamedFile& other)
{
    struct stat oneStatus = {};
    struct stat otherStatus = {};
    const bool areThere =
        (::stat(one.path.c_str(), &oneStatus) == 0) && (::stat(other.path.c_str(), &otherStatus) == 0);
    return areThere ? ((oneStatus.st_dev == otherStatus.st_dev) && (oneStatus.st_ino == otherStatus.st_ino))
                    : (resolvedPath(one.path) == resolvedPath(other.path));
}

}  // namespace

std::string resolvedPath(const std::string& path)
{
    constexpr int MAX_LINKS = 40;
    std::error_code error;
    fs::path target = path;
    for (int i = 0; (i < MAX_LINKS) && fs::is_symlink(target, error); ++i) {
        target = target.parent_path() / fs::read_symlink(target, error);
    }
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    const fs::path resolvedFolder = fs::canonical(folder, error);
    return ((error ? fs::absolute(folder) : resolvedFolder) / target.filename()).string();
}

void requireReplaceable(const std::string& path, std::string_view start)
{
    requireOwn(path, start);
    requireOwn(resolvedPath(path) + ".new", start);
}

void replaceFile(const std::string& path, std::string_view start, const std::string& text, Durability durability)
{
    requireReplaceable(path, start);
    const fs::path target = resolvedPath(path);
    const std::string newPath = target.string() + ".new";
    const bool isDurable = (durability == Durability::POWER_FAILURE);
    int error = writeNew(newPath, text, isDurable);
    if ((error == 0) && (std::rename(newPath.c_str(), target.c_str()) != 0)) {
        error = errno;
    }
    if (error != 0) {
        static_cast<void>(std::remove(newPath.c_str()));  // a full disk needs the room
        throwCannot("write", path, error);
    }
    if (isDurable) {
        synchroniseFolder(target.parent_path().string());
    }
}

void requireDistinct(const std::vector<NamedFile>& files)
{
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (areSame(files[j], files[i])) {
                throw CommandError(files[j].name + " '" + files[j].path + "' and " + files[i].name + " '" +
                                   files[i].path + "' are the same file: give each a file of its own");
            }
        }
    }
}

}  // namespace brantel
