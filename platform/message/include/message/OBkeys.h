#ifndef MESSAGE_OB_KEYS_H
#define MESSAGE_OB_KEYS_H

// Keys for services and callers on different hosts (docs/messages.md). A program that administers a node calls this;
// components only name the files in their directory file.

#include <string>

#include "message/MessageExport.h"

/// Writes a new key pair to the file `path`, which must not exist yet, readable by this user alone, and returns its
/// public key: 40 printable characters. Throws std::runtime_error if the file cannot be written.
MESSAGE_EXPORT std::string createKeyFile(const std::string& path);

#endif
