#include "commands/CardSet.h"

#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ReadingOutput.h"
#include "cards/ResultText.h"
#include "cards/ValueText.h"
#include "cards/WritePlan.h"
#include "common/ResultOutput.h"

using Json = nlohmann::ordered_json;

namespace {

// A write that the card warns about is done.
constexpr std::int32_t DUPLICATE_MESSAGE = 2;
constexpr std::int32_t LOST_MESSAGE = 3;

OidTypeValue valueOfAssignment(const std::string& assignment)
{
    const std::size_t posEqual = assignment.find('=');
    const std::size_t posColon = assignment.find(':', posEqual);
    if ((posEqual == std::string::npos) || (posColon == std::string::npos)) {
        throw CommandError("'" + assignment + "' is not OID=TYPE:VALUE");
    }
    const std::string typeName = assignment.substr(posEqual + 1, posColon - posEqual - 1);
    const std::optional<OidValueType> type = typeOfName(typeName);
    if (!type) {
        throw CommandError("'" + assignment + "': '" + typeName + "' is none of the types " + namesOfTypes());
    }
    const std::string text = assignment.substr(posColon + 1);
    const std::optional<boost::any> value = valueOfText(*type, text);
    if (!value) {
        throw CommandError("'" + assignment + "': '" + text + "' is no " + typeName);
    }
    OidTypeValue result = {oidOfArgument(assignment.substr(0, posEqual)), *type, *value};
    if (!fitsIntoRequest(result)) {
        throw CommandError("the value for " + nameOfOid(result.oid) + " does not fit into a request of 2048 bytes");
    }
    return result;
}

std::string namesOf(const OidTypeValueContainer& values)
{
    std::string names;
    for (const OidTypeValue& value : values) {
        names += (names.empty() ? "" : " ") + nameOfOid(value.oid);
    }
    return names;
}

void tellJson(std::uint32_t slot, const OidTypeValueContainer& values, CallOutcome outcome, bool isWritten,
              ResultOutput& output)
{
    Json json = {{"slot", slot}, {"oids", Json::array()}, {"written", isWritten}, {"result", jsonOfResult(outcome)}};
    for (const OidTypeValue& value : values) {
        json["oids"].push_back(value.oid);
    }
    output.writeLine(lineOfJson(json));
}

void tellText(const OidTypeValueContainer& values, CallOutcome outcome, bool isWritten, ResultOutput& output)
{
    const std::string verdict =
        isWritten ? output.coloured(Colour::GREEN, "written") : output.coloured(Colour::RED, "failed");
    const std::string detail = (outcome == 0) ? "" : ": " + describeResult(outcome);
    output.writeLine(namesOf(values) + ": " + verdict + detail);
}

}  // namespace

ExitCode setObjects(const CardSetOptions& options)
{
    OidTypeValueContainer values;
    for (const std::string& assignment : options.assignments) {
        values.push_back(valueOfAssignment(assignment));
    }
    CardClient client(options.slot);
    ResultOutput output;
    bool isAllWritten = true;
    for (const OidTypeValueContainer& request : writeRequests(values)) {
        const CallOutcome outcome = client.write(request, options.timeout);
        isAllWritten = (outcome == 0) || (outcome == DUPLICATE_MESSAGE) || (outcome == LOST_MESSAGE);
        if (options.isJson) {
            tellJson(options.slot, request, outcome, isAllWritten, output);
        } else {
            tellText(request, outcome, isAllWritten, output);
        }
        if (!isAllWritten) {
            break;
        }
    }
    output.finish();
    return isAllWritten ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}
