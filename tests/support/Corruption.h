#ifndef TESTS_SUPPORT_CORRUPTION_H
#define TESTS_SUPPORT_CORRUPTION_H

// Damages the content of a file as disks, crashes, editors and accidents do: flipped bits, a lost end, zeros, foreign
// bytes, lines or blocks that are doubled, missing or in another order. The same seed gives the same damage
// everywhere.

#include <cstdint>
#include <string>

struct Corrupted {
    std::string what;  ///< "3 bits flipped", for messages
    std::string content;
};

/// The damage number `number` of a series; never the content itself. The content must have at least two lines that
/// differ.
Corrupted corrupted(const std::string& content, std::uint64_t seed, std::uint64_t number);

#endif
