#ifndef TESTS_SUPPORT_ALLOCATION_COUNTER_H
#define TESTS_SUPPORT_ALLOCATION_COUNTER_H

// Counts what a test program asks of the heap through operator new. A program that is linked with AllocationCounter.cpp
// has its operators in place of the C++ library's.

#include <cstddef>

namespace allocationCounter {

extern std::size_t allocations;
extern std::size_t bytes;

}  // namespace allocationCounter

#endif
