#ifndef APPS_CARDS_VALUE_VISITOR_H
#define APPS_CARDS_VALUE_VISITOR_H

// The C++ types that the values of objects are held in: the only list of them in the command.
//
//     visitType(type, [](auto tag) { return sizeof(typename decltype(tag)::Type); });
//     visitValue(type, any, [](const auto& value) { ... });
//
// A visitor has an operator() for each of the types, usually a template for the integers. All return the same type; a
// code that is not a type gives a default value of it.

#include <string>

#include <netinet/in.h>

#include "IfcCardStatusAndControl.h"

namespace brantel {

/// A MAC address apart from a uint64: both are held in an unsigned long long.
struct MacAddress {
    unsigned long long number;
};

template <typename Value>
struct ValueTag {
    using Type = Value;
};

template <typename Visitor>
auto visitType(OidValueType type, const Visitor& visitor) -> decltype(visitor(ValueTag<bool>()))
{
    switch (type) {
        case OID_TYPE_UINT64: return visitor(ValueTag<unsigned long long>());
        case OID_TYPE_UINT32: return visitor(ValueTag<unsigned int>());
        case OID_TYPE_UINT16: return visitor(ValueTag<unsigned short>());
        case OID_TYPE_UINT8: return visitor(ValueTag<unsigned char>());
        case OID_TYPE_INT64: return visitor(ValueTag<long long>());
        case OID_TYPE_INT32: return visitor(ValueTag<int>());
        case OID_TYPE_INT16: return visitor(ValueTag<short>());
        case OID_TYPE_INT8: return visitor(ValueTag<signed char>());
        case OID_TYPE_BOOL: return visitor(ValueTag<bool>());
        case OID_TYPE_STRING: return visitor(ValueTag<std::string>());
        case OID_TYPE_IPV4_ADDRESS: return visitor(ValueTag<in_addr>());
        case OID_TYPE_BUFFER: return visitor(ValueTag<buffer_t>());
        case OID_TYPE_MAC_ADDRESS: return visitor(ValueTag<MacAddress>());
    }
    return {};
}

template <typename Value>
Value valueIn(const boost::any& any, ValueTag<Value>)
{
    return boost::any_cast<Value>(any);
}

inline MacAddress valueIn(const boost::any& any, ValueTag<MacAddress>)
{
    return {boost::any_cast<unsigned long long>(any)};
}

/// `any` holds what `type` names.
template <typename Visitor>
auto visitValue(OidValueType type, const boost::any& any, const Visitor& visitor) -> decltype(visitor(true))
{
    return visitType(type, [&](auto tag) { return visitor(valueIn(any, tag)); });
}

}  // namespace brantel

#endif
