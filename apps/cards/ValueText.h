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

#include "IfcCardStatusAndControl.h"

/// "uint64", ..., "mac".
std::string nameOfType(OidValueType type);

/// All of them, separated by blanks.
std::string namesOfTypes();

/// Nothing for any other text.
std::optional<OidValueType> typeOfName(const std::string& name);

/// Nothing if `text` is no value of this type.
std::optional<boost::any> valueOfText(OidValueType type, const std::string& text);

/// `value` holds what `type` names.
std::string textOfValue(OidValueType type, const boost::any& value);

/// A number from 0 to 4294967295, decimal or hexadecimal with 0x.
std::optional<std::uint32_t> numberOfText(const std::string& text);

#endif
