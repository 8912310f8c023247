#include "commands/CardWatch.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "cards/AsyncReader.h"
#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "commands/CardJson.h"
#include "common/JsonLine.h"
#include "common/Message.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "common/Signals.h"
#include "common/UtcTime.h"
#include "message/OBresult.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

using Clock = std::chrono::steady_clock;

// Dispatches until `isDone`, the component is stopped or the time has come.
template <typename Condition>
void dispatchUntil(OBcomponent& component, Clock::time_point deadline, Condition isDone)
{
    while (!isDone() && !component.isStopping() && (Clock::now() < deadline)) {
        component.dispatch(std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()));
    }
}

// The slot that is watched, with asynchronous calls, one reading after the other.
class WatchedSlot {
public:
    WatchedSlot(std::uint32_t slot, const ObjectIdContainer& oids)
        : m_slot(slot), m_oids(oids), m_client(slot, m_reader)
    {
    }

    OBcomponent& component() { return m_client.component(); }

    /// Nothing if the component is stopped before the reading is complete.
    std::optional<Reading> read()
    {
        constexpr std::chrono::hours LONG_ENOUGH{1};  // every request is answered or given up much earlier
        ReadPlan plan(m_slot, m_oids);
        if (!m_client.isConnected() && !m_client.mayBeServed(std::exchange(m_patience, {}))) {
            plan.takeNoAnswer(NOT_SERVED);
            return plan.reading();
        }
        m_reader.start(plan);
        dispatchUntil(component(), Clock::now() + LONG_ENOUGH, [&] { return m_reader.isDone(); });
        return m_reader.isDone() ? std::optional(completeReading()) : std::nullopt;
    }

    /// Why the card is not there, as far as that is known.
    std::string obstacle() const { return m_client.obstacle(); }

private:
    // Without a connection the timeout is not the card's.
    Reading completeReading() const
    {
        Reading reading = m_reader.reading();
        for (auto& [oid, outcome] : reading.failures) {
            if ((outcome == obResult::TIMEOUT) && !m_client.isConnected()) {
                outcome = NO_ANSWER;
            }
        }
        return reading;
    }

    const std::uint32_t m_slot;
    const ObjectIdContainer& m_oids;
    AsyncReader m_reader{[this](const ObjectIdContainer& request) { return m_client.startReading(request); }};
    CardClient m_client;
    std::chrono::milliseconds m_patience = CardClient::STARTING_TIME;  ///< with the first reading only
};

// Reports why the card is not there, when the reason changes.
class Obstacle {
public:
    explicit Obstacle(std::uint32_t slot) : m_slot(slot) {}

    void set(const std::string& reason)
    {
        if (!reason.empty() && (reason != m_reason)) {
            printMessage("slot " + std::to_string(m_slot) + ": " + reason);
        }
        m_reason = reason;
    }

private:
    const std::uint32_t m_slot;
    std::string m_reason;
};

class WatchOutput {
public:
    WatchOutput(const CardWatchOptions& options, const ObjectIdContainer& oids) : m_options(options), m_oids(oids) {}

    void print(const Reading& reading)
    {
        m_options.isJson ? printJson(reading) : printRow(reading);
        m_output.finish();
    }

private:
    void printJson(const Reading& reading)
    {
        Json json = {{"time", utcTimeText(utcTimeNow())}, {"slot", m_options.slot}, {"values", Json::object()}};
        for (const std::uint32_t oid : m_oids) {
            const auto value = reading.values.find(oid);
            if (value != reading.values.end()) {
                json["values"][objectName(oid)] = valueJson(value->second);
            } else {
                json["failures"][objectName(oid)] = failureJson(reading.failures.at(oid));
            }
        }
        m_output.writeLine(jsonLine(json));
    }

    void printRow(const Reading& reading)
    {
        std::vector<std::string> names = {"Time"};
        std::vector<std::string> texts = {utcTimeText(utcTimeNow())};
        for (const std::uint32_t oid : m_oids) {
            const auto value = reading.values.find(oid);
            names.push_back(objectName(oid));
            texts.push_back((value != reading.values.end())
                                ? printable(valueText(value->second.type, value->second.value))
                                : resultWords(reading.failures.at(oid)).name);
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

}  // namespace

ExitCode watchObjects(const CardWatchOptions& options)
{
    const ObjectIdContainer oids = requireOids(options.oids);
    const auto interval = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.interval));

    WatchedSlot slot(options.slot, oids);
    const StopOnSignals stopOnSignals([&] { slot.component().stop(); });
    WatchOutput output(options, oids);
    ExitCode exitCode = EXIT_NEGATIVE_ANSWER;
    Obstacle obstacle(options.slot);
    Clock::time_point next = Clock::now();
    for (std::uint64_t number = 1;; ++number) {
        if (const std::optional<Reading> reading = slot.read()) {
            output.print(*reading);
            exitCode = reading->failures.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
            obstacle.set(slot.obstacle());
        }
        if (number == options.count) {
            break;
        }
        next = std::max(next + interval, Clock::now());
        dispatchUntil(slot.component(), next, [] { return false; });
        if (slot.component().isStopping()) {
            break;
        }
    }
    return exitCode;
}

}  // namespace brantel
