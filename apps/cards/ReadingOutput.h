#ifndef APPS_CARDS_READING_OUTPUT_H
#define APPS_CARDS_READING_OUTPUT_H

// Values of objects and result codes as the commands print them.

#include <nlohmann/json.hpp>
#include <string>

#include "cards/CardClient.h"

nlohmann::ordered_json jsonOfValue(const TypeValueRecord& record);

/// "code", null where there is no result code, "name" and "meaning".
nlohmann::ordered_json jsonOfResult(CallOutcome outcome);

/// One line; bytes that are not UTF-8 are replaced.
std::string lineOfJson(const nlohmann::ordered_json& json);

#endif
