#include "support/FakeService.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// Offsets of the envelope.
constexpr std::size_t KIND = 3;
constexpr std::size_t SEQUENCE_NUMBER = 4;
constexpr std::size_t RESULT = 12;
constexpr std::size_t NAME_LENGTH = 19;
constexpr char ANSWER = 2;

constexpr int BACKLOG = 1000;

int unixSocket(const std::string& path, int (*use)(int, const sockaddr*, socklen_t))
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (use(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error(path + ": " + std::strerror(errno));  // NOLINT(concurrency-mt-unsafe)
    }
    return socket;
}

void putNumber(std::string& message, std::size_t offset, std::size_t size, std::uint64_t number)
{
    for (std::size_t i = 0; i < size; ++i) {
        message.at(offset + size - 1 - i) = static_cast<char>((number >> (8 * i)) & 0xFF);
    }
}

// False when the connection has ended.
bool forward(int from, int to)
{
    char bytes[65536];
    const ssize_t length = ::recv(from, bytes, sizeof bytes, 0);
    if (length <= 0) {
        return false;
    }
    for (ssize_t sent = 0; sent < length;) {
        const ssize_t part = ::send(to, bytes + sent, static_cast<std::size_t>(length - sent), MSG_NOSIGNAL);
        if (part <= 0) {
            return false;
        }
        sent += part;
    }
    return true;
}

}  // namespace

FakeService::FakeService(const std::string& path, Handler handler, Door door)
    : m_path(path),
      m_handler(std::move(handler)),
      m_door(std::move(door)),
      m_socket(m_context, zmq::socket_type::router),
      m_end(::eventfd(0, EFD_CLOEXEC))
{
    m_socket.set(zmq::sockopt::linger, 0);
    m_socket.bind("ipc://" + path + ".inside");
    ::unlink(path.c_str());
    m_listener = unixSocket(path, ::bind);
    ::listen(m_listener, BACKLOG);
    m_thread = std::thread(&FakeService::run, this);
}

FakeService::~FakeService()
{
    const std::uint64_t one = 1;
    static_cast<void>(::write(m_end, &one, sizeof one));
    m_thread.join();
    for (const Relay& relay : m_relays) {
        ::close(relay.outside);
        ::close(relay.inside);
    }
    for (const int connection : m_starved) {
        ::close(connection);
    }
    ::close(m_listener);
    ::close(m_end);
    ::unlink(m_path.c_str());
}

void FakeService::run()
{
    for (;;) {
        std::vector<zmq::pollitem_t> items = {{nullptr, m_end, ZMQ_POLLIN, 0},
                                              {nullptr, m_listener, ZMQ_POLLIN, 0},
                                              {m_socket.handle(), 0, ZMQ_POLLIN, 0}};
        constexpr std::size_t N_FIXED = 3;
        for (const Relay& relay : m_relays) {
            items.push_back({nullptr, relay.outside, ZMQ_POLLIN, 0});
            items.push_back({nullptr, relay.inside, ZMQ_POLLIN, 0});
        }
        static_cast<void>(zmq_poll(items.data(), static_cast<int>(items.size()), millisecondsToNextAnswer()));
        if (items[0].revents != 0) {
            return;
        }
        for (std::size_t i = m_relays.size(); i-- > 0;) {
            const Relay relay = m_relays[i];
            const auto hasBytes = [&](std::size_t side) { return items[N_FIXED + 2 * i + side].revents != 0; };
            if ((hasBytes(0) && !forward(relay.outside, relay.inside)) ||
                (hasBytes(1) && !forward(relay.inside, relay.outside))) {
                ::close(relay.outside);
                ::close(relay.inside);
                m_relays.erase(m_relays.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        if (items[1].revents != 0) {
            takeConnection();
        }
        if (items[2].revents != 0) {
            takeRequest();
        }
        sendDueAnswers();
    }
}

void FakeService::takeConnection()
{
    const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) {
        return;
    }
    if (m_door(++m_connections)) {
        m_relays.push_back({connection, unixSocket(m_path + ".inside", ::connect)});
    } else {
        m_starved.push_back(connection);
    }
}

void FakeService::takeRequest()
{
    zmq::message_t caller;
    zmq::message_t request;
    if (!m_socket.recv(caller, zmq::recv_flags::dontwait) || !m_socket.recv(request, zmq::recv_flags::dontwait)) {
        return;
    }
    ++m_requests;
    for (const Answer& answer : m_handler(request.to_string())) {
        m_dueAnswers.insert({Clock::now() + answer.delay, {caller.to_string(), answer.message}});
    }
}

void FakeService::sendDueAnswers()
{
    while (!m_dueAnswers.empty() && (m_dueAnswers.begin()->first <= Clock::now())) {
        send(m_dueAnswers.begin()->second);
        m_dueAnswers.erase(m_dueAnswers.begin());
    }
}

void FakeService::send(const DueAnswer& answer)
{
    m_socket.send(zmq::buffer(answer.caller), zmq::send_flags::sndmore);
    m_socket.send(zmq::buffer(answer.message), zmq::send_flags::none);
}

long FakeService::millisecondsToNextAnswer() const
{
    if (m_dueAnswers.empty()) {
        return -1;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(m_dueAnswers.begin()->first - Clock::now());
    return std::max<long>(0, static_cast<long>(wait.count()));
}

std::string answerTo(const std::string& request, std::int32_t result, const std::string& payload)
{
    std::string answer = request.substr(0, NAME_LENGTH + 1 + static_cast<unsigned char>(request.at(NAME_LENGTH)));
    answer.at(KIND) = ANSWER;
    putNumber(answer, RESULT, 4, static_cast<std::uint32_t>(result));
    return answer + payload;
}

std::string withSequenceNumber(std::string message, std::uint64_t number)
{
    putNumber(message, SEQUENCE_NUMBER, 8, number);
    return message;
}

std::uint64_t sequenceNumberOf(const std::string& message)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < 8; ++i) {
        number = (number << 8) | static_cast<unsigned char>(message.at(SEQUENCE_NUMBER + i));
    }
    return number;
}

std::string payloadOfMessage(const std::string& message)
{
    return message.substr(NAME_LENGTH + 1 + static_cast<unsigned char>(message.at(NAME_LENGTH)));
}
