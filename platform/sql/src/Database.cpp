#include "sql/Database.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <type_traits>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

namespace sql {

namespace {

// A reader waits only for a moment; a writer may have to wait for another one's import.
constexpr int READ_WAIT_MS = 2000;
constexpr int WRITE_WAIT_MS = 10000;

struct Explanation {
    int sqliteCode;
    Problem problem;
    const char* text;
};

constexpr std::array explanations{
    Explanation{SQLITE_NOTADB, Problem::FOREIGN, "is not a database"},
    Explanation{SQLITE_CORRUPT, Problem::CORRUPT, "is damaged"},
    Explanation{SQLITE_BUSY, Problem::LOCKED, "is locked by another program, try again"},
    Explanation{SQLITE_LOCKED, Problem::LOCKED, "is locked by another program, try again"},
    Explanation{SQLITE_READONLY, Problem::READ_ONLY, "is read-only"},
    Explanation{SQLITE_PERM, Problem::READ_ONLY, "is read-only"},
    Explanation{SQLITE_FULL, Problem::FULL, "cannot grow: the disk is full"},
    Explanation{SQLITE_CANTOPEN, Problem::OTHER, "cannot be opened"},
    Explanation{SQLITE_IOERR, Problem::OTHER, "cannot be read or written"},
    Explanation{SQLITE_CONSTRAINT, Problem::CONSTRAINT, "refuses the row"},
    Explanation{SQLITE_MISMATCH, Problem::CONSTRAINT, "refuses the row"},
    Explanation{SQLITE_NOMEM, Problem::OTHER, "needs more memory than there is"},
};

std::string quotedPath(const std::string& path)
{
    return "'" + path + "'";
}

// With the cause if SQLite cannot open a file: `systemError`, an errno or 0.
std::string detailOf(const SQLite::Exception& error, int code, int systemError)
{
    return ((code == SQLITE_CANTOPEN) && (systemError != 0)) ? std::generic_category().message(systemError)
                                                             : error.what();
}

Error explained(const std::string& path, const SQLite::Exception& error, int systemError)
{
    constexpr int primaryCodeBits = 0xff;
    const int code = error.getErrorCode() & primaryCodeBits;
    const auto* const pExplanation = std::find_if(explanations.begin(), explanations.end(),
                                                  [&](const Explanation& each) { return each.sqliteCode == code; });
    if (pExplanation == explanations.end()) {
        return Error(Problem::OTHER, quotedPath(path) + ": " + error.what());
    }
    return Error(pExplanation->problem,
                 quotedPath(path) + " " + pExplanation->text + " (" + detailOf(error, code, systemError) + ")");
}

std::string quotedName(const std::string& name)
{
    std::string quoted = "\"";
    for (const char character : name) {
        quoted += (character == '"') ? "\"\"" : std::string(1, character);
    }
    return quoted + "\"";
}

std::vector<Field> columnsOf(const TableDefinition& table)
{
    const auto end =
        std::find_if(table.columns.begin(), table.columns.end(), [](const Field& field) { return field.empty(); });
    return std::vector<Field>(table.columns.begin(), end);
}

bool isNotNull(const Field& field)
{
    return (field.flags() & NOT_NULL) != 0;
}

bool isKey(const Field& field)
{
    return (field.flags() & PRIMARY_KEY) != 0;
}

std::string typeName(field_type type)
{
    switch (type) {
        case INTEGER: return "INTEGER";
        case TEXT: return "TEXT";
        case BOOLEAN: return "BOOLEAN";
    }
    throw Error(Problem::OTHER, "a column cannot be of type " + std::to_string(static_cast<int>(type)));
}

// By default SQLite accepts a value of any type in any column. The name of a constraint is its error message.
std::string typeConstraint(const Field& field)
{
    const std::string name = quotedName(field.name());
    const std::string unlessNull = isNotNull(field) ? "" : name + " IS NULL OR ";
    const auto constraint = [&](const std::string& what, const std::string& test) {
        return "CONSTRAINT " + quotedName(field.name() + " is " + what) + " CHECK (" + unlessNull + test + ")";
    };
    switch (field.type()) {
        case INTEGER: return constraint("a number", "typeof(" + name + ") = 'integer'");
        case TEXT: return constraint("a text", "typeof(" + name + ") = 'text'");
        case BOOLEAN: return constraint("0 or 1", name + " IN (0, 1)");
    }
    return "";
}

std::string described(const std::string& name, const std::string& type, bool notNull, bool key)
{
    return "'" + name + "' " + type + (notNull ? " NOT NULL" : "") + (key ? " PRIMARY KEY" : "");
}

std::string described(const Field& field)
{
    return described(field.name(), typeName(field.type()), isNotNull(field), isKey(field));
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator)
{
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : separator) + part;
    }
    return text;
}

