#include "EventMgmtCompiledRules.h"

#include <algorithm>
#include <limits>

#include "SeriesMasks.h"

namespace vemorRules {
namespace {

using Interval = CompiledRule::Interval;

constexpr Interval ALL_NUMBERS = {0, std::numeric_limits<std::uint32_t>::max()};
constexpr std::uint32_t LARGEST_SIGNED_CHANGE = 0x7fffffffu;

// Where a value or delta rule has the numbers for which it holds.
constexpr std::size_t FIRST_SET = 2;

// Numbers that follow one another on the circle of all 32-bit numbers.
struct NumberSet {
    Interval interval;
    bool isEmpty;

    bool contains(std::uint32_t number) const { return !isEmpty && interval.contains(number); }
};

constexpr NumberSet NOTHING = {ALL_NUMBERS, true};
constexpr NumberSet EVERYTHING = {ALL_NUMBERS, false};

// Of a set that is not empty.
bool isEverything(const NumberSet& set)
{
    return set.interval.span == ALL_NUMBERS.span;
}

// The operator that says the same with its operands exchanged.
RelationalOperator mirrored(RelationalOperator relationalOperator)
{
    switch (relationalOperator) {
        case GREATER_THAN: return LESS_THAN;
        case GREATER_OR_EQUAL: return LESS_OR_EQUAL;
        case LESS_THAN: return GREATER_THAN;
        case LESS_OR_EQUAL: return GREATER_OR_EQUAL;
        default: return relationalOperator;
    }
}

NumberSet othersThan(const NumberSet& set)
{
    if (set.isEmpty) {
        return EVERYTHING;
    }
    if (isEverything(set)) {
        return NOTHING;
    }
    const Interval& interval = set.interval;
    return {{interval.first + interval.span + 1, ALL_NUMBERS.span - interval.span - 1}, false};
}

std::uint32_t lowestNumber(bool isUnsigned)
{
    return isUnsigned ? 0 : 0x80000000u;
}

// The numbers for which a comparison with `threshold` holds.
NumberSet numbersThat(RelationalOperator relationalOperator, std::uint32_t threshold, bool isUnsigned)
{
    const std::uint32_t lowest = lowestNumber(isUnsigned);
    const std::uint32_t highest = lowest - 1;
    const NumberSet upToThreshold = {{lowest, threshold - lowest}, false};
    const NumberSet fromThreshold = {{threshold, highest - threshold}, false};
    const NumberSet equal = {{threshold, 0}, false};
    switch (relationalOperator) {
        case GREATER_THAN: return othersThan(upToThreshold);
        case GREATER_OR_EQUAL: return fromThreshold;
        case LESS_THAN: return othersThan(fromThreshold);
        case LESS_OR_EQUAL: return upToThreshold;
        case EQUAL: return equal;
        default: return othersThan(equal);
    }
}

// The numbers that are in both sets, or nothing if they do not follow one another.
std::optional<NumberSet> intersection(const NumberSet& one, const NumberSet& other)
{
    if (one.isEmpty || other.isEmpty) {
        return NOTHING;
    }
    if (isEverything(one) || isEverything(other)) {
        return isEverything(one) ? other : one;
    }
    // Numbers are counted from the beginning of `one`; `other` may go round past it.
    const Interval& left = one.interval;
    const Interval& right = other.interval;
    constexpr std::uint64_t ROUND = std::uint64_t{1} << 32;
    const std::uint64_t rightBegin = right.first - left.first;
    const std::uint64_t rightEnd = rightBegin + right.span;
    const auto upTo = [&left](std::uint64_t end) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(end, left.span));
    };
    const bool beginsInside = (rightBegin <= left.span);
    const bool goesRound = (rightEnd >= ROUND);
    if (beginsInside && goesRound) {
        return std::nullopt;
    }
    if (beginsInside) {
        return NumberSet{{right.first, upTo(rightEnd) - static_cast<std::uint32_t>(rightBegin)}, false};
    }
    if (goesRound) {
        return NumberSet{{left.first, upTo(rightEnd - ROUND)}, false};
    }
    return NOTHING;
}

// The number of an operand, as a check in either instantiation reads it: its 32 bits.
std::optional<std::uint32_t> numberOf(const boost::any& operand)
{
    if (const auto* const pNumber = boost::any_cast<int>(&operand)) {
        return static_cast<std::uint32_t>(*pNumber);
    }
    if (const auto* const pNumber = boost::any_cast<unsigned int>(&operand)) {
        return *pNumber;
    }
    return std::nullopt;
}

