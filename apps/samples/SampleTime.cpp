#include "samples/SampleTime.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>
#include <string_view>
#include <system_error>

namespace brantel {
namespace {

bool isDigit(char character)
{
    return (character >= '0') && (character <= '9');
}

// A decimal number without an exponent.
std::optional<double> parseDecimal(std::string_view text)
{
    double number = 0;
    const char* const pEnd = text.data() + text.size();
    const auto [pRest, error] = std::from_chars(text.data(), pEnd, number, std::chars_format::fixed);
    const bool isNumber = (error == std::errc()) && (pRest == pEnd) && std::isfinite(number);
    return isNumber ? std::optional(number) : std::nullopt;
}

// Whether `text` has the shape of `pattern`, in which 0 is any digit.
bool hasShape(std::string_view text, std::string_view pattern)
{
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(), [](char character, char wanted) {
        return (wanted == '0') ? isDigit(character) : (character == wanted);
    });
}

std::optional<double> parseDateAndTime(std::string_view text)
{
    constexpr std::string_view SHAPES[] = {"0000-00-00T00:00:00", "0000-00-00 00:00:00"};
    constexpr std::size_t POS_SECONDS = 17;
    constexpr double AFTER_LEAP_SECOND = 61;
    if (!text.empty() && (text.back() == 'Z')) {
        text.remove_suffix(1);
    }
    const std::string_view wholeSeconds = text.substr(0, SHAPES[0].size());
    const std::string_view fraction = text.substr(wholeSeconds.size());
    const bool isTime = std::any_of(std::begin(SHAPES), std::end(SHAPES),
                                    [&](std::string_view shape) { return hasShape(wholeSeconds, shape); });
    if (!isTime || (!fraction.empty() && ((fraction.front() != '.') || (fraction.size() == 1)))) {
        return std::nullopt;
    }
    const std::optional<double> seconds = parseDecimal(text.substr(POS_SECONDS));
    const auto number = [&](std::size_t position, std::size_t length) {
        return static_cast<int>(*parseDecimal(text.substr(position, length)));
    };
    std::tm time = {};
    time.tm_year = number(0, 4) - 1900;
    time.tm_mon = number(5, 2) - 1;
    time.tm_mday = number(8, 2);
    time.tm_hour = number(11, 2);
    time.tm_min = number(14, 2);
    std::tm existing = time;
    const std::time_t minute = timegm(&existing);  // normalises what does not exist, such as 30 February
    const bool exists = (existing.tm_mon == time.tm_mon) && (existing.tm_mday == time.tm_mday) &&
                        (existing.tm_hour == time.tm_hour) && (existing.tm_min == time.tm_min);
    if (!exists || !seconds || (*seconds >= AFTER_LEAP_SECOND)) {
        return std::nullopt;
    }
    return static_cast<double>(minute) + *seconds;
}

}  // namespace

std::optional<double> SampleTimes::parse(const std::string& text)
{
    const std::optional<double> number = parseDecimal(text);
    const std::optional<double> seconds = number ? number : parseDateAndTime(text);
    if (seconds && !m_areDates) {
        m_areDates = !number;
    }
    return (seconds && (*m_areDates == !number)) ? seconds : std::nullopt;
}

}  // namespace brantel
