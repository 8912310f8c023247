#ifndef MESSAGE_CLIENT_GATE_H
#define MESSAGE_CLIENT_GATE_H

// Admits callers from other hosts to services with keys: for each, ZeroMQ sends a request over its authentication
// protocol (ZAP), and a thread of the process answers it from the services' lists.

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include <zmq.hpp>

namespace obmessage {

class ClientGate {
public:
    /// Answers until the context is shut down, which must happen before destruction.
    explicit ClientGate(zmq::context_t& context);
    ~ClientGate();
    ClientGate(const ClientGate&) = delete;
    ClientGate& operator=(const ClientGate&) = delete;

    /// From now on `service` admits the callers with these public keys and no others. Any thread.
    void setClients(const std::string& service, std::set<std::string> publicKeys);

private:
    void answerQuestions(zmq::socket_t questions);
    bool isAdmitted(const std::string& service, const std::string& publicKey);

    std::mutex m_mutex;
    std::map<std::string, std::set<std::string>> m_clients;
    std::thread m_thread;
};

}  // namespace obmessage

#endif
