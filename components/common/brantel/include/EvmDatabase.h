#ifndef EVM_DATABASE_H
#define EVM_DATABASE_H

// The tables of the event-management database: their names, the names of their columns, and their definitions in the
// form in which the SQL wrapper creates and checks a table.
//
//     ComponentConfigTable       which components may raise events
//     IfcCardsConfigTable        which interface cards may raise events
//     SysCardAllowEventsTable    rules by which events of the system card's components are allowed
//     SysCardIgnoreEventsTable   managed objects of the system card's components whose events are ignored
//     IfcCardsAllowEventsTable   rules by which events of the interface cards are allowed
//     IfcCardsIgnoreEventsTable  managed objects of the interface cards whose events are ignored
//     NrOfRowsChangedTable       what was changed in the other six
//
// For example, with the tables on disk of the stand-alone edition (sql/Database.h):
//
//     using eventMgmt::EvmDatabase;
//     const sql::Identity identity{eventMgmt::DATABASE_APPLICATION_ID, eventMgmt::DATABASE_SCHEMA_VERSION};
//     sql::Database::create(path, identity, eventMgmt::tableDefinitions<sql::TableDefinition>());
//
//     sql::Database database(path, identity, sql::Database::Access::READ);
//     const sql::Table rules(database, {EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME,
//                                       EvmDatabase::getIfcCardAllowEventsTableDefinition()});
//
//     sql::Database::create(path, {1, 1}, {});  // throws sql::Error: the file is of another program
//
// The lists of the interface cards have getIfcCard... as functions and IFC_CARDS_... as constants.
//
// Nothing here opens a database. The names are read each time they are needed, so a program for a database with other
// names points the constants at them before it starts its threads. Everything may run on any thread as long as none
// assigns a constant.

#include <cstdint>
#include <vector>

#include "BrantelExport.h"
#include "sql/Field.h"

namespace eventMgmt {

/// How a file is recognised as an event-management database: SQLite's application ID ("EvMg") and user version. A
/// program refuses a file with another ID or a larger version.
constexpr std::int32_t DATABASE_APPLICATION_ID = 0x45764D67;
constexpr std::int32_t DATABASE_SCHEMA_VERSION = 1;

/// The four tables of allow and ignore lists.
enum AllowIgnoreTableId : std::uint32_t {
    SYS_CARD_ALLOW_EVENTS_TABLE_ID = 0,
    SYS_CARD_IGNORE_EVENTS_TABLE_ID = 1,
    IFC_CARDS_ALLOW_EVENTS_TABLE_ID = 2,
    IFC_CARDS_IGNORE_EVENTS_TABLE_ID = 3
};

/// The name of an allow or ignore table, the present value of its constant; "unknown" for a value above 3. Not to be
/// freed.
BRANTEL_EXPORT const char* allowIgnoreTableId2Name(AllowIgnoreTableId id);

class BRANTEL_EXPORT EvmDatabase {
public:
    EvmDatabase() = delete;

    static const char* COMPONENT_CONFIG_TABLE_NAME;
    static const char* IFC_CARDS_CONFIG_TABLE_NAME;
    static const char* SYS_CARD_ALLOW_EVENTS_TABLE_NAME;
    static const char* SYS_CARD_IGNORE_EVENTS_TABLE_NAME;
    static const char* IFC_CARDS_ALLOW_EVENTS_TABLE_NAME;
    static const char* IFC_CARDS_IGNORE_EVENTS_TABLE_NAME;
    static const char* NR_OF_ROWS_CHANGED_TABLE_NAME;

    static const char* CMP_CFG_COLUMN_CMP_ID;
    static const char* CMP_CFG_COLUMN_ENABLE_EVENTS;

    static const char* IFC_CARD_CFG_COLUMN_SLOT;
    static const char* IFC_CARD_CFG_COLUMN_CARD_TYPE;
    static const char* IFC_CARD_CFG_COLUMN_ENABLE_EVENTS;

    static const char* ALLOW_IGNORE_COLUMN_ROW_INDEX;
    static const char* ALLOW_IGNORE_COLUMN_CMP_ID;
    static const char* ALLOW_IGNORE_COLUMN_SLOT_NR;
    static const char* ALLOW_IGNORE_COLUMN_OID;
    static const char* ALLOW_IGNORE_COLUMN_RULE;

    static const char* NR_OF_ROWS_CHANGED_ROW_INDEX;
    static const char* NR_OF_ROWS_CHANGED_CMP_ID;
    static const char* NR_OF_ROWS_CHANGED_TABLE_OID;
    static const char* NR_OF_ROWS_CHANGED_ENABLE_EVENT;

    /// The definitions: the columns in order, the key first, then one empty field. Built afresh on every call from the
    /// present values of the constants; the vector's capacity is its size. Nothing is thrown but what sql::Field and
    /// the allocations throw.
    static std::vector<sql::Field> getComponentConfigTableDefinition();
    static std::vector<sql::Field> getIfcCardsConfigTableDefinition();
    static std::vector<sql::Field> getSysCardAllowEventsTableDefinition();
    static std::vector<sql::Field> getSysCardIgnoreEventsTableDefinition();
    static std::vector<sql::Field> getIfcCardAllowEventsTableDefinition();
    static std::vector<sql::Field> getIfcCardIgnoreEventsTableDefinition();
    static std::vector<sql::Field> getNrOfRowsChangedTableDefinition();
};

/// All seven tables, NrOfRowsChangedTable last, each with its definition. `TableDefinition` is what the SQL wrapper
/// takes for a table, and is made of a name and of the columns: sql::TableDefinition in the stand-alone edition.
template <typename TableDefinition>
std::vector<TableDefinition> tableDefinitions()
{
    using Evm = EvmDatabase;
    return {
        {Evm::COMPONENT_CONFIG_TABLE_NAME, Evm::getComponentConfigTableDefinition()},
        {Evm::IFC_CARDS_CONFIG_TABLE_NAME, Evm::getIfcCardsConfigTableDefinition()},
        {Evm::SYS_CARD_ALLOW_EVENTS_TABLE_NAME, Evm::getSysCardAllowEventsTableDefinition()},
        {Evm::SYS_CARD_IGNORE_EVENTS_TABLE_NAME, Evm::getSysCardIgnoreEventsTableDefinition()},
        {Evm::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME, Evm::getIfcCardAllowEventsTableDefinition()},
        {Evm::IFC_CARDS_IGNORE_EVENTS_TABLE_NAME, Evm::getIfcCardIgnoreEventsTableDefinition()},
        {Evm::NR_OF_ROWS_CHANGED_TABLE_NAME, Evm::getNrOfRowsChangedTableDefinition()},
    };
}

}  // namespace eventMgmt

#endif
