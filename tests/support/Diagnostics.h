#ifndef TESTS_SUPPORT_DIAGNOSTICS_H
#define TESTS_SUPPORT_DIAGNOSTICS_H

// The recorded diagnostics as a fixture.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "brantel/testing/Diagnostics.h"

using brantelTesting::assertReport;
using brantelTesting::debugLine;
using brantelTesting::Diagnostics;
using brantelTesting::DiagnosticsCapture;
using brantelTesting::errorLine;
using brantelTesting::SourceLines;
using brantelTesting::warningLine;
using brantelTesting::writtenAt;
using brantelTesting::operator+;

class DiagnosticsTest : public ::testing::Test {
protected:
    static constexpr std::int32_t ERRORS_ONLY = 3;
    static constexpr std::int32_t EVERYTHING = 9;

    // Acts once without a trace object and once at a trace level on either side of every threshold. Each time the
    // outcome must be `outcome` and the diagnostics those of `all` that the level lets through. Ends at ERRORS_ONLY.
    template <typename Action, typename Outcome>
    void expectAtEveryTraceLevel(Action act, const Outcome& outcome, const Diagnostics& all)
    {
        m_diagnostics.take();
        {
            SCOPED_TRACE("no trace object");
            m_diagnostics.removeTraceObject();
            EXPECT_EQ(act(), outcome);
            EXPECT_EQ(m_diagnostics.take(), writtenAt(0, all));
        }
        for (const std::int32_t level : {INT32_MIN, 0, 2, 3, 4, 8, 9, INT32_MAX}) {
            SCOPED_TRACE("trace level " + std::to_string(level));
            m_diagnostics.setTraceLevel(level);
            EXPECT_EQ(act(), outcome);
            EXPECT_EQ(m_diagnostics.take(), writtenAt(level, all));
        }
        m_diagnostics.setTraceLevel(ERRORS_ONLY);
    }

    DiagnosticsCapture m_diagnostics{ERRORS_ONLY};
};

#endif
