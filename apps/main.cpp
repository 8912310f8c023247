// The command 'brantel'. Each group of subcommands adds itself in one line below.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>

#include <syslog.h>

#include <CLI/CLI.hpp>

#include "commands/CardCommands.h"
#include "commands/DbCommands.h"
#include "commands/MonitorCommand.h"
#include "commands/PortsCommands.h"
#include "commands/RuleCommands.h"
#include "common/CommandLine.h"
#include "trace/TraceObject.h"

namespace {

constexpr std::int32_t ERRORS_ONLY = 3;

constexpr const char* EXAMPLES =
    R"(Diagnostics of the library go to syslog. Trace levels: 3 errors, 4 warnings too, 9 everything; 0 nothing.

Examples:
  brantel rule check 'expr=signed(value>100)'
  brantel -v 9 --log-stderr rule check 'expr=signed(value>100)'
  brantel rule eval --help
  brantel card --slot 3 &
  brantel get 3 card.name cpu.busy
  brantel db check
  brantel monitor --journal events.jsonl
  brantel ports --backplane 3)";

// Prints the help, the version or what is wrong with the arguments.
ExitCode answerCommandLine(const CLI::App& app, const CLI::ParseError& answer)
{
    if (app.exit(answer) != 0) {
        return EXIT_UNUSABLE;
    }
    if (!std::cout.flush()) {
        std::cerr << "brantel: cannot write to standard output\n";
        return EXIT_UNUSABLE;
    }
    return EXIT_FINE;
}

ExitCode runCommand(int argc, char** argv)
{
    std::int32_t traceLevel = ERRORS_ONLY;
    bool logsToStandardError = false;
    Invocation invocation;
    invocation.arguments.assign(argv + std::min(argc, 1), argv + argc);

    CLI::App app{"Tools for the services of the brantel library", "brantel"};
    app.footer(EXAMPLES);
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "brantel " BRANTEL_VERSION, "Print the version and exit");
    app.add_option("-v,--trace-level", traceLevel, "How much the library logs (3: errors)")->type_name("N");
    app.add_flag("--log-stderr", logsToStandardError, "Copy diagnostics to standard error");
    addRuleCommands(app, invocation);
    addCardCommands(app, invocation);
    addDbCommands(app, invocation);
    addMonitorCommand(app, invocation);
    addPortsCommands(app, invocation);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& answer) {
        return answerCommandLine(app, answer);
    }

    static TraceObject trace(traceLevel);  // lives as long as anything may log
    g_traceObject = &trace;
    openlog("brantel", LOG_PID | (logsToStandardError ? LOG_PERROR : 0), LOG_USER);
    return invocation.run();
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return runCommand(argc, argv);
    } catch (const std::exception& error) {
        static_cast<void>(std::fflush(stdout));  // in the order in which it happened
        static_cast<void>(std::fprintf(stderr, "brantel: %s\n", error.what()));
        return EXIT_UNUSABLE;
    }
}
