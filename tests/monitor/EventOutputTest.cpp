#include "monitor/EventOutput.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include "support/Diagnostics.h"

namespace {

// A line of syslog as it is captured.
std::string line(int priority, const std::string& text)
{
    return std::to_string(priority) + " event %llu: %s => " + text;
}

class SyslogOutputTest : public DiagnosticsTest {};

TEST_F(SyslogOutputTest, TellsOfEachKindWithItsPriority)
{
    const std::pair<EventKind, std::string> cases[] = {
        {EventKind::RAISED, line(LOG_WARNING, "event 7: slot 3 raised: some reason")},
        {EventKind::CLEARED, line(LOG_NOTICE, "event 7: slot 3 cleared: some reason")},
        {EventKind::FAILED, line(LOG_ERR, "event 7: slot 3 failed: some reason")},
        {EventKind::ANSWERS, line(LOG_NOTICE, "event 7: slot 3 answers: some reason")},
        {EventKind::REFUSED, line(LOG_ERR, "event 7: slot 3 refused: some reason")},
    };

    for (const auto& [kind, told] : cases) {
        Event event;
        event.number = 7;
        event.kind = kind;
        event.place = slotPlace(3);
        event.why = "some reason";
        SyslogOutput().tell(event, "");

        EXPECT_EQ(m_diagnostics.take(), (Diagnostics{told}));
    }
}

TEST_F(SyslogOutputTest, TellsInOneLineWhateverTheEventHolds)
{
    Event event;
    event.number = UINT64_MAX;
    event.why = "100 %s\nof it";
    SyslogOutput().tell(event, "");

    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{line(LOG_WARNING, "event 18446744073709551615: raised: 100 %s?of it")}));
}

}  // namespace
