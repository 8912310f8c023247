#include "commands/DbCommands.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "commands/DbEdit.h"
#include "commands/DbShow.h"
#include "commands/DbTransfer.h"

namespace {

constexpr const char* DB_EXAMPLES =
    R"(The database is a file: --db, or the environment variable BRANTEL_DB, or events.db in the current folder.

Exit code: 0 done, 1 a rule is refused, something is not there or wrong, 2 misuse or an unusable file.

Examples:
  brantel db init
  brantel db component enable 7
  brantel db allow add --component 7 1234 'expr=unsigned(hyshigh(70,80))'
  brantel db ignore add --slot 3 5678
  brantel db show SysCardAllowEventsTable
  brantel db export > events.json
  brantel db check)";

constexpr const char* IMPORT_FORMATS =
    R"(CSV holds one table; its first row names the columns. JSON holds an object with an array of rows under the name of
each table. Rows without a RowIndex are numbered. All rows are imported, or none.

Examples:
  brantel db import rules.csv
  brantel db import --replace --format json - < events.json)";

using Path = std::shared_ptr<std::string>;

std::map<std::string, TableFormat> formats()
{
    return {{"csv", TableFormat::CSV}, {"json", TableFormat::JSON}};
}

void checkOid(std::string& oid)
{
    const std::optional<std::string> canonical = canonicalOid(oid);
    if (!canonical) {
        throw CLI::ValidationError("OID", "'" + oid + "' is no number from 0 to 4294967295, decimal or after 0x");
    }
    oid = *canonical;
}

void addInit(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const init = db.add_subcommand("init", "Create a database; one that is there is checked and kept");
    const auto file = std::make_shared<std::string>();
    init->add_option("file", *file, "File of the database, instead of --db")->type_name("FILE");
    init->callback([=, &invocation] { invocation.run = [=] { return initDatabase(file->empty() ? *path : *file); }; });
}

void addShow(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const show = db.add_subcommand("show", "Show the rows of a table, or how many rows each table has");
    const auto table = std::make_shared<std::string>();
    const auto isJson = std::make_shared<bool>(false);
    show->add_option("table", *table, "Name of the table")->type_name("TABLE");
    show->add_flag("--json", *isJson, "One JSON object a line");
    show->callback([=, &invocation] { invocation.run = [=] { return showTables(*path, *table, *isJson); }; });
}

void addComponent(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const component = db.add_subcommand("component", "Let a component raise events, or not");
    component->require_subcommand(1);
    const auto id = std::make_shared<std::uint32_t>();
    for (const bool isEnabled : {true, false}) {
        CLI::App* const set = component->add_subcommand(isEnabled ? "enable" : "disable",
                                                        isEnabled ? "It may raise events" : "It may not raise events");
        set->add_option("id", *id, "The component")->required()->type_name("ID");
        set->callback(
            [=, &invocation] { invocation.run = [=] { return setComponentEnabled(*path, *id, isEnabled); }; });
    }
}

void addCard(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const card = db.add_subcommand("card", "Let the interface card in a slot raise events, or not");
    card->require_subcommand(1);
    const auto slot = std::make_shared<std::uint32_t>();
    const auto type = std::make_shared<std::optional<std::uint32_t>>();
    for (const bool isEnabled : {true, false}) {
        CLI::App* const set = card->add_subcommand(isEnabled ? "enable" : "disable",
                                                   isEnabled ? "It may raise events" : "It may not raise events");
        set->add_option("slot", *slot, "The slot, from 0")->required()->type_name("SLOT");
        set->add_option("--type", *type, "The type of the card; needed for a slot without a row")->type_name("N");
        set->callback(
            [=, &invocation] { invocation.run = [=] { return setCardEnabled(*path, *slot, *type, isEnabled); }; });
    }
}

using ListOperation = ExitCode (*)(const std::string&, EventTableKind, const ListOptions&);

void addOwnerOptions(CLI::App& command, std::optional<std::uint32_t>& component, std::optional<std::uint32_t>& slot)
{
    CLI::Option* const ofComponent =
        command.add_option("--component", component, "A component of the system card")->type_name("ID");
    command.add_option("--slot", slot, "The interface card in a slot")->type_name("SLOT")->excludes(ofComponent);
}

