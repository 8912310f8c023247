#include "OidValue.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "library/cards/ValueTexts.h"
#include "support/HexBytes.h"

namespace {

template <typename T, typename = void>
constexpr bool hasCode = false;
template <typename T>
constexpr bool hasCode<T, std::void_t<decltype(makeOidValue(1, std::declval<T>()))>> = true;

template <typename T, typename = void>
constexpr bool canBeMacAddress = false;
template <typename T>
constexpr bool canBeMacAddress<T, std::void_t<decltype(makeOidMacAddress(1, std::declval<T>()))>> = true;

enum Unscoped { ENUMERATOR };
enum class Scoped { ENUMERATOR };

static_assert(hasCode<int> && hasCode<const int&> && hasCode<const char (&)[4]>);
static_assert(!hasCode<float> && !hasCode<double> && !hasCode<long double>, "there is no code for a fraction");
static_assert(!hasCode<char> && !hasCode<wchar_t> && !hasCode<char16_t> && !hasCode<char32_t>,
              "a number to the compiler, a text to a reader");
static_assert(!hasCode<Unscoped> && !hasCode<Scoped>, "an enumeration's width has to be said");
static_assert(!hasCode<std::nullptr_t> && !hasCode<void*> && !hasCode<int*>, "a pointer is not a value");
static_assert(!hasCode<boost::any> && !hasCode<std::vector<unsigned char>>);
static_assert(canBeMacAddress<int> && canBeMacAddress<std::uint64_t>);
static_assert(!canBeMacAddress<double> && !canBeMacAddress<bool> && !canBeMacAddress<const char*>);

in_addr address(std::uint32_t number)
{
    in_addr result = {};
    result.s_addr = number;
    return result;
}

std::string textOf(const OidTypeValue& value)
{
    return "oid " + std::to_string(value.oid) + " type " + std::to_string(value.type) + " " + valueText(value.value);
}

TEST(OidValue, HasTheCodeOfItsType)
{
    EXPECT_EQ(textOf(makeOidValue(1, std::uint64_t{18446744073709551615U})),
              "oid 1 type 0 unsigned long long 18446744073709551615");
    EXPECT_EQ(textOf(makeOidValue(2, std::uint32_t{4294967295})), "oid 2 type 1 unsigned int 4294967295");
    EXPECT_EQ(textOf(makeOidValue(3, std::uint16_t{65535})), "oid 3 type 2 unsigned short 65535");
    EXPECT_EQ(textOf(makeOidValue(4, std::uint8_t{255})), "oid 4 type 3 unsigned char 255");
    EXPECT_EQ(textOf(makeOidValue(5, std::int64_t{-9223372036854775807})),
              "oid 5 type 4 long long -9223372036854775807");
    EXPECT_EQ(textOf(makeOidValue(6, std::int32_t{-2147483647})), "oid 6 type 5 int -2147483647");
    EXPECT_EQ(textOf(makeOidValue(7, std::int16_t{-32768})), "oid 7 type 6 short -32768");
    EXPECT_EQ(textOf(makeOidValue(8, std::int8_t{-128})), "oid 8 type 7 signed char -128");
    EXPECT_EQ(textOf(makeOidValue(9, true)), "oid 9 type 8 bool true");
    EXPECT_EQ(textOf(makeOidValue(10, std::string("text"))), "oid 10 type 9 string 'text'");
    EXPECT_EQ(textOf(makeOidValue(11, address(7))), "oid 11 type 10 in_addr 7");
    EXPECT_EQ(textOf(makeOidValue(12, bufferOf("0102"))), "oid 12 type 12 buffer_t 0102");
    EXPECT_EQ(textOf(makeOidMacAddress(13, 0x001B19000001)), "oid 13 type 13 unsigned long long 116383547393");
}

TEST(OidValue, OfALongHasTheCodeOfItsWidth)
{
    constexpr bool IS_WIDE = sizeof(long) == 8;
    EXPECT_EQ(textOf(makeOidValue(1, -1L)), IS_WIDE ? "oid 1 type 4 long long -1" : "oid 1 type 5 int -1");
    EXPECT_EQ(textOf(makeOidValue(1, 1UL)),
              IS_WIDE ? "oid 1 type 0 unsigned long long 1" : "oid 1 type 1 unsigned int 1");
    EXPECT_EQ(textOf(makeOidValue(1, -1LL)), "oid 1 type 4 long long -1");
    EXPECT_EQ(textOf(makeOidValue(1, 1ULL)), "oid 1 type 0 unsigned long long 1");
}

TEST(OidValue, TakesATextInEachOfItsForms)
{
    char array[] = "text";
    char* const pText = array;
    const std::string_view view("text and more", 4);
    for (const OidTypeValue& value : {makeOidValue(1, "text"), makeOidValue(1, array), makeOidValue(1, pText),
                                      makeOidValue(1, static_cast<const char*>(array)), makeOidValue(1, view)}) {
        EXPECT_EQ(textOf(value), "oid 1 type 9 string 'text'");
    }
}

TEST(OidValue, CanBeEncodedWhateverItIs)
{
    const OidTypeValueContainer values{makeOidValue(1, 1ULL),
                                       makeOidValue(1, 1U),
                                       makeOidValue(1, std::uint16_t{1}),
                                       makeOidValue(1, std::uint8_t{1}),
                                       makeOidValue(1, 1LL),
                                       makeOidValue(1, 1),
                                       makeOidValue(1, std::int16_t{1}),
                                       makeOidValue(1, std::int8_t{1}),
                                       makeOidValue(1, false),
                                       makeOidValue(1, "a"),
                                       makeOidValue(1, address(0)),
                                       makeOidValue(1, buffer_t()),
                                       makeOidMacAddress(1, 1)};
    for (const OidTypeValue& value : values) {
        buffer_t tlvs;
        EXPECT_TRUE(convertOidTypeValueContainerToTlvs({value}, tlvs)) << value.type;
    }
}

TEST(OidMacAddress, HasAtMost48Bits)
{
    const auto refusalOf = [](auto number) -> std::string {
        try {
            makeOidMacAddress(1, number);
            return "";
        } catch (const std::out_of_range& error) {
            return error.what();
        }
    };
    EXPECT_EQ(refusalOf(0xFFFFFFFFFFFF), "");
    EXPECT_EQ(refusalOf(0x1000000000000), "a MAC address has 48 bits");
    EXPECT_EQ(refusalOf(std::uint64_t{0xFFFFFFFFFFFFFFFF}), "a MAC address has 48 bits");
    EXPECT_EQ(refusalOf(-1), "a MAC address has 48 bits");
}

}  // namespace