std::string createTableStatement(const TableDefinition& table)
{
    std::vector<std::string> lines;
    std::vector<std::string> keys;
    for (const Field& field : columnsOf(table)) {
        lines.push_back("    " + quotedName(field.name()) + " " + typeName(field.type()) +
                        (isNotNull(field) ? " NOT NULL " : " ") + typeConstraint(field));
        if (isKey(field)) {
            keys.push_back(quotedName(field.name()));
        }
    }
    if (!keys.empty()) {
        lines.push_back("    PRIMARY KEY (" + joined(keys, ", ") + ")");
    }
    return "CREATE TABLE " + quotedName(table.name) + " (\n" + joined(lines, ",\n") + "\n)";
}

void bind(SQLite::Statement& statement, int index, const Value& value)
{
    if (const auto* const pNumber = std::get_if<std::int64_t>(&value)) {
        statement.bind(index, *pNumber);
    } else if (const auto* const pText = std::get_if<std::string>(&value)) {
        statement.bind(index, *pText);
    } else if (std::holds_alternative<std::monostate>(value)) {
        statement.bind(index);
    } else {
        throw Error(Problem::CONSTRAINT, std::get<OtherValue>(value).text + " is neither a number nor a text");
    }
}

void bind(SQLite::Statement& statement, int firstIndex, const ColumnValues& values)
{
    for (const ColumnValue& each : values) {
        bind(statement, firstIndex++, each.value);
    }
}

std::string blobText(const std::string& bytes)
{
    std::string text = "X'";
    for (const char byte : bytes) {
        constexpr const char* DIGITS = "0123456789ABCDEF";
        const auto number = static_cast<unsigned char>(byte);
        text += {DIGITS[number / 16U], DIGITS[number % 16U]};
    }
    return text + "'";
}

Value valueOf(const SQLite::Column& column)
{
    if (column.isInteger()) {
        return column.getInt64();
    }
    if (column.isNull()) {
        return std::monostate();
    }
    if (column.isText()) {
        return column.getString();
    }
    return OtherValue{column.isBlob() ? blobText(column.getString()) : column.getString()};
}

std::int64_t firstNumber(const SQLite::Database& database, const std::string& query)
{
    SQLite::Statement statement(database, query);
    statement.executeStep();
    return statement.getColumn(0).getInt64();
}

// A name that SQLite takes as a file's, whatever it starts with.
std::string fileName(const std::string& path)
{
    return (path.rfind('/', 0) == 0) ? path : "./" + path;
}

// The errno of a database that cannot be opened: opened once more, because its SQLite::Database is gone; 0 if it can.
int systemErrorOfOpening(const std::string& path, int flags)
{
    sqlite3* pDatabase = nullptr;
    sqlite3_open_v2(fileName(path).c_str(), &pDatabase, flags, nullptr);
    const int error = sqlite3_system_errno(pDatabase);
    sqlite3_close(pDatabase);
    return error;
}

SQLite::Database opened(const std::string& path, int flags, int waitTime)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status)) {
        throw Error(Problem::OTHER, quotedPath(path) + " is a folder");
    }
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        throw Error(Problem::OTHER,
                    quotedPath(path) + " is not a regular file");  // opening a FIFO waits for its writer
    }
    try {
        return SQLite::Database(fileName(path), flags, waitTime);
    } catch (const SQLite::Exception& failure) {
        throw explained(path, failure, systemErrorOfOpening(path, flags));
    }
}

bool isEmptyDatabase(const SQLite::Database& database)
{
    return (firstNumber(database, "SELECT count(*) FROM sqlite_schema") == 0) &&
           (firstNumber(database, "PRAGMA application_id") == 0) && (firstNumber(database, "PRAGMA user_version") == 0);
}

