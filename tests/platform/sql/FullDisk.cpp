#include "FullDisk.h"

#include <cerrno>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool isFull = false;

}  // namespace

extern "C" __attribute__((visibility("default"))) ssize_t pwrite64(int file, const void* bytes, size_t size,
                                                                   off64_t offset)
{
    if (isFull) {
        errno = ENOSPC;
        return -1;
    }
    return syscall(SYS_pwrite64, file, bytes, size, offset);
}

FullDisk::FullDisk()
{
    isFull = true;
}

FullDisk::~FullDisk()
{
    isFull = false;
}
