#include "monitor/EventOutput.h"

#include <syslog.h>

namespace brantel {
namespace {

int priorityOf(EventKind kind)
{
    switch (kind) {
        case EventKind::RAISED: return LOG_WARNING;
        case EventKind::CLEARED:
        case EventKind::RECOVERED: return LOG_NOTICE;
        case EventKind::FAILED:
        case EventKind::REFUSED:
        case EventKind::LOST: return LOG_ERR;
    }
    return LOG_NOTICE;
}

}  // namespace

void SyslogOutput::report(const Event& event)
{
    syslog(priorityOf(event.kind), "event %llu: %s", static_cast<unsigned long long>(event.number),
           eventText(event).c_str());
}

void LineOutput::report(const Event& event)
{
    const std::string text =
        m_isJson ? eventJson(event)
                 : utcTimeText(event.time) + "  " + m_colours.coloured(colourOf(event.kind), eventText(event));
    m_output.put({text + "\n"});
}

Colour colourOf(EventKind kind)
{
    const bool isGood = (kind == EventKind::CLEARED) || (kind == EventKind::RECOVERED);
    return isGood ? Colour::GREEN : Colour::RED;
}

}  // namespace brantel
