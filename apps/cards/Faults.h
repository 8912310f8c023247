#ifndef APPS_CARDS_FAULTS_H
#define APPS_CARDS_FAULTS_H

// How a card fails on demand, for tests and training. Faults are written as a list, separated by commas:
//
//     delay=SECONDS      answers later
//     silence            the card stays silent; its service answers TIMEOUT when the caller's time is over
//     no-answer          nothing answers at all
//     result=CODE        answers this result code, and does nothing; not 0, which is success
//
// and, in answers to reads:
//
//     duplicate-oid      the last value is repeated, in place of the first of several
//     missing-oid        the last value is missing
//     foreign-oid        the last value carries an OID that was not requested
//     wrong-count        the count says one more than there are
//     wrong-type[=CODE]  the last value's type code is CODE (default: 11, which does not exist)
//     wrong-length=BYTES the last value is cut, or padded with zeros, to this length
//     truncated          the last byte is missing

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "message/buffer_t.h"

namespace brantel {

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
    std::optional<std::size_t> wrongLength;
    bool isTruncated = false;
};

/// Nothing if the text is not a list of faults; the empty text is a list without faults.
std::optional<Faults> parseFaults(const std::string& text);

/// Why the text is not a list of faults: which of them is wrong, and what would be right.
std::string reasonAgainstFaults(const std::string& text);

/// The well-formed stream of values with the faults that concern it. Nothing if that is longer than a message.
std::optional<buffer_t> corruptedStream(const Faults& faults, const buffer_t& tlvs);

}  // namespace brantel

#endif
