#ifndef APPS_RULES_RULE_TEXT_H
#define APPS_RULES_RULE_TEXT_H

// A rule text taken apart as the parser does it, down to the expression inside "signed(...)": where things are, not
// whether they are right.

#include <cstddef>
#include <string>
#include <vector>

#include "rules/MappedText.h"

namespace brantel {

constexpr std::size_t NOT_FOUND = std::string::npos;

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

/// Whether a valid rule is for unsigned samples; of several parts, whether the last one is.
bool isUnsignedRule(const std::string& rule);

}  // namespace brantel

#endif
