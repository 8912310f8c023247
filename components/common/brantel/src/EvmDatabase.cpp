#include "EvmDatabase.h"

namespace eventMgmt {

namespace {

// Constants of one name share one text.
constexpr char ROW_INDEX[] = "RowIndex";
constexpr char COMPONENT_ID[] = "ComponentID";
constexpr char SLOT[] = "Slot";
constexpr char ENABLE_EVENTS[] = "EnableEvents";

constexpr sql::field_type NUMBER = sql::field_type::INTEGER;
constexpr sql::field_type TEXT = sql::field_type::TEXT;
constexpr sql::field_type FLAG = sql::field_type::BOOLEAN;

// The flags of a column, as the SQL wrapper reads them.
constexpr int VALUE = 1;  // not null
constexpr int KEY = 3;    // not null, and the table's key

}  // namespace

const char* EvmDatabase::COMPONENT_CONFIG_TABLE_NAME = "ComponentConfigTable";
const char* EvmDatabase::IFC_CARDS_CONFIG_TABLE_NAME = "IfcCardsConfigTable";
const char* EvmDatabase::SYS_CARD_ALLOW_EVENTS_TABLE_NAME = "SysCardAllowEventsTable";
const char* EvmDatabase::SYS_CARD_IGNORE_EVENTS_TABLE_NAME = "SysCardIgnoreEventsTable";
const char* EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME = "IfcCardsAllowEventsTable";
const char* EvmDatabase::IFC_CARDS_IGNORE_EVENTS_TABLE_NAME = "IfcCardsIgnoreEventsTable";
const char* EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_NAME = "NrOfRowsChangedTable";

const char* EvmDatabase::CMP_CFG_COLUMN_CMP_ID = COMPONENT_ID;
const char* EvmDatabase::CMP_CFG_COLUMN_ENABLE_EVENTS = ENABLE_EVENTS;

const char* EvmDatabase::IFC_CARD_CFG_COLUMN_SLOT = SLOT;
const char* EvmDatabase::IFC_CARD_CFG_COLUMN_CARD_TYPE = "CardType";
const char* EvmDatabase::IFC_CARD_CFG_COLUMN_ENABLE_EVENTS = ENABLE_EVENTS;

const char* EvmDatabase::ALLOW_IGNORE_COLUMN_ROW_INDEX = ROW_INDEX;
const char* EvmDatabase::ALLOW_IGNORE_COLUMN_CMP_ID = COMPONENT_ID;
const char* EvmDatabase::ALLOW_IGNORE_COLUMN_SLOT_NR = SLOT;
const char* EvmDatabase::ALLOW_IGNORE_COLUMN_OID = "OID";
const char* EvmDatabase::ALLOW_IGNORE_COLUMN_RULE = "Rule";

const char* EvmDatabase::NR_OF_ROWS_CHANGED_ROW_INDEX = ROW_INDEX;
const char* EvmDatabase::NR_OF_ROWS_CHANGED_CMP_ID = COMPONENT_ID;
const char* EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_OID = "TableOid";
const char* EvmDatabase::NR_OF_ROWS_CHANGED_ENABLE_EVENT = "EnableEvent";  // singular, unlike the other tables

std::vector<sql::Field> EvmDatabase::getComponentConfigTableDefinition()
{
    return {
        sql::Field(CMP_CFG_COLUMN_CMP_ID, NUMBER, KEY),
        sql::Field(CMP_CFG_COLUMN_ENABLE_EVENTS, FLAG, VALUE),
        sql::Field(),
    };
}

std::vector<sql::Field> EvmDatabase::getIfcCardsConfigTableDefinition()
{
    return {
        sql::Field(IFC_CARD_CFG_COLUMN_SLOT, NUMBER, KEY),
        sql::Field(IFC_CARD_CFG_COLUMN_CARD_TYPE, NUMBER, VALUE),
        sql::Field(IFC_CARD_CFG_COLUMN_ENABLE_EVENTS, FLAG, VALUE),
        sql::Field(),
    };
}

std::vector<sql::Field> EvmDatabase::getSysCardAllowEventsTableDefinition()
{
    return {
        sql::Field(ALLOW_IGNORE_COLUMN_ROW_INDEX, NUMBER, KEY),
        sql::Field(ALLOW_IGNORE_COLUMN_CMP_ID, NUMBER, VALUE),
        sql::Field(ALLOW_IGNORE_COLUMN_OID, TEXT, VALUE),
        sql::Field(ALLOW_IGNORE_COLUMN_RULE, TEXT, VALUE),
        sql::Field(),
    };
}

std::vector<sql::Field> EvmDatabase::getSysCardIgnoreEventsTableDefinition()
{
    return {
        sql::Field(ALLOW_IGNORE_COLUMN_ROW_INDEX, NUMBER, KEY),
        sql::Field(ALLOW_IGNORE_COLUMN_CMP_ID, NUMBER, VALUE),
        sql::Field(ALLOW_IGNORE_COLUMN_OID, TEXT, VALUE),
        sql::Field(),
    };
}

std::vector<sql::Field> EvmDatabase::getIfcCardAllowEventsTableDefinition()
{
    return {
        sql::Field(ALLOW_IGNORE_COLUMN_ROW_INDEX, NUMBER, KEY),
        sql::Field(ALLOW_IGNORE_COLUMN_SLOT_NR, NUMBER, VALUE),
        sql::Field(ALLOW_IGNORE_COLUMN_OID, TEXT, VALUE),
        sql::Field(ALLOW_IGNORE_COLUMN_RULE, TEXT, VALUE),
        sql::Field(),
    };
}

std::vector<sql::Field> EvmDatabase::getIfcCardIgnoreEventsTableDefinition()
{
    return {
        sql::Field(ALLOW_IGNORE_COLUMN_ROW_INDEX, NUMBER, KEY),
        sql::Field(ALLOW_IGNORE_COLUMN_SLOT_NR, NUMBER, VALUE),
        sql::Field(ALLOW_IGNORE_COLUMN_OID, TEXT, VALUE),
        sql::Field(),
    };
}

std::vector<sql::Field> EvmDatabase::getNrOfRowsChangedTableDefinition()
{
    return {
        sql::Field(NR_OF_ROWS_CHANGED_ROW_INDEX, NUMBER, KEY),
        sql::Field(NR_OF_ROWS_CHANGED_CMP_ID, NUMBER, VALUE),
        sql::Field(NR_OF_ROWS_CHANGED_TABLE_OID, TEXT, VALUE),
        sql::Field(NR_OF_ROWS_CHANGED_ENABLE_EVENT, FLAG, VALUE),
        sql::Field(),
    };
}

const char* allowIgnoreTableId2Name(AllowIgnoreTableId id)
{
    switch (id) {
        case SYS_CARD_ALLOW_EVENTS_TABLE_ID: return EvmDatabase::SYS_CARD_ALLOW_EVENTS_TABLE_NAME;
        case SYS_CARD_IGNORE_EVENTS_TABLE_ID: return EvmDatabase::SYS_CARD_IGNORE_EVENTS_TABLE_NAME;
        case IFC_CARDS_ALLOW_EVENTS_TABLE_ID: return EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME;
        case IFC_CARDS_IGNORE_EVENTS_TABLE_ID: return EvmDatabase::IFC_CARDS_IGNORE_EVENTS_TABLE_NAME;
    }
    return "unknown";
}

}  // namespace eventMgmt
