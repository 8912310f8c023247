#include "sql/Database.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include "FullDisk.h"
#include "support/TemporaryDirectory.h"

namespace sql {

namespace {

constexpr Identity identity{0x74657374, 3};

const Definition books{
    Field("Number", field_type::INTEGER, NOT_NULL | PRIMARY_KEY),
    Field("Title", field_type::TEXT, NOT_NULL),
    Field("Lent", field_type::BOOLEAN, NOT_NULL),
    Field("Remark", field_type::TEXT, 0),
    Field(),
    Field("BehindTheEnd", field_type::TEXT, 0),
};

const TableDefinition booksTable{"Books", books};

// Whatever SQLite understands, past the wrapper.
class RawDatabase {
public:
    explicit RawDatabase(const std::string& path)
    {
        sqlite3_open(path.c_str(), &m_pDatabase);
        sqlite3_busy_timeout(m_pDatabase, 0);
    }
    ~RawDatabase() { sqlite3_close(m_pDatabase); }
    RawDatabase(const RawDatabase&) = delete;
    RawDatabase& operator=(const RawDatabase&) = delete;

    /// The first column of the last row.
    std::string run(const std::string& statements)
    {
        std::string result;
        char* pMessage = nullptr;
        if (sqlite3_exec(m_pDatabase, statements.c_str(), keepFirstColumn, &result, &pMessage) != SQLITE_OK) {
            result = std::string("error: ") + pMessage;
            sqlite3_free(pMessage);
        }
        return result;
    }

private:
    static int keepFirstColumn(void* pResult, int, char** values, char**)
    {
        *static_cast<std::string*>(pResult) = (values[0] == nullptr) ? "NULL" : values[0];
        return 0;
    }

    sqlite3* m_pDatabase = nullptr;
};

// What an operation that must fail throws.
struct Failure {
    bool happened = false;
    Problem problem = Problem::OTHER;
    std::string text;

    bool operator==(const Failure& other) const
    {
        return (happened == other.happened) && (problem == other.problem) && (text == other.text);
    }
};

void PrintTo(const Failure& failure, std::ostream* pStream)
{
    *pStream << (failure.happened ? "problem " : "no problem ") << static_cast<int>(failure.problem) << ": "
             << failure.text;
}

template <typename Operation>
Failure failureOf(const Operation& operation)
{
    try {
        operation();
    } catch (const Error& error) {
        return {true, error.problem(), error.what()};
    }
    return {};
}

class DatabaseFile : public ::testing::Test {
protected:
    Failure problem(Problem kind, const std::string& text) const { return {true, kind, "'" + m_path + "' " + text}; }

