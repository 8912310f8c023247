#include "cards/StopOnSignals.h"

#include <csignal>

namespace {

constexpr int SIGNALS[] = {SIGINT, SIGTERM};

OBcomponent* pComponentToStop = nullptr;

void stopComponent(int)
{
    pComponentToStop->stop();
}

void handleSignals(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : SIGNALS) {
        ::sigaction(signal, &action, nullptr);
    }
}

}  // namespace

StopOnSignals::StopOnSignals(OBcomponent& component)
{
    pComponentToStop = &component;
    handleSignals(stopComponent);
}

StopOnSignals::~StopOnSignals()
{
    handleSignals(SIG_DFL);
}
