#include "IfcCardStatusAndControl.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <typeinfo>
#include <utility>

#include <boost/config.hpp>

#include "Log.h"

namespace {

constexpr std::size_t MAC_ADDRESS_LENGTH = 6;

// The function in whose name a helper logs and reports: the texts are fixed, and name the exported function.
struct Caller {
    const char* name;
    const char* signature;
};

// The value, which must hold exactly a T. Comparing the addresses of the types is nearly always enough.
template <typename T>
BOOST_FORCEINLINE const T& heldAs(const boost::any& value)
{
    return BOOST_LIKELY(&value.type() == &typeid(T)) ? *boost::unsafe_any_cast<T>(&value)
                                                     : boost::any_cast<const T&>(value);
}

// Inlined, so that the element is little more than the registers that its parts are in.
template <typename T>
BOOST_FORCEINLINE void appendElement(const OidTypeValue& entry, const T& value, buffer_t& tlvs)
{
    buffer_t element;
    element << entry.oid;
    element << static_cast<unsigned char>(entry.type & 0xFF);
    element << value;
    tlvs << element;
}

// These raise boost::bad_any_cast when the entry's value does not hold the type.

template <typename T>
BOOST_FORCEINLINE void appendAs(const OidTypeValue& entry, buffer_t& tlvs)
{
    appendElement(entry, heldAs<T>(entry.value), tlvs);
}

void appendIPv4Address(const OidTypeValue& entry, buffer_t& tlvs)
{
    appendElement(entry, static_cast<std::uint32_t>(heldAs<in_addr>(entry.value).s_addr), tlvs);
}

void appendMacAddress(const OidTypeValue& entry, buffer_t& tlvs)
{
    auto number = heldAs<unsigned long long>(entry.value);
    unsigned char bytes[MAC_ADDRESS_LENGTH];
    for (std::size_t i = MAC_ADDRESS_LENGTH; i-- > 0; number >>= 8) {
        bytes[i] = static_cast<unsigned char>(number & 0xFF);
    }
    appendElement(entry, buffer_t(bytes, sizeof bytes), tlvs);
}

template <typename T>
T readAs(const buffer_t& element)
{
    T value{};
    element >> value;
    return value;
}

in_addr readIPv4Address(const buffer_t& element)
{
    in_addr address{};
    address.s_addr = readAs<std::uint32_t>(element);
    return address;
}

unsigned long long readMacAddress(const buffer_t& element, const Caller& caller)
{
    const auto macAddress = readAs<buffer_t>(element);
    ASSERT_OR_REPORT_AS(macAddress.size() == 6, caller.signature);

    unsigned char bytes[MAC_ADDRESS_LENGTH] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    std::copy_n(macAddress.data(), std::min(macAddress.size(), MAC_ADDRESS_LENGTH), bytes);
    unsigned long long number = 0;
    for (const unsigned char byte : bytes) {
        number = (number << 8) | byte;
    }
    LOG_DEBUG3_OF(caller.name, "macAddress=0x  %08X %08X", static_cast<unsigned int>(number >> 32),
                  static_cast<unsigned int>(number & 0xFFFFFFFF));
    return number;
}

// Empty if the type code is unknown.
boost::any readValue(const buffer_t& element, OidValueType type, const Caller& caller)
{
    switch (type) {
        case OID_TYPE_UINT64: return readAs<unsigned long long>(element);
        case OID_TYPE_UINT32: return readAs<unsigned int>(element);
        case OID_TYPE_UINT16: return readAs<unsigned short>(element);
        case OID_TYPE_UINT8: return readAs<unsigned char>(element);
        case OID_TYPE_INT64: return readAs<long long>(element);
        case OID_TYPE_INT32: return readAs<int>(element);
        case OID_TYPE_INT16: return readAs<short>(element);
        case OID_TYPE_INT8: return readAs<signed char>(element);
        case OID_TYPE_BOOL: return readAs<bool>(element);
        case OID_TYPE_STRING: return readAs<std::string>(element);
        case OID_TYPE_IPV4_ADDRESS: return readIPv4Address(element);
        case OID_TYPE_BUFFER: return readAs<buffer_t>(element);
        case OID_TYPE_MAC_ADDRESS: return readMacAddress(element, caller);
    }
    return {};
}

// `expected` is the index of the OID if the card answers in the order of the request.
bool isRequested(const ObjectIdContainer& requestedOids, std::size_t expected, std::uint32_t oid)
{
    return (requestedOids[expected] == oid) ||
           (std::find(requestedOids.begin(), requestedOids.end(), oid) != requestedOids.end());
}

// False if `values` already has a record for `oid`.
bool addRecord(OidTypeValueMap& values, std::uint32_t oid, TypeValueRecord&& record)
{
    const std::size_t sizeBefore = values.size();
    values.try_emplace(values.end(), oid, std::move(record));  // cards usually answer in ascending order
    return values.size() != sizeBefore;
}

}  // namespace

bool isIPv4Address(const boost::any& value)
{
    return value.type() == typeid(in_addr);
}

bool isUInt64(const boost::any& value)
{
    return value.type() == typeid(unsigned long long);
}