template <typename Held>
bool holds(const boost::any& operand)
{
    return boost::any_cast<Held>(&operand) != nullptr;
}

bool isJunction(RelationalOperator relationalOperator)
{
    return (relationalOperator == LOGICAL_AND) || (relationalOperator == LOGICAL_OR);
}

bool isComparison(RelationalOperator relationalOperator)
{
    return (relationalOperator >= GREATER_THAN) && (relationalOperator <= NOT_EQUAL);
}

}  // namespace

// Fills in a rule, comparison by comparison. Each function returns false if its expression has another shape than the
// parser gives it.
class RuleCompiler {
public:
    explicit RuleCompiler(bool isUnsigned) { m_rule.m_isUnsigned = isUnsigned; }

    const CompiledRule& rule() const { return m_rule; }

    bool add(const RuleObject& rule)
    {
        const std::vector<Expression>& expressions = rule.m_expressions;
        m_rule.m_type = static_cast<std::uint8_t>(rule.m_expressionType);
        switch (rule.m_expressionType) {
            case SIMPLE_EXPRESSION_VALUE:
            case SIMPLE_EXPRESSION_DELTA: return (expressions.size() == 1) && addCondition(expressions[0]);
            case SINGLE_HYSTERESIS: return (expressions.size() == 2) && addHysteresis(expressions[0], expressions[1]);
            case DOUBLE_HYSTERESIS:
                return (expressions.size() == 4) && addHysteresis(expressions[0], expressions[1]) &&
                       addHysteresis(expressions[2], expressions[3]);
            default: return false;
        }
    }

    /// After a change of a comparison: everything that follows from the comparisons.
    static void settle(CompiledRule& rule)
    {
        rule.m_plain = CompiledRule::Plain::NO;
        switch (rule.type()) {
            case SIMPLE_EXPRESSION_VALUE: settleSets(rule, CompiledRule::Plain::VALUE); break;
            case SIMPLE_EXPRESSION_DELTA:
                settleSets(rule,
                           rule.isUnsigned() ? CompiledRule::Plain::UNSIGNED_DELTA : CompiledRule::Plain::SIGNED_DELTA);
                break;
            case SINGLE_HYSTERESIS: settleHysteresis(rule, CompiledRule::Plain::SINGLE_HYSTERESIS); break;
            default: settleHysteresis(rule, CompiledRule::Plain::DOUBLE_HYSTERESIS); break;
        }
    }

    static void setComparison(CompiledRule& rule, std::size_t index, std::uint32_t threshold)
    {
        const auto relationalOperator = static_cast<RelationalOperator>(rule.m_operators[index]);
        setSet(rule, index, numbersThat(relationalOperator, threshold, rule.isUnsigned()));
    }

private:
    bool addCondition(const Expression& expression)
    {
        if (!isJunction(expression.m_relationalOperator)) {
            return addComparison(expression);
        }
        m_rule.m_isOr = (expression.m_relationalOperator == LOGICAL_OR);
        return addNestedComparison(expression.m_leftOperand) && addNestedComparison(expression.m_rightOperand);
    }

    bool addHysteresis(const Expression& keeping, const Expression& raising)
    {
        return (keeping.m_relationalOperator == LOGICAL_AND) && holds<MemoryField>(keeping.m_leftOperand) &&
               addNestedComparison(keeping.m_rightOperand) &&  //
               (raising.m_relationalOperator == LOGICAL_OR) && holds<MemoryField>(raising.m_leftOperand) &&
               addNestedComparison(raising.m_rightOperand);
    }

    bool addNestedComparison(const boost::any& operand)
    {
        const auto* const pExpression = boost::any_cast<Expression>(&operand);
        return (pExpression != nullptr) && addComparison(*pExpression);
    }

    bool addComparison(const Expression& expression)
    {
        const RelationalOperator relationalOperator = expression.m_relationalOperator;
        if (!isComparison(relationalOperator)) {
            return false;
        }
        if (holds<ParamField>(expression.m_leftOperand)) {
            return addComparison(relationalOperator, numberOf(expression.m_rightOperand));
        }
        return holds<ParamField>(expression.m_rightOperand) &&
               addComparison(mirrored(relationalOperator), numberOf(expression.m_leftOperand));
    }

