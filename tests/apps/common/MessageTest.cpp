#include "common/Message.h"

#include <gtest/gtest.h>

namespace brantel {
namespace {

TEST(Message, IsOneLineOnStandardErrorWithoutControlCharacters)
{
    testing::internal::CaptureStderr();
    printMessage("there is no table 'a\x1B[31m\nb'; the tables are");
    printDetail("  C\x9B");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "brantel: there is no table 'a?[31m?b'; the tables are\n  C\xEF\xBF\xBD\n");
}

}  // namespace

}  // namespace brantel
