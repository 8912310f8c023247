// The command 'brantel'.

#include <algorithm>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include <syslog.h>

#include <CLI/CLI.hpp>

#include "BrantelVersion.h"
#include "commands/Commands.h"
#include "commands/Usage.h"
#include "common/CommandLine.h"
#include "common/Message.h"
#include "common/ResultOutput.h"
#include "common/StandardStreams.h"
#include "common/TypedOptions.h"
#include "trace/TraceObject.h"

namespace brantel {
namespace {

constexpr std::int32_t ERRORS_ONLY = 3;
constexpr std::int32_t HIGHEST_TRACE_LEVEL = 9;

constexpr const char* EXAMPLES =
    R"(The library logs to syslog. Trace levels: 0 nothing, 3 errors, 4 also warnings, 9 everything.

Examples:
  brantel rule check 'expr=signed(value>100)'
  brantel -v 9 --log-stderr rule check 'expr=signed(value>100)'
  brantel rule eval --help
  brantel card --slot 3 &
  brantel get 3 card.name cpu.busy
  brantel db check
  brantel monitor --journal events.jsonl
  brantel ports --backplane 3)";

ExitCode print(const std::string& text)
{
    ResultOutput output;
    output.writeText(text);
    output.finish();
    return EXIT_FINE;
}

ExitCode refuseArguments(const std::string& reason)
{
    printMessage(reason);
    printDetail("Run with --help for more information.");
    return EXIT_UNUSABLE;
}

ExitCode runCommand(int argc, char** argv)
{
    std::int32_t traceLevel = ERRORS_ONLY;
    bool logsToStandardError = false;
    Invocation invocation;
    invocation.arguments.assign(argv + std::min(argc, 1), argv + argc);

    CLI::App app{"Event rules, interface cards, event tables and data ports of a network element", "brantel"};
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(EXAMPLES);
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", std::string("brantel ") + brantelVersion(), "Print the version and exit");
    addIntegerOption(app, "-v,--trace-level", traceLevel, "How much the library logs (default: 3, errors)", 0,
                     HIGHEST_TRACE_LEVEL)
        ->type_name("N");
    app.add_flag("--log-stderr", logsToStandardError, "Copy what is logged to standard error");
    addRuleCommands(app, invocation);
    addCardCommands(app, invocation);
    addDbCommands(app, invocation);
    addMonitorCommand(app, invocation);
    addPortsCommands(app, invocation);
    refuseMissingValues(app);
    try {
        refuseEmptyAssignments(invocation.arguments);
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return print(app.help());
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        return refuseArguments(explainMisuse(app, invocation.arguments, error));
    }

    static TraceObject trace(traceLevel);  // lives as long as anything may log
    g_traceObject = &trace;
    openlog("brantel", LOG_PID | (logsToStandardError ? LOG_PERROR : 0), LOG_USER);
    return invocation.run();
}

}  // namespace
}  // namespace brantel

int main(int argc, char** argv)
{
    try {
        brantel::occupyClosedStandardStreams();
        return brantel::runCommand(argc, argv);
    } catch (const std::exception& error) {
        brantel::printFailure(error);
        return brantel::EXIT_UNUSABLE;
    }
}
