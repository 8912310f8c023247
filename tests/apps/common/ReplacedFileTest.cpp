#include "common/ReplacedFile.h"

#include <csignal>
#include <filesystem>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

namespace fs = std::filesystem;

constexpr const char* START = "our file ";

class ReplacedFileTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return m_directory.path() + "/" + name; }
    std::string write(const std::string& name, const std::string& text) const { return m_directory.write(name, text); }

    std::string replace(const std::string& name, const std::string& text = "our file 2\n") const
    {
        return errorOf([&] { replaceFile(path(name), START, text, Durability::POWER_FAILURE); });
    }

private:
    TemporaryDirectory m_directory;
};

TEST_F(ReplacedFileTest, IsMadeOrReplacedAsAWhole)
{
    EXPECT_EQ(replace("file", "our file 1\n"), "");
    EXPECT_EQ(contentOf(path("file")), "our file 1\n");
    EXPECT_EQ(replace("file", "our file 2\n"), "");
    EXPECT_EQ(contentOf(path("file")), "our file 2\n");
    write("file", "");
    EXPECT_EQ(replace("file", "our file 3\n"), "");
    EXPECT_EQ(contentOf(path("file")), "our file 3\n");
    EXPECT_FALSE(fs::exists(path("file.new")));
}

TEST_F(ReplacedFileTest, IsNeverReplacedIfItIsOfAnotherKind)
{
    const std::string whole = "': name another file, or remove it";
    for (const std::string& foreign : {std::string("SQLite format 3"), std::string("o "), std::string("\n"),
                                       std::string("\0o", 2), std::string("Our file 1\n")}) {
        write("file", foreign);
        const std::string reason = "' is not replaced, because it does not begin with 'our file " + whole;

        EXPECT_EQ(replace("file"), "'" + path("file") + reason);
        EXPECT_EQ(contentOf(path("file")), foreign);

        fs::rename(path("file"), path("other.new"));
        EXPECT_EQ(replace("other"), "'" + path("other.new") + reason) << "it is written there first";
        EXPECT_EQ(contentOf(path("other.new")), foreign);
    }
}

TEST_F(ReplacedFileTest, IsReplacedIfAPowerFailureLeftOnlyNulsInIt)
{
    write("file", std::string(100, '\0'));
    write("file.new", std::string(5000, '\0'));
    EXPECT_EQ(replace("file", "our file 2\n"), "");
    EXPECT_EQ(contentOf(path("file")), "our file 2\n");

    const std::string foreign = std::string(5000, '\0') + "x";
    write("file", foreign);
    EXPECT_NE(replace("file"), "");
    EXPECT_EQ(contentOf(path("file")), foreign);
}

TEST_F(ReplacedFileTest, IsNeverReplacedIfItCannotBeRead)
{
    // A regular file whose first bytes cannot be read.
    EXPECT_EQ(errorOf([] { requireReplaceable("/proc/self/mem", "our file "); }),
              "cannot read '/proc/self/mem': Input/output error");
}

TEST_F(ReplacedFileTest, IsNeverReplacedIfItIsAPipeAFolderOrADevice)
{
    const std::string reason = "' is not a regular file, and is not replaced: name another one";
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    fs::create_directory(path("folder"));
    fs::create_symlink("/dev/null", path("device"));

    for (const char* const name : {"pipe", "folder", "device"}) {
        EXPECT_EQ(replace(name), "'" + path(name) + reason);
    }
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
    EXPECT_TRUE(fs::is_directory(path("folder")));
    EXPECT_TRUE(fs::is_symlink(path("device")));
}

TEST_F(ReplacedFileTest, IsReplacedWhereALinkLeads)
{
    fs::create_directory(path("folder"));
    fs::create_symlink("folder/target", path("link"));
    for (const char* const text : {"our file 1\n", "our file 2\n"}) {
        EXPECT_EQ(replace("link", text), "");
        EXPECT_TRUE(fs::is_symlink(path("link")));
        EXPECT_EQ(contentOf(path("folder/target")), text);
    }
    write("folder/target", "foreign");

    EXPECT_NE(replace("link"), "");
    EXPECT_EQ(contentOf(path("folder/target")), "foreign");
}

TEST_F(ReplacedFileTest, ReplacesTheRemainsOfAKill)
{
    write("file.new", "our fi");

    EXPECT_EQ(replace("file"), "");
    EXPECT_FALSE(fs::exists(path("file.new")));
}

TEST_F(ReplacedFileTest, StaysAndLeavesNothingBehindIfItCannotBeWritten)
{
    write("file", "our file 1\n");
    const std::string large(1U << 20U, 'x');
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{4096, before.rlim_max};
    ::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string fault = replace("file", START + large);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    ::signal(SIGXFSZ, SIG_DFL);

    EXPECT_EQ(fault, "cannot write '" + path("file") + "': File too large");
    EXPECT_EQ(contentOf(path("file")), "our file 1\n");
    EXPECT_FALSE(fs::exists(path("file.new"))) << "a full disk needs the room";
    EXPECT_EQ(replace("nowhere/file"), "cannot write '" + path("nowhere/file") + "': No such file or directory");
}

std::string sameFiles(const std::string& one, const std::string& other)
{
    return errorOf([&] { requireDistinct({{"--one", one}, {"--other", other}}); });
}

TEST_F(ReplacedFileTest, TwoNamesOfOneFileAreFoundWhateverLeadsThere)
{
    fs::create_directory(path("folder"));
    fs::create_symlink(path("folder"), path("way"));
    write("file", "");
    fs::create_hard_link(path("file"), path("twin"));
    fs::create_symlink("file", path("link"));
    fs::create_symlink("missing", path("dangling"));
    const std::pair<std::string, std::string> cases[] = {
        {"file", "file"},        {"file", "./file"},        {"file", "folder/../file"},
        {"file", "twin"},        {"file", "link"},          {"missing", "missing"},
        {"missing", "dangling"}, {"folder/new", "way/new"}, {"missing", "./missing"},
    };
    for (const auto& [one, other] : cases) {
        EXPECT_EQ(sameFiles(path(one), path(other)), "--one '" + path(one) + "' and --other '" + path(other) +
                                                         "' are the same file: give each a file of its own");
    }
    EXPECT_EQ(sameFiles(path("file"), path("missing")), "");
    EXPECT_EQ(sameFiles(path("missing"), path("folder/missing")), "");
    EXPECT_EQ(sameFiles("/nowhere/file", "/nowhere/other"), "");
}

TEST_F(ReplacedFileTest, IsFoundThroughUpTo40Links)
{
    write("file", "");
    fs::create_symlink("file", path("link1"));
    for (int i = 2; i <= 41; ++i) {
        fs::create_symlink("link" + std::to_string(i - 1), path("link" + std::to_string(i)));
    }
    EXPECT_EQ(resolvedPath(path("link40")), path("file"));
    EXPECT_EQ(resolvedPath(path("link41")), path("link1"));
}

}  // namespace

}  // namespace brantel
