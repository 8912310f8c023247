#include <utility>
#include <vector>

#include <syslog.h>

#include <gtest/gtest.h>

#include "common/SystemLog.h"

namespace brantel {
namespace {

using Lines = std::vector<std::pair<int, std::string>>;

// This file is compiled as in distributions, where the C library's header replaces syslog by another function.
TEST(FortifiedLog, ComesFromProgramsThatAreCompiledWithFortify)
{
    Lines lines;
    setLogWriter([&](int priority, const std::string& line) { lines.emplace_back(priority, line); });
    const int number = 5;
    syslog(LOG_ERR, "number %d", number);
    setLogWriter({});

    EXPECT_EQ(lines, (Lines{{LOG_ERR, "number 5"}}));
}

}  // namespace

}  // namespace brantel
