#ifndef APPS_CARDS_OID_TABLE_H
#define APPS_CARDS_OID_TABLE_H

// The objects that a card may have, by OID and by name: one table for the card that serves them and for the commands
// that read and write them (docs/cards.md shows it). Which of them a card has depends on its source and its host.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "IfcCardStatusAndControl.h"

namespace brantel {

namespace oids {

// Every card
constexpr std::uint32_t CARD_SLOT = 0x00010001;
constexpr std::uint32_t CARD_NAME = 0x00010002;
constexpr std::uint32_t CARD_SOURCE = 0x00010003;
constexpr std::uint32_t CARD_UPTIME = 0x00010004;
constexpr std::uint32_t CARD_READS = 0x00010005;
constexpr std::uint32_t CARD_WRITES = 0x00010006;
constexpr std::uint32_t CARD_ADDRESS = 0x00010007;
constexpr std::uint32_t CARD_MAC = 0x00010008;
constexpr std::uint32_t CARD_LOCATION = 0x00010009;
constexpr std::uint32_t CARD_ENABLED = 0x0001000A;
constexpr std::uint32_t CARD_LED = 0x0001000B;
constexpr std::uint32_t CARD_VLAN = 0x0001000C;
constexpr std::uint32_t CARD_ALTITUDE = 0x0001000D;
constexpr std::uint32_t CARD_TEMPERATURE_OFFSET = 0x0001000E;
constexpr std::uint32_t CARD_ALARM_THRESHOLD = 0x0001000F;
constexpr std::uint32_t CARD_CLOCK_OFFSET = 0x00010010;
constexpr std::uint32_t CARD_SELF_TEST = 0x00010011;
constexpr std::uint32_t CARD_FAULT = 0x00010012;

// Source "host"
constexpr std::uint32_t HOST_NAME = 0x00020001;
constexpr std::uint32_t HOST_UPTIME = 0x00020002;
constexpr std::uint32_t CPU_COUNT = 0x00020101;
constexpr std::uint32_t CPU_BUSY = 0x00020102;
constexpr std::uint32_t CPU_LOAD = 0x00020103;
constexpr std::uint32_t CPU_USER_TIME = 0x00020104;
constexpr std::uint32_t CPU_SYSTEM_TIME = 0x00020105;
constexpr std::uint32_t CPU_IDLE_TIME = 0x00020106;
constexpr std::uint32_t CPU_IO_WAIT_TIME = 0x00020107;
constexpr std::uint32_t MEMORY_TOTAL = 0x00020201;
constexpr std::uint32_t MEMORY_AVAILABLE = 0x00020202;
constexpr std::uint32_t MEMORY_FREE = 0x00020203;
constexpr std::uint32_t MEMORY_CACHED = 0x00020204;
constexpr std::uint32_t SWAP_TOTAL = 0x00020205;
constexpr std::uint32_t SWAP_FREE = 0x00020206;
constexpr std::uint32_t NETWORK_RX_BYTES = 0x00020301;
constexpr std::uint32_t NETWORK_TX_BYTES = 0x00020302;
constexpr std::uint32_t NETWORK_RX_PACKETS = 0x00020303;
constexpr std::uint32_t NETWORK_TX_PACKETS = 0x00020304;
constexpr std::uint32_t NETWORK_RX_ERRORS = 0x00020305;
constexpr std::uint32_t NETWORK_TX_ERRORS = 0x00020306;
constexpr std::uint32_t NETWORK_RX_DROPPED = 0x00020307;
constexpr std::uint32_t NETWORK_TX_DROPPED = 0x00020308;
constexpr std::uint32_t DISK_READ_KIB = 0x00020401;
constexpr std::uint32_t DISK_WRITTEN_KIB = 0x00020402;
constexpr std::uint32_t DISK_READS = 0x00020403;
constexpr std::uint32_t DISK_WRITES = 0x00020404;

// Source "csv", stepped
constexpr std::uint32_t CSV_ROW = 0x00030201;

// Numbered objects: the first of each kind; the others follow it.
constexpr std::uint32_t TEMPERATURE = 0x00020501;
constexpr std::uint32_t TEMPERATURE_LABEL = 0x00020601;
constexpr std::uint32_t CSV_COLUMN = 0x00030001;
constexpr std::uint32_t CSV_LABEL = 0x00030101;
constexpr std::uint32_t WAVE_SIGNAL = 0x00040001;
constexpr std::uint32_t WAVE_LABEL = 0x00040101;

constexpr std::uint32_t MAX_TEMPERATURES = 16;
constexpr std::uint32_t MAX_SIGNALS = 64;  ///< columns of a recording, signals of a description

}  // namespace oids

struct OidEntry {
    std::uint32_t oid;
    std::string name;
    std::optional<OidValueType> type;  ///< none: depends on the card's source
    bool isWritable;
    std::string meaning;
};

/// In the order of the OIDs.
const std::vector<OidEntry>& oidTable();

/// Null if the table does not have it.
const OidEntry* findOid(std::uint32_t oid);
const OidEntry* findOid(const std::string& name);

/// The OID that is written as a number, decimal or hexadecimal with 0x, or as the name of an object; nothing for any
/// other text.
std::optional<std::uint32_t> parseOid(const std::string& text);

/// The same from the command line. Throws CommandError.
std::uint32_t requireOid(const std::string& text);

/// Each OID once, in the order of `texts`. Throws CommandError.
ObjectIdContainer requireOids(const std::vector<std::string>& texts);

/// The name in the table; oidText() for an object that it does not have.
std::string objectName(std::uint32_t oid);

/// Eight digits, with 0x.
std::string oidText(std::uint32_t oid);

}  // namespace brantel

#endif
