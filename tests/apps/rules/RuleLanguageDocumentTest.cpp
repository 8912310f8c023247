// The tables of docs/rule-language.md are true: a row is a rule in backticks, and the meaning of a valid rule or the
// reason against a refused one.

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"
#include "rules/RuleDescription.h"

namespace brantel {
namespace {

struct DocumentedRule {
    std::string rule;
    std::string says;
};

std::vector<DocumentedRule> tableRows(const std::string& secondHeading)
{
    const std::string rowStart = "| `";
    const std::string between = "` | ";
    const std::string rowEnd = " |";
    std::ifstream document(DOCS_DIR "/rule-language.md");
    std::vector<DocumentedRule> rows;
    bool isInTable = false;
    for (std::string line; std::getline(document, line);) {
        if (line == "| Rule | " + secondHeading + " |") {
            isInTable = true;
        } else if (line.empty()) {
            isInTable = false;
        } else if (isInTable && (line.rfind(rowStart, 0) == 0)) {
            const std::size_t posBetween = line.find(between);
            const std::size_t posSays = posBetween + between.size();
            rows.push_back({line.substr(rowStart.size(), posBetween - rowStart.size()),
                            line.substr(posSays, line.size() - rowEnd.size() - posSays)});
        }
    }
    return rows;
}

TEST(RuleLanguageDocument, ShowsWhatValidRulesMean)
{
    const std::vector<DocumentedRule> rows = tableRows("Meaning");

    EXPECT_GE(rows.size(), 10U);
    for (const DocumentedRule& row : rows) {
        EXPECT_TRUE(vemorRules::isValidRule(row.rule)) << row.rule;
        EXPECT_EQ(meaningText(row.rule), row.says) << row.rule;
    }
}

TEST(RuleLanguageDocument, ShowsWhyRulesAreRefused)
{
    const std::vector<DocumentedRule> rows = tableRows("Refused because");

    EXPECT_GE(rows.size(), 10U);
    for (const DocumentedRule& row : rows) {
        EXPECT_FALSE(vemorRules::isValidRule(row.rule)) << row.rule;
        const std::optional<vemorRules::RuleFault> fault = vemorRules::findFault(row.rule);
        EXPECT_EQ(fault ? fault->reason : "nothing", row.says) << row.rule;
    }
}

}  // namespace

}  // namespace brantel
