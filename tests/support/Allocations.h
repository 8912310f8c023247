#ifndef TESTS_SUPPORT_ALLOCATIONS_H
#define TESTS_SUPPORT_ALLOCATIONS_H

// Counts the allocations of the calling thread, and lets one of them fail. A program that includes this has its own
// operator new, in the shared libraries that it loads too.

#include <cstddef>

/// Allocations that this thread made so far.
std::size_t allocationCount();

/// While one lives, the `number`th allocation of this thread (the next one is number 1) throws std::bad_alloc; those
/// before and after it succeed.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// True once the allocation was asked for, and failed.
    bool hasFailed() const;
};

#endif
