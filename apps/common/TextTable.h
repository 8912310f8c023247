#ifndef APPS_COMMON_TEXT_TABLE_H
#define APPS_COMMON_TEXT_TABLE_H

// Rows of texts for a terminal, in columns as wide as their content.

#include <optional>
#include <string>
#include <vector>

#include "common/ResultOutput.h"

namespace brantel {

enum class Alignment { LEFT, RIGHT };

struct TextColumn {
    std::string title;
    Alignment alignment;
};

/// The layout of such rows, for tables that are too long to be kept: every row is measured first and formatted later.
class TextLayout {
public:
    explicit TextLayout(const std::vector<TextColumn>& columns);

    /// Makes the columns wide enough for a row.
    void measure(const std::vector<std::string>& texts);

    std::string titleLine() const;

    /// One text for each column; control characters are shown as by printable().
    std::string lineOf(const std::vector<std::string>& texts) const;

private:
    std::vector<TextColumn> m_columns;
    std::vector<std::size_t> m_widths;
};

class TextTable {
public:
    explicit TextTable(const std::vector<TextColumn>& columns);

    /// One text for each column; control characters are shown as by printable().
    void addRow(const std::vector<std::string>& texts, std::optional<Colour> colour = std::nullopt);

    /// The titles and the rows, without colours.
    std::vector<std::string> lines() const;

    /// Writes them.
    void write(ResultOutput& output) const;

private:
    struct Row {
        std::vector<std::string> texts;
        std::optional<Colour> colour;
    };

    TextLayout m_layout;
    std::vector<Row> m_rows;
};

}  // namespace brantel

#endif
