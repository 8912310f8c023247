#include "common/NearestWord.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>

#include "common/PrintableText.h"

namespace brantel {
namespace {

std::size_t toleratedDistance(std::string_view one, std::string_view other)
{
    constexpr std::size_t LETTERS_PER_MISTAKE = 3;
    return (std::max(one.size(), other.size()) + LETTERS_PER_MISTAKE - 1) / LETTERS_PER_MISTAKE;
}

bool isSameLetter(char one, char other)
{
    return std::tolower(static_cast<unsigned char>(one)) == std::tolower(static_cast<unsigned char>(other));
}

std::size_t editDistance(std::string_view one, std::string_view other)
{
    using Row = std::vector<std::size_t>;  // the distances of a beginning of `one` to every beginning of `other`
    Row beforePrevious;
    Row previous;
    Row current(other.size() + 1);
    for (std::size_t j = 0; j <= other.size(); ++j) {
        current[j] = j;
    }
    for (std::size_t i = 1; i <= one.size(); ++i) {
        beforePrevious = previous;
        previous = current;
        current[0] = i;
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t replaced = previous[j - 1] + (isSameLetter(one[i - 1], other[j - 1]) ? 0 : 1);
            current[j] = std::min({replaced, previous[j] + 1, current[j - 1] + 1});
            if ((i > 1) && (j > 1) && isSameLetter(one[i - 1], other[j - 2]) &&
                isSameLetter(one[i - 2], other[j - 1])) {
                current[j] = std::min(current[j], beforePrevious[j - 2] + 1);
            }
        }
    }
    return current[other.size()];
}

}  // namespace

std::optional<std::string> nearestWord(std::string_view word, const Words& known)
{
    std::optional<std::string> nearest;
    std::size_t shortest = std::numeric_limits<std::size_t>::max();
    for (const std::string& candidate : known) {
        const std::size_t tolerated = toleratedDistance(word, candidate);
        const auto [shorter, longer] = std::minmax({word.size(), candidate.size()});
        if (longer - shorter > tolerated) {
            continue;
        }
        const std::size_t distance = editDistance(word, candidate);
        if ((distance <= tolerated) && (distance < shortest)) {
            nearest = candidate;
            shortest = distance;
        }
    }
    return nearest;
}

std::string suggestion(std::string_view word, const Words& known, const std::string& prefix)
{
    const std::optional<std::string> nearest = nearestWord(word, known);
    return nearest ? "; did you mean " + inQuotes(prefix + *nearest) + "?" : "";
}

std::string suggestionOrChoices(std::string_view word, const Words& known)
{
    const std::string text = suggestion(word, known);
    return text.empty() ? "; expected " + alternatives(known) : text;
}

std::string alternatives(const Words& words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const char* const separator = (i + 1 == words.size()) ? " or " : ", ";
        text += ((i == 0) ? "" : separator) + words[i];
    }
    return text;
}

}  // namespace brantel
