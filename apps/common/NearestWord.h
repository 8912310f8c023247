#ifndef APPS_COMMON_NEAREST_WORD_H
#define APPS_COMMON_NEAREST_WORD_H

// Suggestions for a mistyped word: a command, an option, one of a few values, the name of an object.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brantel {

using Words = std::vector<std::string>;

/// The first of the words in `known` that differ least from `word`, if so little that it may be meant: by one mistake
/// in words of up to three letters, and by one more for each three letters more. A mistake is a letter that is missing,
/// added or wrong, or two adjacent letters in the wrong order. Letter case does not matter.
std::optional<std::string> nearestWord(std::string_view word, const Words& known);

/// "; did you mean 'monitor'?", with `prefix` before the word; nothing if no word is near.
std::string suggestion(std::string_view word, const Words& known, const std::string& prefix = "");

/// A suggestion; "; expected csv or json" if no word is near.
std::string suggestionOrChoices(std::string_view word, const Words& known);

/// "csv, json or xml".
std::string alternatives(const Words& words);

}  // namespace brantel

#endif
