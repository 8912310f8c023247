#ifndef APPS_CARDS_VALUE_TEXT_H
#define APPS_CARDS_VALUE_TEXT_H

// Values of objects as people write and read them.
//
//     uint64 ... int8   decimal, or hexadecimal with 0x
//     bool              true or false; 1 and 0 are read, too
//     string            the characters
//     ipv4              192.0.2.1
//     buffer            its bytes in hexadecimal, two digits each
//     mac               02:00:00:00:00:01

#include <optional>
#include <string>
#include <vector>

#include "IfcCardStatusAndControl.h"

namespace brantel {

/// "uint64", ..., "mac".
std::string typeText(OidValueType type);

/// All of them.
std::vector<std::string> typeTexts();

/// Nothing for any other name.
std::optional<OidValueType> parseType(const std::string& name);

/// Nothing if `text` is not a value of this type.
std::optional<boost::any> parseValue(OidValueType type, const std::string& text);

/// `value` holds what `type` names.
std::string valueText(OidValueType type, const boost::any& value);

}  // namespace brantel

#endif
