#include "SeriesMasks.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace vemorRules {
namespace {

using Interval = CompiledRule::Interval;

// A mask of 64 samples, put together from masks of `nSamples` each.
template <std::size_t nSamples, typename MaskOf>
inline std::uint64_t joined(const std::uint32_t* pSamples, const MaskOf& maskOf)
{
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < SAMPLES_PER_WORD; i += nSamples) {
        mask |= static_cast<std::uint64_t>(maskOf(pSamples + i)) << i;
    }
    return mask;
}

namespace portable {

// 32 at a time: the node's processor has no larger registers.
std::uint64_t containedInWord(const std::uint32_t* pSamples, Interval interval)
{
    return joined<32>(pSamples, [interval](const std::uint32_t* pPart) {
        std::uint32_t mask = 0;
        for (std::size_t i = 0; i < 32; ++i) {
            mask |= static_cast<std::uint32_t>(interval.contains(pPart[i])) << i;
        }
        return mask;
    });
}

void contained(const std::uint32_t* pSamples, std::size_t nWords, Interval interval, std::uint64_t* pMasks)
{
    for (std::size_t i = 0; i < nWords; ++i) {
        pMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, interval);
    }
}

void containedInTwo(const std::uint32_t* pSamples, std::size_t nWords, const Interval (&intervals)[2],
                    std::uint64_t* pFirstMasks, std::uint64_t* pSecondMasks)
{
    for (std::size_t i = 0; i < nWords; ++i) {
        pFirstMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, intervals[0]);
        pSecondMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, intervals[1]);
    }
}

void changes(const std::uint32_t* pSamples, std::size_t n, bool isUnsigned, std::uint32_t* pChanges)
{
    const std::uint32_t lowest = isUnsigned ? 0 : 0x80000000u;
    for (std::size_t i = 0; i < n; ++i) {
        const bool isRise = (pSamples[i] - lowest) < (pSamples[i + 1] - lowest);
        pChanges[i] = isRise ? pSamples[i + 1] - pSamples[i] : pSamples[i] - pSamples[i + 1];
    }
}

RaiseCounts counts(const std::uint64_t* pVerdicts, std::size_t nWords, bool wasRaised)
{
    RaiseCounts sum;
    std::uint64_t before = wasRaised ? 1 : 0;
    for (std::size_t i = 0; i < nWords; ++i) {
        const std::uint64_t verdicts = pVerdicts[i];
        sum.raises += static_cast<unsigned int>(__builtin_popcountll(verdicts & ~((verdicts << 1) | before)));
        sum.raisedSamples += static_cast<unsigned int>(__builtin_popcountll(verdicts));
        before = verdicts >> 63;
    }
    return sum;
}

constexpr SeriesMasks MASKS = {"portable", contained, containedInTwo, changes, counts};

}  // namespace portable

#ifdef __x86_64__

// Every x86-64 processor has SSE2. Its comparisons are signed: adding 2^31 to both sides makes them unsigned.
namespace sse2 {

constexpr std::uint32_t BIAS = 0x80000000u;

__m128i four(std::uint32_t number)
{
    return _mm_set1_epi32(static_cast<int>(number));
}

__m128i load(const std::uint32_t* pSamples)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSamples));
}

// An interval in the form that the comparison takes.
struct Bounds {
    explicit Bounds(Interval interval) : first(four(interval.first ^ BIAS)), last(four(interval.span ^ BIAS)) {}

    __m128i first;
    __m128i last;
};

std::uint64_t containedInWord(const std::uint32_t* pSamples, const Bounds& bounds)
{
    const auto isOutside = [&bounds](const std::uint32_t* pFour) {
        return _mm_cmpgt_epi32(_mm_sub_epi32(load(pFour), bounds.first), bounds.last);
    };
    return ~joined<16>(pSamples, [&isOutside](const std::uint32_t* pPart) {
        const __m128i low = _mm_packs_epi32(isOutside(pPart), isOutside(pPart + 4));
        const __m128i high = _mm_packs_epi32(isOutside(pPart + 8), isOutside(pPart + 12));
        return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
    });
}

void contained(const std::uint32_t* pSamples, std::size_t nWords, Interval interval, std::uint64_t* pMasks)
{
    const Bounds bounds(interval);
    for (std::size_t i = 0; i < nWords; ++i) {
        pMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, bounds);
    }
}

void containedInTwo(const std::uint32_t* pSamples, std::size_t nWords, const Interval (&intervals)[2],
                    std::uint64_t* pFirstMasks, std::uint64_t* pSecondMasks)
{
    const Bounds first(intervals[0]);
    const Bounds second(intervals[1]);
    for (std::size_t i = 0; i < nWords; ++i) {
        pFirstMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, first);
        pSecondMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, second);
    }
}

