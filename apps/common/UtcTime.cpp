#include "common/UtcTime.h"

#include <ctime>
#include <iomanip>
#include <sstream>

namespace brantel {
namespace {

constexpr const char* FORMAT = "%Y-%m-%dT%H:%M:%S";

}  // namespace

UtcTime utcTimeNow()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

std::string utcTimeText(UtcTime time)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const auto utcSeconds = static_cast<std::time_t>(seconds.time_since_epoch().count());
    std::tm utc = {};
    gmtime_r(&utcSeconds, &utc);
    std::ostringstream text;
    text << std::put_time(&utc, FORMAT) << '.' << std::setw(3) << std::setfill('0') << (time - seconds).count() << 'Z';
    return text.str();
}

std::optional<UtcTime> parseUtcTime(const std::string& text)
{
    std::tm utc = {};
    std::istringstream stream(text);
    int milliseconds = 0;
    char point = '\0';
    char zone = '\0';
    stream >> std::get_time(&utc, FORMAT) >> point >> milliseconds >> zone;
    if (!stream || (stream.peek() != EOF) || (point != '.') || (zone != 'Z')) {
        return std::nullopt;
    }
    return UtcTime(std::chrono::seconds(timegm(&utc)) + std::chrono::milliseconds(milliseconds));
}

}  // namespace brantel
