#include "commands/Commands.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "Icsc.h"
#include "common/Message.h"
#include "common/TypedOptions.h"
#include "monitor/MonitorCheck.h"

namespace brantel {
namespace {

constexpr std::uint64_t MOST_CYCLES = 1'000'000'000;
constexpr double SHORTEST_INTERVAL = 0.001;
constexpr double LONGEST_INTERVAL = 86400;

constexpr const char* MONITOR_EXAMPLES =
    R"(Evaluates the rules of the database against the cards of the enabled slots and, for components of the system card,
against the host's counters, until SIGINT or SIGTERM. SIGHUP reopens database and journal; SIGUSR1 prints metrics.
docs/monitor.md describes events, journal and what --state guarantees.

Exit code: 0 stopped on request, 1 --check found refused rows, 2 misuse, or a database, state, journal or output that
cannot be used, or events that could not be recorded.

Examples:
  brantel monitor
  brantel monitor --db events.db --slots 0-3,7 --interval 500ms
  brantel monitor --journal events.jsonl --state monitor.state --metrics monitor.prom
  brantel monitor --check --journal events.jsonl --state monitor.state
  brantel monitor --json --cycles 10)";

// "1", "1s", "500ms"
double parseInterval(const std::string& text)
{
    const std::size_t posUnit = std::min(text.find_first_of("ms"), text.size());
    const std::string unit = text.substr(posUnit);
    const double scale = (unit == "ms") ? 0.001 : 1;
    const bool isKnownUnit = unit.empty() || (unit == "s") || (unit == "ms");
    const std::optional<double> number =
        parseReal(text.substr(0, posUnit), SHORTEST_INTERVAL / scale, LONGEST_INTERVAL / scale);
    if (!isKnownUnit || !number) {
        throw CLI::ValidationError("--interval", "invalid interval " + inQuotes(text) + ": expected 1ms to 86400s");
    }
    return *number * scale;
}

ExitCode monitorNode(const NodeMonitorOptions& options)
{
    MonitorStreams streams(options.isJson);
    try {
        requireDistinctFiles(options);
        NodeMonitor(options, streams).run();
        streams.finishOutput();
        return EXIT_FINE;
    } catch (const std::exception& error) {  // here, because standard error may take nothing
        printFailure(error);
        return EXIT_UNUSABLE;
    }
}

}  // namespace

void addMonitorCommand(CLI::App& app, Invocation& invocation)
{
    CLI::App* const monitor = app.add_subcommand("monitor", "Raise and clear events by the rules of the database");
    monitor->footer(MONITOR_EXAMPLES);
    const auto options = std::make_shared<NodeMonitorOptions>();
    const std::uint32_t lastSlot = icsc::N_SLOTS - 1;
    const std::string allSlots = "0-" + std::to_string(lastSlot);
    options->slots = *parseNumberList(allSlots, 0, lastSlot);
    const auto interval = std::make_shared<std::string>("1s");
    const auto isCheck = std::make_shared<bool>(false);
    options->database = "events.db";
    monitor->add_option("--db", options->database, "File of the database")
        ->type_name("FILE")
        ->envname("BRANTEL_DB")
        ->capture_default_str();
    addNumberListOption(*monitor, "--slots", options->slots, "Slots to serve, of those that are enabled", 0, lastSlot)
        ->default_str(allSlots);
    monitor->add_option("--interval", *interval, "Time from one cycle to the next")
        ->type_name("TIME")
        ->capture_default_str();
    monitor->add_option("--journal", options->journal, "File to append events to")->type_name("FILE");
    monitor->add_option("--state", options->stateFile, "File that keeps samples and states across restarts")
        ->type_name("FILE");
    monitor->add_option("--metrics", options->metricsFile, "File to write metrics to after each cycle")
        ->type_name("FILE");
    addIntegerOption(*monitor, "--cycles", options->cycles, "Number of cycles; default: until a signal", 1, MOST_CYCLES)
        ->type_name("N");
    CLI::Option* const json =
        monitor->add_flag("--json", options->isJson, "Print each event as a JSON object in one line");
    monitor->add_flag("--check", *isCheck, "Check database, state and journal, and print what would be watched")
        ->excludes(json);
    monitor->callback([=, &invocation] {
        options->interval = parseInterval(*interval);
        invocation.run = [=] { return *isCheck ? checkMonitor(*options) : monitorNode(*options); };
    });
}

}  // namespace brantel
