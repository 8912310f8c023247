#ifndef TESTS_PLATFORM_SQL_FULL_DISK_H
#define TESTS_PLATFORM_SQL_FULL_DISK_H

/// While one lives, nothing more can be written to any file: the disk is full. Replaces pwrite64 in the whole
/// test program.
class FullDisk {
public:
    FullDisk();
    ~FullDisk();
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
};

#endif
