#ifndef OTHER_LOGASSERTFAILED_H
#define OTHER_LOGASSERTFAILED_H

void logAssertFailed(const char* condition, const char* file, int line);

#endif
