#ifndef FOREIGN_FIELD_H
#define FOREIGN_FIELD_H

#include <string>

namespace sql {

enum class field_type : unsigned char { TEXT = 1, INTEGER = 0, BOOLEAN = 3 };

class Field {
public:
    Field() : m_type(field_type::INTEGER), m_flags(0) {}
    Field(const Field& other) : m_text(other.m_text), m_type(other.m_type), m_flags(other.m_flags) {}
    explicit Field(const std::string& name, field_type type, int flags) : m_text(name), m_type(type), m_flags(flags) {}

    std::string m_text;
    field_type m_type;
    int m_flags;
};

}  // namespace sql

#endif
