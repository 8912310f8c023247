#include "Keys.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <zmq.h>

#include "FileDescriptor.h"
#include "SystemError.h"
#include "TextFile.h"
#include "message/OBkeys.h"

namespace obmessage {
namespace {

KeyPair createKeyPair()
{
    char publicKey[41];
    char secretKey[41];
    if (zmq_curve_keypair(publicKey, secretKey) != 0) {
        throw std::runtime_error("ZeroMQ was built without keys");
    }
    return {publicKey, secretKey};
}

void takeKeyLine(const std::vector<std::string>& words, KeyPair& keys)
{
    const bool isPublic = words.front() == "public";
    if ((!isPublic && (words.front() != "secret")) || (words.size() != 2) || !isKey(words[1])) {
        throw LineError("not 'public KEY' or 'secret KEY' with a key of 40 characters");
    }
    std::string& key = isPublic ? keys.publicKey : keys.secretKey;
    if (!key.empty()) {
        throw LineError("a second " + words.front() + " key");
    }
    key = words[1];
}

void writeAll(const FileDescriptor& file, const std::string& text, const std::string& path)
{
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t length = ::write(file.get(), text.data() + written, text.size() - written);
        if (length >= 0) {
            written += static_cast<std::size_t>(length);
        } else if (errno != EINTR) {
            throwSystemError(path);
        }
    }
}

}  // namespace

bool isKey(const std::string& text)
{
    std::uint8_t key[32];
    return (text.size() == 40) && (zmq_z85_decode(key, text.c_str()) != nullptr);
}

KeyPair readKeyPair(const std::string& path)
{
    KeyPair keys;
    readPrivateTextFile(path, [&keys](const std::vector<std::string>& words) { takeKeyLine(words, keys); });
    if (keys.publicKey.empty() || keys.secretKey.empty()) {
        throw std::runtime_error(path + ": a public or secret key is missing");
    }
    return keys;
}

std::set<std::string> readPublicKeys(const std::string& path)
{
    std::set<std::string> keys;
    readTextFile(path, [&keys](const std::vector<std::string>& words) {
        if ((words.front() != "client") || (words.size() < 2) || !isKey(words[1])) {
            throw LineError("not 'client KEY' with a key of 40 characters");
        }
        keys.insert(words[1]);
    });
    return keys;
}

}  // namespace obmessage

std::string createKeyFile(const std::string& path)
{
    using namespace obmessage;
    const KeyPair keys = createKeyPair();
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file) {
        throwSystemError(path);
    }
    writeAll(file, "public " + keys.publicKey + "\nsecret " + keys.secretKey + "\n", path);
    return keys.publicKey;
}
