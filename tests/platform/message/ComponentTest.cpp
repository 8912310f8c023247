// The dispatch loop of a component, and what it costs the process.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>

#include <gtest/gtest.h>

#include "MessageTest.h"
#include "TestCard.h"

namespace {

using std::chrono::milliseconds;

class Component : public MessageTest {
protected:
    OBcomponent m_component{"component"};
};

TEST_F(Component, HasAName)
{
    EXPECT_EQ(m_component.name(), "component");
}

TEST_F(Component, KnowsWhetherAServiceOfThisHostIsAbsent)
{
    EXPECT_TRUE(m_component.isServiceAbsent(SERVICE));
    {
        const ServedCard card(SERVICE);
        EXPECT_FALSE(m_component.isServiceAbsent(SERVICE));
    }
    EXPECT_TRUE(m_component.isServiceAbsent(SERVICE));
}

TEST_F(Component, DoesNotKnowWhetherAnyOtherServiceIsAbsent)
{
    const OBcomponent other(
        "other", m_folder.write("directory", SERVICE + std::string(" tcp://127.0.0.1:9\nNear inproc://near\n")));
    EXPECT_FALSE(other.isServiceAbsent(SERVICE));
    EXPECT_FALSE(other.isServiceAbsent("Near"));
    EXPECT_FALSE(other.isServiceAbsent("not a name"));
}

TEST_F(Component, KnowsWhetherItIsConnectedToAService)
{
    Answers answers;
    OBappsToICSC_1_0_P proxy(m_component);
    proxy.subscribe_asynchronous(SERVICE, &answers);
    EXPECT_FALSE(m_component.isConnected(SERVICE));
    EXPECT_EQ(m_component.obstacle(SERVICE), "") << "it is not served";
    {
        const ServedCard card(SERVICE);
        EXPECT_TRUE(dispatchUntil(m_component, [&] { return m_component.isConnected(SERVICE); }));
        EXPECT_EQ(m_component.obstacle(SERVICE), "");
        EXPECT_FALSE(m_component.isConnected("another"));
    }
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return !m_component.isConnected(SERVICE); }));
}

TEST_F(Component, KnowsWhyItCouldNotSubscribe)
{
    OBappsToICSC_1_0_P proxy(m_component);
    proxy.subscribe_synchronous("not a name");
    EXPECT_FALSE(m_component.isConnected("not a name"));
    EXPECT_EQ(m_component.obstacle("not a name"), proxy.obstacle());
    EXPECT_NE(proxy.obstacle(), "");

    proxy.subscribe_synchronous(SERVICE);
    EXPECT_EQ(m_component.obstacle(SERVICE), "");
    EXPECT_EQ(m_component.obstacle("not a name"), "the component has no proxy to the service");
}

TEST_F(Component, IsNotConnectedWithoutAProxy)
{
    const ServedCard card(SERVICE);
    {
        OBappsToICSC_1_0_P proxy(m_component);
        proxy.subscribe_synchronous(SERVICE);
        ASSERT_TRUE(dispatchUntil(m_component, [&] { return m_component.isConnected(SERVICE); }));
    }
    EXPECT_FALSE(m_component.isConnected(SERVICE));
    EXPECT_EQ(m_component.obstacle(SERVICE), "the component has no proxy to the service");
}

TEST_F(Component, NumbersItsRequestsToAServiceThroughAllOfItsProxies)
{
    const TestCard card(m_component, SERVICE);
    const TestCard other(m_component, "other");
    Answers answers;
    OBappsToICSC_1_0_P toOther(m_component);
    toOther.subscribe_asynchronous("other", &answers);
    EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 0U);
    {
        OBappsToICSC_1_0_P first(m_component);
        OBappsToICSC_1_0_P second(m_component);
        first.subscribe_asynchronous(SERVICE, &answers);
        second.subscribe_asynchronous(SERVICE, &answers);
        EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 0U);
        read(first, "a");
        EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 1U);
        read(second, "b");
        EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 2U);
        write(first, "c");
        EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 3U);
        read(toOther, "d");
        EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 3U);
        EXPECT_EQ(m_component.lastSequenceNumber("other"), 1U);
        ASSERT_TRUE(dispatchUntil(m_component, [&] { return answers.count() == 4; }));
    }
    std::vector<std::string> texts = answers.take();
    std::sort(texts.begin(), texts.end());
    const std::string service = SERVICE;
    EXPECT_EQ(texts, (std::vector<std::string>{service + " read 1: result 0, 'read a 5'",
                                               service + " read 2: result 0, 'read b 5'",
                                               service + " write 3: result 42", "other read 1: result 0, 'read d 5'"}));
    EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 0U) << "without a proxy the count starts again";
}

TEST_F(Component, NumbersSynchronousRequestsToo)
{
    const ServedCard card(SERVICE);
    OBappsToICSC_1_0_P proxy(m_component);
    proxy.subscribe_synchronous(SERVICE);
    read(proxy, "a");
    read(proxy, "b");
    EXPECT_EQ(m_component.lastSequenceNumber(SERVICE), 2U);
}

