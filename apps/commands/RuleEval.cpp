#include "commands/RuleEval.h"

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <vector>

#include <nlohmann/json.hpp>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"
#include "common/JsonLine.h"
#include "common/LineReader.h"
#include "common/Message.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "common/Signals.h"
#include "rules/RaiseStatistics.h"
#include "rules/RuleFaultPicture.h"
#include "rules/RuleSession.h"
#include "samples/SampleTime.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

// Differences of times are exact to the millisecond only.
double roundedToMilliseconds(double seconds)
{
    return std::round(seconds * 1000.0) / 1000.0;
}

std::string secondsText(double seconds)
{
    std::ostringstream text;
    text << std::setprecision(std::numeric_limits<double>::digits10) << roundedToMilliseconds(seconds) << " s";
    return text.str();
}

class RuleEvaluation {
public:
    RuleEvaluation(const RuleEvalOptions& options, const vemorRules::RuleObject& rule, bool isUnsigned)
        : m_options(options), m_session(rule, isUnsigned), m_statistics(m_session.states().size())
    {
    }

    void evaluate(const Sample& sample)
    {
        ++m_evaluable;
        const std::vector<ConditionState> states = m_session.evaluate(sample.value);
        if (states.empty()) {
            if (m_options.printsAll) {
                printUndecided(sample);
            }
            return;
        }
        ++m_evaluations;
        const std::optional<double> seconds = sample.time ? m_times.parse(*sample.time) : std::nullopt;
        for (std::size_t i = 0; i < states.size(); ++i) {
            m_statistics[i].add(states[i].isRaised, seconds);
            if (states[i].hasChanged || m_options.printsAll) {
                m_options.isJson ? printStateAsJson(sample, states[i]) : printState(sample, states[i]);
            }
        }
    }

    void skip(const std::string& fault)
    {
        ++m_skipped;
        m_output.finish();
        printMessage(fault + ", skipped");
    }

    /// False if there was nothing that could be evaluated.
    bool hasSamples() const { return m_evaluable > 0; }

    void finish()
    {
        m_options.isJson ? printSummaryAsJson() : printSummary();
        m_output.finish();
    }

private:
    static std::string sampleText(const Sample& sample)
    {
        return "sample " + std::to_string(sample.number) +
               (sample.time ? ", time " + printable(*sample.time) : std::string()) + ", value " +
               std::to_string(sample.value) + ": ";
    }

    static Json sampleJson(const Sample& sample)
    {
        Json result;
        result["sample"] = sample.number;
        result["line"] = sample.line;
        if (sample.time) {
            result["time"] = *sample.time;
        }
        result["value"] = sample.value;
        return result;
    }

    void printState(const Sample& sample, const ConditionState& state)
    {
        std::string words = state.isRaised ? "raised" : "cleared";
        words = state.hasChanged ? m_output.coloured(state.isRaised ? Colour::RED : Colour::GREEN, words)
                                 : m_output.coloured(Colour::DIM, "stays " + words);
        m_output.writeLine(sampleText(sample) + (state.name.empty() ? "" : state.name + " ") + words);
    }

    void printStateAsJson(const Sample& sample, const ConditionState& state)
    {
        Json result = sampleJson(sample);
        if (!state.name.empty()) {
            result["condition"] = state.name;
        }
        result["state"] = state.isRaised ? "raised" : "cleared";
        result["changed"] = state.hasChanged;
        printJson(result);
    }

    void printUndecided(const Sample& sample)
    {
        if (!m_options.isJson) {
            m_output.writeLine(sampleText(sample) + "no sample before to compare with");
            return;
        }
        Json result = sampleJson(sample);
        result["state"] = nullptr;
        result["changed"] = false;
        printJson(result);
    }

    void printSummary()
    {
        m_output.writeLine(counted(m_evaluable + m_skipped, "sample") + ", " + std::to_string(m_skipped) +
                           " skipped, " + counted(m_evaluations, "evaluation"));
        const std::vector<ConditionState> conditions = m_session.states();
        for (std::size_t i = 0; i < conditions.size(); ++i) {
            const RaiseStatistics& statistics = m_statistics[i];
            std::string line = (conditions[i].name.empty() ? "" : conditions[i].name + " ") + "raised " +
                               counted(statistics.timesRaised(), "time");
            if (statistics.timesRaised() > 0) {
                line += ", longest " + counted(statistics.longestSamples(), "sample");
                if (const std::optional<double> seconds = statistics.longestSeconds()) {
                    line += ", " + secondsText(*seconds);
                }
            }
            m_output.writeLine(line);
        }
    }

