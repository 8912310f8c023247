#ifndef APPS_MONITOR_EVENT_OUTPUT_H
#define APPS_MONITOR_EVENT_OUTPUT_H

// Where events are told besides the journal: in syslog and on standard output.

#include <string>

#include "common/ResultOutput.h"
#include "monitor/Event.h"

class EventOutput {
public:
    virtual ~EventOutput() = default;

    /// `line` is the event as a JSON line.
    virtual void tell(const Event& event, const std::string& line) = 0;
};

/// A line of syslog for each event, with a priority that says how bad it is.
class SyslogOutput : public EventOutput {
public:
    void tell(const Event& event, const std::string& line) override;
};

/// A line of standard output for each event: for people, or as JSON.
class LineOutput : public EventOutput {
public:
    explicit LineOutput(bool isJson) : m_isJson(isJson) {}

    void tell(const Event& event, const std::string& line) override;

private:
    const bool m_isJson;
    ResultOutput m_output;
};

/// The colour that shows the kind of an event.
Colour colourOf(EventKind kind);

#endif
