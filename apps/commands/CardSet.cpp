#include "commands/CardSet.h"

#include "cards/CardClient.h"
#include "cards/OidTable.h"
#include "cards/ResultText.h"
#include "cards/SlotObstacle.h"
#include "cards/ValueText.h"
#include "cards/WritePlan.h"
#include "commands/CardJson.h"
#include "common/JsonLine.h"
#include "common/NearestWord.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "common/WaitNotice.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

// The card warns about a duplicate or a lost message, and writes.
bool isWritten(CallOutcome outcome)
{
    return (outcome == icsc::RESULT_OK) || (outcome == icsc::RESULT_DUPLICATE_MSG) ||
           (outcome == icsc::RESULT_LOST_MSG);
}

OidTypeValue valueOfAssignment(const std::string& assignment)
{
    const std::size_t posEqual = assignment.find('=');
    const std::size_t posColon = assignment.find(':', posEqual);
    if ((posEqual == std::string::npos) || (posColon == std::string::npos)) {
        throw CommandError("invalid assignment " + inQuotes(assignment) + "; expected OID=TYPE:VALUE");
    }
    const std::string typeName = assignment.substr(posEqual + 1, posColon - posEqual - 1);
    const std::optional<OidValueType> type = parseType(typeName);
    if (!type) {
        throw CommandError(inQuotes(assignment) + ": unknown type " + inQuotes(typeName) +
                           suggestionOrChoices(typeName, typeTexts()));
    }
    const std::string text = assignment.substr(posColon + 1);
    const std::optional<boost::any> value = parseValue(*type, text);
    if (!value) {
        throw CommandError(inQuotes(assignment) + ": " + inQuotes(text) + " is not of type " + typeName);
    }
    OidTypeValue result = {requireOid(assignment.substr(0, posEqual)), *type, *value};
    if (!fitsIntoRequest(result)) {
        throw CommandError("the value for " + objectName(result.oid) + " does not fit into a request of 2048 bytes");
    }
    return result;
}

std::string namesOf(const OidTypeValueContainer& values)
{
    std::string names;
    for (const OidTypeValue& value : values) {
        names += (names.empty() ? "" : " ") + objectName(value.oid);
    }
    return names;
}

void printJson(std::uint32_t slot, const OidTypeValueContainer& values, CallOutcome outcome, ResultOutput& output)
{
    Json json = {{"slot", slot}, {"oids", Json::array()}, {"objects", Json::array()}, {"written", isWritten(outcome)}};
    for (const OidTypeValue& value : values) {
        json["oids"].push_back(value.oid);
        json["objects"].push_back(objectName(value.oid));
    }
    if (outcome != icsc::RESULT_OK) {
        json.update(failureJson(outcome));
    }
    output.writeLine(jsonLine(json));
}

void printText(const OidTypeValueContainer& values, CallOutcome outcome, ResultOutput& output)
{
    const std::string verdict =
        isWritten(outcome) ? output.coloured(Colour::GREEN, "written") : output.coloured(Colour::RED, "failed");
    const std::string detail = (outcome == icsc::RESULT_OK) ? "" : ": " + resultText(outcome);
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
    const WaitNotice notice("waiting for the card in slot " + std::to_string(options.slot));
    ResultOutput output;
    bool isAllWritten = true;
    bool isAnswered = true;
    for (const OidTypeValueContainer& request : writeRequests(values)) {
        const CallOutcome outcome = client.write(request, options.timeout);
        isAllWritten = isWritten(outcome);
        if (options.isJson) {
            printJson(options.slot, request, outcome, output);
        } else {
            printText(request, outcome, output);
        }
        isAnswered = outcome != NO_ANSWER;
        if (!isAllWritten) {
            break;
        }
    }
    output.finish();
    if (!isAnswered) {
        printObstacleOfSlot(options.slot, icsc::Interface::SYNC);
    }
    return isAllWritten ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}

}  // namespace brantel