    Database openForWriting() const { return Database(m_path, identity, Database::Access::WRITE); }
    Database openForReading() const { return Database(m_path, identity, Database::Access::READ); }
    Database createBooks() const { return Database::create(m_path, identity, {booksTable}); }

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.path() + "/books.db";
};

TEST_F(DatabaseFile, IsCreatedWithItsTables)
{
    createBooks();
    EXPECT_EQ(
        RawDatabase(m_path).run("SELECT sql FROM sqlite_schema WHERE type = 'table'"),
        "CREATE TABLE \"Books\" (\n"
        "    \"Number\" INTEGER NOT NULL CONSTRAINT \"Number is a number\" CHECK (typeof(\"Number\") = 'integer'),\n"
        "    \"Title\" TEXT NOT NULL CONSTRAINT \"Title is a text\" CHECK (typeof(\"Title\") = 'text'),\n"
        "    \"Lent\" BOOLEAN NOT NULL CONSTRAINT \"Lent is 0 or 1\" CHECK (\"Lent\" IN (0, 1)),\n"
        "    \"Remark\" TEXT CONSTRAINT \"Remark is a text\" CHECK (\"Remark\" IS NULL OR typeof(\"Remark\") = "
        "'text'),\n"
        "    PRIMARY KEY (\"Number\")\n"
        ")");
}

TEST_F(DatabaseFile, CarriesItsIdentityAndIsInWalMode)
{
    createBooks();
    RawDatabase raw(m_path);
    EXPECT_EQ(raw.run("PRAGMA application_id"), std::to_string(0x74657374));
    EXPECT_EQ(raw.run("PRAGMA user_version"), "3");
    EXPECT_EQ(raw.run("PRAGMA journal_mode"), "wal");
}

TEST_F(DatabaseFile, IsLeftAsItIsWhenCreatedAgain)
{
    {
        Database database = createBooks();
        Table(database, "Books", books).insert({1, "Emma", 0, std::monostate()});
    }
    Database again = createBooks();
    EXPECT_EQ(Table(again, "Books", books).count({}), 1);
}

TEST_F(DatabaseFile, MayBeAnEmptyFileBefore)
{
    m_directory.write("books.db", "");
    Database database = createBooks();
    EXPECT_EQ(Table(database, "Books", books).count({}), 0);
}

TEST_F(DatabaseFile, KeepsANameThatMeansSomethingElseToSqlite)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(m_directory.path());
    Database::create(":memory:", identity, {booksTable});
    std::filesystem::current_path(before);
    EXPECT_TRUE(std::filesystem::exists(m_directory.path() + "/:memory:"));
}

TEST_F(DatabaseFile, IsNotCreatedByOpening)
{
    EXPECT_EQ(failureOf([&] { openForWriting(); }), problem(Problem::NOT_FOUND, "does not exist"));
    EXPECT_FALSE(std::filesystem::exists(m_path));
}

TEST_F(DatabaseFile, MustBeAFile)
{
    std::filesystem::create_directory(m_path);
    const Failure failure = problem(Problem::OTHER, "is a folder");
    EXPECT_EQ(failureOf([&] { openForReading(); }), failure);
    EXPECT_EQ(failureOf([&] { createBooks(); }), failure);
}

TEST_F(DatabaseFile, ThatIsNoDatabaseIsRefusedAndKept)
{
    const std::string content(5000, 'x');
    m_directory.write("books.db", content);
    const Failure failure = problem(Problem::FOREIGN, "is not a database (file is not a database)");
    EXPECT_EQ(failureOf([&] { openForReading(); }), failure);
    EXPECT_EQ(failureOf([&] { openForWriting(); }), failure);
    EXPECT_EQ(failureOf([&] { createBooks(); }), failure);
    EXPECT_EQ(contentOf(m_path), content);
}

TEST_F(DatabaseFile, OfAnotherProgramIsRefusedAndKept)
{
    RawDatabase(m_path).run("PRAGMA application_id = 77; CREATE TABLE Books (Number INTEGER)");
    const std::string content = contentOf(m_path);
    const Failure failure =
        problem(Problem::FOREIGN, "is a database of another program (its application_id is 77, not 1952805748)");
    EXPECT_EQ(failureOf([&] { openForReading(); }), failure);
    EXPECT_EQ(failureOf([&] { openForWriting(); }), failure);
    EXPECT_EQ(failureOf([&] { createBooks(); }), failure);
    EXPECT_EQ(contentOf(m_path), content);
}

TEST_F(DatabaseFile, OfANewerVersionIsRefusedAndKept)
{
    createBooks();
    RawDatabase(m_path).run("PRAGMA user_version = 4");
    const std::string content = contentOf(m_path);
    const Failure failure = problem(
        Problem::NEWER, "was written by a newer version of this program (its schema is 4, this program knows 3)");
    EXPECT_EQ(failureOf([&] { openForReading(); }), failure);
    EXPECT_EQ(failureOf([&] { openForWriting(); }), failure);
    EXPECT_EQ(failureOf([&] { createBooks(); }), failure);
    EXPECT_EQ(contentOf(m_path), content);
}

// Drops the rights that a test run by root has, which no file is read-only to.
class WithoutRoot {
public:
    WithoutRoot() { succeeded = (geteuid() != 0) || (seteuid(nobody) == 0); }
    ~WithoutRoot() { static_cast<void>(seteuid(getuid())); }
    WithoutRoot(const WithoutRoot&) = delete;
    WithoutRoot& operator=(const WithoutRoot&) = delete;

