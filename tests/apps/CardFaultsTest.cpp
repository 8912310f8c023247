// The faults that a card can be told to have: their texts, and what they do to an answer.

#include <gtest/gtest.h>

#include "cards/Faults.h"
#include "support/HexBytes.h"

namespace {

TEST(Faults, AreAListOfTexts)
{
    const Faults faults = faultsOfText(
                              "delay=1.5,silence,no-answer,result=0x02000000,duplicate-oid,missing-oid,"
                              "foreign-oid,wrong-count,wrong-type=14,truncated")
                              .value();
    EXPECT_EQ(faults.delay, 1.5);
    EXPECT_EQ(faults.result, 0x02000000);
    EXPECT_EQ(faults.wrongType, 14);
    EXPECT_TRUE(faults.isSilent && faults.isWithoutAnswer && faults.hasDuplicateOid && faults.hasMissingOid &&
                faults.hasForeignOid && faults.hasWrongCount && faults.isTruncated);
}

TEST(Faults, AreNoneUnlessNamed)
{
    const Faults faults = faultsOfText("").value();
    EXPECT_EQ(faults.delay, std::nullopt);
    EXPECT_EQ(faults.result, std::nullopt);
    EXPECT_EQ(faults.wrongType, std::nullopt);
    EXPECT_FALSE(faults.isSilent || faults.isWithoutAnswer || faults.hasDuplicateOid || faults.hasMissingOid ||
                 faults.hasForeignOid || faults.hasWrongCount || faults.isTruncated);
}

TEST(Faults, RememberTheirText)
{
    EXPECT_EQ(faultsOfText("delay=0x10,silence").value().text, "delay=0x10,silence");
}

TEST(Faults, AreNotTakenFromOtherTexts)
{
    for (const char* const text :
         {"noise",   "Silence",   "silence ",          ",silence",    "silence=1",      "silence,,truncated", "delay",
          "delay=",  "delay=x",   "delay=-1",          "delay=3601",  "delay=nan",      "delay=1s",           "result",
          "result=", "result=-1", "result=4294967296", "wrong-type=", "wrong-type=256", "wrong-type=x"}) {
        EXPECT_FALSE(faultsOfText(text)) << text;
    }
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
        {"truncated", ONE_VALUE, "00000001  00000006 0001000B 03"},
        {"wrong-type=4,wrong-count,truncated", ONE_VALUE, "00000002  00000006 0001000B 04"},
        {"duplicate-oid,missing-oid,foreign-oid,wrong-type", "00000000", "00000000"},
    };
    for (const Spoilt& each : cases) {
        const buffer_t spoilt = spoiltStream(faultsOfText(each.faults).value(), bufferOf(each.sound));
        EXPECT_EQ(hexOf(spoilt), withoutBlanks(each.spoilt)) << each.faults;
    }
}

}  // namespace
