#include "common/TextTable.h"

#include <algorithm>

namespace {

std::size_t widthOf(const std::string& text)
{
    return characterCount(text, text.size());
}

}  // namespace

TextTable::TextTable(const std::vector<TextColumn>& columns) : m_columns(columns)
{
    for (const TextColumn& column : columns) {
        m_widths.push_back(widthOf(column.title));
    }
}

void TextTable::addRow(const std::vector<std::string>& texts)
{
    m_rows.emplace_back();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        m_rows.back().push_back(printable(texts[i]));
        m_widths[i] = std::max(m_widths[i], widthOf(texts[i]));
    }
}

void TextTable::write(ResultOutput& output) const
{
    std::vector<std::string> titles;
    for (const TextColumn& column : m_columns) {
        titles.push_back(column.title);
    }
    output.writeLine(lineOf(titles));
    for (const std::vector<std::string>& row : m_rows) {
        output.writeLine(lineOf(row));
    }
}

std::string TextTable::lineOf(const std::vector<std::string>& texts) const
{
    std::string line;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string padding(m_widths[i] - widthOf(texts[i]), ' ');
        line += (i == 0) ? "" : "  ";
        line += (m_columns[i].alignment == Alignment::RIGHT) ? padding + texts[i] : texts[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}
