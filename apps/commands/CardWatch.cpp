#include "commands/CardWatch.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <sstream>

#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/StopOnSignals.h"
#include "cards/ValueText.h"
#include "common/ResultOutput.h"
#include "icsc/OBappsToICSC_1_0_PR.h"

using Json = nlohmann::ordered_json;

namespace {

using Clock = std::chrono::steady_clock;

// Local time, as in 2026-11-21T09:01:49.250
std::string timeNow()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local = {};
    localtime_r(&now.tv_sec, &local);
    std::ostringstream text;
    text << std::put_time(&local, "%Y-%m-%dT%H:%M:%S.") << std::setw(3) << std::setfill('0') << now.tv_nsec / 1000000;
    return text.str();
}

// Reads with asynchronous calls, one reading after the other. Requests of a reading go out one after the other, so that
// an answer belongs to the request that went out last: each request is answered exactly once.
class AsynchronousReader : private OBappsToICSC_1_0_PR {
public:
    AsynchronousReader(std::uint32_t slot, const ObjectIdContainer& oids)
        : m_slot(slot), m_oids(oids), m_plan(slot, oids), m_client(slot, *this)
    {
    }

    OBcomponent& component() { return m_client.component(); }

    void start()
    {
        m_plan = ReadPlan(m_slot, m_oids);
        askNext();
    }

    bool isComplete() const { return m_plan.isDone(); }

    /// Of the last reading that was completed or is under way.
    const Reading& reading() const { return m_plan.reading(); }

private:
    void askNext()
    {
        if (!m_plan.isDone() && !m_client.startReading(m_plan.request())) {
            m_plan.takeNoAnswer();
        }
    }

    void ICSCReadReply(const OBmessage&, const buffer_t& tlvs, int result) override
    {
        m_plan.takeAnswer(result, tlvs);
        askNext();
    }

    const std::uint32_t m_slot;
    const ObjectIdContainer& m_oids;
    ReadPlan m_plan;
    CardClient m_client;
};

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

    void tellRow(const Reading& reading)
    {
        std::vector<std::string> names = {"Time"};
        std::vector<std::string> texts = {timeNow()};
        for (const std::uint32_t oid : m_oids) {
            const auto value = reading.values.find(oid);
            names.push_back(nameOfOid(oid));
            texts.push_back((value != reading.values.end())
                                ? printable(textOfValue(value->second.type, value->second.value))
                                : resultTextOf(reading.failures.at(oid)).name);
        }
        if (m_widths.empty()) {
            m_widths.assign(names.size(), NARROWEST_COLUMN);
            m_output.writeLine(lineOf(names, texts));
        }
        m_output.writeLine(lineOf(texts, names));
    }

    // Rows come one by one, so a column is as wide as `texts` and `others`, the widest that was known before.
    std::string lineOf(const std::vector<std::string>& texts, const std::vector<std::string>& others)
    {
        std::string line;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::size_t width = characterCount(texts[i], texts[i].size());
            m_widths[i] = std::max({m_widths[i], width, characterCount(others[i], others[i].size())});
            line += texts[i] + std::string(m_widths[i] - width + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    }

    static constexpr std::size_t NARROWEST_COLUMN = 8;

    const CardWatchOptions& m_options;
    const ObjectIdContainer& m_oids;
    ResultOutput m_output;
    std::vector<std::size_t> m_widths;
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

    AsynchronousReader reader(options.slot, oids);
    const StopOnSignals stopOnSignals(reader.component());
    WatchOutput output(options, oids);
    Clock::time_point next = Clock::now();
    for (std::uint64_t number = 1;; ++number) {
        reader.start();
        dispatchUntil(reader.component(), Clock::now() + LONG_ENOUGH, [&] { return reader.isComplete(); });
        if (reader.isComplete()) {
            output.tell(reader.reading());
        }
        if (number == options.count) {
            break;
        }
        next = std::max(next + interval, Clock::now());
        dispatchUntil(reader.component(), next, [] { return false; });
        if (reader.component().isStopping()) {
            break;
        }
    }
    return reader.reading().failures.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}
