// The command 'brantel'. Each group of subcommands adds itself in one line below.

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>

#include <syslog.h>

#include <CLI/CLI.hpp>

#include "commands/DbCommands.h"
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
  brantel db check
  brantel ports --backplane 3)";

ExitCode runInvocation(const Invocation& invocation)
{
    try {
        return invocation.run();
    } catch (const std::exception& error) {
        std::cerr << "brantel: " << error.what() << '\n';
        return EXIT_UNUSABLE;
    }
}

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

}  // namespace

int main(int argc, char** argv)
{
    std::int32_t traceLevel = ERRORS_ONLY;
    bool logsToStandardError = false;
    Invocation invocation;
    invocation.arguments.assign(argv + 1, argv + argc);

    CLI::App app{"Tools for the services of the brantel library", "brantel"};
    app.footer(EXAMPLES);
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "brantel " BRANTEL_VERSION, "Print the version and exit");
    app.add_option("-v,--trace-level", traceLevel, "How much the library logs (3: errors)")->type_name("N");
    app.add_flag("--log-stderr", logsToStandardError, "Copy diagnostics to standard error");
    addRuleCommands(app, invocation);
    addDbCommands(app, invocation);
    addPortsCommands(app, invocation);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& answer) {
        return answerCommandLine(app, answer);
    }

    TraceObject trace(traceLevel);
    g_traceObject = &trace;
    openlog("brantel", LOG_PID | (logsToStandardError ? LOG_PERROR : 0), LOG_USER);
    const ExitCode exitCode = runInvocation(invocation);
    g_traceObject = nullptr;
    return exitCode;
}
