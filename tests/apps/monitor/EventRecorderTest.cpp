#include "monitor/EventRecorder.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"
#include "common/CommandLine.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

bool isDiskFailing = false;
int synchronisations = 0;

}  // namespace

// In place of the C library's, so that it can fail.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library names it __fildes
extern "C" int fdatasync(int file)
{
    ++synchronisations;
    if (isDiskFailing) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fdatasync, file));
}

namespace {

const Place SLOT_3 = slotPlace(3);

// Keeps the events reported to it, as lines.
class NotingOutput : public EventOutput {
public:
    explicit NotingOutput(std::vector<std::string>& lines) : m_lines(lines) {}

    void report(const Event& event) override { m_lines.push_back(eventJson(event)); }

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
        Events events;
        monitor.follow(ruleSetOf({{SLOT_3, 5, ABOVE_90}}), {NOON, events});
        for (const int sample : samples) {
            monitor.takeReading(SLOT_3, readingOf({{5, sample}}), {NOON, events});
            recorder.record(events, monitor);
            events.clear();
        }
    }

private:
    TemporaryDirectory m_directory;
};

using Numbers = std::vector<std::string>;

TEST_F(EventRecorderTest, NumbersEventsAcrossRestarts)
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

TEST_F(EventRecorderTest, RaisesNothingAgainAfterARestart)
{
    for (int run = 0; run < 2; ++run) {
        EventRecorder recorder(journal(), state());
        ConditionMonitor monitor;
        recorder.restore(monitor);
        monitorSamples(recorder, monitor, {95});
    }

    EXPECT_EQ(numbersInJournal(), (Numbers{"1"}));
}

TEST_F(EventRecorderTest, ReportsARefusedRowOnceAcrossRestartsUntilItChanges)
{
    const RefusedRow row{"IfcCardsAllowEventsTable", 9, "Rule: no rule"};
    const RefusedRow changedRow{"IfcCardsAllowEventsTable", 9, "OID: not a number"};
    const std::vector<RefusedRow> rows[] = {{row}, {row}, {changedRow}, {}, {changedRow}};
    std::vector<std::size_t> reported;
    for (const std::vector<RefusedRow>& refused : rows) {
        EventRecorder recorder(journal(), state());
        ConditionMonitor monitor;
        recorder.restore(monitor);
        RuleSet ruleSet;
        ruleSet.refusedRows.insert(refused.begin(), refused.end());
        Events events;
        monitor.follow(ruleSet, {NOON, events});
        recorder.record(events, monitor);
        reported.push_back(numbersInJournal().size());
    }

    EXPECT_EQ(reported, (std::vector<std::size_t>{1, 1, 2, 2, 3})) << "as often as a single monitor would report it";
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
        std::vector<std::string> reported;
        EventRecorder recorder(journal(), state());
        recorder.addOutput(std::make_unique<NotingOutput>(reported));
        ConditionMonitor monitor;
        recorder.restore(monitor);

        EXPECT_EQ(contentOf(journal()), whole);
        EXPECT_EQ(reported.size(), (left == whole) ? 0U : 1U);
    }
}

TEST_F(EventRecorderTest, ReportsEachEventToEveryOutput)
{
    std::vector<std::string> reported;
    EventRecorder recorder("", "");
    recorder.addOutput(std::make_unique<NotingOutput>(reported));
    ConditionMonitor monitor;
    recorder.restore(monitor);
    monitorSamples(recorder, monitor, {95, 80});

    ASSERT_EQ(reported.size(), 2U);
    EXPECT_EQ(parseEvent(reported[0])->kind, EventKind::RAISED);
    EXPECT_EQ(parseEvent(reported[1])->kind, EventKind::CLEARED);
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
    const std::string reported = testing::internal::GetCapturedStderr();
    ASSERT_EQ(std::remove(journal().c_str()), 0);
    monitorSamples(recorder, monitor, {80});

    EXPECT_EQ(reported, "brantel: '" + journal() +
                            "' is not a journal, because its last line is not an event with a number from 1 to "
                            "1000000000000000: name another file, or move this one away\n")
        << "once";
    EXPECT_EQ(numbersInJournal(), (Numbers{"2", "3", "4"}));
}

TEST_F(EventRecorderTest, RefusesAStateWithAnInvalidRule)
{
    directory().write("state", sealedState("brantel monitor state 3\nlast-event 0\n"
                                           "rule slot 3 5 - 0 0 expr=signed(value=<1)\n"));
    EventRecorder recorder("", state());
    ConditionMonitor monitor;

    EXPECT_EQ(errorOf([&] { recorder.restore(monitor); }),
              state() + ":3: 'expr=signed(value=<1)' is not a rule that can be evaluated" + STATE_REMEDY);
}

