#include "commands/Commands.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "cards/OidTable.h"
#include "commands/DbEdit.h"
#include "commands/DbShow.h"
#include "commands/DbTransfer.h"
#include "common/TypedOptions.h"

namespace brantel {
namespace {

constexpr const char* DB_EXAMPLES =
    R"(Exit code: 0 done, 1 a rule is refused, something is missing or wrong, 2 misuse or an unusable file.

Examples:
  brantel db init
  brantel db component enable 7
  brantel db allow add --component 7 1234 'expr=unsigned(hyshigh(70,80))'
  brantel db allow add --slot 0-3,7 cpu.busy 'expr=unsigned(hyshigh(30,70))'
  brantel db ignore add --slot 3 5678
  brantel db show SysCardAllowEventsTable
  brantel db export > events.json
  brantel db check)";

constexpr const char* IMPORT_FORMATS =
    R"(CSV holds one table; its first row names the columns. JSON holds an object with an array of rows under the name of
each table. Rows without a RowIndex are numbered. All rows are imported, or none.

Exit code: 0 done, 1 a row is wrong, 2 misuse or an unusable file.

Examples:
  brantel db import rules.csv
  brantel db import --replace --format json - < events.json)";

using Path = std::shared_ptr<std::string>;

constexpr std::uint32_t HIGHEST_NUMBER = std::numeric_limits<std::uint32_t>::max();

Choices<TableFormat> formats()
{
    return {{"csv", TableFormat::CSV}, {"json", TableFormat::JSON}};
}

void addInit(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const init = db.add_subcommand("init", "Create a database, or check an existing one");
    const auto file = std::make_shared<std::string>();
    init->add_option("FILE", *file, "File of the database, instead of --db")->type_name("");
    init->callback([=, &invocation] { invocation.run = [=] { return initDatabase(file->empty() ? *path : *file); }; });
}

void addShow(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const show = db.add_subcommand("show", "Show the rows of a table, or the number of rows of each");
    const auto table = std::make_shared<std::string>();
    const auto isJson = std::make_shared<bool>(false);
    show->add_option("TABLE", *table, "Name of the table")->type_name("");
    show->add_flag("--json", *isJson, "One JSON object a line");
    show->callback([=, &invocation] { invocation.run = [=] { return showTables(*path, *table, *isJson); }; });
}

void addComponent(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const component = db.add_subcommand("component", "Enable, disable or remove a component");
    component->require_subcommand(1);
    const auto id = std::make_shared<std::uint32_t>();
    for (const bool isEnabled : {true, false}) {
        CLI::App* const set = component->add_subcommand(isEnabled ? "enable" : "disable",
                                                        isEnabled ? "Let it raise events" : "Let it raise no events");
        addIntegerOption(*set, "ID", *id, "The component", 0, HIGHEST_NUMBER)->required()->type_name("");
        set->callback(
            [=, &invocation] { invocation.run = [=] { return setComponentEnabled(*path, *id, isEnabled); }; });
    }
    CLI::App* const remove = component->add_subcommand("remove", "Remove it, with its entries in the lists");
    addIntegerOption(*remove, "ID", *id, "The component", 0, HIGHEST_NUMBER)->required()->type_name("");
    remove->callback(
        [=, &invocation] { invocation.run = [=] { return removePlaceRows(*path, componentPlace(*id)); }; });
}

void addCard(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const card = db.add_subcommand("card", "Enable, disable or remove the interface card in a slot");
    card->require_subcommand(1);
    const auto slot = std::make_shared<std::uint32_t>();
    const auto type = std::make_shared<std::optional<std::uint32_t>>();
    for (const bool isEnabled : {true, false}) {
        CLI::App* const set = card->add_subcommand(isEnabled ? "enable" : "disable",
                                                   isEnabled ? "Let it raise events" : "Let it raise no events");
        addIntegerOption(*set, "SLOT", *slot, "The slot, from 0", 0, HIGHEST_NUMBER)->required()->type_name("");
        addIntegerOption(*set, "--type", *type, "The type of the card; required for a slot without a row", 0,
                         HIGHEST_NUMBER)
            ->type_name("N");
        set->callback(
            [=, &invocation] { invocation.run = [=] { return setCardEnabled(*path, *slot, *type, isEnabled); }; });
    }
    CLI::App* const remove = card->add_subcommand("remove", "Remove it, with its entries in the lists");
    addIntegerOption(*remove, "SLOT", *slot, "The slot, from 0", 0, HIGHEST_NUMBER)->required()->type_name("");
    remove->callback([=, &invocation] { invocation.run = [=] { return removePlaceRows(*path, slotPlace(*slot)); }; });
}

using ListOperation = ExitCode (*)(const std::string&, EventTableKind, const ListOptions&);

// The places and the object of a change of a list, or of a listing.
struct EntryOptions {
    std::set<std::uint32_t> components;
    std::set<std::uint32_t> slots;
    std::string object;

    std::set<Place> places() const
    {
        std::set<Place> places;
        std::transform(components.begin(), components.end(), std::inserter(places, places.end()), componentPlace);
        std::transform(slots.begin(), slots.end(), std::inserter(places, places.end()), slotPlace);
        return places;
    }
};

void addPlaceOptions(CLI::App& command, EntryOptions& options)
{
    CLI::Option* const components =
        addNumberListOption(command, "--component", options.components,
                            "Components of the system card, such as 7 or 7-9", 0, HIGHEST_NUMBER);
    addNumberListOption(command, "--slot", options.slots, "Slots of interface cards, such as 3 or 0-3,7", 0,
                        HIGHEST_NUMBER)
        ->excludes(components);
}

