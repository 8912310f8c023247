#ifndef SLOT_WATCH_H
#define SLOT_WATCH_H

// Watches the card in one slot by the rules that the event database allows for it.

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <EventMgmtRulesParsing.h>
#include <EvmDatabase.h>
#include <IcscClientProxy.h>
#include <IcscReading.h>
#include <RuleDiagnosis.h>
#include <RuleSample.h>
#include <icsc/OBappsToICSC_1_0_PR.h>
#include <sql/Database.h>

/// A rule, and what its next evaluation needs.
struct WatchedRule {
    std::uint32_t oid = 0;
    std::string text;
    bool isUnsigned = false;  ///< the RuleObject does not know it
    vemorRules::RuleObject rule;
    std::optional<std::int64_t> previousSample;  ///< for a rule about delta
    bool isRaised = false;
    bool isLowRaised = false;  ///< the lower condition of a double hysteresis
};

class SlotWatch : public OBappsToICSC_1_0_PR {
public:
    explicit SlotWatch(std::uint32_t slot) : m_slot(slot) {}

    void loadRules(sql::Database& database)
    {
        using eventMgmt::EvmDatabase;
        const sql::Table rules(database, {EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME,
                                          EvmDatabase::getIfcCardAllowEventsTableDefinition()});
        rules.forEach({{EvmDatabase::ALLOW_IGNORE_COLUMN_SLOT_NR, m_slot}}, [this](const sql::Row& row) {
            const auto oid = std::stoul(std::get<std::string>(row[2]));  // after RowIndex and Slot
            addRule(static_cast<std::uint32_t>(oid), std::get<std::string>(row[3]));
        });
    }

    /// Asks the card for the objects of all rules; the answer comes from the dispatch of the component.
    void poll() { m_isWaiting = IcscClientProxy::getInstance().getOidsAsync(m_slot, m_oids); }

    bool isWaiting() const { return m_isWaiting; }

    void ICSCReadReply(const OBmessage& /*request*/, const buffer_t& tlvs, int result) override
    {
        m_isWaiting = false;
        if (result != icsc::RESULT_OK) {  // obResult::TIMEOUT if no card answered
            std::cout << "slot " << m_slot << ": no values, result " << result << '\n';
            return;
        }
        OidTypeValueMap values;
        if (!icsc::decodeAnswer(m_slot, tlvs, values, &m_oids)) {
            return;  // the log says why
        }
        for (WatchedRule& watched : m_rules) {
            if (watched.isUnsigned) {
                evaluate<unsigned int>(watched, values.at(watched.oid));
            } else {
                evaluate<int>(watched, values.at(watched.oid));
            }
        }
    }

private:
    void addRule(std::uint32_t oid, const std::string& text)
    {
        WatchedRule watched;  // a fresh RuleObject for each rule
        watched.oid = oid;
        watched.text = text;
        if (!vemorRules::parseRule(text, &watched.rule)) {
            const std::optional<vemorRules::RuleFault> fault = vemorRules::findFault(text);
            std::cout << text << " is refused at " << fault->position << ": " << fault->reason << "; " << fault->remedy
                      << '\n';
            return;
        }
        if (const std::optional<std::string> reason = vemorRules::reasonAgainstEvaluation(watched.rule)) {
            std::cout << text << " is never evaluated: " << *reason << '\n';
            return;
        }
        watched.isUnsigned = vemorRules::isUnsignedRule(text);
        m_rules.push_back(watched);
        if (std::find(m_oids.begin(), m_oids.end(), oid) == m_oids.end()) {
            m_oids.push_back(oid);  // a request has each OID once
        }
    }

    /// T is the instantiation that the rule declares.
    template <typename T>
    void evaluate(WatchedRule& watched, const TypeValueRecord& record) const
    {
        const std::optional<T> sample = icsc::sampleOf<T>(record);
        if (!sample) {
            std::cout << "object " << watched.oid << ": " << icsc::reasonAgainstSample<T>(record) << '\n';
            return;
        }
        const bool wasRaised = watched.isRaised || watched.isLowRaised;
        switch (watched.rule.m_expressionType) {
            case vemorRules::SIMPLE_EXPRESSION_VALUE:
                watched.isRaised = checkSimpleValueRule(watched.rule, *sample);
                break;
            case vemorRules::SIMPLE_EXPRESSION_DELTA:
                watched.isRaised = watched.previousSample &&
                                   checkSimpleDeltaRule(watched.rule, static_cast<T>(*watched.previousSample), *sample);
                break;
            case vemorRules::SINGLE_HYSTERESIS:
                watched.isRaised = checkSingleHysteresisRule(watched.rule, *sample, watched.isRaised);
                break;
            case vemorRules::DOUBLE_HYSTERESIS:
                checkDoubleHysteresisRule(watched.rule, *sample, watched.isRaised, watched.isLowRaised);
                break;
            case vemorRules::NO_EXPRESSION: break;
        }
        watched.previousSample = *sample;
        const bool isRaised = watched.isRaised || watched.isLowRaised;
        if (isRaised != wasRaised) {
            std::cout << "object " << watched.oid << ": " << *sample << (isRaised ? " raised " : " cleared ")
                      << watched.text << '\n';
        }
    }

    const std::uint32_t m_slot;
    std::vector<WatchedRule> m_rules;
    ObjectIdContainer m_oids;
    bool m_isWaiting = false;
};

#endif
