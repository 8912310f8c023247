#include "commands/CardGet.h"

#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"

using Json = nlohmann::ordered_json;

namespace {

void tellJson(std::uint32_t slot, const ObjectIdContainer& oids, const Reading& reading, ResultOutput& output)
{
    for (const std::uint32_t oid : oids) {
        Json json = {{"slot", slot}, {"oid", oid}, {"name", nameOfOid(oid)}};
        const auto value = reading.values.find(oid);
        if (value != reading.values.end()) {
            json["type"] = nameOfType(value->second.type);
            json["value"] = jsonOfValue(value->second);
        } else {
            json["failure"] = jsonOfResult(reading.failures.at(oid));
        }
        output.writeLine(lineOfJson(json));
    }
}

void tellTable(const ObjectIdContainer& oids, const Reading& reading, ResultOutput& output)
{
    TextTable table(
        {{"OID", Alignment::LEFT}, {"Name", Alignment::LEFT}, {"Type", Alignment::LEFT}, {"Value", Alignment::LEFT}});
    for (const std::uint32_t oid : oids) {
        const auto value = reading.values.find(oid);
        if (value != reading.values.end()) {
            const auto& [type, any] = value->second;
            table.addRow({numberOfOid(oid), nameOfOid(oid), nameOfType(type), textOfValue(type, any)});
        } else {
            const std::string failure = "failed: " + describeResult(reading.failures.at(oid));
            table.addRow({numberOfOid(oid), nameOfOid(oid), "-", failure}, Colour::RED);
        }
    }
    table.write(output);
}

}  // namespace

ExitCode getObjects(const CardGetOptions& options)
{
    const ObjectIdContainer oids = oidsOfArguments(options.oids);
    CardClient client(options.slot);
    const Reading reading = client.read(oids, options.timeout);
    ResultOutput output;
    if (options.isJson) {
        tellJson(options.slot, oids, reading, output);
    } else {
        tellTable(oids, reading, output);
    }
    output.finish();
    return reading.failures.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}
