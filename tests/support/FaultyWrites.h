#ifndef TESTS_SUPPORT_FAULTY_WRITES_H
#define TESTS_SUPPORT_FAULTY_WRITES_H

// Makes calls fail by which a program that a test runs changes files: see FaultyWrites.cpp, a library that is preloaded
// into the program.

#include <limits>
#include <ostream>
#include <string>
#include <vector>

struct WriteFault {
    const char* mode;   ///< "full", "failing", "short", "slow" or "none"
    std::string files;  ///< a pattern of fnmatch
    bool isLasting;     ///< all calls from `call` on, and not that one alone
    long call;          ///< among those on the files, from 1
};

inline std::ostream& operator<<(std::ostream& stream, const WriteFault& fault)
{
    return stream << fault.mode << (fault.isLasting ? " from call " : " at call ") << fault.call << " on "
                  << fault.files;
}

/// What a program's environment must hold for the fault. Its calls on the files are noted in the file `log`.
inline std::vector<std::string> environmentOf(const WriteFault& fault, const std::string& log)
{
    const long last = fault.isLasting ? std::numeric_limits<long>::max() : fault.call;
    return {std::string("LD_PRELOAD=") + FAULTY_WRITES_LIBRARY,
            std::string("FAULTY_MODE=") + fault.mode,
            "FAULTY_FILES=" + fault.files,
            "FAULTY_FIRST=" + std::to_string(fault.call),
            "FAULTY_LAST=" + std::to_string(last),
            "FAULTY_LOG=" + log,
            "ASAN_OPTIONS=verify_asan_link_order=0"};
}

#endif
