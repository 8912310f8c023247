#include "commands/CardServe.h"

#include "cards/Card.h"
#include "cards/CardObjects.h"
#include "cards/CardServer.h"
#include "cards/StopOnSignals.h"
#include "common/ResultOutput.h"

namespace {

// What follows `prefix` in `text`; nothing if `text` does not start with it.
std::optional<std::string> afterPrefix(const std::string& text, const std::string& prefix)
{
    return (text.compare(0, prefix.size(), prefix) == 0) ? std::optional(text.substr(prefix.size())) : std::nullopt;
}

std::optional<std::string> csvFileOf(const CardServeOptions& options)
{
    return afterPrefix(options.source, "csv:");
}

CardObjects objectsOfSource(const CardServeOptions& options)
{
    CardObjects objects;
    if (options.source == "host") {
        addHostObjects(objects);
    } else if (const auto csvFile = csvFileOf(options)) {
        addCsvObjects(objects, {*csvFile, options.timeColumn, options.interval, options.speed, options.isStepped});
    } else if (const auto waveFile = afterPrefix(options.source, "wave:")) {
        addWaveObjects(objects, *waveFile);
    } else {
        throw CommandError("'" + options.source + "' is none of the sources host, csv:FILE and wave:FILE");
    }
    return objects;
}

}  // namespace

bool isRecording(const CardServeOptions& options)
{
    return csvFileOf(options).has_value();
}

ExitCode serveCard(const CardServeOptions& options)
{
    const std::optional<Faults> faults = faultsOfText(options.faults);
    if (!faults) {
        throw CommandError("'" + options.faults + "' is no list of faults, which are " + FAULT_NAMES);
    }
    Card card(options.slot, options.source, objectsOfSource(options));
    card.setFaults(*faults);

    OBcomponent component("card " + std::to_string(options.slot));
    const StopOnSignals stopOnSignals(component);
    CardServer server(component, options.slot, card);
    ResultOutput output;
    for (const std::string& place : server.places()) {
        output.writeLine("serves " + place);
    }
    output.finish();
    server.run();
    return EXIT_FINE;
}
