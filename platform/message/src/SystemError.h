#ifndef MESSAGE_SYSTEM_ERROR_H
#define MESSAGE_SYSTEM_ERROR_H

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace obmessage {

/// Throws std::runtime_error: what failed, and the text of `errno`.
[[noreturn]] inline void throwSystemError(const std::string& what, int error = errno)
{
    throw std::runtime_error(what + ": " + std::generic_category().message(error));
}

}  // namespace obmessage

#endif
