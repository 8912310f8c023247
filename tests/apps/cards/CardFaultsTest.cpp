// The faults of a card: their texts, and what they do to an answer.

#include <string>

#include <gtest/gtest.h>

#include "cards/Faults.h"
#include "support/HexBytes.h"

namespace brantel {
namespace {

TEST(Faults, AreAListOfTexts)
{
    const Faults faults = parseFaults(
                              "delay=1.5,silence,no-answer,result=0x02000000,duplicate-oid,missing-oid,"
                              "foreign-oid,wrong-count,wrong-type=14,wrong-length=3,truncated")
                              .value();
    EXPECT_EQ(faults.delay, 1.5);
    EXPECT_EQ(faults.result, 0x02000000);
    EXPECT_EQ(faults.wrongType, 14);
    EXPECT_EQ(faults.wrongLength, 3U);
    EXPECT_TRUE(faults.isSilent && faults.isWithoutAnswer && faults.hasDuplicateOid && faults.hasMissingOid &&
                faults.hasForeignOid && faults.hasWrongCount && faults.isTruncated);
}

TEST(Faults, AreNoneByDefault)
{
    const Faults faults = parseFaults("").value();
    EXPECT_EQ(faults.delay, std::nullopt);
    EXPECT_EQ(faults.result, std::nullopt);
    EXPECT_EQ(faults.wrongType, std::nullopt);
    EXPECT_EQ(faults.wrongLength, std::nullopt);
    EXPECT_FALSE(faults.isSilent || faults.isWithoutAnswer || faults.hasDuplicateOid || faults.hasMissingOid ||
                 faults.hasForeignOid || faults.hasWrongCount || faults.isTruncated);
}

TEST(Faults, RememberTheirText)
{
    EXPECT_EQ(parseFaults("result=0x10,silence").value().text, "result=0x10,silence");
}

TEST(Faults, ReachBothEndsOfTheirRanges)
{
    EXPECT_EQ(parseFaults("delay=0")->delay, 0);
    EXPECT_EQ(parseFaults("delay=3600")->delay, 3600);
    EXPECT_EQ(parseFaults("result=1")->result, 1);
    EXPECT_EQ(parseFaults("result=4294967295")->result, -1);
    EXPECT_EQ(parseFaults("wrong-type=0")->wrongType, 0);
    EXPECT_EQ(parseFaults("wrong-type=255")->wrongType, 255);
    EXPECT_EQ(parseFaults("wrong-length=0")->wrongLength, 0U);
    EXPECT_EQ(parseFaults("wrong-length=1000")->wrongLength, 1000U);
}

TEST(Faults, AreRefusedWithWhatWouldBeRight)
{
    const std::string faults =
        "the faults are delay=SECONDS, silence, no-answer, result=CODE, duplicate-oid, missing-oid, foreign-oid, "
        "wrong-count, wrong-type[=CODE], wrong-length=BYTES and truncated";
    const std::string delay = "the delay is a number from 0 to 3600 seconds";
    const std::string result = "the result code of a failure is a number from 1 to 4294967295";
    const std::string type = "a type code is a number from 0 to 255";
    const std::string length = "the length is a number from 0 to 1000 bytes";
    const struct {
        std::string text;
        std::string reason;
    } cases[] = {
        {"noise", "'noise': " + faults},
        {"Silence", "'Silence': " + faults},
        {"silence ", "'silence ': " + faults},
        {"silence=1", "'silence=1': " + faults},
        {"silence=", "'silence=': " + faults},
        {",", "'': " + faults},
        {",silence", "'': " + faults},
        {"silence,", "'': " + faults},
        {"silence,,truncated", "'': " + faults},
        {std::string("silence\0", 8), std::string("'silence\0': ", 12) + faults},
        {"delay", "'delay': " + delay},
        {"delay=", "'delay=': " + delay},
        {"delay=x", "'delay=x': " + delay},
        {"delay=-1", "'delay=-1': " + delay},
        {"delay=3600.1", "'delay=3600.1': " + delay},
        {"delay=nan", "'delay=nan': " + delay},
        {"delay=inf", "'delay=inf': " + delay},
        {"delay= 1", "'delay= 1': " + delay},
        {"delay=1s", "'delay=1s': " + delay},
        {std::string("delay=1\0", 8), std::string("'delay=1\0': ", 12) + delay},
        {"result", "'result': " + result},
        {"result=", "'result=': " + result},
        {"result=0", "'result=0': " + result},
        {"result=0x0", "'result=0x0': " + result},
        {"silence,result=-1", "'result=-1': " + result},
        {"result=4294967296", "'result=4294967296': " + result},
        {"result=1,result=0", "'result=0': " + result},
        {"wrong-type=", "'wrong-type=': " + type},
        {"wrong-type=256", "'wrong-type=256': " + type},
        {"wrong-type=x", "'wrong-type=x': " + type},
        {"wrong-length", "'wrong-length': " + length},
        {"wrong-length=-1", "'wrong-length=-1': " + length},
        {"wrong-length=1001", "'wrong-length=1001': " + length},
    };
    for (const auto& each : cases) {
        EXPECT_FALSE(parseFaults(each.text)) << each.text;
        EXPECT_EQ(reasonAgainstFaults(each.text), each.reason);
    }
    EXPECT_EQ(reasonAgainstFaults("silence"), "");
}

// Two values: card.led of type uint8, and card.vlan of type uint16.
constexpr const char* TWO_VALUES = "00000002  00000006 0001000B 03 01  00000007 0001000C 02 0FFE";
constexpr const char* ONE_VALUE = "00000001  00000006 0001000B 03 01";

struct Spoilt {
    const char* faults;
    const char* sound;
    const char* spoilt;
};

TEST(Faults, SpoilAnswers)
{
    const Spoilt cases[] = {
        {"", TWO_VALUES, TWO_VALUES},
        {"delay=1,silence,no-answer,result=1", TWO_VALUES, TWO_VALUES},
        {"duplicate-oid", TWO_VALUES, "00000002  00000007 0001000C 02 0FFE  00000007 0001000C 02 0FFE"},
        {"duplicate-oid", ONE_VALUE, "00000002  00000006 0001000B 03 01  00000006 0001000B 03 01"},
        {"missing-oid", TWO_VALUES, ONE_VALUE},
        {"missing-oid", ONE_VALUE, "00000000"},
        {"foreign-oid", TWO_VALUES, "00000002  00000006 0001000B 03 01  00000007 8001000C 02 0FFE"},
        {"wrong-count", ONE_VALUE, "00000002  00000006 0001000B 03 01"},
        {"wrong-type", TWO_VALUES, "00000002  00000006 0001000B 03 01  00000007 0001000C 0B 0FFE"},
        {"wrong-type=9", ONE_VALUE, "00000001  00000006 0001000B 09 01"},
        {"wrong-length=0", TWO_VALUES, "00000002  00000006 0001000B 03 01  00000005 0001000C 02"},
        {"wrong-length=3", TWO_VALUES, "00000002  00000006 0001000B 03 01  00000008 0001000C 02 0FFE00"},
        {"truncated", ONE_VALUE, "00000001  00000006 0001000B 03"},
        {"wrong-type=4,wrong-count,truncated", ONE_VALUE, "00000002  00000006 0001000B 04"},
        {"duplicate-oid,missing-oid,foreign-oid,wrong-type,wrong-length=9", "00000000", "00000000"},
        {"duplicate-oid,missing-oid,foreign-oid,wrong-type,wrong-length=9", "", "00000000"},
        {"truncated", "00000000", "000000"},
    };
    for (const Spoilt& each : cases) {
        const buffer_t spoilt = corruptedStream(parseFaults(each.faults).value(), bufferOf(each.sound)).value();
        EXPECT_EQ(hexOf(spoilt), withoutBlanks(each.spoilt)) << each.faults;
    }
}

TEST(Faults, MakeNothingThatIsLongerThanAMessage)
{
    // Two values and a count of 4 + 10 + 2034 bytes, the message's 2048: the first value becomes as long as the last.
    buffer_t full;
    buffer_t led = bufferOf("0001000B 03 01");
    buffer_t name = bufferOf("00010002 09");
    name << std::string(2021, 'n');
    full << std::uint32_t{2} << led << name;
    ASSERT_EQ(full.size(), buffer_t::CAPACITY);

    EXPECT_FALSE(corruptedStream(parseFaults("duplicate-oid").value(), full));
    EXPECT_TRUE(corruptedStream(parseFaults("wrong-count").value(), full));
}

}  // namespace

}  // namespace brantel
