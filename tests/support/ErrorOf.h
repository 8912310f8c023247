#ifndef TESTS_SUPPORT_ERROR_OF_H
#define TESTS_SUPPORT_ERROR_OF_H

#include <stdexcept>
#include <string>

/// What `act` throws, as text; empty if it throws nothing.
template <typename Action>
std::string errorOf(Action act)
{
    try {
        act();
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

#endif
