#include "commands/DbEdit.h"

#include <iostream>

#include "commands/RuleCheck.h"
#include "common/ResultOutput.h"
#include "tables/EventDatabase.h"

using namespace eventMgmt;

namespace {

void say(const std::string& text)
{
    ResultOutput output;
    output.writeLine(printable(text));
    output.finish();
}

EventDatabase openForWriting(const std::string& path)
{
    return EventDatabase(path, sql::Database::Access::WRITE);
}

std::string enabledText(ChangeResult result, bool isEnabled)
{
    const std::string state = isEnabled ? "enabled" : "disabled";
    return (result == ChangeResult::UNCHANGED) ? "events are " + state + " already" : "events " + state;
}

AllowIgnoreTableId tableOf(EventTableKind list, const ListOptions& options)
{
    const bool isOfCards = options.slot.has_value();
    if (list == EventTableKind::ALLOW) {
        return isOfCards ? IFC_CARDS_ALLOW_EVENTS_TABLE_ID : SYS_CARD_ALLOW_EVENTS_TABLE_ID;
    }
    return isOfCards ? IFC_CARDS_IGNORE_EVENTS_TABLE_ID : SYS_CARD_IGNORE_EVENTS_TABLE_ID;
}

std::string entryText(const ListOptions& options)
{
    const std::string owner =
        options.slot ? "slot " + std::to_string(*options.slot) : "component " + std::to_string(*options.component);
    return owner + " OID " + options.oid;
}

ListEntry entryOf(const ListOptions& options)
{
    return {options.slot ? *options.slot : *options.component, options.oid, options.rule};
}

// The table of the other list: what is in both is ignored.
EventTableKind otherList(EventTableKind list)
{
    return (list == EventTableKind::ALLOW) ? EventTableKind::IGNORE : EventTableKind::ALLOW;
}

void warnOfOtherList(EventDatabase& database, EventTableKind list, const ListOptions& options)
{
    const EventTable& other = allowIgnoreTable(tableOf(otherList(list), options));
    const std::int64_t nEntries =
        database.table(other).count({{other.columns()[other.ownerColumn()].name(), entryOf(options).owner},
                                     {EvmDatabase::ALLOW_IGNORE_COLUMN_OID, options.oid}});
    if (nEntries > 0) {
        std::cerr << "brantel: " << entryText(options) << " is in " << other.name()
                  << " too: what is ignored is not allowed\n";
    }
}

}  // namespace

ExitCode initDatabase(const std::string& path)
{
    EventDatabase::create(path);
    say(path + ": the event-management database is ready");
    return EXIT_FINE;
}

ExitCode setComponentEnabled(const std::string& path, std::int64_t componentId, bool isEnabled)
{
    EventDatabase database = openForWriting(path);
    const ChangeResult result = enableComponent(database, componentId, isEnabled);
    say("component " + std::to_string(componentId) + ": " + enabledText(result, isEnabled));
    return EXIT_FINE;
}

ExitCode setCardEnabled(const std::string& path, std::int64_t slot, std::optional<std::int64_t> cardType,
                        bool isEnabled)
{
    EventDatabase database = openForWriting(path);
    const ChangeResult result = enableCard(database, slot, cardType, isEnabled);
    const std::string place = "slot " + std::to_string(slot) + ": ";
    if (result == ChangeResult::NOT_FOUND) {
        std::cerr << "brantel: " << place << "there is no card yet; say of which type it is with --type\n";
        return EXIT_NEGATIVE_ANSWER;
    }
    say(place + enabledText(result, isEnabled));
    return EXIT_FINE;
}

ExitCode addListEntry(const std::string& path, EventTableKind list, const ListOptions& options)
{
    if (options.rule) {
        if (const std::optional<RuleFault> fault = faultOfStoredRule(*options.rule)) {
            std::cerr << "brantel: rule:" << columnOf(*options.rule, *fault)
                      << ": refused: " << printable(fault->reason) << '\n';
            for (const std::string& line : pictureOf(*options.rule, *fault)) {
                std::cerr << line << '\n';
            }
            return EXIT_NEGATIVE_ANSWER;
        }
    }
    EventDatabase database = openForWriting(path);
    const AllowIgnoreTableId id = tableOf(list, options);
    const ChangeResult result = addToList(database, id, entryOf(options));
    say(entryText(options) + ((result == ChangeResult::UNCHANGED) ? " is there already, in " : " added to ") +
        allowIgnoreTableId2Name(id));
    warnOfOtherList(database, list, options);
    return EXIT_FINE;
}

ExitCode removeListEntries(const std::string& path, EventTableKind list, const ListOptions& options)
{
    EventDatabase database = openForWriting(path);
    const AllowIgnoreTableId id = tableOf(list, options);
    if (removeFromList(database, id, entryOf(options)) == ChangeResult::NOT_FOUND) {
        std::cerr << "brantel: " << entryText(options) << " is not in " << allowIgnoreTableId2Name(id)
                  << (options.rule ? " with this rule\n" : "\n");
        return EXIT_NEGATIVE_ANSWER;
    }
    say(entryText(options) + " removed from " + allowIgnoreTableId2Name(id));
    return EXIT_FINE;
}
