#include "cards/OidTable.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "common/CommandLine.h"
#include "common/NearestWord.h"
#include "common/Numbers.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

constexpr bool READ_ONLY = false;
constexpr bool WRITABLE = true;

void addNumbered(std::vector<OidEntry>& table, std::uint32_t first, std::uint32_t count, const std::string& prefix,
                 const std::string& suffix, std::optional<OidValueType> type, const std::string& meaning)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        table.push_back({first + i, prefix + std::to_string(i + 1) + suffix, type, READ_ONLY, meaning});
    }
}

std::vector<OidEntry> makeTable()
{
    using namespace oids;
    std::vector<OidEntry> table = {
        {CARD_SLOT, "card.slot", OID_TYPE_UINT8, READ_ONLY, "the slot that the card is in"},
        {CARD_NAME, "card.name", OID_TYPE_STRING, WRITABLE, "up to 32 characters"},
        {CARD_SOURCE, "card.source", OID_TYPE_STRING, READ_ONLY, "where the card's values come from"},
        {CARD_UPTIME, "card.uptime", OID_TYPE_UINT32, READ_ONLY, "seconds since the card started"},
        {CARD_READS, "card.reads", OID_TYPE_UINT64, READ_ONLY, "read requests received"},
        {CARD_WRITES, "card.writes", OID_TYPE_UINT64, READ_ONLY, "write requests received"},
        {CARD_ADDRESS, "card.address", OID_TYPE_IPV4_ADDRESS, WRITABLE, "management address"},
        {CARD_MAC, "card.mac", OID_TYPE_MAC_ADDRESS, READ_ONLY, "a locally administered address"},
        {CARD_LOCATION, "card.location", OID_TYPE_BUFFER, WRITABLE, "up to 64 bytes of any content"},
        {CARD_ENABLED, "card.enabled", OID_TYPE_BOOL, WRITABLE, "administrative state"},
        {CARD_LED, "card.led", OID_TYPE_UINT8, WRITABLE, "0 off, 1 green, 2 amber, 3 red"},
        {CARD_VLAN, "card.vlan", OID_TYPE_UINT16, WRITABLE, "management VLAN, 1 to 4094"},
        {CARD_ALTITUDE, "card.altitude", OID_TYPE_INT16, WRITABLE, "metres, -500 to 9000"},
        {CARD_TEMPERATURE_OFFSET, "card.temperature-offset", OID_TYPE_INT8, WRITABLE, "degrees, -20 to 20"},
        {CARD_ALARM_THRESHOLD, "card.alarm-threshold", OID_TYPE_INT32, WRITABLE, "kept for the operator"},
        {CARD_CLOCK_OFFSET, "card.clock-offset", OID_TYPE_INT64, WRITABLE, "nanoseconds, kept for the operator"},
        {CARD_SELF_TEST, "card.self-test", OID_TYPE_BOOL, WRITABLE, "write true to test; not while disabled"},
        {CARD_FAULT, "card.fault", OID_TYPE_STRING, WRITABLE, "the faults in force, none if empty"},

        {HOST_NAME, "host.name", OID_TYPE_STRING, READ_ONLY, "the host's own name"},
        {HOST_UPTIME, "host.uptime", OID_TYPE_UINT32, READ_ONLY, "seconds since the host started"},
        {CPU_COUNT, "cpu.count", OID_TYPE_UINT16, READ_ONLY, "processors that are online"},
        {CPU_BUSY, "cpu.busy", OID_TYPE_UINT8, READ_ONLY, "percent, over the last second or so"},
        {CPU_LOAD, "cpu.load", OID_TYPE_UINT32, READ_ONLY, "load average of one minute, in thousandths"},
        {CPU_USER_TIME, "cpu.user", OID_TYPE_UINT64, READ_ONLY, "milliseconds since start, nice included"},
        {CPU_SYSTEM_TIME, "cpu.system", OID_TYPE_UINT64, READ_ONLY, "milliseconds since start"},
        {CPU_IDLE_TIME, "cpu.idle", OID_TYPE_UINT64, READ_ONLY, "milliseconds since start"},
        {CPU_IO_WAIT_TIME, "cpu.iowait", OID_TYPE_UINT64, READ_ONLY, "milliseconds since start"},
        {MEMORY_TOTAL, "mem.total", OID_TYPE_UINT32, READ_ONLY, "KiB"},
        {MEMORY_AVAILABLE, "mem.available", OID_TYPE_UINT32, READ_ONLY, "KiB"},
        {MEMORY_FREE, "mem.free", OID_TYPE_UINT32, READ_ONLY, "KiB"},
        {MEMORY_CACHED, "mem.cached", OID_TYPE_UINT32, READ_ONLY, "KiB"},
        {SWAP_TOTAL, "swap.total", OID_TYPE_UINT32, READ_ONLY, "KiB"},
        {SWAP_FREE, "swap.free", OID_TYPE_UINT32, READ_ONLY, "KiB"},
        {NETWORK_RX_BYTES, "net.rx-bytes", OID_TYPE_UINT64, READ_ONLY, "all interfaces but the loopback"},
        {NETWORK_TX_BYTES, "net.tx-bytes", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {NETWORK_RX_PACKETS, "net.rx-packets", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {NETWORK_TX_PACKETS, "net.tx-packets", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {NETWORK_RX_ERRORS, "net.rx-errors", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {NETWORK_TX_ERRORS, "net.tx-errors", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {NETWORK_RX_DROPPED, "net.rx-dropped", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {NETWORK_TX_DROPPED, "net.tx-dropped", OID_TYPE_UINT64, READ_ONLY, "likewise"},
        {DISK_READ_KIB, "disk.read", OID_TYPE_UINT64, READ_ONLY, "KiB, all disks"},
        {DISK_WRITTEN_KIB, "disk.written", OID_TYPE_UINT64, READ_ONLY, "KiB, all disks"},
        {DISK_READS, "disk.reads", OID_TYPE_UINT64, READ_ONLY, "completed, all disks"},
        {DISK_WRITES, "disk.writes", OID_TYPE_UINT64, READ_ONLY, "completed, all disks"},
    };
    addNumbered(table, TEMPERATURE, MAX_TEMPERATURES, "temp.", "", OID_TYPE_INT32, "thousandths of a degree Celsius");
    addNumbered(table, TEMPERATURE_LABEL, MAX_TEMPERATURES, "temp.", ".label", OID_TYPE_STRING, "what is measured");
    addNumbered(table, CSV_COLUMN, MAX_SIGNALS, "csv.", "", std::nullopt, "the recording's value now");
    addNumbered(table, CSV_LABEL, MAX_SIGNALS, "csv.", ".label", OID_TYPE_STRING, "the column's name");
    table.push_back({CSV_ROW, "csv.row", OID_TYPE_UINT32, WRITABLE, "the row that is served, with --step; from 1"});
    addNumbered(table, WAVE_SIGNAL, MAX_SIGNALS, "wave.", "", std::nullopt, "the signal's value now");
    addNumbered(table, WAVE_LABEL, MAX_SIGNALS, "wave.", ".label", OID_TYPE_STRING, "the signal's name");
    return table;
}

}  // namespace

const std::vector<OidEntry>& oidTable()
{
    static const std::vector<OidEntry> table = makeTable();
    return table;
}

const OidEntry* findOid(std::uint32_t oid)
{
    const std::vector<OidEntry>& table = oidTable();
    const auto entry = std::lower_bound(table.begin(), table.end(), oid,
                                        [](const OidEntry& each, std::uint32_t wanted) { return each.oid < wanted; });
    return ((entry == table.end()) || (entry->oid != oid)) ? nullptr : &*entry;
}

const OidEntry* findOid(const std::string& name)
{
    const std::vector<OidEntry>& table = oidTable();
    const auto entry =
        std::find_if(table.begin(), table.end(), [&name](const OidEntry& each) { return each.name == name; });
    return (entry == table.end()) ? nullptr : &*entry;
}

std::optional<std::uint32_t> parseOid(const std::string& text)
{
    if (const std::optional<std::uint32_t> number = parseInteger<std::uint32_t>(text)) {
        return number;
    }
    const OidEntry* const pEntry = findOid(text);
    return (pEntry == nullptr) ? std::nullopt : std::optional(pEntry->oid);
}

std::uint32_t requireOid(const std::string& text)
{
    const std::optional<std::uint32_t> oid = parseOid(text);
    if (!oid) {
        Words names;
        for (const OidEntry& entry : oidTable()) {
            names.push_back(entry.name);
        }
        const std::string meant = suggestion(text, names);
        throw CommandError("unknown object " + inQuotes(text) +
                           (meant.empty() ? "; expected a number or a name of 'brantel card objects'" : meant));
    }
    return *oid;
}

ObjectIdContainer requireOids(const std::vector<std::string>& texts)
{
    ObjectIdContainer oids;
    for (const std::string& text : texts) {
        const std::uint32_t oid = requireOid(text);
        if (std::find(oids.begin(), oids.end(), oid) == oids.end()) {
            oids.push_back(oid);
        }
    }
    return oids;
}

std::string objectName(std::uint32_t oid)
{
    const OidEntry* const pEntry = findOid(oid);
    return (pEntry == nullptr) ? oidText(oid) : pEntry->name;
}

std::string oidText(std::uint32_t oid)
{
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << oid;
    return text.str();
}

}  // namespace brantel
