#ifndef APPS_COMMON_PRINTABLE_TEXT_H
#define APPS_COMMON_PRINTABLE_TEXT_H

// Texts of unknown origin (rules, names of objects, files and columns) made fit for a terminal and for one line of a
// log.

#include <cstddef>
#include <string>
#include <string_view>

namespace brantel {

/// `text` in one line, without anything that moves the cursor or changes the direction of writing: a tab becomes a
/// blank; each other control character (C0, DEL, C1), line separator and bidirectional mark becomes "?"; each sequence
/// of bytes that is not UTF-8 becomes U+FFFD, exactly as where JSON is written. The result has as many characters as
/// `text`.
std::string printable(std::string_view text);

/// An equivalent JSON text in one line: each character that printable() would replace is written as \u and its number.
std::string printableJson(std::string_view json);

/// The number of bytes at the start of `text` that are UTF-8.
std::size_t utf8Length(std::string_view text);

/// The number of characters in the first `length` bytes of a text. A sequence of bytes that is not UTF-8 counts as one,
/// and so does a character that `length` cuts off.
std::size_t characterCount(std::string_view text, std::size_t length);

/// The first 80 characters of `text`, and "..." if there are more.
std::string shortened(std::string_view text);

/// A text of unknown origin and length as a message quotes it: shortened, in single quotes.
std::string inQuotes(std::string_view text);

}  // namespace brantel

#endif
