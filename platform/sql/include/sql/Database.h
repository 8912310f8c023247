#ifndef SQL_DATABASE_H
#define SQL_DATABASE_H

// Tables in a database file, made from their definitions (sql/Field.h).
//
//     sql::Database::create(path, identity, tables);                     once; on an existing database, a check
//
//     sql::Database database(path, identity, sql::Database::Access::WRITE);
//     sql::Table cards(database, {"IfcCardsConfigTable", columns});
//     sql::Transaction transaction(database);
//     cards.insert({3, 17, 1});
//     cards.update({{"EnableEvents", 0}}, {{"Slot", 2}});
//     transaction.commit();                                              without it the transaction is undone
//
// The file is an SQLite database in WAL mode: others read the last committed state while one writes. Values reach it as
// bound parameters only. Names of tables and columns may be any text.
//
// Whatever fails throws sql::Error, whose text names the file and says what is wrong; the file then holds what was
// committed last. A Database and its tables and transactions belong to one thread at a time; every thread and every
// process may have its own.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "sql/Field.h"

#define SQL_EXPORT __attribute__((visibility("default")))

namespace sql {

/// Why an operation failed.
enum class Problem {
    NOT_FOUND,   ///< there is no such file
    EMPTY,       ///< the file holds nothing, as when its creation was interrupted
    FOREIGN,     ///< not a database, or one of another program
    NEWER,       ///< written by a newer version of the program
    DIFFERENT,   ///< a table is missing or not as defined
    READ_ONLY,   ///< the file or its folder may not be written
    FULL,        ///< no space left
    LOCKED,      ///< another program held the database for longer than this one waits
    CORRUPT,     ///< the file is damaged
    CONSTRAINT,  ///< a row does not fit its table: a duplicate key, a value of the wrong type
    OTHER
};

class SQL_EXPORT Error : public std::runtime_error {
public:
    Error(Problem problem, const std::string& text) : std::runtime_error(text), m_problem(problem) {}

    Problem problem() const { return m_problem; }

private:
    Problem m_problem;
};

/// How a program recognises its databases.
struct Identity {
    std::int32_t applicationId;
    std::int32_t schemaVersion;  ///< from 1
};

struct TableDefinition {
    std::string name;
    std::vector<Field> columns;  ///< up to the first empty field
};

/// What no column may hold, but another program may have written: bytes (BLOB) or a fraction (REAL).
struct OtherValue {
    std::string text;  ///< as SQL writes it: X'00FF', 1.5
};

inline bool operator==(const OtherValue& one, const OtherValue& other)
{
    return one.text == other.text;
}

inline bool operator!=(const OtherValue& one, const OtherValue& other)
{
    return one.text != other.text;
}

/// Nothing (null), a number or a text; a BOOLEAN column holds the numbers 0 and 1. An OtherValue is only ever read.
/// Read it like the variant that it is: std::get_if<std::int64_t>(&value). What is none of these does not become one:
/// a fraction, a single character, an enumerator, a pointer and nullptr do not compile.
class Value : public std::variant<std::monostate, std::int64_t, std::string, OtherValue> {
    template <typename T>
    static constexpr bool IS_CHARACTER = std::is_same_v<T, char> || std::is_same_v<T, wchar_t> ||
                                         std::is_same_v<T, char16_t> || std::is_same_v<T, char32_t>;

    template <typename T>
    static constexpr bool IS_NUMBER = std::is_integral_v<T> && !IS_CHARACTER<T> && (sizeof(T) <= sizeof(std::int64_t));

public:
    // NOLINTBEGIN(google-explicit-constructor): rows and conditions are written as the values themselves

    /// Null.
    Value() = default;
    Value(std::monostate) {}
    Value(std::nullptr_t) = delete;

    /// A number of any integer type; a bool is 0 or 1. Throws Error if it is larger than an std::int64_t can be.
    template <typename Integer, std::enable_if_t<IS_NUMBER<Integer>, int> = 0>
    Value(Integer number) : variant(requiredToFit(number))
    {
    }

    Value(const char* text) : variant(std::string(text)) {}
    Value(std::string_view text) : variant(std::string(text)) {}
    Value(std::string text) : variant(std::move(text)) {}
    Value(OtherValue value) : variant(std::move(value)) {}

    // NOLINTEND(google-explicit-constructor)

private:
    template <typename Integer>
    static std::int64_t requiredToFit(Integer number)
    {
        if constexpr (std::is_unsigned_v<Integer> && (sizeof(Integer) == sizeof(std::int64_t))) {
            constexpr std::int64_t LARGEST = std::numeric_limits<std::int64_t>::max();
            if (number > static_cast<std::uint64_t>(LARGEST)) {
                throw Error(Problem::CONSTRAINT, "the number " + std::to_string(number) +
                                                     " is too large for a table; the largest is " +
                                                     std::to_string(LARGEST));
            }
        }
        return static_cast<std::int64_t>(number);
    }
};

/// Values in column order. A list in braces is always the values themselves, whatever their types: {2, true} is a row
/// of two.
class Row : private std::vector<Value> {
    using Values = std::vector<Value>;

public:
    Row() = default;
    Row(std::initializer_list<Value> values) : Values(values) {}  // NOLINT(google-explicit-constructor)

