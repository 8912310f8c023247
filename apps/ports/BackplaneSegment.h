#ifndef APPS_PORTS_BACKPLANE_SEGMENT_H
#define APPS_PORTS_BACKPLANE_SEGMENT_H

// The shared-memory segment with the node's backplane type: what is in it, and the other process of the node, which
// creates, fills and removes it.

#include <cstdint>
#include <optional>
#include <string>

/// What the segment says, if there is one.
struct BackplaneSegment {
    enum class State {
        NONE,           ///< there is no segment
        UNUSABLE,       ///< there is one that can not be attached
        NOT_YET_VALID,  ///< its valid word is 0
        UNKNOWN_TYPE,   ///< it names a type that is none
        VALID
    };

    State state = State::NONE;
    std::string reason;           ///< why it is unusable
    std::uint32_t words[3] = {};  ///< valid, type, and one that nobody reads; of a segment that was attached
    std::uint64_t nAttached = 0;  ///< how often it is attached otherwise
    std::optional<std::uint32_t> type() const;
};

BackplaneSegment readBackplaneSegment();

/// The state in words: "there is no segment".
std::string describe(const BackplaneSegment& segment);

/// Publishes a type: creates the segment unless it is there, and fills in the type before it says that it is valid.
/// Throws CommandError.
void publishBackplaneType(std::uint32_t type);

/// Removes the segment; false if there is none. Throws CommandError.
bool removeBackplaneSegment();

#endif
