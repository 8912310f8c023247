#include "commands/DbEdit.h"

#include "cards/OidTable.h"
#include "common/Message.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "rules/RuleFaultPicture.h"
#include "tables/EventDatabase.h"

namespace brantel {

namespace {

void printLine(const std::string& text)
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

std::vector<ListEntry> entriesOf(const ListOptions& options)
{
    std::vector<ListEntry> entries;
    for (const Place& place : options.places) {
        entries.push_back({place, options.oid, options.rule});
    }
    return entries;
}

// "slot 3 cpu.busy", "component 7 OID 1234"
std::string entryText(const ListEntry& entry)
{
    const OidEntry* const pObject = findOid(entry.oid);
    return placeText(entry.place) + " " + ((pObject == nullptr) ? "OID " + std::to_string(entry.oid) : pObject->name);
}

// An object that is in both lists is ignored.
void warnOfOtherList(EventDatabase& database, EventTableKind list, const ListEntry& entry)
{
    const EventTableKind otherList = (list == EventTableKind::ALLOW) ? EventTableKind::IGNORE : EventTableKind::ALLOW;
    const EventTable& otherTable = tableFor(otherList, entry.place.kind);
    if (isInList(database, otherList, {entry.place, entry.oid, std::nullopt})) {
        printMessage(entryText(entry) + " is in " + otherTable.name() + " too: ignored events are never raised");
    }
}

}  // namespace

ExitCode initDatabase(const std::string& path)
{
    EventDatabase::create(path);
    printLine(path + ": the event-management database is ready");
    return EXIT_FINE;
}

ExitCode setComponentEnabled(const std::string& path, std::uint32_t component, bool isEnabled)
{
    EventDatabase database = openForWriting(path);
    const ChangeResult result = enableComponent(database, component, isEnabled);
    printLine(placeText(componentPlace(component)) + ": " + enabledText(result, isEnabled));
    return EXIT_FINE;
}

ExitCode setCardEnabled(const std::string& path, std::uint32_t slot, std::optional<std::uint32_t> cardType,
                        bool isEnabled)
{
    EventDatabase database = openForWriting(path);
    const CardChange change = enableCard(database, slot, cardType, isEnabled);
    const std::string place = placeText(slotPlace(slot)) + ": ";
    if (change.result == ChangeResult::NOT_FOUND) {
        printMessage(place + "there is no card yet; specify its type with --type");
        return EXIT_NEGATIVE_ANSWER;
    }
    const auto switched = change.isSwitched ? ChangeResult::CHANGED : ChangeResult::UNCHANGED;
    printLine(place + enabledText(switched, isEnabled) +
              (change.oldType ? ", type " + std::to_string(*cardType) + " (was " + *change.oldType + ")" : ""));
    return EXIT_FINE;
}

ExitCode addListEntries(const std::string& path, EventTableKind list, const ListOptions& options)
{
    if (options.rule) {
        if (const std::optional<RuleFault> fault = faultOfStoredRule(*options.rule)) {
            printRefusal("rule", *options.rule, *fault);
            return EXIT_NEGATIVE_ANSWER;
        }
    }
    EventDatabase database = openForWriting(path);
    const std::vector<ListEntry> entries = entriesOf(options);
    const std::vector<ChangeResult> results = addToList(database, list, entries);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        printLine(entryText(entries[i]) + ((results[i] == ChangeResult::UNCHANGED) ? " is already in " : " added to ") +
                  tableFor(list, entries[i].place.kind).name());
        warnOfOtherList(database, list, entries[i]);
    }
    return EXIT_FINE;
}

ExitCode removeListEntries(const std::string& path, EventTableKind list, const ListOptions& options)
{
    EventDatabase database = openForWriting(path);
    const std::vector<ListEntry> entries = entriesOf(options);
    const std::vector<ChangeResult> results = removeFromList(database, list, entries);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string tableName = tableFor(list, entries[i].place.kind).name();
        if (results[i] == ChangeResult::CHANGED) {
            printLine(entryText(entries[i]) + " removed from " + tableName);
        } else if (results[i] == ChangeResult::NOT_FOUND) {
            printMessage(entryText(entries[i]) + " is not in " + tableName + (options.rule ? " with this rule" : ""));
        }
    }
    if (results.front() == ChangeResult::CHANGED) {
        return EXIT_FINE;
    }
    if (entries.size() > 1) {
        printMessage("nothing is removed");
    }
    return EXIT_NEGATIVE_ANSWER;
}

ExitCode removePlaceRows(const std::string& path, const Place& place)
{
    EventDatabase database = openForWriting(path);
    const std::int64_t nRemoved = removePlace(database, place);
    if (nRemoved == 0) {
        printMessage(placeText(place) + " is in no table");
        return EXIT_NEGATIVE_ANSWER;
    }
    printLine(placeText(place) + ": " + counted(static_cast<std::uint64_t>(nRemoved), "row") + " removed");
    return EXIT_FINE;
}

ExitCode pruneRowChanges(const std::string& path, std::int64_t nKept)
{
    EventDatabase database = openForWriting(path);
    const std::int64_t nRemoved = pruneChanges(database, nKept);
    printLine(rowChangeTable().name() + ": " + counted(static_cast<std::uint64_t>(nRemoved), "row") + " removed");
    return EXIT_FINE;
}

}  // namespace brantel