// A journal that takes nothing until it is made to: no file can be made at its path.
class BlockedJournal {
public:
    explicit BlockedJournal(const std::string& path) : m_path(path) { EXPECT_EQ(::mkdir(m_path.c_str(), 0700), 0); }

    void unblock() const { EXPECT_EQ(::rmdir(m_path.c_str()), 0); }

private:
    const std::string m_path;
};

class FullJournalTest : public EventRecorderTest {
protected:
    FullJournalTest() { testing::internal::CaptureStderr(); }
    ~FullJournalTest() override { testing::internal::GetCapturedStderr(); }

    /// Records `count` events, at most 1000 in each recording.
    void recordEvents(EventRecorder& recorder, std::size_t count, const std::string& reason = "because") const
    {
        while (count > 0) {
            const std::size_t some = std::min<std::size_t>(count, 1000);
            recordAtOnce(recorder, some, reason);
            count -= some;
        }
    }

    /// Records `count` events in one recording.
    void recordAtOnce(EventRecorder& recorder, std::size_t count, const std::string& reason = "because") const
    {
        Event event;
        event.time = NOON;
        event.kind = EventKind::FAILED;
        event.reason = reason;
        Events events(count, event);
        recorder.record(events, m_monitor);
    }

    ConditionMonitor m_monitor;
};

TEST_F(FullJournalTest, KeepsALimitedNumberOfEventsAndJournalsWhichWereLost)
{
    EventRecorder recorder(journal(), "");
    recorder.restore(m_monitor);
    recorder.releaseJournal();
    ASSERT_EQ(std::remove(journal().c_str()), 0);
    const BlockedJournal blocked(journal());
    recordEvents(recorder, WaitingEvents::MAX_EVENTS + 5000);

    EXPECT_EQ(recorder.waitingEvents(), WaitingEvents::MAX_EVENTS);
    EXPECT_EQ(recorder.lostEvents(), 5000U);
    EXPECT_GT(recorder.journalFailing(), EventRecorder::Clock::duration::zero());

    blocked.unblock();
    recordEvents(recorder, 1);  // finds all others waiting, and is lost
    EXPECT_EQ(recorder.waitingEvents(), 0U);
    recordEvents(recorder, 1);

    const Numbers numbers = numbersInJournal();
    ASSERT_EQ(numbers.size(), WaitingEvents::MAX_EVENTS + 2);
    EXPECT_EQ(numbers[WaitingEvents::MAX_EVENTS - 1], "100000");
    EXPECT_EQ(numbers[WaitingEvents::MAX_EVENTS], "105002");
    EXPECT_EQ(numbers.back(), "105003");
    const std::string text = contentOf(journal());
    const std::string lost = text.substr(text.find(R"({"event":105002,)"));
    EXPECT_EQ(lost.substr(lost.find(R"("kind")"), lost.find('\n') - lost.find(R"("kind")")),
              R"("kind":"lost","lost":5001,"first":100001,"last":105001,)"
              R"("reason":"5001 events, 100001 to 105001, found no room while the journal could not be written"})");
    EXPECT_EQ(recorder.lostEvents(), 5001U);
    EXPECT_EQ(recorder.journalFailing(), EventRecorder::Clock::duration::zero());
}

