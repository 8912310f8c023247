#ifndef APPS_COMMON_UTC_TIME_H
#define APPS_COMMON_UTC_TIME_H

// The time of day as the command prints it everywhere: UTC in milliseconds, as in 2026-11-21T09:01:49.250Z.

#include <chrono>
#include <optional>
#include <string>

namespace brantel {

using UtcTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::milliseconds>;

UtcTime utcTimeNow();

std::string utcTimeText(UtcTime time);

/// Nothing for any other text than utcTimeText's.
std::optional<UtcTime> parseUtcTime(const std::string& text);

}  // namespace brantel

#endif
