#include "commands/CardGet.h"

#include <algorithm>
#include <set>

#include "cards/CardClient.h"
#include "cards/CardObjects.h"
#include "cards/OidTable.h"
#include "cards/ResultText.h"
#include "cards/SlotObstacle.h"
#include "cards/ValueText.h"
#include "commands/CardJson.h"
#include "common/JsonLine.h"
#include "common/Message.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"
#include "common/WaitNotice.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

// What to read. Objects that are not named one by one are left out if the card does not have them.
struct WantedObjects {
    ObjectIdContainer oids;  ///< each once
    std::set<std::uint32_t> named;
};

bool isGroup(const std::string& argument)
{
    return !argument.empty() && (argument.back() == '.');
}

ObjectIdContainer oidsOfGroup(const std::string& beginning)
{
    ObjectIdContainer oids;
    for (const OidEntry& entry : oidTable()) {
        if (entry.name.compare(0, beginning.size(), beginning) == 0) {
            oids.push_back(entry.oid);
        }
    }
    if (oids.empty()) {
        throw CommandError("no object has a name that begins with " + inQuotes(beginning) + " (brantel card objects)");
    }
    return oids;
}

WantedObjects wantedObjects(const CardGetOptions& options)
{
    WantedObjects wanted;
    std::set<std::uint32_t> known;
    const auto add = [&](std::uint32_t oid) {
        if (known.insert(oid).second) {
            wanted.oids.push_back(oid);
        }
    };
    const std::vector<std::string> all = {""};
    for (const std::string& argument : options.isAll ? all : options.oids) {
        if (options.isAll || isGroup(argument)) {
            const ObjectIdContainer group = oidsOfGroup(argument);
            std::for_each(group.begin(), group.end(), add);
        } else {
            const std::uint32_t oid = requireOid(argument);
            add(oid);
            wanted.named.insert(oid);
        }
    }
    return wanted;
}

void leaveOutMissing(WantedObjects& wanted, Reading& reading)
{
    ObjectIdContainer remaining;
    for (const std::uint32_t oid : wanted.oids) {
        const auto failure = reading.failures.find(oid);
        const bool isMissing = (failure != reading.failures.end()) && (failure->second == icsc::RESULT_WRONG_OID);
        if (!isMissing || (wanted.named.count(oid) != 0)) {
            remaining.push_back(oid);
        } else {
            reading.failures.erase(failure);
        }
    }
    wanted.oids = remaining;
}

// Of a reading without values.
std::string reasonOfNothing(const Reading& reading)
{
    return reading.failures.empty() ? "the card has none of these objects"
                                    : "failed: " + resultText(reading.failures.begin()->second);
}

Reading read(const WantedObjects& wanted, const CardGetOptions& options)
{
    CardClient client(options.slot);
    const WaitNotice notice("waiting for the card in slot " + std::to_string(options.slot));
    return client.read(wanted.oids, options.timeout);
}

void printJson(std::uint32_t slot, const ObjectIdContainer& oids, const Reading& reading, ResultOutput& output)
{
    for (const std::uint32_t oid : oids) {
        Json json = {{"slot", slot}, {"oid", oid}, {"object", objectName(oid)}};
        const auto value = reading.values.find(oid);
        if (value != reading.values.end()) {
            json["type"] = typeText(value->second.type);
            json["value"] = valueJson(value->second);
        } else {
            json.update(failureJson(reading.failures.at(oid)));
        }
        output.writeLine(jsonLine(json));
    }
}

void printTable(const ObjectIdContainer& oids, const Reading& reading, ResultOutput& output)
{
    TextTable table(
        {{"OID", Alignment::LEFT}, {"Name", Alignment::LEFT}, {"Type", Alignment::LEFT}, {"Value", Alignment::LEFT}});
    for (const std::uint32_t oid : oids) {
        const auto value = reading.values.find(oid);
        if (value != reading.values.end()) {
            const auto& [type, any] = value->second;
            table.addRow({oidText(oid), objectName(oid), typeText(type), valueText(type, any)});
        } else {
            const std::string failure = "failed: " + resultText(reading.failures.at(oid));
            table.addRow({oidText(oid), objectName(oid), "-", failure}, Colour::RED);
        }
    }
    table.write(output);
}

}  // namespace

ExitCode getObjects(const CardGetOptions& options)
{
    WantedObjects wanted = wantedObjects(options);
    Reading reading = read(wanted, options);
    leaveOutMissing(wanted, reading);
    if (reading.values.empty() && wanted.named.empty()) {
        printMessage("slot " + std::to_string(options.slot) + ": " + reasonOfNothing(reading));
        return EXIT_NEGATIVE_ANSWER;
    }
    ResultOutput output;
    if (options.isJson) {
        printJson(options.slot, wanted.oids, reading, output);
    } else {
        printTable(wanted.oids, reading, output);
    }
    output.finish();
    if (isUnanswered(reading)) {
        printObstacleOfSlot(options.slot, icsc::Interface::SYNC);
    }
    return reading.failures.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}

}  // namespace brantel
