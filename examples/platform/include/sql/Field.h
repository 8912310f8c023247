#ifndef MINIMAL_FIELD_H
#define MINIMAL_FIELD_H

#include <string>

namespace sql {

enum class field_type { INTEGER = 0, TEXT = 1, BOOLEAN = 3 };

struct Field {
    Field() = default;
    Field(const std::string& columnName, field_type columnType, int columnFlags)
        : name(columnName), type(columnType), flags(columnFlags)
    {
    }

    std::string name;
    field_type type = field_type::INTEGER;
    int flags = 0;
};

}  // namespace sql

#endif