TEST_F(FullJournalTest, KeepsALimitedSizeOfEvents)
{
    EventRecorder recorder("/dev/full", "");
    recorder.restore(m_monitor);
    for (int i = 0; i < 8; ++i) {
        recordAtOnce(recorder, 100, std::string(50'000, 'x'));
    }

    EXPECT_LE(recorder.waitingEvents() * 50'000, WaitingEvents::MAX_SIZE + 100 * 50'000);
    EXPECT_GT(recorder.lostEvents(), 0U);
    EXPECT_EQ(recorder.waitingEvents() + recorder.lostEvents(), 800U);
}

TEST_F(FullJournalTest, LosesNothingOfOneRecordingIntoAWorkingJournal)
{
    EventRecorder recorder(journal(), "");
    recorder.restore(m_monitor);
    recordAtOnce(recorder, WaitingEvents::MAX_EVENTS + 10);

    EXPECT_EQ(numbersInJournal().size(), WaitingEvents::MAX_EVENTS + 10);
    EXPECT_EQ(recorder.lostEvents(), 0U);
}

TEST_F(FullJournalTest, RemembersLostEventsAcrossARestart)
{
    constexpr std::size_t N_LOST = 10;
    {
        EventRecorder recorder("/dev/full", state());
        recorder.restore(m_monitor);
        recordAtOnce(recorder, WaitingEvents::MAX_EVENTS);
        recordAtOnce(recorder, N_LOST);
        EXPECT_EQ(recorder.lostEvents(), N_LOST);
        EXPECT_EQ(errorOf([&] { recorder.finish(m_monitor); }),
                  "100010 events not in '/dev/full'; the state holds 100000 for the next monitor");
    }
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    EXPECT_EQ(numbersInJournal().size(), WaitingEvents::MAX_EVENTS);
    recorder.finish(m_monitor);

    EXPECT_EQ(numbersInJournal().back(), "100011");
    EXPECT_NE(contentOf(journal()).find(R"("lost":10,"first":100001,"last":100010,)"), std::string::npos);
}

TEST_F(FullJournalTest, EndsWithAnErrorThatCountsTheUnrecordedEvents)
{
    EventRecorder recorder("/dev/full", "");
    recorder.restore(m_monitor);
    recordEvents(recorder, 3);

    EXPECT_EQ(errorOf([&] { recorder.finish(m_monitor); }), "3 events not in '/dev/full'; no state holds them");
}

TEST_F(FullJournalTest, EndsWithAnErrorIfTheStateIsNotUpToDate)
{
    EventRecorder recorder("", state());
    recorder.restore(m_monitor);
    ASSERT_EQ(::mkdir((state() + ".new").c_str(), 0700), 0);
    recordEvents(recorder, 1);

    EXPECT_GT(recorder.stateFailing(), EventRecorder::Clock::duration::zero());
    EXPECT_EQ(errorOf([&] { recorder.finish(m_monitor); }),
              "'" + state() + "' is not up to date: the next monitor may report events again, or miss some");
}

// A disk that takes what is written and fails to keep it.
class FailingDiskTest : public FullJournalTest {
protected:
    ~FailingDiskTest() override { isDiskFailing = false; }

    Numbers numbersInState() const
    {
        const MonitorState saved = loadState(state());
        Numbers numbers;
        for (const WaitingEvents::Line& line : saved.waiting.lines()) {
            numbers.push_back(std::to_string(line.number));
        }
        return numbers;
    }

    std::string finishFault(EventRecorder& recorder) const
    {
        return errorOf([&] { recorder.finish(m_monitor); });
    }
};

TEST_F(FailingDiskTest, KeepsEventsInTheStateUntilTheJournalIsOnDisk)
{
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    recordEvents(recorder, 1);
    isDiskFailing = true;
    recordEvents(recorder, 1);
    recordEvents(recorder, 1);
    recordEvents(recorder, 0);

    EXPECT_GT(recorder.journalFailing(), EventRecorder::Clock::duration::zero());
    EXPECT_EQ(recorder.waitingEvents(), 2U);
    EXPECT_EQ(finishFault(recorder),
              "2 events not safely in '" + journal() + "'; the state holds 2 for the next monitor");
    EXPECT_EQ(numbersInState(), (Numbers{"2", "3"}));

    isDiskFailing = false;
    EXPECT_EQ(finishFault(recorder), "");
    EXPECT_EQ(recorder.journalFailing(), EventRecorder::Clock::duration::zero());
    EXPECT_EQ(numbersInState(), Numbers());
    EXPECT_EQ(numbersInJournal(), (Numbers{"1", "2", "3"})) << "each once";
}

TEST_F(FailingDiskTest, SynchronisesWhatAKilledMonitorAppended)
{
    {
        EventRecorder recorder(journal(), state());
        recorder.restore(m_monitor);
        recordEvents(recorder, 1);
    }
    isDiskFailing = true;
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    recordAtOnce(recorder, 0);

    EXPECT_EQ(numbersInState(), (Numbers{"1"}));
    isDiskFailing = false;
    EXPECT_EQ(finishFault(recorder), "");
    EXPECT_EQ(numbersInState(), Numbers());
    EXPECT_EQ(numbersInJournal(), (Numbers{"1"}));
}

TEST_F(FailingDiskTest, AppendsUnsynchronisedEventsAgainToTheNextJournal)
{
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    isDiskFailing = true;
    recordEvents(recorder, 2);
    ASSERT_EQ(std::rename(journal().c_str(), (directory().path() + "/journal.1").c_str()), 0);
    recorder.releaseJournal();
    isDiskFailing = false;
    recordEvents(recorder, 1);

    EXPECT_EQ(numbersInJournal(), (Numbers{"1", "2", "3"}));
}

TEST_F(FullJournalTest, AppendsNothingTwiceToAReopenedJournal)
{
    std::vector<std::string> lines;
    EventRecorder recorder(journal(), state());
    recorder.addOutput(std::make_unique<NotingOutput>(lines));
    recorder.restore(m_monitor);
    recorder.releaseJournal();
    ASSERT_EQ(std::remove(journal().c_str()), 0);
    const BlockedJournal blocked(journal());
    recordEvents(recorder, 1);
    recordEvents(recorder, 1);
    blocked.unblock();
    directory().write("journal", lines.at(0));  // a write that failed between the line and its end
    recordEvents(recorder, 1);

    EXPECT_EQ(contentOf(journal()), lines.at(0) + "\n" + lines.at(1) + "\n" + lines.at(2) + "\n");
}

TEST_F(FullJournalTest, AppendsEverythingToAnUnrelatedJournal)
{
    Event foreign;
    foreign.number = 1000;
    foreign.time = NOON;
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    recordEvents(recorder, 1);
    recorder.releaseJournal();
    directory().write("journal", eventJson(foreign) + "\n");
    recordEvents(recorder, 1);
    recordEvents(recorder, 1);

    EXPECT_EQ(numbersInJournal(), (Numbers{"1000", "2", "3"}));
}

TEST_F(FullJournalTest, EndsWithTheLostEventIfTheJournalRecoversOnlyThen)
{
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    recorder.releaseJournal();
    ASSERT_EQ(std::remove(journal().c_str()), 0);
    const BlockedJournal blocked(journal());
    recordAtOnce(recorder, WaitingEvents::MAX_EVENTS);
    recordAtOnce(recorder, 10);
    blocked.unblock();

    EXPECT_EQ(errorOf([&] { recorder.finish(m_monitor); }), "");
    EXPECT_EQ(numbersInJournal().back(), "100011");
    EXPECT_NE(contentOf(journal()).find(R"("lost":10,"first":100001,"last":100010,)"), std::string::npos);
    EXPECT_EQ(loadState(state()).waiting.count(), 0U);
}

// A journal that is a pipe, and who reads it.
class PipeJournalTest : public FullJournalTest {
protected:
    PipeJournalTest()
    {
        EXPECT_EQ(::mkfifo(journal().c_str(), 0600), 0);
        m_reader = ::open(journal().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
    ~PipeJournalTest() override { ::close(m_reader); }

    /// Takes all that is in the pipe.
    void read()
    {
        std::array<char, 4096> part{};
        for (ssize_t count = 0; (count = ::read(m_reader, part.data(), part.size())) > 0;) {
            m_received.append(part.data(), static_cast<std::size_t>(count));
        }
    }

    const std::string& received() const { return m_received; }

    /// More than a pipe takes.
    static std::string longReason() { return std::string(200'000, 'x'); }

private:
    int m_reader = -1;
    std::string m_received;
};

TEST_F(PipeJournalTest, GetsTheRestOfALineEvenAfterItsRelease)
{
    std::vector<std::string> lines;
    EventRecorder recorder(journal(), "");
    recorder.addOutput(std::make_unique<NotingOutput>(lines));
    recorder.restore(m_monitor);
    recordAtOnce(recorder, 1, longReason());
    recorder.releaseJournal();
    for (int i = 0; i < 5; ++i) {
        read();
        recordAtOnce(recorder, 0);
    }
    recordAtOnce(recorder, 1);
    read();

    EXPECT_EQ(received(), lines.at(0) + "\n" + lines.at(1) + "\n");
}

TEST_F(PipeJournalTest, GetsTheRestOfALineAtTheEnd)
{
    EventRecorder recorder(journal(), "");
    recorder.restore(m_monitor);
    recordAtOnce(recorder, 1, std::string(100'000, 'x'));
    read();

    EXPECT_EQ(errorOf([&] { recorder.finish(m_monitor); }), "");
    read();
    EXPECT_EQ(received().back(), '\n');
}

TEST_F(PipeJournalTest, SynchronisesWhatWasAppendedBeforeAnAppendThatFails)
{
    EventRecorder recorder(journal(), state());
    recorder.restore(m_monitor);
    const int before = synchronisations;
    recordAtOnce(recorder, 20, std::string(10'000, 'x'));

    EXPECT_GT(recorder.waitingEvents(), 0U);
    EXPECT_LT(recorder.waitingEvents(), 20U);
    EXPECT_EQ(synchronisations, before + 1);
}

}  // namespace

}  // namespace brantel
