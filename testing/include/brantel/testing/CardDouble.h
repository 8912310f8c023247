#ifndef BRANTEL_TESTING_CARD_DOUBLE_H
#define BRANTEL_TESTING_CARD_DOUBLE_H

// An interface card for the tests of a component: has the values that the test gives it, answers as the test wants, and
// keeps the requests that came.
//
//     RuntimeDirectory directory;                        // TemporaryDirectory.h: no other test's cards
//     CardThread card(3);                                // in slot 3, in a thread of its own
//     card->setValue({1, OID_TYPE_UINT32, 85U});
//     FanControl fanControl;                             // the component under test, which reads slot 3
//     fanControl.poll();
//     EXPECT_TRUE(fanControl.isRaised());
//     EXPECT_EQ(card->takeRequests().at(0).oids, (ObjectIdContainer{1}));
//
//     card->setResult(icsc::RESULT_LOST_MSG);            // from now on every request is answered so
//     card->setSilent(true);                             // or not at all
//
// A component that only calls asynchronously needs no thread: its card may be in the same OBcomponent, or in one that
// the test dispatches when the card shall answer:
//
//     OBcomponent component("test");
//     CardDouble card(component, 3);
//     component.dispatch(std::chrono::milliseconds(100));
//
// A read is answered with the values of its OIDs, a write changes values; each as a whole, or not at all:
//
//     an OID without a value             RESULT_WRONG_OID
//     a value written in another type    RESULT_WRONG_TYPE
//     bytes that are not a request       RESULT_WRONG_LEN
//     more values than an answer holds   MESSAGE_TOO_LARGE (OBresult.h)
//
// Link brantel::testing_cards. All functions may be called on any thread, while the card answers.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "Icsc.h"
#include "IfcCardStatusAndControl.h"
#include "brantel/testing/ComponentThread.h"
#include "message/OBcomponent.h"

namespace brantelTesting {

/// A request as it came, also one that was refused.
struct CardRequest {
    icsc::Interface interface;  ///< the service that was called
    bool isWrite;
    int timeout;                   ///< of the call, in seconds
    ObjectIdContainer oids;        ///< what it reads or writes, in its order
    OidTypeValueContainer values;  ///< what it writes
};

class CardDouble {
public:
    /// Serves both interfaces of `slot` until destroyed, whenever `component` dispatches. Throws std::runtime_error if
    /// they cannot be served.
    CardDouble(OBcomponent& component, std::uint32_t slot);
    ~CardDouble();
    CardDouble(const CardDouble&) = delete;
    CardDouble& operator=(const CardDouble&) = delete;

    /// Gives the card an object, or the object another value or type. Throws std::invalid_argument, after the codec's
    /// error line and report, if the value does not hold the type that it names.
    void setValue(const OidTypeValue& value);

    /// Takes the object away.
    void removeValue(std::uint32_t oid);

    /// The value that an object has, also one that was written; nothing if there is no such object.
    std::optional<TypeValueRecord> value(std::uint32_t oid) const;

    /// Answers every request with `result`, and carries none out; RESULT_OK answers them normally again.
    void setResult(std::int32_t result);

    /// Likewise every request that names `oid`.
    void setResultOf(std::uint32_t oid, std::int32_t result);

    /// Waits before each answer, on the component's thread, unless the component is stopped: a slow card.
    void setDelay(std::chrono::milliseconds delay);

    /// Carries requests out and answers none: the answers are lost.
    void setSilent(bool isSilent);

    /// The requests that came since the last call, in order. A request is here before it is answered.
    std::vector<CardRequest> takeRequests();

    /// Waits until takeRequests() has at least `count` requests; false if that takes longer than `timeout`.
    bool waitForRequests(std::size_t count, std::chrono::milliseconds timeout) const;

private:
    class Connection;
    struct State;

    std::unique_ptr<State> m_pState;
    std::vector<std::unique_ptr<Connection>> m_connections;
};

/// A card in a thread of its own, from construction to destruction, which waits for a delay that is under way.
class CardThread {
public:
    /// Throws std::runtime_error if the card's slot cannot be served.
    explicit CardThread(std::uint32_t slot);

    CardDouble* operator->() { return m_pCard; }
    CardDouble& operator*() { return *m_pCard; }

private:
    CardDouble* m_pCard = nullptr;  ///< made and destroyed by the thread
    ComponentThread m_thread;
};

}  // namespace brantelTesting

#endif
