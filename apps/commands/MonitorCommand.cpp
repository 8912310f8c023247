#include "commands/MonitorCommand.h"

#include <charconv>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "monitor/NodeMonitor.h"

namespace {

constexpr std::uint32_t LAST_SLOT = 9;
constexpr double SHORTEST_INTERVAL = 0.001;
constexpr double LONGEST_INTERVAL = 86400;

constexpr const char* MONITOR_EXAMPLES =
    R"(Follows the rules of the database on the cards of the enabled slots and, for components of the system card, on the
host's own counters, until SIGINT or SIGTERM. SIGHUP reads the database again and opens the journal again; SIGUSR1
prints figures. docs/monitor.md tells the events, the journal and what --state guarantees.

Exit code: 0 ended as told, 2 misuse, or a database, state or journal that cannot be used.

Examples:
  brantel monitor
  brantel monitor --db events.db --slots 0-3,7 --interval 500ms
  brantel monitor --journal events.jsonl --state monitor.state --metrics monitor.prom
  brantel monitor --json --cycles 10)";

std::optional<std::uint32_t> slotOf(const std::string& text)
{
    std::uint32_t slot = 0;
    const char* const pEnd = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), pEnd, slot);
    const bool isSlot = (result.ec == std::errc()) && (result.ptr == pEnd) && (slot <= LAST_SLOT);
    return isSlot ? std::optional(slot) : std::nullopt;
}

// "0-3,7"
std::set<std::uint32_t> slotsOf(const std::string& text)
{
    std::set<std::uint32_t> slots;
    for (const std::string& part : CLI::detail::split(text, ',')) {
        const std::size_t posDash = std::min(part.find('-'), part.size());
        const std::optional<std::uint32_t> first = slotOf(part.substr(0, posDash));
        const std::optional<std::uint32_t> last = (posDash == part.size()) ? first : slotOf(part.substr(posDash + 1));
        if (!first || !last || (*first > *last)) {
            throw CLI::ValidationError("--slots", "'" + part + "' is neither a slot, 0 to 9, nor a range of slots");
        }
        for (std::uint32_t slot = *first; slot <= *last; ++slot) {
            slots.insert(slot);
        }
    }
    return slots;
}

// "1", "1s", "500ms"
double secondsOf(const std::string& text)
{
    const char* const pBegin = text.c_str();
    char* pEnd = nullptr;
    const double number = std::strtod(pBegin, &pEnd);
    const std::string unit = pEnd;
    const double seconds = number * ((unit == "ms") ? 0.001 : 1);
    const bool isKnownUnit = unit.empty() || (unit == "s") || (unit == "ms");
    if (!isKnownUnit || !(seconds >= SHORTEST_INTERVAL) || !(seconds <= LONGEST_INTERVAL)) {
        throw CLI::ValidationError("--interval", "'" + text + "' is no time from 1ms to 86400s");
    }
    return seconds;
}

ExitCode monitorNode(const NodeMonitorOptions& options)
{
    NodeMonitor(options).run();
    return EXIT_FINE;
}

}  // namespace

void addMonitorCommand(CLI::App& app, Invocation& invocation)
{
    CLI::App* const monitor = app.add_subcommand("monitor", "Raise and clear events by the rules of the database");
    monitor->footer(MONITOR_EXAMPLES);
    const auto options = std::make_shared<NodeMonitorOptions>();
    const auto slots = std::make_shared<std::string>("0-9");
    const auto interval = std::make_shared<std::string>("1s");
    options->database = "events.db";
    monitor->add_option("--db", options->database, "File of the database")
        ->type_name("FILE")
        ->envname("BRANTEL_DB")
        ->capture_default_str();
    monitor->add_option("--slots", *slots, "Slots to serve, of those that are enabled")
        ->type_name("LIST")
        ->capture_default_str();
    monitor->add_option("--interval", *interval, "Time from one cycle to the next")
        ->type_name("TIME")
        ->capture_default_str();
    monitor->add_option("--journal", options->journal, "File to append events to")->type_name("FILE");
    monitor->add_option("--state", options->stateFile, "File to keep samples and states in over a restart")
        ->type_name("FILE");
    monitor->add_option("--metrics", options->metricsFile, "File to write figures to after each cycle")
        ->type_name("FILE");
    monitor->add_option("--cycles", options->cycles, "End after so many cycles")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    monitor->add_flag("--json", options->isJson, "Print each event as a JSON object in one line");
    monitor->callback([=, &invocation] {
        options->slots = slotsOf(*slots);
        options->interval = secondsOf(*interval);
        invocation.run = [=] { return monitorNode(*options); };
    });
}
