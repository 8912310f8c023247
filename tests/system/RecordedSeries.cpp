#include "system/RecordedSeries.h"

#include <cstdlib>
#include <functional>
#include <random>
#include <sstream>
#include <tuple>

namespace brantel {
namespace {

constexpr std::int64_t LARGEST_INT = 2147483647;
constexpr std::int64_t SMALLEST_INT = -2147483648LL;
constexpr std::int64_t LARGEST_UNSIGNED = 4294967295LL;

// Whether a condition holds after a sample, from whether it held before.
using Decision = std::function<bool(bool before, std::int64_t previous, std::int64_t sample)>;

struct Condition {
    std::string name;
    Decision decide;
    bool needsPrevious = false;
};

struct RuleKind {
    std::string text;
    bool isUnsigned;
    std::int64_t centre;  ///< of the samples
    std::vector<Condition> conditions;
};

Decision above(std::int64_t low, std::int64_t high)
{
    return [=](bool before, std::int64_t, std::int64_t sample) { return before ? sample > low : sample > high; };
}

Decision below(std::int64_t low, std::int64_t high)
{
    return [=](bool before, std::int64_t, std::int64_t sample) { return before ? sample < high : sample < low; };
}

Decision ofSample(const std::function<bool(std::int64_t)>& holds)
{
    return [=](bool, std::int64_t, std::int64_t sample) { return holds(sample); };
}

Decision ofChange(const std::function<bool(std::int64_t)>& holds, std::int64_t largest)
{
    return [=](bool, std::int64_t previous, std::int64_t sample) {
        const std::int64_t change = std::llabs(sample - previous);
        return (change <= largest) && holds(change);
    };
}

RuleKind kindOf(std::size_t index)
{
    using N = std::int64_t;
    switch (index % 12) {
        case 0: return {"expr=signed(value>90)", false, 90, {{"", ofSample([](N x) { return x > 90; })}}};
        case 1:
            return {"expr = unsigned( value <= 3000000000 )", true, 3000000000LL, {{"", ofSample([](N x) {
                                                                                        return x <= 3000000000LL;
                                                                                    })}}};
        case 2:
            return {
                "expr=signed(delta>12)", false, -50, {{"", ofChange([](N x) { return x > 12; }, LARGEST_INT), true}}};
        case 3:
            return {"expr=unsigned(delta<5)",
                    true,
                    2147483648LL,
                    {{"", ofChange([](N x) { return x < 5; }, LARGEST_UNSIGNED), true}}};
        case 4: return {"expr=signed(hyshigh(-5,5))", false, 0, {{"", above(-5, 5)}}};
        case 5:
            return {"expr=unsigned(hyslow(4000000010,4000000000))",
                    true,
                    4000000005LL,
                    {{"", below(4000000000LL, 4000000010LL)}}};
        case 6:
            return {"expr=signed(hyshigh(10,20) hyslow(-20,-10))",
                    false,
                    0,
                    {{"upper", above(10, 20)}, {"lower", below(-20, -10)}}};
        case 7:
            return {"expr=unsigned(hyslow(100,110)hyshigh(120,130))",
                    true,
                    115,
                    {{"upper", above(120, 130)}, {"lower", below(100, 110)}}};
        case 8:
            return {"expr=signed(value>-10 and value<10)", false, 0, {{"", ofSample([](N x) {
                                                                           return (x > -10) && (x < 10);
                                                                       })}}};
        case 9:
            return {"expr=unsigned(value<100 or value>=120)", true, 110, {{"", ofSample([](N x) {
                                                                               return (x < 100) || (x >= 120);
                                                                           })}}};
        case 10:
            return {"expr=signed(delta==0 or delta>20)",
                    false,
                    7,
                    {{"", ofChange([](N x) { return (x == 0) || (x > 20); }, LARGEST_INT), true}}};
        default: return {"expr=unsigned(value!=50)", true, 50, {{"", ofSample([](N x) { return x != 50; })}}};
    }
}

// A walk around the centre, that now and then jumps to the ends of the range.
std::vector<std::int64_t> makeSamples(const RuleKind& kind, std::size_t seed, std::size_t nSamples)
{
    std::mt19937_64 random(seed);  // whose numbers are the same everywhere
    const std::int64_t lowest = kind.isUnsigned ? 0 : SMALLEST_INT;
    const std::int64_t highest = kind.isUnsigned ? LARGEST_UNSIGNED : LARGEST_INT;
    std::vector<std::int64_t> samples;
    std::int64_t walk = 0;
    while (samples.size() + 1 < nSamples) {
        const std::uint64_t dice = random() % 100;
        if (dice < 2) {
            samples.push_back((dice == 0) ? lowest : highest);
            continue;
        }
        if (dice >= 20) {
            walk += static_cast<std::int64_t>(random() % 19) - 9 - walk / 8;
        }
        samples.push_back(std::min(std::max(kind.centre + walk, lowest), highest));
    }
    samples.push_back(samples.back());
    return samples;
}

std::vector<SeriesEvent> eventsOf(const RuleKind& kind, const std::vector<std::int64_t>& samples)
{
    std::vector<SeriesEvent> events;
    std::vector<bool> states(kind.conditions.size(), false);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::int64_t previous = samples[(i == 0) ? 0 : i - 1];
        for (std::size_t c = 0; c < states.size(); ++c) {
            const Condition& condition = kind.conditions[c];
            const bool before = states[c];
            if ((i > 0) || !condition.needsPrevious) {
                states[c] = condition.decide(before, previous, samples[i]);
            }
            if (states[c] != before) {
                events.push_back({i + 1, condition.name, states[c], samples[i], previous});
            }
        }
    }
    return events;
}

}  // namespace

bool operator==(const SeriesEvent& one, const SeriesEvent& other)
{
    return std::tie(one.condition, one.isRaised, one.value, one.previous) ==
           std::tie(other.condition, other.isRaised, other.value, other.previous);
}

std::ostream& operator<<(std::ostream& stream, const SeriesEvent& event)
{
    return stream << event.condition << (event.isRaised ? " raised" : " cleared") << " at " << event.value << " after "
                  << event.previous;
}

RecordedSeries makeSeries(std::size_t index, std::size_t nSamples)
{
    const RuleKind kind = kindOf(index);
    const std::vector<std::int64_t> samples = makeSamples(kind, index + 1, nSamples);
    return {kind.text, samples, eventsOf(kind, samples)};
}

std::string csvOf(const std::vector<RecordedSeries>& series, const std::string& firstColumn)
{
    std::ostringstream csv;
    const std::string separator = ",";
    csv << firstColumn;
    for (std::size_t i = 0; i < series.size(); ++i) {
        csv << (((i == 0) && firstColumn.empty()) ? "" : separator) << "series" << i;
    }
    csv << '\n';
    for (std::size_t row = 0; row < series.front().samples.size(); ++row) {
        if (!firstColumn.empty()) {
            csv << row + 1;
        }
        for (std::size_t i = 0; i < series.size(); ++i) {
            csv << (((i == 0) && firstColumn.empty()) ? "" : separator) << series[i].samples[row];
        }
        csv << '\n';
    }
    return csv.str();
}

}  // namespace brantel
