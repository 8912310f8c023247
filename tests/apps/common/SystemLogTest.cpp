#include "common/SystemLog.h"

#include <utility>
#include <vector>

#include <syslog.h>

#include <gtest/gtest.h>

namespace brantel {
namespace {

using Lines = std::vector<std::pair<int, std::string>>;

TEST(SystemLog, MakesOnePrintableLineOfAnyText)
{
    Lines lines;
    setLogWriter([&](int priority, const std::string& line) { lines.emplace_back(priority, line); });
    writeLog(LOG_ERR, "No = sign in 'a\nbrantel[1]: forged \x1B[31m'");
    writeLog(LOG_WARNING, "ends in a line end\n");
    writeLog(LOG_NOTICE, "");
    setLogWriter({});

    EXPECT_EQ(lines, (Lines{{LOG_ERR, "No = sign in 'a?brantel[1]: forged ?[31m'"},
                            {LOG_WARNING, "ends in a line end"},
                            {LOG_NOTICE, ""}}));
}

}  // namespace

}  // namespace brantel
