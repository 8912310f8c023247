#ifndef APPS_CARDS_RESULT_TEXT_H
#define APPS_CARDS_RESULT_TEXT_H

#include <cstdint>
#include <string>

#include "Icsc.h"

namespace brantel {

/// The outcome of a call: a result code, which may be any of 32 bits, or one of those below.
using CallOutcome = std::int64_t;
constexpr CallOutcome NO_ANSWER = CallOutcome{1} << 32;         ///< the call failed
constexpr CallOutcome NOT_SERVED = CallOutcome{4} << 32;        ///< no call was made: certainly, no card is there
constexpr CallOutcome MALFORMED_ANSWER = CallOutcome{2} << 32;  ///< not a stream of the requested values
constexpr CallOutcome MALFORMED_VALUE = CallOutcome{3} << 32;   ///< not of its type's length, or not the object's type

constexpr bool isResultCode(CallOutcome outcome)
{
    return outcome < NO_ANSWER;
}

/// Whether the card itself refused.
constexpr bool isRefusalByCard(CallOutcome outcome)
{
    return (outcome > 0) && isResultCode(outcome) && (icsc::generalResult(static_cast<std::int32_t>(outcome)) == 0);
}

struct ResultWords {
    const char* name;
    const char* meaning;
};

ResultWords resultWords(CallOutcome outcome);

/// All in one line, as in "7=0x7=RESULT WRONG OID: the card has no such object".
std::string resultText(CallOutcome outcome);

}  // namespace brantel

#endif
