#ifndef APPS_CARDS_STOP_ON_SIGNALS_H
#define APPS_CARDS_STOP_ON_SIGNALS_H

// While one lives, the first SIGINT or SIGTERM stops a component, and the next of its kind ends the process: a
// component that is waiting in a call cannot stop at once. One at a time.

#include "message/OBcomponent.h"

class StopOnSignals {
public:
    /// `component` must outlive this.
    explicit StopOnSignals(OBcomponent& component);
    ~StopOnSignals();
    StopOnSignals(const StopOnSignals&) = delete;
    StopOnSignals& operator=(const StopOnSignals&) = delete;
};

#endif
