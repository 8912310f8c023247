#include "support/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace allocationCounter {

std::size_t allocations = 0;
std::size_t bytes = 0;

}  // namespace allocationCounter

void* operator new(std::size_t size)
{
    ++allocationCounter::allocations;
    allocationCounter::bytes += size;
    void* const pMemory = std::malloc(size);
    if (pMemory == nullptr) {
        throw std::bad_alloc();
    }
    return pMemory;
}

void operator delete(void* pMemory) noexcept
{
    std::free(pMemory);
}

void operator delete(void* pMemory, std::size_t /*size*/) noexcept
{
    std::free(pMemory);
}
