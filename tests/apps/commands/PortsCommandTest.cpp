// "brantel ports" and "brantel backplane", end-to-end, as invoked from a shell.

#include <cerrno>

#include <sched.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <gtest/gtest.h>

#include "support/CommandRun.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

CommandResult brantel(const Arguments& arguments)
{
    return runProgram(BRANTEL_COMMAND, arguments);
}

std::string firstLine(const CommandResult& result)
{
    return result.out.substr(0, result.out.find('\n'));
}

constexpr key_t KEY = 5678;

// Runs only if there is no segment; removes the one that the test leaves.
class BackplaneCommand : public testing::Test {
protected:
    void SetUp() override
    {
        // Where it may, the test has shared memory of its own.
        static const int ownSharedMemory = unshare(CLONE_NEWIPC);
        static_cast<void>(ownSharedMemory);
        if ((shmget(KEY, 0, 0) >= 0) || (errno != ENOENT)) {
            GTEST_SKIP() << "another program's segment has key 5678 (ipcs -m shows it, ipcrm -M 5678 removes it)";
        }
        m_isOwner = true;
    }
    void TearDown() override
    {
        if (m_isOwner) {
            brantel({"backplane", "clear"});
        }
    }

    // Fills the segment without the command.
    static void fill(std::size_t size, const std::vector<std::uint32_t>& words)
    {
        const int id = shmget(KEY, size, IPC_CREAT | 0666);
        auto* const pWords = static_cast<std::uint32_t*>(shmat(id, nullptr, 0));
        std::copy(words.begin(), words.end(), pWords);
        shmdt(pWords);
    }

private:
    bool m_isOwner = false;
};

TEST_F(BackplaneCommand, PublishesAndClears)
{
    EXPECT_EQ(brantel({"backplane", "show"}), (CommandResult{1, "there is no segment\n", ""}));
    EXPECT_EQ(brantel({"backplane", "publish", "3"}), (CommandResult{0, "backplane type 3 is published\n", ""}));
    EXPECT_EQ(brantel({"backplane", "show"}), (CommandResult{0, "the segment names type 3\n", ""}));
    EXPECT_EQ(brantel({"backplane", "publish", "1"}), (CommandResult{0, "backplane type 1 is published\n", ""}));
    EXPECT_EQ(
        brantel({"backplane", "show", "--json"}),
        (CommandResult{0, "{\"state\":\"segment\",\"backplane_type\":1,\"words\":[1,1,0],\"attached\":0}\n", ""}));
    EXPECT_EQ(brantel({"backplane", "clear"}), (CommandResult{0, "the segment is removed\n", ""}));
    EXPECT_EQ(brantel({"backplane", "clear"}), (CommandResult{1, "there is no segment\n", ""}));
}

TEST_F(BackplaneCommand, MakesASegmentThatAnyUserMayReadAndWrite)
{
    brantel({"backplane", "publish", "2"});
    shmid_ds status{};
    ASSERT_EQ(shmctl(shmget(KEY, 12, 0666), IPC_STAT, &status), 0);
    EXPECT_EQ(status.shm_segsz, 12U);
    EXPECT_EQ(status.shm_perm.mode & 0777U, 0666U);
}

TEST_F(BackplaneCommand, ShowsTheSourceOfTheType)
{
    EXPECT_EQ(firstLine(brantel({"ports"})), "Backplane type 0, assumed: there is no segment");
    fill(12, {0, 3, 0});
    EXPECT_EQ(firstLine(brantel({"ports"})), "Backplane type 0, assumed: the segment is not yet valid");
    EXPECT_EQ(brantel({"backplane", "show"}), (CommandResult{1, "the segment is not yet valid\n", ""}));
    fill(12, {1, 5, 0});
    EXPECT_EQ(firstLine(brantel({"ports"})), "Backplane type 0, assumed: the segment names the unknown type 5");
    fill(12, {1, 3, 0});
    EXPECT_EQ(firstLine(brantel({"ports"})), "Backplane type 3, read from the segment");
    EXPECT_EQ(firstLine(brantel({"ports", "--backplane", "2"})), "Backplane type 2, as requested");
}

