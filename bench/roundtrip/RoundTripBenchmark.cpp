// Times IcscClientProxy::getOidsSync with one OID, answered by a service in another process, and next to it a bare
// request and reply of ZeroMQ, with as many bytes each way, answered by a third process. Both go over ipc. Fails if
// fewer than 80 % of the bare round trips are made in a second.
//
//     roundtrip_benchmark [batches]

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <zmq.hpp>

#include "IcscClientProxy.h"
#include "SideBySide.h"
#include "icsc/OBappsToICSC_1_0_C.h"
#include "message/OBcomponent.h"

namespace {

constexpr std::uint32_t SLOT = 3;
constexpr const char* SERVICE = "ICSCClient3.ReadWriteSync";
constexpr std::uint32_t OID = 0x00020201;
constexpr int CALLS_PER_BATCH = 100;
constexpr double ALLOWED_RATIO = 1 / 0.8;

// Bytes of the messages that a call exchanges: the framework's envelope with the name "appsToICSC", and the streams of
// one OID and of one 32-bit value.
constexpr std::size_t ENVELOPE_LENGTH = 30;
constexpr std::size_t REQUEST_LENGTH = ENVELOPE_LENGTH + 12;
constexpr std::size_t REPLY_LENGTH = ENVELOPE_LENGTH + 17;

class OneValueCard : public OBappsToICSC_1_0_C {
public:
    using OBappsToICSC_1_0_C::OBappsToICSC_1_0_C;

protected:
    void ICSCRead(const OBmessage& request, int, const buffer_t& tlvs) override
    {
        std::uint32_t oid = 0;
        buffer_t values;
        const bool isGood = extractFirstOidFromTlvs(SLOT, tlvs, oid) &&
                            convertOidTypeValueContainerToTlvs({{oid, OID_TYPE_UINT32, 42U}}, values);
        reply(request, values, isGood ? obResult::SUCCESS : obResult::GENERAL_ERROR);
    }
};

void serveCard()
{
    OBcomponent component("card");
    const OneValueCard card(component, SERVICE);
    component.run();
}

void replyBarely(const std::string& endpoint)
{
    zmq::context_t context;
    zmq::socket_t socket(context, zmq::socket_type::rep);
    socket.bind(endpoint);
    for (;;) {
        zmq::message_t request;
        static_cast<void>(socket.recv(request));
        zmq::message_t reply(REPLY_LENGTH);
        std::memset(reply.data(), 0, reply.size());
        socket.send(reply, zmq::send_flags::none);
    }
}

// A child process that lives as long as this object.
class Process {
public:
    template <typename Function>
    explicit Process(const Function& function) : m_id(fork())
    {
        if (m_id < 0) {
            throw std::runtime_error("cannot fork");
        }
        if (m_id == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            function();
            std::_Exit(EXIT_SUCCESS);
        }
    }
    ~Process()
    {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

private:
    pid_t m_id;
};

class RuntimeDirectory {
public:
    RuntimeDirectory()
    {
        if (mkdtemp(m_path) == nullptr) {
            throw std::runtime_error("cannot create a directory under /tmp");
        }
        setenv("XDG_RUNTIME_DIR", m_path, 1);
        unsetenv("BRANTEL_MESSAGE_DIRECTORY");
    }
    ~RuntimeDirectory() { static_cast<void>(std::system(("rm -rf " + path()).c_str())); }
    RuntimeDirectory(const RuntimeDirectory&) = delete;
    RuntimeDirectory& operator=(const RuntimeDirectory&) = delete;

    std::string path() const { return m_path; }

private:
    char m_path[32] = "/tmp/roundtrip-XXXXXX";
};

void readBarely(zmq::socket_t& socket)
{
    zmq::message_t request(REQUEST_LENGTH);
    std::memset(request.data(), 0, request.size());
    socket.send(request, zmq::send_flags::none);
    zmq::message_t reply;
    if (!socket.recv(reply) || (reply.size() != REPLY_LENGTH)) {
        throw std::runtime_error("a bare request was not answered");
    }
}

void readOid()
{
    OidTypeValueMap values;
    if ((IcscClientProxy::getInstance().getOidsSync(SLOT, {OID}, values) != 0) || (values.size() != 1)) {
        throw std::runtime_error("the OID was not read");
    }
}

SideBySide measure(int batches)
{
    const RuntimeDirectory directory;
    const std::string endpoint = "ipc://" + directory.path() + "/bare";
    const Process card(serveCard);
    const Process bare([&endpoint] { replyBarely(endpoint); });

    zmq::context_t context;
    zmq::socket_t socket(context, zmq::socket_type::req);
    socket.connect(endpoint);
    OBcomponent component("roundtrip benchmark");
    IcscClientProxy::createInstance();
    IcscClientProxy::getInstance().subscribeInterface(SLOT, component);

    const auto readBare = [&socket] { readBarely(socket); };
    measureSideBySide(1, CALLS_PER_BATCH, readOid, readBare);  // both connected, and warm
    const SideBySide result = measureSideBySide(batches, CALLS_PER_BATCH, readOid, readBare);
    IcscClientProxy::deleteInstance();
    return result;
}

}  // namespace

int main(int argc, char** argv)
{
    const int batches = (argc > 1) ? std::max(1, std::atoi(argv[1])) : 500;
    try {
        const SideBySide result = measure(batches);
        printSideBySide("getOidsSync", result);
        return (result.ratio() <= ALLOWED_RATIO) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "roundtrip_benchmark: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
