#include "commands/Usage.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "common/NearestWord.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

using Commands = std::vector<const CLI::App*>;

bool isForSubcommands(const CLI::App& command, const CLI::Option& option)
{
    return option.nonpositional() && (&option != command.get_help_ptr()) && (&option != command.get_version_ptr());
}

std::string fullName(const CLI::App& command)
{
    const CLI::App* const pParent = command.get_parent();
    return ((pParent == nullptr) ? "" : fullName(*pParent) + " ") + command.get_name();
}

bool isLongOption(const std::string& text)
{
    return text.rfind("--", 0) == 0;
}

bool isOption(const std::string& text)
{
    return (text.size() > 1) && (text.front() == '-');
}

bool isFlag(const CLI::Option& option)
{
    return option.get_items_expected_max() == 0;
}

void refuseMissingValue(CLI::Option& option)
{
    // An empty rule is a rule.
    if (option.get_name(true) != "RULE") {
        option.check([](const std::string& text) -> std::string { return text.empty() ? "the value is empty" : ""; });
    }
    if (!option.get_positional()) {
        option.check([](const std::string& text) -> std::string {
            return isLongOption(text) ? "the value is missing: " + inQuotes(text) + " is an option" : "";
        });
    }
}

/// The recognised commands, from the program itself on.
Commands recognisedCommands(const CLI::App& app)
{
    Commands commands = {&app};
    while (!commands.back()->get_subcommands().empty()) {
        commands.push_back(commands.back()->get_subcommands().front());
    }
    return commands;
}

/// The arguments that no recognised command took.
Words unexpectedArguments(const CLI::App& app)
{
    Words words = app.remaining(true);
    words.erase(std::remove(words.begin(), words.end(), "--"), words.end());
    return words;
}

Words subcommandNames(const CLI::App& command)
{
    Words names;
    for (const CLI::App* const pSubcommand : command.get_subcommands({})) {
        names.push_back(pSubcommand->get_name());
    }
    return names;
}

/// Those of the recognised commands that are written before `word`.
Commands commandsBefore(const std::string& word, const Commands& recognised, const Words& arguments)
{
    Commands before = {recognised.front()};
    for (const std::string& argument : arguments) {
        if (before.size() == recognised.size()) {
            break;
        }
        const CLI::App* const pNext = recognised[before.size()];
        if (argument == pNext->get_name()) {
            before.push_back(pNext);
        } else if (argument == word) {
            break;
        }
    }
    return before;
}

/// "'brantel rule'"
std::string quotedName(const Commands& commands)
{
    std::string name;
    for (const CLI::App* const pCommand : commands) {
        name += (name.empty() ? "'" : " ") + pCommand->get_name();
    }
    return name + "'";
}

std::string unknownCommand(const std::string& word, const Commands& before)
{
    return ((before.size() == 1) ? "unknown command " + inQuotes(word)
                                 : "unknown subcommand " + inQuotes(word) + " of " + quotedName(before)) +
           suggestionOrChoices(word, subcommandNames(*before.back()));
}

std::string missingCommand(const Commands& recognised)
{
    return ((recognised.size() == 1) ? "a command" : "a subcommand of " + quotedName(recognised)) +
           " is missing; expected " + alternatives(subcommandNames(*recognised.back()));
}

std::string quotedList(const Words& words)
{
    constexpr std::size_t MOST = 10;
    std::string list;
    for (std::size_t i = 0; (i < words.size()) && (i < MOST); ++i) {
        list += " " + inQuotes(words[i]);
    }
    return list + ((words.size() > MOST) ? " ..." : "");
}

/// The long names of the options of the recognised commands.
Words optionNames(const CLI::App& app)
{
    Words names;
    for (const CLI::App* const pCommand : recognisedCommands(app)) {
        for (const CLI::Option* const pOption : pCommand->get_options({})) {
            names.insert(names.end(), pOption->get_lnames().begin(), pOption->get_lnames().end());
        }
    }
    return names;
}

std::string unknownOptions(const CLI::App& app, const Words& options)
{
    std::string hint;
    for (std::size_t i = 0; (i < options.size()) && hint.empty(); ++i) {
        const std::string name = options[i].substr(0, options[i].find('='));
        hint = suggestion(name.substr(std::min(name.find_first_not_of('-'), name.size())), optionNames(app), "--");
    }
    return ((options.size() == 1) ? "unknown option" : "unknown options") + quotedList(options) + hint;
}

