#include "common/FileDescriptor.h"

#include <cerrno>

#include <poll.h>

namespace brantel {

int writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {  // another process made the shared descriptor non-blocking
            pollfd writable{file, POLLOUT, 0};
            static_cast<void>(::poll(&writable, 1, -1));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace brantel
