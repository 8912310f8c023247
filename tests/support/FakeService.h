#ifndef TESTS_SUPPORT_FAKE_SERVICE_H
#define TESTS_SUPPORT_FAKE_SERVICE_H

// A service at a socket of this host that speaks the framework's wire (docs/messages.md) and misbehaves as the test
// wants: it ignores connections, answers late, twice, with junk, or not at all. It runs on a separate thread.
//
//     FakeService service(path, [](const std::string& request) {
//         return FakeService::Answers{{"junk"}, {answerTo(request, 0, payload), milliseconds(100)}};
//     });

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <zmq.hpp>

class FakeService {
public:
    /// A message that goes back to the caller.
    struct Answer {
        std::string message;
        std::chrono::milliseconds delay{0};
    };
    using Answers = std::vector<Answer>;

    /// Called for each request, on the service's thread; what it returns is sent in this order, delays aside.
    using Handler = std::function<Answers(const std::string& request)>;

    /// Whether the connection with this number, from 1, is served. One that is not is accepted, and then nothing is
    /// read from it or written to it.
    using Door = std::function<bool(unsigned number)>;

    /// Listens at `path`, as ipc://path.
    FakeService(
        const std::string& path, Handler handler, Door door = [](unsigned) { return true; });
    ~FakeService();
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;

    /// How many connections were made so far, the starved ones included, and how many requests came.
    unsigned connections() const { return m_connections; }
    unsigned requests() const { return m_requests; }

private:
    using Clock = std::chrono::steady_clock;

    /// A connection that is served: its bytes go to the socket that speaks the protocol, and back.
    struct Relay {
        int outside;
        int inside;
    };
    struct DueAnswer {
        std::string caller;
        std::string message;
    };

    void run();
    void takeConnection();
    void takeRequest();
    void sendDueAnswers();
    void send(const DueAnswer& answer);
    long millisecondsToNextAnswer() const;

    const std::string m_path;
    const Handler m_handler;
    const Door m_door;
    zmq::context_t m_context;
    zmq::socket_t m_socket;
    int m_listener = -1;
    int m_end = -1;
    std::vector<Relay> m_relays;
    std::vector<int> m_starved;
    std::multimap<Clock::time_point, DueAnswer> m_dueAnswers;
    std::atomic<unsigned> m_connections{0};
    std::atomic<unsigned> m_requests{0};
    std::thread m_thread;
};

/// The correct answer to a request: the same envelope, with `result` and `payload`.
std::string answerTo(const std::string& request, std::int32_t result, const std::string& payload);

/// The message with another sequence number.
std::string withSequenceNumber(std::string message, std::uint64_t number);

/// The sequence number and the payload of a message.
std::uint64_t sequenceNumberOf(const std::string& message);
std::string payloadOfMessage(const std::string& message);

#endif
