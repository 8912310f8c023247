#ifndef APPS_RULES_RULE_NOTES_H
#define APPS_RULES_RULE_NOTES_H

// What is surprising about a valid rule: text that is ignored, conditions that cannot change, parts that are never
// evaluated.

#include <string>
#include <vector>

namespace brantel {

/// A sentence for each surprise of the valid rule text `rule`, in the order of its parts.
std::vector<std::string> notesOn(const std::string& rule);

}  // namespace brantel

#endif