/// Why arguments that nothing took are wrong. An unknown command also leaves its own options and arguments.
std::string unexpectedWords(const CLI::App& app, const Words& arguments, const Words& unexpected)
{
    const std::string& first = unexpected.front();
    const Commands before = commandsBefore(first, recognisedCommands(app), arguments);
    if (!isOption(first) && !subcommandNames(*before.back()).empty()) {
        return unknownCommand(first, before);
    }
    Words options;
    std::copy_if(unexpected.begin(), unexpected.end(), std::back_inserter(options), isOption);
    if (!options.empty()) {
        return unknownOptions(app, options);
    }
    return ((unexpected.size() == 1) ? "unexpected argument:" : "unexpected arguments:") + quotedList(unexpected);
}

/// What to print for a wrong number of values, for which the parser's texts are not plain English.
std::optional<std::string> wrongCount(const CLI::Option& option, const CLI::ParseError& error)
{
    const std::string what = error.what();
    const std::string name = option.get_name();
    const std::size_t nGiven = option.results().size();
    if (what == CLI::ArgumentMismatch::TypedAtLeast(name, 1, option.get_type_name()).what()) {
        return name + ": the value is missing";
    }
    if (what == CLI::ArgumentMismatch::AtMost(name, option.get_items_expected_max(), nGiven).what()) {
        return name + " is given " + std::to_string(nGiven) + " times";
    }
    for (const std::string& longName : option.get_lnames()) {
        if (what == CLI::ArgumentMismatch::FlagOverride(longName).what()) {
            return name + " takes no value";
        }
    }
    return std::nullopt;
}

bool isOfKind(const CLI::ParseError& error, CLI::ExitCodes kind)
{
    return error.get_exit_code() == static_cast<int>(kind);
}

bool isAboutMissingSubcommand(const CLI::ParseError& error)
{
    return error.what() == std::string(CLI::RequiredError::Subcommand(1).what());
}

}  // namespace

std::string HelpFormatter::make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const
{
    std::string help;
    for (const CLI::App* pParent = app->get_parent(); pParent != nullptr; pParent = pParent->get_parent()) {
        const auto options = pParent->get_options(
            [pParent](const CLI::Option* pOption) { return isForSubcommands(*pParent, *pOption); });
        // The options of a command that also does something without a subcommand are for that alone.
        if (!options.empty() && (pParent->get_require_subcommand_min() > 0)) {
            help += make_group("Options of " + fullName(*pParent), false, options);
        }
    }
    return help + Formatter::make_subcommands(app, mode);
}

void refuseMissingValues(CLI::App& app)
{
    for (CLI::Option* const pOption : app.get_options({})) {
        isFlag(*pOption) ? static_cast<void>(pOption->disable_flag_override()) : refuseMissingValue(*pOption);
    }
    for (CLI::App* const pSubcommand : app.get_subcommands({})) {
        refuseMissingValues(*pSubcommand);
    }
}

void refuseEmptyAssignments(const Words& arguments)
{
    for (const std::string& argument : arguments) {
        if (argument == "--") {
            return;
        }
        if (isLongOption(argument) && (argument.find('=') == argument.size() - 1)) {
            throw CLI::ValidationError(argument.substr(0, argument.size() - 1), "the value is empty");
        }
    }
}

std::string explainMisuse(const CLI::App& app, const Words& arguments, const CLI::ParseError& error)
{
    const Words unexpected = unexpectedArguments(app);
    if (!unexpected.empty() &&
        (isOfKind(error, CLI::ExitCodes::ExtrasError) || isOfKind(error, CLI::ExitCodes::RequiredError))) {
        return unexpectedWords(app, arguments, unexpected);
    }
    if (isAboutMissingSubcommand(error)) {
        return missingCommand(recognisedCommands(app));
    }
    for (const CLI::App* const pCommand : recognisedCommands(app)) {
        for (const CLI::Option* const pOption : pCommand->get_options({})) {
            if (const std::optional<std::string> reason = wrongCount(*pOption, error)) {
                return *reason;
            }
        }
    }
    return error.what();
}

}  // namespace brantel
