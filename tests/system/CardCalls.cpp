// A component that writes and reads the cards of all ten slots, one of which may go and come back at any time, and
// recognises each answer: it writes the number of its write, along with its own and the slot's.
//
//     card_calls COMPONENT CALLS RESTARTED_SLOT
//
// COMPONENT is 0 or 1; each has its own object on every card. Fails if
//     a call of another slot fails, or reads anything but what was written last,
//     a call of the restarted slot reads anything but what may have been written last or what the card starts with,
//     an asynchronous read is not answered exactly once,
//     a call takes longer than its wait time,
//     descriptors or memory have grown since half of the calls were made.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>

#include <malloc.h>

#include "IcscClientProxy.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t SLOTS = 10;
constexpr std::uint32_t CARD_SLOT = 0x00010001;
constexpr std::int32_t TIMEOUT = 5;
constexpr std::chrono::seconds WAIT_TIME{TIMEOUT + 2};
constexpr std::chrono::seconds SLACK{1};         // a machine that does other things as well
constexpr std::size_t MEMORY_SLACK = 1'000'000;  // the queues of 20 sockets take chunk after chunk at first

void require(bool holds, const std::string& what)
{
    if (!holds) {
        throw std::runtime_error(what);
    }
}

// The object that a component writes on each card: its type, and its value as text.
struct OwnObject {
    std::uint32_t oid;
    OidValueType type;

    boost::any valueOf(const std::string& text) const
    {
        return (type == OID_TYPE_STRING) ? boost::any(text) : boost::any(buffer_t(text.data(), text.size()));
    }

    std::string textOf(const boost::any& value) const
    {
        if (type == OID_TYPE_STRING) {
            return boost::any_cast<std::string>(value);
        }
        const auto& bytes = boost::any_cast<const buffer_t&>(value);
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
};

constexpr OwnObject OWN_OBJECTS[] = {{0x00010002, OID_TYPE_STRING}, {0x00010009, OID_TYPE_BUFFER}};

// What is known of the caller's object on one card: the numbers of its last write and of its last confirmed one.
struct Written {
    std::uint64_t last = 0;
    std::uint64_t confirmed = 0;
};

struct Usage {
    std::ptrdiff_t descriptors;
    std::size_t memory;

    static Usage now()
    {
        using Entries = std::filesystem::directory_iterator;
        return {std::distance(Entries("/proc/self/fd"), Entries()), mallinfo2().uordblks};
    }
};

class Caller : private OBappsToICSC_1_0_PR {
public:
    Caller(std::uint32_t component, std::uint32_t restartedSlot)
        : m_number(component), m_restartedSlot(restartedSlot), m_own(OWN_OBJECTS[component])
    {
        IcscClientProxy::createInstance();
        for (std::uint32_t slot = 0; slot < SLOTS; ++slot) {
            client().subscribeInterface(slot, m_component);
            client().subscribeAsyncInterface(slot, m_component, *this);
        }
    }
    ~Caller() override { IcscClientProxy::deleteInstance(); }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    void makeCalls(std::uint64_t calls)
    {
        for (std::uint32_t slot = 0; m_calls < calls; slot = (slot + 1) % SLOTS) {
            write(slot);
            read(slot);
            startReading(slot);
            m_component.dispatch(std::chrono::milliseconds(0));
        }
    }

    // Until every asynchronous read is answered.
    void finish()
    {
        const Clock::time_point start = Clock::now();
        while (!m_outstanding.empty()) {
            require(Clock::now() - start < WAIT_TIME + SLACK, "an asynchronous read was never answered");
            m_component.dispatch(std::chrono::milliseconds(100));
        }
    }

    void print(const Usage& early, const Usage& late) const
    {
        using std::chrono::duration_cast;
        using std::chrono::milliseconds;
        std::cout << "component " << m_number << ": " << m_calls << " calls, " << m_failures
                  << " of them failed, all on slot " << m_restartedSlot << "; the longest took "
                  << duration_cast<milliseconds>(m_longest).count() << " ms; descriptors " << early.descriptors
                  << ", later " << late.descriptors << "; bytes in use " << early.memory << ", later " << late.memory
                  << '\n';
    }

private:
    struct Request {
        Clock::time_point sent;
        std::uint64_t confirmedBefore = 0;
    };

    static IcscClientProxy& client() { return IcscClientProxy::getInstance(); }

    std::string textOfWrite(std::uint32_t slot, std::uint64_t number) const
    {
        return std::to_string(m_number) + ' ' + std::to_string(slot) + ' ' + std::to_string(number);
    }

    std::string initialText(std::uint32_t slot) const
    {
        return (m_own.type == OID_TYPE_STRING) ? "card " + std::to_string(slot) : "";
    }

