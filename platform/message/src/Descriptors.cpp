#include "Descriptors.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/resource.h>

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

}  // namespace obmessage
