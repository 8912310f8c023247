#ifndef IFC_CARD_STATUS_AND_CONTROL_H
#define IFC_CARD_STATUS_AND_CONTROL_H

// The type-length-value (TLV) streams that are exchanged with the status-and-control service of an interface card.
//
// IcscClientProxy encodes a component's request with one of the two encoders and decodes the card's answer to a read
// with convertTlvsToOidTypeValueMap. A component that is handed a stream, in the answer to an asynchronous read,
// decodes it itself.
//
//     stream         count (32 bits), then that many elements, each a nested buffer
//     OID element    oid (32 bits)                                a request to read
//     value element  oid (32 bits), type code (8 bits), value     a request to write, the answer to a read
//
// For example:
//
//     OidTypeValueMap values;
//     if (convertTlvsToOidTypeValueMap(slot, tlvs, values, nullptr)) {  // the answer to an asynchronous read
//         for (const auto& [oid, record] : values) {
//             if (record.type == OID_TYPE_INT32) {
//                 const int value = boost::any_cast<int>(record.value);
//             }
//         }
//     }
//
//     convertTlvsToOidTypeValueMap(slot, nextTlvs, values, nullptr);  // false: values has these OIDs already
//
//     buffer_t request;
//     convertOidTypeValueContainerToTlvs({{1, OID_TYPE_BOOL, 1}}, request);  // false, with a report: not a bool
//
// No function keeps state. The decoding functions move the read position of the stream that they are given, so one
// stream belongs to one thread at a time.
//
// Errors go to syslog when the trace level is above 2, debug lines when it is above 8; violated invariants go to
// logAssertFailed at any level.

#include <cstdint>
#include <map>
#include <vector>

#include <netinet/in.h>

#include <boost/any.hpp>

#include "BrantelExport.h"
#include "message/buffer_t.h"

/// OIDs to be read, in the order of the request.
using ObjectIdContainer = std::vector<std::uint32_t>;

/// Type code of a value: what a boost::any must hold, and how its bytes look in an element. Integers travel in their
/// own width. Code 11 is unused and codes above 13 do not exist: both are refused.
enum OidValueType : std::int32_t {
    OID_TYPE_UINT64 = 0,         ///< unsigned long long
    OID_TYPE_UINT32 = 1,         ///< unsigned int
    OID_TYPE_UINT16 = 2,         ///< unsigned short
    OID_TYPE_UINT8 = 3,          ///< unsigned char
    OID_TYPE_INT64 = 4,          ///< long long
    OID_TYPE_INT32 = 5,          ///< int
    OID_TYPE_INT16 = 6,          ///< short
    OID_TYPE_INT8 = 7,           ///< signed char
    OID_TYPE_BOOL = 8,           ///< bool
    OID_TYPE_STRING = 9,         ///< std::string
    OID_TYPE_IPV4_ADDRESS = 10,  ///< in_addr; its s_addr as a 32-bit integer, without conversion of its byte order
    OID_TYPE_BUFFER = 12,        ///< buffer_t, nested
    OID_TYPE_MAC_ADDRESS = 13    ///< unsigned long long; its low 48 bits as a nested buffer of 6 bytes, highest first
};

/// One value to be written; `value` holds exactly the type that `type` names: makeOidValue (OidValue.h) sees to it.
struct BRANTEL_EXPORT OidTypeValue {
    std::uint32_t oid = 0;
    OidValueType type = OID_TYPE_UINT64;
    boost::any value;
};

/// Values to be written, in the order of the request.
using OidTypeValueContainer = std::vector<OidTypeValue>;

/// One value from a card; `value` holds exactly the type that `type` names.
struct BRANTEL_EXPORT TypeValueRecord {
    OidValueType type = OID_TYPE_UINT64;
    boost::any value;
};

/// Values from a card by OID.
using OidTypeValueMap = std::map<std::uint32_t, TypeValueRecord>;

/// True if `value` holds exactly an in_addr.
BRANTEL_EXPORT bool isIPv4Address(const boost::any& value);

/// True if `value` holds exactly an unsigned long long.
BRANTEL_EXPORT bool isUInt64(const boost::any& value);

/// Appends the request to read `oids` to `tlvs`. An empty buffer takes 255 OIDs; past that, what buffer_t throws goes
/// to the caller and `tlvs` keeps what fitted. Logs nothing.
BRANTEL_EXPORT void convertObjectIdContainerToTlvs(const ObjectIdContainer& oids, buffer_t& tlvs);

/// Appends the request to write `values` to `tlvs`. Returns false, after an error line and a report, for
///     an unknown type code: `tlvs` keeps the count and the elements before it;
///     a value that does not hold the type that its code names, or does not fit: `tlvs` is emptied.
/// Throws nothing.
BRANTEL_EXPORT bool convertOidTypeValueContainerToTlvs(const OidTypeValueContainer& values, buffer_t& tlvs);

/// Reads the OID of the first element of a stream of either kind into `oid`. `slot` is used in error lines only.
/// Returns false, after an error line and with `oid` unchanged, when the stream is empty or its count is 0. Throws what
/// buffer_t throws when the stream ends within the count or the first element; `oid` is unchanged then, too.
BRANTEL_EXPORT bool extractFirstOidFromTlvs(std::uint32_t slot, const buffer_t& tlvs, std::uint32_t& oid);

/// Adds the values of a stream to `values`, which should be empty: the OIDs of the answer before are refused as
/// duplicates (icsc::decodeAnswer in IcscReading.h empties it). With `requestedOids`, the stream must carry as many
/// values as that holds, and no OID that it does not hold; null accepts any. `slot` is used in error lines only. A MAC
/// address that is not 6 bytes long is reported and taken: bytes past the sixth are dropped, missing ones are 0xEE.
/// Returns false, after an error line, for
///     an empty stream or a count other than requested: `values` is unchanged;
///     an OID that was not requested, an unknown type code, an OID that the stream carries twice or `values` had
///     before, a stream that ends too early: `values` is emptied, earlier records included.
/// Throws nothing.
BRANTEL_EXPORT bool convertTlvsToOidTypeValueMap(std::uint32_t slot, const buffer_t& tlvs, OidTypeValueMap& values,
                                                 const ObjectIdContainer* requestedOids);

#endif
