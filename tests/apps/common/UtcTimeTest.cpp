// The time of day as it is printed and read back.

#include "common/UtcTime.h"

#include <gtest/gtest.h>

namespace brantel {
namespace {

constexpr UtcTime TIME{std::chrono::milliseconds(1'795'253'309'089)};

TEST(UtcTime, IsPrintedWithMilliseconds)
{
    EXPECT_EQ(utcTimeText(TIME), "2026-11-21T09:28:29.089Z");
    EXPECT_EQ(utcTimeText(UtcTime()), "1970-01-01T00:00:00.000Z");
}

TEST(UtcTime, IsReadBack)
{
    EXPECT_EQ(parseUtcTime(utcTimeText(TIME)), TIME);
    for (const char* const text : {"", "2026-11-21", "2026-11-21T09:28:29.089", "2026-11-21T09:28:29Z",
                                   "2026-11-21T09:28:29.089Z ", "2026-13-21T09:28:29.089Z"}) {
        EXPECT_EQ(parseUtcTime(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace brantel
