#ifndef TESTS_LIBRARY_CARDS_VALUE_TEXTS_H
#define TESTS_LIBRARY_CARDS_VALUE_TEXTS_H

// Values and streams as tests compare them and a failure shows them.

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "IfcCardStatusAndControl.h"
#include "support/HexBytes.h"

template <typename T>
std::string numberText(const char* type, const boost::any& value)
{
    return std::string(type) + " " + std::to_string(boost::any_cast<T>(value));
}

/// The held type and the value.
inline std::string valueText(const boost::any& value)
{
    const std::type_info& type = value.type();
    if (type == typeid(unsigned long long)) {
        return numberText<unsigned long long>("unsigned long long", value);
    }
    if (type == typeid(unsigned int)) {
        return numberText<unsigned int>("unsigned int", value);
    }
    if (type == typeid(unsigned short)) {
        return numberText<unsigned short>("unsigned short", value);
    }
    if (type == typeid(unsigned char)) {
        return numberText<unsigned char>("unsigned char", value);
    }
    if (type == typeid(long long)) {
        return numberText<long long>("long long", value);
    }
    if (type == typeid(int)) {
        return numberText<int>("int", value);
    }
    if (type == typeid(short)) {
        return numberText<short>("short", value);
    }
    if (type == typeid(signed char)) {
        return numberText<signed char>("signed char", value);
    }
    if (type == typeid(bool)) {
        return boost::any_cast<bool>(value) ? "bool true" : "bool false";
    }
    if (type == typeid(std::string)) {
        return "string '" + boost::any_cast<std::string>(value) + "'";
    }
    if (type == typeid(in_addr)) {
        return "in_addr " + std::to_string(boost::any_cast<in_addr>(value).s_addr);
    }
    if (type == typeid(buffer_t)) {
        return "buffer_t " + hexOf(boost::any_cast<buffer_t>(value));
    }
    return value.empty() ? "nothing" : type.name();
}

using RecordTexts = std::vector<std::string>;

/// "OID: type code, held type and value" of each record, in ascending order of the OIDs.
inline RecordTexts recordTexts(const OidTypeValueMap& values)
{
    RecordTexts texts;
    for (const auto& [oid, record] : values) {
        texts.push_back(std::to_string(oid) + ": " + std::to_string(record.type) + ", " + valueText(record.value));
    }
    return texts;
}

inline in_addr addressOf(std::uint32_t number)
{
    in_addr address{};
    address.s_addr = number;
    return address;
}

#endif
