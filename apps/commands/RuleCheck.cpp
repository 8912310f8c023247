#include "commands/RuleCheck.h"

#include <nlohmann/json.hpp>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"
#include "common/JsonLine.h"
#include "common/LineReader.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "rules/RuleDescription.h"
#include "rules/RuleFaultPicture.h"
#include "rules/RuleNotes.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

struct RuleLocation {
    std::string source;  ///< "argument", or the name of the file
    std::size_t number;  ///< of the argument or of the line, from 1
    bool isArgument;
};

std::string locationText(const RuleLocation& location)
{
    return printable(location.source) + (location.isArgument ? " " : ":") + std::to_string(location.number);
}

class RuleChecker {
public:
    explicit RuleChecker(bool isJson) : m_isJson(isJson) {}

    void check(const std::string& rule, const RuleLocation& location)
    {
        vemorRules::RuleObject parsed;
        const bool isValid = vemorRules::isEmptyRule(rule) || vemorRules::parseRule(rule, &parsed);
        ++(isValid ? m_valid : m_refused);
        if (isValid) {
            m_isJson ? printJson(validRule(rule, location, parsed)) : printValid(rule, location, parsed);
        } else {
            m_isJson ? printJson(refusedRule(rule, location)) : printRefused(rule, location);
        }
    }

    ExitCode finish()
    {
        if (!m_isJson) {
            m_output.writeLine(counted(m_valid + m_refused, "rule") + ": " + std::to_string(m_valid) + " valid, " +
                               std::to_string(m_refused) + " refused");
        }
        m_output.finish();
        return (m_refused == 0) ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
    }

private:
    void printValid(const std::string& rule, const RuleLocation& location, const vemorRules::RuleObject& parsed)
    {
        std::string kind = ruleKindText(parsed.m_expressionType);
        if (!vemorRules::isEmptyRule(rule)) {
            kind = (vemorRules::isUnsignedRule(rule) ? "unsigned " : "signed ") + kind;
        }
        m_output.writeLine(locationText(location) + ": " + m_output.coloured(Colour::GREEN, "valid") + ", " + kind +
                           ": " + meaningText(rule));
        for (const std::string& note : notesOn(rule)) {
            m_output.writeLine("    note: " + printable(note));
        }
    }

    void printRefused(const std::string& rule, const RuleLocation& location)
    {
        const RuleFault fault = explainRefusal(rule);
        m_output.writeLine(locationText(location) + ":" + std::to_string(faultColumn(rule, fault)) + ": " +
                           m_output.coloured(Colour::RED, "refused") + ": " + printable(fault.reason));
        for (const std::string& line : faultPicture(rule, fault)) {
            m_output.writeLine(line);
        }
    }

    static Json locationAndRule(const std::string& rule, const RuleLocation& location, bool isValid)
    {
        Json result;
        result["source"] = location.source;
        result[location.isArgument ? "argument" : "line"] = location.number;
        result["rule"] = rule;
        result["valid"] = isValid;
        return result;
    }

    static Json validRule(const std::string& rule, const RuleLocation& location, const vemorRules::RuleObject& parsed)
    {
        Json result = locationAndRule(rule, location, true);
        result["type"] = vemorRules::expressionTypeNames[parsed.m_expressionType];
        if (!vemorRules::isEmptyRule(rule)) {
            result["unsigned"] = vemorRules::isUnsignedRule(rule);
        }
        result["meaning"] = meaningText(rule);
        result["notes"] = notesOn(rule);
        return result;
    }

    static Json refusedRule(const std::string& rule, const RuleLocation& location)
    {
        Json result = locationAndRule(rule, location, false);
        addFault(result, rule, explainRefusal(rule));
        return result;
    }

    void printJson(const Json& result) { m_output.writeLine(jsonLine(result)); }

    bool m_isJson;
    ResultOutput m_output;
    std::size_t m_valid = 0;
    std::size_t m_refused = 0;
};

}  // namespace

ExitCode checkRules(const RuleCheckOptions& options)
{
    RuleChecker checker(options.isJson);
    if (!options.rules.empty()) {
        for (std::size_t i = 0; i < options.rules.size(); ++i) {
            checker.check(options.rules[i], {"argument", i + 1, true});
        }
    } else {
        LineReader lines(options.file);
        while (const std::optional<std::string> rule = lines.next()) {
            checker.check(*rule, {lines.name(), lines.lineNumber(), false});
        }
    }
    return checker.finish();
}

}  // namespace brantel
