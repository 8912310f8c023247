// Times each slot/link operation against a real segment, and next to it the bare shmget, shmat and shmdt calls
// that the operation must make. Fails if an operation costs more than 5 % above them.
//
//     ports_benchmark [batches]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>

#include <sched.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include "NpuDataPortsConfiguration.h"
#include "SideBySide.h"

namespace {

constexpr key_t KEY = 5678;
constexpr std::size_t SIZE = 12;
constexpr int CALLS_PER_BATCH = 200;
constexpr double ALLOWED_RATIO = 1.05;

// A valid segment of backplane type 0.
class Segment {
public:
    Segment() : m_id(shmget(KEY, SIZE, IPC_CREAT | IPC_EXCL | 0666))
    {
        if (m_id < 0) {
            throw std::runtime_error("cannot create the segment with key 5678; is another program's there (ipcs -m)?");
        }
        void* const pSegment = shmat(m_id, nullptr, 0);
        *static_cast<std::uint32_t*>(pSegment) = 1;
        shmdt(pSegment);
    }
    ~Segment() { shmctl(m_id, IPC_RMID, nullptr); }
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

private:
    int m_id;
};

volatile std::uint32_t sink;

void readSegment(int count)
{
    for (int i = 0; i < count; ++i) {
        void* const pSegment = shmat(shmget(KEY, SIZE, 0666), nullptr, 0);
        sink = *static_cast<const volatile std::uint32_t*>(pSegment);
        shmdt(pSegment);
    }
}

// True if the operation costs little more than its segment calls.
bool compare(const char* name, int nReads, int nBatches, const std::function<void()>& operation)
{
    const SideBySide result =
        measureSideBySide(nBatches, CALLS_PER_BATCH, operation, [nReads] { readSegment(nReads); });
    printSideBySide(name, result);
    return result.ratio() <= ALLOWED_RATIO;
}

}  // namespace

int main(int argc, char** argv)
{
    const int nBatches = (argc > 1) ? std::max(1, std::atoi(argv[1])) : 500;
    unshare(CLONE_NEWIPC);  // with its own shared memory, if permitted
    try {
        const Segment segment;
        const DefaultKatanaDataPortsConfig ports;
        bool isCheap = compare("hasNpuPortForSlotLink", 5, nBatches, [&] { sink = ports.hasNpuPortForSlotLink(0, 0); });
        isCheap &= compare("getMaxBandwidth", 4, nBatches, [&] { sink = ports.getMaxBandwidth(0, 0); });
        isCheap &= compare("getDcnVlanNumber", 4, nBatches, [&] { sink = ports.getDcnVlanNumber(0, 0); });
        return isCheap ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ports_benchmark: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
