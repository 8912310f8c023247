#include "monitor/ConditionMonitor.h"

#include <algorithm>

#include "EventMgmtRulesParsing.h"
#include "cards/ResultText.h"
#include "monitor/SampleOfValue.h"
#include "rules/RuleReason.h"
#include "rules/RuleText.h"

namespace {

std::optional<RuleSession> sessionOf(const std::string& rule)
{
    vemorRules::RuleObject parsed;
    if (!vemorRules::parseRule(rule, &parsed) || reasonAgainstEvaluation(parsed)) {
        return std::nullopt;
    }
    return RuleSession(parsed, isUnsignedRule(rule));
}

Event conditionEvent(const RuleKey& key, bool isRaised, const std::string& condition, EventTime now)
{
    Event event;
    event.time = now;
    event.kind = isRaised ? EventKind::RAISED : EventKind::CLEARED;
    event.place = key.place;
    event.oid = key.oid;
    event.rule = key.rule;
    event.condition = condition;
    return event;
}

// Sets `failure`, and tells of a change from none or to none. One failure that takes the place of another is none.
void setFailure(const Place& place, std::optional<std::uint32_t> oid, std::string& failure, const std::string& reason,
                EventTime now, std::vector<Event>& events)
{
    if (failure.empty() != reason.empty()) {
        Event event;
        event.time = now;
        event.kind = reason.empty() ? EventKind::ANSWERS : EventKind::FAILED;
        event.place = place;
        event.oid = oid;
        event.why = reason.empty() ? "again, after: " + failure : reason;
        events.push_back(event);
    }
    failure = reason;
}

// Why a rule that was followed is not in the book any more.
std::string reasonOfAbsence(const RuleBook& book, const Place& place, std::uint32_t oid)
{
    if (book.unservedPlaces.count(place) != 0) {
        return placeText(place) + " is not served any more";
    }
    if (book.enabledPlaces.count(place) == 0) {
        return "events of " + placeText(place) + " are not enabled any more";
    }
    if (book.ignored.count({place, oid}) != 0) {
        return "events of the object are ignored now";
    }
    return "the rule is not in the database any more";
}

// Clears what is raised of a rule that goes.
void clearConditions(const RuleKey& key, const RuleSession& session, const std::string& why, EventTime now,
                     std::vector<Event>& events)
{
    const std::vector<std::string> conditions = session.conditionNames();
    for (std::size_t i = 0; i < conditions.size(); ++i) {
        if (session.memory().isRaised[i]) {
            Event event = conditionEvent(key, false, conditions[i], now);
            event.previousValue = session.memory().previousSample;
            event.why = why;
            events.push_back(event);
        }
    }
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
    m_places[key.place].objects[key.oid].rules.push_back({key.rule, *session});
    return true;
}

void ConditionMonitor::restoreFailure(const Place& place, std::optional<std::uint32_t> oid, const std::string& failure)
{
    (oid ? m_places[place].objects[*oid].failure : m_places[place].failure) = failure;
}

void ConditionMonitor::follow(const RuleBook& book, EventTime now, Events& events)
{
    dropRulesWithout(book, now, events);
    for (const RuleKey& key : book.rules) {
        if (findRule(key) == nullptr) {
            restoreRule(key, RuleMemory());
        }
    }
    for (const RefusedRow& refused : book.refusedRows) {
        if (m_refusedRows.count(refused) == 0) {
            Event event;
            event.time = now;
            event.kind = EventKind::REFUSED;
            event.why = refused.table + ", row " + std::to_string(refused.row) + ": " + refused.reason;
            events.push_back(event);
        }
    }
    m_refusedRows = book.refusedRows;
}

WatchedRule* ConditionMonitor::findRule(const RuleKey& key)
{
    const auto place = m_places.find(key.place);
    if (place == m_places.end()) {
        return nullptr;
    }
    const auto object = place->second.objects.find(key.oid);
    if (object == place->second.objects.end()) {
        return nullptr;
    }
    std::vector<WatchedRule>& rules = object->second.rules;
    const auto rule =
        std::find_if(rules.begin(), rules.end(), [&](const WatchedRule& each) { return each.text == key.rule; });
    return (rule == rules.end()) ? nullptr : &*rule;
}

void ConditionMonitor::dropRulesWithout(const RuleBook& book, EventTime now, Events& events)
{
    for (auto place = m_places.begin(); place != m_places.end();) {
        auto& objects = place->second.objects;
        for (auto object = objects.begin(); object != objects.end();) {
            const auto isGone = [&](const WatchedRule& rule) {
                const RuleKey key{place->first, object->first, rule.text};
                if (book.rules.count(key) != 0) {
                    return false;
                }
                clearConditions(key, rule.session, reasonOfAbsence(book, key.place, key.oid), now, events);
                return true;
            };
            std::vector<WatchedRule>& rules = object->second.rules;
            rules.erase(std::remove_if(rules.begin(), rules.end(), isGone), rules.end());
            object = rules.empty() ? objects.erase(object) : std::next(object);
        }
        place = objects.empty() ? m_places.erase(place) : std::next(place);
    }
}

void ConditionMonitor::takeReading(const Place& place, const Reading& reading, EventTime now, Events& events)
{
    const auto found = m_places.find(place);
    if (found == m_places.end()) {
        return;
    }
    if (reading.values.empty() && !reading.failures.empty()) {
        takeFailure(place, describeResult(reading.failures.begin()->second), now, events);
        return;
    }
    setFailure(place, std::nullopt, found->second.failure, "", now, events);
    for (auto& [oid, object] : found->second.objects) {
        const std::string failure = takeValue(place, oid, object, reading, now, events);
        setFailure(place, oid, object.failure, failure, now, events);
    }
}

void ConditionMonitor::takeFailure(const Place& place, const std::string& reason, EventTime now, Events& events)
{
    const auto found = m_places.find(place);
    if (found != m_places.end()) {
        setFailure(place, std::nullopt, found->second.failure, reason, now, events);
    }
}

// Returns why the object could not be evaluated, wholly or in part. The reason does not name the value: as long as it
// stays the same, the failure does.
std::string ConditionMonitor::takeValue(const Place& place, std::uint32_t oid, WatchedObject& object,
                                        const Reading& reading, EventTime now, Events& events)
{
    const auto value = reading.values.find(oid);
    if (value == reading.values.end()) {
        const auto failure = reading.failures.find(oid);
        // An object whose rule came while the reading was under way was not asked for.
        return (failure == reading.failures.end()) ? object.failure : describeResult(failure->second);
    }
    const std::optional<SampleValue> sample = sampleOfValue(value->second);
    if (!sample) {
        return "its value is not a number";
    }
    std::string failure;
    for (WatchedRule& rule : object.rules) {
        const SampleRange range = sampleRange(rule.session.isUnsigned());
        if ((*sample < range.lowest) || (*sample > range.highest)) {
            failure = "its value is outside " + rangeText(range) + ", what '" + rule.text + "' can be asked about";
        } else {
            evaluate(place, oid, rule, *sample, now, events);
        }
    }
    return failure;
}

void ConditionMonitor::evaluate(const Place& place, std::uint32_t oid, WatchedRule& rule, SampleValue sample,
                                EventTime now, Events& events)
{
    const std::optional<SampleValue> previousSample = rule.session.memory().previousSample;
    const std::vector<ConditionState> states = rule.session.evaluate(sample);
    ++m_evaluations;
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (states[i].hasChanged) {
            Event event = conditionEvent({place, oid, rule.text}, states[i].isRaised, states[i].name, now);
            event.value = sample;
            event.previousValue = previousSample;
            event.why = reasonOfState(rule.session, i, previousSample.value_or(sample), sample);
            events.push_back(event);
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