void requireIdentity(const std::string& path, const SQLite::Database& database, const Identity& identity)
{
    if (isEmptyDatabase(database)) {
        throw Error(Problem::EMPTY, quotedPath(path) + " is empty");
    }
    const std::int64_t applicationId = firstNumber(database, "PRAGMA application_id");
    if (applicationId != identity.applicationId) {
        throw Error(Problem::FOREIGN, quotedPath(path) + " is a database of another program (its application_id is " +
                                          std::to_string(applicationId) + ", not " +
                                          std::to_string(identity.applicationId) + ")");
    }
    const std::int64_t version = firstNumber(database, "PRAGMA user_version");
    if (version > identity.schemaVersion) {
        throw Error(Problem::NEWER, quotedPath(path) +
                                        " was written by a newer version of this program (its schema is " +
                                        std::to_string(version) + ", this program knows " +
                                        std::to_string(identity.schemaVersion) + ")");
    }
}

void requireWritable(const std::string& path, SQLite::Database& database)
{
    // SQLite opens a file that it may not write as read-only.
    if (sqlite3_db_readonly(database.getHandle(), "main") != 0) {
        throw Error(Problem::READ_ONLY, quotedPath(path) + " is read-only");
    }
}

}  // namespace

struct Database::Connection {
    Connection(const std::string& filePath, int flags, int waitTime)
        : path(filePath),
          isForWriting((flags & SQLITE_OPEN_READWRITE) != 0),
          database(opened(filePath, flags, waitTime))
    {
    }

    // Does what `operation` does, and throws in this library's terms.
    template <typename Operation>
    auto explainingErrors(const Operation& operation) const -> std::invoke_result_t<Operation>
    {
        try {
            return operation();
        } catch (const SQLite::Exception& error) {
            throw explained(path, error, sqlite3_system_errno(database.getHandle()));
        }
    }

    std::string path;
    bool isForWriting;
    SQLite::Database database;
};

Database::Database(std::unique_ptr<Connection> pConnection) : m_pConnection(std::move(pConnection)) {}

Database::Database(const std::string& path, const Identity& identity, Access access)
{
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown)) {
        throw Error(Problem::NOT_FOUND, quotedPath(path) + " does not exist");
    }
    if (access == Access::WRITE) {
        m_pConnection = std::make_unique<Connection>(path, SQLITE_OPEN_READWRITE, WRITE_WAIT_MS);
    } else {
        const int waitTime = (access == Access::READ) ? READ_WAIT_MS : 0;
        m_pConnection = std::make_unique<Connection>(path, SQLITE_OPEN_READONLY, waitTime);
    }
    try {
        m_pConnection->explainingErrors([&] { requireIdentity(path, m_pConnection->database, identity); });
    } catch (const Error& error) {
        if (error.problem() != Problem::READ_ONLY) {
            throw;
        }
        // The first reader makes a file that all readers and writers share.
        throw Error(
            Problem::READ_ONLY,
            quotedPath(path) + " is in a folder that may not be written, which reading it needs: copy it elsewhere");
    }
    if (m_pConnection->isForWriting) {
        requireWritable(path, m_pConnection->database);
    }
}

Database Database::create(const std::string& path, const Identity& identity, const std::vector<TableDefinition>& tables)
{
    Database created(std::make_unique<Connection>(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, WRITE_WAIT_MS));
    SQLite::Database& database = created.m_pConnection->database;
    created.m_pConnection->explainingErrors([&] {
        if (!isEmptyDatabase(database)) {
            requireIdentity(path, database, identity);
        }
        requireWritable(path, database);
        database.exec("PRAGMA journal_mode = WAL");

        SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
        if (isEmptyDatabase(database)) {
            for (const TableDefinition& table : tables) {
                database.exec(createTableStatement(table));
            }
            database.exec("PRAGMA application_id = " + std::to_string(identity.applicationId));
            database.exec("PRAGMA user_version = " + std::to_string(identity.schemaVersion));
        }
        transaction.commit();
        requireIdentity(path, database, identity);  // again: another program may have created it in between
    });
    for (const TableDefinition& table : tables) {
        if (const std::optional<std::string> difference = created.differenceFrom(table)) {
            throw Error(Problem::DIFFERENT, quotedPath(path) + ": " + *difference);
        }
    }
    return created;
}

Database::~Database() = default;
Database::Database(Database&& other) noexcept = default;
Database& Database::operator=(Database&& other) noexcept = default;