    using Values::const_iterator;
    using Values::iterator;
    using Values::value_type;

    using Values::back;
    using Values::begin;
    using Values::emplace_back;
    using Values::empty;
    using Values::end;
    using Values::front;
    using Values::push_back;
    using Values::resize;
    using Values::size;
    using Values::operator[];

    friend bool operator==(const Row& one, const Row& other)
    {
        return static_cast<const Values&>(one) == static_cast<const Values&>(other);
    }

    friend bool operator!=(const Row& one, const Row& other) { return !(one == other); }
};

struct ColumnValue {
    std::string column;
    Value value;
};
using ColumnValues = std::vector<ColumnValue>;

class SQL_EXPORT Database {
public:
    enum class Access {
        READ,
        READ_AT_ONCE,  ///< READ, without waiting for what another program has locked
        WRITE
    };

    /// Opens an existing database, whose identity must be this one. Creates nothing.
    Database(const std::string& path, const Identity& identity, Access access);

    /// Opens a database for writing, after creating it with these tables if the file is missing or an empty database.
    /// An existing one must have the identity and its tables must be as defined.
    static Database create(const std::string& path, const Identity& identity,
                           const std::vector<TableDefinition>& tables);

    ~Database();
    Database(Database&& other) noexcept;
    Database& operator=(Database&& other) noexcept;

    /// The path that it was opened with.
    const std::string& path() const;

    /// How a table differs from its definition, as a sentence that names the column; no value if it does not.
    std::optional<std::string> differenceFrom(const TableDefinition& table) const;

    /// What is damaged in the file, as sentences; none if nothing is. Reads the whole file.
    std::vector<std::string> findDamage() const;

    /// What others have attached to the tables, as sentences: triggers, which change other rows than asked, and
    /// indexes, which may refuse rows.
    std::vector<std::string> findAttachments(const std::vector<TableDefinition>& tables) const;

    /// True if the table has the constraints of its definition too, not only its columns.
    bool hasConstraintsOf(const TableDefinition& table) const;

private:
    friend class Table;
    friend class Transaction;
    struct Connection;

    explicit Database(std::unique_ptr<Connection> pConnection);

    std::unique_ptr<Connection> m_pConnection;
};

/// While one lives, no other program writes. Undone unless committed. On a database opened for reading it blocks no
/// writer: everything read during it is of one state. A database has at most one at a time.
class SQL_EXPORT Transaction {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Makes the changes permanent, all of them; on failure none.
    void commit();

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

/// One table of a database. The database must outlive it.
class SQL_EXPORT Table {
public:
    Table(Database& database, const TableDefinition& definition);
    ~Table();
    Table(Table&& other) noexcept;
    Table& operator=(Table&& other) noexcept;

    /// The name in its definition.
    const std::string& name() const;

    /// The columns, without the empty field.
    const std::vector<Field>& columns() const;

    /// Adds a row, which has a value for each column.
    void insert(const Row& row);

    /// Sets `changes` in the rows that match all of `where`, in all rows if it is empty. Returns how many those are.
    std::int64_t update(const ColumnValues& changes, const ColumnValues& where);

    /// Deletes the rows that match all of `where`, all rows if it is empty. Returns how many those are.
    std::int64_t remove(const ColumnValues& where);

    /// The rows that match all of `where`, all rows if it is empty, in the order of the key.
    std::vector<Row> select(const ColumnValues& where) const;

    /// Calls `visit` with each of those rows, one at a time.
    void forEach(const ColumnValues& where, const std::function<void(const Row&)>& visit) const;

    /// The number of rows that match all of `where`.
    std::int64_t count(const ColumnValues& where) const;

    /// The largest number in the first column, 0 in an empty table.
    std::int64_t largestKey() const;

    /// The smallest number from `lowest` that is not in the first column.
    std::int64_t firstFreeKey(std::int64_t lowest) const;

    /// Calls `visit` with each row whose key is in `first` to `last`.
    void forEachInRange(std::int64_t first, std::int64_t last, const std::function<void(const Row&)>& visit) const;

    /// Deletes the rows whose key is in `first` to `last`. Returns how many those are.
    std::int64_t removeRange(std::int64_t first, std::int64_t last);

    /// Calls `visit` with the keys of each row that has the same values in `columnNames` as an earlier one, and of the
    /// first of those. The memory that this takes does not grow with the table.
    using KeyPairVisitor = std::function<void(std::int64_t key, std::int64_t otherKey)>;
    void forEachRepeated(const std::vector<std::string>& columnNames, const KeyPairVisitor& visit) const;

    /// Calls `visit` with the keys of each row that has the same values in `columnNames` as a row of another table of
    /// the same database, and of the first of those. The memory that this takes does not grow with the tables.
    void forEachMatch(const Table& other, const std::vector<std::string>& columnNames,
                      const KeyPairVisitor& visit) const;

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

}  // namespace sql

#endif
