#ifndef TESTS_SQL_FULL_DISK_H
#define TESTS_SQL_FULL_DISK_H

/// While one lives, nothing more can be written to any file: the disk is full. Takes the place of pwrite64 for the
/// whole test program.
class FullDisk {
public:
    FullDisk();
    ~FullDisk();
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
};

#endif
