#ifndef MESSAGE_KEY_FILES_H
#define MESSAGE_KEY_FILES_H

// The files that hold the keys of services and callers.

#include <set>
#include <string>

#include "Sockets.h"

namespace obmessage {

/// Throws std::runtime_error if the file cannot be read, is not private or does not hold exactly one key pair.
KeyPair readKeyPair(const std::string& path);

/// The public keys of a service's callers: lines of 'client KEY', followed by any words. Throws std::runtime_error like
/// readKeyPair.
std::set<std::string> readPublicKeys(const std::string& path);

}  // namespace obmessage

#endif
