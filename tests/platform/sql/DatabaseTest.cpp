#include "sql/Database.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "FullDisk.h"
#include "support/SqlValues.h"
#include "support/TemporaryDirectory.h"

namespace sql {

namespace {

constexpr Identity identity{0x74657374, 3};

const TableDefinition booksTable{
    "Books",
    {
        Field("Number", field_type::INTEGER, NOT_NULL | PRIMARY_KEY),
        Field("Title", field_type::TEXT, NOT_NULL),
        Field("Lent", field_type::BOOLEAN, NOT_NULL),
        Field("Remark", field_type::TEXT, 0),
        Field(),
        Field("BehindTheEnd", field_type::TEXT, 0),
    },
};

// Anything that SQLite understands, bypassing the wrapper.
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
        Table(database, booksTable).insert({1, "Emma", 0, std::monostate()});
    }
    Database again = createBooks();
    EXPECT_EQ(Table(again, booksTable).count({}), 1);
}

TEST_F(DatabaseFile, MayBeAnEmptyFileBefore)
{
    m_directory.write("books.db", "");
    Database database = createBooks();
    EXPECT_EQ(Table(database, booksTable).count({}), 0);
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

TEST_F(DatabaseFile, MustBeARegularFile)
{
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    const Failure failure = problem(Problem::OTHER, "is not a regular file");
    EXPECT_EQ(failureOf([&] { openForReading(); }), failure) << "a FIFO would wait for its writer";
    EXPECT_EQ(failureOf([&] { createBooks(); }), failure);
    EXPECT_TRUE(failureOf([&] { Database("/dev/null", identity, Database::Access::READ); }).happened);
}

TEST_F(DatabaseFile, ThatIsEmptySaysSo)
{
    m_directory.write("books.db", "");
    EXPECT_EQ(failureOf([&] { openForReading(); }), problem(Problem::EMPTY, "is empty"));
    EXPECT_EQ(failureOf([&] { openForWriting(); }), problem(Problem::EMPTY, "is empty"));
    EXPECT_FALSE(failureOf([&] { createBooks(); }).happened);
}

TEST_F(DatabaseFile, ThatIsNotADatabaseIsRefusedAndKept)
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

// Drops the rights of root, for whom no file is read-only.
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

TEST_F(DatabaseFile, ThatCannotBeOpenedNamesTheCause)
{
    const Database creator = createBooks();
    std::filesystem::permissions(m_directory.path(), std::filesystem::perms(0777));
    const Failure failure = problem(Problem::OTHER, "cannot be opened (Permission denied)");
    for (const char* const part : {"-wal", ""}) {
        std::filesystem::permissions(m_path, std::filesystem::perms(0666));
        std::filesystem::permissions(m_path + "-shm", std::filesystem::perms(0666));
        std::filesystem::permissions(m_path + part, std::filesystem::perms(0));
        const WithoutRoot withoutRoot;
        if (!withoutRoot.succeeded) {
            GTEST_SKIP() << "cannot give up root's rights";
        }
        EXPECT_EQ(failureOf([&] { openForReading(); }), failure) << part;
        EXPECT_EQ(failureOf([&] { openForWriting(); }), failure) << part;
    }
}

TEST_F(DatabaseFile, InAFolderThatMayNotBeWrittenCannotBeRead)
{
    createBooks();
    std::filesystem::permissions(m_path, std::filesystem::perms(0444));
    std::filesystem::permissions(m_directory.path(), std::filesystem::perms(0555));
    Failure failure;
    {
        const WithoutRoot withoutRoot;
        if (!withoutRoot.succeeded) {
            GTEST_SKIP() << "cannot give up root's rights";
        }
        failure = failureOf([&] { openForReading(); });
    }
    std::filesystem::permissions(m_directory.path(), std::filesystem::perms(0777));
    EXPECT_EQ(failure, problem(Problem::READ_ONLY,
                               "is in a folder that may not be written, which reading it needs: copy "
                               "it elsewhere"));
}

TEST_F(DatabaseFile, NamesWhatOthersAttachedToItsTables)
{
    Database database = createBooks();
    EXPECT_EQ(database.findAttachments({booksTable}), std::vector<std::string>());
    EXPECT_TRUE(database.hasConstraintsOf(booksTable));
    RawDatabase(m_path).run(
        "CREATE TRIGGER greedy AFTER INSERT ON Books BEGIN DELETE FROM Books; END;"
        "CREATE UNIQUE INDEX strict ON books (Title);"
        "CREATE TABLE Notes (Text UNIQUE); CREATE INDEX notes ON Notes (Text); CREATE VIEW Titles AS SELECT Title FROM "
        "Books");
    EXPECT_EQ(database.findAttachments({booksTable}),
              (std::vector<std::string>{"table 'Books': the trigger 'greedy' should not be there",
                                        "table 'Books': the index 'strict' should not be there"}))
        << "what is in tables of others, is their business";
    EXPECT_TRUE(database.hasConstraintsOf(booksTable));
}

TEST_F(DatabaseFile, KnowsWhetherConstraintsWereDropped)
{
    Database database = createBooks();
    RawDatabase(m_path).run(
        "DROP TABLE Books; CREATE TABLE Books (Number INTEGER NOT NULL PRIMARY KEY, Title TEXT NOT "
        "NULL, Lent BOOLEAN NOT NULL, Remark TEXT)");
    EXPECT_EQ(database.differenceFrom(booksTable), std::nullopt);
    EXPECT_FALSE(database.hasConstraintsOf(booksTable));
}

TEST_F(DatabaseFile, ThatIsDamagedSaysSo)
{
    {
        Database database = createBooks();
        Table table(database, booksTable);
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
    Table table(database, booksTable);
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
              problem(Problem::LOCKED, "is locked by another program, try again (database is locked)"));
    other.run("COMMIT");
    EXPECT_FALSE(failureOf([&] { Transaction transaction(database); }).happened);
}

TEST_F(DatabaseFile, LockedAgainstReadersIsWaitedForAndThenGivenUp)
{
    createBooks();
    {
        RawDatabase other(m_path);
        other.run("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE");
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(failureOf([&] { openForReading(); }),
                  problem(Problem::LOCKED, "is locked by another program, try again (database is locked)"));
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
    }
    EXPECT_FALSE(failureOf([&] { openForReading(); }).happened);
}

TEST_F(DatabaseFile, OnAFullDiskKeepsWhatWasCommitted)
{
    Database database = createBooks();
    Table table(database, booksTable);
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
    EXPECT_EQ(table.count({}), 2) << "and works again when there is space";
}

TEST_F(DatabaseFile, IsReadWhileAnotherWrites)
{
    Database writer = createBooks();
    Table written(writer, booksTable);
    written.insert({1, "Emma", 0, std::monostate()});

    Transaction transaction(writer);
    written.insert({2, "Persuasion", 0, std::monostate()});
    Database reader = openForReading();
    const Table read(reader, booksTable);
    EXPECT_EQ(read.count({}), 1) << "the last committed state";
    transaction.commit();
    EXPECT_EQ(read.count({}), 2);
}

TEST_F(DatabaseFile, OpenedForReadingShowsOneStateDuringATransaction)
{
    Database writer = createBooks();
    Table written(writer, booksTable);
    Database reader = openForReading();
    const Table read(reader, booksTable);

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
                  Table(reader, booksTable).insert({1, "Emma", 0, std::monostate()});
              }),
              problem(Problem::READ_ONLY, "is read-only (attempt to write a readonly database)"));
}

