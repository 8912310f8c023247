#include "commands/CardServe.h"

#include <sys/resource.h>

#include "cards/Card.h"
#include "cards/CardObjects.h"
#include "cards/CardServer.h"
#include "common/NearestWord.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "common/Signals.h"

namespace brantel {
namespace {

// What follows `prefix` in `text`; nothing if `text` does not start with it, or if nothing follows.
std::optional<std::string> afterPrefix(const std::string& text, const std::string& prefix)
{
    const bool isThere = (text.compare(0, prefix.size(), prefix) == 0) && (text.size() > prefix.size());
    return isThere ? std::optional(text.substr(prefix.size())) : std::nullopt;
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
        throw CommandError("unknown source " + inQuotes(options.source) +
                           suggestionOrChoices(options.source, {"host", "csv:FILE", "wave:FILE"}));
    }
    return objects;
}

// Each caller of a card costs it a descriptor.
void raiseDescriptorLimit()
{
    rlimit limit = {};
    if ((::getrlimit(RLIMIT_NOFILE, &limit) == 0) && (limit.rlim_cur < limit.rlim_max)) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

}  // namespace

bool isRecording(const CardServeOptions& options)
{
    return csvFileOf(options).has_value();
}

ExitCode serveCard(const CardServeOptions& options)
{
    const std::optional<Faults> faults = parseFaults(options.faults);
    if (!faults) {
        throw CommandError("--fault: " + reasonAgainstFaults(options.faults));
    }
    Card card(options.slot, options.source, objectsOfSource(options));
    card.setFaults(*faults);

    raiseDescriptorLimit();
    OBcomponent component("card " + std::to_string(options.slot));
    const StopOnSignals stopOnSignals([&] { component.stop(); });
    CardServer server(component, options.slot, card);
    ResultOutput output;
    for (const std::string& endpoint : server.endpoints()) {
        output.writeLine("serves " + printable(endpoint));
    }
    output.finish();
    server.run();
    return EXIT_FINE;
}

}  // namespace brantel
