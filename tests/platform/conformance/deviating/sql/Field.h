#ifndef DEVIATING_FIELD_H
#define DEVIATING_FIELD_H

#include <stdexcept>
#include <string>

#include "Deviation.h"

namespace sql {

enum field_type { INTEGER = 0, TEXT = 1, BOOLEAN = 3 };

class Field {
public:
    Field() = default;
    Field(const std::string&, field_type, int) {}
    Field(const Field&)
    {
        if (deviates("fields are not copied")) {
            throw std::logic_error("one field at a time");
        }
    }
};

}  // namespace sql

#endif
