#ifndef PHY_OTN_COMMON_H
#define PHY_OTN_COMMON_H

// Which port of the NPU serves a slot's backplane link: the five backplanes as tables, and the lookup in the one that
// the node has.
//
// The node's backplane type is in a System V shared-memory segment that another process of the node creates, fills
// and removes. It is read afresh before each step of a lookup and nothing is kept, so a type published during a lookup
// takes effect at the next step. The segment is attached for the moment of one read only. Any number of threads may
// look up at once.

#include <cstddef>
#include <cstdint>
#include <optional>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <syslog.h>

namespace phy_otnCommon {

/// What the segment holds, as 32-bit words in the byte order of the node.
struct BackplaneInfo {
    std::uint32_t valid;          ///< 0 until the writer has filled the segment
    std::uint32_t backplaneType;  ///< 0 to 4
    std::uint32_t reserved;
};

constexpr key_t BACKPLANE_INFO_KEY = 5678;
constexpr std::size_t BACKPLANE_INFO_SIZE = 12;
constexpr int BACKPLANE_INFO_ACCESS = 0666;

static_assert(sizeof(BackplaneInfo) == BACKPLANE_INFO_SIZE, "the segment is three words without padding");

constexpr std::uint32_t N_BACKPLANE_TYPES = 5;
constexpr std::uint32_t MAX_SLOTS = 15;
constexpr std::uint32_t MAX_LINKS = 5;

/// In a table: a link without an NPU port.
constexpr std::uint32_t NO_PORT = 24;

struct BackplaneSlot {
    std::uint32_t nLinks;
    std::uint32_t npuPorts[MAX_LINKS];  ///< by link; the first nLinks count
};

struct Backplane {
    std::uint32_t nSlots;
    BackplaneSlot slots[MAX_SLOTS];  ///< the first nSlots count
};

/// The backplanes by type. A row is a slot: its number of links, and the NPU port of link 0, 1, ...
inline constexpr Backplane BACKPLANES[N_BACKPLANE_TYPES] = {
    // type 0
    {10,
     {
         {4, {8, 9, 10, 11}},      // slot 0
         {4, {12, 13, 14, 15}},    // slot 1
         {4, {16, 17, 18, 19}},    // slot 2
         {4, {20, 21, 22, 23}},    // slot 3
         {1, {28}},                // slot 4
         {1, {27}},                // slot 5
         {1, {26}},                // slot 6
         {1, {25}},                // slot 7
         {4, {4, 5, 6, 7}},        // slot 8
         {4, {1, 2, 3, NO_PORT}},  // slot 9
     }},
    // type 1
    {4,
     {
         {4, {8, 9, 10, 11}},    // slot 0
         {4, {12, 13, 14, 15}},  // slot 1
         {4, {16, 17, 18, 19}},  // slot 2
         {4, {20, 21, 22, 23}},  // slot 3
     }},
    // type 2
    {6,
     {
         {4, {8, 9, 10, 11}},    // slot 0
         {4, {12, 13, 14, 15}},  // slot 1
         {4, {16, 17, 18, 19}},  // slot 2
         {4, {20, 21, 22, 23}},  // slot 3
         {1, {28}},              // slot 4
         {1, {27}},              // slot 5
     }},
    // type 3
    {10,
     {
         {4, {8, 9, 10, 11}},        // slot 0
         {4, {12, 13, 14, 15}},      // slot 1
         {5, {16, 17, 18, 19, 25}},  // slot 2
         {0, {}},                    // slot 3
         {1, {28}},                  // slot 4
         {1, {27}},                  // slot 5
         {1, {26}},                  // slot 6
         {4, {20, 21, 22, 23}},      // slot 7
         {4, {4, 5, 6, 7}},          // slot 8
         {4, {1, 2, 3, NO_PORT}},    // slot 9
     }},
    // type 4: 0 is a placeholder and counts as a port
    {15,
     {
         {4, {0, 0, 0, 0}},  // slot 0
         {4, {0, 0, 0, 0}},  // slot 1
         {4, {0, 0, 0, 0}},  // slot 2
         {4, {0, 0, 0, 0}},  // slot 3
         {4, {0, 0, 0, 0}},  // slot 4
         {4, {0, 0, 0, 0}},  // slot 5
         {4, {0, 0, 0, 0}},  // slot 6
         {4, {0, 0, 0, 0}},  // slot 7
         {4, {0, 0, 0, 0}},  // slot 8
         {4, {0, 0, 0, 0}},  // slot 9
         {4, {0, 0, 0, 0}},  // slot 10
         {4, {0, 0, 0, 0}},  // slot 11
         {4, {0, 0, 0, 0}},  // slot 12
         {4, {0, 0, 0, 0}},  // slot 13
         {4, {0, 0, 0, 0}},  // slot 14
     }},
};

/// The type that the words of a segment name; no value while they are not valid or name none that is known.
inline std::optional<std::uint32_t> backplaneTypeOf(const BackplaneInfo& info)
{
    // The writer fills in the type before it sets the valid word.
    if (__atomic_load_n(&info.valid, __ATOMIC_ACQUIRE) == 0) {
        return std::nullopt;
    }
    const std::uint32_t type = __atomic_load_n(&info.backplaneType, __ATOMIC_RELAXED);
    if (type >= N_BACKPLANE_TYPES) {
        return std::nullopt;
    }
    return type;
}

/// Reads the node's backplane type; no value when there is no segment, it cannot be attached, or it names no type.
inline std::optional<std::uint32_t> readBackplaneType()
{
    const int id = shmget(BACKPLANE_INFO_KEY, BACKPLANE_INFO_SIZE, BACKPLANE_INFO_ACCESS);
    if (id < 0) {
        return std::nullopt;
    }
    std::optional<std::uint32_t> type;
    void* const pSegment = shmat(id, nullptr, 0);
    if (pSegment != reinterpret_cast<void*>(std::intptr_t{-1})) {
        type = backplaneTypeOf(*static_cast<const BackplaneInfo*>(pSegment));
    }
    shmdt(pSegment);  // also what a failed attach returned
    return type;
}

/// The backplane of the type that the segment names now; that of type 0 while it names none.
inline const Backplane& currentBackplane()
{
    return BACKPLANES[readBackplaneType().value_or(0)];
}

/// Writes two lines, whatever the trace level, when the segment names no type.
inline void reportUnknownBackplaneType()
{
    // Fixed: readers of these messages know this line number.
    constexpr int REPORTED_LINE = 730;
    if (!readBackplaneType()) {
        syslog(LOG_ERR, "SWERR ERROR DETECTED: %s %d ", __FILE__, REPORTED_LINE);
        syslog(LOG_ERR, "phy_getNpuPortForSlotBpPort called while backplaneType unknown, this should not happen");
    }
}

}  // namespace phy_otnCommon

/// The NPU port of a slot's backplane link, both counted from 0; no value when the node's backplane has no such slot or
/// link, or the link has no port. Reports a backplane type that is unknown, once, and then uses type 0.
inline std::optional<std::uint32_t> phy_getNpuPortForSlotBpPort(std::uint32_t slot, std::uint32_t bpPort)
{
    using namespace phy_otnCommon;

    reportUnknownBackplaneType();
    if (slot >= currentBackplane().nSlots) {
        return std::nullopt;
    }
    // The type may have changed since the check above: a slot that the new one does not have has no links.
    if (bpPort >= currentBackplane().slots[slot].nLinks) {
        return std::nullopt;
    }
    const BackplaneSlot& links = currentBackplane().slots[slot];
    if ((bpPort >= links.nLinks) || (links.npuPorts[bpPort] == NO_PORT)) {
        return std::nullopt;
    }
    return links.npuPorts[bpPort];
}

#endif