TEST_F(DatabaseFile, UndoesATransactionThatIsNotCommitted)
{
    Database database = createBooks();
    Table table(database, booksTable);
    {
        const Transaction transaction(database);
        table.insert({1, "Emma", 0, std::monostate()});
    }
    EXPECT_EQ(table.count({}), 0);
}

// A table as another program made it, and what is wrong with it.
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
    EXPECT_EQ(openForReading().differenceFrom({"Shelves", booksTable.columns}), "table 'Shelves' is missing");
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
    Table m_books{m_database, booksTable};
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
    EXPECT_EQ(m_books.count({}), 4) << "the table is usable after a refusal";
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

using KeyPairs = std::vector<std::pair<std::int64_t, std::int64_t>>;

TEST_F(Rows, MayHoldValuesOfForeignTypes)
{
    RawDatabase(m_path).run(
        "DROP TABLE Books; CREATE TABLE Books (Number INTEGER NOT NULL PRIMARY KEY, Title TEXT NOT "
        "NULL, Lent BOOLEAN NOT NULL, Remark TEXT);"
        "INSERT INTO Books VALUES (1, x'00fF', 1.5, NULL), (2, '', 7, 'a' || char(0))");
    EXPECT_EQ(m_books.select({}), (std::vector<Row>{{1, OtherValue{"X'00FF'"}, OtherValue{"1.5"}, std::monostate()},
                                                    {2, "", 7, std::string("a\0", 2)}}));
    EXPECT_EQ(failureOf([&] {
                  m_books.insert({3, OtherValue{"X'00FF'"}, 0, std::monostate()});
              }),
              (Failure{true, Problem::CONSTRAINT, "X'00FF' is neither a number nor a text"}));
}

TEST_F(Rows, AreVisitedAndRemovedByRangesOfKeys)
{
    for (const std::int64_t number : {-5, 1, 2, 3, 7}) {
        m_books.insert({number, "Emma", 0, std::monostate()});
    }
    std::vector<Value> keys;
    m_books.forEachInRange(1, 3, [&](const Row& row) { keys.push_back(row.front()); });
    EXPECT_EQ(keys, (std::vector<Value>{1, 2, 3}));
    EXPECT_EQ(m_books.removeRange(2, 6), 2);
    EXPECT_EQ(m_books.removeRange(2, 6), 0);
    EXPECT_EQ(m_books.removeRange(std::numeric_limits<std::int64_t>::min(), 1), 2);
    EXPECT_EQ(m_books.count({}), 1);
}

