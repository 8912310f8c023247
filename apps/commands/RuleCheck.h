#ifndef APPS_COMMANDS_RULE_CHECK_H
#define APPS_COMMANDS_RULE_CHECK_H

// "brantel rule check": says of each rule text whether it is valid and what it means, or where and why it is refused.

#include <string>
#include <vector>

#include "common/CommandLine.h"
#include "common/ResultOutput.h"
#include "rules/RuleDiagnosis.h"

struct RuleCheckOptions {
    std::vector<std::string> rules;
    std::string file;  ///< one rule a line, "-" for standard input; used if `rules` is empty
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if a rule is refused.
ExitCode checkRules(const RuleCheckOptions& options);

/// Explains why `rule`, which the library refuses, is refused.
RuleFault explainRefusal(const std::string& rule);

/// The lines that show a fault at its place: the rule, a caret below it and what would be right.
std::vector<std::string> pictureOf(const std::string& rule, const RuleFault& fault);

/// The column of a fault in characters, from 1.
std::size_t columnOf(const std::string& rule, const RuleFault& fault);

#endif