TEST_F(BackplaneCommand, ShowsWhyASegmentIsUnusable)
{
    fill(4, {1});
    const std::string reason = "it is smaller than 12 bytes; 'brantel backplane clear' removes it";
    EXPECT_EQ(brantel({"backplane", "show"}),
              (CommandResult{2, "", "brantel: the segment is unusable: " + reason + "\n"}));
    EXPECT_EQ(brantel({"backplane", "show", "--json"}),
              (CommandResult{2,
                             R"({"state":"unusable","reason":")" + reason +
                                 "\",\"backplane_type\":null,\"words\":[0,0,0],\"attached\":0}\n",
                             ""}));
    EXPECT_EQ(firstLine(brantel({"ports"})), "Backplane type 0, assumed: the segment is unusable: " + reason);
    EXPECT_EQ(brantel({"ports", "--json"})
                  .out.rfind(R"({"backplane_type":0,"source":"unusable","reason":")" + reason + "\",", 0),
              0U);
    EXPECT_EQ(brantel({"backplane", "publish", "1"}),
              (CommandResult{2, "", "brantel: cannot create the segment with key 5678: " + reason + "\n"}));
    EXPECT_EQ(brantel({"backplane", "clear"}), (CommandResult{0, "the segment is removed\n", ""}));
}

TEST(PortsCommand, ShowsATable)
{
    EXPECT_EQ(brantel({"ports", "--backplane", "2"}), (CommandResult{0,
                                                                     "Backplane type 2, as requested\n"
                                                                     "Slot  Link  NPU port  Max bandwidth  DCN VLAN\n"
                                                                     "   0     0         8        1000000      4039\n"
                                                                     "   0     1         9        1000000      4040\n"
                                                                     "   0     2        10        1000000      4041\n"
                                                                     "   0     3        11        1000000      4042\n"
                                                                     "   1     0        12        1000000      4043\n"
                                                                     "   1     1        13        1000000      4044\n"
                                                                     "   1     2        14        1000000      4045\n"
                                                                     "   1     3        15        1000000      4046\n"
                                                                     "   2     0        16        1000000      4047\n"
                                                                     "   2     1        17        1000000      4048\n"
                                                                     "   2     2        18        1000000      4049\n"
                                                                     "   2     3        19        1000000      4050\n"
                                                                     "   3     0        20        1000000      4051\n"
                                                                     "   3     1        21        1000000      4052\n"
                                                                     "   3     2        22        1000000      4053\n"
                                                                     "   3     3        23        1000000      4054\n"
                                                                     "   4     0        28       10000000      4059\n"
                                                                     "   5     0        27       10000000      4058\n",
                                                                     ""}));
}

TEST(PortsCommand, ShowsSlotsWithoutLinksAndLinksWithoutPorts)
{
    const std::string out = brantel({"ports", "--backplane", "3"}).out;
    EXPECT_NE(out.find("\n   3     -         -              -         -\n"), std::string::npos) << out;
    EXPECT_NE(out.find("\n   9     3         -              -         -\n"), std::string::npos) << out;
}

TEST(PortsCommand, PrintsJson)
{
    const std::string out = brantel({"ports", "--backplane", "3", "--json"}).out;
    EXPECT_EQ(
        out.rfind(R"({"backplane_type":3,"source":"option","dcn_mpls_label":1000,"slots":[{"slot":0,"links":[)", 0), 0U)
        << out;
    EXPECT_NE(out.find(R"({"slot":3,"links":[]},{"slot":4,"links":[{"link":0,"npu_port":28,"max_bandwidth":10000000,)"
                       R"("dcn_vlan":4059}]})"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find(R"({"link":3,"npu_port":null,"max_bandwidth":null,"dcn_vlan":null}]}]})"), std::string::npos)
        << out;
}

TEST(PortsCommand, ExplainsWrongArguments)
{
    const auto misused = [](const std::string& err) {
        return CommandResult{2, "", "brantel: " + err + "\nRun with --help for more information.\n"};
    };
    EXPECT_EQ(brantel({"ports", "--backplane", "5"}),
              misused("--backplane: '5' is not a number from 0 to 4 (decimal or 0x)"));
    EXPECT_EQ(brantel({"ports", "--json", "--svg"}), misused("--json excludes --svg"));
    EXPECT_EQ(brantel({"backplane"}),
              misused("a subcommand of 'brantel backplane' is missing; expected publish, clear or show"));
    EXPECT_EQ(brantel({"backplane", "publish"}), misused("N is required"));
    EXPECT_EQ(brantel({"backplane", "publish", "5"}), misused("N: '5' is not a number from 0 to 4 (decimal or 0x)"));
}

}  // namespace

}  // namespace brantel