void changes(const std::uint32_t* pSamples, std::size_t n, bool isUnsigned, std::uint32_t* pChanges)
{
    const __m128i bias = four(isUnsigned ? BIAS : 0);
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128i before = load(pSamples + i);
        const __m128i after = load(pSamples + i + 1);
        const __m128i isFall = _mm_cmpgt_epi32(_mm_xor_si128(before, bias), _mm_xor_si128(after, bias));
        const __m128i change = _mm_sub_epi32(after, before);
        const __m128i size = _mm_sub_epi32(_mm_xor_si128(change, isFall), isFall);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pChanges + i), size);
    }
    portable::changes(pSamples + i, n - i, isUnsigned, pChanges + i);
}

constexpr SeriesMasks MASKS = {"SSE2", contained, containedInTwo, changes, portable::counts};

}  // namespace sse2

namespace avx2 {

#define FOR_AVX2 __attribute__((target("avx2,popcnt")))

FOR_AVX2 inline __m256i eight(std::uint32_t number)
{
    return _mm256_set1_epi32(static_cast<int>(number));
}

FOR_AVX2 inline __m256i load(const std::uint32_t* pSamples)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pSamples));
}

FOR_AVX2 inline __m256i isContained(const std::uint32_t* pSamples, __m256i first, __m256i span)
{
    const __m256i distance = _mm256_sub_epi32(load(pSamples), first);
    return _mm256_cmpeq_epi32(_mm256_min_epu32(distance, span), distance);
}

FOR_AVX2 inline std::uint64_t containedIn32(const std::uint32_t* pSamples, __m256i first, __m256i span)
{
    const __m256i low = _mm256_packs_epi32(isContained(pSamples, first, span), isContained(pSamples + 8, first, span));
    const __m256i high =
        _mm256_packs_epi32(isContained(pSamples + 16, first, span), isContained(pSamples + 24, first, span));
    // Packing works on each half of a register: the groups of four come out in the order 0, 2, 4, 6, 1, 3, 5, 7.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_packs_epi16(low, high), order);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

FOR_AVX2 inline std::uint64_t containedInWord(const std::uint32_t* pSamples, __m256i first, __m256i span)
{
    return containedIn32(pSamples, first, span) | (containedIn32(pSamples + 32, first, span) << 32);
}

FOR_AVX2 void contained(const std::uint32_t* pSamples, std::size_t nWords, Interval interval, std::uint64_t* pMasks)
{
    const __m256i first = eight(interval.first);
    const __m256i span = eight(interval.span);
    for (std::size_t i = 0; i < nWords; ++i) {
        pMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, first, span);
    }
}

FOR_AVX2 void containedInTwo(const std::uint32_t* pSamples, std::size_t nWords, const Interval (&intervals)[2],
                             std::uint64_t* pFirstMasks, std::uint64_t* pSecondMasks)
{
    const __m256i firsts[2] = {eight(intervals[0].first), eight(intervals[1].first)};
    const __m256i spans[2] = {eight(intervals[0].span), eight(intervals[1].span)};
    for (std::size_t i = 0; i < nWords; ++i) {
        pFirstMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, firsts[0], spans[0]);
        pSecondMasks[i] = containedInWord(pSamples + i * SAMPLES_PER_WORD, firsts[1], spans[1]);
    }
}

FOR_AVX2 inline __m256i changeSizes(__m256i before, __m256i after, bool isUnsigned)
{
    return isUnsigned ? _mm256_sub_epi32(_mm256_max_epu32(before, after), _mm256_min_epu32(before, after))
                      : _mm256_sub_epi32(_mm256_max_epi32(before, after), _mm256_min_epi32(before, after));
}

FOR_AVX2 void changes(const std::uint32_t* pSamples, std::size_t n, bool isUnsigned, std::uint32_t* pChanges)
{
    std::size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(pChanges + i),
                            changeSizes(load(pSamples + i), load(pSamples + i + 1), isUnsigned));
    }
    portable::changes(pSamples + i, n - i, isUnsigned, pChanges + i);
}

FOR_AVX2 RaiseCounts counts(const std::uint64_t* pVerdicts, std::size_t nWords, bool wasRaised)
{
    RaiseCounts sum;
    std::uint64_t before = wasRaised ? 1 : 0;
    for (std::size_t i = 0; i < nWords; ++i) {
        const std::uint64_t verdicts = pVerdicts[i];
        sum.raises += static_cast<std::uint64_t>(_mm_popcnt_u64(verdicts & ~((verdicts << 1) | before)));
        sum.raisedSamples += static_cast<std::uint64_t>(_mm_popcnt_u64(verdicts));
        before = verdicts >> 63;
    }
    return sum;
}

constexpr SeriesMasks MASKS = {"AVX2", contained, containedInTwo, changes, counts};

}  // namespace avx2

#endif

UsableSeriesMasks findUsableSeriesMasks()
{
    UsableSeriesMasks usable;
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt")) {
        usable.add(avx2::MASKS);
    }
    usable.add(sse2::MASKS);
#endif
    usable.add(portable::MASKS);
    return usable;
}

}  // namespace

const UsableSeriesMasks& usableSeriesMasks()
{
    static const UsableSeriesMasks usable = findUsableSeriesMasks();
    return usable;
}

}  // namespace vemorRules