TEST_F(Rows, HaveFreeKeysBetweenThem)
{
    EXPECT_EQ(m_books.firstFreeKey(1), 1);
    for (const std::int64_t number : std::vector<std::int64_t>{-5, 1, 2, 3, 5, 6, 4294967295}) {
        m_books.insert({number, "Emma", 0, std::monostate()});
    }
    EXPECT_EQ(m_books.firstFreeKey(1), 4);
    EXPECT_EQ(m_books.firstFreeKey(4), 4);
    EXPECT_EQ(m_books.firstFreeKey(5), 7);
    EXPECT_EQ(m_books.firstFreeKey(4294967295), 4294967296);
}

TEST_F(Rows, ThatAreRepeatedAreFoundWithTheFirstOfThem)
{
    m_books.insert({4, "Emma", 0, "a"});
    m_books.insert({5, "Emma", 1, "a"});
    m_books.insert({9, "Persuasion", 0, "a"});
    m_books.insert({7, "Emma", 0, "b"});
    m_books.insert({2, "Sanditon", 0, "a"});
    m_books.insert({8, "Persuasion", 1, "a"});
    KeyPairs pairs;
    const auto collect = [&](std::int64_t key, std::int64_t first) { pairs.emplace_back(key, first); };
    m_books.forEachRepeated({"Title"}, collect);
    EXPECT_EQ(pairs, (KeyPairs{{5, 4}, {7, 4}, {9, 8}}));
    pairs.clear();
    m_books.forEachRepeated({"Title", "Lent"}, collect);
    EXPECT_EQ(pairs, (KeyPairs{{7, 4}}));
    EXPECT_EQ(failureOf([&] { m_books.forEachRepeated({"BehindTheEnd"}, collect); }).text,
              "table 'Books' has no column 'BehindTheEnd'");
}

TEST_F(Rows, ThatMatchThoseOfAnotherTableAreFoundWithTheFirstOfThem)
{
    RawDatabase(m_path).run(
        "CREATE TABLE Wishes (Number INTEGER PRIMARY KEY, Title TEXT, Lent BOOLEAN);"
        "INSERT INTO Wishes VALUES (1, 'Emma', 1), (3, 'Emma', 0), (2, 'Emma', 0), (4, 'Ulysses', 0)");
    const Table wishes(m_database,
                       {"Wishes",
                        {Field("Number", field_type::INTEGER, PRIMARY_KEY), Field("Title", field_type::TEXT, 0),
                         Field("Lent", field_type::BOOLEAN, 0), Field()}});
    m_books.insert({10, "Emma", 0, "a"});
    m_books.insert({11, "Persuasion", 0, "a"});
    m_books.insert({12, "Emma", 1, "a"});
    KeyPairs pairs;
    m_books.forEachMatch(wishes, {"Title", "Lent"},
                         [&](std::int64_t key, std::int64_t other) { pairs.emplace_back(key, other); });
    EXPECT_EQ(pairs, (KeyPairs{{10, 2}, {12, 1}}));
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
    const TableDefinition odd{"x\"; DROP TABLE y; --",
                              {Field("a \"key\"", field_type::INTEGER, NOT_NULL | PRIMARY_KEY),
                               Field("select", field_type::TEXT, NOT_NULL), Field()}};
    Database database = Database::create(m_path, identity, {odd});
    Table table(database, odd);
    table.insert({1, "text"});
    EXPECT_EQ(table.update({{"select", "other"}}, {{"a \"key\"", 1}}), 1);
    EXPECT_EQ(table.select({}), (std::vector<Row>{{1, "other"}}));
    EXPECT_EQ(database.differenceFrom(odd), std::nullopt);
}

TEST_F(DatabaseFile, MayHaveATableWhoseKeyIsAText)
{
    const TableDefinition authors{"Authors", {Field("Author", field_type::TEXT, NOT_NULL | PRIMARY_KEY), Field()}};
    Database database = Database::create(m_path, identity, {authors});
    Table table(database, authors);
    for (const char* author : {"b", "c", "a"}) {
        table.insert({author});
    }
    EXPECT_EQ(table.select({}), (std::vector<Row>{{"a"}, {"b"}, {"c"}}));
}

TEST_F(DatabaseFile, NeedsATypeAndAColumnToMakeATable)
{
    const TableDefinition noColumns{"Empty", {Field(), Field("BehindTheEnd", field_type::TEXT, 0)}};
    const TableDefinition noType{"Odd", {Field("Number", static_cast<field_type>(2), NOT_NULL), Field()}};
    EXPECT_EQ(failureOf([&] {
                  Database database = createBooks();
                  Table(database, noColumns);
              }).text,
              "the definition of table 'Empty' has no column");
    std::filesystem::remove(m_path);
    EXPECT_EQ(failureOf([&] { Database::create(m_path, identity, {noType}); }).text, "a column cannot be of type 2");
}

}  // namespace
}  // namespace sql
