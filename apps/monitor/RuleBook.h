#ifndef APPS_MONITOR_RULE_BOOK_H
#define APPS_MONITOR_RULE_BOOK_H

// What the event-management database tells a monitor to do: which objects of which places to watch by which rules. Rows
// that cannot be followed are listed with the reason and left out; everything else stands.

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "monitor/Place.h"
#include "tables/EventDatabase.h"

/// One rule on one object.
struct RuleKey {
    Place place;
    std::uint32_t oid;
    std::string rule;
};

inline bool operator<(const RuleKey& left, const RuleKey& right)
{
    return std::tie(left.place, left.oid, left.rule) < std::tie(right.place, right.oid, right.rule);
}

/// A row that is not followed.
struct RefusedRow {
    std::string table;
    std::int64_t row;
    std::string reason;  ///< in one line of at most 1,000 bytes, whatever the row holds
};

inline bool operator<(const RefusedRow& left, const RefusedRow& right)
{
    return std::tie(left.table, left.row, left.reason) < std::tie(right.table, right.row, right.reason);
}

struct RuleBook {
    std::set<Place> enabledPlaces;   ///< of those that the monitor serves
    std::set<Place> unservedPlaces;  ///< enabled, too, but the monitor does not serve them
    std::set<std::pair<Place, std::uint32_t>> ignored;
    std::set<RuleKey> rules;  ///< of enabled places and objects that are not ignored, and neither empty nor comments
    std::set<RefusedRow> refusedRows;
};

/// Reads the book as it stands, in one transaction. `slots` are those that the monitor serves. Throws sql::Error.
RuleBook readRuleBook(EventDatabase& database, const std::set<std::uint32_t>& slots);

/// Follows a database: tells of its book when that has changed.
class RuleBookFollower {
public:
    RuleBookFollower(std::string path, std::set<std::uint32_t> slots);

    /// The book if the row-change table has grown since it was read last, or if it was not read yet. Throws sql::Error;
    /// the next call tries again.
    std::optional<RuleBook> bookIfChanged();

    /// Makes the next call open the file again and read it, changed or not.
    void forget();

private:
    const std::string m_path;
    const std::set<std::uint32_t> m_slots;
    std::optional<EventDatabase> m_database;
    std::optional<std::int64_t> m_lastChange;  ///< the row of the row-change table up to which the book is read
};

#endif
