#ifndef ICSC_H
#define ICSC_H

// The status-and-control service (ICSC) of the interface cards, as clients, cards and tools see it: slots, service
// names and result codes. Header only.
//
//     icsc::serviceName(3, icsc::Interface::SYNC)     "ICSCClient3.ReadWriteSync"
//     icsc::resultName(icsc::RESULT_WRONG_OID)        "RESULT WRONG OID"
//     icsc::resultName(0x02000000)                    "TIMEOUT"
//
// Result code 0 is success. A most significant byte other than 0 is a general result, of the framework or the service;
// otherwise the low 24 bits are the card's result.

#include <cstdint>
#include <iterator>
#include <string>

namespace icsc {

/// Slots are 0 to N_SLOTS - 1.
constexpr std::uint32_t N_SLOTS = 10;

/// Each card serves both.
enum class Interface { SYNC, ASYNC };

inline std::string serviceName(std::uint32_t slot, Interface interface)
{
    const char* const suffix = (interface == Interface::SYNC) ? ".ReadWriteSync" : ".ReadWriteAsync";
    return "ICSCClient" + std::to_string(slot) + suffix;
}

/// The card's results; 16 and 17 are reserved.
enum CardResult : std::int32_t {
    RESULT_OK = 0,
    RESULT_PROTOCOL_VERSION_MISMATCH = 1,
    RESULT_DUPLICATE_MSG = 2,
    RESULT_LOST_MSG = 3,
    RESULT_INVALID_ACTION = 4,
    RESULT_GENERAL_ERROR = 5,
    RESULT_WRONG_TYPE = 6,
    RESULT_WRONG_OID = 7,
    RESULT_WRONG_LEN = 8,
    RESULT_WRONG_VALUE = 9,
    RESULT_READ_ONLY = 10,
    RESULT_TOO_LONG = 11,
    RESULT_CANNOT_EXEC = 12,
    RESULT_WRONG_MAGIC = 13,
    RESULT_NOT_RECEIVED = 14,
    RESULT_NOT_SEND = 15
};

/// Indexed by generalResult().
inline constexpr const char* GENERAL_RESULT_NAMES[] = {
    "SUCCESS",                         // 0
    "GENERAL_ERROR",                   // 1
    "TIMEOUT",                         // 2
    "INVALID_RESPONSE",                // 3
    "INTERNAL_ERROR",                  // 4
    "SENDING_MSG_TO_IFC_CARD_FAILED",  // 5
    "INVALID_NR_OF_TLVS",              // 6
    "MESSAGE_TOO_LARGE",               // 7
    "MESSAGE_TOO_SHORT",               // 8
};

/// Indexed by cardResult().
inline constexpr const char* CARD_RESULT_NAMES[] = {
    "RESULT OK",                         // 0
    "RESULT PROTOCOL VERSION_MISMATCH",  // 1
    "RESULT DUPLICATE MSG",              // 2
    "RESULT LOST MSG",                   // 3
    "RESULT INVALID ACTION",             // 4
    "RESULT GENERAL ERROR",              // 5
    "RESULT WRONG TYPE",                 // 6
    "RESULT WRONG OID",                  // 7
    "RESULT WRONG LEN",                  // 8
    "RESULT WRONG VALUE",                // 9
    "RESULT READ ONLY",                  // 10
    "RESULT TOO LONG",                   // 11
    "RESULT CANNOT EXEC",                // 12
    "RESULT WRONG MAGIC",                // 13
    "RESULT NOT RECEIVED",               // 14
    "RESULT NOT SEND",                   // 15
    nullptr,                             // 16  reserved, without a name
    nullptr,                             // 17  likewise
};

constexpr std::uint32_t generalResult(std::int32_t code)
{
    return static_cast<std::uint32_t>(code) >> 24U;
}

/// Meaningful if generalResult() is 0.
constexpr std::uint32_t cardResult(std::int32_t code)
{
    return static_cast<std::uint32_t>(code) & 0x00FFFFFFU;
}

/// "unknown" for a code outside the tables; null for the reserved ones.
constexpr const char* resultName(std::int32_t code)
{
    const std::uint32_t general = generalResult(code);
    const std::uint32_t card = cardResult(code);
    if (general != 0) {
        return (general < std::size(GENERAL_RESULT_NAMES)) ? GENERAL_RESULT_NAMES[general] : "unknown";
    }
    return (card < std::size(CARD_RESULT_NAMES)) ? CARD_RESULT_NAMES[card] : "unknown";
}

}  // namespace icsc

#endif