    bool succeeded = false;

private:
    static constexpr uid_t nobody = 65534;
};

TEST_F(DatabaseFile, ThatIsReadOnlyIsNotOpenedForWriting)
{
    createBooks();
    std::filesystem::permissions(m_path, std::filesystem::perms(0444));
    std::filesystem::permissions(m_directory.path(), std::filesystem::perms(0777));
    const WithoutRoot withoutRoot;
    if (!withoutRoot.succeeded) {
        GTEST_SKIP() << "cannot give up root's rights";
    }
    EXPECT_EQ(failureOf([&] { openForWriting(); }), problem(Problem::READ_ONLY, "is read-only"));
    EXPECT_EQ(failureOf([&] { createBooks(); }), problem(Problem::READ_ONLY, "is read-only"));
}

TEST_F(DatabaseFile, ThatIsDamagedSaysSo)
{
    {
        Database database = createBooks();
        Table table(database, "Books", books);
        Transaction transaction(database);
        for (int i = 0; i < 1000; ++i) {
            table.insert({i, std::string(50, 'x'), 0, std::monostate()});
        }
        transaction.commit();
    }
    std::string content = contentOf(m_path);
    content.replace(content.size() / 2, 8192, 8192, '\xff');
    m_directory.write("books.db", content);

    Database database = openForWriting();
    EXPECT_FALSE(database.findDamage().empty());
    Table table(database, "Books", books);
    EXPECT_EQ(failureOf([&] { table.select({}); }),
              problem(Problem::CORRUPT, "is damaged (database disk image is malformed)"));
    EXPECT_EQ(contentOf(m_path), content);
}

TEST_F(DatabaseFile, WithoutDamageHasNothingToFind)
{
    EXPECT_EQ(createBooks().findDamage(), std::vector<std::string>());
}

TEST_F(DatabaseFile, LockedByAnotherProgramIsWaitedForAndThenGivenUp)
{
    Database database = createBooks();
    RawDatabase other(m_path);
    other.run("BEGIN IMMEDIATE");
    EXPECT_EQ(failureOf([&] { Transaction transaction(database); }),
              problem(Problem::LOCKED, "is locked by another program (database is locked)"));
    other.run("COMMIT");
    EXPECT_FALSE(failureOf([&] { Transaction transaction(database); }).happened);
}

TEST_F(DatabaseFile, OnAFullDiskKeepsWhatWasCommitted)
{
    Database database = createBooks();
    Table table(database, "Books", books);
    table.insert({1, "Emma", 0, std::monostate()});
    const Failure full = problem(Problem::FULL, "cannot grow: the disk is full (database or disk is full)");
    {
        const FullDisk fullDisk;
        EXPECT_EQ(failureOf([&] { table.insert({2, "Persuasion", 0, std::monostate()}); }), full);
        Transaction transaction(database);
        EXPECT_EQ(failureOf([&] {
                      table.insert({3, "Sanditon", 0, std::monostate()});
                      transaction.commit();
                  }),
                  full);
    }
    EXPECT_EQ(table.select({}), (std::vector<Row>{{1, "Emma", 0, std::monostate()}}));
    table.insert({2, "Persuasion", 0, std::monostate()});
    EXPECT_EQ(table.count({}), 2) << "and goes on when there is space again";
}

TEST_F(DatabaseFile, IsReadWhileAnotherWrites)
{
    Database writer = createBooks();
    Table written(writer, "Books", books);
    written.insert({1, "Emma", 0, std::monostate()});

    Transaction transaction(writer);
    written.insert({2, "Persuasion", 0, std::monostate()});
    Database reader = openForReading();
    const Table read(reader, "Books", books);
    EXPECT_EQ(read.count({}), 1) << "the last committed state";
    transaction.commit();
    EXPECT_EQ(read.count({}), 2);
}

TEST_F(DatabaseFile, OpenedForReadingShowsOneStateDuringATransaction)
{
    Database writer = createBooks();
    Table written(writer, "Books", books);
    Database reader = openForReading();
    const Table read(reader, "Books", books);

    const Transaction transaction(reader);
    EXPECT_EQ(read.count({}), 0);
    written.insert({1, "Emma", 0, std::monostate()});
    EXPECT_EQ(read.count({}), 0);
}

TEST_F(DatabaseFile, OpenedForReadingIsNotWritten)
{
    createBooks();
    Database reader = openForReading();
    EXPECT_EQ(failureOf([&] {
                  Table(reader, "Books", books).insert({1, "Emma", 0, std::monostate()});
              }),
              problem(Problem::READ_ONLY, "is read-only (attempt to write a readonly database)"));
}

TEST_F(DatabaseFile, UndoesATransactionThatIsNotCommitted)
{
    Database database = createBooks();
    Table table(database, "Books", books);
    {
        const Transaction transaction(database);
        table.insert({1, "Emma", 0, std::monostate()});
    }
    EXPECT_EQ(table.count({}), 0);
}

// A table as somebody made it, and what is wrong with it.
struct TableCase {
    const char* columns;
    const char* difference;
};

void PrintTo(const TableCase& tableCase, std::ostream* pStream)
{
    *pStream << tableCase.columns;
}

const TableCase tableCases[] = {
    {"Number INTEGER PRIMARY KEY NOT NULL, Title TEXT NOT NULL, Lent BOOLEAN NOT NULL, Remark TEXT", ""},
    {"Number INTEGER NOT NULL, Title TEXT NOT NULL, Lent BOOLEAN NOT NULL, Remark TEXT",
     "table 'Books': column 1 is 'Number' INTEGER NOT NULL; it should be 'Number' INTEGER NOT NULL PRIMARY KEY"},
    {"Number INTEGER PRIMARY KEY NOT NULL, Titel TEXT NOT NULL, Lent BOOLEAN NOT NULL, Remark TEXT",
     "table 'Books': column 2 is 'Titel' TEXT NOT NULL; it should be 'Title' TEXT NOT NULL"},
    {"Number INTEGER PRIMARY KEY NOT NULL, Title TEXT, Lent BOOLEAN NOT NULL, Remark TEXT",
     "table 'Books': column 2 is 'Title' TEXT; it should be 'Title' TEXT NOT NULL"},
    {"Number INTEGER PRIMARY KEY NOT NULL, Title TEXT NOT NULL, Lent INTEGER NOT NULL, Remark TEXT",
     "table 'Books': column 3 is 'Lent' INTEGER NOT NULL; it should be 'Lent' BOOLEAN NOT NULL"},
    {"Number INTEGER PRIMARY KEY NOT NULL, Title TEXT NOT NULL, Lent BOOLEAN NOT NULL, Remark TEXT NOT NULL",
     "table 'Books': column 4 is 'Remark' TEXT NOT NULL; it should be 'Remark' TEXT"},
    {"Number INTEGER PRIMARY KEY NOT NULL, Title TEXT NOT NULL, Lent BOOLEAN NOT NULL",
     "table 'Books': column 4 is missing; it should be 'Remark' TEXT"},
    {"Number INTEGER PRIMARY KEY NOT NULL, Title TEXT NOT NULL, Lent BOOLEAN NOT NULL, Remark TEXT, Price INTEGER",
     "table 'Books': column 5 'Price' should not be there"},
};

class ExistingTable : public DatabaseFile, public ::testing::WithParamInterface<TableCase> {};

TEST_P(ExistingTable, IsComparedWithItsDefinitionColumnByColumn)
{
    RawDatabase(m_path).run("PRAGMA application_id = 1952805748; PRAGMA user_version = 3; CREATE TABLE Books (" +
                            std::string(GetParam().columns) + ")");
    const std::string difference = GetParam().difference;
    EXPECT_EQ(openForReading().differenceFrom(booksTable).value_or(""), difference);
    const Failure failure{true, Problem::DIFFERENT, "'" + m_path + "': " + difference};
    EXPECT_EQ(failureOf([&] { createBooks(); }), difference.empty() ? Failure() : failure);
}

INSTANTIATE_TEST_SUITE_P(That, ExistingTable, ::testing::ValuesIn(tableCases));

TEST_F(DatabaseFile, WithoutATableSaysSo)
{
    createBooks();
    EXPECT_EQ(openForReading().differenceFrom({"Shelves", books}), "table 'Shelves' is missing");
}

class Rows : public DatabaseFile {
protected:
    Failure refusedRow(const std::string& reason) const
    {
        return problem(Problem::CONSTRAINT, "refuses the row (" + reason + ")");
    }

