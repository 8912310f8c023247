#ifndef ICSC_CLIENT_PROXY_H
#define ICSC_CLIENT_PROXY_H

// The process's client to the status-and-control service (ICSC) of the interface cards: reads and writes OIDs on the
// card in a slot. A component calls, in this order:
//
//     createInstance                                         once, at start-up
//     subscribeInterface, subscribeAsyncInterface            for each slot that it serves
//     getOidsSync, setOids                                   on slots with a synchronous subscription
//     getOidsAsync                                           on slots with an asynchronous one
//     deleteInstance                                         at shutdown; ends all subscriptions
//
// For example:
//
//     OBcomponent component("fan control");
//     IcscClientProxy::createInstance();
//     IcscClientProxy& client = IcscClientProxy::getInstance();
//     client.subscribeInterface(3, component);
//     OidTypeValueMap values;
//     const std::int32_t result = client.getOidsSync(3, {0x00010003}, values);
//     if (result == 0) {
//         const auto& source = boost::any_cast<const std::string&>(values.at(0x00010003).value);
//     }  // -1: no answer; 7: the card has no such object
//
//     client.setOids(10, {}, 5);  // false, and a report: there is no slot 10
//     IcscClientProxy::deleteInstance();
//
// Slots are 0 to 9; every other slot is reported as a violated invariant. What a call does for a slot that is not
// subscribed differs: getOidsSync reports it and returns 0, getOidsAsync reports it and returns false, and setOids is
// undefined. A component that does not know whether a slot is subscribed asks before it writes: in the stand-alone
// edition, OBcomponent::isConnected is false for a service without a subscription.
//
// A card answers with a result code (Icsc.h): 0 is success; log lines name the others. OidValue.h makes the values to
// write.
//
// Reads are synchronous or asynchronous, writes synchronous only; OBappsToICSC_1_0_P, by which the client reaches the
// cards, also writes asynchronously. The answer to an asynchronous read names its slot only by the service:
// request.serviceName() is icsc::serviceName(slot, icsc::Interface::ASYNC). By that name the stand-alone edition's
// OBcomponent says whether the card is there, why it is not, and which number the last request got:
//
//     const std::string card3 = icsc::serviceName(3, icsc::Interface::ASYNC);
//     if (component.isConnected(card3) && client.getOidsAsync(3, {0x00010003})) {
//         m_awaited = component.lastSequenceNumber(card3);  // request.sequenceNumber() of the answer
//     }
//
// A process has one client. A slot belongs to the component that subscribes it first: calls for it are made, and its
// asynchronous answers are delivered, on the thread of that component. There are no locks: components that share the
// client share that thread. Timeouts are in seconds.
//
// Errors go to syslog when the trace level is above 2, warnings when it is above 3; violated invariants go to
// logAssertFailed at any level. Nothing is retried.

#include <cstdint>
#include <memory>

#include "BrantelExport.h"
#include "Icsc.h"
#include "IfcCardStatusAndControl.h"
#include "message/buffer_t.h"

class OBappsToICSC_1_0_P;
class OBappsToICSC_1_0_PR;
class OBcomponent;

class BRANTEL_EXPORT IcscClientProxy {
public:
    /// Creates the instance, without subscriptions. Reports, and keeps the existing one, if there is one.
    static void createInstance();

    /// The instance. Reports if there is none; the reference must not be used then.
    static IcscClientProxy& getInstance();

    /// Destroys the instance and with it its subscriptions, slot by slot; nothing happens if there is none.
    static void deleteInstance();

    IcscClientProxy(const IcscClientProxy&) = delete;
    IcscClientProxy& operator=(const IcscClientProxy&) = delete;

    /// Subscribes the slot's synchronous interface, ICSCClient<slot>.ReadWriteSync, for `component`, which must outlive
    /// the instance. The card need not be there. A slot that is already subscribed is left as it is, silently, even if
    /// another component subscribed it. Reports a wrong slot. If the framework refuses the subscription, which it logs,
    /// the calls for the slot fail.
    void subscribeInterface(std::uint32_t slot, OBcomponent& component);

    /// Subscribes the slot's asynchronous interface, ICSCClient<slot>.ReadWriteAsync; the framework delivers answers to
    /// `replyInterface`, from the dispatch of `component`; both must outlive the instance. Otherwise like
    /// subscribeInterface.
    void subscribeAsyncInterface(std::uint32_t slot, OBcomponent& component, OBappsToICSC_1_0_PR& replyInterface);

    /// Reads `oids` from the card and adds their values to `values`; waits for the answer, for 7 seconds at most.
    /// Returns
    ///     0             success; also, after a report and with `values` unchanged, for a wrong slot or one without
    ///                   synchronous subscription
    ///     -1            the call failed, or its answer could not be decoded (convertTlvsToOidTypeValueMap describes
    ///                   what `values` holds then)
    ///     result code   the framework or the card refused; `values` is unchanged
    /// Use a fresh or cleared map for each call, or icsc::readOids (IcscReading.h): an OID that `values` already has,
    /// as from the reading before, makes the answer fail as a duplicate and empties the map. The call fails with an OID
    /// that `oids` has twice, too. More than 255 OIDs do not fit into a request: what buffer_t throws goes to the
    /// caller.
    std::int32_t getOidsSync(std::uint32_t slot, const ObjectIdContainer& oids, OidTypeValueMap& values);

    /// Sends a request to read `oids`, and returns at once, whether the card is there or not. The answer goes to the
    /// reply interface of the subscription, from the dispatch of its component. In the stand-alone edition a request to
    /// a card that is not there is held and sent, in order and once, if the card comes within 7 seconds; a request that
    /// is not answered by then is answered with the result TIMEOUT.
    /// Returns false for a wrong slot or one without asynchronous subscription (reported), and after an error line when
    /// the call fails, as it does beyond 1000 unanswered requests. More than 255 OIDs are refused as in getOidsSync.
    bool getOidsAsync(std::uint32_t slot, const ObjectIdContainer& oids);

    /// Writes `values` to the card, which may take `timeout` seconds, and waits at most 2 seconds longer for the
    /// result; 0 means 5. The slot must have a synchronous subscription: without one the behaviour is undefined, as
    /// only the slot's number is checked. Returns false for a wrong slot (reported), values that cannot be encoded, a
    /// failed call, and a result code other than 0, 2 (duplicate message) and 3 (lost message); the last two are
    /// warnings.
    bool setOids(std::uint32_t slot, const OidTypeValueContainer& values, std::int32_t timeout);

    /// The synchronous call that getOidsSync and setOids share: a read, whose answer replaces the request in `tlvs`, or
    /// a write. The reply wait time is `timeout` + 2 seconds. Sets `result` to the result code. Returns false, after an
    /// error line, when the call itself failed. The caller has checked the slot and its subscription.
    bool getSetOidsCommon(bool read, std::uint32_t slot, std::int32_t timeout, buffer_t& tlvs, std::int32_t& result);

private:
    IcscClientProxy();
    ~IcscClientProxy();

    std::unique_ptr<OBappsToICSC_1_0_P> m_pOBappsToICSC_sync[icsc::N_SLOTS];
    std::unique_ptr<OBappsToICSC_1_0_P> m_pOBappsToICSC_async[icsc::N_SLOTS];

    static IcscClientProxy* m_pInstance;
};

/// Checks what the client takes for granted at compile time; does nothing at run time.
BRANTEL_EXPORT void doIcscClientProxyCompileTimeAssertions();

#endif
