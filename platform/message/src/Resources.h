#ifndef MESSAGE_RESOURCES_H
#define MESSAGE_RESOURCES_H

// Without a free descriptor ZeroMQ ends the process in some places, and takes a service for absent in others; without
// memory, or its threads, it ends the process. So code that makes it need some checks here first. What others take
// between the check and the use is missing nevertheless.

#include <cstddef>

namespace obmessage {

constexpr std::size_t DESCRIPTORS_OF_CONTEXT = 8;
constexpr std::size_t DESCRIPTORS_OF_CALLER = 5;    // socket, events of its connection, connection
constexpr std::size_t DESCRIPTORS_OF_SERVICE = 10;  // and the lock, the listening socket, a few connections

constexpr std::size_t MEMORY_OF_CONTEXT = std::size_t{1024} * 1024;  // without the stacks of its threads
constexpr std::size_t MEMORY_OF_SOCKET = std::size_t{256} * 1024;    // with events and connection

/// Throws std::runtime_error if the process cannot open `count` more descriptors.
void requireDescriptors(std::size_t count);

/// Throws std::runtime_error if the process cannot get `size` more bytes.
void requireMemory(std::size_t size);

/// Throws std::runtime_error if the process cannot start `count` more threads: there is no memory for their stacks, or
/// it may not have as many.
void requireThreads(std::size_t count);

}  // namespace obmessage

#endif
