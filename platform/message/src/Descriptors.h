#ifndef MESSAGE_DESCRIPTORS_H
#define MESSAGE_DESCRIPTORS_H

// Without a free descriptor ZeroMQ ends the process in some places, and takes a service for absent in others. So code
// that makes it need some checks here first.

#include <cstddef>

namespace obmessage {

constexpr std::size_t DESCRIPTORS_OF_CONTEXT = 8;
constexpr std::size_t DESCRIPTORS_OF_CALLER = 5;    // socket, events of its connection, connection
constexpr std::size_t DESCRIPTORS_OF_SERVICE = 10;  // and the lock, the listening socket, a few connections

/// Throws std::runtime_error if the process cannot open `count` more descriptors.
void requireDescriptors(std::size_t count);

}  // namespace obmessage

#endif
