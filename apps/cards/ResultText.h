#ifndef APPS_CARDS_RESULT_TEXT_H
#define APPS_CARDS_RESULT_TEXT_H

#include <cstdint>
#include <string>

// In place of a result code:
constexpr std::int32_t NO_ANSWER = -1;       ///< the call failed
constexpr std::int32_t UNSOUND_ANSWER = -2;  ///< the answer is no stream of the values that were asked for

struct ResultText {
    const char* name;
    const char* meaning;
};

/// What an ICSC result code is called and means.
ResultText resultTextOf(std::int32_t code);

/// All in one line, as in "7=0x7=RESULT WRONG OID: the card has no such object".
std::string describeResult(std::int32_t code);

#endif
