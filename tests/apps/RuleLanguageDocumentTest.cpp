// The tables of docs/rule-language.md say what is true: a row is a rule in backticks, and beside it the meaning of a
// valid rule or the reason against a refused one.

#include <fstream>
#include <regex>
#include <vector>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "rules/RuleDescription.h"
#include "rules/RuleDiagnosis.h"

namespace {

struct DocumentedRule {
    std::string rule;
    std::string says;
};

std::vector<DocumentedRule> tableRows(const std::string& secondHeading)
{
    std::ifstream document(DOCS_DIR "/rule-language.md");
    const std::regex row("\\| `(.*)` \\| (.*) \\|");
    std::vector<DocumentedRule> rows;
    bool isInTable = false;
    for (std::string line; std::getline(document, line);) {
        std::smatch cells;
        if (line == "| Rule | " + secondHeading + " |") {
            isInTable = true;
        } else if (line.empty()) {
            isInTable = false;
        } else if (isInTable && std::regex_match(line, cells, row)) {
            rows.push_back({cells[1], cells[2]});
        }
    }
    return rows;
}

TEST(RuleLanguageDocument, TellsWhatValidRulesMean)
{
    const std::vector<DocumentedRule> rows = tableRows("Meaning");

    EXPECT_GE(rows.size(), 10U);
    for (const DocumentedRule& row : rows) {
        EXPECT_TRUE(vemorRules::isValidRule(row.rule)) << row.rule;
        EXPECT_EQ(describeRuleText(row.rule), row.says) << row.rule;
    }
}

TEST(RuleLanguageDocument, TellsWhyRulesAreRefused)
{
    const std::vector<DocumentedRule> rows = tableRows("Refused because");

    EXPECT_GE(rows.size(), 10U);
    for (const DocumentedRule& row : rows) {
        EXPECT_FALSE(vemorRules::isValidRule(row.rule)) << row.rule;
        const std::optional<RuleFault> fault = findFault(row.rule);
        EXPECT_EQ(fault ? fault->reason : "nothing", row.says) << row.rule;
    }
}

}  // namespace
