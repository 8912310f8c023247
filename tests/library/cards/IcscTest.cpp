#include "Icsc.h"

#include <gtest/gtest.h>

#include "message/OBresult.h"

namespace {

TEST(Icsc, NamesTheTwoServicesOfASlot)
{
    EXPECT_EQ(icsc::serviceName(0, icsc::Interface::SYNC), "ICSCClient0.ReadWriteSync");
    EXPECT_EQ(icsc::serviceName(9, icsc::Interface::ASYNC), "ICSCClient9.ReadWriteAsync");
}

TEST(Icsc, SplitsAResultCode)
{
    EXPECT_EQ(icsc::generalResult(0x02000007), 2U);
    EXPECT_EQ(icsc::cardResult(0x02000007), 7U);
    EXPECT_EQ(icsc::generalResult(-1), 255U);
    EXPECT_EQ(icsc::cardResult(-1), 0xFFFFFFU);
}

TEST(Icsc, NamesTheResultsOfTheFrameworkAsTheFrameworkDoes)
{
    EXPECT_STREQ(icsc::resultName(obResult::GENERAL_ERROR), "GENERAL_ERROR");
    EXPECT_STREQ(icsc::resultName(obResult::TIMEOUT), "TIMEOUT");
    EXPECT_STREQ(icsc::resultName(obResult::INVALID_RESPONSE), "INVALID_RESPONSE");
    EXPECT_STREQ(icsc::resultName(obResult::INTERNAL_ERROR), "INTERNAL_ERROR");
    EXPECT_STREQ(icsc::resultName(obResult::MESSAGE_TOO_LARGE), "MESSAGE_TOO_LARGE");
    EXPECT_STREQ(icsc::resultName(obResult::MESSAGE_TOO_SHORT), "MESSAGE_TOO_SHORT");
}

TEST(Icsc, NamesTheResultsOfTheCard)
{
    EXPECT_STREQ(icsc::resultName(icsc::RESULT_OK), "RESULT OK");
    EXPECT_STREQ(icsc::resultName(icsc::RESULT_WRONG_MAGIC), "RESULT WRONG MAGIC");
    EXPECT_STREQ(icsc::resultName(icsc::RESULT_NOT_SEND), "RESULT NOT SEND");
    EXPECT_EQ(icsc::resultName(17), nullptr);
    EXPECT_STREQ(icsc::resultName(18), "unknown");
    EXPECT_STREQ(icsc::resultName(0x09000000), "unknown");
}

}  // namespace
