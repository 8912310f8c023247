#include "message/buffer_t.h"

#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/HexBytes.h"

namespace {

buffer_t filledUpTo(std::size_t length)
{
    const std::vector<unsigned char> bytes(length, 0xA5);
    return buffer_t(bytes.data(), bytes.size());
}

template <typename T>
std::string written(T value)
{
    buffer_t buffer;
    buffer << value;
    return hexOf(buffer);
}

template <typename T>
T readFrom(const std::string& hex)
{
    T value{};
    bufferOf(hex) >> value;
    return value;
}

// The number of bytes that are left to be read: single bytes are read until there are none.
std::size_t unread(const buffer_t& buffer)
{
    std::size_t count = 0;
    try {
        for (unsigned char byte = 0;; ++count) {
            buffer >> byte;
        }
    } catch (const std::out_of_range&) {
        return count;
    }
}

template <typename Left, typename Right, typename = void>
struct CanBeWritten : std::false_type {
};
template <typename Left, typename Right>
struct CanBeWritten<Left, Right, std::void_t<decltype(std::declval<Left&>() << std::declval<Right>())>>
    : std::true_type {
};

enum Unscoped : std::int32_t { UNSCOPED };
enum class Scoped { VALUE };

static_assert(!CanBeWritten<buffer_t, Unscoped>::value, "an enumeration's width has to be said");
static_assert(!CanBeWritten<buffer_t, Scoped>::value, "an enumeration's width has to be said");
static_assert(!CanBeWritten<buffer_t, double>::value, "there is no format for a floating-point number");
static_assert(!CanBeWritten<buffer_t, void*>::value, "a pointer is not a truth value");
static_assert(!CanBeWritten<buffer_t, std::nullptr_t>::value, "nor is it a text");
static_assert(sizeof(buffer_t) <= buffer_t::CAPACITY + 2 * sizeof(std::size_t), "the bytes are inline");

TEST(Buffer, WritesEveryIntegerMostSignificantByteFirstInItsOwnWidth)
{
    EXPECT_EQ(written<std::uint8_t>(0x12), "12");
    EXPECT_EQ(written<std::uint16_t>(0x1234), "1234");
    EXPECT_EQ(written<std::uint32_t>(0x12345678), "12345678");
    EXPECT_EQ(written<std::uint64_t>(0x123456789ABCDEF0), "123456789ABCDEF0");
    EXPECT_EQ(written<std::int8_t>(-2), "FE");
    EXPECT_EQ(written<std::int16_t>(-2), "FFFE");
    EXPECT_EQ(written<std::int32_t>(-2), "FFFFFFFE");
    EXPECT_EQ(written<std::int64_t>(-2), "FFFFFFFFFFFFFFFE");
}

template <typename T>
class BufferOfIntegers : public ::testing::Test {
};

using IntegerTypes = ::testing::Types<bool, char, signed char, unsigned char, short, unsigned short, int, unsigned int,
                                      long, unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(BufferOfIntegers, IntegerTypes, );

TYPED_TEST(BufferOfIntegers, TakeTheirSizeAndAreReadAsTheyWereWritten)
{
    using Limits = std::numeric_limits<TypeParam>;
    buffer_t buffer;
    buffer << Limits::min() << Limits::max();
    EXPECT_EQ(buffer.size(), 2 * sizeof(TypeParam));

    TypeParam lowest{};
    TypeParam highest{};
    buffer >> lowest >> highest;
    EXPECT_EQ(std::make_pair(lowest, highest), std::make_pair(Limits::min(), Limits::max()));
}

TYPED_TEST(BufferOfIntegers, FillTheLastByteAndGoNoFurther)
{
    buffer_t buffer = filledUpTo(buffer_t::CAPACITY - sizeof(TypeParam));
    buffer << TypeParam{1};
    EXPECT_EQ(buffer.size(), buffer_t::CAPACITY);

    for (std::size_t room = 0; room < sizeof(TypeParam); ++room) {
        buffer_t full = filledUpTo(buffer_t::CAPACITY - room);
        EXPECT_THROW(full << TypeParam{1}, std::length_error);
        EXPECT_EQ(hexOf(full), hexOf(filledUpTo(buffer_t::CAPACITY - room)));
    }
}

TYPED_TEST(BufferOfIntegers, AreNotReadPastTheEnd)
{
    for (std::size_t length = 0; length < sizeof(TypeParam); ++length) {
        const buffer_t buffer = filledUpTo(length);
        TypeParam value{1};
        EXPECT_THROW(buffer >> value, std::out_of_range);
        EXPECT_EQ(value, TypeParam{1});
        EXPECT_EQ(unread(buffer), length);
    }
}

TEST(Buffer, WritesABoolAsOneByte)
{
    EXPECT_EQ(written(false), "00");
    EXPECT_EQ(written(true), "01");
}

TEST(Buffer, ReadsEveryByteButZeroAsTrue)
{
    EXPECT_FALSE(readFrom<bool>("00"));
    EXPECT_TRUE(readFrom<bool>("01"));
    EXPECT_TRUE(readFrom<bool>("02"));
    EXPECT_TRUE(readFrom<bool>("FF"));
}

TEST(Buffer, WritesAStringAsItsLengthAndCharacters)
{
    EXPECT_EQ(written(std::string()), "00000000");
    EXPECT_EQ(written(std::string("ab\0c", 4)), "0000000461620063");
    EXPECT_EQ(written("literal"), "000000076C69746572616C");
    EXPECT_EQ(readFrom<std::string>("00000004 61620063"), std::string("ab\0c", 4));
    EXPECT_EQ(readFrom<std::string>("00000000"), "");
}

TEST(Buffer, WritesANestedBufferAsItsLengthAndBytes)
{
    EXPECT_EQ(written(buffer_t()), "00000000");
    EXPECT_EQ(written(bufferOf("AABBCC")), "00000003AABBCC");
    EXPECT_EQ(hexOf(readFrom<buffer_t>("00000003 AABBCC DD")), "AABBCC");
    EXPECT_EQ(hexOf(readFrom<buffer_t>("00000000")), "");
}

TEST(Buffer, WritesStringsAndNestedBuffersOfEveryLengthWithoutChangingTheirBytes)
{
    std::string text;
    for (char next = 0; text.size() < 100; text += ++next) {
        buffer_t ofString;
        buffer_t ofBuffer;
        ofString << text << true;
        ofBuffer << buffer_t(text.data(), text.size()) << true;

        const std::string bytes = std::string(3, '\0') + static_cast<char>(text.size()) + text + '\1';
        const std::string expected = hexOf(buffer_t(bytes.data(), bytes.size()));
        EXPECT_EQ(hexOf(ofString), expected);
        EXPECT_EQ(hexOf(ofBuffer), expected);
    }
}

TEST(Buffer, NestsAllBytesOfABufferWhateverWasReadOfThem)
{
    const buffer_t nested = bufferOf("AABBCC");
    unsigned char first = 0;
    nested >> first;
    EXPECT_EQ(written(nested), "00000003AABBCC");
}

TEST(Buffer, ReadsANestedBufferInPlaceOfWhatTheTargetHeldAndHadRead)
{
    buffer_t target = bufferOf("0102030405");
    unsigned char byte = 0;
    target >> byte >> byte;
    bufferOf("00000002 AABB") >> target;
    EXPECT_EQ(hexOf(target), "AABB");
    EXPECT_EQ(unread(target), 2U);
}

TEST(Buffer, CanBeNestedInAndReadIntoItself)
{
    buffer_t buffer = bufferOf("00000002 AABB CC");
    buffer << buffer;
    EXPECT_EQ(hexOf(buffer), withoutBlanks("00000002 AABB CC  00000007 00000002 AABB CC"));
    buffer >> buffer;
    EXPECT_EQ(hexOf(buffer), "AABB");
    EXPECT_EQ(unread(buffer), 2U);
}

TEST(Buffer, ReadsInTheOrderOfTheWrites)
{
    buffer_t buffer;
    buffer << std::uint16_t{7} << std::string("seven") << true << bufferOf("07") << std::int64_t{-7};

    std::uint16_t number = 0;
    std::string text;
    bool flag = false;
    buffer_t nested;
    std::int64_t negative = 0;
    const buffer_t& reader = buffer;
    reader >> number >> text >> flag >> nested >> negative;
    EXPECT_EQ(std::make_tuple(number, text, flag, hexOf(nested), negative),
              std::make_tuple(std::uint16_t{7}, "seven", true, "07", std::int64_t{-7}));
    EXPECT_EQ(unread(buffer), 0U);
}

TEST(Buffer, CountsTheBytesWrittenWhateverWasRead)
{
    const buffer_t buffer = bufferOf("AABBCC");
    EXPECT_EQ(unread(buffer), 3U);
    EXPECT_EQ(buffer.size(), 3U);
    EXPECT_EQ(hexOf(buffer), "AABBCC");
}

TEST(Buffer, ReadsOnBehindWhatWasReadWhenMoreIsWritten)
{
    buffer_t buffer = bufferOf("01");
    std::uint8_t value = 0;
    buffer >> value;
    buffer << std::uint8_t{2};
    buffer >> value;
    EXPECT_EQ(value, 2);
}

TEST(Buffer, IsAsItWasWhenAStringOrANestedBufferDoesNotFit)
{
    for (const std::size_t room : {0U, 3U, 4U, 6U}) {  // the value takes 7 bytes
        const std::string before = hexOf(filledUpTo(buffer_t::CAPACITY - room));
        buffer_t buffer = filledUpTo(buffer_t::CAPACITY - room);
        EXPECT_THROW(buffer << std::string("abc"), std::length_error);
        EXPECT_EQ(hexOf(buffer), before);
        EXPECT_THROW(buffer << bufferOf("AABBCC"), std::length_error);
        EXPECT_EQ(hexOf(buffer), before);
    }
    buffer_t empty;
    EXPECT_THROW(empty << std::string(buffer_t::CAPACITY - 3, 'x'), std::length_error);
    EXPECT_EQ(empty.size(), 0U);
}

TEST(Buffer, TakesAStringAndANestedBufferUpToTheLastByte)
{
    buffer_t buffer;
    buffer << std::string(buffer_t::CAPACITY - 4, 'x');
    EXPECT_EQ(buffer.size(), buffer_t::CAPACITY);

    buffer.clear();
    buffer << filledUpTo(buffer_t::CAPACITY - 4);
    EXPECT_EQ(buffer.size(), buffer_t::CAPACITY);
}

TEST(Buffer, IsAsItWasWhenALengthLies)
{
    for (const char* const hex : {"", "000000", "00000001", "00000004 AABBCC", "FFFFFFFF AABBCC", "FFFFFFFC AABBCC"}) {
        const buffer_t buffer = bufferOf(hex);
        std::string text = "before";
        EXPECT_THROW(buffer >> text, std::out_of_range) << hex;
        buffer_t nested = bufferOf("BEF0");
        EXPECT_THROW(buffer >> nested, std::out_of_range) << hex;
        EXPECT_EQ(text + " " + hexOf(nested), "before BEF0") << hex;
        EXPECT_EQ(unread(buffer), buffer.size()) << hex;
    }
}

TEST(Buffer, TakesACopyOfRawBytesUpToItsCapacity)
{
    std::string bytes(buffer_t::CAPACITY, 'x');
    const buffer_t buffer(bytes.data(), bytes.size());
    bytes.assign(bytes.size(), 'y');
    EXPECT_EQ(hexOf(buffer), hexOf(std::string(buffer_t::CAPACITY, 'x').data(), buffer_t::CAPACITY));

    EXPECT_EQ(buffer_t(nullptr, 0).size(), 0U);
    bytes.push_back('y');
    EXPECT_THROW(buffer_t(bytes.data(), bytes.size()), std::length_error);
    EXPECT_THROW(buffer_t(bytes.data(), std::numeric_limits<std::size_t>::max()), std::length_error);
}

TEST(Buffer, IsCopiedWithItsReadPosition)
{
    const buffer_t original = bufferOf("AABBCC");
    unsigned char byte = 0;
    original >> byte;
    buffer_t copy(original);
    buffer_t assigned = bufferOf("0102030405");
    assigned = original;

    EXPECT_EQ(unread(original), 2U);
    EXPECT_EQ(unread(copy), 2U);
    EXPECT_EQ(unread(assigned), 2U);
    copy << std::uint8_t{0xDD};
    EXPECT_EQ(hexOf(original) + " " + hexOf(copy) + " " + hexOf(assigned), "AABBCC AABBCCDD AABBCC");
}

TEST(Buffer, CanBeAssignedToItself)
{
    buffer_t buffer = bufferOf("AABB");
    const buffer_t& same = buffer;
    buffer = same;
    EXPECT_EQ(hexOf(buffer), "AABB");
}

TEST(Buffer, IsNeitherWrittenNorReadAfterClear)
{
    buffer_t buffer = bufferOf("AABBCC");
    unread(buffer);
    buffer.clear();
    EXPECT_EQ(buffer.size(), 0U);
    buffer << std::uint8_t{0xDD};
    EXPECT_EQ(unread(buffer), 1U);
}

TEST(Buffer, StartsEmpty)
{
    EXPECT_EQ(buffer_t().size(), 0U);
    EXPECT_EQ(unread(buffer_t()), 0U);
}

}  // namespace
