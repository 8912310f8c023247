#ifndef BRANTEL_RULE_TEXT_H
#define BRANTEL_RULE_TEXT_H

// A rule text taken apart as the parser does it, down to the expression inside "signed(...)": where things are, not
// whether they are right.

#include <cstddef>
#include <string>
#include <vector>

#include "MappedText.h"

namespace vemorRules {

constexpr std::size_t NOT_FOUND = std::string::npos;

/// Whether a rule is valid without having parts.
bool isEmptyOrComment(const std::string& rule);

/// The parts of a rule, without blanks and in lower case.
std::vector<MappedText> partsOf(const std::string& rule);

/// The positions of the outer marks of a part; NOT_FOUND for what is missing.
struct PartMarks {
    std::size_t equalSign;       ///< the first "="
    bool isUnsigned;             ///< "unsigned(" is at or after it
    std::size_t signednessWord;  ///< that "unsigned(", or else the first "signed("
    std::size_t openingBracket;  ///< of the word
    std::size_t closingBracket;  ///< the last ")"
};

PartMarks marksOf(const MappedText& part);

/// The text between the two brackets; only for a part that has both, with something between them.
MappedText expressionOf(const MappedText& part, const PartMarks& marks);

/// The reason against rules of several parts: their type is that of the last part and never matches the number of their
/// expressions.
constexpr const char* SEVERAL_PARTS = "a rule of several parts is never evaluated: make each part a rule of its own";

}  // namespace vemorRules

#endif
