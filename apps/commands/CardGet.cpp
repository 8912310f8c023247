#include "commands/CardGet.h"

#include "cards/CardClient.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "common/ResultOutput.h"

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
    std::vector<std::vector<std::string>> rows;
    for (const std::uint32_t oid : oids) {
        const auto value = reading.values.find(oid);
        if (value != reading.values.end()) {
            rows.push_back({numberOfOid(oid), nameOfOid(oid), nameOfType(value->second.type),
                            printable(textOfValue(value->second.type, value->second.value))});
        } else {
            rows.push_back({numberOfOid(oid), nameOfOid(oid), "-",
                            output.coloured(Colour::RED, "failed: " + describeResult(reading.failures.at(oid)))});
        }
    }
    for (const std::string& line : alignedLines(rows)) {
        output.writeLine(line);
    }
}

}  // namespace

ExitCode getObjects(const CardGetOptions& options)
{
    const ObjectIdContainer oids = oidsOfArguments(options.oids);
    CardClient client(options.slot);
    const Reading reading = client.read(oids);
    ResultOutput output;
    if (options.isJson) {
        tellJson(options.slot, oids, reading, output);
    } else {
        tellTable(oids, reading, output);
    }
    output.finish();
    return reading.failures.empty() ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}
