// The socket of a service on this host: who owns it, and what is left behind.

#include "LocalListener.h"

#include <filesystem>
#include <optional>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace obmessage {
namespace {

class LocalListenerTest : public ::testing::Test {
protected:
    // A socket without a listener, as a killed process leaves it.
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
    EXPECT_EQ(errorOf([&] { LocalListener second(m_path); }), m_path + ": already served by another connection");
    EXPECT_TRUE(canConnect()) << "the first is undisturbed";
    first.reset();
    EXPECT_EQ(errorOf([&] { LocalListener second(m_path); }), "");
}

TEST_F(LocalListenerTest, IsRefusedWhileAnotherOneServesWhoseLockFileWasRemoved)
{
    const LocalListener first(m_path);
    std::filesystem::remove(m_path + ".lock");
    EXPECT_EQ(errorOf([&] { LocalListener second(m_path); }), m_path + ": already served by another connection");
    EXPECT_TRUE(canConnect()) << "the first is undisturbed";
}

TEST_F(LocalListenerTest, IsAbsentForCertainOnlyWhereNoProcessListensAndNoneHidesItsSocket)
{
    EXPECT_TRUE(isAbsent(m_path));
    leaveStaleSocket();
    EXPECT_TRUE(isAbsent(m_path));
    std::optional<LocalListener> listener(m_path);
    EXPECT_FALSE(isAbsent(m_path));
    listener->setOpen(false);
    EXPECT_FALSE(canConnect());
    EXPECT_FALSE(isAbsent(m_path));
    listener.reset();
    EXPECT_TRUE(isAbsent(m_path));
}

TEST_F(LocalListenerTest, LeavesASuccessorsSocketAlone)
{
    std::optional<LocalListener> first(m_path);
    std::filesystem::remove(m_path + ".lock");
    std::filesystem::remove(m_path);
    const LocalListener second(m_path);
    first.reset();
    EXPECT_TRUE(canConnect()) << "the second is undisturbed";
    EXPECT_EQ(errorOf([&] { LocalListener third(m_path); }), m_path + ": already served by another connection");
}

TEST_F(LocalListenerTest, MarksItsLockFileAsOneToKeep)
{
    const LocalListener listener(m_path);
    EXPECT_EQ(std::filesystem::status(m_path + ".lock").permissions(), std::filesystem::perms::owner_read |
                                                                           std::filesystem::perms::owner_write |
                                                                           std::filesystem::perms::sticky_bit);
}

TEST_F(LocalListenerTest, RemovesNothingButSockets)
{
    m_folder.write("service", "precious");
    EXPECT_EQ(errorOf([&] { LocalListener listener(m_path); }), m_path + ": not a socket");
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
