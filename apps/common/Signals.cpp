#include "common/Signals.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace brantel {
namespace {

constexpr int STOP_SIGNALS[] = {SIGINT, SIGTERM};

std::function<void()> stopFunction;
volatile std::sig_atomic_t noticeWriteEnd = -1;

void callStopFunction(int)
{
    stopFunction();
}

void noteSignal(int)
{
    const int error = errno;
    static_cast<void>(!::write(noticeWriteEnd, "", 1));  // the pipe is empty: there is room
    errno = error;
}

void handleOnce(int signal, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags | static_cast<int>(SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal)
{
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

[[noreturn]] void throwCannotWait()
{
    throw CommandError("cannot wait for signals: " + std::generic_category().message(errno));
}

}  // namespace

StopOnSignals::StopOnSignals(std::function<void()> stop)
{
    stopFunction = std::move(stop);
    for (const int signal : STOP_SIGNALS) {
        handleOnce(signal, callStopFunction, 0);
    }
}

StopOnSignals::~StopOnSignals()
{
    for (const int signal : STOP_SIGNALS) {
        handleOnce(signal, SIG_DFL, 0);
    }
}

StopNotice::StopNotice()
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        throwCannotWait();
    }
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    noticeWriteEnd = ends[1];
    for (const int signal : STOP_SIGNALS) {
        if (!isIgnored(signal)) {
            handleOnce(signal, noteSignal, SA_RESTART);
        }
    }
}

StopNotice::~StopNotice()
{
    for (const int signal : STOP_SIGNALS) {
        if (!isIgnored(signal)) {
            handleOnce(signal, SIG_DFL, 0);
        }
    }
}

SignalQueue::SignalQueue()
{
    sigset_t taken;
    ::sigemptyset(&taken);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) {
        ::sigaddset(&taken, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &taken, &m_before);
    m_file = FileDescriptor(::signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK));
    if (m_file.number() < 0) {
        throwCannotWait();
    }
}

SignalQueue::~SignalQueue()
{
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

std::optional<int> SignalQueue::next() const
{
    signalfd_siginfo info = {};
    return (::read(m_file.number(), &info, sizeof info) == sizeof info)
               ? std::optional(static_cast<int>(info.ssi_signo))
               : std::nullopt;
}

}  // namespace brantel
