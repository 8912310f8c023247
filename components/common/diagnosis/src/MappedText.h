#ifndef BRANTEL_MAPPED_TEXT_H
#define BRANTEL_MAPPED_TEXT_H

// A text cut out of another one that keeps the original position of each character. The parser reads a rule without its
// blanks, in lower case, piece by piece; a fault is shown at its position in the rule as written.

#include <cstddef>
#include <string>
#include <vector>

namespace vemorRules {

/// A part of the original text, in bytes from 0. Covers at least one byte, at the end of the text the one after it.
struct TextSpan {
    std::size_t begin;
    std::size_t length;
};

class MappedText {
public:
    /// The whole of an original text.
    explicit MappedText(const std::string& original);

    const std::string& text() const { return m_text; }

    /// The part of `length` bytes from `pos`; `pos` + `length` is at most the size of the text.
    MappedText part(std::size_t pos, std::size_t length) const;
    MappedText partFrom(std::size_t pos) const { return part(pos, m_text.size() - pos); }

    MappedText without(char unwanted) const;
    MappedText inLowerCase() const;

    /// The pieces between the occurrences of `separator`, empty ones included.
    std::vector<MappedText> splitAt(const std::string& separator) const;

    /// The original position of `length` bytes from `pos`; for a length of 0, where they would be.
    TextSpan originOf(std::size_t pos, std::size_t length) const;
    TextSpan origin() const { return originOf(0, m_text.size()); }

private:
    MappedText() = default;

    std::string m_text;
    std::vector<std::size_t> m_origins;  ///< of each byte, and of the position after the last
};

}  // namespace vemorRules

#endif
