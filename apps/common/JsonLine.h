#ifndef APPS_COMMON_JSON_LINE_H
#define APPS_COMMON_JSON_LINE_H

#include <string>

#include <nlohmann/json.hpp>

#include "common/PrintableText.h"

namespace brantel {

/// A JSON value in one line that is fit for a terminal, without the line's end. Bytes that are not UTF-8 become U+FFFD.
inline std::string jsonLine(const nlohmann::ordered_json& json)
{
    return printableJson(json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

}  // namespace brantel

#endif