    bool addComparison(RelationalOperator relationalOperator, std::optional<std::uint32_t> threshold)
    {
        if (!threshold) {
            return false;
        }
        const std::size_t index = m_rule.m_nThresholds++;
        m_rule.m_operators[index] = static_cast<std::uint8_t>(relationalOperator);
        setComparison(m_rule, index, *threshold);
        return true;
    }

    static NumberSet set(const CompiledRule& rule, std::size_t index)
    {
        return {rule.m_intervals[index], rule.m_isEmpty[index] != 0};
    }

    static void setSet(CompiledRule& rule, std::size_t index, const NumberSet& set)
    {
        rule.m_intervals[index] = set.interval;
        rule.m_isEmpty[index] = set.isEmpty ? 1 : 0;
    }

    // The sets of a value or delta rule. What either comparison holds for is all but what neither holds for.
    static void settleSets(CompiledRule& rule, CompiledRule::Plain plain)
    {
        const NumberSet first = set(rule, 0);
        const NumberSet second = (rule.m_nThresholds == 1) ? first : set(rule, 1);
        const NumberSet firstSet = rule.m_isOr ? othersThan(first) : first;
        const NumberSet secondSet = rule.m_isOr ? othersThan(second) : second;
        std::optional<NumberSet> both = intersection(firstSet, secondSet);
        if (both && rule.m_isOr) {
            both = othersThan(*both);
        }
        if (both && (plain == CompiledRule::Plain::SIGNED_DELTA)) {
            both = intersection(*both, {{0, LARGEST_SIGNED_CHANGE}, false});
        }
        rule.m_nSets = both ? 1 : 2;
        setSet(rule, FIRST_SET, both.value_or(firstSet));
        setSet(rule, FIRST_SET + 1, secondSet);
        if (both && !both->isEmpty) {
            rule.m_plain = plain;
        }
    }

    static void settleHysteresis(CompiledRule& rule, CompiledRule::Plain plain)
    {
        if (std::none_of(std::begin(rule.m_isEmpty), std::end(rule.m_isEmpty), [](auto isEmpty) { return isEmpty; })) {
            rule.m_plain = plain;
        }
    }

    CompiledRule m_rule;
};

// What the evaluation here needs of a rule.
class RuleReader {
public:
    explicit RuleReader(const CompiledRule& rule) : m_rule(rule) {}

    NumberSet set(std::size_t index) const { return {m_rule.m_intervals[index], m_rule.m_isEmpty[index] != 0}; }
    bool isOneSet() const { return m_rule.m_nSets == 1; }
    bool isOr() const { return m_rule.m_isOr; }

private:
    const CompiledRule& m_rule;
};

std::int64_t CompiledRule::threshold(std::size_t index) const noexcept
{
    const Interval& interval = m_intervals[index];
    const std::uint32_t last = interval.first + interval.span;
    std::uint32_t bits = interval.first;
    switch (m_operators[index]) {
        case GREATER_THAN: bits = (m_isEmpty[index] != 0) ? lowestNumber(m_isUnsigned) - 1 : interval.first - 1; break;
        case LESS_THAN: bits = (m_isEmpty[index] != 0) ? lowestNumber(m_isUnsigned) : last + 1; break;
        case LESS_OR_EQUAL: bits = last; break;
        case NOT_EQUAL: bits = interval.first - 1; break;
        default: break;
    }
    return m_isUnsigned ? std::int64_t{bits} : std::int64_t{static_cast<std::int32_t>(bits)};
}

void CompiledRule::setThreshold(std::size_t index, std::int64_t threshold) noexcept
{
    RuleCompiler::setComparison(*this, index, static_cast<std::uint32_t>(threshold));
    RuleCompiler::settle(*this);
}

bool CompiledRule::checkOther(ExpressionType type, std::uint32_t number) const noexcept
{
    const RuleReader reader(*this);
    if (type != m_type) {
        return false;
    }
    if (reader.isOneSet()) {
        return reader.set(FIRST_SET).contains(number);
    }
    const bool isInBoth = reader.set(FIRST_SET).contains(number) && reader.set(FIRST_SET + 1).contains(number);
    const bool isTooLarge = (type == SIMPLE_EXPRESSION_DELTA) && !m_isUnsigned && (number > LARGEST_SIGNED_CHANGE);
    return !isTooLarge && (isInBoth != m_isOr);
}

