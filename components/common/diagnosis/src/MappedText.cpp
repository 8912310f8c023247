#include "MappedText.h"

#include <locale>
#include <numeric>

#include <boost/algorithm/string/case_conv.hpp>

namespace vemorRules {

MappedText::MappedText(const std::string& original) : m_text(original), m_origins(original.size() + 1)
{
    std::iota(m_origins.begin(), m_origins.end(), std::size_t{0});
}

MappedText MappedText::part(std::size_t pos, std::size_t length) const
{
    MappedText result;
    result.m_text = m_text.substr(pos, length);
    const auto first = m_origins.begin() + static_cast<std::ptrdiff_t>(pos);
    result.m_origins.assign(first, first + static_cast<std::ptrdiff_t>(length) + 1);
    return result;
}

MappedText MappedText::without(char unwanted) const
{
    MappedText result;
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        if (m_text[i] != unwanted) {
            result.m_text.push_back(m_text[i]);
            result.m_origins.push_back(m_origins[i]);
        }
    }
    result.m_origins.push_back(m_origins.back());
    return result;
}

MappedText MappedText::inLowerCase() const
{
    MappedText result = *this;
    boost::to_lower(result.m_text, std::locale::classic());  // as the parser does it
    return result;
}

std::vector<MappedText> MappedText::splitAt(const std::string& separator) const
{
    std::vector<MappedText> pieces;
    std::size_t begin = 0;
    for (std::size_t end = m_text.find(separator); end != std::string::npos; end = m_text.find(separator, begin)) {
        pieces.push_back(part(begin, end - begin));
        begin = end + separator.size();
    }
    pieces.push_back(partFrom(begin));
    return pieces;
}

TextSpan MappedText::originOf(std::size_t pos, std::size_t length) const
{
    const std::size_t begin = m_origins[pos];
    const std::size_t end = (length == 0) ? begin + 1 : m_origins[pos + length - 1] + 1;
    return {begin, end - begin};
}

}  // namespace vemorRules
