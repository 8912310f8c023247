// How a service name becomes an endpoint: the directory file, the runtime directory, and the key files.

#include "Directory.h"

#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Keys.h"
#include "message/OBkeys.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace obmessage {
namespace {

const std::string KEY(40, 'k');

class DirectoryTest : public ::testing::Test {
protected:
    DirectoryTest() { ::setenv("XDG_RUNTIME_DIR", m_folder.path().c_str(), 1); }

    std::string write(const std::string& contents) const { return m_folder.write("directory", contents); }

    Route routeTo(const std::string& serviceName, const std::string& contents) const
    {
        return Directory(write(contents)).routeTo(serviceName);
    }

    TemporaryDirectory m_folder;
};

std::string textOf(const Route& route)
{
    return route.endpoint + " own-key=" + route.ownKeyFile + " service-key=" + route.serviceKey +
           " clients=" + route.clientsFile;
}

TEST_F(DirectoryTest, ListsEndpointsWithAndWithoutKeys)
{
    const std::string contents =
        "# where the cards are\n"
        "\n"
        "Local ipc:///run/x/socket\n"
        "  Inner \t inproc://inner\n"
        "Loopback4 tcp://127.0.0.1:5601\n"
        "Loopback6 tcp://[::1]:5602\n"
        "LoopbackName tcp://localhost:5603\n"
        "Plain tcp://192.0.2.1:5604 plain\n"
        "LowestPort tcp://localhost:1\n"
        "HighestPort tcp://localhost:65535\n"
        "Called tcp://192.0.2.1:5605 own-key=/etc/me.key service-key=" +
        KEY +
        "\n"
        "Served tcp://*:5606 own-key=keys/me.key clients=callers\n";
    const struct {
        const char* name;
        std::string route;
    } cases[] = {
        {"Local", "ipc:///run/x/socket own-key= service-key= clients="},
        {"Inner", "inproc://inner own-key= service-key= clients="},
        {"Loopback4", "tcp://127.0.0.1:5601 own-key= service-key= clients="},
        {"Loopback6", "tcp://[::1]:5602 own-key= service-key= clients="},
        {"LoopbackName", "tcp://localhost:5603 own-key= service-key= clients="},
        {"Plain", "tcp://192.0.2.1:5604 own-key= service-key= clients="},
        {"LowestPort", "tcp://localhost:1 own-key= service-key= clients="},
        {"HighestPort", "tcp://localhost:65535 own-key= service-key= clients="},
        {"Called", "tcp://192.0.2.1:5605 own-key=/etc/me.key service-key=" + KEY + " clients="},
        {"Served", "tcp://*:5606 own-key=" + m_folder.path() + "/keys/me.key service-key= clients=" + m_folder.path() +
                       "/callers"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(textOf(routeTo(c.name, contents)), c.route);
    }
}

TEST_F(DirectoryTest, RefusesLinesWithoutAValidRoute)
{
    const std::string tooLong = "ipc:///" + std::string(107, 'p');
    const std::string noPort = " is not a port: it must be 1 to 65535, or * to serve at a free one";
    const struct {
        std::string line;
        std::string error;
    } cases[] = {
        {"a/b ipc:///x", "'a/b' is not a service name"},
        {".a ipc:///x", "'.a' is not a service name"},
        {std::string(65, 'n') + " ipc:///x", "'" + std::string(65, 'n') + "' is not a service name"},
        {"A", "'A' has no endpoint"},
        {"A udp://x:1", "unknown endpoint 'udp://x:1': expected ipc:///path, tcp://host:port or inproc://name"},
        {"A inproc://", "unknown endpoint 'inproc://': expected ipc:///path, tcp://host:port or inproc://name"},
        {"A ipc://x", "the path of 'ipc://x' is not absolute"},
        {"A ipc://@x", "the path of 'ipc://@x' is not absolute"},
        {"A " + tooLong, "the path of '" + tooLong + "' is longer than 107 characters"},
        {"A tcp://host", "'tcp://host' is not tcp://host:port"},
        {"A tcp://:5", "'tcp://:5' is not tcp://host:port"},
        {"A tcp://host:", "'tcp://host:' is not tcp://host:port"},
        {"A tcp://127.0.0.1:99999", "'99999'" + noPort},
        {"A tcp://127.0.0.1:65536", "'65536'" + noPort},
        {"A tcp://127.0.0.1:0", "'0'" + noPort},
        {"A tcp://127.0.0.1:-1", "'-1'" + noPort},
        {"A tcp://127.0.0.1:+5", "'+5'" + noPort},
        {"A tcp://127.0.0.1:0x50", "'0x50'" + noPort},
        {"A tcp://127.0.0.1:5e3", "'5e3'" + noPort},
        {"A tcp://127.0.0.1:**", "'**'" + noPort},
        {"A tcp://[::1]", "'1]'" + noPort},
        {"A tcp://192.0.2.1:5", "'tcp://192.0.2.1:5' leaves this host without keys; add own-key= or plain"},
        {"A tcp://*:5", "'tcp://*:5' leaves this host without keys; add own-key= or plain"},
        {"A tcp://127.evil.example:5",
         "'tcp://127.evil.example:5' leaves this host without keys; add own-key= or plain"},
        {"A tcp://h:5 plain own-key=f clients=g", "plain and own-key= are mutually exclusive"},
        {"A tcp://h:5 own-key=f", "own-key= goes with service-key= (to call), clients= (to serve) or both"},
        {"A tcp://127.0.0.1:5 clients=f", "own-key= goes with service-key= (to call), clients= (to serve) or both"},
        {"A tcp://h:5 own-key=f service-key=short", "service-key= is not a key of 40 characters"},
        {"A ipc:///x own-key=f clients=g", "keys are for tcp endpoints only"},
        {"A ipc:///x what", "unknown option 'what': expected plain, own-key=FILE, service-key=KEY or clients=FILE"},
        {"A ipc:///x own-key=",
         "unknown option 'own-key=': expected plain, own-key=FILE, service-key=KEY or clients=FILE"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(errorOf([&] { Directory(write("# first\n" + c.line + "\n")); }),
                  m_folder.path() + "/directory:2: " + c.error);
    }
}

TEST_F(DirectoryTest, RefusesANameThatIsListedTwice)
{
    EXPECT_EQ(errorOf([&] { Directory(write("A ipc:///x\nA ipc:///y\n")); }),
              m_folder.path() + "/directory:2: 'A' is listed twice");
}

TEST_F(DirectoryTest, RefusesNulBytes)
{
    const std::string nul(1, '\0');
    for (const std::string& line : {"Cut ipc:///run/x" + nul + "y\n", "# a comment" + nul + "\n", nul + nul}) {
        const std::string path = write("First inproc://first\n" + line);
        EXPECT_EQ(errorOf([&] { Directory directory(path); }), path + ":2: the line contains a NUL byte");
    }
}

TEST_F(DirectoryTest, RefusesAFileThatCannotBeRead)
{
    EXPECT_EQ(errorOf([&] { Directory(m_folder.path() + "/none"); }),
              m_folder.path() + "/none: No such file or directory");
}

TEST_F(DirectoryTest, RefusesAFileThatOthersMayWrite)
{
    const std::string path = write("A ipc:///x\n");
    for (const mode_t mode : {0664U, 0646U, 0666U, 0620U}) {
        ::chmod(path.c_str(), mode);
        EXPECT_EQ(errorOf([&] { Directory directory(path); }),
                  path + ": other users may write to it; its mode must be 0644 or stricter")
            << mode;
    }
    ::chmod(path.c_str(), 0644);
    EXPECT_EQ(errorOf([&] { Directory directory(path); }), "");
}

TEST_F(DirectoryTest, RefusesAFileOfAnotherUser)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    const std::string path = write("A ipc:///x\n");
    ASSERT_EQ(::chown(path.c_str(), 1, 1), 0);
    EXPECT_EQ(errorOf([&] { Directory directory(path); }), path + ": belongs to another user");
}

TEST_F(DirectoryTest, PutsUnlistedServicesIntoTheRuntimeDirectory)
{
    EXPECT_EQ(Directory().routeTo("ICSCClient3.ReadWriteSync").endpoint,
              "ipc://" + m_folder.path() + "/brantel/ICSCClient3.ReadWriteSync");
}

TEST_F(DirectoryTest, RefusesToResolveAnInvalidName)
{
    EXPECT_EQ(errorOf([] { Directory().routeTo("../etc"); }), "'../etc' is not a service name");
    EXPECT_EQ(errorOf([] { Directory().routeTo(""); }), "'' is not a service name");
}

TEST_F(DirectoryTest, RefusesASocketPathThatIsTooLong)
{
    const std::string deep = m_folder.path() + "/" + std::string(100, 'd');
    std::filesystem::create_directory(deep);
    ::setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
    EXPECT_EQ(errorOf([] { Directory().routeTo("A"); }),
              "the socket's path '" + deep + "/brantel/A' is longer than 107 characters");
}

TEST_F(DirectoryTest, CreatesTheRuntimeDirectoryForThisUserAlone)
{
    const std::string path = runtimeDirectory();
    EXPECT_EQ(path, m_folder.path() + "/brantel");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_all);
    EXPECT_EQ(runtimeDirectory(), path) << "an existing one is used";
}

TEST_F(DirectoryTest, UsesAnotherFolderWithoutXdgRuntimeDir)
{
    const std::string expected = (::geteuid() == 0) ? "/run/brantel" : "/tmp/brantel-" + std::to_string(::geteuid());
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(runtimeDirectory(), expected);
    ::setenv("XDG_RUNTIME_DIR", "relative/path", 1);
    EXPECT_EQ(runtimeDirectory(), expected);
}

TEST_F(DirectoryTest, RefusesARuntimeDirectoryThatOthersCanEnter)
{
    const std::string path = m_folder.path() + "/brantel";
    for (const mode_t mode : {0710U, 0701U, 0770U, 0777U, 01777U}) {
        ::mkdir(path.c_str(), 0700);
        ::chmod(path.c_str(), mode);
        EXPECT_EQ(errorOf([] { runtimeDirectory(); }), path + ": open to other users; its mode must be 0700") << mode;
    }
}

TEST_F(DirectoryTest, RefusesARuntimeDirectoryBehindALink)
{
    const std::string path = m_folder.path() + "/brantel";
    std::filesystem::create_directory_symlink("/tmp", path);
    EXPECT_EQ(errorOf([] { runtimeDirectory(); }), path + ": Not a directory");
}

TEST_F(DirectoryTest, RefusesARuntimeDirectoryOfAnotherUser)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a directory away";
    }
    const std::string path = m_folder.path() + "/brantel";
    ::mkdir(path.c_str(), 0700);
    ASSERT_EQ(::chown(path.c_str(), 1, 1), 0);
    EXPECT_EQ(errorOf([] { runtimeDirectory(); }), path + ": belongs to another user");
}

