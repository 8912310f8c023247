#include "common/Numbers.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace brantel {
namespace {

TEST(Numbers, AreDecimalOrHexadecimal)
{
    EXPECT_EQ(parseInteger<std::uint32_t>("0"), 0U);
    EXPECT_EQ(parseInteger<std::uint32_t>("4294967295"), 4294967295U);
    EXPECT_EQ(parseInteger<std::uint32_t>("0xFFffFFff"), 4294967295U);
    EXPECT_EQ(parseInteger<std::uint32_t>("0X1f"), 31U);
    EXPECT_EQ(parseInteger<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(parseInteger<int>("-5"), -5);
}

TEST(Numbers, AreNeverOctal)
{
    EXPECT_EQ(parseInteger<int>("010"), 10);
    EXPECT_EQ(parseInteger<int>("08"), 8);
    EXPECT_EQ(parseInteger<int>("-010"), -10);
    EXPECT_EQ(parseInteger<int>("0x010"), 16);
}

TEST(Numbers, AreTheWholeText)
{
    for (const char* const text : {"", " ", " 5", "5 ", "+5", "5x", "x5", "0x", "0x-5", "-0x5", "0x 5", "--5", "-",
                                   "5.0", "1e3", "1_000", "\xD9\xA5", "5\n"}) {
        EXPECT_EQ(parseInteger<int>(text), std::nullopt) << '\'' << text << '\'';
    }
    EXPECT_EQ(parseInteger<int>(std::string_view("5\0", 2)), std::nullopt);
}

TEST(Numbers, AreInRange)
{
    EXPECT_EQ(parseInteger<std::uint32_t>("4294967296"), std::nullopt);
    EXPECT_EQ(parseInteger<std::uint32_t>("0x100000000"), std::nullopt);
    EXPECT_EQ(parseInteger<std::uint32_t>("-1"), std::nullopt);
    EXPECT_EQ(parseInteger<std::uint64_t>("18446744073709551616"), std::nullopt);
    EXPECT_EQ(parseInteger<int>("0", 1, 9), std::nullopt);
    EXPECT_EQ(parseInteger<int>("1", 1, 9), 1);
    EXPECT_EQ(parseInteger<int>("9", 1, 9), 9);
    EXPECT_EQ(parseInteger<int>("10", 1, 9), std::nullopt);
    EXPECT_EQ(parseInteger<int>("99999999999999999999", 1, 9), std::nullopt);
}

TEST(Numbers, MayHaveAFractionWhereTheyAreReal)
{
    EXPECT_EQ(parseReal("0.25", 0, 1), 0.25);
    EXPECT_EQ(parseReal("1e-3", 0, 1), 0.001);
    EXPECT_EQ(parseReal("-2", -3, 3), -2);
    EXPECT_EQ(parseReal("0", 0, 1), 0);
    EXPECT_EQ(parseReal("1", 0, 1), 1);
}

TEST(Numbers, AreFiniteAndInRangeWhereTheyAreReal)
{
    for (const char* const text : {"", "nan", "-nan", "inf", "-inf", "infinity", "1e400", "1.0001", "-0.0001", "+0.5",
                                   " 0.5", "0.5 ", "0,5", "0.5s", "0x1", "."}) {
        EXPECT_EQ(parseReal(text, 0, 1), std::nullopt) << '\'' << text << '\'';
    }
}

TEST(Numbers, AreListedWithRanges)
{
    using List = std::set<std::uint32_t>;
    EXPECT_EQ(parseNumberList("3", 0, 9), List{3});
    EXPECT_EQ(parseNumberList("7,0-3,2-4", 0, 9), (List{0, 1, 2, 3, 4, 7}));
    EXPECT_EQ(parseNumberList("5-5,0x9", 0, 9), (List{5, 9}));
    EXPECT_EQ(parseNumberList("4294967294-4294967295", 0, 4294967295), (List{4294967294, 4294967295}));
    for (const char* const text :
         {"", ",", "1,", ",1", "1,,2", "10", "9-10", "3-1", "1-", "-1", "1-2-3", "a", " 1", "0;1"}) {
        EXPECT_EQ(parseNumberList(text, 0, 9), std::nullopt) << '\'' << text << '\'';
    }
}

TEST(Numbers, AreNotListedWithoutEnd)
{
    constexpr std::uint32_t HIGHEST = 4294967295;
    EXPECT_EQ(parseNumberList("1-1000", 0, HIGHEST)->size(), MAX_LISTED_NUMBERS);
    EXPECT_EQ(parseNumberList("1-1000,500", 0, HIGHEST)->size(), MAX_LISTED_NUMBERS);
    for (const char* const text : {"1-1001", "0-4294967295", "1-1000,2000", "1-600,701-1101"}) {
        EXPECT_EQ(parseNumberList(text, 0, HIGHEST), std::nullopt) << text;
    }
}

}  // namespace

}  // namespace brantel
