#include "Directory.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "FileDescriptor.h"
#include "Keys.h"
#include "SystemError.h"
#include "TextFile.h"

namespace obmessage {
namespace {

constexpr std::size_t MAX_SERVICE_NAME_LENGTH = 64;
constexpr std::size_t MAX_SOCKET_PATH_LENGTH = sizeof(sockaddr_un::sun_path) - 1;

constexpr std::string_view IPC = "ipc://";
constexpr std::string_view TCP = "tcp://";
constexpr std::string_view INPROC = "inproc://";

bool startsWith(const std::string& text, std::string_view prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool isServiceNameCharacter(char c)
{
    return ((c >= 'a') && (c <= 'z')) || ((c >= 'A') && (c <= 'Z')) || ((c >= '0') && (c <= '9')) || (c == '.') ||
           (c == '_') || (c == '-');
}

// Service names become file names, so they cannot hold a slash or start with a dot.
bool isServiceName(const std::string& name)
{
    return !name.empty() && (name.size() <= MAX_SERVICE_NAME_LENGTH) && (name.front() != '.') &&
           std::all_of(name.begin(), name.end(), isServiceNameCharacter);
}

void checkIpcEndpoint(const std::string& endpoint)
{
    const std::string path = endpoint.substr(IPC.size());
    if (path.empty() || (path.front() != '/')) {
        throw LineError("the path of '" + endpoint + "' is not absolute");
    }
    if (path.size() > MAX_SOCKET_PATH_LENGTH) {
        throw LineError("the path of '" + endpoint + "' is longer than " + std::to_string(MAX_SOCKET_PATH_LENGTH) +
                        " characters");
    }
}

bool isPort(const std::string& text)
{
    std::uint16_t number = 0;
    const char* const pEnd = text.data() + text.size();
    const auto [pRest, error] = std::from_chars(text.data(), pEnd, number);
    return (text == "*") || ((error == std::errc()) && (pRest == pEnd) && (number != 0));
}

std::string hostOf(const std::string& tcpEndpoint)
{
    const std::size_t posColon = tcpEndpoint.rfind(':');
    if ((posColon < TCP.size() + 1) || (posColon + 1 == tcpEndpoint.size())) {
        throw LineError("'" + tcpEndpoint + "' is not tcp://host:port");
    }
    const std::string port = tcpEndpoint.substr(posColon + 1);
    if (!isPort(port)) {
        throw LineError("'" + port + "' is not a port: it must be 1 to 65535, or * to serve at a free one");
    }
    return tcpEndpoint.substr(TCP.size(), posColon - TCP.size());
}

bool isLoopback(const std::string& host)
{
    const bool isNumeric = host.find_first_not_of("0123456789.") == std::string::npos;
    return (host == "localhost") || (host == "[::1]") || (isNumeric && startsWith(host, "127."));
}

void checkTcpEndpoint(const Route& route, bool isPlainAllowed)
{
    const bool needsKeys = !isLoopback(hostOf(route.endpoint)) && !isPlainAllowed;
    if (needsKeys && route.ownKeyFile.empty()) {
        throw LineError("'" + route.endpoint + "' leaves this host without keys; add own-key= or plain");
    }
}

void checkKeys(const Route& route, bool isPlainAllowed)
{
    const bool hasKeys = !route.ownKeyFile.empty();
    const bool hasPeers = !route.serviceKey.empty() || !route.clientsFile.empty();
    if (hasKeys && isPlainAllowed) {
        throw LineError("plain and own-key= are mutually exclusive");
    }
    if (hasKeys != hasPeers) {
        throw LineError("own-key= goes with service-key= (to call), clients= (to serve) or both");
    }
    if (hasKeys && !startsWith(route.endpoint, TCP)) {
        throw LineError("keys are for tcp endpoints only");
    }
    if (!route.serviceKey.empty() && !isKey(route.serviceKey)) {
        throw LineError("service-key= is not a key of 40 characters");
    }
}

void checkEndpoint(const Route& route, bool isPlainAllowed)
{
    if (startsWith(route.endpoint, IPC)) {
        checkIpcEndpoint(route.endpoint);
    } else if (startsWith(route.endpoint, TCP)) {
        checkTcpEndpoint(route, isPlainAllowed);
    } else if (!startsWith(route.endpoint, INPROC) || (route.endpoint.size() == INPROC.size())) {
        throw LineError("unknown endpoint '" + route.endpoint +
                        "': expected ipc:///path, tcp://host:port or inproc://name");
    }
}

// Files are named relative to the directory file.
std::string fileIn(const std::string& folder, const std::string& file)
{
    return (file.front() == '/') ? file : folder + file;
}

// Takes one word after the endpoint: "plain" or an option with its value.
void takeOption(const std::string& word, const std::string& folder, Route& route, bool& isPlainAllowed)
{
    const std::size_t posEqual = word.find('=');
    const std::string option = word.substr(0, posEqual);
    const std::string value = (posEqual == std::string::npos) ? "" : word.substr(posEqual + 1);
    if (word == "plain") {
        isPlainAllowed = true;
    } else if ((option == "own-key") && !value.empty()) {
        route.ownKeyFile = fileIn(folder, value);
    } else if ((option == "service-key") && !value.empty()) {
        route.serviceKey = value;
    } else if ((option == "clients") && !value.empty()) {
        route.clientsFile = fileIn(folder, value);
    } else {
        throw LineError("unknown option '" + word + "': expected plain, own-key=FILE, service-key=KEY or clients=FILE");
    }
}

std::string runtimeDirectoryPath()
{
    const char* const pRuntimeDir = std::getenv("XDG_RUNTIME_DIR");
    if ((pRuntimeDir != nullptr) && (pRuntimeDir[0] == '/')) {
        return std::string(pRuntimeDir) + "/brantel";
    }
    return (::geteuid() == 0) ? "/run/brantel" : "/tmp/brantel-" + std::to_string(::geteuid());
}

}  // namespace

Directory::Directory(const std::string& file)
{
    const std::string folder = file.substr(0, file.rfind('/') + 1);
    readTextFile(file, [&](const std::vector<std::string>& words) { addEntry(words, folder); });
}

void Directory::addEntry(const std::vector<std::string>& words, const std::string& folder)
{
    const std::string& name = words.front();
    if (!isServiceName(name)) {
        throw LineError("'" + name + "' is not a service name");
    }
    if (words.size() < 2) {
        throw LineError("'" + name + "' has no endpoint");
    }
    Route route;
    route.endpoint = words[1];
    bool isPlainAllowed = false;
    for (std::size_t i = 2; i < words.size(); ++i) {
        takeOption(words[i], folder, route, isPlainAllowed);
    }
    checkKeys(route, isPlainAllowed);
    checkEndpoint(route, isPlainAllowed);
    if (!m_routes.emplace(name, route).second) {
        throw LineError("'" + name + "' is listed twice");
    }
}

Route Directory::routeTo(const std::string& serviceName) const
{
    if (!isServiceName(serviceName)) {
        throw std::runtime_error("'" + serviceName + "' is not a service name");
    }
    const auto entry = m_routes.find(serviceName);
    if (entry != m_routes.end()) {
        return entry->second;
    }
    const std::string path = runtimeDirectory() + "/" + serviceName;
    if (path.size() > MAX_SOCKET_PATH_LENGTH) {
        throw std::runtime_error("the socket's path '" + path + "' is longer than " +
                                 std::to_string(MAX_SOCKET_PATH_LENGTH) + " characters");
    }
    Route route;
    route.endpoint = std::string(IPC) + path;
    return route;
}

std::string runtimeDirectory()
{
    std::string path = runtimeDirectoryPath();
    if ((::mkdir(path.c_str(), S_IRWXU) != 0) && (errno != EEXIST)) {
        throwSystemError(path);
    }
    // Opened without following a link, so that what is checked cannot be another user's directory behind one.
    const FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!directory || (::fstat(directory.get(), &status) != 0)) {
        throwSystemError(path);
    }
    if (status.st_uid != ::geteuid()) {
        throw std::runtime_error(path + ": belongs to another user");
    }
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw std::runtime_error(path + ": open to other users; its mode must be 0700");
    }
    return path;
}

}  // namespace obmessage
