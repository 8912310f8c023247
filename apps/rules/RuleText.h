#ifndef APPS_RULES_RULE_TEXT_H
#define APPS_RULES_RULE_TEXT_H

// A rule text taken apart the way the parser takes it apart, down to the expression inside "signed(...)". Says where
// things are, not whether they are right.

#include <cstddef>
#include <string>
#include <vector>

#include "rules/MappedText.h"

constexpr std::size_t NOT_FOUND = std::string::npos;

/// The parts of a rule, without blanks and in lower case.
std::vector<MappedText> partsOf(const std::string& rule);

/// Where the outer marks of a part stand in it; NOT_FOUND for what is missing.
struct PartMarks {
    std::size_t equalSign;       ///< the first "="
    bool isUnsigned;             ///< "unsigned(" stands at or after it
    std::size_t signednessWord;  ///< that "unsigned(", or else the first "signed("
    std::size_t openingBracket;  ///< of the word
    std::size_t closingBracket;  ///< the last ")"
};

PartMarks marksOf(const MappedText& part);

/// What stands between the two brackets; only for a part that has both, with something between them.
MappedText expressionOf(const MappedText& part, const PartMarks& marks);

/// Whether a valid rule is about unsigned samples; the last of several parts decides.
bool isUnsignedRule(const std::string& rule);

#endif