    void write(std::uint32_t slot)
    {
        Written& written = m_written.at(slot);
        const std::uint64_t number = ++written.last;
        const bool isDone = timed([&] {
            return client().setOids(slot, {{m_own.oid, m_own.type, m_own.valueOf(textOfWrite(slot, number))}}, TIMEOUT);
        });
        if (isDone) {
            written.confirmed = number;
        }
        noteOutcome(slot, isDone);
    }

    void read(std::uint32_t slot)
    {
        OidTypeValueMap values;
        const bool isDone = timed([&] { return client().getOidsSync(slot, {CARD_SLOT, m_own.oid}, values) == 0; });
        if (isDone) {
            check(slot, values, m_written.at(slot).confirmed);
        }
        noteOutcome(slot, isDone);
    }

    void startReading(std::uint32_t slot)
    {
        const Request request{Clock::now(), m_written.at(slot).confirmed};
        const std::uint64_t sequenceNumber = ++m_sequenceNumbers.at(slot);
        const bool isSent = timed([&] { return client().getOidsAsync(slot, {CARD_SLOT, m_own.oid}); });
        if (isSent) {
            m_outstanding[{slot, sequenceNumber}] = request;
        } else {
            noteOutcome(slot, false);
        }
    }

    void ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result) override
    {
        const auto slot = static_cast<std::uint32_t>(message.serviceName().at(std::string("ICSCClient").size()) - '0');
        const auto request = m_outstanding.find({slot, message.sequenceNumber()});
        require(request != m_outstanding.end(), "an answer without a request");
        // A synchronous call may have held the thread for as long.
        require(Clock::now() - request->second.sent < 2 * WAIT_TIME + SLACK, "an asynchronous read took too long");
        OidTypeValueMap values;
        const ObjectIdContainer oids = {CARD_SLOT, m_own.oid};
        const bool isDone = (result == 0) && convertTlvsToOidTypeValueMap(slot, tlvs, values, &oids);
        if (isDone) {
            check(slot, values, request->second.confirmedBefore);
        }
        m_outstanding.erase(request);
        noteOutcome(slot, isDone);
    }

    // The value must be of this slot, and of a write that was not over and done with at the time of the request.
    void check(std::uint32_t slot, const OidTypeValueMap& values, std::uint64_t confirmedBefore) const
    {
        require(boost::any_cast<unsigned char>(values.at(CARD_SLOT).value) == slot, "an answer of another card");
        const std::string text = m_own.textOf(values.at(m_own.oid).value);
        const bool mayBeInitial = (slot == m_restartedSlot) || (confirmedBefore == 0);
        if (mayBeInitial && (text == initialText(slot))) {
            return;
        }
        for (std::uint64_t number = confirmedBefore; number <= m_written.at(slot).last; ++number) {
            if (text == textOfWrite(slot, number)) {
                return;
            }
        }
        throw std::runtime_error("slot " + std::to_string(slot) + ": read '" + text + "' after write " +
                                 std::to_string(confirmedBefore));
    }

    template <typename Call>
    bool timed(const Call& call)
    {
        const Clock::time_point start = Clock::now();
        const bool isDone = call();
        const Clock::duration elapsed = Clock::now() - start;
        require(elapsed < WAIT_TIME + SLACK, "a call took longer than its wait time");
        m_longest = std::max(m_longest, elapsed);
        return isDone;
    }

    void noteOutcome(std::uint32_t slot, bool isDone)
    {
        ++m_calls;
        m_failures += isDone ? 0U : 1U;
        require(isDone || (slot == m_restartedSlot), "a call of slot " + std::to_string(slot) + " failed");
    }

    const std::uint32_t m_number;
    const std::uint32_t m_restartedSlot;
    const OwnObject m_own;
    OBcomponent m_component{"component " + std::to_string(m_number)};
    std::array<Written, SLOTS> m_written = {};
    std::array<std::uint64_t, SLOTS> m_sequenceNumbers = {};
    std::map<std::pair<std::uint32_t, std::uint64_t>, Request> m_outstanding;  // by slot and sequence number
    std::uint64_t m_calls = 0;
    std::uint64_t m_failures = 0;
    Clock::duration m_longest{0};
};

void run(std::uint32_t component, std::uint64_t calls, std::uint32_t restartedSlot)
{
    Caller caller(component, restartedSlot);
    caller.makeCalls(calls / 2);
    const Usage early = Usage::now();
    caller.makeCalls(calls);
    caller.finish();
    const Usage late = Usage::now();
    caller.print(early, late);
    require(late.descriptors <= early.descriptors, "descriptors have grown");
    require(late.memory <= early.memory + MEMORY_SLACK, "memory has grown");
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: card_calls COMPONENT CALLS RESTARTED_SLOT\n";
        return EXIT_FAILURE;
    }
    try {
        run(static_cast<std::uint32_t>(std::stoul(argv[1])), std::stoull(argv[2]),
            static_cast<std::uint32_t>(std::stoul(argv[3])));
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "component " << argv[1] << ": " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
