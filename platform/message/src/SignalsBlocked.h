#ifndef MESSAGE_SIGNALS_BLOCKED_H
#define MESSAGE_SIGNALS_BLOCKED_H

#include <csignal>

namespace obmessage {

/// While one lives, no signal is delivered to this thread and to those that it starts: the program's signals are for
/// the program's own threads.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

}  // namespace obmessage

#endif