TEST_F(DirectoryTest, RefusesARuntimeDirectoryThatCannotBeCreated)
{
    ::setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
    EXPECT_EQ(errorOf([] { runtimeDirectory(); }), "/nonexistent/brantel: No such file or directory");
}

class KeyFiles : public ::testing::Test {
protected:
    TemporaryDirectory m_folder;
};

TEST_F(KeyFiles, HoldWhatWasCreated)
{
    const std::string path = m_folder.path() + "/own.key";
    const std::string publicKey = createKeyFile(path);
    const KeyPair keys = readKeyPair(path);
    EXPECT_EQ(keys.publicKey, publicKey);
    EXPECT_TRUE(isKey(keys.publicKey) && isKey(keys.secretKey) && (keys.publicKey != keys.secretKey));
    EXPECT_EQ(std::filesystem::status(path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(KeyFiles, AreNeverOverwritten)
{
    const std::string path = m_folder.write("own.key", "precious");
    EXPECT_EQ(errorOf([&] { createKeyFile(path); }), path + ": File exists");
}

TEST_F(KeyFiles, AreRefusedWhenOthersCouldReadThem)
{
    const std::string path = m_folder.path() + "/own.key";
    createKeyFile(path);
    for (const mode_t mode : {0640U, 0604U, 0610U}) {
        ::chmod(path.c_str(), mode);
        EXPECT_EQ(errorOf([&] { readKeyPair(path); }), path + ": open to other users; its mode must be 0600");
    }
}

TEST_F(KeyFiles, AreRefusedWhenTheyBelongToAnotherUser)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    // Any user may use root's files; a file of user 1 is not root's.
    const std::string path = m_folder.path() + "/own.key";
    createKeyFile(path);
    ASSERT_EQ(::chown(path.c_str(), 1, 1), 0);
    EXPECT_EQ(errorOf([&] { readKeyPair(path); }), path + ": belongs to another user");
}

TEST_F(KeyFiles, MustHoldOneKeyPair)
{
    const std::string where = m_folder.path() + "/own.key";
    const struct {
        std::string contents;
        std::string error;
    } cases[] = {
        {"", ": a public or secret key is missing"},
        {"public " + KEY, ": a public or secret key is missing"},
        {"secret " + KEY, ": a public or secret key is missing"},
        {"public " + KEY + "\npublic " + KEY, ":2: a second public key"},
        {"private " + KEY, ":1: not 'public KEY' or 'secret KEY' with a key of 40 characters"},
        {"public", ":1: not 'public KEY' or 'secret KEY' with a key of 40 characters"},
        {"public short", ":1: not 'public KEY' or 'secret KEY' with a key of 40 characters"},
        {"public " + KEY + " more", ":1: not 'public KEY' or 'secret KEY' with a key of 40 characters"},
    };
    for (const auto& c : cases) {
        m_folder.write("own.key", c.contents);
        EXPECT_EQ(errorOf([&] { readKeyPair(where); }), where + c.error);
    }
    EXPECT_EQ(errorOf([&] { readKeyPair(m_folder.path()); }), m_folder.path() + ": not a regular file");
}

TEST_F(KeyFiles, ListClients)
{
    const std::string other(40, '1');
    const std::string path =
        m_folder.write("clients", "# who may call\nclient " + KEY + " the system card\nclient " + other + "\n");
    EXPECT_EQ(readPublicKeys(path), (std::set<std::string>{KEY, other}));
}

TEST_F(KeyFiles, ListClientsOnlyIfOthersMayNotWriteThere)
{
    const std::string path = m_folder.write("clients", "client " + KEY + "\n");
    ::chmod(path.c_str(), 0622);
    EXPECT_EQ(errorOf([&] { readPublicKeys(path); }),
              path + ": other users may write to it; its mode must be 0644 or stricter");
}

TEST_F(KeyFiles, ListNothingButClients)
{
    const std::string path = m_folder.path() + "/clients";
    for (const std::string& line : {KEY, std::string("client"), std::string("client short")}) {
        m_folder.write("clients", line);
        EXPECT_EQ(errorOf([&] { readPublicKeys(path); }), path + ":1: not 'client KEY' with a key of 40 characters");
    }
}

}  // namespace
}  // namespace obmessage
