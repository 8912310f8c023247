#include "samples/SampleTime.h"

#include <charconv>
#include <cmath>
#include <ctime>
#include <system_error>

namespace {

// The number at the start of `text`, which is cut off it.
std::optional<double> takeNumber(std::string& text)
{
    double number = 0;
    const auto [pEnd, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if ((error != std::errc()) || !std::isfinite(number)) {
        return std::nullopt;
    }
    text.erase(0, static_cast<std::size_t>(pEnd - text.data()));
    return number;
}

std::optional<double> isoSeconds(const std::string& text)
{
    for (const char* const format : {"%Y-%m-%dT%H:%M:", "%Y-%m-%d %H:%M:"}) {
        std::tm time = {};
        const char* const pEnd = strptime(text.c_str(), format, &time);
        if (pEnd == nullptr) {
            continue;
        }
        std::string rest = pEnd;
        const std::optional<double> seconds = takeNumber(rest);
        if (!seconds || (!rest.empty() && (rest != "Z"))) {
            return std::nullopt;
        }
        return static_cast<double>(timegm(&time)) + *seconds;
    }
    return std::nullopt;
}

}  // namespace

std::optional<double> secondsOf(const std::string& text)
{
    std::string rest = text;
    const std::optional<double> number = takeNumber(rest);
    if (number && rest.empty()) {
        return number;
    }
    return isoSeconds(text);
}