const std::string& Database::path() const
{
    return m_pConnection->path;
}

std::optional<std::string> Database::differenceFrom(const TableDefinition& table) const
{
    return m_pConnection->explainingErrors([&]() -> std::optional<std::string> {
        const std::string inTable = "table '" + table.name + "': ";
        SQLite::Statement found(m_pConnection->database,
                                "SELECT name, type, \"notnull\", pk FROM pragma_table_info(?) ORDER BY cid");
        found.bind(1, table.name);
        if (!found.executeStep()) {
            return "table '" + table.name + "' is missing";
        }
        int position = 0;
        for (const Field& field : columnsOf(table)) {
            ++position;
            const std::string inColumn = inTable + "column " + std::to_string(position) + " ";
            if (found.isDone()) {
                return inColumn + "is missing; it should be " + described(field);
            }
            const std::string actual = described(found.getColumn(0).getString(), found.getColumn(1).getString(),
                                                 found.getColumn(2).getInt() != 0, found.getColumn(3).getInt() != 0);
            if (actual != described(field)) {
                return inColumn + "is " + actual + "; it should be " + described(field);
            }
            found.executeStep();
        }
        if (!found.isDone()) {
            return inTable + "column " + std::to_string(position + 1) + " '" + found.getColumn(0).getString() +
                   "' should not be there";
        }
        return std::nullopt;
    });
}

std::vector<std::string> Database::findDamage() const
{
    return m_pConnection->explainingErrors([&] {
        std::vector<std::string> damage;
        SQLite::Statement check(m_pConnection->database, "PRAGMA integrity_check");
        while (check.executeStep()) {
            damage.push_back(check.getColumn(0).getString());
        }
        return (damage == std::vector<std::string>{"ok"}) ? std::vector<std::string>() : damage;
    });
}

std::vector<std::string> Database::findAttachments(const std::vector<TableDefinition>& tables) const
{
    return m_pConnection->explainingErrors([&] {
        std::vector<std::string> attachments;
        // An index without a statement is part of its table: that of the key.
        SQLite::Statement found(
            m_pConnection->database,
            "SELECT type, name FROM sqlite_schema WHERE type IN ('index', 'trigger') AND sql IS NOT "
            "NULL AND tbl_name = ? COLLATE NOCASE ORDER BY name");
        for (const TableDefinition& table : tables) {
            found.reset();
            found.bind(1, table.name);
            while (found.executeStep()) {
                attachments.push_back("table '" + table.name + "': the " + found.getColumn(0).getString() + " '" +
                                      found.getColumn(1).getString() + "' should not be there");
            }
        }
        return attachments;
    });
}

bool Database::hasConstraintsOf(const TableDefinition& table) const
{
    return m_pConnection->explainingErrors([&] {
        SQLite::Statement found(m_pConnection->database,
                                "SELECT sql FROM sqlite_schema WHERE type = 'table' AND name = ?");
        found.bind(1, table.name);
        return found.executeStep() && (found.getColumn(0).getString() == createTableStatement(table));
    });
}

struct Transaction::State {
    explicit State(Database::Connection& databaseConnection)
        : connection(databaseConnection),
          transaction(connection.database, connection.isForWriting ? SQLite::TransactionBehavior::IMMEDIATE
                                                                   : SQLite::TransactionBehavior::DEFERRED)
    {
    }

    Database::Connection& connection;
    SQLite::Transaction transaction;
};

Transaction::Transaction(Database& database)
    : m_pState(
          database.m_pConnection->explainingErrors([&] { return std::make_unique<State>(*database.m_pConnection); }))
{
}

Transaction::~Transaction() = default;

void Transaction::commit()
{
    m_pState->connection.explainingErrors([&] { m_pState->transaction.commit(); });
}

struct Table::State {
    State(Database::Connection& tablesConnection, const TableDefinition& definition)
        : connection(tablesConnection), name(definition.name), columns(columnsOf(definition))
    {
        if (columns.empty()) {
            throw Error(Problem::OTHER, "the definition of table '" + name + "' has no column");
        }
    }

    // "(column IS ?) AND ..." for the matching rows, all rows without conditions.
    std::string whereClause(const ColumnValues& where) const { return clause(where, " WHERE ", " AND ", " IS ?"); }