bool CompiledRule::checkOtherHysteresis(ExpressionType type, std::size_t keeping, std::uint32_t sample,
                                        bool previousState) const noexcept
{
    const RuleReader reader(*this);
    return (type == m_type) &&
           (reader.set(keeping + 1).contains(sample) || (previousState && reader.set(keeping).contains(sample)));
}

template <typename T>
std::optional<CompiledRule> compileRule(const RuleObject& rule)
{
    RuleCompiler compiler(std::is_unsigned_v<T>);
    if (!compiler.add(rule)) {
        return std::nullopt;
    }
    CompiledRule compiled = compiler.rule();
    RuleCompiler::settle(compiled);
    return compiled;
}

namespace {

// Samples are evaluated in chunks that stay in the processor's nearest cache, with what is computed from them.
constexpr std::size_t WORDS_PER_CHUNK = 32;
constexpr std::size_t SAMPLES_PER_CHUNK = WORDS_PER_CHUNK * SAMPLES_PER_WORD;

// Whole words of samples. Those after the first `n` are there to be read, and count for nothing.
struct Chunk {
    const std::uint32_t* pSamples;
    std::size_t n;

    std::size_t nWords() const { return (n + SAMPLES_PER_WORD - 1) / SAMPLES_PER_WORD; }

    std::uint64_t validBits(std::size_t word) const
    {
        const std::size_t nValid = n - word * SAMPLES_PER_WORD;
        return (nValid >= SAMPLES_PER_WORD) ? ~std::uint64_t{0} : (std::uint64_t{1} << nValid) - 1;
    }

    bool last(const std::uint64_t* pVerdicts) const
    {
        return ((pVerdicts[(n - 1) / SAMPLES_PER_WORD] >> ((n - 1) % SAMPLES_PER_WORD)) & 1) != 0;
    }
};

// One rule on one chunk.
class ChunkEvaluation {
public:
    // The words are filled before they are read. NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    ChunkEvaluation(const SeriesMasks& masks, const CompiledRule& rule, const Chunk& chunk, RuleState& state)
        : m_masks(masks), m_rule(rule), m_reader(rule), m_chunk(chunk), m_state(state)
    {
    }

    void run(const SeriesOutput& output)
    {
        bool& isLowerRaised = m_state.isLowerRaised;
        switch (m_rule.type()) {
            case SIMPLE_EXPRESSION_VALUE: decide(m_chunk.pSamples); break;
            case SIMPLE_EXPRESSION_DELTA: decideChanges(); break;
            default: decideHysteresis(0, m_state.isRaised); break;
        }
        put(m_state.isRaised, output.pRaised, (output.pCounts == nullptr) ? nullptr : &output.pCounts->raised);
        if (m_rule.type() == DOUBLE_HYSTERESIS) {
            decideHysteresis(2, isLowerRaised);
            put(isLowerRaised, output.pLowerRaised,
                (output.pCounts == nullptr) ? nullptr : &output.pCounts->lowerRaised);
        } else if (output.pLowerRaised != nullptr) {
            std::fill_n(output.pLowerRaised, m_chunk.nWords(), std::uint64_t{0});
        }
    }

private:
    void findMasks(const std::uint32_t* pNumbers, const NumberSet& first, const NumberSet& second)
    {
        const Interval intervals[] = {first.interval, second.interval};
        m_masks.containedInTwo(pNumbers, m_chunk.nWords(), intervals, m_first, m_second);
        m_firstBits = first.isEmpty ? 0 : ~std::uint64_t{0};
        m_secondBits = second.isEmpty ? 0 : ~std::uint64_t{0};
    }

    void decide(const std::uint32_t* pNumbers)
    {
        const NumberSet first = m_reader.set(FIRST_SET);
        if (m_reader.isOneSet()) {
            m_masks.contained(pNumbers, m_chunk.nWords(), first.interval, m_verdicts);
            decideWords([&](std::size_t i) { return first.isEmpty ? 0 : m_verdicts[i]; });
            return;
        }
        findMasks(pNumbers, first, m_reader.set(FIRST_SET + 1));
        const std::uint64_t inversion = m_reader.isOr() ? ~std::uint64_t{0} : 0;
        decideWords([&](std::size_t i) { return (m_first[i] & m_firstBits & m_second[i] & m_secondBits) ^ inversion; });
    }

