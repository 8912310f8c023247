#include "tables/EventTables.h"

#include <algorithm>

#include <boost/algorithm/string/predicate.hpp>

#include "EventMgmtRulesParsing.h"
#include "EvmDatabase.h"
#include "RuleDiagnosis.h"
#include "common/CommandLine.h"
#include "common/NearestWord.h"
#include "common/Numbers.h"
#include "common/PrintableText.h"

namespace brantel {

using eventMgmt::EvmDatabase;

namespace {

// The first part of a text that neither a terminal nor a line of a log can show: a control character, a mark that
// changes the direction of writing, or bytes that are not UTF-8.
struct UnfitText {
    std::size_t position;
    bool isUtf8;
};

std::optional<UnfitText> findUnfitText(const std::string& text)
{
    const std::string shown = printable(text);
    const auto [inText, inShown] = std::mismatch(text.begin(), text.end(), shown.begin(), shown.end());
    if ((inText == text.end()) && (inShown == shown.end())) {
        return std::nullopt;
    }
    const bool isReplacedByAscii = (inShown != shown.end()) && ((*inShown == '?') || (*inShown == ' '));
    return UnfitText{static_cast<std::size_t>(inText - text.begin()), isReplacedByAscii};
}

std::optional<RowFault> faultOfNumber(const sql::Field& field, const sql::Value& value)
{
    const auto* const pNumber = std::get_if<std::int64_t>(&value);
    if (pNumber == nullptr) {
        return RowFault{field.name(), "is not a number", {}};
    }
    if ((*pNumber < 0) || (*pNumber > MAX_NUMBER)) {
        return RowFault{field.name(), std::to_string(*pNumber) + " is outside 0 to " + std::to_string(MAX_NUMBER), {}};
    }
    return std::nullopt;
}

std::optional<RowFault> faultOfFlag(const sql::Field& field, const sql::Value& value)
{
    if ((value == sql::Value(0)) || (value == sql::Value(1))) {
        return std::nullopt;
    }
    return RowFault{field.name(), "is neither true nor false", {}};
}

bool isTableWithChanges(const std::string& name)
{
    const EventTable* const pTable = findEventTable(name);
    return (pTable != nullptr) && (pTable->name() == name) && (pTable->kind() != EventTableKind::CHANGES);
}

std::optional<RowFault> faultOfText(const sql::Field& field, const sql::Value& value)
{
    const auto* const pText = std::get_if<std::string>(&value);
    if (pText == nullptr) {
        return RowFault{field.name(), "is not a text", {}};
    }
    if (field.name() == EvmDatabase::ALLOW_IGNORE_COLUMN_RULE) {
        const std::optional<RuleFault> fault = faultOfStoredRule(*pText);
        return fault ? std::optional(RowFault{field.name(), fault->reason, fault}) : std::nullopt;
    }
    if ((field.name() == EvmDatabase::ALLOW_IGNORE_COLUMN_OID) && (canonicalOid(*pText) != *pText)) {
        return RowFault{field.name(),
                        inQuotes(*pText) + " is not an OID: write a decimal number from 0 to " +
                            std::to_string(MAX_NUMBER) + " without leading zeros",
                        {}};
    }
    if ((field.name() == EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_OID) && !isTableWithChanges(*pText)) {
        return RowFault{field.name(), inQuotes(*pText) + " is not the name of a table that changes", {}};
    }
    return std::nullopt;
}

std::optional<RowFault> faultOfValue(const sql::Field& field, const sql::Value& value)
{
    switch (field.type()) {
        case sql::field_type::INTEGER: return faultOfNumber(field, value);
        case sql::field_type::TEXT: return faultOfText(field, value);
        case sql::field_type::BOOLEAN: return faultOfFlag(field, value);
    }
    return std::nullopt;
}

}  // namespace

EventTable::EventTable(const std::string& name, const std::vector<sql::Field>& columns, EventTableKind kind,
                       std::optional<Place::Kind> placeKind)
    : m_definition{name, {columns.begin(), columns.end() - 1}}, m_kind(kind), m_placeKind(placeKind)
{
}

const std::vector<EventTable>& eventTables()
{
    using Kind = EventTableKind;
    static const std::vector<EventTable> tables{
        {EvmDatabase::COMPONENT_CONFIG_TABLE_NAME, EvmDatabase::getComponentConfigTableDefinition(),
         Kind::CONFIGURATION, Place::Kind::COMPONENT},
        {EvmDatabase::IFC_CARDS_CONFIG_TABLE_NAME, EvmDatabase::getIfcCardsConfigTableDefinition(), Kind::CONFIGURATION,
         Place::Kind::SLOT},
        {EvmDatabase::SYS_CARD_ALLOW_EVENTS_TABLE_NAME, EvmDatabase::getSysCardAllowEventsTableDefinition(),
         Kind::ALLOW, Place::Kind::COMPONENT},
        {EvmDatabase::SYS_CARD_IGNORE_EVENTS_TABLE_NAME, EvmDatabase::getSysCardIgnoreEventsTableDefinition(),
         Kind::IGNORE, Place::Kind::COMPONENT},
        {EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME, EvmDatabase::getIfcCardAllowEventsTableDefinition(),
         Kind::ALLOW, Place::Kind::SLOT},
        {EvmDatabase::IFC_CARDS_IGNORE_EVENTS_TABLE_NAME, EvmDatabase::getIfcCardIgnoreEventsTableDefinition(),
         Kind::IGNORE, Place::Kind::SLOT},
        {EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_NAME, EvmDatabase::getNrOfRowsChangedTableDefinition(), Kind::CHANGES,
         std::nullopt},
    };
    return tables;
}

const EventTable* findEventTable(const std::string& name)
{
    const auto found = std::find_if(eventTables().begin(), eventTables().end(),
                                    [&](const EventTable& table) { return boost::iequals(table.name(), name); });
    return (found == eventTables().end()) ? nullptr : &*found;
}

const EventTable& requireEventTable(const std::string& name)
{
    const EventTable* const pTable = findEventTable(name);
    if (pTable == nullptr) {
        Words names;
        for (const EventTable& table : eventTables()) {
            names.push_back(table.name());
        }
        throw CommandError("unknown table " + inQuotes(name) + suggestionOrChoices(name, names));
    }
    return *pTable;
}

const EventTable& tableFor(EventTableKind kind, Place::Kind placeKind)
{
    return *std::find_if(eventTables().begin(), eventTables().end(), [&](const EventTable& table) {
        return (table.kind() == kind) && (table.placeKind() == placeKind);
    });
}

const EventTable& rowChangeTable()
{
    return eventTables().back();
}

std::vector<std::string> entryColumns(const EventTable& list)
{
    std::vector<std::string> names;
    for (const sql::Field& column : list.columns()) {
        names.push_back(column.name());
    }
    names.erase(names.begin());
    return names;
}

std::vector<RowFault> faultsOfRow(const EventTable& table, const sql::Row& row)
{
    std::vector<RowFault> faults;
    const std::vector<sql::Field>& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (std::optional<RowFault> fault = faultOfValue(columns[i], row[i])) {
            faults.push_back(std::move(*fault));
        }
    }
    return faults;
}