    std::string clause(const ColumnValues& values, const std::string& start, const std::string& separator,
                       const std::string& relation) const
    {
        std::vector<std::string> parts;
        for (const ColumnValue& each : values) {
            requireColumn(each.column);
            parts.push_back(quotedName(each.column) + relation);
        }
        return parts.empty() ? "" : start + joined(parts, separator);
    }

    // SQLite takes a quoted name that is not a column's as a text.
    void requireColumn(const std::string& columnName) const
    {
        const bool isThere =
            std::any_of(columns.begin(), columns.end(), [&](const Field& field) { return field.name() == columnName; });
        if (!isThere) {
            throw Error(Problem::OTHER, "table '" + name + "' has no column '" + columnName + "'");
        }
    }

    std::string columnList() const
    {
        std::vector<std::string> names;
        for (const Field& field : columns) {
            names.push_back(quotedName(field.name()));
        }
        return joined(names, ", ");
    }

    std::string keyName() const { return quotedName(columns.front().name()); }

    // "one."Owner" = other."Owner" AND ...".
    std::string equality(const std::vector<std::string>& columnNames) const
    {
        std::vector<std::string> parts;
        for (const std::string& columnName : columnNames) {
            requireColumn(columnName);
            parts.push_back("one." + quotedName(columnName) + " = other." + quotedName(columnName));
        }
        return joined(parts, " AND ");
    }

    static void visitRows(SQLite::Statement& statement, const std::function<void(const Row&)>& visit)
    {
        while (statement.executeStep()) {
            Row row;
            for (int i = 0; i < statement.getColumnCount(); ++i) {
                row.push_back(valueOf(statement.getColumn(i)));
            }
            visit(row);
        }
    }

    void visitKeyPairs(const std::string& query, const KeyPairVisitor& visit) const
    {
        connection.explainingErrors([&] {
            SQLite::Statement statement(connection.database, query);
            while (statement.executeStep()) {
                visit(statement.getColumn(0).getInt64(), statement.getColumn(1).getInt64());
            }
        });
    }

    std::string insertStatement() const
    {
        const std::vector<std::string> parameters(columns.size(), "?");
        return "INSERT INTO " + quotedName(name) + " (" + columnList() + ") VALUES (" + joined(parameters, ", ") + ")";
    }

    Database::Connection& connection;
    std::string name;
    std::vector<Field> columns;
    std::optional<SQLite::Statement> insertion;  // prepared once: imports insert many rows
};

Table::Table(Database& database, const TableDefinition& definition)
    : m_pState(std::make_unique<State>(*database.m_pConnection, definition))
{
}

Table::~Table() = default;
Table::Table(Table&& other) noexcept = default;
Table& Table::operator=(Table&& other) noexcept = default;

const std::string& Table::name() const
{
    return m_pState->name;
}

const std::vector<Field>& Table::columns() const
{
    return m_pState->columns;
}

void Table::insert(const Row& row)
{
    if (row.size() != columns().size()) {
        throw Error(Problem::CONSTRAINT, "table '" + name() + "' has " + std::to_string(columns().size()) +
                                             " columns, the row has " + std::to_string(row.size()) + " values");
    }
    m_pState->connection.explainingErrors([&] {
        std::optional<SQLite::Statement>& insertion = m_pState->insertion;
        if (!insertion) {
            insertion.emplace(m_pState->connection.database, m_pState->insertStatement());
        }
        insertion->tryReset();  // the failure of an insertion has been reported
        for (std::size_t i = 0; i < row.size(); ++i) {
            bind(*insertion, static_cast<int>(i) + 1, row[i]);
        }
        insertion->exec();
    });
}

std::int64_t Table::update(const ColumnValues& changes, const ColumnValues& where)
{
    if (changes.empty()) {
        throw Error(Problem::OTHER, "an update of table '" + name() + "' changes no column");
    }
    return m_pState->connection.explainingErrors([&]() -> std::int64_t {
        SQLite::Statement statement(m_pState->connection.database,
                                    "UPDATE " + quotedName(name()) + m_pState->clause(changes, " SET ", ", ", " = ?") +
                                        m_pState->whereClause(where));
        bind(statement, 1, changes);
        bind(statement, 1 + static_cast<int>(changes.size()), where);
        return statement.exec();
    });
}

