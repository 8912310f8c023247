#ifndef TESTS_SYSTEM_REPLAYING_NODE_H
#define TESTS_SYSTEM_REPLAYING_NODE_H

// A node whose cards serve recorded series, each row once, and the events that its journal must have in the end.

#include <map>
#include <memory>
#include <vector>

#include "system/RecordedSeries.h"
#include "system/TestNode.h"

namespace brantel {

class ReplayingNode : public TestNode {
public:
    ReplayingNode(std::size_t nSeries, std::size_t nSamples);

    /// How many cards have had their last row evaluated.
    std::size_t finishedCards() const;

    bool isFinished() const { return finishedCards() == m_cards.size(); }

    /// The last row of the first card whose evaluation the file "state" holds; 0 if there is none.
    std::size_t lastRowInState() const;

    /// Makes the first card continue with the row after that: one that was read but not recorded counts as never read.
    void continueAfterState() const;

    using EventsBySeries = std::map<std::size_t, std::vector<SeriesEvent>>;

    /// Those of the events that are about a series.
    static EventsBySeries bySeries(const std::vector<Event>& events);

    /// The events of the journal by series, each checked to be numbered in turn.
    EventsBySeries eventsBySeries() const;

    /// What the samples after the first `nRowsBefore` and up to `nRows` must bring.
    EventsBySeries eventsOfRows(std::size_t nRowsBefore, std::size_t nRows) const;

    /// Compares the journal with what follows from the first `nRows` samples.
    void expectEventsOfRows(std::size_t nRows) const;

private:
    std::vector<RecordedSeries> m_series;
    std::vector<std::unique_ptr<ChildProcess>> m_cards;
};

}  // namespace brantel

#endif