std::optional<RuleFault> faultOfStoredRule(const std::string& rule)
{
    const std::size_t wholeRule = std::max<std::size_t>(rule.size(), 1);
    if (rule.size() > MAX_RULE_LENGTH) {
        return RuleFault{MAX_RULE_LENGTH, 1, "the rule is longer than " + std::to_string(MAX_RULE_LENGTH) + " bytes",
                         "write a shorter rule"};
    }
    vemorRules::RuleObject parsed;
    if (!vemorRules::isEmptyRule(rule)) {
        if (!vemorRules::parseRule(rule, &parsed)) {
            return explainRefusal(rule);
        }
        if (const std::optional<std::string> reason = vemorRules::reasonAgainstEvaluation(parsed)) {
            return RuleFault{0, wholeRule, *reason, "write a rule of one part"};
        }
    }
    const std::optional<UnfitText> unfit = findUnfitText(rule);
    if (unfit && unfit->isUtf8) {
        return RuleFault{unfit->position, 1, "there is a control character", "write the rule in one line"};
    }
    if (unfit) {
        return RuleFault{0, wholeRule, "the text is not UTF-8", "write it in UTF-8"};
    }
    return std::nullopt;
}

std::optional<std::string> canonicalOid(const std::string& text)
{
    const auto number = parseInteger<std::uint32_t>(text);
    return number ? std::optional(std::to_string(*number)) : std::nullopt;
}

void canonicaliseOid(const EventTable& table, sql::Row& row)
{
    const std::vector<sql::Field>& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        auto* const pText = std::get_if<std::string>(&row[i]);
        if ((pText != nullptr) && (columns[i].name() == EvmDatabase::ALLOW_IGNORE_COLUMN_OID)) {
            *pText = canonicalOid(*pText).value_or(*pText);
        }
    }
}

std::string valueText(const sql::Field& field, const sql::Value& value)
{
    if (const auto* const pNumber = std::get_if<std::int64_t>(&value)) {
        if ((field.type() == sql::field_type::BOOLEAN) && ((*pNumber == 0) || (*pNumber == 1))) {
            return (*pNumber == 1) ? "true" : "false";
        }
        return std::to_string(*pNumber);
    }
    if (const auto* const pOther = std::get_if<sql::OtherValue>(&value)) {
        return pOther->text;
    }
    const auto* const pText = std::get_if<std::string>(&value);
    return (pText != nullptr) ? *pText : "";
}

}  // namespace brantel
