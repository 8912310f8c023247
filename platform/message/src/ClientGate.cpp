#include "ClientGate.h"

#include <vector>

#include <zmq.h>

#include "Log.h"
#include "SignalsBlocked.h"

namespace obmessage {
namespace {

// The fields of a question, in the order of ZeroMQ's authentication protocol; the credentials are the caller's key.
enum QuestionField { VERSION, REQUEST_ID, DOMAIN, ADDRESS, IDENTITY, MECHANISM, CREDENTIALS, NUMBER_OF_FIELDS };

using Question = std::vector<std::string>;

Question receiveQuestion(zmq::socket_t& questions)
{
    Question question;
    zmq::message_t part;
    do {
        static_cast<void>(questions.recv(part));
        question.push_back(part.to_string());
    } while (part.more());
    return question;
}

void answer(zmq::socket_t& questions, const Question& question, bool isAdmitted)
{
    const std::string parts[] = {question[VERSION], question[REQUEST_ID], isAdmitted ? "200" : "400",
                                 isAdmitted ? "OK" : "not a client of this service", ""};
    for (const std::string& part : parts) {
        questions.send(zmq::buffer(part), zmq::send_flags::sndmore);
    }
    questions.send(zmq::message_t(), zmq::send_flags::none);  // no metadata
}

std::string textOfKey(const std::string& key)
{
    char text[41] = "";
    if (key.size() == 32) {
        zmq_z85_encode(text, reinterpret_cast<const std::uint8_t*>(key.data()), key.size());
    }
    return text;
}

}  // namespace

ClientGate::ClientGate(zmq::context_t& context)
{
    zmq::socket_t questions(context, zmq::socket_type::rep);
    questions.set(zmq::sockopt::linger, 0);
    questions.bind("inproc://zeromq.zap.01");
    const SignalsBlocked signalsBlocked;
    m_thread = std::thread(&ClientGate::answerQuestions, this, std::move(questions));
}

ClientGate::~ClientGate()
{
    m_thread.join();
}

void ClientGate::setClients(const std::string& service, std::set<std::string> publicKeys)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_clients[service] = std::move(publicKeys);
}

bool ClientGate::isAdmitted(const std::string& service, const std::string& publicKey)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto clients = m_clients.find(service);
    return (clients != m_clients.end()) && (clients->second.count(publicKey) != 0);
}

void ClientGate::answerQuestions(zmq::socket_t questions)
{
    try {
        for (;;) {
            const Question question = receiveQuestion(questions);
            const bool isComplete = question.size() == NUMBER_OF_FIELDS;
            const std::string key = isComplete ? textOfKey(question[CREDENTIALS]) : "";
            const bool admitted = isComplete && (question[MECHANISM] == "CURVE") && isAdmitted(question[DOMAIN], key);
            if (!admitted) {
                LOG_MESSAGE_WARNING("%s: refused a caller at %s with key '%s'", question[DOMAIN].c_str(),
                                    question[ADDRESS].c_str(), key.c_str());
            }
            answer(questions, question, admitted);
        }
    } catch (const zmq::error_t&) {
        return;  // the context is shut down
    }
}

}  // namespace obmessage
