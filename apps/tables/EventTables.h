#ifndef APPS_TABLES_EVENT_TABLES_H
#define APPS_TABLES_EVENT_TABLES_H

// The seven tables of the event-management database as data, and what is right in a row of them beyond what the
// definitions say.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "EvmDatabase.h"
#include "rules/RuleDiagnosis.h"
#include "sql/Database.h"

/// What a row of a table says.
enum class EventTableKind {
    CONFIGURATION,  ///< whether a component or a card may raise events
    ALLOW,          ///< by which rule events of an OID are allowed
    IGNORE,         ///< that events of an OID are ignored
    CHANGES         ///< that the rows of a component or a card in another table changed
};

class EventTable {
public:
    EventTable(const std::string& name, const sql::Definition& definition, EventTableKind kind);

    const std::string& name() const { return m_definition.name; }
    const sql::TableDefinition& definition() const { return m_definition; }
    EventTableKind kind() const { return m_kind; }

    /// The columns, without the empty field.
    const std::vector<sql::Field>& columns() const { return m_columns; }

    /// The position of the column that names the component or the slot.
    std::size_t ownerColumn() const { return (m_kind == EventTableKind::CONFIGURATION) ? 0 : 1; }

    /// What the owners of its rows are called: "component" or "slot".
    std::string ownerWord() const;

    /// Whether rows are numbered by the database, in a first column "RowIndex" that says nothing else.
    bool hasRowIndex() const { return m_kind != EventTableKind::CONFIGURATION; }

private:
    sql::TableDefinition m_definition;
    EventTableKind m_kind;
    std::vector<sql::Field> m_columns;
};

/// All seven, the row-change table last.
const std::vector<EventTable>& eventTables();

/// Their definitions.
std::vector<sql::TableDefinition> eventTableDefinitions();

/// The table of that name, in any letter case; null if there is none.
const EventTable* findEventTable(const std::string& name);

const EventTable& componentConfigTable();
const EventTable& ifcCardsConfigTable();
const EventTable& rowChangeTable();
const EventTable& allowIgnoreTable(eventMgmt::AllowIgnoreTableId id);

/// What is wrong with a value of a row.
struct RowFault {
    std::string column;
    std::string reason;
    std::optional<RuleFault> ruleFault;  ///< where it is in the text of a rule
};

/// Everything that is wrong with a row that its table holds or shall hold: a number that is not one of 32 bits, an OID
/// that is not written as one, a rule that the parser refuses or that can never be evaluated, a text that is not one
/// line of UTF-8.
std::vector<RowFault> faultsOfRow(const EventTable& table, const sql::Row& row);

/// Why a rule text can not be stored; nothing if it can.
std::optional<RuleFault> faultOfStoredRule(const std::string& rule);

/// An OID as it is stored: decimal, without leading zeros. Nothing if the text, decimal or hexadecimal after "0x", is
/// not a number of 32 bits.
std::optional<std::string> canonicalOid(const std::string& text);

/// A value as people read it: "true" and "false" in a BOOLEAN column.
std::string valueText(const sql::Field& field, const sql::Value& value);

#endif
