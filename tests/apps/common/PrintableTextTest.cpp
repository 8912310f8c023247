#include "common/PrintableText.h"

#include <gtest/gtest.h>

namespace brantel {
namespace {

const std::string REPLACEMENT = "\xEF\xBF\xBD";  // U+FFFD

TEST(PrintableText, KeepsWhatCanBeShown)
{
    EXPECT_EQ(printable(""), "");
    EXPECT_EQ(printable("expr=signed(value>5) ~"), "expr=signed(value>5) ~");
    EXPECT_EQ(printable("Stra\u00DFe \u4F4D \U0001F4A1"), "Stra\u00DFe \u4F4D \U0001F4A1");
    EXPECT_EQ(printable("\u00A0\u200D"), "\u00A0\u200D");  // the neighbours of what is replaced
}

TEST(PrintableText, ReplacesEveryControlCharacter)
{
    for (unsigned int byte = 0; byte < 0x20; ++byte) {
        const std::string text = {'a', static_cast<char>(byte), 'b'};
        EXPECT_EQ(printable(text), (byte == '\t') ? "a b" : "a?b") << byte;
    }
    EXPECT_EQ(printable("a\x7F"
                        "b"),
              "a?b");
    for (unsigned int last = 0x80; last <= 0x9F; ++last) {
        const std::string text = {'a', '\xC2', static_cast<char>(last), 'b'};
        EXPECT_EQ(printable(text), "a?b") << last;
    }
}

TEST(PrintableText, ReplacesLineSeparatorsAndBidirectionalMarks)
{
    EXPECT_EQ(printable("\u061C\u200E\u200F"), "???");
    EXPECT_EQ(printable("\u2028\u2029"), "??");
    EXPECT_EQ(printable("\u202A\u202B\u202C\u202D\u202E"), "?????");
    EXPECT_EQ(printable("\u2066\u2067\u2068\u2069"), "????");
    EXPECT_EQ(printable("\u2027\u202F\u2065\u206A"), "\u2027\u202F\u2065\u206A");
}

TEST(PrintableText, ReplacesEachBrokenSequenceByOneCharacter)
{
    struct Case {
        std::string text;
        std::string shown;
    };
    const Case cases[] = {
        {"\x80", REPLACEMENT},  // nothing before it
        {"\x9B"
         "31m",
         REPLACEMENT + "31m"},         // a raw control sequence introducer
        {"a\xC3", "a" + REPLACEMENT},  // cut off
        {"\xE4\xBD", REPLACEMENT},     // cut off later: one
        {"\xE4\xBD"
         "a",
         REPLACEMENT + "a"},                                                          // what follows is kept
        {"\xC0\xAF", REPLACEMENT + REPLACEMENT},                                      // overlong
        {"\xE0\x9F\xBF", REPLACEMENT + REPLACEMENT + REPLACEMENT},                    // overlong
        {"\xED\xA0\x80", REPLACEMENT + REPLACEMENT + REPLACEMENT},                    // a surrogate
        {"\xF4\x90\x80\x80", REPLACEMENT + REPLACEMENT + REPLACEMENT + REPLACEMENT},  // beyond U+10FFFF
        {"\xF8\xFF", REPLACEMENT + REPLACEMENT},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(printable(each.text), each.shown);
        EXPECT_EQ(characterCount(each.text, each.text.size()), characterCount(each.shown, each.shown.size()));
    }
}

TEST(PrintableText, CountsCharacters)
{
    EXPECT_EQ(characterCount("", 0), 0U);
    EXPECT_EQ(characterCount("abc", 2), 2U);
    EXPECT_EQ(characterCount("abc", 100), 3U);
    EXPECT_EQ(characterCount("\u00E4\u4F4D\U0001F4A1", 9), 3U);
    EXPECT_EQ(characterCount("\u00E4\u4F4D", 3), 2U);  // cuts the second one
    EXPECT_EQ(characterCount("\xFF\xFF\xFF"
                             "expr",
                             5),
              5U);
}

TEST(PrintableText, IsQuotedUpToABound)
{
    const std::string eighty(80, 'x');
    EXPECT_EQ(inQuotes(""), "''");
    EXPECT_EQ(inQuotes("a b"), "'a b'");
    EXPECT_EQ(inQuotes(eighty), "'" + eighty + "'");
    EXPECT_EQ(inQuotes(eighty + "y"), "'" + eighty + "...'");
    EXPECT_EQ(shortened(std::string(1000000, 'x')), eighty + "...");
    std::string umlauts;
    for (int i = 0; i < 81; ++i) {
        umlauts += "\u00FC";
    }
    EXPECT_EQ(shortened(umlauts), umlauts.substr(0, 160) + "...");
}

TEST(PrintableJson, EscapesCharactersThatAreNotPrintable)
{
    EXPECT_EQ(printableJson("{\"\xC3\xA4\":\"\xC2\x9B"
                            "31m\x7F\xE2\x80\xAE\xE2\x80\xA8\"}"),
              "{\"\xC3\xA4\":\"\\u009b31m\\u007f\\u202e\\u2028\"}");
}

TEST(Utf8Length, EndsBeforeTheFirstInvalidBytes)
{
    const std::pair<std::string, std::size_t> cases[] = {
        {"", 0}, {"abc", 3}, {"\xC3\xA4", 2}, {"a\xC3", 1}, {"\x9B", 0}, {"\xC3\xA4\xFFz", 2}, {"ab\xE2\x82", 2},
    };
    for (const auto& [text, length] : cases) {
        EXPECT_EQ(utf8Length(text), length) << text;
    }
}

}  // namespace

}  // namespace brantel
