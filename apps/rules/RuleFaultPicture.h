#ifndef APPS_RULES_RULE_FAULT_PICTURE_H
#define APPS_RULES_RULE_FAULT_PICTURE_H

// A fault of a rule as it is shown to people and programs: where it is, in characters, and the rule with a caret below
// the fault.

#include <cstddef>
#include <string>
#include <vector>

#include "RuleDiagnosis.h"

namespace brantel {

using vemorRules::RuleFault;

/// Why the library refuses `rule`, which it does.
RuleFault explainRefusal(const std::string& rule);

/// The column of a fault, from 1.
std::size_t faultColumn(const std::string& rule, const RuleFault& fault);

std::size_t faultLength(const std::string& rule, const RuleFault& fault);

/// The rule, a caret below the fault, and what would be right, in a line each. Of a long rule, only the text around the
/// fault is shown.
std::vector<std::string> faultPicture(const std::string& rule, const RuleFault& fault);

/// Prints the message "SUBJECT:COLUMN: refused: REASON" and the picture.
void printRefusal(const std::string& subject, const std::string& rule, const RuleFault& fault);

/// Adds column, length, reason and remedy to a JSON object.
template <typename Json>
void addFault(Json& json, const std::string& rule, const RuleFault& fault)
{
    json["column"] = faultColumn(rule, fault);
    json["length"] = faultLength(rule, fault);
    json["reason"] = fault.reason;
    json["remedy"] = fault.remedy;
}

}  // namespace brantel

#endif
