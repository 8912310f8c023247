#include "SegmentCalls.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <utility>

#include <sys/ipc.h>
#include <sys/types.h>

namespace {

std::vector<SegmentState> plannedStates;
std::size_t nGets = 0;
SegmentState currentState;
std::vector<std::string> calls;

void* failedAttach()
{
    return reinterpret_cast<void*>(std::intptr_t{-1});
}

std::string pointerText(const void* pointer)
{
    if (pointer == nullptr) {
        return "NULL";
    }
    if (pointer == failedAttach()) {
        return "-1";
    }
    return (pointer == currentState.words) ? "segment" : "something else";
}

std::string octal(int flags)
{
    char text[16];
    static_cast<void>(std::snprintf(text, sizeof text, "0%o", static_cast<unsigned int>(flags)));
    return text;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int shmget(key_t key, std::size_t size, int flags) noexcept
{
    calls.push_back("shmget(" + std::to_string(key) + ", " + std::to_string(size) + ", " + octal(flags) + ")");
    currentState = plannedStates.at(nGets);
    nGets += (nGets + 1 < plannedStates.size()) ? 1 : 0;
    if (!currentState.exists) {
        errno = ENOENT;
        return -1;
    }
    return currentState.id;
}

__attribute__((visibility("default"))) void* shmat(int id, const void* address, int flags) noexcept
{
    calls.push_back("shmat(" + std::to_string(id) + ", " + pointerText(address) + ", " + std::to_string(flags) + ")");
    if (!currentState.attaches) {
        errno = EACCES;
        return failedAttach();
    }
    return currentState.words;
}

__attribute__((visibility("default"))) int shmdt(const void* address) noexcept
{
    calls.push_back("shmdt(" + pointerText(address) + ")");
    return 0;
}

}  // extern "C"

SegmentState noSegment()
{
    SegmentState state;
    state.exists = false;
    return state;
}

SegmentState unattachableSegment()
{
    SegmentState state;
    state.attaches = false;
    return state;
}

SegmentState segmentOfId(int id, std::uint32_t backplaneType)
{
    SegmentState state = segmentOf(1, backplaneType);
    state.id = id;
    return state;
}

SegmentState segmentOf(std::uint32_t valid, std::uint32_t backplaneType)
{
    SegmentState state;
    state.words[0] = valid;
    state.words[1] = backplaneType;
    return state;
}

void setSegment(const SegmentState& state)
{
    setSegments({state});
}

void setSegments(const std::vector<SegmentState>& states)
{
    plannedStates = states;
    nGets = 0;
    calls.clear();
}

std::vector<std::string> takeSegmentCalls()
{
    return std::exchange(calls, {});
}

std::vector<std::string> segmentReads(std::size_t count)
{
    std::vector<std::string> reads;
    for (std::size_t i = 0; i < count; ++i) {
        reads.insert(reads.end(), {"shmget(5678, 12, 0666)", "shmat(7, NULL, 0)", "shmdt(segment)"});
    }
    return reads;
}
