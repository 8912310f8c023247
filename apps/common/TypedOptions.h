#ifndef APPS_COMMON_TYPED_OPTIONS_H
#define APPS_COMMON_TYPED_OPTIONS_H

// Options and arguments of the command line that are numbers, or one of a few words:
//
//     addIntegerOption(command, "--slot", options.slot, "Slot to serve", 0, 9)->required();
//     addChoiceOption(command, "--format", options.format, "Format of the file",
//                     Choices<Format>{{"csv", Format::CSV}, {"json", Format::JSON}});
//
// With "--slot 007" the slot is 7; with "--slot 9x" or "--format jsn" the user reads
//
//     --slot: '9x' is not a number from 0 to 9 (decimal or 0x)
//     --format: unknown value 'jsn'; did you mean 'json'?

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "common/NearestWord.h"
#include "common/Numbers.h"
#include "common/PrintableText.h"

namespace brantel {

namespace number_options {

template <typename Target>
struct NumberOf {
    using Type = Target;
};

template <typename Number>
struct NumberOf<std::optional<Number>> {
    using Type = Number;
};

template <typename Number>
std::string numberText(const Number& number)
{
    std::ostringstream text;
    text << +number;
    return text.str();
}

template <typename Number>
std::string numberText(const std::optional<Number>& number)
{
    return number ? numberText(*number) : "";
}

template <typename Target, typename Parse>
CLI::Option* addNumberOption(CLI::App& app, const std::string& name, Target& target, const std::string& description,
                             const Parse& parse, const std::string& expected)
{
    const auto assign = [&target, parse](const CLI::results_t& texts) {
        target = *parse(texts.front());
        return true;
    };
    const auto refuse = [parse, expected](const std::string& text) {
        return parse(text) ? std::string() : inQuotes(text) + " is not a number from " + expected;
    };
    return app.add_option(name, assign, description)->check(refuse)->default_function([&target] {
        return numberText(target);
    });
}

}  // namespace number_options

/// An option or argument that is a whole number from `lowest` to `highest`, decimal or hexadecimal after 0x. `number`
/// is an integer or an optional one.
template <typename Target, typename Integer = typename number_options::NumberOf<Target>::Type>
CLI::Option* addIntegerOption(CLI::App& app, const std::string& name, Target& number, const std::string& description,
                              typename number_options::NumberOf<Target>::Type lowest,
                              typename number_options::NumberOf<Target>::Type highest)
{
    const auto parse = [lowest, highest](const std::string& text) {
        return parseInteger<Integer>(text, lowest, highest);
    };
    const std::string range = number_options::numberText(lowest) + " to " + number_options::numberText(highest);
    return number_options::addNumberOption(app, name, number, description, parse, range + " (decimal or 0x)");
}

/// An option or argument that is a decimal number from `lowest` to `highest`, with or without a fraction.
inline CLI::Option* addRealOption(CLI::App& app, const std::string& name, double& number,
                                  const std::string& description, double lowest, double highest)
{
    const auto parse = [lowest, highest](const std::string& text) { return parseReal(text, lowest, highest); };
    const std::string range = number_options::numberText(lowest) + " to " + number_options::numberText(highest);
    return number_options::addNumberOption(app, name, number, description, parse, range);
}

/// An option that is a list of whole numbers and ranges from `lowest` to `highest`: "0-3,7".
inline CLI::Option* addNumberListOption(CLI::App& app, const std::string& name, std::set<std::uint32_t>& numbers,
                                        const std::string& description, std::uint32_t lowest, std::uint32_t highest)
{
    const auto parse = [lowest, highest](const std::string& text) { return parseNumberList(text, lowest, highest); };
    const auto assign = [&numbers, parse](const CLI::results_t& texts) {
        numbers = *parse(texts.front());
        return true;
    };
    const bool isLimited = highest - lowest >= MAX_LISTED_NUMBERS;
    const std::string expected = "numbers and ranges from " + std::to_string(lowest) + " to " +
                                 std::to_string(highest) + ", such as 0-3,7" +
                                 (isLimited ? ", at most " + std::to_string(MAX_LISTED_NUMBERS) + " numbers" : "");
    const auto refuse = [parse, expected](const std::string& text) {
        return parse(text) ? std::string() : "invalid list " + inQuotes(text) + ": expected " + expected;
    };
    return app.add_option(name, assign, description)->check(refuse)->type_name("LIST");
}

/// Words and their values.
template <typename Value>
using Choices = std::vector<std::pair<std::string, Value>>;

/// An option that is one of the words of `choices`; `value`, a Value or an optional one, gets the value of the word.
template <typename Target, typename Value>
CLI::Option* addChoiceOption(CLI::App& app, const std::string& name, Target& value, const std::string& description,
                             const Choices<Value>& choices)
{
    const auto valueOf = [choices](const std::string& word) {
        const auto found =
            std::find_if(choices.begin(), choices.end(), [&](const auto& choice) { return choice.first == word; });
        return (found == choices.end()) ? std::nullopt : std::optional<Value>(found->second);
    };
    const auto assign = [&value, valueOf](const CLI::results_t& words) {
        value = *valueOf(words.front());
        return true;
    };
    Words words;
    for (const auto& choice : choices) {
        words.push_back(choice.first);
    }
    const auto refuse = [words, valueOf](const std::string& word) {
        return valueOf(word) ? "" : "unknown value " + inQuotes(word) + suggestionOrChoices(word, words);
    };
    return app.add_option(name, assign, description)->check(refuse);
}

}  // namespace brantel

#endif
