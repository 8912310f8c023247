#ifndef APPS_COMMON_NUMBERS_H
#define APPS_COMMON_NUMBERS_H

// How numbers are read that people write: on the command line, in lists and in files.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

namespace brantel {

/// A whole number: decimal, or hexadecimal after 0x; leading zeros have no meaning; '-' before a decimal number if
/// `lowest` is negative. Nothing for any other character, a '+' or a blank included, and for a number outside `lowest`
/// to `highest`.
template <typename Integer>
std::optional<Integer> parseInteger(std::string_view text, Integer lowest = std::numeric_limits<Integer>::min(),
                                    Integer highest = std::numeric_limits<Integer>::max())
{
    const bool isHexadecimal = (text.substr(0, 2) == "0x") || (text.substr(0, 2) == "0X");
    if (isHexadecimal) {
        text.remove_prefix(2);
        if (text.substr(0, 1) == "-") {
            return std::nullopt;
        }
    }
    Integer number = 0;
    const char* const pEnd = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), pEnd, number, isHexadecimal ? 16 : 10);
    const bool isNumber = (result.ec == std::errc()) && (result.ptr == pEnd);
    return (isNumber && (number >= lowest) && (number <= highest)) ? std::optional(number) : std::nullopt;
}

/// A decimal number, with or without a fraction and an exponent: "2", "0.25", "1e-3". Nothing for any other character,
/// and for a number that is not finite or outside `lowest` to `highest`.
inline std::optional<double> parseReal(std::string_view text, double lowest, double highest)
{
    double number = 0;
    const char* const pEnd = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), pEnd, number);
    const bool isNumber = (result.ec == std::errc()) && (result.ptr == pEnd) && std::isfinite(number);
    return (isNumber && (number >= lowest) && (number <= highest)) ? std::optional(number) : std::nullopt;
}

/// No list names more numbers, so that a typing error in a range does not fill the memory.
constexpr std::size_t MAX_LISTED_NUMBERS = 1000;

/// The numbers of a list of numbers and ranges, each from `lowest` to `highest`: "3", "0-3,7". Nothing if it is not
/// such a list, or names more than MAX_LISTED_NUMBERS.
inline std::optional<std::set<std::uint32_t>> parseNumberList(std::string_view text, std::uint32_t lowest,
                                                              std::uint32_t highest)
{
    std::set<std::uint32_t> numbers;
    while (true) {
        const std::string_view item = text.substr(0, text.find(','));
        const std::size_t posDash = std::min(item.find('-'), item.size());
        const auto first = parseInteger(item.substr(0, posDash), lowest, highest);
        const auto last = (posDash == item.size()) ? first : parseInteger(item.substr(posDash + 1), lowest, highest);
        if (!first || !last || (*first > *last) || (*last - *first >= MAX_LISTED_NUMBERS)) {
            return std::nullopt;
        }
        for (std::uint32_t i = 0; i <= *last - *first; ++i) {
            numbers.insert(*first + i);
        }
        if (numbers.size() > MAX_LISTED_NUMBERS) {
            return std::nullopt;
        }
        if (item.size() == text.size()) {
            return numbers;
        }
        text.remove_prefix(item.size() + 1);
    }
}

}  // namespace brantel

#endif
