#ifndef TESTS_LIBRARY_PORTS_SEGMENT_CALLS_H
#define TESTS_LIBRARY_PORTS_SEGMENT_CALLS_H

// Replaces shmget, shmat and shmdt in the whole test program: a segment whose content the test chooses for each get,
// and the list of the calls made.

#include <cstdint>
#include <string>
#include <vector>

/// What one get of the segment, and the attach and the detach that follow it, meet.
struct SegmentState {
    bool exists = true;
    bool attaches = true;
    int id = 7;
    std::uint32_t words[3] = {1, 0, 0};
};

SegmentState noSegment();
SegmentState unattachableSegment();
SegmentState segmentOf(std::uint32_t valid, std::uint32_t backplaneType);
SegmentState segmentOfId(int id, std::uint32_t backplaneType);

/// From now on every get meets `state`. Forgets the calls that were made.
void setSegment(const SegmentState& state);

/// From now on the first get meets the first state, the second the second, and all further ones the last. Forgets the
/// calls that were made.
void setSegments(const std::vector<SegmentState>& states);

/// The calls since the last call: "shmget(5678, 12, 0666)", "shmat(7, NULL, 0)", "shmdt(segment)". A detach of what a
/// failed attach returned is "shmdt(-1)".
std::vector<std::string> takeSegmentCalls();

/// The calls of `count` reads of a segment that attaches.
std::vector<std::string> segmentReads(std::size_t count);

#endif
