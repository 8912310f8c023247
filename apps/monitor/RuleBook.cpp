#include "monitor/RuleBook.h"

#include <charconv>

#include "EventMgmtRulesParsing.h"
#include "common/ResultOutput.h"

using namespace eventMgmt;

namespace {

constexpr std::uint32_t N_SLOTS = 10;  // those that the client reaches

// Reasons quote what is in the row, which may be anything; events and states hold them as parts of lines.
std::string oneLine(const std::string& reason)
{
    constexpr std::size_t MAX_LENGTH = 1000;
    const std::string more = "...";
    return printable((reason.size() <= MAX_LENGTH) ? reason : reason.substr(0, MAX_LENGTH - more.size()) + more);
}

constexpr std::size_t MAX_RULE_LENGTH = 65536;  // the state and the journal hold a rule as a part of a line

// The tables of one kind of place.
struct PlaceTables {
    Place::Kind kind;
    const EventTable& configuration;
    const EventTable& allow;
    const EventTable& ignore;
};

class BookReader {
public:
    BookReader(EventDatabase& database, const std::set<std::uint32_t>& slots) : m_database(database), m_slots(slots) {}

    RuleBook read()
    {
        readPlaces({Place::Kind::SLOT, ifcCardsConfigTable(), allowIgnoreTable(IFC_CARDS_ALLOW_EVENTS_TABLE_ID),
                    allowIgnoreTable(IFC_CARDS_IGNORE_EVENTS_TABLE_ID)});
        readPlaces({Place::Kind::COMPONENT, componentConfigTable(), allowIgnoreTable(SYS_CARD_ALLOW_EVENTS_TABLE_ID),
                    allowIgnoreTable(SYS_CARD_IGNORE_EVENTS_TABLE_ID)});
        return std::move(m_book);
    }

private:
    void readPlaces(const PlaceTables& tables)
    {
        forEachSoundRow(tables, tables.configuration, [&](const Place& place, const sql::Row& row) {
            if (row.back() == sql::Value(1)) {
                (isServed(place) ? m_book.enabledPlaces : m_book.unservedPlaces).insert(place);
            }
        });
        forEachSoundRow(tables, tables.ignore,
                        [&](const Place& place, const sql::Row& row) { m_book.ignored.emplace(place, oidOf(row)); });
        forEachSoundRow(tables, tables.allow, [&](const Place& place, const sql::Row& row) {
            const std::uint32_t oid = oidOf(row);
            const auto& rule = std::get<std::string>(row.back());
            if (rule.size() > MAX_RULE_LENGTH) {
                refuse(tables.allow, row, "Rule: longer than " + std::to_string(MAX_RULE_LENGTH) + " characters");
                return;
            }
            const bool isEnabled = (m_book.enabledPlaces.count(place) != 0);
            const bool isIgnored = (m_book.ignored.count({place, oid}) != 0);
            if (isEnabled && !isIgnored && !vemorRules::isEmptyRule(rule)) {
                m_book.rules.insert({place, oid, rule});
            }
        });
    }

    // Visits the rows without those that are refused.
    template <typename Visit>
    void forEachSoundRow(const PlaceTables& tables, const EventTable& table, const Visit& visit)
    {
        m_database.table(table).forEach({}, [&](const sql::Row& row) {
            const std::vector<RowFault> faults = faultsOfRow(table, row);
            if (!faults.empty()) {
                refuse(table, row, faults.front().column + ": " + faults.front().reason);
                return;
            }
            const Place place{tables.kind,
                              static_cast<std::uint32_t>(std::get<std::int64_t>(row[table.ownerColumn()]))};
            if ((place.kind == Place::Kind::SLOT) && (place.number >= N_SLOTS)) {
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
        m_book.refusedRows.insert({table.name(), (pKey == nullptr) ? 0 : *pKey, oneLine(reason)});
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
    RuleBook m_book;
};

}  // namespace

RuleBook readRuleBook(EventDatabase& database, const std::set<std::uint32_t>& slots)
{
    const sql::Transaction oneState(database.database());
    return BookReader(database, slots).read();
}

RuleBookFollower::RuleBookFollower(std::string path, std::set<std::uint32_t> slots)
    : m_path(std::move(path)), m_slots(std::move(slots))
{
}

std::optional<RuleBook> RuleBookFollower::bookIfChanged()
{
    if (!m_database) {
        m_database.emplace(m_path, sql::Database::Access::READ);
    }
    const std::int64_t lastChange = m_database->table(rowChangeTable()).largestKey();
    if (m_lastChange == lastChange) {
        return std::nullopt;
    }
    // A change between the two reads is in the book already, and makes it be read once more.
    RuleBook book = readRuleBook(*m_database, m_slots);
    m_lastChange = lastChange;
    return book;
}

void RuleBookFollower::forget()
{
    m_database.reset();
    m_lastChange.reset();
}
