#ifndef TESTS_FUZZ_FUZZ_H
#define TESTS_FUZZ_FUZZ_H

// What the fuzzers share.

#include <cstddef>
#include <cstdlib>
#include <string>

/// Heads the definition of the function that libFuzzer calls with each input: FUZZ_TARGET(pData, size) { ... }
#define FUZZ_TARGET(pData, size)                                                                             \
    extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const unsigned char* pData, \
                                                                                 std::size_t size)

/// Ends the program if something does not hold that must.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

inline std::string textOf(const unsigned char* pData, std::size_t size)
{
    return {reinterpret_cast<const char*>(pData), size};
}

#endif