void addListChange(CLI::App& list, Invocation& invocation, const Path& path, EventTableKind kind, bool adds)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App* const change = list.add_subcommand(adds ? "add" : "remove", adds ? "Add an entry" : "Remove entries");
    addOwnerOptions(*change, options->component, options->slot);
    change->add_option("oid", options->oid, "The managed object, decimal or hexadecimal after 0x")
        ->required()
        ->type_name("OID");
    if (kind == EventTableKind::ALLOW) {
        const std::string description = adds ? "Rule text" : "Only the entry with this rule";
        change->add_option("rule", options->rule, description)->required(adds)->type_name("RULE");
    }
    const ListOperation operation = adds ? addListEntry : removeListEntries;
    change->callback([=, &invocation] {
        if (!options->component && !options->slot) {
            throw CLI::RequiredError("--component or --slot");
        }
        checkOid(options->oid);
        invocation.run = [=] { return operation(*path, kind, *options); };
    });
}

void addListing(CLI::App& list, Invocation& invocation, const Path& path, EventTableKind kind)
{
    const auto filter = std::make_shared<ListFilter>();
    const auto isJson = std::make_shared<bool>(false);
    CLI::App* const listing = list.add_subcommand("list", "List the entries");
    addOwnerOptions(*listing, filter->component, filter->slot);
    listing->add_option("--oid", filter->oid, "Only those of a managed object")->type_name("OID");
    listing->add_flag("--json", *isJson, "One JSON object a line");
    listing->callback([=, &invocation] {
        if (!filter->oid.empty()) {
            checkOid(filter->oid);
        }
        invocation.run = [=] { return showList(*path, kind, *filter, *isJson); };
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
    importing->add_option("file", options->file, "The file; - is standard input")->required()->type_name("FILE");
    importing->add_option("--format", options->format, "csv or json, instead of what the name of the file says")
        ->type_name("FORMAT")
        ->transform(CLI::CheckedTransformer(formats()));
    importing->add_flag("--replace", options->replaces, "Empty the tables that the file is about before");
    importing->callback([=, &invocation] { invocation.run = [=] { return importTables(*path, *options); }; });
}

void addExport(CLI::App& db, Invocation& invocation, const Path& path)
{
    const auto options = std::make_shared<ExportOptions>();
    CLI::App* const exporting = db.add_subcommand("export", "Write the rows to standard output");
    exporting->add_option("--table", options->table, "One table; all but the row-change table otherwise")
        ->type_name("TABLE");
    exporting->add_option("--format", options->format, "json, the default, or csv for one table")
        ->type_name("FORMAT")
        ->transform(CLI::CheckedTransformer(formats()));
    exporting->callback([=, &invocation] { invocation.run = [=] { return exportTables(*path, *options); }; });
}

void addCheck(CLI::App& db, Invocation& invocation, const Path& path)
{
    CLI::App* const check = db.add_subcommand("check", "Say what is wrong with the tables and with the rows in them");
    const auto isJson = std::make_shared<bool>(false);
    check->add_flag("--json", *isJson, "One JSON object a line");
    check->callback([=, &invocation] { invocation.run = [=] { return showFindings(*path, *isJson); }; });
}

}  // namespace

void addDbCommands(CLI::App& app, Invocation& invocation)
{
    CLI::App* const db = app.add_subcommand("db", "Look at and change an event-management database");
    db->require_subcommand(1);
    db->footer(DB_EXAMPLES);
    const auto path = std::make_shared<std::string>("events.db");
    db->add_option("--db", *path, "File of the database")->type_name("FILE")->envname("BRANTEL_DB");
    addInit(*db, invocation, path);
    addShow(*db, invocation, path);
    addComponent(*db, invocation, path);
    addCard(*db, invocation, path);
    addList(*db, invocation, path, EventTableKind::ALLOW);
    addList(*db, invocation, path, EventTableKind::IGNORE);
    addImport(*db, invocation, path);
    addExport(*db, invocation, path);
    addCheck(*db, invocation, path);
}
