#ifndef BRANTEL_SERIES_MASKS_H
#define BRANTEL_SERIES_MASKS_H

// The inner loops of evaluating a series, which read each sample: one set of them for every processor, and faster ones
// for x86-64. Everything else works on their results, 64 samples at a time. Private.

#include <cstddef>
#include <cstdint>

#include "EventMgmtCompiledRules.h"

namespace vemorRules {

constexpr std::size_t SAMPLES_PER_WORD = 64;

struct SeriesMasks {
    const char* name;

    /// For each of `nWords` times 64 samples, whether `interval` contains it.
    void (*contained)(const std::uint32_t* pSamples, std::size_t nWords, CompiledRule::Interval interval,
                      std::uint64_t* pMasks);

    /// The same for two intervals, in one reading.
    void (*containedInTwo)(const std::uint32_t* pSamples, std::size_t nWords,
                           const CompiledRule::Interval (&intervals)[2], std::uint64_t* pFirstMasks,
                           std::uint64_t* pSecondMasks);

    /// The sizes of the changes from pSamples[0] to pSamples[1] and so on: `n` of them from `n` + 1 samples.
    void (*changes)(const std::uint32_t* pSamples, std::size_t n, bool isUnsigned, std::uint32_t* pChanges);

    /// The counts of `nWords` words of verdicts, after the state before.
    RaiseCounts (*counts)(const std::uint64_t* pVerdicts, std::size_t nWords, bool wasRaised);
};

/// Those that this processor can run, the fastest first.
class UsableSeriesMasks {
public:
    void add(const SeriesMasks& masks) { m_pMasks[m_n++] = &masks; }
    const SeriesMasks& fastest() const { return *m_pMasks[0]; }
    const SeriesMasks* const* begin() const { return m_pMasks; }
    const SeriesMasks* const* end() const { return m_pMasks + m_n; }

private:
    const SeriesMasks* m_pMasks[3] = {};
    std::size_t m_n = 0;
};

const UsableSeriesMasks& usableSeriesMasks();

/// What checkSeries does, with inner loops of the caller's choice.
void checkSeriesWith(const SeriesMasks& masks, const CompiledRule* pRules, std::size_t nRules,
                     const std::uint32_t* pSamples, std::size_t n, RuleState* pStates, const SeriesOutput* pOutputs);

}  // namespace vemorRules

#endif
