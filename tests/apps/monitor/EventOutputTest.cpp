#include "monitor/EventOutput.h"

#include <syslog.h>

#include <gtest/gtest.h>

#include "support/Diagnostics.h"

namespace brantel {
namespace {

// A line of syslog as it is captured.
std::string line(int priority, const std::string& text)
{
    return std::to_string(priority) + " event %llu: %s => " + text;
}

class SyslogOutputTest : public DiagnosticsTest {};

TEST_F(SyslogOutputTest, ReportsEachKindWithItsPriority)
{
    const std::pair<EventKind, std::string> cases[] = {
        {EventKind::RAISED, line(LOG_WARNING, "event 7: slot 3 raised: some reason")},
        {EventKind::CLEARED, line(LOG_NOTICE, "event 7: slot 3 cleared: some reason")},
        {EventKind::FAILED, line(LOG_ERR, "event 7: slot 3 failed: some reason")},
        {EventKind::RECOVERED, line(LOG_NOTICE, "event 7: slot 3 recovered: some reason")},
        {EventKind::REFUSED, line(LOG_ERR, "event 7: slot 3 refused: some reason")},
        {EventKind::LOST, line(LOG_ERR, "event 7: slot 3 lost: some reason")},
    };

    for (const auto& [kind, reported] : cases) {
        Event event;
        event.number = 7;
        event.kind = kind;
        event.place = slotPlace(3);
        event.reason = "some reason";
        SyslogOutput().report(event);

        EXPECT_EQ(m_diagnostics.take(), (Diagnostics{reported}));
    }
}

TEST_F(SyslogOutputTest, WritesOneLineWhateverTheEventHolds)
{
    Event event;
    event.number = UINT64_MAX;
    event.reason = "100 %s\nof it";
    SyslogOutput().report(event);

    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{line(LOG_WARNING, "event 18446744073709551615: raised: 100 %s?of it")}));
}

}  // namespace

}  // namespace brantel
