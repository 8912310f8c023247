#include "commands/PortsCommands.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "commands/Ports.h"
#include "customer/phy_otnCommon.h"

namespace {

constexpr const char* PORTS_EXAMPLES =
    R"(Without --backplane the type is the one that the node publishes; without one, type 0 is assumed, as the library does.

Examples:
  brantel ports
  brantel ports --backplane 3 --svg > backplane.svg)";

constexpr const char* BACKPLANE_EXAMPLES =
    R"(The type stands in shared memory, where another process of the node puts it. On a workstation this command does.

Exit code: 0 done, 1 there is no segment or it names no type, 2 misuse or an unusable segment.

Examples:
  brantel backplane publish 3
  brantel backplane show
  brantel backplane clear)";

CLI::Range backplaneTypes()
{
    return CLI::Range(0U, phy_otnCommon::N_BACKPLANE_TYPES - 1);
}

void addPorts(CLI::App& app, Invocation& invocation)
{
    CLI::App* const ports = app.add_subcommand("ports", "Show which NPU port serves each link of each slot");
    ports->footer(PORTS_EXAMPLES);
    const auto type = std::make_shared<std::optional<std::uint32_t>>();
    const auto isJson = std::make_shared<bool>(false);
    const auto isPicture = std::make_shared<bool>(false);
    ports->add_option("--backplane", *type, "A backplane type instead of the node's")
        ->type_name("N")
        ->check(backplaneTypes());
    CLI::Option* const json = ports->add_flag("--json", *isJson, "As one JSON object");
    ports->add_flag("--svg", *isPicture, "As a picture of the backplane")->excludes(json);
    ports->callback([=, &invocation] {
        const PortsForm textForm = *isJson ? PortsForm::JSON : PortsForm::TABLE;
        const PortsForm form = *isPicture ? PortsForm::PICTURE : textForm;
        invocation.run = [=] { return showPorts(*type, form); };
    });
}

void addBackplane(CLI::App& app, Invocation& invocation)
{
    CLI::App* const backplane = app.add_subcommand("backplane", "Look at and change the node's backplane type");
    backplane->require_subcommand(1);
    backplane->footer(BACKPLANE_EXAMPLES);

    CLI::App* const publish = backplane->add_subcommand("publish", "Create the segment, or change what it says");
    const auto type = std::make_shared<std::uint32_t>();
    publish->add_option("type", *type, "The backplane type")->required()->type_name("N")->check(backplaneTypes());
    publish->callback([=, &invocation] { invocation.run = [=] { return publishBackplane(*type); }; });

    CLI::App* const clear = backplane->add_subcommand("clear", "Remove the segment");
    clear->callback([&invocation] { invocation.run = clearBackplane; });

    CLI::App* const show = backplane->add_subcommand("show", "Say what the segment says");
    const auto isJson = std::make_shared<bool>(false);
    show->add_flag("--json", *isJson, "As one JSON object");
    show->callback([=, &invocation] { invocation.run = [=] { return showBackplane(*isJson); }; });
}

}  // namespace

void addPortsCommands(CLI::App& app, Invocation& invocation)
{
    addPorts(app, invocation);
    addBackplane(app, invocation);
}