std::int64_t Table::remove(const ColumnValues& where)
{
    return m_pState->connection.explainingErrors([&]() -> std::int64_t {
        SQLite::Statement statement(m_pState->connection.database,
                                    "DELETE FROM " + quotedName(name()) + m_pState->whereClause(where));
        bind(statement, 1, where);
        return statement.exec();
    });
}

std::vector<Row> Table::select(const ColumnValues& where) const
{
    std::vector<Row> rows;
    forEach(where, [&](const Row& row) { rows.push_back(row); });
    return rows;
}

void Table::forEach(const ColumnValues& where, const std::function<void(const Row&)>& visit) const
{
    m_pState->connection.explainingErrors([&] {
        SQLite::Statement statement(m_pState->connection.database, "SELECT " + m_pState->columnList() + " FROM " +
                                                                       quotedName(name()) +
                                                                       m_pState->whereClause(where) + " ORDER BY 1");
        bind(statement, 1, where);
        State::visitRows(statement, visit);
    });
}

std::int64_t Table::count(const ColumnValues& where) const
{
    return m_pState->connection.explainingErrors([&] {
        SQLite::Statement statement(m_pState->connection.database,
                                    "SELECT count(*) FROM " + quotedName(name()) + m_pState->whereClause(where));
        bind(statement, 1, where);
        statement.executeStep();
        return std::int64_t{statement.getColumn(0).getInt64()};
    });
}

std::int64_t Table::largestKey() const
{
    return m_pState->connection.explainingErrors([&] {
        return firstNumber(m_pState->connection.database,
                           "SELECT ifnull(max(" + m_pState->keyName() + "), 0) FROM " + quotedName(name()));
    });
}

std::int64_t Table::firstFreeKey(std::int64_t lowest) const
{
    return m_pState->connection.explainingErrors([&] {
        SQLite::Statement statement(m_pState->connection.database, "SELECT " + m_pState->keyName() + " FROM " +
                                                                       quotedName(name()) + " WHERE " +
                                                                       m_pState->keyName() + " >= ? ORDER BY 1");
        statement.bind(1, lowest);
        std::int64_t free = lowest;
        while (statement.executeStep() && (statement.getColumn(0).getInt64() == free)) {
            ++free;
        }
        return free;
    });
}

void Table::forEachInRange(std::int64_t first, std::int64_t last, const std::function<void(const Row&)>& visit) const
{
    m_pState->connection.explainingErrors([&] {
        SQLite::Statement statement(m_pState->connection.database,
                                    "SELECT " + m_pState->columnList() + " FROM " + quotedName(name()) + " WHERE " +
                                        m_pState->keyName() + " BETWEEN ? AND ? ORDER BY 1");
        statement.bind(1, first);
        statement.bind(2, last);
        State::visitRows(statement, visit);
    });
}

std::int64_t Table::removeRange(std::int64_t first, std::int64_t last)
{
    return m_pState->connection.explainingErrors([&]() -> std::int64_t {
        SQLite::Statement statement(m_pState->connection.database, "DELETE FROM " + quotedName(name()) + " WHERE " +
                                                                       m_pState->keyName() + " BETWEEN ? AND ?");
        statement.bind(1, first);
        statement.bind(2, last);
        return statement.exec();
    });
}

void Table::forEachRepeated(const std::vector<std::string>& columnNames, const KeyPairVisitor& visit) const
{
    std::vector<std::string> names;
    for (const std::string& columnName : columnNames) {
        m_pState->requireColumn(columnName);
        names.push_back(quotedName(columnName));
    }
    m_pState->visitKeyPairs("SELECT key, firstKey FROM (SELECT " + m_pState->keyName() + " AS key, min(" +
                                m_pState->keyName() + ") OVER (PARTITION BY " + joined(names, ", ") +
                                ") AS firstKey FROM " + quotedName(name()) + ") WHERE key <> firstKey ORDER BY key",
                            visit);
}

void Table::forEachMatch(const Table& other, const std::vector<std::string>& columnNames,
                         const KeyPairVisitor& visit) const
{
    m_pState->visitKeyPairs("SELECT one." + m_pState->keyName() + ", min(other." + other.m_pState->keyName() +
                                ") FROM " + quotedName(name()) + " AS one JOIN " + quotedName(other.name()) +
                                " AS other ON " + m_pState->equality(columnNames) + " GROUP BY 1 ORDER BY 1",
                            visit);
}

}  // namespace sql
