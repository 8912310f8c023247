#ifndef APPS_COMMANDS_CARD_JSON_H
#define APPS_COMMANDS_CARD_JSON_H

// Values of objects and outcomes of requests in JSON.

#include <nlohmann/json.hpp>

#include "IfcCardStatusAndControl.h"
#include "cards/ResultText.h"

namespace brantel {

nlohmann::ordered_json valueJson(const TypeValueRecord& record);

/// "code", null where there is no result code, and "reason".
nlohmann::ordered_json failureJson(CallOutcome outcome);

}  // namespace brantel

#endif
