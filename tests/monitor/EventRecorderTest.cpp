#include "monitor/EventRecorder.h"

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "monitor/Monitored.h"
#include "support/TemporaryDirectory.h"

namespace {

const Place SLOT_3 = slotPlace(3);

// Notes what it is told.
class NotingOutput : public EventOutput {
public:
    explicit NotingOutput(std::vector<std::string>& lines) : m_lines(lines) {}

    void tell(const Event&, const std::string& line) override { m_lines.push_back(line); }

private:
    std::vector<std::string>& m_lines;
};

class EventRecorderTest : public testing::Test {
protected:
    std::string journal() const { return m_directory.path() + "/journal"; }
    std::string state() const { return m_directory.path() + "/state"; }
    const TemporaryDirectory& directory() const { return m_directory; }

    std::vector<std::string> numbersInJournal() const
    {
        std::vector<std::string> numbers;
        const std::string text = contentOf(journal());
        for (std::size_t pos = text.find("{\"event\":"); pos != std::string::npos;
             pos = text.find("{\"event\":", pos + 1)) {
            numbers.push_back(text.substr(pos + 9, text.find(',', pos) - pos - 9));
        }
        return numbers;
    }

    /// What a monitor does with each of these samples of one object.
    static void monitorSamples(EventRecorder& recorder, ConditionMonitor& monitor, const std::vector<int>& samples)
    {
        ConditionMonitor::Events events;
        monitor.follow(bookOf({{SLOT_3, 5, ABOVE_90}}), NOON, events);
        for (const int sample : samples) {
            monitor.takeReading(SLOT_3, readingOf({{5, sample}}), NOON, events);
            recorder.record(events, monitor);
            events.clear();
        }
    }

private:
    TemporaryDirectory m_directory;
};

using Numbers = std::vector<std::string>;

TEST_F(EventRecorderTest, NumbersEventsOverRestarts)
{
    for (int run = 0; run < 2; ++run) {
        EventRecorder recorder(journal(), state());
        ConditionMonitor monitor;
        recorder.restore(monitor);
        monitorSamples(recorder, monitor, {95, 95, 80});
        recorder.finish(monitor);
    }

    EXPECT_EQ(numbersInJournal(), (Numbers{"1", "2", "3", "4"}));
}

TEST_F(EventRecorderTest, RaisesNothingAgainThatWasRaisedBeforeTheRestart)
{
    for (int run = 0; run < 2; ++run) {
        EventRecorder recorder(journal(), state());
        ConditionMonitor monitor;
        recorder.restore(monitor);
        monitorSamples(recorder, monitor, {95});
    }

    EXPECT_EQ(numbersInJournal(), (Numbers{"1"}));
}

TEST_F(EventRecorderTest, TellsOfARefusedRowOverRestartsOnceAsLongAsItStaysAsItIs)
{
    const RefusedRow row{"IfcCardsAllowEventsTable", 9, "Rule: no rule"};
    const RefusedRow changedRow{"IfcCardsAllowEventsTable", 9, "OID: not a number"};
    const std::vector<RefusedRow> rows[] = {{row}, {row}, {changedRow}, {}, {changedRow}};
    std::vector<std::size_t> told;
    for (const std::vector<RefusedRow>& refused : rows) {
        EventRecorder recorder(journal(), state());
        ConditionMonitor monitor;
        recorder.restore(monitor);
        RuleBook book;
        book.refusedRows.insert(refused.begin(), refused.end());
        ConditionMonitor::Events events;
        monitor.follow(book, NOON, events);
        recorder.record(events, monitor);
        told.push_back(numbersInJournal().size());
    }

    EXPECT_EQ(told, (std::vector<std::size_t>{1, 1, 2, 2, 3})) << "as often as one monitor would tell of it";
}

TEST_F(EventRecorderTest, AddsTheEventsOfTheStateThatTheJournalLacks)
{
    {
        EventRecorder recorder(journal(), state());
        ConditionMonitor monitor;
        recorder.restore(monitor);
        monitorSamples(recorder, monitor, {95, 80});
    }
    // As after a kill between the state of the second event and its line.
    const std::string whole = contentOf(journal());
    const std::size_t endOfFirst = whole.find('\n') + 1;
    for (const std::string& left : {whole.substr(0, endOfFirst), whole.substr(0, endOfFirst + 50), whole}) {
        directory().write("journal", left);
        std::vector<std::string> told;
        EventRecorder recorder(journal(), state());
        recorder.addOutput(std::make_unique<NotingOutput>(told));
        ConditionMonitor monitor;
        recorder.restore(monitor);

        EXPECT_EQ(contentOf(journal()), whole);
        EXPECT_EQ(told.size(), (left == whole) ? 0U : 1U);
    }
}

TEST_F(EventRecorderTest, TellsEveryOutputOfEachEvent)
{
    std::vector<std::string> told;
    EventRecorder recorder("", "");
    recorder.addOutput(std::make_unique<NotingOutput>(told));
    ConditionMonitor monitor;
    recorder.restore(monitor);
    monitorSamples(recorder, monitor, {95, 80});

    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(eventOfJsonLine(told[0])->kind, EventKind::RAISED);
    EXPECT_EQ(eventOfJsonLine(told[1])->kind, EventKind::CLEARED);
}

TEST_F(EventRecorderTest, AppendsLaterWhatTheJournalDidNotTake)
{
    EventRecorder recorder(journal(), state());
    ConditionMonitor monitor;
    recorder.restore(monitor);
    monitorSamples(recorder, monitor, {95});
    recorder.releaseJournal();
    const std::string moved = directory().path() + "/journal.1";
    ASSERT_EQ(std::rename(journal().c_str(), moved.c_str()), 0);
    directory().write("journal", "no journal\n");

    testing::internal::CaptureStderr();
    monitorSamples(recorder, monitor, {80, 95});
    const std::string told = testing::internal::GetCapturedStderr();
    ASSERT_EQ(std::remove(journal().c_str()), 0);
    monitorSamples(recorder, monitor, {80});

    EXPECT_EQ(told, "brantel: '" + journal() + "' is no journal: its last line is no event\n") << "once";
    EXPECT_EQ(numbersInJournal(), (Numbers{"2", "3", "4"}));
}

TEST_F(EventRecorderTest, RefusesAStateWhoseRuleIsNone)
{
    directory().write("state", "brantel monitor state 1\nrule slot 3 5 - 0 0 expr=signed(value=<1)\nend 2\n");
    EventRecorder recorder("", state());
    ConditionMonitor monitor;

    EXPECT_THROW(recorder.restore(monitor), CommandError);
}

}  // namespace