void convertObjectIdContainerToTlvs(const ObjectIdContainer& oids, buffer_t& tlvs)
{
    tlvs << static_cast<std::uint32_t>(oids.size());
    buffer_t element;
    for (const std::uint32_t oid : oids) {
        element.clear();
        element << oid;
        tlvs << element;
    }
}

bool convertOidTypeValueContainerToTlvs(const OidTypeValueContainer& values, buffer_t& tlvs)
{
    try {
        tlvs << static_cast<std::uint32_t>(values.size());
        // NOLINTNEXTLINE(modernize-loop-convert): the reports name the element by its index
        for (std::size_t i = 0; i < values.size(); ++i) {
            switch (values[i].type) {
                case OID_TYPE_UINT64: appendAs<unsigned long long>(values[i], tlvs); break;
                case OID_TYPE_UINT32: appendAs<unsigned int>(values[i], tlvs); break;
                case OID_TYPE_UINT16: appendAs<unsigned short>(values[i], tlvs); break;
                case OID_TYPE_UINT8: appendAs<unsigned char>(values[i], tlvs); break;
                case OID_TYPE_INT64: appendAs<long long>(values[i], tlvs); break;
                case OID_TYPE_INT32: appendAs<int>(values[i], tlvs); break;
                case OID_TYPE_INT16: appendAs<short>(values[i], tlvs); break;
                case OID_TYPE_INT8: appendAs<signed char>(values[i], tlvs); break;
                case OID_TYPE_BOOL: appendAs<bool>(values[i], tlvs); break;
                case OID_TYPE_STRING: appendAs<std::string>(values[i], tlvs); break;
                case OID_TYPE_IPV4_ADDRESS:
                    ASSERT_OR_REPORT(isIPv4Address(values[i].value));
                    appendIPv4Address(values[i], tlvs);
                    break;
                case OID_TYPE_BUFFER: appendAs<buffer_t>(values[i], tlvs); break;
                case OID_TYPE_MAC_ADDRESS:
                    ASSERT_OR_REPORT(isUInt64(values[i].value));
                    appendMacAddress(values[i], tlvs);
                    break;
                default:
                    LOG_ERROR("invalid or not yet implemented type  (%d) for oid=0x%x",
                              static_cast<int>(values[i].type), values[i].oid);
                    ASSERT_OR_REPORT(false);
                    return false;
            }
        }
        return true;
    } catch (const boost::bad_any_cast& exception) {
        LOG_ERROR("boost::bad_any_cast occurred: %s", exception.what());
    } catch (...) {
        LOG_ERROR("An exception occurred");
    }
    ASSERT_OR_REPORT(false);
    tlvs.clear();
    return false;
}

bool extractFirstOidFromTlvs(std::uint32_t slot, const buffer_t& tlvs, std::uint32_t& oid)
{
    if (tlvs.size() == 0) {
        LOG_ERROR("slot=%d: tlvs are empty", slot);
        return false;
    }
    std::uint32_t count = 0;
    tlvs >> count;
    if (count == 0) {
        LOG_ERROR("slot=%d: no tlvs", slot);
        return false;
    }
    buffer_t element;
    tlvs >> element;
    element >> oid;
    return true;
}

bool convertTlvsToOidTypeValueMap(std::uint32_t slot, const buffer_t& tlvs, OidTypeValueMap& values,
                                  const ObjectIdContainer* requestedOids)
{
    if (tlvs.size() == 0) {
        LOG_ERROR("slot=%d: tlvs are empty", slot);
        return false;
    }
    try {
        std::uint32_t count = 0;
        tlvs >> count;
        if ((requestedOids != nullptr) && (count != requestedOids->size())) {
            LOG_ERROR("slot=%d: nr of requested OIDs [%d] != nr of OIDs returned by IFC card [%d]", slot,
                      static_cast<int>(requestedOids->size()), static_cast<int>(count));
            return false;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            buffer_t element;
            std::uint32_t oid = 0;
            tlvs >> element;
            element >> oid;
            if ((requestedOids != nullptr) && !isRequested(*requestedOids, i, oid)) {
                LOG_ERROR("slot=%d: card returned value for oid=0x%x but component did not request this oid", slot,
                          oid);
                values.clear();
                return false;
            }

            std::uint8_t code = 0;
            element >> code;
            const auto type = static_cast<OidValueType>(code);
            boost::any value = readValue(element, type, {__func__, __PRETTY_FUNCTION__});
            if (value.empty()) {
                LOG_ERROR("slot=%d: invalid or not yet implemented type  (%d) for oid=0x%x", slot,
                          static_cast<int>(type), oid);
                values.clear();
                return false;
            }
            if (!addRecord(values, oid, {type, std::move(value)})) {
                LOG_ERROR("slot=%d: more than 1 value for oid=0x%x", slot, oid);
                values.clear();
                return false;
            }
        }
        return true;
    } catch (const boost::bad_any_cast& exception) {
        LOG_ERROR("slot=%d: boost::bad_any_cast occurred: %s", slot, exception.what());
    } catch (...) {
        LOG_ERROR("slot=%d: an exception occurred", slot);
    }
    values.clear();
    return false;
}
