#ifndef APPS_COMMON_TEXT_TABLE_H
#define APPS_COMMON_TEXT_TABLE_H

// Rows of texts for a terminal, in columns as wide as what is in them.

#include <optional>
#include <string>
#include <vector>

#include "common/ResultOutput.h"

enum class Alignment { LEFT, RIGHT };

struct TextColumn {
    std::string title;
    Alignment alignment;
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

    std::string lineOf(const std::vector<std::string>& texts) const;

    std::vector<TextColumn> m_columns;
    std::vector<std::size_t> m_widths;
    std::vector<Row> m_rows;
};

#endif
