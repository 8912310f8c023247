#ifndef MINIMAL_LOG_ASSERT_FAILED_H
#define MINIMAL_LOG_ASSERT_FAILED_H

void logAssertFailed(const char* condition, const char* file, int line, const char* function);

#endif
