#include "commands/Ports.h"

#include <nlohmann/json.hpp>

#include "NpuDataPortsConfiguration.h"
#include "backplane/BackplanePicture.h"
#include "backplane/BackplanePorts.h"
#include "backplane/BackplaneSegment.h"
#include "common/JsonLine.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

// A backplane, and how it became the one to show.
struct ChosenBackplane {
    std::uint32_t type;
    std::string source;       ///< a word for programs
    std::string explanation;  ///< the same for people
    std::string reason;       ///< why the segment is unusable, if it is
};

std::string segmentStateText(const BackplaneSegment& segment)
{
    switch (segment.state) {
        case BackplaneSegment::State::NONE: return "none";
        case BackplaneSegment::State::UNUSABLE: return "unusable";
        case BackplaneSegment::State::NOT_YET_VALID: return "not yet valid";
        case BackplaneSegment::State::UNKNOWN_TYPE: return "unknown type";
        case BackplaneSegment::State::VALID: break;
    }
    return "segment";
}

ChosenBackplane chooseBackplane(std::optional<std::uint32_t> wantedType)
{
    if (wantedType) {
        return {*wantedType, "option", "as requested", ""};
    }
    const BackplaneSegment segment = readBackplaneSegment();
    if (segment.type()) {
        return {*segment.type(), segmentStateText(segment), "read from the segment", ""};
    }
    return {0, segmentStateText(segment), "assumed: " + segmentText(segment), segment.reason};
}

std::string titleText(const ChosenBackplane& backplane)
{
    return "Backplane type " + std::to_string(backplane.type) + ", " + backplane.explanation;
}

void writeTable(ResultOutput& output, const ChosenBackplane& backplane, const BackplanePorts& ports)
{
    output.writeLine(titleText(backplane));
    TextTable table({{"Slot", Alignment::RIGHT},
                     {"Link", Alignment::RIGHT},
                     {"NPU port", Alignment::RIGHT},
                     {"Max bandwidth", Alignment::RIGHT},
                     {"DCN VLAN", Alignment::RIGHT}});
    for (std::size_t slot = 0; slot < ports.size(); ++slot) {
        if (ports[slot].empty()) {
            table.addRow({std::to_string(slot), "-", "-", "-", "-"});
        }
        for (std::size_t link = 0; link < ports[slot].size(); ++link) {
            const BackplaneLink& port = ports[slot][link];
            const auto valueText = [&](std::uint32_t value) { return port ? std::to_string(value) : "-"; };
            const LinkPort values = port.value_or(LinkPort{});
            table.addRow({std::to_string(slot), std::to_string(link), valueText(values.npuPort),
                          valueText(values.maxBandwidth), valueText(values.dcnVlan)});
        }
    }
    table.write(output);
}

Json portsJson(const ChosenBackplane& backplane, const BackplanePorts& ports)
{
    Json json;
    json["backplane_type"] = backplane.type;
    json["source"] = backplane.source;
    if (!backplane.reason.empty()) {
        json["reason"] = backplane.reason;
    }
    json["dcn_mpls_label"] = DefaultKatanaDataPortsConfig().getDcnMplsLabel(0, 0);
    json["slots"] = Json::array();
    for (std::size_t slot = 0; slot < ports.size(); ++slot) {
        Json links = Json::array();
        for (const BackplaneLink& port : ports[slot]) {
            Json link;
            link["link"] = links.size();
            link["npu_port"] = port ? Json(port->npuPort) : Json();
            link["max_bandwidth"] = port ? Json(port->maxBandwidth) : Json();
            link["dcn_vlan"] = port ? Json(port->dcnVlan) : Json();
            links.push_back(link);
        }
        json["slots"].push_back({{"slot", slot}, {"links", links}});
    }
    return json;
}

ExitCode printAnswer(const std::string& text, ExitCode exitCode)
{
    ResultOutput output;
    output.writeLine(text);
    output.finish();
    return exitCode;
}

}  // namespace

ExitCode showPorts(std::optional<std::uint32_t> type, PortsForm form)
{
    const ChosenBackplane backplane = chooseBackplane(type);
    const BackplanePorts ports = portsOfBackplaneType(backplane.type);
    ResultOutput output;
    switch (form) {
        case PortsForm::TABLE: writeTable(output, backplane, ports); break;
        case PortsForm::JSON: output.writeLine(jsonLine(portsJson(backplane, ports))); break;
        case PortsForm::PICTURE: output.writeLine(backplanePicture(ports, titleText(backplane))); break;
    }
    output.finish();
    return EXIT_FINE;
}

ExitCode publishBackplane(std::uint32_t type)
{
    publishBackplaneType(type);
    return printAnswer("backplane type " + std::to_string(type) + " is published", EXIT_FINE);
}

ExitCode clearBackplane()
{
    if (!removeBackplaneSegment()) {
        return printAnswer("there is no segment", EXIT_NEGATIVE_ANSWER);
    }
    return printAnswer("the segment is removed", EXIT_FINE);
}

ExitCode showBackplane(bool isJson)
{
    const BackplaneSegment segment = readBackplaneSegment();
    const bool isUnusable = (segment.state == BackplaneSegment::State::UNUSABLE);
    if (isUnusable && !isJson) {
        throw CommandError(segmentText(segment));
    }
    const ExitCode exitCode = segment.type() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
    if (!isJson) {
        return printAnswer(segmentText(segment), exitCode);
    }
    Json json;
    json["state"] = segmentStateText(segment);
    if (isUnusable) {
        json["reason"] = segment.reason;
    }
    json["backplane_type"] = segment.type() ? Json(*segment.type()) : Json();
    json["words"] = segment.words;
    json["attached"] = segment.nAttached;
    return printAnswer(jsonLine(json), isUnusable ? EXIT_UNUSABLE : exitCode);
}

}  // namespace brantel
