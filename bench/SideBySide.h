#ifndef BENCH_SIDE_BY_SIDE_H
#define BENCH_SIDE_BY_SIDE_H

// Times an operation next to the bare calls that it must make. The two alternate in short batches, so that other load
// on the machine affects both alike; the times are medians.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <vector>

struct SideBySide {
    double ns;      ///< of the operation
    double bareNs;  ///< of the bare calls

    double ratio() const { return ns / bareNs; }
};

template <typename Call>
double nanosecondsPerCall(int calls, const Call& call)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i) {
        call();
    }
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count() / calls;
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Operation, typename Bare>
SideBySide measureSideBySide(int batches, int callsPerBatch, const Operation& operation, const Bare& bare)
{
    std::vector<double> times;
    std::vector<double> bareTimes;
    for (int batch = 0; batch < batches; ++batch) {
        bareTimes.push_back(nanosecondsPerCall(callsPerBatch, bare));
        times.push_back(nanosecondsPerCall(callsPerBatch, operation));
    }
    return {median(times), median(bareTimes)};
}

/// One line of JSON, which bench/tables.jq reads.
inline void printSideBySide(const char* name, const SideBySide& result)
{
    std::printf(R"({"name": "%s", "ns": %.0f, "bareNs": %.0f, "ratio": %.3f})"
                "\n",
                name, result.ns, result.bareNs, result.ratio());
}

#endif
