#include "monitor/ConditionMonitor.h"

#include <iterator>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"
#include "RuleSample.h"
#include "cards/ResultText.h"
#include "rules/RuleReason.h"

namespace brantel {
namespace {

std::optional<RuleSession> sessionOf(const std::string& rule)
{
    vemorRules::RuleObject parsed;
    if (!vemorRules::parseRule(rule, &parsed) || vemorRules::reasonAgainstEvaluation(parsed)) {
        return std::nullopt;
    }
    return RuleSession(parsed, vemorRules::isUnsignedRule(rule));
}

Event& addConditionEvent(const EventSink& sink, const RuleKey& key, bool isRaised, const std::string& condition)
{
    Event& event = sink.add(isRaised ? EventKind::RAISED : EventKind::CLEARED);
    event.place = key.place;
    event.oid = key.oid;
    event.rule = key.rule;
    event.condition = condition;
    return event;
}

// Sets `failure`, and reports a change from none or to none. One failure in place of another is not an event.
void setFailure(const Place& place, std::optional<std::uint32_t> oid, std::string& failure, const std::string& reason,
                const EventSink& sink)
{
    if (failure.empty() != reason.empty()) {
        Event& event = sink.add(reason.empty() ? EventKind::RECOVERED : EventKind::FAILED);
        event.place = place;
        event.oid = oid;
        event.reason = reason.empty() ? "after: " + failure : reason;
    }
    failure = reason;
}

// Why a rule that was followed is no longer in the rule set.
std::string reasonOfAbsence(const RuleSet& ruleSet, const Place& place, std::uint32_t oid)
{
    if (ruleSet.unservedPlaces.count(place) != 0) {
        return placeText(place) + " is no longer served";
    }
    if (ruleSet.enabledPlaces.count(place) == 0) {
        return "events of " + placeText(place) + " are no longer enabled";
    }
    if (ruleSet.ignored.count({place, oid}) != 0) {
        return "the object's events are now ignored";
    }
    return "the rule is no longer in the database";
}

// Clears the raised conditions of a rule that goes.
void clearConditions(const RuleKey& key, const RuleSession& session, const std::string& reason, const EventSink& sink)
{
    for (const ConditionState& condition : session.states()) {
        if (condition.isRaised) {
            Event& event = addConditionEvent(sink, key, false, condition.name);
            event.previousValue = session.memory().previousSample;
            event.reason = reason;
        }
    }
}

std::optional<SampleValue> sampleFor(const RuleSession& session, const TypeValueRecord& record)
{
    if (session.isUnsigned()) {
        return icsc::sampleOf<unsigned int>(record);
    }
    return icsc::sampleOf<int>(record);
}

std::string rangeText(const SampleRange& range)
{
    return std::to_string(range.lowest) + " to " + std::to_string(range.highest);
}

}  // namespace

bool ConditionMonitor::restoreRule(const RuleKey& key, const RuleMemory& memory)
{
    std::optional<RuleSession> session = sessionOf(key.rule);
    if (!session) {
        return false;
    }
    session->setMemory(memory);
    m_places[key.place].objects[key.oid].rules.insert_or_assign(key.rule, *session);
    return true;
}

void ConditionMonitor::restoreFailure(const Place& place, std::optional<std::uint32_t> oid, const std::string& failure)
{
    (oid ? m_places[place].objects[*oid].failure : m_places[place].failure) = failure;
}

void ConditionMonitor::follow(const RuleSet& ruleSet, const EventSink& sink)
{
    dropRulesWithout(ruleSet, sink);
    for (const RuleKey& key : ruleSet.rules) {
        if (!hasRule(key)) {
            restoreRule(key, RuleMemory());
        }
    }
    for (const RefusedRow& refused : ruleSet.refusedRows) {
        if (m_refusedRows.count(refused) == 0) {
            sink.add(EventKind::REFUSED).reason =
                refused.table + ", row " + std::to_string(refused.row) + ": " + refused.reason;
        }
    }
    m_refusedRows = ruleSet.refusedRows;
}

bool ConditionMonitor::hasRule(const RuleKey& key) const
{
    const auto place = m_places.find(key.place);
    if (place == m_places.end()) {
        return false;
    }
    const auto object = place->second.objects.find(key.oid);
    return (object != place->second.objects.end()) && (object->second.rules.count(key.rule) != 0);
}

void ConditionMonitor::dropRulesWithout(const RuleSet& ruleSet, const EventSink& sink)
{
    for (auto place = m_places.begin(); place != m_places.end();) {
        auto& objects = place->second.objects;
        for (auto object = objects.begin(); object != objects.end();) {
            auto& rules = object->second.rules;
            for (auto rule = rules.begin(); rule != rules.end();) {
                const RuleKey key{place->first, object->first, rule->first};
                if (ruleSet.rules.count(key) != 0) {
                    ++rule;
                } else {
                    clearConditions(key, rule->second, reasonOfAbsence(ruleSet, key.place, key.oid), sink);
                    rule = rules.erase(rule);
                }
            }
            object = rules.empty() ? objects.erase(object) : std::next(object);
        }
        place = objects.empty() ? m_places.erase(place) : std::next(place);
    }
}

void ConditionMonitor::takeReading(const Place& place, const Reading& reading, const EventSink& sink)
{
    const auto found = m_places.find(place);
    if (found == m_places.end()) {
        return;
    }
    if (reading.values.empty() && !reading.failures.empty()) {
        takeFailure(place, resultText(reading.failures.begin()->second), sink);
        return;
    }
    setFailure(place, std::nullopt, found->second.failure, "", sink);
    for (auto& [oid, object] : found->second.objects) {
        const std::string failure = takeValue(place, oid, object, reading, sink);
        setFailure(place, oid, object.failure, failure, sink);
    }
}

void ConditionMonitor::takeFailure(const Place& place, const std::string& reason, const EventSink& sink)
{
    const auto found = m_places.find(place);
    if (found != m_places.end()) {
        setFailure(place, std::nullopt, found->second.failure, reason, sink);
    }
}

// Returns why the object could not be evaluated, entirely or in part. The reason does not name the value, so that it is
// the same for as long as the failure lasts.
std::string ConditionMonitor::takeValue(const Place& place, std::uint32_t oid, WatchedObject& object,
                                        const Reading& reading, const EventSink& sink)
{
    const auto value = reading.values.find(oid);
    if (value == reading.values.end()) {
        const auto failure = reading.failures.find(oid);
        // The object was not requested if its rule came while the reading was under way.
        return (failure == reading.failures.end()) ? object.failure : resultText(failure->second);
    }
    if (!icsc::isNumericType(value->second.type)) {
        return "its value is not a number";
    }
    std::string failure;
    for (auto& rule : object.rules) {
        if (const std::optional<SampleValue> sample = sampleFor(rule.second, value->second)) {
            evaluate(place, oid, rule, *sample, sink);
        } else {
            failure = "its value is outside " + rangeText(sampleRange(rule.second.isUnsigned())) + ", the range of '" +
                      rule.first + "'";
        }
    }
    return failure;
}

void ConditionMonitor::evaluate(const Place& place, std::uint32_t oid, WatchedRules::value_type& rule,
                                SampleValue sample, const EventSink& sink)
{
    auto& [text, session] = rule;
    const std::optional<SampleValue> previousSample = session.memory().previousSample;
    const std::vector<ConditionState> states = session.evaluate(sample);
    ++m_evaluations;
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (states[i].hasChanged) {
            Event& event = addConditionEvent(sink, {place, oid, text}, states[i].isRaised, states[i].name);
            event.value = sample;
            event.previousValue = previousSample;
            event.reason = reasonText(session, i, previousSample.value_or(sample), sample);
        }
    }
}

ObjectIdContainer ConditionMonitor::oidsOf(const Place& place) const
{
    ObjectIdContainer oids;
    const auto found = m_places.find(place);
    if (found != m_places.end()) {
        for (const auto& [oid, object] : found->second.objects) {
            oids.push_back(oid);
        }
    }
    return oids;
}

}  // namespace brantel
