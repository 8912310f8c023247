#ifndef APPS_CARDS_RESULT_TEXT_H
#define APPS_CARDS_RESULT_TEXT_H

#include <cstdint>
#include <string>

/// What came of a call: a result code, which may be any of 32 bits, or one of the two below.
using CallOutcome = std::int64_t;
constexpr CallOutcome NO_ANSWER = CallOutcome{1} << 32;       ///< the call failed
constexpr CallOutcome UNSOUND_ANSWER = CallOutcome{2} << 32;  ///< no stream of the values that were asked for

constexpr bool isResultCode(CallOutcome outcome)
{
    return (outcome != NO_ANSWER) && (outcome != UNSOUND_ANSWER);
}

struct ResultText {
    const char* name;
    const char* meaning;
};

/// What the outcome is called and means.
ResultText resultTextOf(CallOutcome outcome);

/// All in one line, as in "7=0x7=RESULT WRONG OID: the card has no such object".
std::string describeResult(CallOutcome outcome);

#endif
