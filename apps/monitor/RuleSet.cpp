#include "monitor/RuleSet.h"

#include <charconv>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

#include "EventMgmtRulesParsing.h"
#include "Icsc.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"

namespace brantel {
namespace {

// Reasons quote the contents of the row, which may be anything; in events and states they are parts of lines.
std::string oneLine(const std::string& reason)
{
    constexpr std::size_t MAX_LENGTH = 1000;
    const std::string more = "...";
    return printable((reason.size() <= MAX_LENGTH) ? reason : reason.substr(0, MAX_LENGTH - more.size()) + more);
}

constexpr const char* LOG_SUFFIX = "-wal";

class RuleSetReader {
public:
    RuleSetReader(EventDatabase& database, const std::set<std::uint32_t>& slots) : m_database(database), m_slots(slots)
    {
    }

    RuleSet read()
    {
        for (const Place::Kind placeKind : PLACE_KINDS) {
            readPlaces(placeKind);
        }
        return std::move(m_ruleSet);
    }

private:
    void readPlaces(Place::Kind placeKind)
    {
        forEachValidRow(tableFor(EventTableKind::CONFIGURATION, placeKind),
                        [&](const Place& place, const sql::Row& row) {
                            if (row.back() == sql::Value(1)) {
                                (isServed(place) ? m_ruleSet.enabledPlaces : m_ruleSet.unservedPlaces).insert(place);
                            }
                        });
        forEachValidRow(tableFor(EventTableKind::IGNORE, placeKind),
                        [&](const Place& place, const sql::Row& row) { m_ruleSet.ignored.emplace(place, oidOf(row)); });
        forEachValidRow(tableFor(EventTableKind::ALLOW, placeKind), [&](const Place& place, const sql::Row& row) {
            const std::uint32_t oid = oidOf(row);
            const auto& rule = std::get<std::string>(row.back());
            const bool isEnabled = (m_ruleSet.enabledPlaces.count(place) != 0);
            const bool isIgnored = (m_ruleSet.ignored.count({place, oid}) != 0);
            if (isEnabled && !isIgnored && !vemorRules::isEmptyRule(rule)) {
                m_ruleSet.rules.insert({place, oid, rule});
            }
        });
    }

    // Visits the rows that are not refused.
    template <typename Visit>
    void forEachValidRow(const EventTable& table, const Visit& visit)
    {
        m_database.table(table).forEach({}, [&](const sql::Row& row) {
            const std::vector<RowFault> faults = faultsOfRow(table, row);
            if (!faults.empty()) {
                refuse(table, row, faults.front().column + ": " + faults.front().reason);
                return;
            }
            const Place place{*table.placeKind(),
                              static_cast<std::uint32_t>(std::get<std::int64_t>(row[table.placeColumn()]))};
            if ((place.kind == Place::Kind::SLOT) && (place.number >= icsc::N_SLOTS)) {
                refuse(table, row, placeText(place) + " is out of reach: the slots are 0 to 9");
            } else {
                visit(place, row);
            }
        });
    }

    bool isServed(const Place& place) const
    {
        return (place.kind != Place::Kind::SLOT) || (m_slots.count(place.number) != 0);
    }

    void refuse(const EventTable& table, const sql::Row& row, const std::string& reason)
    {
        const auto* const pKey = std::get_if<std::int64_t>(&row.front());
        m_ruleSet.refusedRows.insert({table.name(), (pKey == nullptr) ? 0 : *pKey, oneLine(reason)});
    }

    // Of a row without faults.
    static std::uint32_t oidOf(const sql::Row& row)
    {
        const auto& text = std::get<std::string>(row[2]);
        std::uint32_t oid = 0;
        std::from_chars(text.data(), text.data() + text.size(), oid);
        return oid;
    }

    EventDatabase& m_database;
    const std::set<std::uint32_t>& m_slots;
    RuleSet m_ruleSet;
};

}  // namespace

RuleSet readRuleSet(EventDatabase& database, const std::set<std::uint32_t>& slots)
{
    const sql::Transaction oneState(database.database());
    return RuleSetReader(database, slots).read();
}

RuleSetWatcher::RuleSetWatcher(std::string path, std::set<std::uint32_t> slots)
    : m_path(std::move(path)), m_slots(std::move(slots))
{
}

RuleSet RuleSetWatcher::read()
{
    forget();
    std::optional<RuleSet> ruleSet = readIfChanged(sql::Database::Access::READ);
    m_database.reset();  // later readings do not wait
    return *std::move(ruleSet);
}

std::optional<RuleSet> RuleSetWatcher::readIfChanged()
{
    return readIfChanged(sql::Database::Access::READ_AT_ONCE);
}

std::optional<RuleSet> RuleSetWatcher::readIfChanged(sql::Database::Access access)
{
    noticeReplacement();
    if (!m_database) {
        m_database.emplace(m_path, access);
    }
    const std::int64_t lastChange = m_database->table(rowChangeTable()).largestKey();
    m_log = fileIdOf(m_path + LOG_SUFFIX);
    if (m_lastChange == lastChange) {
        return std::nullopt;
    }
    // A change between the two reads is in the rule set already, which is then read once more.
    RuleSet ruleSet = readRuleSet(*m_database, m_slots);
    m_lastChange = lastChange;
    return ruleSet;
}

// SQLite would keep using the file that was opened, wherever it is now, and would apply a log left behind to the new
// file.
void RuleSetWatcher::noticeReplacement()
{
    const std::optional<FileId> file = fileIdOf(m_path);
    if (!file) {
        forget();
        m_database.emplace(m_path, sql::Database::Access::READ_AT_ONCE);  // reports what is wrong
    }
    if (m_file && !areSame(m_file, file)) {
        const std::string log = m_path + LOG_SUFFIX;
        std::error_code error;
        if (areSame(m_log, fileIdOf(log)) && (std::filesystem::file_size(log, error) > 0) && !error) {
            throw sql::Error(sql::Problem::OTHER,
                             "'" + m_path + "' was replaced, but '" + log + "' belongs to the file before: remove it");
        }
        forget();
    }
    m_file = file;
}

std::optional<RuleSetWatcher::FileId> RuleSetWatcher::fileIdOf(const std::string& path)
{
    struct statx status = {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_INO | STATX_BTIME, &status) != 0) {
        return std::nullopt;
    }
    return FileId{{status.stx_dev_major, status.stx_dev_minor},
                  status.stx_ino,
                  {status.stx_btime.tv_sec, status.stx_btime.tv_nsec}};
}

bool RuleSetWatcher::areSame(const std::optional<FileId>& one, const std::optional<FileId>& other)
{
    return one && other && (one->device == other->device) && (one->node == other->node) && (one->birth == other->birth);
}

void RuleSetWatcher::forget()
{
    m_database.reset();
    m_lastChange.reset();
}

}  // namespace brantel
