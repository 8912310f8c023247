#ifndef BENCH_HAND_WRITTEN_SERIES_H
#define BENCH_HAND_WRITTEN_SERIES_H

// The benchmarked rules as loops that a programmer would write in C++, with their thresholds compiled in. Each returns
// how many samples found its rule raised; of a double hysteresis, its upper condition plus its lower one.

#include <cstddef>
#include <cstdint>

std::uint64_t valueByHand(const int* pSamples, std::size_t n);
std::uint64_t orByHand(const int* pSamples, std::size_t n);
std::uint64_t andByHand(const int* pSamples, std::size_t n);
std::uint64_t deltaByHand(const int* pSamples, std::size_t n);
std::uint64_t singleHysteresisByHand(const int* pSamples, std::size_t n);
std::uint64_t doubleHysteresisByHand(const int* pSamples, std::size_t n);

/// The sum of the samples: what reading them costs.
std::int64_t sumOf(const int* pSamples, std::size_t n);

#endif
