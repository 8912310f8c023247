#include "cards/ResultText.h"

#include <iterator>
#include <sstream>

namespace {

constexpr ResultText GENERAL_RESULTS[] = {
    {"SUCCESS", "done"},
    {"GENERAL_ERROR", "the service does not know this interface, version or operation"},
    {"TIMEOUT", "the card did not answer in time"},
    {"INVALID_RESPONSE", "what was sent could not be understood"},
    {"INTERNAL_ERROR", "the service failed to handle the request"},
    {"SENDING_MSG_TO_IFC_CARD_FAILED", "the service could not reach its card"},
    {"INVALID_NR_OF_TLVS", "the request does not hold as many elements as it says"},
    {"MESSAGE_TOO_LARGE", "request or answer do not fit into 2048 bytes"},
    {"MESSAGE_TOO_SHORT", "the request is cut off"},
};

constexpr ResultText CARD_RESULTS[] = {
    {"RESULT OK", "done"},
    {"RESULT PROTOCOL VERSION_MISMATCH", "service and card speak different versions"},
    {"RESULT DUPLICATE MSG", "the card had this message before"},
    {"RESULT LOST MSG", "the card missed a message before this one"},
    {"RESULT INVALID ACTION", "the card does not know the action"},
    {"RESULT GENERAL ERROR", "the card failed"},
    {"RESULT WRONG TYPE", "the object has another type"},
    {"RESULT WRONG OID", "the card has no such object"},
    {"RESULT WRONG LEN", "the value is longer or shorter than its type"},
    {"RESULT WRONG VALUE", "the object does not take this value"},
    {"RESULT READ ONLY", "the object cannot be written"},
    {"RESULT TOO LONG", "the value is longer than the object takes"},
    {"RESULT CANNOT EXEC", "the card cannot do this now"},
    {"RESULT WRONG MAGIC", "the card did not recognise the message"},
    {"RESULT NOT RECEIVED", "the card did not receive the message"},
    {"RESULT NOT SEND", "the card could not send its answer"},
};

}  // namespace

ResultText resultTextOf(CallOutcome outcome)
{
    if (outcome == NO_ANSWER) {
        return {"no answer", "nobody serves the slot, or nothing came back in time"};
    }
    if (outcome == UNSOUND_ANSWER) {
        return {"unsound answer", "the card sent something else than the values that were asked for"};
    }
    const std::uint32_t generalResult = static_cast<std::uint32_t>(outcome) >> 24U;
    const std::uint32_t cardResult = static_cast<std::uint32_t>(outcome) & 0x00FFFFFFU;
    if ((generalResult == 0) && (cardResult < std::size(CARD_RESULTS))) {
        return CARD_RESULTS[cardResult];
    }
    if ((generalResult != 0) && (generalResult < std::size(GENERAL_RESULTS))) {
        return GENERAL_RESULTS[generalResult];
    }
    return {"unknown", "a result code without a meaning"};
}

std::string describeResult(CallOutcome outcome)
{
    const ResultText text = resultTextOf(outcome);
    std::ostringstream line;
    if (isResultCode(outcome)) {
        line << std::dec << outcome << "=0x" << std::hex << static_cast<std::uint32_t>(outcome) << '=';
    }
    line << text.name << ": " << text.meaning;
    return line.str();
}
