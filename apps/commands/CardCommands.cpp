#include "commands/CardCommands.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/CardGet.h"
#include "commands/CardList.h"
#include "commands/CardServe.h"
#include "commands/CardSet.h"
#include "commands/CardWatch.h"
#include "common/ResultOutput.h"
#include "message/OBkeys.h"

namespace {

constexpr int LAST_SLOT = 9;
constexpr double SHORTEST_INTERVAL = 0.001;
constexpr double LONGEST_INTERVAL = 86400;
constexpr int LONGEST_TIMEOUT = 3600;
constexpr int MOST_READINGS = 1'000'000'000;

constexpr const char* CARD_EXAMPLES =
    R"(Serves both ICSC interfaces of the slot until SIGINT or SIGTERM. docs/cards.md tells objects, sources and faults.

Examples:
  brantel card --slot 3
  brantel card --slot 4 --source csv:examples/host-recording.csv --speed 10
  brantel card --slot 5 --source wave:examples/signals.yaml --fault delay=0.5
  brantel card list)";

constexpr const char* LIST_EXAMPLES = R"(Exit code: 0 a card was found, 1 none was, 2 misuse.

Examples:
  brantel card list
  brantel card list --json)";

constexpr const char* OBJECTS_EXAMPLES = R"(Examples:
  brantel card objects
  brantel card objects --json)";

constexpr const char* KEYS_EXAMPLES = R"(Prints the public key. docs/messages.md tells what to do with it.

Examples:
  brantel card keys service.key)";

constexpr const char* GET_EXAMPLES =
    R"(An OID is a number, decimal or with 0x, or a name (brantel card objects).

Exit code: 0 all objects were read, 1 one was not, 2 misuse.

Examples:
  brantel get 3 card.name cpu.busy 0x00020201
  brantel get 3 --json mem.available)";

constexpr const char* SET_EXAMPLES =
    R"(Types: uint64 uint32 uint16 uint8 int64 int32 int16 int8 bool string ipv4 buffer mac.

Exit code: 0 all values were written, 1 a request was refused or not answered, 2 misuse.

Examples:
  brantel set 3 card.led=uint8:2 card.name=string:uplink
  brantel set 3 card.fault=string:delay=0.5)";

constexpr const char* WATCH_EXAMPLES =
    R"(Reads again and again, until SIGINT or SIGTERM, or --count times.

Exit code: 0 all objects were read the last time, 1 one was not, 2 misuse.

Examples:
  brantel watch 3 cpu.busy mem.available
  brantel watch 3 --interval 0.2 --count 10 --json net.rx-bytes)";

void addSlot(CLI::App& command, std::uint32_t& slot)
{
    command.add_option("slot", slot, "Slot of the card")
        ->required()
        ->type_name("SLOT")
        ->check(CLI::Range(0, LAST_SLOT));
}

void addJson(CLI::App& command, bool& isJson)
{
    command.add_flag("--json", isJson, "One JSON object a line");
}

void addTimeout(CLI::App& command, std::int32_t& timeout)
{
    command.add_option("--timeout", timeout, "Seconds that the card may take for each request")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, LONGEST_TIMEOUT))
        ->capture_default_str();
}

ExitCode createKeys(const std::string& file)
{
    ResultOutput output;
    output.writeLine(createKeyFile(file));
    output.finish();
    return EXIT_FINE;
}

void addCardServe(CLI::App& card, Invocation& invocation)
{
    const auto options = std::make_shared<CardServeOptions>();
    CLI::Option* const slot =
        card.add_option("--slot", options->slot, "Slot to serve")->type_name("N")->check(CLI::Range(0, LAST_SLOT));
    card.add_option("--source", options->source, "Where values come from: host, csv:FILE or wave:FILE")
        ->type_name("SOURCE")
        ->capture_default_str();
    const std::vector<const CLI::Option*> ofRecordings = {
        card.add_option("--time-column", options->timeColumn, "csv: column of the times; 'time', if there is one")
            ->type_name("NAME"),
        card.add_option("--interval", options->interval, "csv: seconds between rows without times")
            ->type_name("SECONDS")
            ->check(CLI::Range(SHORTEST_INTERVAL, LONGEST_INTERVAL))
            ->capture_default_str(),
        card.add_option("--speed", options->speed, "csv: 2 replays twice as fast as recorded")
            ->type_name("FACTOR")
            ->check(CLI::Range(0.001, 1000.0))
            ->capture_default_str(),
        card.add_flag("--step", options->isStepped, "csv: the next row when a column is read again, whatever the time"),
    };
    card.add_option("--fault", options->faults, "Faults to start with, separated by commas")->type_name("FAULTS");
    card.callback([&card, options, &invocation, slot, ofRecordings] {
        if (!card.get_subcommands().empty()) {
            return;
        }
        if (slot->count() == 0) {
            throw CLI::RequiredError("--slot");
        }
        for (const CLI::Option* const option : ofRecordings) {
            if ((option->count() > 0) && !isRecording(*options)) {
                throw CLI::ValidationError(option->get_name(), "only with --source csv:FILE");
            }
        }
        invocation.run = [options] { return serveCard(*options); };
    });
}

