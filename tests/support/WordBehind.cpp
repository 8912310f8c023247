#include "support/WordBehind.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace wordBehind {

void* pNext = nullptr;

}  // namespace wordBehind

void* operator new(std::size_t size)
{
    void* const pMemory = std::malloc(size + sizeof wordBehind::pNext);
    if (pMemory == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(static_cast<char*>(pMemory) + size, &wordBehind::pNext, sizeof wordBehind::pNext);
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
