#ifndef TESTS_PLATFORM_MESSAGE_MESSAGE_TEST_H
#define TESTS_PLATFORM_MESSAGE_MESSAGE_TEST_H

// A runtime directory for the test alone, and the captured log.

#include "support/Diagnostics.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

constexpr const char* SERVICE = "ICSCClient3.ReadWriteSync";

class MessageTest : public ::testing::Test {
protected:
    static constexpr std::int32_t WARNINGS = 4;

    DiagnosticsCapture m_diagnostics{WARNINGS};
    RuntimeDirectory m_folder;
};

#endif
