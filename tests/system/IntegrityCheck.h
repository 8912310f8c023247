#ifndef TESTS_SYSTEM_INTEGRITY_CHECK_H
#define TESTS_SYSTEM_INTEGRITY_CHECK_H

#include <string>

namespace brantel {

/// Whether SQLite itself finds nothing wrong with a database.
bool isIntact(const std::string& path);

}  // namespace brantel

#endif
