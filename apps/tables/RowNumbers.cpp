#include "tables/RowNumbers.h"

#include <algorithm>
#include <iterator>

namespace brantel {

RowNumbers::RowNumbers(const EventTable& eventTable, const sql::Table& table)
    : m_eventTable(eventTable), m_table(table), m_largest(std::max<std::int64_t>(table.largestKey(), 0))
{
}

std::int64_t RowNumbers::next()
{
    if (m_largest < MAX_NUMBER) {
        return ++m_largest;
    }
    // Each search continues where the one before ended, so that no row is examined twice.
    const std::int64_t number = m_table.firstFreeKey(m_lowestFree);
    if (number > MAX_NUMBER) {
        throw sql::Error(sql::Problem::FULL, m_eventTable.name() + " is full: no RowIndex up to " +
                                                 std::to_string(MAX_NUMBER) + " is free");
    }
    m_lowestFree = number + 1;
    return number;
}

void RowNumbers::leaveOut(std::int64_t number)
{
    m_largest = std::max(m_largest, number);
}

void RowNumberSet::add(std::int64_t key)
{
    if (contains(key)) {
        return;
    }
    const auto next = m_lastByFirst.upper_bound(key);
    if ((next != m_lastByFirst.begin()) && (std::prev(next)->second == key - 1)) {
        std::prev(next)->second = key;
    } else {
        m_lastByFirst.emplace_hint(next, key, key);
    }
}

bool RowNumberSet::contains(std::int64_t key) const
{
    const auto next = m_lastByFirst.upper_bound(key);
    return (next != m_lastByFirst.begin()) && (std::prev(next)->second >= key);
}

}  // namespace brantel
