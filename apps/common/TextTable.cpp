#include "common/TextTable.h"

#include <algorithm>

#include "common/PrintableText.h"

namespace brantel {
namespace {

std::size_t widthOf(const std::string& text)
{
    return characterCount(text, text.size());
}

}  // namespace

TextLayout::TextLayout(const std::vector<TextColumn>& columns) : m_columns(columns)
{
    for (const TextColumn& column : columns) {
        m_widths.push_back(widthOf(column.title));
    }
}

void TextLayout::measure(const std::vector<std::string>& texts)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        m_widths[i] = std::max(m_widths[i], widthOf(texts[i]));
    }
}

std::string TextLayout::titleLine() const
{
    std::vector<std::string> titles;
    for (const TextColumn& column : m_columns) {
        titles.push_back(column.title);
    }
    return lineOf(titles);
}

std::string TextLayout::lineOf(const std::vector<std::string>& texts) const
{
    std::string line;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string text = printable(texts[i]);
        const std::string padding(m_widths[i] - widthOf(texts[i]), ' ');
        line += (i == 0) ? "" : "  ";
        line += (m_columns[i].alignment == Alignment::RIGHT) ? padding + text : text + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

TextTable::TextTable(const std::vector<TextColumn>& columns) : m_layout(columns) {}

void TextTable::addRow(const std::vector<std::string>& texts, std::optional<Colour> colour)
{
    m_layout.measure(texts);
    m_rows.push_back({texts, colour});
}

std::vector<std::string> TextTable::lines() const
{
    std::vector<std::string> lines = {m_layout.titleLine()};
    for (const Row& row : m_rows) {
        lines.push_back(m_layout.lineOf(row.texts));
    }
    return lines;
}

void TextTable::write(ResultOutput& output) const
{
    const std::vector<std::string> texts = lines();
    output.writeLine(texts.front());
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const std::optional<Colour>& colour = m_rows[i].colour;
        output.writeLine(colour ? output.coloured(*colour, texts[i + 1]) : texts[i + 1]);
    }
}

}  // namespace brantel
