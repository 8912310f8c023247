#include "system/IntegrityCheck.h"

#include <sqlite3.h>

namespace brantel {

bool isIntact(const std::string& path)
{
    sqlite3* pDatabase = nullptr;
    std::string answer;
    const auto keepAnswer = [](void* pAnswer, int, char** pValues, char**) {
        *static_cast<std::string*>(pAnswer) += pValues[0];
        return 0;
    };
    const bool isAnswered =
        (sqlite3_open_v2(path.c_str(), &pDatabase, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) &&
        (sqlite3_exec(pDatabase, "PRAGMA integrity_check", keepAnswer, &answer, nullptr) == SQLITE_OK);
    sqlite3_close(pDatabase);
    return isAnswered && (answer == "ok");
}

}  // namespace brantel
