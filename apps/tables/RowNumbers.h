#ifndef APPS_TABLES_ROW_NUMBERS_H
#define APPS_TABLES_ROW_NUMBERS_H

#include <cstdint>
#include <map>

#include "tables/EventTables.h"

namespace brantel {

/// Numbers for new rows of a table with a RowIndex: those after the largest one and, when these are used up, the free
/// ones from 1. The tables must outlive it.
class RowNumbers {
public:
    RowNumbers(const EventTable& eventTable, const sql::Table& table);

    /// A number that is free. Throws sql::Error if none is.
    std::int64_t next();

    /// Leaves out a number that a row already has.
    void leaveOut(std::int64_t number);

private:
    const EventTable& m_eventTable;
    const sql::Table& m_table;
    std::int64_t m_largest;
    std::int64_t m_lowestFree = 1;
};

/// A set of row numbers that mostly follow each other: it takes room for each gap between them, not for each number.
class RowNumberSet {
public:
    void add(std::int64_t key);
    bool contains(std::int64_t key) const;

    /// The last key of each range, by its first.
    const std::map<std::int64_t, std::int64_t>& lastByFirst() const { return m_lastByFirst; }

private:
    std::map<std::int64_t, std::int64_t> m_lastByFirst;
};

}  // namespace brantel

#endif