    void decideChanges()
    {
        alignas(32) std::uint32_t changes[SAMPLES_PER_CHUNK];
        changes[0] = changeBetween(m_state.previousSample, m_chunk.pSamples[0]);
        m_masks.changes(m_chunk.pSamples, m_chunk.nWords() * SAMPLES_PER_WORD - 1, m_rule.isUnsigned(), changes + 1);
        decide(changes);
        if (!m_rule.isUnsigned() && !m_reader.isOneSet()) {
            m_masks.contained(changes, m_chunk.nWords(), {0, LARGEST_SIGNED_CHANGE}, m_first);
            decideWords([&](std::size_t i) { return m_verdicts[i] & m_first[i]; });
        }
        if (!m_state.hasPreviousSample) {
            m_verdicts[0] &= ~std::uint64_t{1};
        }
    }

    std::uint32_t changeBetween(std::uint32_t first, std::uint32_t second) const
    {
        return m_rule.isUnsigned() ? deltaOf(first, second)
                                   : deltaOf(static_cast<std::int32_t>(first), static_cast<std::int32_t>(second));
    }

    // Each sample raises, keeps or clears: the state passes through it as a carry passes through a digit of an
    // addition. Of the two numbers added, both have a bit where a sample raises (it makes a carry), and one of them
    // where a sample keeps (it passes a carry on).
    void decideHysteresis(std::size_t index, bool wasRaised)
    {
        findMasks(m_chunk.pSamples, m_reader.set(index), m_reader.set(index + 1));
        std::uint64_t carry = wasRaised ? 1 : 0;
        decideWords([&](std::size_t i) {
            const std::uint64_t keeps = m_first[i] & m_firstBits;
            const std::uint64_t raises = m_second[i] & m_secondBits;
            const std::uint64_t sum = (raises | keeps) + raises + carry;
            const std::uint64_t carriesIn = sum ^ (raises | keeps) ^ raises;
            const std::uint64_t raised = raises | (keeps & carriesIn);
            carry = raised >> (SAMPLES_PER_WORD - 1);
            return raised;
        });
    }

    template <typename VerdictsOfWord>
    void decideWords(const VerdictsOfWord& verdictsOfWord)
    {
        const std::size_t nWords = m_chunk.nWords();
        for (std::size_t i = 0; i < nWords; ++i) {
            m_verdicts[i] = verdictsOfWord(i);
        }
        m_verdicts[nWords - 1] &= m_chunk.validBits(nWords - 1);
    }

    void put(bool& isRaised, std::uint64_t* pVerdicts, RaiseCounts* pCounts) const
    {
        const std::size_t nWords = m_chunk.nWords();
        if (pVerdicts != nullptr) {
            std::copy_n(m_verdicts, nWords, pVerdicts);
        }
        if (pCounts != nullptr) {
            const RaiseCounts counts = m_masks.counts(m_verdicts, nWords, isRaised);
            pCounts->raises += counts.raises;
            pCounts->raisedSamples += counts.raisedSamples;
        }
        isRaised = m_chunk.last(m_verdicts);
    }

    const SeriesMasks& m_masks;
    const CompiledRule& m_rule;
    const RuleReader m_reader;
    const Chunk& m_chunk;
    RuleState& m_state;
    std::uint64_t m_verdicts[WORDS_PER_CHUNK];
    std::uint64_t m_first[WORDS_PER_CHUNK];
    std::uint64_t m_second[WORDS_PER_CHUNK];
    std::uint64_t m_firstBits = 0;
    std::uint64_t m_secondBits = 0;
};

SeriesOutput partFrom(const SeriesOutput& output, std::size_t word)
{
    return {(output.pRaised == nullptr) ? nullptr : output.pRaised + word,
            (output.pLowerRaised == nullptr) ? nullptr : output.pLowerRaised + word, output.pCounts};
}

// Every rule on one chunk.
void checkChunk(const SeriesMasks& masks, const CompiledRule* pRules, std::size_t nRules, const Chunk& chunk,
                std::size_t firstWord, RuleState* pStates, const SeriesOutput* pOutputs)
{
    for (std::size_t i = 0; i < nRules; ++i) {
        const SeriesOutput output = (pOutputs == nullptr) ? SeriesOutput{} : partFrom(pOutputs[i], firstWord);
        ChunkEvaluation(masks, pRules[i], chunk, pStates[i]).run(output);
        pStates[i].previousSample = chunk.pSamples[chunk.n - 1];
        pStates[i].hasPreviousSample = true;
    }
}

// Returns whether a condition changed.
bool takeSample(const CompiledRule& rule, std::uint32_t sample, RuleState& state)
{
    const bool wasRaised = state.isRaised;
    const bool wasLowerRaised = state.isLowerRaised;
    switch (rule.type()) {
        case SIMPLE_EXPRESSION_VALUE: state.isRaised = checkSimpleValueRule(rule, sample); break;
        case SIMPLE_EXPRESSION_DELTA:
            state.isRaised = state.hasPreviousSample && checkSimpleDeltaRule(rule, state.previousSample, sample);
            break;
        case SINGLE_HYSTERESIS: state.isRaised = checkSingleHysteresisRule(rule, sample, wasRaised); break;
        default: checkDoubleHysteresisRule(rule, sample, state.isRaised, state.isLowerRaised); break;
    }
    state.previousSample = sample;
    state.hasPreviousSample = true;
    return (state.isRaised != wasRaised) || (state.isLowerRaised != wasLowerRaised);
}

}  // namespace

