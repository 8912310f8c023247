#include "support/Corruption.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>
#include <vector>

namespace {

constexpr std::size_t BLOCK = 512;

using Random = std::mt19937_64;

// Without the library's distributions, which differ from one to the other. From 0 to `end` - 1.
std::size_t below(Random& random, std::size_t end)
{
    return static_cast<std::size_t>(random() % end);
}

std::vector<std::string> linesOf(const std::string& content)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < content.size();) {
        const std::size_t end = std::min(content.find('\n', begin), content.size() - 1) + 1;
        lines.push_back(content.substr(begin, end - begin));
        begin = end;
    }
    return lines;
}

std::vector<std::string> blocksOf(const std::string& content)
{
    std::vector<std::string> blocks;
    for (std::size_t begin = 0; begin < content.size(); begin += BLOCK) {
        blocks.push_back(content.substr(begin, BLOCK));
    }
    return blocks;
}

std::string joined(const std::vector<std::string>& pieces)
{
    std::string content;
    for (const std::string& piece : pieces) {
        content += piece;
    }
    return content;
}

Corrupted flipBits(std::string content, Random& random)
{
    const std::size_t count = 1 + below(random, 4);
    for (std::size_t i = 0; i < count; ++i) {
        char& byte = content[below(random, content.size())];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << below(random, 8)));
    }
    return {std::to_string(count) + " bits flipped", content};
}

Corrupted cutOff(std::string content, Random& random)
{
    content.resize(below(random, content.size()));
    return {"cut off at " + std::to_string(content.size()), content};
}

Corrupted addZeros(std::string content, Random& random)
{
    content.append(1 + below(random, 2 * BLOCK), '\0');
    return {"zeros at the end", content};
}

Corrupted fillBlock(std::string content, Random& random)
{
    const bool isZero = (below(random, 2) == 0);
    const std::size_t begin = below(random, content.size());
    const std::size_t end = std::min(begin + 1 + below(random, BLOCK), content.size());
    for (std::size_t i = begin; i < end; ++i) {
        content[i] = isZero ? '\0' : static_cast<char>(below(random, 256));
    }
    return {(isZero ? "zeros at " : "foreign bytes at ") + std::to_string(begin), content};
}

Corrupted changePieces(const std::string& name, std::vector<std::string> pieces, Random& random)
{
    const std::size_t one = below(random, pieces.size());
    const std::size_t other = below(random, pieces.size());
    const auto at = [&](std::size_t index) { return pieces.begin() + static_cast<std::ptrdiff_t>(index); };
    const std::string numbers = name + " " + std::to_string(one) + " and " + std::to_string(other);
    switch (below(random, 3)) {
        case 0:
            pieces.insert(at(other), std::string(pieces[one]));
            return {numbers + ": the first before the second, too", joined(pieces)};
        case 1:
            pieces.erase(at(std::min(one, other)), std::next(at(std::min(one, other))));
            return {numbers + ": the former is missing", joined(pieces)};
        default: std::swap(pieces[one], pieces[other]); return {numbers + " swapped", joined(pieces)};
    }
}

}  // namespace

Corrupted corrupted(const std::string& content, std::uint64_t seed, std::uint64_t number)
{
    using Damage = std::function<Corrupted(const std::string&, Random&)>;
    static const Damage damages[] = {
        flipBits,
        flipBits,
        cutOff,
        addZeros,
        fillBlock,
        [](const std::string& text, Random& random) { return changePieces("lines", linesOf(text), random); },
        [](const std::string& text, Random& random) { return changePieces("blocks", blocksOf(text), random); },
    };
    Random random(seed * 1'000'003 + number);
    for (;;) {
        Corrupted result = damages[below(random, std::size(damages))](content, random);
        if (result.content != content) {
            return result;
        }
    }
}
