#include "cards/ResultText.h"

#include <iterator>
#include <sstream>

namespace brantel {
namespace {

// Indexed like icsc::GENERAL_RESULT_NAMES.
constexpr const char* GENERAL_MEANINGS[] = {
    "done",
    "the service does not know this interface, version or operation",
    "the card did not answer in time",
    "the message could not be understood",
    "the service failed to handle the request",
    "the service could not reach its card",
    "the request does not hold as many elements as it says",
    "request or answer do not fit into 2048 bytes",
    "the request is cut off",
};

// Indexed like icsc::CARD_RESULT_NAMES.
constexpr const char* CARD_MEANINGS[] = {
    "done",
    "service and card speak different versions",
    "the card had this message before",
    "the card missed a message before this one",
    "the card does not know the action",
    "the card failed",
    "the object has another type",
    "the card has no such object",
    "the value is longer or shorter than its type",
    "the object does not take this value",
    "the object cannot be written",
    "the value is longer than the object takes",
    "the card cannot do this now",
    "the card did not recognise the message",
    "the card did not receive the message",
    "the card could not send its answer",
};

const char* meaningOf(std::int32_t code)
{
    const std::uint32_t general = icsc::generalResult(code);
    const std::uint32_t card = icsc::cardResult(code);
    if ((general == 0) && (card < std::size(CARD_MEANINGS))) {
        return CARD_MEANINGS[card];
    }
    if ((general != 0) && (general < std::size(GENERAL_MEANINGS))) {
        return GENERAL_MEANINGS[general];
    }
    return "a result code without a meaning";
}

}  // namespace

ResultWords resultWords(CallOutcome outcome)
{
    if (outcome == NO_ANSWER) {
        return {"no answer", "no card is serving the slot, or nothing came back in time"};
    }
    if (outcome == NOT_SERVED) {
        return {"no answer", "no card is serving the slot"};
    }
    if (outcome == MALFORMED_ANSWER) {
        return {"malformed answer", "the card sent something other than the requested values"};
    }
    if (outcome == MALFORMED_VALUE) {
        return {"malformed value", "the value does not have the type of the object, or the length of its type"};
    }
    const auto code = static_cast<std::int32_t>(outcome);
    const char* const name = icsc::resultName(code);
    return {(name == nullptr) ? "unknown" : name, meaningOf(code)};
}

std::string resultText(CallOutcome outcome)
{
    const ResultWords words = resultWords(outcome);
    std::ostringstream line;
    if (isResultCode(outcome)) {
        line << std::dec << outcome << "=0x" << std::hex << static_cast<std::uint32_t>(outcome) << '=';
    }
    line << words.name << ": " << words.meaning;
    return line.str();
}

}  // namespace brantel
