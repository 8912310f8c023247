// Deadlines in the dispatch loop, also when the process was stopped while they passed.

#include "Dispatcher.h"

#include <cstdint>
#include <string>

#include <sys/eventfd.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace obmessage {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A request under way: answered through its descriptor, or given up at its deadline.
class Request : public DispatchSource {
public:
    Request(Dispatcher& dispatcher, Clock::time_point deadline)
        : m_dispatcher(dispatcher), m_descriptor(::eventfd(0, EFD_NONBLOCK)), m_deadline(deadline)
    {
        m_dispatcher.add(*this);
    }
    ~Request() override { m_dispatcher.remove(*this); }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    void answer() const
    {
        const std::uint64_t one = 1;
        EXPECT_EQ(::write(m_descriptor.get(), &one, sizeof one), static_cast<ssize_t>(sizeof one));
    }

    const std::string& outcome() const { return m_outcome; }

private:
    int descriptor() const override { return m_descriptor.get(); }
    bool hasWork() const override { return false; }

    bool handleMessage() override
    {
        std::uint64_t count = 0;
        if (::read(m_descriptor.get(), &count, sizeof count) < 0) {
            return false;
        }
        finish("answered");
        return true;
    }

    std::optional<Clock::time_point> nextDeadline() const override { return m_deadline; }

    bool handleDeadline(Clock::time_point now) override
    {
        if (!m_deadline || (*m_deadline > now)) {
            return false;
        }
        finish("given up");
        return true;
    }

    void finish(const char* outcome)
    {
        m_outcome = outcome;
        m_deadline.reset();
    }

    Dispatcher& m_dispatcher;
    const FileDescriptor m_descriptor;
    std::optional<Clock::time_point> m_deadline;
    std::string m_outcome = "under way";
};

class DispatcherTest : public ::testing::Test {
protected:
    Dispatcher m_dispatcher{"tester", Directory()};
};

TEST_F(DispatcherTest, GivesUpWhatIsNotAnsweredInTime)
{
    const Request request(m_dispatcher, Clock::now());
    EXPECT_EQ(m_dispatcher.dispatch(seconds(30)), 1U);
    EXPECT_EQ(request.outcome(), "given up");
}

TEST_F(DispatcherTest, TakesAnAnswerThatIsReadOnlyAfterTheProcessWasStopped)
{
    const Request request(m_dispatcher, Clock::now() - seconds(60));
    EXPECT_EQ(m_dispatcher.dispatch(milliseconds(0)), 0U);
    request.answer();
    EXPECT_EQ(m_dispatcher.dispatch(seconds(30)), 1U);
    EXPECT_EQ(request.outcome(), "answered");
}

TEST_F(DispatcherTest, GivesUpWhatIsStillNotAnsweredAfterTheProcessWasStopped)
{
    const Request request(m_dispatcher, Clock::now() - seconds(60));
    EXPECT_EQ(m_dispatcher.dispatch(seconds(30)), 1U);
    EXPECT_EQ(request.outcome(), "given up");
}

TEST_F(DispatcherTest, TakesAnswersThatAreLateTooIfItWasStoppedAgain)
{
    const Request first(m_dispatcher, Clock::now() - seconds(60));
    EXPECT_EQ(m_dispatcher.dispatch(seconds(30)), 1U);
    const Request second(m_dispatcher, Clock::now() - seconds(60));
    EXPECT_EQ(m_dispatcher.dispatch(milliseconds(0)), 0U);
    second.answer();
    EXPECT_EQ(m_dispatcher.dispatch(seconds(30)), 1U);
    EXPECT_EQ(second.outcome(), "answered");
}

}  // namespace
}  // namespace obmessage