    void printSummaryAsJson()
    {
        Json summary;
        summary["samples"] = m_evaluable + m_skipped;
        summary["skipped"] = m_skipped;
        summary["evaluations"] = m_evaluations;
        summary["conditions"] = Json::array();
        const std::vector<ConditionState> conditions = m_session.states();
        for (std::size_t i = 0; i < conditions.size(); ++i) {
            Json condition;
            if (!conditions[i].name.empty()) {
                condition["condition"] = conditions[i].name;
            }
            condition["times_raised"] = m_statistics[i].timesRaised();
            condition["longest_samples"] = m_statistics[i].longestSamples();
            const std::optional<double> seconds = m_statistics[i].longestSeconds();
            condition["longest_seconds"] = seconds ? Json(roundedToMilliseconds(*seconds)) : Json(nullptr);
            summary["conditions"].push_back(condition);
        }
        printJson({{"summary", summary}});
    }

    void printJson(const Json& result) { m_output.writeLine(jsonLine(result)); }

    const RuleEvalOptions& m_options;
    RuleSession m_session;
    SampleTimes m_times;
    std::vector<RaiseStatistics> m_statistics;
    ResultOutput m_output;
    std::uint64_t m_evaluable = 0;
    std::uint64_t m_skipped = 0;
    std::uint64_t m_evaluations = 0;
};

// Reports why a rule is not evaluated: a fault of its text, or, without one, `reason`.
void refuse(const RuleEvalOptions& options, const std::string& reason, const std::optional<RuleFault>& fault)
{
    const std::string& rule = options.rule;
    if (options.isJson) {
        Json refused = {{"rule", rule}};
        if (fault) {
            addFault(refused, rule, *fault);
        } else {
            refused["reason"] = reason;
        }
        ResultOutput output;
        output.writeLine(jsonLine({{"refused", refused}}));
        output.finish();
        return;
    }
    if (fault) {
        printRefusal("rule", rule, *fault);
    } else {
        printMessage("rule: refused: " + reason);
    }
}

// The parsed rule; nothing, after a message to the user, if it is refused or cannot be evaluated.
std::optional<vemorRules::RuleObject> evaluableRule(const RuleEvalOptions& options)
{
    vemorRules::RuleObject parsed;
    if (!vemorRules::parseRule(options.rule, &parsed)) {
        const RuleFault fault = explainRefusal(options.rule);
        refuse(options, fault.reason, fault);
        return std::nullopt;
    }
    if (const std::optional<std::string> reason = vemorRules::reasonAgainstEvaluation(parsed)) {
        refuse(options, *reason, std::nullopt);
        return std::nullopt;
    }
    return parsed;
}

}  // namespace

ExitCode evaluateRule(const RuleEvalOptions& options)
{
    const std::optional<vemorRules::RuleObject> rule = evaluableRule(options);
    if (!rule) {
        return EXIT_NEGATIVE_ANSWER;
    }
    const bool isUnsigned = vemorRules::isUnsignedRule(options.rule);
    const SampleRange range = sampleRange(isUnsigned);
    LineReader lines(options.input);
    const StopNotice stopNotice;
    lines.endAt(stopNotice.descriptor());
    SampleReader samples(lines, options.columns, range.lowest, range.highest);
    RuleEvaluation evaluation(options, *rule, isUnsigned);
    while (const std::optional<Sample> sample = samples.next()) {
        if (sample->fault.empty()) {
            evaluation.evaluate(*sample);
            continue;
        }
        const std::string fault = lines.name() + ":" + std::to_string(sample->line) + ": sample " +
                                  std::to_string(sample->number) + ": " + sample->fault;
        if (options.endsAtFault) {
            throw CommandError(fault);
        }
        evaluation.skip(fault);
    }
    if (!evaluation.hasSamples()) {
        throw CommandError(lines.name() + ": there is no sample to evaluate");
    }
    evaluation.finish();
    return EXIT_FINE;
}

}  // namespace brantel
