#ifndef TESTS_PLATFORM_MESSAGE_TEST_CARD_H
#define TESTS_PLATFORM_MESSAGE_TEST_CARD_H

// Services, callers and receivers of answers for the tests of the message framework. A payload is one text.

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "brantel/testing/ComponentThread.h"
#include "icsc/OBappsToICSC_1_0_C.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"

inline buffer_t payloadOf(const std::string& text)
{
    return buffer_t(text.data(), text.size());
}

inline std::string textOf(const buffer_t& payload)
{
    return std::string(reinterpret_cast<const char*>(payload.data()), payload.size());
}

// By default answers a read with "read <payload> <timeout>" and a write with the result 42.
class TestCard : public OBappsToICSC_1_0_C {
public:
    using Handler = std::function<void(TestCard&, const OBmessage&, const buffer_t&)>;

    using OBappsToICSC_1_0_C::OBappsToICSC_1_0_C;

    TestCard(OBcomponent& component, const char* serviceName, Handler onRead)
        : OBappsToICSC_1_0_C(component, serviceName), m_onRead(std::move(onRead))
    {
    }

protected:
    void ICSCRead(const OBmessage& request, int timeout, const buffer_t& tlvs) override
    {
        if (m_onRead) {
            m_onRead(*this, request, tlvs);
        } else {
            reply(request, payloadOf("read " + textOf(tlvs) + " " + std::to_string(timeout)), 0);
        }
    }

    void ICSCWrite(const OBmessage& request, int, const buffer_t&) override { reply(request, buffer_t(), 42); }

private:
    Handler m_onRead;
};

// A component with one test card, served on a separate thread until destroyed.
class ServedCard {
public:
    explicit ServedCard(const std::string& serviceName, const TestCard::Handler& onRead = nullptr,
                        const std::string& directoryFile = "")
        : m_thread(
              "card",
              [&](OBcomponent& component) {
                  auto pCard = std::make_shared<TestCard>(component, serviceName.c_str(), onRead);
                  m_endpoint = pCard->endpoint();
                  return pCard;
              },
              directoryFile)
    {
    }

    const std::string& endpoint() const { return m_endpoint; }

private:
    std::string m_endpoint;
    brantelTesting::ComponentThread m_thread;
};

// What a call returned, as one text to compare.
inline std::string outcomeOf(int returned, int result, const buffer_t& tlvs)
{
    return "returned " + std::to_string(returned) + ", result " + std::to_string(result) + ", '" + textOf(tlvs) + "'";
}

inline std::string read(OBappsToICSC_1_0_P& proxy, const std::string& text, int timeout = 5)
{
    buffer_t tlvs = payloadOf(text);
    int result = 99;
    const int returned = proxy.ICSCRead(timeout, tlvs, result);
    return outcomeOf(returned, result, tlvs);
}

// Right after a service went, a call may still be sent to it and fail.
inline std::string readUntilAnswered(OBappsToICSC_1_0_P& proxy, const std::string& text)
{
    std::string outcome = read(proxy, text);
    for (int attempt = 1; (attempt < 5) && (outcome.find("returned -1") == 0); ++attempt) {
        outcome = read(proxy, text);
    }
    return outcome;
}

inline std::string write(OBappsToICSC_1_0_P& proxy, const std::string& text, int timeout = 5)
{
    int result = 99;
    const buffer_t tlvs = payloadOf(text);
    const int returned = proxy.ICSCWrite(timeout, tlvs, result);
    return outcomeOf(returned, result, tlvs);
}

// Collects the answers of asynchronous calls, one text each.
class Answers : public OBappsToICSC_1_0_PR {
public:
    void ICSCReadReply(const OBmessage& request, const buffer_t& tlvs, int result) override
    {
        m_texts.push_back(request.serviceName() + " read " + std::to_string(request.sequenceNumber()) + ": result " +
                          std::to_string(result) + ", '" + textOf(tlvs) + "'");
        if (onAnswer) {
            onAnswer();
        }
    }

    void ICSCWriteReply(const OBmessage& request, int result) override
    {
        m_texts.push_back(request.serviceName() + " write " + std::to_string(request.sequenceNumber()) + ": result " +
                          std::to_string(result));
    }

    std::vector<std::string> take() { return std::exchange(m_texts, {}); }
    std::size_t count() const { return m_texts.size(); }

    std::function<void()> onAnswer;

private:
    std::vector<std::string> m_texts;
};

// Dispatches until `isDone` or for ten seconds.
template <typename Condition>
bool dispatchUntil(OBcomponent& component, Condition isDone)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!isDone() && (std::chrono::steady_clock::now() < deadline)) {
        component.dispatch(std::chrono::milliseconds(10));
    }
    return isDone();
}

// Dispatches until `count` messages were handled or for ten seconds; returns how many were.
inline std::size_t dispatchMessages(OBcomponent& component, std::size_t count)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::size_t handled = 0;
    while ((handled < count) && (std::chrono::steady_clock::now() < deadline)) {
        handled += component.dispatch(std::chrono::milliseconds(10));
    }
    return handled;
}

class Stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count(); }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

#endif
