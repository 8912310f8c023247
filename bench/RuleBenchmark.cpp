// Measures how long it takes to parse a rule and to evaluate a sample, in the library and in its peers, on the same
// rules and samples. Before anything is measured, the peers' answers to all samples are compared with the library's.
//
// The benchmarks are named <series>/<rule>/<by whom> and parse/<rule>/<by whom>; bench/tables.jq makes the tables of
// docs/performance.md from them.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "HandWrittenRules.h"
#include "RuleEvaluators.h"
#include "trace/TraceObject.h"

namespace {

// Too many for a branch predictor to learn.
constexpr std::size_t NUMBER_OF_SAMPLES = 1 << 16;

// A trace level at which errors are written and debug lines are not, as on a node in service.
constexpr std::int32_t SERVICE_TRACE_LEVEL = 3;

enum class RuleKind { VALUE, DELTA, SINGLE_HYSTERESIS, DOUBLE_HYSTERESIS };

struct RuleTexts {
    std::string name;
    std::string rule;
    std::string muparserCondition;
    std::string luaCondition;
};

template <typename T>
struct SampleSeries {
    std::string name;
    std::vector<T> samples;
};

/// Evenly spread over `range` numbers from `lowest` on, the same in every run.
template <typename T>
std::vector<T> pseudoRandomSamples(T lowest, unsigned int range)
{
    std::mt19937 generator;  // NOLINT: the same samples in every run
    std::vector<T> samples(NUMBER_OF_SAMPLES);
    for (T& sample : samples) {
        sample = lowest + static_cast<T>(generator() % range);
    }
    return samples;
}

/// One series of samples with unpredictable verdicts, and one whose verdicts never change. The rules' thresholds lie
/// between `centre` - 1000 and `centre` + 1000, none of them within 20 of `centre`.
template <typename T>
std::vector<SampleSeries<T>> sampleSeriesAround(T centre)
{
    return {{"changing", pseudoRandomSamples<T>(centre - 1000, 2001)},
            {"steady", pseudoRandomSamples<T>(centre - 10, 21)}};
}

/// Feeds samples to an evaluator in their order and carries the previous sample and the states from one to the next.
template <RuleKind kind, typename T, typename Evaluator>
class Monitor {
public:
    explicit Monitor(Evaluator& evaluator) : m_evaluator(evaluator) {}

