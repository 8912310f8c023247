#include "commands/Commands.h"

#include <algorithm>
#include <memory>
#include <string>

#include "commands/RuleCheck.h"
#include "commands/RuleEval.h"
#include "common/TypedOptions.h"

namespace brantel {
namespace {

constexpr const char* RULE_EXAMPLES = R"(Examples:
  brantel rule check 'expr=signed(value>100)'
  vmstat 1 | awk 'NR>2 {print $15; fflush()}' | brantel rule eval 'expr=unsigned(hyslow(20,40))')";

constexpr const char* CHECK_EXAMPLES =
    R"(Exit code: 0 all rules are valid, 1 a rule is refused, 2 misuse or unreadable input.

Examples:
  brantel rule check 'expr=signed(value>100)' 'expr=unsigned(delta>=5)'
  brantel rule check --file rules.txt
  brantel rule check --json --file - < rules.txt)";

constexpr const char* EVAL_EXAMPLES =
    R"(Samples are whole numbers, one per line or in a column of CSV. A first row of names is the header. Ctrl-C ends the
samples and prints the summary.

Exit code: 0 the rule was evaluated, 1 the rule is refused, 2 misuse or unreadable input.

Examples:
  printf '70\n85\n75\n60\n' | brantel rule eval 'expr=signed(hyshigh(65,80))'
  brantel rule eval 'expr=unsigned(delta>=1000)' --input traffic.csv --column bytes --time-column hour
  brantel rule eval --all --json 'expr=signed(value<-10 or value>10)' --input samples.txt)";

// CLI11 splits such an argument at its commas and would not pass on the rule as written.
bool isTakenForList(const std::string& argument)
{
    const bool isBracketed = !argument.empty() && (argument.front() == '[') && (argument.back() == ']');
    return isBracketed || (argument == "{}");
}

void addCheck(CLI::App& rule, Invocation& invocation)
{
    const auto options = std::make_shared<RuleCheckOptions>();
    CLI::App* const check = rule.add_subcommand("check", "Show what rules mean, or where and why they are refused");
    check->footer(CHECK_EXAMPLES);
    CLI::Option* const rules = check->add_option("RULE", options->rules, "Rule texts")->type_name("");
    CLI::Option* const file =
        check->add_option("--file", options->file, "Read the rules from a file, one per line; - is standard input");
    file->type_name("FILE")->excludes(rules);
    check->add_flag("--json", options->isJson, "Print one JSON object per line");
    check->callback([options, &invocation, rules, file] {
        if ((file->count() == 0) &&
            std::any_of(invocation.arguments.begin(), invocation.arguments.end(), isTakenForList)) {
            throw CLI::ValidationError("RULE", "in brackets: give it with --file");
        }
        if ((rules->count() == 0) && (file->count() == 0)) {
            throw CLI::RequiredError("RULE or --file");
        }
        invocation.run = [options] { return checkRules(*options); };
    });
}

void addEval(CLI::App& rule, Invocation& invocation)
{
    const auto options = std::make_shared<RuleEvalOptions>();
    CLI::App* const eval = rule.add_subcommand("eval", "Evaluate a rule against a series of samples");
    eval->footer(EVAL_EXAMPLES);
    eval->add_option("RULE", options->rule, "Rule text")->required()->type_name("");
    eval->add_option("--input", options->input, "Read the samples from a file (default: -, standard input)")
        ->type_name("FILE");
    eval->add_option("--column", options->columns.sample, "Column of the samples: a name, or a number from 1")
        ->type_name("NAME|N");
    eval->add_option("--time-column", options->columns.time,
                     "Column of the times (default: 'time' or 'timestamp', if there is one)")
        ->type_name("NAME|N");
    addChoiceOption(*eval, "--header", options->columns.header,
                    "Whether the first row names the columns: yes, no or auto (default: auto, by its look)",
                    Choices<Header>{{"yes", Header::PRESENT}, {"no", Header::ABSENT}, {"auto", Header::AUTOMATIC}})
        ->type_name("WHAT");
    addChoiceOption(*eval, "--on-error", options->endsAtFault,
                    "What to do with a row without a usable sample: skip or fail (default: skip)",
                    Choices<bool>{{"skip", false}, {"fail", true}})
        ->type_name("WHAT");
    eval->add_flag("--all", options->printsAll, "Print every sample, not only the changes");
    eval->add_flag("--json", options->isJson, "Print one JSON object per line");
    eval->callback([options, &invocation] { invocation.run = [options] { return evaluateRule(*options); }; });
}

}  // namespace

void addRuleCommands(CLI::App& app, Invocation& invocation)
{
    CLI::App* const rule = app.add_subcommand("rule", "Check event rules, and evaluate them against samples");
    rule->require_subcommand(1);
    rule->footer(RULE_EXAMPLES);
    addCheck(*rule, invocation);
    addEval(*rule, invocation);
}

}  // namespace brantel
