#ifndef APPS_CARDS_FAULTS_H
#define APPS_CARDS_FAULTS_H

// What a card can be told to do wrong, for tests and training. Faults are written as a list, separated by commas:
//
//     delay=SECONDS     answers later
//     silence           the card stays silent; its service answers TIMEOUT when the caller's time is over
//     no-answer         nothing answers at all
//     result=CODE       answers this result code, and does nothing
//
// and, in answers to reads:
//
//     duplicate-oid     the last value is there twice, in place of the first of several
//     missing-oid       the last value is missing
//     foreign-oid       the last value carries an OID that nobody asked for
//     wrong-count       the count says one more than there are
//     wrong-type[=CODE] the last value's type code is CODE: 11, which does not exist, unless given
//     truncated         the last byte is missing

#include <cstdint>
#include <optional>
#include <string>

#include "message/buffer_t.h"

/// As they are written, for messages.
constexpr const char* FAULT_NAMES =
    "delay=SECONDS, silence, no-answer, result=CODE, duplicate-oid, missing-oid, foreign-oid, wrong-count, "
    "wrong-type[=CODE] and truncated";

struct Faults {
    std::string text;  ///< as they were written
    std::optional<double> delay;
    bool isSilent = false;
    bool isWithoutAnswer = false;
    std::optional<std::int32_t> result;
    bool hasDuplicateOid = false;
    bool hasMissingOid = false;
    bool hasForeignOid = false;
    bool hasWrongCount = false;
    std::optional<unsigned char> wrongType;
    bool isTruncated = false;
};

/// Nothing if the text is no list of faults; the empty text is the list of none.
std::optional<Faults> faultsOfText(const std::string& text);

/// The stream of values, which must be a sound one, with the faults that concern it. No value may be larger than
/// objects have (MAX_TEXT_LENGTH).
buffer_t spoiltStream(const Faults& faults, const buffer_t& tlvs);

#endif
