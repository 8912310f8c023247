#include "commands/RuleEval.h"

#include <cmath>
#include <iomanip>
#include <iostream>
#include <limits>
#include <sstream>
#include <vector>

#include <nlohmann/json.hpp>

#include "EventMgmtRulesParsing.h"
#include "commands/RuleCheck.h"
#include "common/LineReader.h"
#include "common/ResultOutput.h"
#include "rules/RaiseStatistics.h"
#include "rules/RuleSession.h"
#include "rules/RuleText.h"
#include "samples/SampleTime.h"

using Json = nlohmann::ordered_json;

namespace {

// Differences of times are exact to the millisecond, not beyond.
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
        : m_options(options), m_session(rule, isUnsigned), m_statistics(m_session.conditionNames().size())
    {
    }

    void evaluate(const Sample& sample)
    {
        ++m_evaluable;
        const std::vector<ConditionState> states = m_session.evaluate(sample.value);
        if (states.empty()) {
            if (m_options.tellsAll) {
                tellUndecided(sample);
            }
            return;
        }
        ++m_evaluations;
        const std::optional<double> seconds = sample.time ? secondsOf(*sample.time) : std::nullopt;
        for (std::size_t i = 0; i < states.size(); ++i) {
            m_statistics[i].add(states[i].isRaised, seconds);
            if (states[i].hasChanged || m_options.tellsAll) {
                m_options.isJson ? tellStateAsJson(sample, states[i]) : tellState(sample, states[i]);
            }
        }
    }

    void skip(const std::string& fault)
    {
        ++m_skipped;
        m_output.finish();  // in the order in which it happens
        std::cerr << "brantel: " << fault << ", skipped\n";
    }

    /// False if there was nothing that could be evaluated.
    bool hasSamples() const { return m_evaluable > 0; }

    void finish()
    {
        m_options.isJson ? tellSummaryAsJson() : tellSummary();
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

    void tellState(const Sample& sample, const ConditionState& state)
    {
        std::string words = state.isRaised ? "raised" : "cleared";
        words = state.hasChanged ? m_output.coloured(state.isRaised ? Colour::RED : Colour::GREEN, words)
                                 : m_output.coloured(Colour::DIM, "stays " + words);
        m_output.writeLine(sampleText(sample) + (state.name.empty() ? "" : state.name + " ") + words);
    }

    void tellStateAsJson(const Sample& sample, const ConditionState& state)
    {
        Json result = sampleJson(sample);
        if (!state.name.empty()) {
            result["condition"] = state.name;
        }
        result["state"] = state.isRaised ? "raised" : "cleared";
        result["changed"] = state.hasChanged;
        tellJson(result);
    }

    void tellUndecided(const Sample& sample)
    {
        if (!m_options.isJson) {
            m_output.writeLine(sampleText(sample) + "no sample before to compare with");
            return;
        }
        Json result = sampleJson(sample);
        result["state"] = nullptr;
        result["changed"] = false;
        tellJson(result);
    }

    void tellSummary()
    {
        m_output.writeLine(counted(m_evaluable + m_skipped, "sample") + ", " + std::to_string(m_skipped) +
                           " skipped, " + counted(m_evaluations, "evaluation"));
        const std::vector<std::string> names = m_session.conditionNames();
        for (std::size_t i = 0; i < names.size(); ++i) {
            const RaiseStatistics& statistics = m_statistics[i];
            std::string line =
                (names[i].empty() ? "" : names[i] + " ") + "raised " + counted(statistics.timesRaised(), "time");
            if (statistics.timesRaised() > 0) {
                line += ", longest " + counted(statistics.longestSamples(), "sample");
                if (const std::optional<double> seconds = statistics.longestSeconds()) {
                    line += ", " + secondsText(*seconds);
                }
            }
            m_output.writeLine(line);
        }
    }

    void tellSummaryAsJson()
    {
        Json summary;
        summary["samples"] = m_evaluable + m_skipped;
        summary["skipped"] = m_skipped;
        summary["evaluations"] = m_evaluations;
        summary["conditions"] = Json::array();
        const std::vector<std::string> names = m_session.conditionNames();
        for (std::size_t i = 0; i < names.size(); ++i) {
            Json condition;
            if (!names[i].empty()) {
                condition["condition"] = names[i];
            }
            condition["times_raised"] = m_statistics[i].timesRaised();
            condition["longest_samples"] = m_statistics[i].longestSamples();
            const std::optional<double> seconds = m_statistics[i].longestSeconds();
            condition["longest_seconds"] = seconds ? Json(roundedToMilliseconds(*seconds)) : Json(nullptr);
            summary["conditions"].push_back(condition);
        }
        tellJson({{"summary", summary}});
    }

    void tellJson(const Json& result)
    {
        m_output.writeLine(result.dump(-1, ' ', false, Json::error_handler_t::replace));
    }

    const RuleEvalOptions& m_options;
    RuleSession m_session;
    std::vector<RaiseStatistics> m_statistics;
    ResultOutput m_output;
    std::uint64_t m_evaluable = 0;
    std::uint64_t m_skipped = 0;
    std::uint64_t m_evaluations = 0;
};

// The rule in its parsed form; nothing, after a word to the user, if it is refused or can not be evaluated.
std::optional<vemorRules::RuleObject> evaluableRule(const std::string& rule)
{
    vemorRules::RuleObject parsed;
    if (!vemorRules::parseRule(rule, &parsed)) {
        const RuleFault fault = explainRefusal(rule);
        std::cerr << "brantel: rule:" << columnOf(rule, fault) << ": refused: " << printable(fault.reason) << '\n';
        for (const std::string& line : pictureOf(rule, fault)) {
            std::cerr << line << '\n';
        }
        return std::nullopt;
    }
    if (const std::optional<std::string> reason = reasonAgainstEvaluation(parsed)) {
        std::cerr << "brantel: rule: refused: " << *reason << '\n';
        return std::nullopt;
    }
    return parsed;
}

}  // namespace

ExitCode evaluateRule(const RuleEvalOptions& options)
{
    const std::optional<vemorRules::RuleObject> rule = evaluableRule(options.rule);
    if (!rule) {
        return EXIT_NEGATIVE_ANSWER;
    }
    const bool isUnsigned = isUnsignedRule(options.rule);
    const SampleRange range = sampleRange(isUnsigned);
    LineReader lines(options.input);
    SampleReader samples(lines, options.columns, range.lowest, range.highest);
    RuleEvaluation evaluation(options, *rule, isUnsigned);
    while (const std::optional<Sample> sample = samples.next()) {
        if (sample->fault.empty()) {
            evaluation.evaluate(*sample);
            continue;
        }
        const std::string fault = lines.name() + ":" + std::to_string(sample->line) + ": sample " +
                                  std::to_string(sample->number) + ": " + printable(sample->fault);
        if (options.onError == "fail") {
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
