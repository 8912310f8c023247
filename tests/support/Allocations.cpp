#include "support/Allocations.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace {

thread_local AllocationTotals totals;
thread_local std::size_t failingAllocation = 0;  // counted like totals.count; 0 is none

void* allocate(std::size_t size)
{
    totals.bytes += size;
    if (++totals.count == failingAllocation) {
        throw std::bad_alloc();
    }
    void* const pMemory = std::malloc((size == 0) ? 1 : size);
    if (pMemory == nullptr) {
        throw std::bad_alloc();
    }
    totals.liveBytes += malloc_usable_size(pMemory);
    totals.peakBytes = std::max(totals.peakBytes, totals.liveBytes);
    return pMemory;
}

void release(void* pMemory)
{
    totals.liveBytes -= malloc_usable_size(pMemory);
    std::free(pMemory);
}

}  // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* pMemory) noexcept
{
    release(pMemory);
}

void operator delete[](void* pMemory) noexcept
{
    release(pMemory);
}

void operator delete(void* pMemory, std::size_t) noexcept
{
    release(pMemory);
}

void operator delete[](void* pMemory, std::size_t) noexcept
{
    release(pMemory);
}

AllocationTotals& allocationTotals()
{
    return totals;
}

FailingAllocation::FailingAllocation(std::size_t number)
{
    failingAllocation = totals.count + number;
}

FailingAllocation::~FailingAllocation()
{
    failingAllocation = 0;
}

bool FailingAllocation::hasFailed() const
{
    return totals.count >= failingAllocation;
}
