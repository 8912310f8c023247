#ifndef APPS_SAMPLES_SAMPLE_TIME_H
#define APPS_SAMPLES_SAMPLE_TIME_H

#include <optional>
#include <string>

/// The time that `text` tells, in seconds: a decimal number of seconds, or an ISO 8601 date and time such as
/// 2024-05-01T12:30:00, 2024-05-01 12:30:00.5 or 2024-05-01T12:30:00Z. Only differences between two of them mean
/// something. Nothing for any other text.
std::optional<double> secondsOf(const std::string& text);

#endif
