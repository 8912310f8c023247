// The socket of a service on this host: whose it is, and what is left behind.

#include "LocalListener.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>

#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace obmessage {
namespace {

class LocalListenerTest : public ::testing::Test {
protected:
    // A socket that nobody listens on, as a killed process leaves it.
    void leaveStaleSocket() const
    {
        const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
        ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&m_address), sizeof m_address), 0);
    }

    bool canConnect() const
    {
        const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
        return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&m_address), sizeof m_address) == 0;
    }

    LocalListenerTest()
    {
        m_address.sun_family = AF_UNIX;
        m_path.copy(m_address.sun_path, sizeof m_address.sun_path - 1);
    }

    TemporaryDirectory m_folder;
    std::string m_path = m_folder.path() + "/service";
    sockaddr_un m_address = {};
};

TEST_F(LocalListenerTest, ListensForThisUserAlone)
{
    const LocalListener listener(m_path);
    EXPECT_TRUE(canConnect());
    EXPECT_EQ(std::filesystem::status(m_path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(LocalListenerTest, LeavesNoSocketBehind)
{
    {
        const LocalListener listener(m_path);
    }
    EXPECT_FALSE(std::filesystem::exists(m_path));
}

TEST_F(LocalListenerTest, ReplacesASocketThatADeadProcessLeft)
{
    leaveStaleSocket();
    ASSERT_FALSE(canConnect());
    const LocalListener listener(m_path);
    EXPECT_TRUE(canConnect());
}

TEST_F(LocalListenerTest, IsRefusedWhileAnotherOneServes)
{
    std::optional<LocalListener> first(m_path);
    EXPECT_EQ(errorOf([&] { LocalListener second(m_path); }), m_path + ": served by another connection already");
    EXPECT_TRUE(canConnect()) << "the first is undisturbed";
    first.reset();
    EXPECT_EQ(errorOf([&] { LocalListener second(m_path); }), "");
}

TEST_F(LocalListenerTest, RemovesNothingButSockets)
{
    m_folder.write("service", "precious");
    EXPECT_EQ(errorOf([&] { LocalListener listener(m_path); }), m_path + ": there is something that is not a socket");
    EXPECT_TRUE(std::filesystem::exists(m_path));
}

TEST_F(LocalListenerTest, FollowsNoLinkToItsLock)
{
    std::filesystem::create_symlink(m_folder.path() + "/elsewhere", m_path + ".lock");
    EXPECT_EQ(errorOf([&] { LocalListener listener(m_path); }), m_path + ".lock: Too many levels of symbolic links");
}

TEST_F(LocalListenerTest, NeedsItsFolder)
{
    const std::string path = m_folder.path() + "/none/service";
    EXPECT_EQ(errorOf([&] { LocalListener listener(path); }), path + ".lock: No such file or directory");
}

TEST_F(LocalListenerTest, NeedsAPathThatFitsASocketAddress)
{
    const std::string path = m_folder.path() + "/" + std::string(108, 's');
    EXPECT_EQ(errorOf([&] { LocalListener listener(path); }), path + ": File name too long");
}

}  // namespace
}  // namespace obmessage