void addCard(CLI::App& app, Invocation& invocation)
{
    CLI::App* const card = app.add_subcommand("card", "Serve an interface card, or list those that are served");
    card->footer(CARD_EXAMPLES);
    card->require_subcommand(0, 1);
    addCardServe(*card, invocation);

    const auto isListJson = std::make_shared<bool>(false);
    CLI::App* const list = card->add_subcommand("list", "Say which slots are served");
    list->footer(LIST_EXAMPLES);
    addJson(*list, *isListJson);
    list->callback([isListJson, &invocation] { invocation.run = [isListJson] { return listCards(*isListJson); }; });

    const auto areObjectsJson = std::make_shared<bool>(false);
    CLI::App* const objects = card->add_subcommand("objects", "List the objects that cards can have");
    objects->footer(OBJECTS_EXAMPLES);
    addJson(*objects, *areObjectsJson);
    objects->callback(
        [areObjectsJson, &invocation] { invocation.run = [areObjectsJson] { return listObjects(*areObjectsJson); }; });

    const auto keyFile = std::make_shared<std::string>();
    CLI::App* const keys = card->add_subcommand("keys", "Create a key pair for traffic between hosts");
    keys->footer(KEYS_EXAMPLES);
    keys->add_option("file", *keyFile, "File to create")->required()->type_name("FILE");
    keys->callback([keyFile, &invocation] { invocation.run = [keyFile] { return createKeys(*keyFile); }; });
}

void addGet(CLI::App& app, Invocation& invocation)
{
    const auto options = std::make_shared<CardGetOptions>();
    CLI::App* const get = app.add_subcommand("get", "Read objects of a card");
    get->footer(GET_EXAMPLES);
    addSlot(*get, options->slot);
    get->add_option("oids", options->oids, "Objects to read")->required()->type_name("OID");
    addTimeout(*get, options->timeout);
    addJson(*get, options->isJson);
    get->callback([options, &invocation] { invocation.run = [options] { return getObjects(*options); }; });
}

void addSet(CLI::App& app, Invocation& invocation)
{
    const auto options = std::make_shared<CardSetOptions>();
    CLI::App* const set = app.add_subcommand("set", "Write objects of a card");
    set->footer(SET_EXAMPLES);
    addSlot(*set, options->slot);
    set->add_option("values", options->assignments, "Values to write")->required()->type_name("OID=TYPE:VALUE");
    addTimeout(*set, options->timeout);
    addJson(*set, options->isJson);
    set->callback([options, &invocation] { invocation.run = [options] { return setObjects(*options); }; });
}

void addWatch(CLI::App& app, Invocation& invocation)
{
    const auto options = std::make_shared<CardWatchOptions>();
    CLI::App* const watch = app.add_subcommand("watch", "Read objects of a card again and again");
    watch->footer(WATCH_EXAMPLES);
    addSlot(*watch, options->slot);
    watch->add_option("oids", options->oids, "Objects to read")->required()->type_name("OID");
    watch->add_option("--interval", options->interval, "Seconds from one reading to the next")
        ->type_name("SECONDS")
        ->check(CLI::Range(SHORTEST_INTERVAL, LONGEST_INTERVAL))
        ->capture_default_str();
    watch->add_option("--count", options->count, "End after so many readings")
        ->type_name("N")
        ->check(CLI::Range(1, MOST_READINGS));
    addJson(*watch, options->isJson);
    watch->callback([options, &invocation] { invocation.run = [options] { return watchObjects(*options); }; });
}

}  // namespace

void addCardCommands(CLI::App& app, Invocation& invocation)
{
    addCard(app, invocation);
    addGet(app, invocation);
    addSet(app, invocation);
    addWatch(app, invocation);
}
