#ifndef APPS_CARDS_STOP_ON_SIGNALS_H
#define APPS_CARDS_STOP_ON_SIGNALS_H

// While one lives, SIGINT and SIGTERM stop a component. One at a time.

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
