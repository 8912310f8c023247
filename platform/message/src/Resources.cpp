#include "Resources.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include "SignalsBlocked.h"
#include "SystemError.h"

namespace obmessage {
namespace {

// More are not counted: a process that may open that many has some left.
constexpr rlim_t MOST_LOOKED_AT = 4096;

}  // namespace

// Opening some to see whether it works would take them away from other threads for a moment.
void requireDescriptors(std::size_t count)
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur > MOST_LOOKED_AT) {
        return;
    }
    std::vector<pollfd> descriptors(static_cast<std::size_t>(limit.rlim_cur));
    for (std::size_t i = 0; i < descriptors.size(); ++i) {
        descriptors[i].fd = static_cast<int>(i);
    }
    ::poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), 0);
    const auto isFree = [](const pollfd& descriptor) { return (descriptor.revents & POLLNVAL) != 0; };
    const auto nFree = static_cast<std::size_t>(std::count_if(descriptors.begin(), descriptors.end(), isFree));
    if (nFree < count) {
        throw std::runtime_error("too many open files: " + std::to_string(count) + " more are needed, and " +
                                 std::to_string(nFree) + " of " + std::to_string(limit.rlim_cur) +
                                 " are left (ulimit -n)");
    }
}

void requireMemory(std::size_t size)
{
    void* const pMemory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pMemory == MAP_FAILED) {
        throwSystemError("there is no memory for the message framework");
    }
    ::munmap(pMemory, size);
}

// Starts them, all at once, and ends them. The C library keeps their stacks for the next threads.
void requireThreads(std::size_t count)
{
    const SignalsBlocked signalsBlocked;
    std::mutex mutex;
    std::unique_lock<std::mutex> isStarting(mutex);
    std::vector<std::thread> threads;
    threads.reserve(count);
    std::optional<int> error;
    try {
        while (threads.size() < count) {
            threads.emplace_back([&mutex] { const std::lock_guard<std::mutex> untilAllAreStarted(mutex); });
        }
    } catch (const std::system_error& refusal) {
        error = refusal.code().value();
    }
    isStarting.unlock();
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (error) {
        throwSystemError("cannot start the threads of the message framework", *error);
    }
}

}  // namespace obmessage
