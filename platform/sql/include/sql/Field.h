#ifndef SQL_FIELD_H
#define SQL_FIELD_H

// One column of a table. A table's definition is a vector of them in column order, ended by an empty one:
//
//     std::vector<sql::Field>{sql::Field("Slot", sql::field_type::INTEGER, sql::NOT_NULL | sql::PRIMARY_KEY),
//                             sql::Field("CardType", sql::field_type::INTEGER, sql::NOT_NULL),
//                             sql::Field()};
//
// Readers of a definition stop at the first empty field.

#include <cstdint>
#include <string>

namespace sql {

/// What a column holds.
enum field_type : std::int32_t {
    INTEGER = 0,
    TEXT = 1,
    BOOLEAN = 3  ///< 0 or 1
};

/// Bits of a field's flags.
enum field_flag : int {
    NOT_NULL = 1,
    PRIMARY_KEY = 2  ///< the table's key; the first column of a definition
};

class __attribute__((visibility("default"))) Field {
public:
    /// The empty field, which ends a definition.
    Field() = default;

    Field(const std::string& name, field_type type, int flags) : m_name(name), m_type(type), m_flags(flags) {}

    const std::string& name() const { return m_name; }
    field_type type() const { return m_type; }
    int flags() const { return m_flags; }

    /// True for a field without a name.
    bool empty() const { return m_name.empty(); }

private:
    std::string m_name;
    field_type m_type = INTEGER;
    int m_flags = 0;
};

}  // namespace sql

#endif
