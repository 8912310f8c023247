#ifndef APPS_COMMANDS_RULE_EVAL_H
#define APPS_COMMANDS_RULE_EVAL_H

// "brantel rule eval": evaluates a rule against a series of samples and prints each change of state and a summary.

#include <string>

#include "common/CommandLine.h"
#include "samples/SampleReader.h"

namespace brantel {

struct RuleEvalOptions {
    std::string rule;
    std::string input = "-";
    ColumnChoice columns;
    bool endsAtFault = false;  ///< a row without a usable sample ends the evaluation; otherwise it is skipped
    bool printsAll = false;
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if the rule is refused or cannot be evaluated.
ExitCode evaluateRule(const RuleEvalOptions& options);

}  // namespace brantel

#endif
