#include "commands/Commands.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "commands/Ports.h"
#include "common/TypedOptions.h"
#include "customer/phy_otnCommon.h"

namespace brantel {
namespace {

constexpr const char* PORTS_EXAMPLES =
    R"(Without --backplane the type is the one that the node publishes; if it publishes none, type 0 is assumed, as in the
library.

Exit code: 0 success, 2 misuse.

Examples:
  brantel ports
  brantel ports --backplane 3 --svg > backplane.svg)";

constexpr const char* BACKPLANE_EXAMPLES =
    R"(The type is in shared memory. On the node another process publishes it, on a workstation this command.

Exit code: 0 success, 1 there is no segment or it names no type, 2 misuse or an unusable segment.

Examples:
  brantel backplane publish 3
  brantel backplane show
  brantel backplane clear)";

constexpr std::uint32_t LAST_TYPE = phy_otnCommon::N_BACKPLANE_TYPES - 1;

void addPorts(CLI::App& app, Invocation& invocation)
{
    CLI::App* const ports = app.add_subcommand("ports", "Show which NPU port serves each link of each slot");
    ports->footer(PORTS_EXAMPLES);
    const auto type = std::make_shared<std::optional<std::uint32_t>>();
    const auto isJson = std::make_shared<bool>(false);
    const auto isPicture = std::make_shared<bool>(false);
    addIntegerOption(*ports, "--backplane", *type, "A backplane type (default: the node's)", 0, LAST_TYPE)
        ->type_name("N");
    CLI::Option* const json = ports->add_flag("--json", *isJson, "Print one JSON object");
    ports->add_flag("--svg", *isPicture, "Print a picture of the backplane")->excludes(json);
    ports->callback([=, &invocation] {
        const PortsForm textForm = *isJson ? PortsForm::JSON : PortsForm::TABLE;
        const PortsForm form = *isPicture ? PortsForm::PICTURE : textForm;
        invocation.run = [=] { return showPorts(*type, form); };
    });
}

void addBackplane(CLI::App& app, Invocation& invocation)
{
    CLI::App* const backplane = app.add_subcommand("backplane", "Show and change the node's backplane type");
    backplane->require_subcommand(1);
    backplane->footer(BACKPLANE_EXAMPLES);

    CLI::App* const publish = backplane->add_subcommand("publish", "Create the segment, or change its type");
    const auto type = std::make_shared<std::uint32_t>();
    addIntegerOption(*publish, "N", *type, "The backplane type", 0, LAST_TYPE)->required()->type_name("");
    publish->callback([=, &invocation] { invocation.run = [=] { return publishBackplane(*type); }; });

    CLI::App* const clear = backplane->add_subcommand("clear", "Remove the segment");
    clear->callback([&invocation] { invocation.run = clearBackplane; });

    CLI::App* const show = backplane->add_subcommand("show", "Show the content of the segment");
    const auto isJson = std::make_shared<bool>(false);
    show->add_flag("--json", *isJson, "Print one JSON object");
    show->callback([=, &invocation] { invocation.run = [=] { return showBackplane(*isJson); }; });
}

}  // namespace

void addPortsCommands(CLI::App& app, Invocation& invocation)
{
    addPorts(app, invocation);
    addBackplane(app, invocation);
}

}  // namespace brantel
