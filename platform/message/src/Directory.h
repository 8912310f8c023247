#ifndef MESSAGE_DIRECTORY_H
#define MESSAGE_DIRECTORY_H

// Where services are: turns a service name into an endpoint and the keys that protect it. A directory file does so for
// the names that it lists (docs/messages.md has the format); every other service is a socket in the private runtime
// directory of this host's user.

#include <map>
#include <string>
#include <vector>

namespace obmessage {

/// The way to one service. Without keys the traffic is plain.
struct Route {
    std::string endpoint;     // ipc://, tcp:// or inproc://
    std::string ownKeyFile;   // the key pair of this process, as caller or as service
    std::string serviceKey;   // the service's public key, for callers
    std::string clientsFile;  // the callers' public keys, for the service
};

class Directory {
public:
    /// Lists no names.
    Directory() = default;

    /// Throws std::runtime_error, with file and line, if the file cannot be read or an entry is refused.
    explicit Directory(const std::string& file);

    /// Throws std::runtime_error if `serviceName` is not a service name, or if it is not listed and the runtime
    /// directory cannot be used; creates the runtime directory if necessary.
    Route routeTo(const std::string& serviceName) const;

private:
    void addEntry(const std::vector<std::string>& words, const std::string& folder);

    std::map<std::string, Route> m_routes;
};

/// The directory that holds this user's sockets, created with mode 0700 if it is not there: brantel under
/// $XDG_RUNTIME_DIR; where that is not set, /run/brantel for root and /tmp/brantel-<user id> for all others. Throws
/// std::runtime_error if it cannot be created, belongs to another user or is open to others.
std::string runtimeDirectory();

}  // namespace obmessage

#endif
