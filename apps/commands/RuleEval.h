#ifndef APPS_COMMANDS_RULE_EVAL_H
#define APPS_COMMANDS_RULE_EVAL_H

// "brantel rule eval": decides a rule on a series of samples and tells each change of state and a summary.

#include <string>

#include "common/CommandLine.h"
#include "samples/SampleReader.h"

struct RuleEvalOptions {
    std::string rule;
    std::string input = "-";
    ColumnChoice columns;
    std::string onError = "skip";  ///< a row without a usable sample is passed over; "fail": it ends the evaluation
    bool tellsAll = false;
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if the rule is refused or can not be evaluated.
ExitCode evaluateRule(const RuleEvalOptions& options);

#endif
