#ifndef APPS_MONITOR_EVENT_OUTPUT_H
#define APPS_MONITOR_EVENT_OUTPUT_H

// Where events are reported apart from the journal: in syslog and on standard output.

#include "common/OutputQueue.h"
#include "common/ResultOutput.h"
#include "monitor/Event.h"

namespace brantel {

class EventOutput {
public:
    virtual ~EventOutput() = default;

    virtual void report(const Event& event) = 0;
};

/// Writes a line to syslog for each event, with a priority by kind.
class SyslogOutput : public EventOutput {
public:
    void report(const Event& event) override;
};

/// Writes a line to standard output for each event: for people, or as JSON.
class LineOutput : public EventOutput {
public:
    LineOutput(OutputQueue& output, bool isJson) : m_output(output), m_isJson(isJson) {}

    void report(const Event& event) override;

private:
    OutputQueue& m_output;
    const bool m_isJson;
    const ResultOutput m_colours;
};

/// The colour that shows the kind of an event.
Colour colourOf(EventKind kind);

}  // namespace brantel

#endif
