#include "commands/Commands.h"

#include <memory>
#include <string>
#include <vector>

#include "Icsc.h"
#include "commands/CardGet.h"
#include "commands/CardList.h"
#include "commands/CardServe.h"
#include "commands/CardSet.h"
#include "commands/CardWatch.h"
#include "common/ResultOutput.h"
#include "common/TypedOptions.h"
#include "message/OBkeys.h"

namespace brantel {
namespace {

constexpr double SHORTEST_INTERVAL = 0.001;
constexpr double LONGEST_INTERVAL = 86400;
constexpr double LOWEST_SPEED = 0.001;
constexpr double HIGHEST_SPEED = 1000;
constexpr std::int32_t LONGEST_TIMEOUT = 3600;
constexpr std::uint64_t MOST_READINGS = 1'000'000'000;

constexpr const char* CARD_EXAMPLES =
    R"(Serves both ICSC interfaces of the slot until SIGINT or SIGTERM. docs/cards.md describes objects, sources and
faults.

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

constexpr const char* KEYS_EXAMPLES = R"(Prints the public key. docs/messages.md describes its use.

Examples:
  brantel card keys service.key)";

constexpr const char* GET_EXAMPLES =
    R"(An OID is a number, decimal or with 0x, or a name (brantel card objects). A prefix of names up to a dot means all
objects of that group that the card has.

Exit code: 0 all objects were read, 1 one was not or the card has none of them, 2 misuse.

Examples:
  brantel get 3 card.name cpu.busy 0x00020201
  brantel get 3 net.
  brantel get 3 --all
  brantel get 3 --json mem.available)";

constexpr const char* SET_EXAMPLES =
    R"(Types: uint64 uint32 uint16 uint8 int64 int32 int16 int8 bool string ipv4 buffer mac.

Exit code: 0 all values were written, 1 a request was refused or not answered, 2 misuse.

Examples:
  brantel set 3 card.led=uint8:2 card.name=string:uplink
  brantel set 3 card.fault=string:delay=0.5)";

constexpr const char* WATCH_EXAMPLES =
    R"(Reads repeatedly, until SIGINT or SIGTERM, or --count times. Times are UTC.

Exit code: 0 all objects were read the last time, 1 one was not, 2 misuse.

Examples:
  brantel watch 3 cpu.busy mem.available
  brantel watch 3 --interval 0.2 --count 10 --json net.rx-bytes)";

void addSlot(CLI::App& command, std::uint32_t& slot)
{
    addIntegerOption(command, "SLOT", slot, "Slot of the card", 0, icsc::N_SLOTS - 1)->required()->type_name("");
}

void addJson(CLI::App& command, bool& isJson)
{
    command.add_flag("--json", isJson, "One JSON object a line");
}

void addTimeout(CLI::App& command, std::int32_t& timeout)
{
    addIntegerOption(command, "--timeout", timeout, "Seconds that the card may take for each request", 1,
                     LONGEST_TIMEOUT)
        ->type_name("SECONDS")
        ->capture_default_str();
}

ExitCode createKeys(const std::string& file)
{
    ResultOutput output;
    output.writeLine(createKeyFile(file));
    output.finish();
    return EXIT_FINE;
}

// They would have no effect.
void refuseOptionsOf(const CLI::App& card)
{
    for (const CLI::Option* const pOption : card.get_options({})) {
        if (pOption->count() > 0) {
            throw CLI::ValidationError(pOption->get_name(), "not with a subcommand of 'brantel card'");
        }
    }
}

void addCardServe(CLI::App& card, Invocation& invocation)
{
    const auto options = std::make_shared<CardServeOptions>();
    CLI::Option* const slot =
        addIntegerOption(card, "--slot", options->slot, "Slot to serve", 0, icsc::N_SLOTS - 1)->type_name("N");
    card.add_option("--source", options->source, "Where values come from: host, csv:FILE or wave:FILE")
        ->type_name("SOURCE")
        ->capture_default_str();
    const std::vector<const CLI::Option*> ofRecordings = {
        card.add_option("--time-column", options->timeColumn, "csv: column of the times; 'time', if there is one")
            ->type_name("NAME"),
        addRealOption(card, "--interval", options->interval, "csv: seconds between rows without times",
                      SHORTEST_INTERVAL, LONGEST_INTERVAL)
            ->type_name("SECONDS")
            ->capture_default_str(),
        addRealOption(card, "--speed", options->speed, "csv: 2 replays twice as fast as recorded", LOWEST_SPEED,
                      HIGHEST_SPEED)
            ->type_name("FACTOR")
            ->capture_default_str(),
        card.add_flag("--step", options->isStepped, "csv: the next row when a column is read again, whatever the time"),
    };
    card.add_option("--fault", options->faults, "Faults to start with, separated by commas")->type_name("FAULTS");
    card.callback([&card, options, &invocation, slot, ofRecordings] {
        if (!card.get_subcommands().empty()) {
            refuseOptionsOf(card);
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
    CLI::App* const list = card->add_subcommand("list", "List the slots that are served");
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
    keys->add_option("FILE", *keyFile, "File to create")->required()->type_name("");
    keys->callback([keyFile, &invocation] { invocation.run = [keyFile] { return createKeys(*keyFile); }; });
}

void addGet(CLI::App& app, Invocation& invocation)
{
    const auto options = std::make_shared<CardGetOptions>();
    CLI::App* const get = app.add_subcommand("get", "Read objects of a card");
    get->footer(GET_EXAMPLES);
    addSlot(*get, options->slot);
    const CLI::Option* const oids =
        get->add_option("OID", options->oids, "Objects to read; 'net.': all that begin with it")->type_name("");
    get->add_flag("--all", options->isAll, "All objects of the card that have a name");
    addTimeout(*get, options->timeout);
    addJson(*get, options->isJson);
    get->callback([options, &invocation, oids] {
        if ((oids->count() == 0) && !options->isAll) {
            throw CLI::RequiredError("OID or --all");
        }
        if ((oids->count() > 0) && options->isAll) {
            throw CLI::ValidationError("--all", "not with OIDs");
        }
        invocation.run = [options] { return getObjects(*options); };
    });
}

void addSet(CLI::App& app, Invocation& invocation)
{
    const auto options = std::make_shared<CardSetOptions>();
    CLI::App* const set = app.add_subcommand("set", "Write objects of a card");
    set->footer(SET_EXAMPLES);
    addSlot(*set, options->slot);
    set->add_option("OID=TYPE:VALUE", options->assignments, "Values to write")->required()->type_name("");
    addTimeout(*set, options->timeout);
    addJson(*set, options->isJson);
    set->callback([options, &invocation] { invocation.run = [options] { return setObjects(*options); }; });
}

void addWatch(CLI::App& app, Invocation& invocation)
{
    const auto options = std::make_shared<CardWatchOptions>();
    CLI::App* const watch = app.add_subcommand("watch", "Read objects of a card repeatedly");
    watch->footer(WATCH_EXAMPLES);
    addSlot(*watch, options->slot);
    watch->add_option("OID", options->oids, "Objects to read")->required()->type_name("");
    addRealOption(*watch, "--interval", options->interval, "Seconds from one reading to the next", SHORTEST_INTERVAL,
                  LONGEST_INTERVAL)
        ->type_name("SECONDS")
        ->capture_default_str();
    addIntegerOption(*watch, "--count", options->count, "End after this many readings", 1, MOST_READINGS)
        ->type_name("N");
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

}  // namespace brantel
