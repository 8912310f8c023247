#ifndef TESTS_SUPPORT_ALLOCATIONS_H
#define TESTS_SUPPORT_ALLOCATIONS_H

// Counts the allocations of the calling thread, and lets one of them fail. A program that is linked with
// Allocations.cpp has its own operator new, in the shared libraries that it loads too.

#include <cstddef>

/// What this thread has allocated so far.
struct AllocationTotals {
    std::size_t count = 0;
    std::size_t bytes = 0;
    std::size_t liveBytes = 0;  ///< not freed yet
    std::size_t peakBytes = 0;  ///< the most that liveBytes has been; a test may set it back to that
};

AllocationTotals& allocationTotals();

/// While one lives, the `number`th allocation of this thread (the next one is number 1) throws std::bad_alloc; those
/// before and after it succeed.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// True once that allocation has failed.
    bool hasFailed() const;
};

#endif
