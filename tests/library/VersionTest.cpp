#include "BrantelVersion.h"

#include <cstdio>

#include <gtest/gtest.h>

namespace {

TEST(Version, OfTheLibraryIsThatOfTheProject)
{
    EXPECT_STREQ(brantelVersion(), PROJECT_VERSION);
}

TEST(Version, IsANumberThatGrows)
{
    int major = 0;
    int minor = 0;
    int patch = 0;
    ASSERT_EQ(std::sscanf(PROJECT_VERSION, "%d.%d.%d", &major, &minor, &patch), 3);
    EXPECT_EQ(BRANTEL_VERSION, major * 10000 + minor * 100 + patch);
}

}  // namespace
