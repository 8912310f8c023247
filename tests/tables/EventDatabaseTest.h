#ifndef TESTS_TABLES_EVENT_DATABASE_TEST_H
#define TESTS_TABLES_EVENT_DATABASE_TEST_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryDirectory.h"
#include "tables/EventDatabase.h"

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

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.path() + "/events.db";
    EventDatabase m_database = EventDatabase::create(m_path);
};

#endif
