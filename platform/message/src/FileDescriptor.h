#ifndef MESSAGE_FILE_DESCRIPTOR_H
#define MESSAGE_FILE_DESCRIPTOR_H

// Owns a file descriptor; -1 means none.

#include <utility>

#include <unistd.h>

namespace obmessage {

class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    ~FileDescriptor()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    int get() const noexcept { return m_descriptor; }
    int release() noexcept { return std::exchange(m_descriptor, -1); }
    explicit operator bool() const noexcept { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

}  // namespace obmessage

#endif