    void insertThree()
    {
        m_books.insert({3, "Emma", 1, "signed"});
        m_books.insert({1, "Persuasion", 0, std::monostate()});
        m_books.insert({2, "Emma", 0, std::monostate()});
    }

    Database m_database = createBooks();
    Table m_books{m_database, "Books", books};
};

TEST_F(Rows, ComeBackAsTheyWentInInTheOrderOfTheKey)
{
    insertThree();
    EXPECT_EQ(m_books.select({}),
              (std::vector<Row>{
                  {1, "Persuasion", 0, std::monostate()}, {2, "Emma", 0, std::monostate()}, {3, "Emma", 1, "signed"}}));
}

TEST_F(Rows, KeepEveryNumberAndEveryText)
{
    const std::vector<Row> rows{
        {std::numeric_limits<std::int64_t>::min(), "", 0, std::string("a\0b", 3)},
        {std::int64_t{0}, "'); DROP TABLE Books; --", 0, "\"quoted\", and 'quoted'"},
        {std::int64_t{4294967295}, "two\nlines\r\n", 1, "\xc3\xa9\xff\xfe"},
        {std::numeric_limits<std::int64_t>::max(), "1", 1, std::string(100000, 'x')},
    };
    for (const Row& row : rows) {
        m_books.insert(row);
    }
    EXPECT_EQ(m_books.select({}), rows);
}

TEST_F(Rows, AreFoundByTheValuesOfTheirColumns)
{
    insertThree();
    EXPECT_EQ((m_books.select({{"Title", "Emma"}, {"Lent", 0}})), (std::vector<Row>{{2, "Emma", 0, std::monostate()}}));
    EXPECT_EQ(m_books.count({{"Title", "Emma"}}), 2);
    EXPECT_EQ(m_books.count({{"Remark", std::monostate()}}), 2) << "nothing equals nothing";
    EXPECT_EQ(m_books.count({{"Title", "Emma' OR 'x' = 'x"}}), 0);
}

TEST_F(Rows, AreUpdatedWhereTheyMatch)
{
    insertThree();
    EXPECT_EQ((m_books.update({{"Lent", 1}, {"Remark", "x"}}, {{"Title", "Emma"}, {"Lent", 0}})), 1);
    EXPECT_EQ(m_books.select({{"Remark", "x"}}), (std::vector<Row>{{2, "Emma", 1, "x"}}));
    EXPECT_EQ(m_books.update({{"Lent", 0}}, {}), 3);
    EXPECT_EQ(m_books.update({{"Lent", 0}}, {{"Number", 9}}), 0);
}

TEST_F(Rows, AreRemovedWhereTheyMatch)
{
    insertThree();
    EXPECT_EQ(m_books.remove({{"Title", "Emma"}}), 2);
    EXPECT_EQ(m_books.select({}), (std::vector<Row>{{1, "Persuasion", 0, std::monostate()}}));
    EXPECT_EQ(m_books.remove({}), 1);
    EXPECT_EQ(m_books.remove({}), 0);
}

TEST_F(Rows, HaveALargestKey)
{
    EXPECT_EQ(m_books.largestKey(), 0);
    insertThree();
    EXPECT_EQ(m_books.largestKey(), 3);
}

TEST_F(Rows, HaveAKeyOfTheirOwn)
{
    insertThree();
    EXPECT_EQ(failureOf([&] {
                  m_books.insert({3, "Emma", 0, std::monostate()});
              }),
              refusedRow("UNIQUE constraint failed: Books.Number"));
    m_books.insert({4, "Emma", 0, std::monostate()});
    EXPECT_EQ(m_books.count({}), 4) << "the table goes on after a refusal";
}

TEST_F(Rows, HoldWhatTheirColumnsAreOf)
{
    EXPECT_EQ(failureOf([&] {
                  m_books.insert({"one", "Emma", 0, std::monostate()});
              }),
              refusedRow("datatype mismatch"));
    EXPECT_EQ(failureOf([&] {
                  m_books.insert({1, "Emma", 2, std::monostate()});
              }),
              refusedRow("CHECK constraint failed: Lent is 0 or 1"));
    EXPECT_EQ(failureOf([&] {
                  m_books.insert({1, std::monostate(), 0, std::monostate()});
              }),
              refusedRow("NOT NULL constraint failed: Books.Title"));
    EXPECT_EQ(m_books.count({}), 0);
}

TEST_F(Rows, HaveAValueForEachColumn)
{
    EXPECT_EQ(failureOf([&] {
                  m_books.insert({1, "Emma"});
              }),
              (Failure{true, Problem::CONSTRAINT, "table 'Books' has 4 columns, the row has 2 values"}));
}

TEST_F(Rows, AreNotFoundByAColumnThatIsNotThere)
{
    const Failure failure{true, Problem::OTHER, "table 'Books' has no column 'BehindTheEnd'"};
    EXPECT_EQ(failureOf([&] { m_books.select({{"BehindTheEnd", 1}}); }), failure);
    EXPECT_EQ(failureOf([&] { m_books.update({{"BehindTheEnd", 1}}, {}); }), failure);
    EXPECT_EQ(failureOf([&] { m_books.remove({{"BehindTheEnd", 1}}); }), failure);
    EXPECT_EQ(failureOf([&] { m_books.update({}, {}); }),
              (Failure{true, Problem::OTHER, "an update of table 'Books' changes no column"}));
}

TEST_F(DatabaseFile, MayNameTablesAndColumnsByAnyText)
{
    const Definition definition{Field("a \"key\"", field_type::INTEGER, NOT_NULL | PRIMARY_KEY),
                                Field("select", field_type::TEXT, NOT_NULL), Field()};
    const TableDefinition odd{"x\"; DROP TABLE y; --", definition};
    Database database = Database::create(m_path, identity, {odd});
    Table table(database, odd.name, definition);
    table.insert({1, "text"});
    EXPECT_EQ(table.update({{"select", "other"}}, {{"a \"key\"", 1}}), 1);
    EXPECT_EQ(table.select({}), (std::vector<Row>{{1, "other"}}));
    EXPECT_EQ(database.differenceFrom(odd), std::nullopt);
}

TEST_F(DatabaseFile, MayHaveATableWhoseKeyIsAText)
{
    const Definition definition{Field("Author", field_type::TEXT, NOT_NULL | PRIMARY_KEY), Field()};
    Database database = Database::create(m_path, identity, {{"Authors", definition}});
    Table table(database, "Authors", definition);
    for (const char* author : {"b", "c", "a"}) {
        table.insert({author});
    }
    EXPECT_EQ(table.select({}), (std::vector<Row>{{"a"}, {"b"}, {"c"}}));
}

TEST_F(DatabaseFile, NeedsATypeAndAColumnToMakeATable)
{
    const Definition noColumns{Field(), Field("BehindTheEnd", field_type::TEXT, 0)};
    const Definition noType{Field("Number", static_cast<field_type>(2), NOT_NULL), Field()};
    EXPECT_EQ(failureOf([&] {
                  Database database = createBooks();
                  Table(database, "Empty", noColumns);
              }).text,
              "the definition of table 'Empty' has no column");
    std::filesystem::remove(m_path);
    EXPECT_EQ(failureOf([&] {
                  Database::create(m_path, identity, {{"Odd", noType}});
              }).text,
              "a column cannot be of type 2");
}

}  // namespace
}  // namespace sql
