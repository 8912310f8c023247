#ifndef APPS_RULES_RULE_NOTES_H
#define APPS_RULES_RULE_NOTES_H

// What is surprising about a valid rule: text that counts for nothing, conditions that can not change, parts that are
// never evaluated.

#include <string>
#include <vector>

/// A sentence for each surprise of the valid rule text `rule`, in the order of its parts.
std::vector<std::string> notesOn(const std::string& rule);

#endif