void checkSeriesWith(const SeriesMasks& masks, const CompiledRule* pRules, std::size_t nRules,
                     const std::uint32_t* pSamples, std::size_t n, RuleState* pStates, const SeriesOutput* pOutputs)
{
    const std::size_t nWhole = n - n % SAMPLES_PER_WORD;
    for (std::size_t begin = 0; begin < nWhole; begin += SAMPLES_PER_CHUNK) {
        const Chunk chunk = {pSamples + begin, std::min(SAMPLES_PER_CHUNK, nWhole - begin)};
        checkChunk(masks, pRules, nRules, chunk, begin / SAMPLES_PER_WORD, pStates, pOutputs);
    }
    if (nWhole < n) {
        std::uint32_t padded[SAMPLES_PER_WORD] = {};
        std::copy(pSamples + nWhole, pSamples + n, padded);
        checkChunk(masks, pRules, nRules, {padded, n - nWhole}, nWhole / SAMPLES_PER_WORD, pStates, pOutputs);
    }
}

template <typename T>
void checkSeries(const CompiledRule& rule, const T* pSamples, std::size_t n, RuleState& state,
                 const SeriesOutput& output) noexcept
{
    checkSeries(&rule, 1, pSamples, n, &state, &output);
}

template <typename T>
void checkSeries(const CompiledRule* pRules, std::size_t nRules, const T* pSamples, std::size_t n, RuleState* pStates,
                 const SeriesOutput* pOutputs) noexcept
{
    static_assert(sizeof(T) == sizeof(std::uint32_t));
    checkSeriesWith(usableSeriesMasks().fastest(), pRules, nRules, reinterpret_cast<const std::uint32_t*>(pSamples), n,
                    pStates, pOutputs);
}

std::size_t checkEach(const CompiledRule* pRules, const std::uint32_t* pSamples, std::size_t n, RuleState* pStates,
                      std::uint64_t* pChanged) noexcept
{
    std::fill_n(pChanged, (n + SAMPLES_PER_WORD - 1) / SAMPLES_PER_WORD, std::uint64_t{0});
    std::size_t nChanged = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const bool hasChanged = takeSample(pRules[i], pSamples[i], pStates[i]);
        pChanged[i / SAMPLES_PER_WORD] |= std::uint64_t{hasChanged} << (i % SAMPLES_PER_WORD);
        nChanged += hasChanged ? 1 : 0;
    }
    return nChanged;
}

#define INSTANTIATE_COMPILED_RULES(T)                                                                                \
    template BRANTEL_EXPORT std::optional<CompiledRule> compileRule<T>(const RuleObject&);                           \
    template BRANTEL_EXPORT void checkSeries<T>(const CompiledRule&, const T*, std::size_t, RuleState&,              \
                                                const SeriesOutput&) noexcept;                                       \
    template BRANTEL_EXPORT void checkSeries<T>(const CompiledRule*, std::size_t, const T*, std::size_t, RuleState*, \
                                                const SeriesOutput*) noexcept;

INSTANTIATE_COMPILED_RULES(int)
INSTANTIATE_COMPILED_RULES(unsigned int)

}  // namespace vemorRules
