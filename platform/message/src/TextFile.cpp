#include "TextFile.h"

#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>

#include "FileDescriptor.h"
#include "SystemError.h"

namespace obmessage {
namespace {

FileDescriptor openForReading(const std::string& path)
{
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) {
        throwSystemError(path);
    }
    return file;
}

std::string contentsOf(const FileDescriptor& file, const std::string& path)
{
    std::string contents;
    char block[4096];
    for (;;) {
        const ssize_t length = ::read(file.get(), block, sizeof block);
        if (length == 0) {
            return contents;
        }
        if (length > 0) {
            contents.append(block, static_cast<std::size_t>(length));
        } else if (errno != EINTR) {
            throwSystemError(path);
        }
    }
}

struct stat statusOf(const FileDescriptor& file, const std::string& path)
{
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) {
        throwSystemError(path);
    }
    return status;
}

void requireOwner(const struct stat& status, const std::string& path)
{
    if ((status.st_uid != ::geteuid()) && (status.st_uid != 0)) {
        throw std::runtime_error(path + ": belongs to another user");
    }
}

// Who may write to the file determines who is called and who may call.
void requireTrusted(const struct stat& status, const std::string& path)
{
    requireOwner(status, path);
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        throw std::runtime_error(path + ": other users may write to it; its mode must be 0644 or stricter");
    }
}

void requirePrivate(const struct stat& status, const std::string& path)
{
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error(path + ": not a regular file");
    }
    requireOwner(status, path);
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw std::runtime_error(path + ": open to other users; its mode must be 0600");
    }
}

std::vector<std::string> wordsOf(const std::string& line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

void forEachEntry(const FileDescriptor& file, const std::string& path,
                  const std::function<void(const std::vector<std::string>&)>& handleLine)
{
    std::istringstream lines(contentsOf(file, path));
    int lineNumber = 0;
    for (std::string line; std::getline(lines, line);) {
        ++lineNumber;
        try {
            // Readers of the words as C strings would see the part before it only.
            if (line.find('\0') != std::string::npos) {
                throw LineError("the line contains a NUL byte");
            }
            const std::vector<std::string> words = wordsOf(line);
            if (!words.empty() && (words.front().front() != '#')) {
                handleLine(words);
            }
        } catch (const LineError& error) {
            throw std::runtime_error(path + ":" + std::to_string(lineNumber) + ": " + error.what());
        }
    }
}

}  // namespace

void readTextFile(const std::string& path, const std::function<void(const std::vector<std::string>&)>& handleLine)
{
    const FileDescriptor file = openForReading(path);
    requireTrusted(statusOf(file, path), path);
    forEachEntry(file, path, handleLine);
}

void readPrivateTextFile(const std::string& path,
                         const std::function<void(const std::vector<std::string>&)>& handleLine)
{
    const FileDescriptor file = openForReading(path);
    requirePrivate(statusOf(file, path), path);
    forEachEntry(file, path, handleLine);
}

}  // namespace obmessage
