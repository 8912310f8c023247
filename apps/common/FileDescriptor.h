#ifndef APPS_COMMON_FILE_DESCRIPTOR_H
#define APPS_COMMON_FILE_DESCRIPTOR_H

#include <string_view>
#include <utility>

#include <unistd.h>

namespace brantel {

/// An open file, closed at the end of its life unless it is one of the three standard streams.
class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : m_number(number) {}
    ~FileDescriptor()
    {
        if (m_number > STDERR_FILENO) {
            ::close(m_number);
        }
    }
    FileDescriptor(FileDescriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }

    int number() const { return m_number; }

private:
    int m_number;
};

/// Writes all of `text` to an open file, however long that takes. Returns 0 or an errno.
int writeAll(int file, std::string_view text);

}  // namespace brantel

#endif
