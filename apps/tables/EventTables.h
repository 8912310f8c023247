#ifndef APPS_TABLES_EVENT_TABLES_H
#define APPS_TABLES_EVENT_TABLES_H

// The seven tables of the event-management database as data, and the checks of their rows beyond the definitions.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "rules/RuleFaultPicture.h"
#include "sql/Database.h"
#include "tables/Place.h"

namespace brantel {

/// The largest number in a row.
constexpr std::int64_t MAX_NUMBER = 4294967295;

/// The longest rule that is stored, in bytes: monitors and both file formats keep it in one line.
constexpr std::size_t MAX_RULE_LENGTH = 65536;

/// What the rows of a table are about.
enum class EventTableKind {
    CONFIGURATION,  ///< whether a component or a card may raise events
    ALLOW,          ///< the rules by which events of objects are allowed
    IGNORE,         ///< the objects whose events are ignored
    CHANGES         ///< which rows of the other tables changed
};

class EventTable {
public:
    /// The columns end with an empty field.
    EventTable(const std::string& name, const std::vector<sql::Field>& columns, EventTableKind kind,
               std::optional<Place::Kind> placeKind);

    const std::string& name() const { return m_definition.name; }
    const sql::TableDefinition& definition() const { return m_definition; }
    EventTableKind kind() const { return m_kind; }

    /// Whether its rows are about slots or components; nothing for the row-change table, whose rows are about either.
    std::optional<Place::Kind> placeKind() const { return m_placeKind; }

    /// The columns, without the empty field.
    const std::vector<sql::Field>& columns() const { return m_definition.columns; }

    /// The position and the name of the column with the number of the slot or component.
    std::size_t placeColumn() const { return (m_kind == EventTableKind::CONFIGURATION) ? 0 : 1; }
    const std::string& placeColumnName() const { return columns()[placeColumn()].name(); }

    /// Whether it is an allow or an ignore list, which has each entry once.
    bool isList() const { return (m_kind == EventTableKind::ALLOW) || (m_kind == EventTableKind::IGNORE); }

    /// Whether rows are numbered by the database, in a first column "RowIndex" without other meaning.
    bool hasRowIndex() const { return m_kind != EventTableKind::CONFIGURATION; }

private:
    sql::TableDefinition m_definition;
    EventTableKind m_kind;
    std::optional<Place::Kind> m_placeKind;
};

/// All seven, the row-change table last.
const std::vector<EventTable>& eventTables();

/// The table of that name, in any letter case; null if there is none.
const EventTable* findEventTable(const std::string& name);

/// The same for a name on the command line. Throws CommandError.
const EventTable& requireEventTable(const std::string& name);

/// The configuration, the allow list or the ignore list of the slots or of the components.
const EventTable& tableFor(EventTableKind kind, Place::Kind placeKind);

const EventTable& rowChangeTable();

/// The columns that make an entry of a list: all but the RowIndex.
std::vector<std::string> entryColumns(const EventTable& list);

/// A fault of a value of a row.
struct RowFault {
    std::string column;
    std::string reason;
    std::optional<RuleFault> ruleFault;  ///< its position in the text of a rule
};

/// All faults of a row of a table: a number of more than 32 bits, an OID in another form, a rule that is too long,
/// refused or never evaluated, a text that is not one line of UTF-8, a change in a table that does not exist.
std::vector<RowFault> faultsOfRow(const EventTable& table, const sql::Row& row);

/// Why a rule text cannot be stored; nothing if it can.
std::optional<RuleFault> faultOfStoredRule(const std::string& rule);

/// An OID as it is stored: decimal, without leading zeros. Nothing if the text, decimal or hexadecimal after "0x", is
/// not a number of 32 bits.
std::optional<std::string> canonicalOid(const std::string& text);

/// Brings the OID of a row that a person wrote, if there is one, into the form in which it is stored. A text that is
/// not an OID stays, for faultsOfRow().
void canonicaliseOid(const EventTable& table, sql::Row& row);

/// A value for people: "true" or "false" in a BOOLEAN column; a value that no column may hold, unchanged.
std::string valueText(const sql::Field& field, const sql::Value& value);

}  // namespace brantel

#endif
