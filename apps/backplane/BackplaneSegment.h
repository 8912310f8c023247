#ifndef APPS_BACKPLANE_BACKPLANE_SEGMENT_H
#define APPS_BACKPLANE_BACKPLANE_SEGMENT_H

// The shared-memory segment with the node's backplane type: its content, and the part of the other process of the node,
// which creates, fills and removes it.

#include <cstdint>
#include <optional>
#include <string>

namespace brantel {

/// The content of the segment, if there is one.
struct BackplaneSegment {
    enum class State {
        NONE,           ///< there is no segment
        UNUSABLE,       ///< there is one that cannot be attached
        NOT_YET_VALID,  ///< its valid word is 0
        UNKNOWN_TYPE,   ///< it names a type that does not exist
        VALID
    };

    State state = State::NONE;
    std::string reason;           ///< why it is unusable
    std::uint32_t words[3] = {};  ///< valid, type, and one that is not used; of a segment that was attached
    std::uint64_t nAttached = 0;  ///< how many other processes have attached it
    std::optional<std::uint32_t> type() const;
};

BackplaneSegment readBackplaneSegment();

/// "there is no segment"
std::string segmentText(const BackplaneSegment& segment);

/// Publishes a type: creates the segment if there is none, and marks it as valid after the type is filled in.
/// Throws CommandError.
void publishBackplaneType(std::uint32_t type);

/// Removes the segment; false if there is none. Throws CommandError.
bool removeBackplaneSegment();

}  // namespace brantel

#endif
