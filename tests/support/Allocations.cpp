#include "support/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t failingAllocation = 0;  // counted like `allocations`; 0 is none

void* allocate(std::size_t size)
{
    if (++allocations == failingAllocation) {
        throw std::bad_alloc();
    }
    void* const memory = std::malloc((size == 0) ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
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

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

std::size_t allocationCount()
{
    return allocations;
}

FailingAllocation::FailingAllocation(std::size_t number)
{
    failingAllocation = allocations + number;
}

FailingAllocation::~FailingAllocation()
{
    failingAllocation = 0;
}

bool FailingAllocation::hasFailed() const
{
    return allocations >= failingAllocation;
}
