// Measures how long rules take on a whole series of samples: the library, a loop written by hand, a loop compiled by
// LuaJIT, and, as the limit, the sum of the samples. Each counts the samples that find the rule raised; before anything
// is measured, the counts are compared.
//
// The benchmarks are named <length>/<rule>/<by whom>; bench/tables.jq makes the tables of docs/performance.md from
// them.

#include <cstdlib>
#include <functional>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "EventMgmtCompiledRules.h"
#include "EventMgmtRulesParsing.h"
#include "HandWrittenSeries.h"
#include "LuaSeries.h"

namespace {

using Count = std::function<std::uint64_t(const int*, std::size_t)>;
using Samples = std::vector<int>;

vemorRules::CompiledRule compiled(const std::string& text)
{
    vemorRules::RuleObject rule;
    if (!vemorRules::parseRule(text, &rule)) {
        throw std::runtime_error("Not a rule: " + text);
    }
    return vemorRules::compileRule<int>(rule).value();
}

std::uint64_t raisedSamples(const vemorRules::SeriesCounts& counts)
{
    return counts.raised.raisedSamples + counts.lowerRaised.raisedSamples;
}

Count countByLibrary(const std::string& text)
{
    return [rule = compiled(text)](const int* pSamples, std::size_t n) {
        vemorRules::RuleState state;
        vemorRules::SeriesCounts counts;
        vemorRules::checkSeries(rule, pSamples, n, state, {nullptr, nullptr, &counts});
        return raisedSamples(counts);
    };
}

/// Rules of every kind, each with its thresholds, in one pass.
Count countByManyRules(std::size_t nRules)
{
    std::vector<vemorRules::CompiledRule> rules;
    while (rules.size() < nRules) {
        const int shift = static_cast<int>(rules.size());
        const auto number = [shift](int threshold) { return std::to_string(threshold + shift); };
        rules.push_back(compiled("expr=signed(value>" + number(100) + ")"));
        rules.push_back(compiled("expr=signed(delta>" + number(250) + ")"));
        rules.push_back(compiled("expr=signed(hyshigh(" + number(400) + "," + number(600) + "))"));
        rules.push_back(compiled("expr=signed(value<" + number(-500) + " or value>" + number(500) + ")"));
    }
    return [rules](const int* pSamples, std::size_t n) {
        std::vector<vemorRules::RuleState> states(rules.size());
        vemorRules::SeriesCounts counts;
        const std::vector<vemorRules::SeriesOutput> outputs(rules.size(), {nullptr, nullptr, &counts});
        vemorRules::checkSeries(rules.data(), rules.size(), pSamples, n, states.data(), outputs.data());
        return raisedSamples(counts);
    };
}

struct Rule {
    std::string name;
    std::string text;
    Count byHand;
    std::string luaBody;
};

std::vector<Rule> allRules()
{
    return {
        {"value", "expr=signed(value>100)", valueByHand, "if value > 100 then count = count + 1 end"},
        {"or", "expr=signed(value<-500 or value>500)", orByHand,
         "if value < -500 or value > 500 then count = count + 1 end"},
        {"and", "expr=signed(value>=-500 and value<=500)", andByHand,
         "if value >= -500 and value <= 500 then count = count + 1 end"},
        {"delta", "expr=signed(delta>250)", deltaByHand,
         "if math.abs(value - previous) > 250 then count = count + 1 end"},
        {"single hysteresis", "expr=signed(hyshigh(400,600))", singleHysteresisByHand,
         "upper = upper and value > 400 or value > 600; if upper then count = count + 1 end"},
        {"double hysteresis", "expr=signed(hyshigh(400,600) hyslow(-600,-400))", doubleHysteresisByHand,
         "upper = upper and value > 400 or value > 600; if upper then count = count + 1 end; "
         "lower = lower and value < -400 or value < -600; if lower then count = count + 1 end"},
    };
}

void add(const std::string& name, const Count& count, const Samples& samples)
{
    benchmark::RegisterBenchmark(name.c_str(), [count, &samples](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(count(samples.data(), samples.size()));
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(samples.size()));
    });
}

void addSeries(const std::string& length, const Samples& samples)
{
    for (const Rule& rule : allRules()) {
        const std::uint64_t expected = rule.byHand(samples.data(), samples.size());
        const auto addRule = [&](const std::string& byWhom, const Count& count) {
            if (count(samples.data(), samples.size()) != expected) {
                throw std::runtime_error(byWhom + " disagrees on " + rule.text);
            }
            add(length + "/" + rule.name + "/" + byWhom, count, samples);
        };
        addRule("library", countByLibrary(rule.text));
        addRule("hand-written", rule.byHand);
        addRule("luajit", LuaSeries(rule.luaBody));
        add(length + "/" + rule.name + "/sum", sumOf, samples);
    }
    add(length + "/64 rules/library", countByManyRules(64), samples);
    add(length + "/64 rules/sum", sumOf, samples);
}

/// Evenly spread over -1000 to 1000, the same in every run: verdicts that change often and unpredictably.
Samples pseudoRandomSamples(std::size_t n)
{
    std::mt19937 generator;  // NOLINT: the same samples in every run
    Samples samples(n);
    for (int& sample : samples) {
        sample = static_cast<int>(generator() % 2001) - 1000;
    }
    return samples;
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    try {
        const Samples shortSeries = pseudoRandomSamples(4096);
        const Samples longSeries = pseudoRandomSamples(16 * 1024 * 1024);
        addSeries("4096 samples", shortSeries);
        addSeries("16777216 samples", longSeries);
        benchmark::RunSpecifiedBenchmarks();
        benchmark::ClearRegisteredBenchmarks();
        benchmark::Shutdown();
        return EXIT_SUCCESS;
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
