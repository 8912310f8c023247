#include "common/StandardStreams.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace brantel {

void occupyClosedStandardStreams()
{
    // In rising order: a file that is opened gets the lowest number that is free.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const bool isClosed = (fcntl(stream, F_GETFD) < 0);
        // With O_PATH it is opened for neither reading nor writing, and there is a root directory even without /dev.
        if (isClosed && (::open("/", O_PATH) != stream)) {
            throw CommandError("cannot take the place of a closed standard stream: " +
                               std::generic_category().message(errno));
        }
    }
}

}  // namespace brantel
