#ifndef TESTS_FUZZ_FUZZ_FILES_H
#define TESTS_FUZZ_FUZZ_FILES_H

// Inputs as files, for code that reads files, in TMPDIR; scripts/fuzz puts them into memory.

#include <exception>
#include <string>

#include "fuzz/Fuzz.h"
#include "support/TemporaryDirectory.h"

inline const TemporaryDirectory& fuzzDirectory()
{
    static const TemporaryDirectory directory;
    return directory;
}

/// The path of a file with this content.
inline std::string fileOf(const std::string& content, const std::string& name = "input")
{
    return fuzzDirectory().write(name, content);
}

/// Runs `read`, which may refuse the file at `path` with a Refusal that names it and is one line; false if it does.
template <typename Refusal, typename Read>
bool isAccepted(const std::string& path, Read read)
{
    try {
        read();
        return true;
    } catch (const Refusal& refusal) {
        const std::string reason = refusal.what();
        require(reason.find(path) != std::string::npos);
        return false;
    }
}

#endif
