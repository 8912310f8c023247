#ifndef APPS_COMMANDS_RULE_CHECK_H
#define APPS_COMMANDS_RULE_CHECK_H

// "brantel rule check": whether each rule is valid and what it means, or where and why it is refused.

#include <string>
#include <vector>

#include "common/CommandLine.h"

namespace brantel {

struct RuleCheckOptions {
    std::vector<std::string> rules;
    std::string file;  ///< one rule a line, "-" for standard input; used if `rules` is empty
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if a rule is refused.
ExitCode checkRules(const RuleCheckOptions& options);

}  // namespace brantel

#endif
