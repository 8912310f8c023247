#ifndef MESSAGE_KEYS_H
#define MESSAGE_KEYS_H

// The keys of services and callers, and the files that hold them.

#include <set>
#include <string>

namespace obmessage {

struct KeyPair {
    std::string publicKey;
    std::string secretKey;
};

/// Keys are text of 40 characters each.
bool isKey(const std::string& text);

/// Throws std::runtime_error if the file cannot be read, is not private or does not hold exactly one key pair.
KeyPair readKeyPair(const std::string& path);

/// The public keys of a service's callers: lines of 'client KEY', followed by any words. Throws std::runtime_error like
/// readKeyPair.
std::set<std::string> readPublicKeys(const std::string& path);

}  // namespace obmessage

#endif
