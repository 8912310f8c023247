#include "monitor/Signals.h"

#include <cerrno>
#include <system_error>

#include <sys/signalfd.h>
#include <unistd.h>

#include "common/CommandLine.h"

Signals::Signals()
{
    sigset_t taken;
    ::sigemptyset(&taken);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) {
        ::sigaddset(&taken, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &taken, &m_before);
    m_file = ::signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_file < 0) {
        throw CommandError("cannot wait for signals: " + std::generic_category().message(errno));
    }
}

Signals::~Signals()
{
    ::close(m_file);
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

std::optional<int> Signals::next() const
{
    signalfd_siginfo info = {};
    return (::read(m_file, &info, sizeof info) == sizeof info) ? std::optional(static_cast<int>(info.ssi_signo))
                                                               : std::nullopt;
}
