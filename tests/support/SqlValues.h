#ifndef TESTS_SUPPORT_SQL_VALUES_H
#define TESTS_SUPPORT_SQL_VALUES_H

// How a failing test shows the values of a row.

#include <ostream>

#include "sql/Database.h"

namespace sql {

inline void PrintTo(const Value& value, std::ostream* pStream)
{
    if (const auto* const pNumber = std::get_if<std::int64_t>(&value)) {
        *pStream << *pNumber;
    } else if (const auto* const pText = std::get_if<std::string>(&value)) {
        *pStream << '"' << *pText << '"';
    } else if (const auto* const pOther = std::get_if<OtherValue>(&value)) {
        *pStream << pOther->text;
    } else {
        *pStream << "null";
    }
}

}  // namespace sql

#endif
