#include "monitor/EventOutput.h"

#include <syslog.h>

namespace {

int priorityOf(EventKind kind)
{
    switch (kind) {
        case EventKind::RAISED: return LOG_WARNING;
        case EventKind::CLEARED:
        case EventKind::ANSWERS: return LOG_NOTICE;
        case EventKind::FAILED:
        case EventKind::REFUSED: return LOG_ERR;
    }
    return LOG_NOTICE;
}

}  // namespace

void SyslogOutput::tell(const Event& event, const std::string&)
{
    syslog(priorityOf(event.kind), "event %llu: %s", static_cast<unsigned long long>(event.number),
           sentenceOf(event).c_str());
}

void LineOutput::tell(const Event& event, const std::string& line)
{
    m_output.writeLine(
        m_isJson ? line : timeText(event.time) + "  " + m_output.coloured(colourOf(event.kind), sentenceOf(event)));
    m_output.finish();
}

Colour colourOf(EventKind kind)
{
    const bool isGood = (kind == EventKind::CLEARED) || (kind == EventKind::ANSWERS);
    return isGood ? Colour::GREEN : Colour::RED;
}