    /// Bit 0 is the rule's verdict, or the upper state; bit 1 the lower state.
    int next(T sample)
    {
        if constexpr (kind == RuleKind::VALUE) {
            return m_evaluator.checkValue(sample);
        } else if constexpr (kind == RuleKind::DELTA) {
            const bool result = m_evaluator.checkDelta(m_previousSample, sample);
            m_previousSample = sample;
            return result;
        } else if constexpr (kind == RuleKind::SINGLE_HYSTERESIS) {
            m_upperState = m_evaluator.checkSingle(sample, m_upperState);
            return m_upperState;
        } else {
            m_evaluator.checkDouble(sample, m_upperState, m_lowerState);
            return static_cast<int>(m_upperState) + 2 * static_cast<int>(m_lowerState);
        }
    }

private:
    Evaluator& m_evaluator;
    T m_previousSample = 0;
    bool m_upperState = false;
    bool m_lowerState = false;
};

template <RuleKind kind, typename T, typename Evaluator>
std::vector<int> verdicts(Evaluator& evaluator, const std::vector<T>& samples)
{
    Monitor<kind, T, Evaluator> monitor(evaluator);
    std::vector<int> results;
    for (const T sample : samples) {
        results.push_back(monitor.next(sample));
    }
    return results;
}

template <RuleKind kind, typename T, typename Evaluator>
void measureEvaluation(benchmark::State& state, Evaluator& evaluator, const std::vector<T>& samples)
{
    Monitor<kind, T, Evaluator> monitor(evaluator);
    for (auto _ : state) {
        for (const T sample : samples) {
            benchmark::DoNotOptimize(monitor.next(sample));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(samples.size()));
}

template <RuleKind kind, typename T, typename Evaluator>
void registerEvaluation(const RuleTexts& texts, const std::string& byWhom, const std::shared_ptr<Evaluator>& pEvaluator,
                        const std::vector<SampleSeries<T>>& allSeries)
{
    LibraryEvaluator<T> library(texts.rule);
    for (const SampleSeries<T>& series : allSeries) {
        if (verdicts<kind>(*pEvaluator, series.samples) != verdicts<kind>(library, series.samples)) {
            throw std::runtime_error("The library and " + byWhom + " disagree on " + texts.rule);
        }
        benchmark::RegisterBenchmark((series.name + "/" + texts.name + "/" + byWhom).c_str(),
                                     [pEvaluator, &samples = series.samples](benchmark::State& state) {
                                         measureEvaluation<kind>(state, *pEvaluator, samples);
                                     });
    }
}

// Without a trace object, as in a component that does not trace.
template <RuleKind kind, typename T>
void registerEvaluationWithoutTrace(const RuleTexts& texts, const std::vector<SampleSeries<T>>& allSeries)
{
    const auto pEvaluator = std::make_shared<LibraryEvaluator<T>>(texts.rule);
    for (const SampleSeries<T>& series : allSeries) {
        benchmark::RegisterBenchmark((series.name + "/" + texts.name + "/untraced").c_str(),
                                     [pEvaluator, &samples = series.samples](benchmark::State& state) {
                                         TraceObject* const pTraceObject = g_traceObject;
                                         g_traceObject = nullptr;
                                         measureEvaluation<kind>(state, *pEvaluator, samples);
                                         g_traceObject = pTraceObject;
                                     });
    }
}

/// `parse` parses once and returns something that depends on it.
template <typename Parse>
void registerParsing(const RuleTexts& texts, const std::string& byWhom, Parse parse)
{
    benchmark::RegisterBenchmark(("parse/" + texts.name + "/" + byWhom).c_str(),
                                 [parse](benchmark::State& state) mutable {
                                     for (auto _ : state) {
                                         benchmark::DoNotOptimize(parse());
                                     }
                                     state.SetItemsProcessed(state.iterations());
                                 });
}

class RuleBenchmarks {
public:
    RuleBenchmarks() : m_lua54(LUA54_MODULE), m_luajit(LUAJIT_MODULE) {}
    // The benchmarks use the modules.
    ~RuleBenchmarks() { benchmark::ClearRegisteredBenchmarks(); }
    RuleBenchmarks(const RuleBenchmarks&) = delete;
    RuleBenchmarks& operator=(const RuleBenchmarks&) = delete;

    template <RuleKind kind, typename T, typename HandWritten>
    void add(const RuleTexts& texts)
    {
        const auto& series = sampleSeries(T());
        registerEvaluation<kind>(texts, "library", std::make_shared<LibraryEvaluator<T>>(texts.rule), series);
        registerEvaluationWithoutTrace<kind>(texts, series);
        registerEvaluation<kind>(texts, "compiled", std::make_shared<CompiledEvaluator<T>>(texts.rule), series);
        registerEvaluation<kind>(texts, "hand-written", std::make_shared<HandWritten>(), series);
        registerEvaluation<kind>(texts, "substitution", std::make_shared<SubstitutionEvaluator<T>>(texts.rule), series);
        registerEvaluation<kind>(texts, "muparser", std::make_shared<MuparserEvaluator<T>>(texts.muparserCondition),
                                 series);
        registerEvaluation<kind>(texts, "lua54", std::make_shared<LuaEvaluator<T>>(m_lua54, texts.luaCondition),
                                 series);
        registerEvaluation<kind>(texts, "luajit", std::make_shared<LuaEvaluator<T>>(m_luajit, texts.luaCondition),
                                 series);

        registerParsing(texts, "library", [text = texts.rule] {
            vemorRules::RuleObject rule;
            return vemorRules::parseRule(text, &rule);
        });
        registerParsing(texts, "muparser",
                        [pEvaluator = std::make_shared<MuparserEvaluator<T>>(texts.muparserCondition),
                         condition = texts.muparserCondition] { return pEvaluator->compile(condition); });
        registerLuaParsing(texts, "lua54", m_lua54);
        registerLuaParsing(texts, "luajit", m_luajit);
    }

private:
    const std::vector<SampleSeries<int>>& sampleSeries(int /*sample*/) const { return m_signedSeries; }
    const std::vector<SampleSeries<unsigned int>>& sampleSeries(unsigned int /*sample*/) const
    {
        return m_unsignedSeries;
    }

    static void registerLuaParsing(const RuleTexts& texts, const std::string& byWhom, const LuaModule& module)
    {
        const LuaInterface lua = module.interface();
        const std::shared_ptr<lua_State> pState(lua.open(), lua.close);
        registerParsing(texts, byWhom, [lua, pState, chunk = "return " + texts.luaCondition] {
            return lua.load(pState.get(), chunk.c_str());
        });
    }

    const LuaModule m_lua54;
    const LuaModule m_luajit;
    const std::vector<SampleSeries<int>> m_signedSeries = sampleSeriesAround<int>(0);
    const std::vector<SampleSeries<unsigned int>> m_unsignedSeries = sampleSeriesAround<unsigned int>(3000000100U);
};

void addAll(RuleBenchmarks& benchmarks)
{
    benchmarks.add<RuleKind::VALUE, int, SignedValueByHand>(
        {"value, signed", "expr=signed(value>100)", "value > 100", "value > 100"});
    benchmarks.add<RuleKind::VALUE, unsigned int, UnsignedValueByHand>(
        {"value, unsigned", "expr=unsigned(value>3000000000)", "value > 3000000000", "value > 3000000000"});
    benchmarks.add<RuleKind::VALUE, int, OrByHand>(
        {"or", "expr=signed(value<-500 or value>500)", "value < -500 || value > 500", "value < -500 or value > 500"});
    benchmarks.add<RuleKind::VALUE, int, AndByHand>({"and", "expr=signed(value>=-500 and value<=500)",
                                                     "value >= -500 && value <= 500",
                                                     "value >= -500 and value <= 500"});
    benchmarks.add<RuleKind::DELTA, int, DeltaByHand>(
        {"delta", "expr=signed(delta>250)", "value > 250", "value > 250"});
    benchmarks.add<RuleKind::SINGLE_HYSTERESIS, int, SingleHysteresisByHand>(
        {"single hysteresis", "expr=signed(hyshigh(400,600))", "upper && value > 400 || value > 600",
         "upper and value > 400 or value > 600"});
    benchmarks.add<RuleKind::DOUBLE_HYSTERESIS, int, DoubleHysteresisByHand>(
        {"double hysteresis", "expr=signed(hyshigh(400,600) hyslow(-600,-400))",
         "upper && value > 400 || value > 600, lower && value < -400 || value < -600",
         "upper and value > 400 or value > 600, lower and value < -400 or value < -600"});
}

}  // namespace

int main(int argc, char** argv)
{
    TraceObject traceObject(SERVICE_TRACE_LEVEL);
    g_traceObject = &traceObject;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    try {
        RuleBenchmarks benchmarks;
        addAll(benchmarks);
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        return EXIT_SUCCESS;
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
