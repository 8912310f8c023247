#ifndef FOREIGN_LOG_ASSERT_FAILED_H
#define FOREIGN_LOG_ASSERT_FAILED_H

void logAssertFailed(const char* condition, const char* file, int line, const char* function);

#endif
