#include "common/Signals.h"

#include <gtest/gtest.h>
#include <poll.h>

namespace brantel {
namespace {

bool isReadable(int descriptor)
{
    pollfd readable{descriptor, POLLIN, 0};
    return ::poll(&readable, 1, 0) == 1;
}

bool isDefault(int signal)
{
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_DFL;
}

TEST(StopOnSignals, CallTheFunctionOnceAndLeaveTheNextSignalToEndTheProcess)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        int calls = 0;
        const StopOnSignals stopOnSignals([&] { ++calls; });
        EXPECT_FALSE(isDefault(signal));
        EXPECT_EQ(std::raise(signal), 0);

        EXPECT_EQ(calls, 1);
        EXPECT_TRUE(isDefault(signal));
    }
    EXPECT_TRUE(isDefault(SIGINT));
    EXPECT_TRUE(isDefault(SIGTERM));
}

TEST(StopNotice, BecomesReadableAndLeavesTheNextSignalToEndTheProcess)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const StopNotice notice;
        EXPECT_FALSE(isReadable(notice.descriptor()));
        EXPECT_EQ(std::raise(signal), 0);

        EXPECT_TRUE(isReadable(notice.descriptor()));
        EXPECT_TRUE(isDefault(signal));
    }
    EXPECT_TRUE(isDefault(SIGINT));
    EXPECT_TRUE(isDefault(SIGTERM));
}

TEST(StopNotice, LeavesAnIgnoredSignalIgnored)
{
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGINT, &ignored, &before), 0);
    {
        const StopNotice notice;
        EXPECT_EQ(std::raise(SIGINT), 0);
        EXPECT_FALSE(isReadable(notice.descriptor()));
    }
    struct sigaction after = {};
    ASSERT_EQ(::sigaction(SIGINT, &before, &after), 0);
    EXPECT_EQ(after.sa_handler, SIG_IGN);
}

TEST(SignalQueue, HoldsSignalsUntilTheyAreTaken)
{
    const SignalQueue signals;
    EXPECT_EQ(signals.next(), std::nullopt);
    EXPECT_EQ(std::raise(SIGHUP), 0);
    EXPECT_TRUE(isReadable(signals.descriptor()));

    EXPECT_EQ(signals.next(), SIGHUP);
    EXPECT_EQ(signals.next(), std::nullopt);
    EXPECT_FALSE(isReadable(signals.descriptor()));
}

}  // namespace

}  // namespace brantel
