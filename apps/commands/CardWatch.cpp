#include "commands/CardWatch.h"

#include <chrono>
#include <ctime>

#include "cards/CardClient.h"
#include "cards/ReadPlan.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/SlotReading.h"
#include "cards/StopOnSignals.h"
#include "cards/ValueText.h"
#include "common/ResultOutput.h"

using Json = nlohmann::ordered_json;

namespace {

using Clock = std::chrono::steady_clock;

std::string timeNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    return text;
}

class WatchOutput {
public:
    WatchOutput(const CardWatchOptions& options, const ObjectIdContainer& oids) : m_options(options), m_oids(oids) {}

    void tell(const Reading& reading)
    {
        m_options.isJson ? tellJson(reading) : tellRow(reading);
        m_output.finish();
    }

private:
    void tellJson(const Reading& reading)
    {
        Json json = {{"time", timeNow()}, {"slot", m_options.slot}, {"values", Json::object()}};
        for (const std::uint32_t oid : m_oids) {
            const auto value = reading.values.find(oid);
            if (value != reading.values.end()) {
                json["values"][nameOfOid(oid)] = jsonOfValue(value->second);
            } else {
                json["failures"][nameOfOid(oid)] = jsonOfResult(reading.failures.at(oid));
            }
        }
        m_output.writeLine(lineOfJson(json));
    }

    // The first row has the names above it; columns keep their place unless a value is too wide for it.
    void tellRow(const Reading& reading)
    {
        std::vector<std::string> names = {"time"};
        std::vector<std::string> row = {timeNow()};
        for (const std::uint32_t oid : m_oids) {
            constexpr std::size_t LIKELY_WIDTH = 10;
            std::string name = nameOfOid(oid);
            name.append(LIKELY_WIDTH - std::min(LIKELY_WIDTH, name.size()), ' ');
            names.push_back(name);
            const auto value = reading.values.find(oid);
            row.push_back((value != reading.values.end())
                              ? printable(textOfValue(value->second.type, value->second.value))
                              : resultTextOf(reading.failures.at(oid)).name);
        }
        const std::vector<std::string> lines = alignedLines({names, row});
        if (m_isFirst) {
            m_output.writeLine(lines[0]);
            m_isFirst = false;
        }
        m_output.writeLine(lines[1]);
    }

    const CardWatchOptions& m_options;
    const ObjectIdContainer& m_oids;
    ResultOutput m_output;
    bool m_isFirst = true;
};

// Dispatches until `isDone`, the component is stopped or the time has come.
template <typename Condition>
void dispatchUntil(OBcomponent& component, Clock::time_point deadline, Condition isDone)
{
    while (!isDone() && !component.isStopping() && (Clock::now() < deadline)) {
        component.dispatch(std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()));
    }
}

}  // namespace

ExitCode watchObjects(const CardWatchOptions& options)
{
    const ObjectIdContainer oids = oidsOfArguments(options.oids);
    const auto interval = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.interval));
    constexpr std::chrono::hours LONG_ENOUGH{1};  // every request is answered or given up much earlier

    SlotReading reading(options.slot);
    CardClient client(options.slot, reading);
    OBcomponent& component = client.component();
    const StopOnSignals stopOnSignals(component);
    WatchOutput output(options, oids);
    Clock::time_point next = Clock::now();
    for (std::uint64_t number = 1;; ++number) {
        reading.start(requestsFor(oids));
        dispatchUntil(component, Clock::now() + LONG_ENOUGH, [&] { return reading.isComplete(); });
        if (reading.isComplete()) {
            output.tell(reading.reading());
        }
        if ((number == options.count) || component.isStopping()) {
            break;
        }
        next = std::max(next + interval, Clock::now());
        dispatchUntil(component, next, [] { return false; });
        if (component.isStopping()) {
            break;
        }
    }
    return reading.reading().failures.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}
