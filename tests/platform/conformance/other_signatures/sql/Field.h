#ifndef OTHER_FIELD_H
#define OTHER_FIELD_H

namespace sql {

enum class field_type { TEXT, INTEGER, BOOLEAN };

class Field {
public:
    Field(const char* name, field_type type, int flags);
    Field(const Field&) = delete;
};

}  // namespace sql

#endif