TEST_F(Component, DispatchesForTheTimeGiven)
{
    const Stopwatch watch;
    EXPECT_EQ(m_component.dispatch(milliseconds(200)), 0U);
    EXPECT_GE(watch.seconds(), 0.2);
    EXPECT_LT(watch.seconds(), 5.0);
    EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
    EXPECT_EQ(m_component.dispatch(milliseconds(-1)), 0U);
}

TEST_F(Component, RunsUntilStoppedByAnotherThread)
{
    std::thread other([this] { m_component.stop(); });
    m_component.run();
    other.join();
    EXPECT_FALSE(m_component.isStopping());
}

TEST_F(Component, DoesNotRunWhenItWasStoppedBefore)
{
    m_component.stop();
    EXPECT_TRUE(m_component.isStopping());
    EXPECT_EQ(m_component.dispatch(milliseconds(10000)), 0U);
    m_component.run();
    EXPECT_FALSE(m_component.isStopping());
}

OBcomponent* componentToStop = nullptr;

TEST_F(Component, RunsUntilStoppedByASignalHandler)
{
    componentToStop = &m_component;
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) { componentToStop->stop(); };
    ::sigaction(SIGUSR1, &action, &before);
    const pthread_t self = ::pthread_self();
    std::thread other([self] { ::pthread_kill(self, SIGUSR1); });
    m_component.run();
    other.join();
    ::sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(Component, KeepsItsFileDescriptorReadableWhileItIsStopping)
{
    pollfd descriptor = {m_component.fileDescriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&descriptor, 1, 0), 0);
    m_component.stop();
    m_component.dispatch(milliseconds(0));
    EXPECT_EQ(::poll(&descriptor, 1, 0), 1);
}

TEST_F(Component, RefusesToDispatchFromAHandler)
{
    const TestCard card(m_component, SERVICE, [this](TestCard& self, const OBmessage& request, const buffer_t&) {
        EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
        self.reply(request, buffer_t(), 0);
    });
    OBappsToICSC_1_0_P proxy(m_component);
    Answers answers;
    proxy.subscribe_asynchronous(SERVICE, &answers);
    read(proxy, "request");
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return answers.count() == 1; }));
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{errorLine("Dispatcher.cpp", "dispatch", "component %s: dispatch called from a handler",
                                    "component component: dispatch called from a handler")});
}

TEST_F(Component, LeavesEachSourceItsTurn)
{
    int endless = 0;
    OBappsToICSC_1_0_P busy(m_component);
    OBappsToICSC_1_0_P patient(m_component);
    const TestCard card(m_component, SERVICE);
    Answers busyAnswers;
    Answers patientAnswers;
    busyAnswers.onAnswer = [&] {
        ++endless;
        read(busy, "again");
    };
    busy.subscribe_asynchronous(SERVICE, &busyAnswers);
    patient.subscribe_asynchronous(SERVICE, &patientAnswers);
    read(busy, "start");
    read(patient, "once");
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return patientAnswers.count() == 1; }));
}

TEST_F(Component, FindsItsDirectoryThroughTheEnvironment)
{
    ::setenv("BRANTEL_MESSAGE_DIRECTORY", m_folder.write("directory", "A inproc://meeting-point\n").c_str(), 1);
    OBcomponent component("component");
    const TestCard card(component, "A");
    EXPECT_EQ(card.endpoint(), "inproc://meeting-point");
}

TEST_F(Component, RefusesADirectoryThatCannotBeUsed)
{
    const std::string file = m_folder.write("directory", "A nowhere\n");
    const std::string error =
        file + ":1: unknown endpoint 'nowhere': expected ipc:///path, tcp://host:port or inproc://name";
    EXPECT_EQ(errorOf([&] { const OBcomponent component("component", file); }), error);
    ::setenv("BRANTEL_MESSAGE_DIRECTORY", file.c_str(), 1);
    EXPECT_EQ(errorOf([&] { const OBcomponent component("component"); }), error);
}

std::size_t numberOfOpenDescriptors()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

void callOnce()
{
    const ServedCard card(SERVICE);
    OBcomponent component("caller");
    OBappsToICSC_1_0_P proxy(component);
    proxy.subscribe_synchronous(SERVICE);
    ASSERT_EQ(read(proxy, "request"), "returned 0, result 0, 'read request 5'");
}

TEST(ComponentResources, AreGivenBack)
{
    const TemporaryDirectory folder;
    ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    callOnce();
    const std::size_t before = numberOfOpenDescriptors();
    for (int i = 0; i < 20; ++i) {
        callOnce();
    }
    EXPECT_EQ(numberOfOpenDescriptors(), before);
}

TEST_F(Component, LeavesNoDescriptorToProgramsThatItsProcessStarts)
{
    const ServedCard card(SERVICE);
    OBappsToICSC_1_0_P proxy(m_component);
    proxy.subscribe_synchronous(SERVICE);
    ASSERT_EQ(read(proxy, "request"), "returned 0, result 0, 'read request 5'");
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;  // the iterator's own
        const std::string target = std::filesystem::read_symlink(entry.path(), gone).string();
        const int descriptor = std::stoi(entry.path().filename());
        const bool isOurs =
            (target.find("socket:") == 0) || (target.find("anon_inode:") == 0) || (target.find(m_folder.path()) == 0);
        if (isOurs && (descriptor > 2)) {
            EXPECT_EQ(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC) << target;
        }
    }
}

}  // namespace
