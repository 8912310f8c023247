#include "tables/EventTables.h"

#include <ostream>

#include <gtest/gtest.h>

#include "support/SqlValues.h"

namespace brantel {
namespace {

const EventTable& table(const std::string& name)
{
    return *findEventTable(name);
}

TEST(EventTables, AreTheSevenInOrder)
{
    std::vector<std::string> names;
    for (const EventTable& eventTable : eventTables()) {
        const std::optional<Place::Kind> placeKind = eventTable.placeKind();
        names.push_back(eventTable.name() + " " + (placeKind ? placeKindText(*placeKind) : "of either kind"));
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"ComponentConfigTable component", "IfcCardsConfigTable slot",
                                        "SysCardAllowEventsTable component", "SysCardIgnoreEventsTable component",
                                        "IfcCardsAllowEventsTable slot", "IfcCardsIgnoreEventsTable slot",
                                        "NrOfRowsChangedTable of either kind"}));
}

TEST(EventTables, AreFoundByNameInAnyLetterCase)
{
    EXPECT_EQ(findEventTable("ifccardsCONFIGtable")->name(), "IfcCardsConfigTable");
    EXPECT_EQ(findEventTable("IfcCardsConfig"), nullptr);
}

TEST(Oid, IsStoredInDecimal)
{
    EXPECT_EQ(canonicalOid("1234"), "1234");
    EXPECT_EQ(canonicalOid("0x4d2"), "1234");
    EXPECT_EQ(canonicalOid("0X4D2"), "1234");
    EXPECT_EQ(canonicalOid("007"), "7");
    EXPECT_EQ(canonicalOid("4294967295"), "4294967295");
}

TEST(Oid, IsANumberOf32Bits)
{
    for (const char* const text : {"", "x", "-1", "+1", " 1", "1 ", "0x", "1.2", "4294967296", "0x100000000"}) {
        EXPECT_EQ(canonicalOid(text), std::nullopt) << text;
    }
}

// A row, and what is wrong in it: "column: reason" of each fault.
struct RowCase {
    const char* table;
    sql::Row row;
    std::vector<std::string> faults;
};

void PrintTo(const RowCase& rowCase, std::ostream* pStream)
{
    *pStream << rowCase.table << ::testing::PrintToString(rowCase.row);
}

const RowCase rowCases[] = {
    {"ComponentConfigTable", {0, 1}, {}},
    {"ComponentConfigTable", {std::int64_t{4294967295}, 0}, {}},
    {"ComponentConfigTable",
     {-1, 2},
     {"ComponentID: -1 is outside 0 to 4294967295", "EnableEvents: is neither true nor false"}},
    {"IfcCardsConfigTable", {3, std::int64_t{4294967296}, 1}, {"CardType: 4294967296 is outside 0 to 4294967295"}},
    {"SysCardIgnoreEventsTable", {1, 7, "1234"}, {}},
    {"SysCardIgnoreEventsTable", {1, "7", 1234}, {"ComponentID: is not a number", "OID: is not a text"}},
    {"SysCardIgnoreEventsTable",
     {1, 7, "0x4d2"},
     {"OID: '0x4d2' is not an OID: write a decimal number from 0 to 4294967295 without leading zeros"}},
    {"SysCardIgnoreEventsTable",
     {1, 7, "01"},
     {"OID: '01' is not an OID: write a decimal number from 0 to 4294967295 without leading zeros"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "expr=signed(value>1)"}, {}},
    {"SysCardAllowEventsTable", {1, 7, "1234", ""}, {}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/ not now"}, {}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "expr=signed(value=1)"}, {"Rule: '=' is not an operator"}},
    {"SysCardAllowEventsTable",
     {1, 7, "1234", "expr=signed(value>1);expr=signed(value<5)"},
     {"Rule: a rule of several parts is never evaluated: make each part a rule of its own"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/ two\nlines"}, {"Rule: there is a control character"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/ \xff"}, {"Rule: the text is not UTF-8"}},
    {"NrOfRowsChangedTable", {1, 7, "ComponentConfigTable", 1}, {}},
    {"NrOfRowsChangedTable",
     {1, 7, "NrOfRowsChangedTable", 1},
     {"TableOid: 'NrOfRowsChangedTable' is not the name of a table that changes"}},
    {"NrOfRowsChangedTable", {1, 7, "a\tb", 1}, {"TableOid: 'a\tb' is not the name of a table that changes"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/ \xc2\x9b"}, {"Rule: there is a control character"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/ \xe2\x80\xae"}, {"Rule: there is a control character"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/ \xc3\xa9\xef\xbb"}, {"Rule: the text is not UTF-8"}},
    {"SysCardAllowEventsTable", {1, 7, "1234", "/" + std::string(MAX_RULE_LENGTH - 1, 'x')}, {}},
    {"SysCardAllowEventsTable",
     {1, 7, "1234", "/" + std::string(MAX_RULE_LENGTH, 'x')},
     {"Rule: the rule is longer than 65536 bytes"}},
    {"SysCardAllowEventsTable",
     {1, 7, sql::OtherValue{"X'31'"}, sql::OtherValue{"X'2F'"}},
     {"OID: is not a text", "Rule: is not a text"}},
    {"ComponentConfigTable", {sql::OtherValue{"1.5"}, 1}, {"ComponentID: is not a number"}},
};

class RowFaults : public ::testing::TestWithParam<RowCase> {};

TEST_P(RowFaults, AreAllReported)
{
    std::vector<std::string> faults;
    for (const RowFault& fault : faultsOfRow(table(GetParam().table), GetParam().row)) {
        faults.push_back(fault.column + ": " + fault.reason);
    }
    EXPECT_EQ(faults, GetParam().faults);
}

INSTANTIATE_TEST_SUITE_P(Of, RowFaults, ::testing::ValuesIn(rowCases));

TEST(ValueText, ShowsWhatNoColumnMayHoldUnchanged)
{
    const sql::Field flag = table("ComponentConfigTable").columns().back();
    EXPECT_EQ(valueText(flag, 1), "true");
    EXPECT_EQ(valueText(flag, 0), "false");
    EXPECT_EQ(valueText(flag, 7), "7");
    EXPECT_EQ(valueText(flag, sql::OtherValue{"X'41'"}), "X'41'");
}

TEST(RowFault, OfARuleHasItsPosition)
{
    const std::vector<RowFault> faults =
        faultsOfRow(table("SysCardAllowEventsTable"), {1, 7, "1234", "expr=signed(value=1)"});
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(faults.front().ruleFault->position, 17U);
}

}  // namespace

}  // namespace brantel
