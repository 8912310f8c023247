#include "HandWrittenSeries.h"

#include <cstdlib>

namespace {

template <typename Check>
std::uint64_t countOf(const int* pSamples, std::size_t n, const Check& check)
{
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < n; ++i) {
        count += check(pSamples[i]) ? 1 : 0;
    }
    return count;
}

}  // namespace

std::uint64_t valueByHand(const int* pSamples, std::size_t n)
{
    return countOf(pSamples, n, [](int sample) { return sample > 100; });
}

std::uint64_t orByHand(const int* pSamples, std::size_t n)
{
    return countOf(pSamples, n, [](int sample) { return (sample < -500) || (sample > 500); });
}

std::uint64_t andByHand(const int* pSamples, std::size_t n)
{
    return countOf(pSamples, n, [](int sample) { return (sample >= -500) && (sample <= 500); });
}

std::uint64_t deltaByHand(const int* pSamples, std::size_t n)
{
    std::uint64_t count = 0;
    for (std::size_t i = 1; i < n; ++i) {
        count += (std::llabs(static_cast<long long>(pSamples[i]) - pSamples[i - 1]) > 250) ? 1 : 0;
    }
    return count;
}

std::uint64_t singleHysteresisByHand(const int* pSamples, std::size_t n)
{
    bool isRaised = false;
    return countOf(pSamples, n, [&isRaised](int sample) {
        isRaised = (isRaised && (sample > 400)) || (sample > 600);
        return isRaised;
    });
}

std::uint64_t doubleHysteresisByHand(const int* pSamples, std::size_t n)
{
    bool isUpperRaised = false;
    bool isLowerRaised = false;
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < n; ++i) {
        isUpperRaised = (isUpperRaised && (pSamples[i] > 400)) || (pSamples[i] > 600);
        isLowerRaised = (isLowerRaised && (pSamples[i] < -400)) || (pSamples[i] < -600);
        count += (isUpperRaised ? 1 : 0) + (isLowerRaised ? 1 : 0);
    }
    return count;
}

std::int64_t sumOf(const int* pSamples, std::size_t n)
{
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < n; ++i) {
        sum += pSamples[i];
    }
    return sum;
}
