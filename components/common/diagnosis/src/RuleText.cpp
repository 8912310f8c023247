#include "RuleText.h"

namespace vemorRules {

bool isEmptyOrComment(const std::string& rule)
{
    return rule.empty() || (rule[0] == '/');
}

std::vector<MappedText> partsOf(const std::string& rule)
{
    return MappedText(rule).without(' ').inLowerCase().splitAt(";");
}

PartMarks marksOf(const MappedText& part)
{
    const std::string& text = part.text();
    PartMarks marks{};
    marks.equalSign = text.find('=');
    // A start after the end of the text, NOT_FOUND among them, finds nothing.
    const std::size_t posUnsigned = text.find("unsigned(", marks.equalSign);
    marks.isUnsigned = (posUnsigned != NOT_FOUND);
    marks.signednessWord = marks.isUnsigned ? posUnsigned : text.find("signed(");
    marks.openingBracket = text.find('(', marks.signednessWord);
    marks.closingBracket = text.rfind(')');
    return marks;
}

MappedText expressionOf(const MappedText& part, const PartMarks& marks)
{
    const std::size_t begin = marks.openingBracket + 1;
    return part.part(begin, marks.closingBracket - begin);
}

}  // namespace vemorRules
