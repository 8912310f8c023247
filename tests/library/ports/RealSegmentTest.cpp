// The slot/link operations against the system's own shared memory: nothing is replaced.

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <system_error>

#include <sched.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include "NpuDataPortsConfiguration.h"
#include "support/Diagnostics.h"

namespace {

constexpr key_t KEY = 5678;
constexpr std::size_t SIZE = 12;

// A segment as the node's other process makes it; gone with the object.
class Segment {
public:
    Segment() : m_id(shmget(KEY, SIZE, IPC_CREAT | IPC_EXCL | 0666))
    {
        if (m_id < 0) {
            throw std::system_error(errno, std::generic_category(), "shmget");
        }
        m_pWords = static_cast<volatile std::uint32_t*>(shmat(m_id, nullptr, 0));
    }
    ~Segment()
    {
        shmdt(const_cast<std::uint32_t*>(m_pWords));
        shmctl(m_id, IPC_RMID, nullptr);
    }
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    void publish(std::uint32_t backplaneType)
    {
        m_pWords[1] = backplaneType;
        m_pWords[0] = 1;
    }

    shmatt_t nAttached() const
    {
        shmid_ds state{};
        shmctl(m_id, IPC_STAT, &state);
        return state.shm_nattch;
    }

private:
    int m_id;
    volatile std::uint32_t* m_pWords;
};

class RealSegment : public DiagnosticsTest {
protected:
    void SetUp() override
    {
        // The test has its own shared memory, if permitted.
        static const int ownSharedMemory = unshare(CLONE_NEWIPC);
        static_cast<void>(ownSharedMemory);
        if (shmget(KEY, 0, 0) >= 0 || errno != ENOENT) {
            GTEST_SKIP() << "another program's segment has key 5678 (ipcs -m shows it, ipcrm -M 5678 removes it)";
        }
    }

    const DefaultKatanaDataPortsConfig m_ports{};
};

TEST_F(RealSegment, IsReadAtEachCallAndDetachedAgain)
{
    EXPECT_EQ(m_ports.getDcnVlanNumber(7, 0), 4056U) << "type 0, there is no segment";
    EXPECT_EQ(m_diagnostics.take().size(), 2U);
    {
        Segment segment;
        EXPECT_EQ(m_ports.getDcnVlanNumber(7, 0), 4056U) << "type 0, the segment is not valid";
        EXPECT_EQ(m_diagnostics.take().size(), 2U);

        segment.publish(3);
        EXPECT_EQ(m_ports.getDcnVlanNumber(7, 0), 4051U);
        EXPECT_TRUE(m_ports.hasNpuPortForSlotLink(2, 4));

        segment.publish(1);
        EXPECT_FALSE(m_ports.hasNpuPortForSlotLink(2, 4));
        EXPECT_EQ(m_ports.getMaxBandwidth(0, 0), 1000000U);

        EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
        EXPECT_EQ(segment.nAttached(), 1U) << "only the writer's";
    }
    EXPECT_EQ(m_ports.getDcnVlanNumber(7, 0), 4056U) << "type 0, the segment is gone";
    EXPECT_EQ(m_diagnostics.take().size(), 2U);
}

}  // namespace
