#include "tables/EventTables.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <boost/algorithm/string/predicate.hpp>
#include <nlohmann/json.hpp>

#include "EventMgmtRulesParsing.h"
#include "rules/RuleSession.h"

using eventMgmt::EvmDatabase;

namespace {

constexpr std::int64_t MAX_NUMBER = std::numeric_limits<std::uint32_t>::max();

bool isControlCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20) || (byte == 0x7F);
}

bool isUtf8(const std::string& text)
{
    try {
        static_cast<void>(nlohmann::json(text).dump());
        return true;
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

std::optional<RowFault> faultOfNumber(const sql::Field& field, const sql::Value& value)
{
    const auto* const pNumber = std::get_if<std::int64_t>(&value);
    if (pNumber == nullptr) {
        return RowFault{field.name(), "is no number", {}};
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

std::optional<RowFault> faultOfText(const sql::Field& field, const sql::Value& value)
{
    const auto* const pText = std::get_if<std::string>(&value);
    if (pText == nullptr) {
        return RowFault{field.name(), "is no text", {}};
    }
    if (field.name() == EvmDatabase::ALLOW_IGNORE_COLUMN_RULE) {
        const std::optional<RuleFault> fault = faultOfStoredRule(*pText);
        return fault ? std::optional(RowFault{field.name(), fault->reason, fault}) : std::nullopt;
    }
    if ((field.name() == EvmDatabase::ALLOW_IGNORE_COLUMN_OID) && (canonicalOid(*pText) != *pText)) {
        return RowFault{field.name(),
                        "'" + *pText + "' is no OID: write a decimal number from 0 to " + std::to_string(MAX_NUMBER) +
                            " without leading zeros",
                        {}};
    }
    if (std::any_of(pText->begin(), pText->end(), isControlCharacter) || !isUtf8(*pText)) {
        return RowFault{field.name(), "is not one line of UTF-8 text", {}};
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

EventTable::EventTable(const std::string& name, const sql::Definition& definition, EventTableKind kind)
    : m_definition{name, definition}, m_kind(kind), m_columns(definition.begin(), definition.end() - 1)
{
}

std::string EventTable::ownerWord() const
{
    return (m_columns[ownerColumn()].name() == EvmDatabase::IFC_CARD_CFG_COLUMN_SLOT) ? "slot" : "component";
}

const std::vector<EventTable>& eventTables()
{
    using Kind = EventTableKind;
    static const std::vector<EventTable> tables{
        {EvmDatabase::COMPONENT_CONFIG_TABLE_NAME, EvmDatabase::getComponentConfigTableDefinition(),
         Kind::CONFIGURATION},
        {EvmDatabase::IFC_CARDS_CONFIG_TABLE_NAME, EvmDatabase::getIfcCardsConfigTableDefinition(),
         Kind::CONFIGURATION},
        {EvmDatabase::SYS_CARD_ALLOW_EVENTS_TABLE_NAME, EvmDatabase::getSysCardAllowEventsTableDefinition(),
         Kind::ALLOW},
        {EvmDatabase::SYS_CARD_IGNORE_EVENTS_TABLE_NAME, EvmDatabase::getSysCardIgnoreEventsTableDefinition(),
         Kind::IGNORE},
        {EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME, EvmDatabase::getIfcCardAllowEventsTableDefinition(),
         Kind::ALLOW},
        {EvmDatabase::IFC_CARDS_IGNORE_EVENTS_TABLE_NAME, EvmDatabase::getIfcCardIgnoreEventsTableDefinition(),
         Kind::IGNORE},
        {EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_NAME, EvmDatabase::getNrOfRowsChangedTableDefinition(), Kind::CHANGES},
    };
    return tables;
}

std::vector<sql::TableDefinition> eventTableDefinitions()
{
    std::vector<sql::TableDefinition> definitions;
    for (const EventTable& table : eventTables()) {
        definitions.push_back(table.definition());
    }
    return definitions;
}

const EventTable* findEventTable(const std::string& name)
{
    const auto found = std::find_if(eventTables().begin(), eventTables().end(),
                                    [&](const EventTable& table) { return boost::iequals(table.name(), name); });
    return (found == eventTables().end()) ? nullptr : &*found;
}

const EventTable& componentConfigTable()
{
    return *findEventTable(EvmDatabase::COMPONENT_CONFIG_TABLE_NAME);
}

const EventTable& ifcCardsConfigTable()
{
    return *findEventTable(EvmDatabase::IFC_CARDS_CONFIG_TABLE_NAME);
}

const EventTable& rowChangeTable()
{
    return *findEventTable(EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_NAME);
}

const EventTable& allowIgnoreTable(eventMgmt::AllowIgnoreTableId id)
{
    return *findEventTable(eventMgmt::allowIgnoreTableId2Name(id));
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
    const TextSpan wholeRule{0, std::max<std::size_t>(rule.size(), 1)};
    vemorRules::RuleObject parsed;
    if (!vemorRules::isEmptyRule(rule)) {
        if (!vemorRules::parseRule(rule, &parsed)) {
            return findFault(rule).value_or(
                RuleFault{wholeRule, "the parser refuses it", "compare it with a rule that is valid"});
        }
        if (const std::optional<std::string> reason = reasonAgainstEvaluation(parsed)) {
            return RuleFault{wholeRule, *reason, "write a rule of one part"};
        }
    }
    const auto control = std::find_if(rule.begin(), rule.end(), isControlCharacter);
    if (control != rule.end()) {
        const auto position = static_cast<std::size_t>(control - rule.begin());
        return RuleFault{{position, 1}, "there is a control character", "write the rule in one line"};
    }
    if (!isUtf8(rule)) {
        return RuleFault{wholeRule, "the text is not UTF-8", "write it in UTF-8"};
    }
    return std::nullopt;
}

std::optional<std::string> canonicalOid(const std::string& text)
{
    const bool isHexadecimal = boost::istarts_with(text, "0x");
    const char* const pBegin = text.data() + (isHexadecimal ? 2 : 0);
    const char* const pEnd = text.data() + text.size();
    std::uint32_t number = 0;
    const std::from_chars_result result = std::from_chars(pBegin, pEnd, number, isHexadecimal ? 16 : 10);
    if ((result.ec != std::errc()) || (result.ptr != pEnd)) {
        return std::nullopt;
    }
    return std::to_string(number);
}

std::string valueText(const sql::Field& field, const sql::Value& value)
{
    if (const auto* const pNumber = std::get_if<std::int64_t>(&value)) {
        if (field.type() == sql::field_type::BOOLEAN) {
            return (*pNumber != 0) ? "true" : "false";
        }
        return std::to_string(*pNumber);
    }
    const auto* const pText = std::get_if<std::string>(&value);
    return (pText != nullptr) ? *pText : "";
}
