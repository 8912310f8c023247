// What a row holds is what is written between its braces, or it does not compile.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "sql/Database.h"
#include "support/ErrorOf.h"
#include "support/SqlValues.h"

namespace sql {

namespace {

template <typename... Integers>
constexpr bool areNumbers = (std::is_convertible_v<Integers, Value> && ...);

template <typename... Others>
constexpr bool areNoValues = !(std::is_constructible_v<Value, Others> || ...);

enum Unscoped { ENUMERATOR };
enum class Scoped { ENUMERATOR };

static_assert(areNumbers<bool, signed char, unsigned char, short, unsigned short, int, unsigned int, long,
                         unsigned long, long long, unsigned long long>);
static_assert(areNumbers<std::int8_t, std::uint8_t, std::int64_t, std::uint64_t, std::size_t, std::ptrdiff_t>);
static_assert(areNoValues<float, double, long double>);
static_assert(areNoValues<char, wchar_t, char16_t, char32_t>, "a number to the compiler, a text to a reader");
static_assert(areNoValues<std::nullptr_t, int*, const void*, Unscoped, Scoped>);

// Only a list in braces makes a row with values.
static_assert(!std::is_constructible_v<Row, std::size_t> && !std::is_constructible_v<Row, std::size_t, Value>);
static_assert(!std::is_constructible_v<Row, const Value*, const Value*>);

template <typename Values, typename First, typename Second>
constexpr auto isWrittenAs(int) -> decltype(Values{std::declval<First>(), std::declval<Second>()}, true)
{
    return true;
}

template <typename Values, typename First, typename Second>
constexpr bool isWrittenAs(...)
{
    return false;
}

static_assert(isWrittenAs<Row, std::uint64_t, bool>(0) && isWrittenAs<Row, const char*, const char*>(0));
static_assert(!isWrittenAs<Row, std::uint64_t, double>(0) && !isWrittenAs<Row, Unscoped, int>(0));
static_assert(isWrittenAs<ColumnValue, const char*, std::uint64_t>(0) &&
              isWrittenAs<ColumnValue, const char*, bool>(0));
static_assert(!isWrittenAs<ColumnValue, const char*, double>(0) && !isWrittenAs<ColumnValue, const char*, Scoped>(0));
static_assert(!isWrittenAs<ColumnValues, std::uint64_t, const char*>(0));

constexpr std::int64_t LARGEST = std::numeric_limits<std::int64_t>::max();

std::vector<std::int64_t> numbersOf(const Row& row)
{
    std::vector<std::int64_t> numbers;
    for (const Value& value : row) {
        numbers.push_back(std::get<std::int64_t>(value));
    }
    return numbers;
}

TEST(Row, HoldsTheNumbersThatAreWrittenWhateverTheirTypes)
{
    const std::uint64_t component = 2;
    const bool isEnabled = true;
    const std::vector<int> two = {7, 8};
    EXPECT_EQ(numbersOf({component, isEnabled}), (std::vector<std::int64_t>{2, 1}));
    EXPECT_EQ(numbersOf({two.size(), 1}), (std::vector<std::int64_t>{2, 1}));
    EXPECT_EQ(numbersOf({component}), std::vector<std::int64_t>{2});
    EXPECT_EQ(numbersOf({std::uint8_t{255}, std::int8_t{-128}, std::uint16_t{65535}, std::int16_t{-32768}}),
              (std::vector<std::int64_t>{255, -128, 65535, -32768}));
    EXPECT_EQ(numbersOf({4294967295U, -2147483647 - 1, false, 0UL, -1L, 3ULL, -4LL}),
              (std::vector<std::int64_t>{4294967295, -2147483648LL, 0, 0, -1, 3, -4}));
}

TEST(Row, HoldsTexts)
{
    char array[] = "array";
    const std::string string = "string";
    const Row row{"literal", static_cast<const char*>(array), array, string, std::string_view(string).substr(0, 3)};
    std::vector<std::string> texts;
    for (const Value& value : row) {
        texts.push_back(std::get<std::string>(value));
    }
    EXPECT_EQ(texts, (std::vector<std::string>{"literal", "array", "array", "string", "str"}));
}

TEST(Row, OfTwoTextsIsNotTakenForARangeOfOne)
{
    EXPECT_EQ(Row({"a", "b"}).size(), 2U);
    EXPECT_EQ(Row({"a", "b"}).back(), Value("b"));
}

TEST(Row, HoldsNulls)
{
    EXPECT_EQ(Row({Value(), std::monostate(), {}}), (Row{Value(), Value(), Value()}));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(Row{Value()}.front()));
    EXPECT_TRUE(Row().empty());
}

TEST(Row, GrowsAndChanges)
{
    Row row;
    row.resize(2);
    row[1] = std::uint64_t{5};
    row.front() = "first";
    row.push_back(false);
    row.emplace_back("last");
    EXPECT_EQ(row, (Row{"first", 5, 0, "last"}));
    EXPECT_NE(row, (Row{"first", 5, 0}));
}

TEST(Value, TakesUnsignedNumbersUpToTheLargestOfATable)
{
    EXPECT_EQ(std::get<std::int64_t>(Value(static_cast<std::uint64_t>(LARGEST))), LARGEST);
    EXPECT_EQ(std::get<std::int64_t>(Value(std::numeric_limits<std::int64_t>::min())), -LARGEST - 1);
}

TEST(Value, RefusesLargerNumbers)
{
    const auto textFor = [](const std::string& number) {
        return "the number " + number + " is too large for a table; the largest is 9223372036854775807";
    };
    EXPECT_EQ(errorOf([] { Value(std::uint64_t{9223372036854775808U}); }), textFor("9223372036854775808"));
    EXPECT_EQ(errorOf([] {
                  Row({1, std::numeric_limits<unsigned long long>::max()});
              }),
              textFor("18446744073709551615"));
    EXPECT_EQ(errorOf([] {
                  ColumnValues({{"Slot", std::uint64_t{9223372036854775808U}}});
              }),
              textFor("9223372036854775808"));
    try {
        static_cast<void>(Value(std::numeric_limits<std::uint64_t>::max()));
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.problem(), Problem::CONSTRAINT);
    }
}

}  // namespace

}  // namespace sql
