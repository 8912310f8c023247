#ifndef APPS_MONITOR_RULE_SET_H
#define APPS_MONITOR_RULE_SET_H

// What a monitor watches according to the event-management database: which objects of which places, by which rules. A
// row that cannot be followed is listed with the reason and does not affect the others.

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tables/EventDatabase.h"
#include "tables/Place.h"

namespace brantel {

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
    std::string reason;  ///< a line of at most 1,000 bytes, whatever the row holds
};

inline bool operator<(const RefusedRow& left, const RefusedRow& right)
{
    return std::tie(left.table, left.row, left.reason) < std::tie(right.table, right.row, right.reason);
}

struct RuleSet {
    std::set<Place> enabledPlaces;   ///< that the monitor serves
    std::set<Place> unservedPlaces;  ///< enabled, but not served by the monitor
    std::set<std::pair<Place, std::uint32_t>> ignored;
    std::set<RuleKey> rules;  ///< of enabled places and objects that are not ignored, and neither empty nor comments
    std::set<RefusedRow> refusedRows;
};

/// Reads the rule set in one transaction. `slots` are those that the monitor serves. Throws sql::Error.
RuleSet readRuleSet(EventDatabase& database, const std::set<std::uint32_t>& slots);

/// Reads the rule set of a database whenever it has changed. A file that replaces the database is opened instead.
class RuleSetWatcher {
public:
    RuleSetWatcher(std::string path, std::set<std::uint32_t> slots);

    /// The rule set; waits a moment if another program has locked the database. Throws sql::Error.
    RuleSet read();

    /// Without waiting: the rule set if the row-change table has grown since it was read last, or if it was not read
    /// yet. Throws sql::Error; the next call tries again.
    std::optional<RuleSet> readIfChanged();

    /// Makes the next call open the file again and read it in any case.
    void forget();

private:
    struct FileId {
        std::pair<std::uint32_t, std::uint32_t> device;
        std::uint64_t node;
        std::pair<std::int64_t, std::uint32_t> birth;  ///< because the node of a removed file is reused
    };

    static std::optional<FileId> fileIdOf(const std::string& path);
    static bool areSame(const std::optional<FileId>& one, const std::optional<FileId>& other);
    std::optional<RuleSet> readIfChanged(sql::Database::Access access);
    void noticeReplacement();

    const std::string m_path;
    const std::set<std::uint32_t> m_slots;
    std::optional<FileId> m_file;  ///< the file that is or was open
    std::optional<FileId> m_log;   ///< of SQLite, which belongs to that file only
    std::optional<EventDatabase> m_database;
    std::optional<std::int64_t> m_lastChange;  ///< the last row of the row-change table that is accounted for
};

}  // namespace brantel

#endif
