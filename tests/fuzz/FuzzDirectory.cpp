// Files that define where services are and who may call them: an accepted entry has a valid endpoint and valid keys.
//
// Input: the file, read as a directory, as a key pair and as a list of callers.

#include <sstream>
#include <stdexcept>

#include "Directory.h"
#include "Keys.h"
#include "fuzz/FuzzFiles.h"

namespace {

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

bool isPort(const std::string& text)
{
    const bool isNumber = !text.empty() && (text.find_first_not_of("0123456789") == std::string::npos);
    return (text == "*") || (isNumber && (std::stod(text) >= 1) && (std::stod(text) <= 65535));
}

void requireSound(const obmessage::Route& route)
{
    const std::string& endpoint = route.endpoint;
    const bool isTcp = startsWith(endpoint, "tcp://");
    require(endpoint.find('\0') == std::string::npos);
    require(isTcp || startsWith(endpoint, "ipc:///") || startsWith(endpoint, "inproc://"));
    require(!isTcp || isPort(endpoint.substr(endpoint.rfind(':') + 1)));
    require(route.serviceKey.empty() || obmessage::isKey(route.serviceKey));
    require(route.ownKeyFile.empty() == (route.serviceKey.empty() && route.clientsFile.empty()));
    require(isTcp || route.ownKeyFile.empty());
}

void readDirectory(const std::string& path, const std::string& content)
{
    const obmessage::Directory directory(path);
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        if ((words >> name) && (name.front() != '#')) {
            requireSound(directory.routeTo(name));
        }
    }
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    const std::string content = textOf(pData, size);
    const std::string path = fileOf(content);
    isAccepted<std::runtime_error>(path, [&] { readDirectory(path, content); });
    isAccepted<std::runtime_error>(path, [&] {
        const obmessage::KeyPair keys = obmessage::readKeyPair(path);
        require(obmessage::isKey(keys.publicKey) && obmessage::isKey(keys.secretKey));
    });
    isAccepted<std::runtime_error>(path, [&] {
        for (const std::string& key : obmessage::readPublicKeys(path)) {
            require(obmessage::isKey(key));
        }
    });
    return 0;
}
