#include "EvmDatabase.h"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace sql {

bool operator==(const Field& left, const Field& right)
{
    return (left.name() == right.name()) && (left.type() == right.type()) && (left.flags() == right.flags());
}

void PrintTo(const Field& field, std::ostream* pStream)
{
    *pStream << "('" << field.name() << "', " << field.type() << ", " << field.flags() << ")";
}

}  // namespace sql

namespace eventMgmt {
namespace {

using Definition = std::vector<sql::Field>;

sql::Field column(const std::string& name, int type, int flags)
{
    return sql::Field(name, static_cast<sql::field_type>(type), flags);
}

sql::Field number(const std::string& name)
{
    return column(name, 0, 1);
}

sql::Field text(const std::string& name)
{
    return column(name, 1, 1);
}

sql::Field flag(const std::string& name)
{
    return column(name, 3, 1);
}

sql::Field key(const std::string& name)
{
    return column(name, 0, 3);
}

const sql::Field endMark;

struct Table {
    Definition (*getDefinition)();
    const char* getterName;
    Definition expected;
};

void PrintTo(const Table& table, std::ostream* pStream)
{
    *pStream << table.getterName;
}

std::vector<Table> allTables()
{
    return {
        {EvmDatabase::getComponentConfigTableDefinition,
         "ComponentConfig",
         {key("ComponentID"), flag("EnableEvents"), endMark}},
        {EvmDatabase::getIfcCardsConfigTableDefinition,
         "IfcCardsConfig",
         {key("Slot"), number("CardType"), flag("EnableEvents"), endMark}},
        {EvmDatabase::getSysCardAllowEventsTableDefinition,
         "SysCardAllow",
         {key("RowIndex"), number("ComponentID"), text("OID"), text("Rule"), endMark}},
        {EvmDatabase::getSysCardIgnoreEventsTableDefinition,
         "SysCardIgnore",
         {key("RowIndex"), number("ComponentID"), text("OID"), endMark}},
        {EvmDatabase::getIfcCardAllowEventsTableDefinition,
         "IfcCardAllow",
         {key("RowIndex"), number("Slot"), text("OID"), text("Rule"), endMark}},
        {EvmDatabase::getIfcCardIgnoreEventsTableDefinition,
         "IfcCardIgnore",
         {key("RowIndex"), number("Slot"), text("OID"), endMark}},
        {EvmDatabase::getNrOfRowsChangedTableDefinition,
         "NrOfRowsChanged",
         {key("RowIndex"), number("ComponentID"), text("TableOid"), flag("EnableEvent"), endMark}},
    };
}

class TableDefinition : public ::testing::TestWithParam<Table> {};

TEST_P(TableDefinition, HasTheseColumnsAndThenAnEmptyField)
{
    EXPECT_EQ(GetParam().getDefinition(), GetParam().expected);
    EXPECT_TRUE(GetParam().getDefinition().back().empty());
}

TEST_P(TableDefinition, IsAVectorWithoutSpareCapacity)
{
    const Definition definition = GetParam().getDefinition();
    EXPECT_EQ(definition.capacity(), definition.size());
}

TEST_P(TableDefinition, IsBuiltAfreshOnEveryCall)
{
    Definition changed = GetParam().getDefinition();
    changed.front() = sql::Field();
    changed.pop_back();
    EXPECT_EQ(GetParam().getDefinition(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(All, TableDefinition, ::testing::ValuesIn(allTables()),
                         [](const auto& test) { return std::string(test.param.getterName); });

TEST(TableDefinitions, HaveAsManyElementsAsColumnsAndOneMore)
{
    std::vector<std::size_t> sizes;
    for (const Table& table : allTables()) {
        sizes.push_back(table.getDefinition().size());
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{3, 4, 5, 4, 5, 4, 5}));
}

struct NamedDefinition {
    std::string name;
    Definition columns;
};

TEST(TableDefinitions, ComeWithTheNamesOfTheirTables)
{
    std::vector<std::string> names;
    std::vector<Definition> definitions;
    for (const NamedDefinition& table : tableDefinitions<NamedDefinition>()) {
        names.push_back(table.name);
        definitions.push_back(table.columns);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"ComponentConfigTable", "IfcCardsConfigTable", "SysCardAllowEventsTable",
                                               "SysCardIgnoreEventsTable", "IfcCardsAllowEventsTable",
                                               "IfcCardsIgnoreEventsTable", "NrOfRowsChangedTable"}));
    std::vector<Definition> expected;
    for (const Table& table : allTables()) {
        expected.push_back(table.expected);
    }
    EXPECT_EQ(definitions, expected);
}

TEST(Database, IsRecognisedByTheseNumbers)
{
    EXPECT_EQ(DATABASE_APPLICATION_ID, 1165380967);
    EXPECT_EQ(DATABASE_SCHEMA_VERSION, 1);
}

Definition withoutRule(const Definition& allowTable)
{
    Definition columns;
    for (const sql::Field& field : allowTable) {
        if (field.name() != "Rule") {
            columns.push_back(field);
        }
    }
    return columns;
}

TEST(TableDefinitions, OfIgnoreTablesAreThoseOfTheAllowTablesWithoutTheRule)
{
    EXPECT_EQ(EvmDatabase::getSysCardIgnoreEventsTableDefinition(),
              withoutRule(EvmDatabase::getSysCardAllowEventsTableDefinition()));
    EXPECT_EQ(EvmDatabase::getIfcCardIgnoreEventsTableDefinition(),
              withoutRule(EvmDatabase::getIfcCardAllowEventsTableDefinition()));
}

struct NameConstant {
    const char** pConstant;
    const char* value;
};

const NameConstant tableNames[] = {
    {&EvmDatabase::COMPONENT_CONFIG_TABLE_NAME, "ComponentConfigTable"},
    {&EvmDatabase::IFC_CARDS_CONFIG_TABLE_NAME, "IfcCardsConfigTable"},
    {&EvmDatabase::SYS_CARD_ALLOW_EVENTS_TABLE_NAME, "SysCardAllowEventsTable"},
    {&EvmDatabase::SYS_CARD_IGNORE_EVENTS_TABLE_NAME, "SysCardIgnoreEventsTable"},
    {&EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME, "IfcCardsAllowEventsTable"},
    {&EvmDatabase::IFC_CARDS_IGNORE_EVENTS_TABLE_NAME, "IfcCardsIgnoreEventsTable"},
    {&EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_NAME, "NrOfRowsChangedTable"},
};

const NameConstant columnNames[] = {
    {&EvmDatabase::CMP_CFG_COLUMN_CMP_ID, "ComponentID"},
    {&EvmDatabase::CMP_CFG_COLUMN_ENABLE_EVENTS, "EnableEvents"},
    {&EvmDatabase::IFC_CARD_CFG_COLUMN_SLOT, "Slot"},
    {&EvmDatabase::IFC_CARD_CFG_COLUMN_CARD_TYPE, "CardType"},
    {&EvmDatabase::IFC_CARD_CFG_COLUMN_ENABLE_EVENTS, "EnableEvents"},
    {&EvmDatabase::ALLOW_IGNORE_COLUMN_ROW_INDEX, "RowIndex"},
    {&EvmDatabase::ALLOW_IGNORE_COLUMN_CMP_ID, "ComponentID"},
    {&EvmDatabase::ALLOW_IGNORE_COLUMN_SLOT_NR, "Slot"},
    {&EvmDatabase::ALLOW_IGNORE_COLUMN_OID, "OID"},
    {&EvmDatabase::ALLOW_IGNORE_COLUMN_RULE, "Rule"},
    {&EvmDatabase::NR_OF_ROWS_CHANGED_ROW_INDEX, "RowIndex"},
    {&EvmDatabase::NR_OF_ROWS_CHANGED_CMP_ID, "ComponentID"},
    {&EvmDatabase::NR_OF_ROWS_CHANGED_TABLE_OID, "TableOid"},
    {&EvmDatabase::NR_OF_ROWS_CHANGED_ENABLE_EVENT, "EnableEvent"},
};

TEST(NameConstants, HaveTheseValues)
{
    for (const NameConstant& name : tableNames) {
        EXPECT_STREQ(*name.pConstant, name.value);
    }
    for (const NameConstant& name : columnNames) {
        EXPECT_STREQ(*name.pConstant, name.value);
    }
}

TEST(NameConstants, OfOneValueShareOneText)
{
    for (const NameConstant& left : columnNames) {
        for (const NameConstant& right : columnNames) {
            EXPECT_EQ(*left.pConstant == *right.pConstant, std::string(left.value) == right.value)
                << left.value << " and " << right.value;
        }
    }
}

// Points a constant at another name while it lives.
class Renamed {
public:
    Renamed(const char*& constant, const char* name) : m_constant(constant), m_before(constant) { m_constant = name; }
    ~Renamed() { m_constant = m_before; }
    Renamed(const Renamed&) = delete;
    Renamed& operator=(const Renamed&) = delete;

private:
    const char*& m_constant;
    const char* m_before;
};

TEST(NameConstants, AreReadEachTimeADefinitionIsBuilt)
{
    const Renamed renamed(EvmDatabase::CMP_CFG_COLUMN_ENABLE_EVENTS, "MayRaise");
    EXPECT_EQ(EvmDatabase::getComponentConfigTableDefinition(),
              (Definition{key("ComponentID"), flag("MayRaise"), endMark}));
    EXPECT_EQ(EvmDatabase::getIfcCardsConfigTableDefinition(),
              (Definition{key("Slot"), number("CardType"), flag("EnableEvents"), endMark}));
}

// The columns of each table come from the table's own constants, also where the names are the same.
TEST(NameConstants, AreUsedByTheirOwnTables)
{
    std::vector<std::string> tablesThatFollow;
    for (const NameConstant& name : columnNames) {
        const Renamed renamed(*name.pConstant, "Other");
        std::string tables;
        for (const Table& table : allTables()) {
            for (const sql::Field& field : table.getDefinition()) {
                tables += (field.name() == "Other") ? std::string(" ") + table.getterName : "";
            }
        }
        tablesThatFollow.push_back(name.value + std::string(":") + tables);
    }
    EXPECT_EQ(tablesThatFollow, (std::vector<std::string>{
                                    "ComponentID: ComponentConfig",
                                    "EnableEvents: ComponentConfig",
                                    "Slot: IfcCardsConfig",
                                    "CardType: IfcCardsConfig",
                                    "EnableEvents: IfcCardsConfig",
                                    "RowIndex: SysCardAllow SysCardIgnore IfcCardAllow IfcCardIgnore",
                                    "ComponentID: SysCardAllow SysCardIgnore",
                                    "Slot: IfcCardAllow IfcCardIgnore",
                                    "OID: SysCardAllow SysCardIgnore IfcCardAllow IfcCardIgnore",
                                    "Rule: SysCardAllow IfcCardAllow",
                                    "RowIndex: NrOfRowsChanged",
                                    "ComponentID: NrOfRowsChanged",
                                    "TableOid: NrOfRowsChanged",
                                    "EnableEvent: NrOfRowsChanged",
                                }));
}

TEST(AllowIgnoreTableId2Name, KnowsTheFourTables)
{
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(0)), "SysCardAllowEventsTable");
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(1)), "SysCardIgnoreEventsTable");
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(2)), "IfcCardsAllowEventsTable");
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(3)), "IfcCardsIgnoreEventsTable");
}

TEST(AllowIgnoreTableId2Name, CallsAnyOtherUnknown)
{
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(4)), "unknown");
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(0x80000000U)), "unknown");
    EXPECT_STREQ(allowIgnoreTableId2Name(static_cast<AllowIgnoreTableId>(4294967295U)), "unknown");
}

TEST(AllowIgnoreTableId2Name, ReturnsThePresentValueOfTheConstant)
{
    const Renamed renamed(EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME, "Renamed");
    EXPECT_EQ(allowIgnoreTableId2Name(IFC_CARDS_ALLOW_EVENTS_TABLE_ID), EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME);
    EXPECT_STREQ(allowIgnoreTableId2Name(IFC_CARDS_ALLOW_EVENTS_TABLE_ID), "Renamed");
}

}  // namespace
}  // namespace eventMgmt
