#include "IfcCardStatusAndControl.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <typeinfo>
#include <utility>

#include "Log.h"

namespace {

constexpr std::size_t MAC_ADDRESS_LENGTH = 6;

// Whose line or report a helper writes.
struct Caller {
    const char* name;
    const char* signature;
};

template <typename T>
void appendAs(const boost::any& value, buffer_t& element)
{
    element << boost::any_cast<const T&>(value);
}

template <typename T>
boost::any readAs(const buffer_t& element, const Caller&)
{
    T value{};
    element >> value;
    return value;
}

void appendIPv4Address(const boost::any& value, buffer_t& element)
{
    element << static_cast<std::uint32_t>(boost::any_cast<const in_addr&>(value).s_addr);
}

boost::any readIPv4Address(const buffer_t& element, const Caller&)
{
    std::uint32_t number = 0;
    element >> number;
    in_addr address{};
    address.s_addr = number;
    return address;
}

void appendMacAddress(const boost::any& value, buffer_t& element)
{
    auto number = boost::any_cast<unsigned long long>(value);
    unsigned char bytes[MAC_ADDRESS_LENGTH];
    for (std::size_t i = MAC_ADDRESS_LENGTH; i-- > 0; number >>= 8) {
        bytes[i] = static_cast<unsigned char>(number & 0xFF);
    }
    element << buffer_t(bytes, sizeof bytes);
}

boost::any readMacAddress(const buffer_t& element, const Caller& caller)
{
    buffer_t macAddress;
    element >> macAddress;
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

// How the value of one type code is appended to an element and read from it. Appending raises boost::bad_any_cast when
// the value does not hold the type.
struct ValueCodec {
    void (*append)(const boost::any& value, buffer_t& element);
    boost::any (*read)(const buffer_t& element, const Caller& caller);
};

constexpr ValueCodec valueCodecs[] = {
    {appendAs<unsigned long long>, readAs<unsigned long long>},  // 0   OID_TYPE_UINT64
    {appendAs<unsigned int>, readAs<unsigned int>},              // 1   OID_TYPE_UINT32
    {appendAs<unsigned short>, readAs<unsigned short>},          // 2   OID_TYPE_UINT16
    {appendAs<unsigned char>, readAs<unsigned char>},            // 3   OID_TYPE_UINT8
    {appendAs<long long>, readAs<long long>},                    // 4   OID_TYPE_INT64
    {appendAs<int>, readAs<int>},                                // 5   OID_TYPE_INT32
    {appendAs<short>, readAs<short>},                            // 6   OID_TYPE_INT16
    {appendAs<signed char>, readAs<signed char>},                // 7   OID_TYPE_INT8
    {appendAs<bool>, readAs<bool>},                              // 8   OID_TYPE_BOOL
    {appendAs<std::string>, readAs<std::string>},                // 9   OID_TYPE_STRING
    {appendIPv4Address, readIPv4Address},                        // 10  OID_TYPE_IPV4_ADDRESS
    {nullptr, nullptr},                                          // 11  not in use
    {appendAs<buffer_t>, readAs<buffer_t>},                      // 12  OID_TYPE_BUFFER
    {appendMacAddress, readMacAddress},                          // 13  OID_TYPE_MAC_ADDRESS
};
static_assert(std::size(valueCodecs) == OID_TYPE_MAC_ADDRESS + 1, "one row for each type code");

// Null for a type code that is unknown.
const ValueCodec* findValueCodec(OidValueType type)
{
    // Unsigned, so that negative codes are unknown too.
    const auto code = static_cast<std::uint32_t>(type);
    return ((code < std::size(valueCodecs)) && (valueCodecs[code].append != nullptr)) ? &valueCodecs[code] : nullptr;
}

// `expected` is the place where a card that answers in the order of the request has the OID.
bool isRequested(const ObjectIdContainer& requestedOids, std::size_t expected, std::uint32_t oid)
{
    return (requestedOids[expected] == oid) ||
           (std::find(requestedOids.begin(), requestedOids.end(), oid) != requestedOids.end());
}

// False if `values` already has a record for `oid`.
bool addRecord(OidTypeValueMap& values, std::uint32_t oid, TypeValueRecord&& record)
{
    const std::size_t sizeBefore = values.size();
    values.try_emplace(values.end(), oid, std::move(record));  // cards answer in ascending order more often than not
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
        buffer_t element;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const OidValueType type = values[i].type;
            element.clear();
            element << values[i].oid << static_cast<unsigned char>(type & 0xFF);

            const ValueCodec* const pCodec = findValueCodec(type);
            if (pCodec == nullptr) {
                LOG_ERROR("invalid or not yet implemented type  (%d) for oid=0x%x", static_cast<int>(type),
                          values[i].oid);
                ASSERT_OR_REPORT(false);
                return false;
            }
            // A value that fails one of these raises boost::bad_any_cast in append, as for every other type code.
            if (type == OID_TYPE_IPV4_ADDRESS) {
                ASSERT_OR_REPORT(isIPv4Address(values[i].value));
            } else if (type == OID_TYPE_MAC_ADDRESS) {
                ASSERT_OR_REPORT(isUInt64(values[i].value));
            }
            pCodec->append(values[i].value, element);
            tlvs << element;
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
        buffer_t element;
        for (std::uint32_t i = 0; i < count; ++i) {
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
            const ValueCodec* const pCodec = findValueCodec(type);
            if (pCodec == nullptr) {
                LOG_ERROR("slot=%d: invalid or not yet implemented type  (%d) for oid=0x%x", slot,
                          static_cast<int>(type), oid);
                values.clear();
                return false;
            }
            if (!addRecord(values, oid, {type, pCodec->read(element, {__func__, __PRETTY_FUNCTION__})})) {
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
