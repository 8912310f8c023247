#ifndef TESTS_TABLES_EVENT_DATABASE_TEST_H
#define TESTS_TABLES_EVENT_DATABASE_TEST_H

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "support/SqlValues.h"
#include "support/TemporaryDirectory.h"
#include "tables/EventDatabase.h"

namespace brantel {

/// A fresh event-management database.
class EventDatabaseTest : public ::testing::Test {
protected:
    using Rows = std::vector<sql::Row>;

    Rows rowsOf(const std::string& tableName) { return m_database.table(*findEventTable(tableName)).select({}); }

    void insert(const std::string& tableName, const Rows& rows)
    {
        sql::Table table = m_database.table(*findEventTable(tableName));
        for (const sql::Row& row : rows) {
            table.insert(row);
        }
    }

    // Whatever SQLite understands, past the database's own ways.
    void sqlite(const std::string& statements) const
    {
        sqlite3* pDatabase = nullptr;
        ASSERT_EQ(sqlite3_open(m_path.c_str(), &pDatabase), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(pDatabase, statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(pDatabase);
        sqlite3_close(pDatabase);
    }

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.path() + "/events.db";
    EventDatabase m_database = EventDatabase::create(m_path);
};

}  // namespace brantel

#endif