void addListChange(CLI::App& list, Invocation& invocation, const Path& path, EventTableKind kind, bool adds)
{
    const auto entry = std::make_shared<EntryOptions>();
    const auto rule = std::make_shared<std::optional<std::string>>();
    CLI::App* const change = list.add_subcommand(adds ? "add" : "remove", adds ? "Add entries" : "Remove entries");
    addPlaceOptions(*change, *entry);
    change->add_option("OID", entry->object, "The object: its number, decimal or with 0x, or its name")
        ->required()
        ->type_name("");
    if (kind == EventTableKind::ALLOW) {
        const std::string description = adds ? "Rule text" : "Only the entries with this rule";
        change->add_option("RULE", *rule, description)->required(adds)->type_name("");
    }
    const ListOperation operation = adds ? addListEntries : removeListEntries;
    change->callback([=, &invocation] {
        if (entry->places().empty()) {
            throw CLI::RequiredError("--component or --slot");
        }
        invocation.run = [=] { return operation(*path, kind, {entry->places(), requireOid(entry->object), *rule}); };
    });
}

void addListing(CLI::App& list, Invocation& invocation, const Path& path, EventTableKind kind)
{
    const auto entry = std::make_shared<EntryOptions>();
    const auto isJson = std::make_shared<bool>(false);
    CLI::App* const listing = list.add_subcommand("list", "List the entries");
    addPlaceOptions(*listing, *entry);
    listing->add_option("--oid", entry->object, "Only those with this object: its number or its name")
        ->type_name("OID");
    listing->add_flag("--json", *isJson, "One JSON object a line");
    listing->callback([=, &invocation] {
        invocation.run = [=] {
            ListFilter filter{entry->places(), std::nullopt};
            if (!entry->object.empty()) {
                filter.oid = requireOid(entry->object);
            }
            return showList(*path, kind, filter, *isJson);
        };
    });
}

void addList(CLI::App& db, Invocation& invocation, const Path& path, EventTableKind kind)
{
    const bool isAllow = kind == EventTableKind::ALLOW;
    CLI::App* const list = db.add_subcommand(isAllow ? "allow" : "ignore",
                                             isAllow ? "The rules by which events of managed objects are allowed"
                                                     : "The managed objects whose events are ignored");
    list->require_subcommand(1);
    addListChange(*list, invocation, path, kind, true);
    addListChange(*list, invocation, path, kind, false);
    addListing(*list, invocation, path, kind);
}

void addImport(CLI::App& db, Invocation& invocation, const Path& path)
{
    const auto options = std::make_shared<ImportOptions>();
    CLI::App* const importing = db.add_subcommand("import", "Import rows from a file");
    importing->footer(IMPORT_FORMATS);
    importing->add_option("FILE", options->file, "The file; - is standard input")->required()->type_name("");
    addChoiceOption(*importing, "--format", options->format,
                    "csv or json (default: by the file's name or first character)", formats())
        ->type_name("FORMAT");
    importing->add_flag("--replace", options->replaces, "Empty the tables of the file first");
    importing->callback([=, &invocation] { invocation.run = [=] { return importTables(*path, *options); }; });
}

void addExport(CLI::App& db, Invocation& invocation, const Path& path)
{
    const auto options = std::make_shared<ExportOptions>();
    CLI::App* const exporting = db.add_subcommand("export", "Write the rows to standard output");
    exporting->add_option("--table", options->table, "One table (default: all but the row-change table)")
        ->type_name("TABLE");
    addChoiceOption(*exporting, "--format", options->format, "csv (one table) or json (default)", formats())
        ->type_name("FORMAT");
    exporting->callback([=, &invocation] { invocation.run = [=] { return exportTables(*path, *options); }; });
}

void addCheck(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const check = db.add_subcommand("check", "List what is wrong with the tables and their rows");
    const auto isJson = std::make_shared<bool>(false);
    check->add_flag("--json", *isJson, "One JSON object a line");
    check->callback([=, &invocation] { invocation.run = [=] { return showFindings(*path, *isJson); }; });
}

void addPrune(CLI::App& db, Invocation& invocation, const Path& path)
{
    const auto nKept = std::make_shared<std::uint32_t>(1);
    CLI::App* const prune = db.add_subcommand("prune", "Remove rows of the row-change table that monitors have read");
    addIntegerOption(*prune, "--keep", *nKept, "Number of last rows to keep", 1, HIGHEST_NUMBER)->type_name("N");
    prune->callback([=, &invocation] { invocation.run = [=] { return pruneRowChanges(*path, *nKept); }; });
}

}  // namespace

void addDbCommands(CLI::App& app, Invocation& invocation)
{
    CLI::App* const db = app.add_subcommand("db", "Show and change an event-management database");
    db->require_subcommand(1);
    db->footer(DB_EXAMPLES);
    const auto path = std::make_shared<std::string>("events.db");
    db->add_option("--db", *path, "File of the database")
        ->type_name("FILE")
        ->envname("BRANTEL_DB")
        ->capture_default_str();
    addInit(*db, invocation, path);
    addShow(*db, invocation, path);
    addComponent(*db, invocation, path);
    addCard(*db, invocation, path);
    addList(*db, invocation, path, EventTableKind::ALLOW);
    addList(*db, invocation, path, EventTableKind::IGNORE);
    addImport(*db, invocation, path);
    addExport(*db, invocation, path);
    addCheck(*db, invocation, path);
    addPrune(*db, invocation, path);
}

}  // namespace brantel
