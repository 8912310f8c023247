#include "message/OBcomponent.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <string_view>

#include "Dispatcher.h"
#include "LocalListener.h"
#include "Sockets.h"

namespace {

constexpr const char* DIRECTORY_VARIABLE = "BRANTEL_MESSAGE_DIRECTORY";

obmessage::Directory directoryOfEnvironment()
{
    const char* const pFile = std::getenv(DIRECTORY_VARIABLE);
    return ((pFile != nullptr) && (pFile[0] != '\0')) ? obmessage::Directory(pFile) : obmessage::Directory();
}

}  // namespace

OBcomponent::OBcomponent(const std::string& name)
    : m_pDispatcher(std::make_shared<obmessage::Dispatcher>(name, directoryOfEnvironment()))
{
}

OBcomponent::OBcomponent(const std::string& name, const std::string& directoryFile)
    : m_pDispatcher(std::make_shared<obmessage::Dispatcher>(name, obmessage::Directory(directoryFile)))
{
}

OBcomponent::~OBcomponent() = default;

void OBcomponent::requireRoomFor(std::size_t nProxies)
{
    obmessage::requireRoomForCallers(nProxies);
}

const std::string& OBcomponent::name() const
{
    return m_pDispatcher->componentName();
}

bool OBcomponent::isServiceAbsent(const std::string& serviceName) const
{
    constexpr std::string_view IPC = "ipc://";
    try {
        const std::string endpoint = m_pDispatcher->directory().routeTo(serviceName).endpoint;
        return (endpoint.compare(0, IPC.size(), IPC) == 0) && obmessage::isAbsent(endpoint.substr(IPC.size()));
    } catch (const std::exception&) {
        return false;
    }
}

bool OBcomponent::isConnected(const std::string& serviceName) const
{
    const auto& proxies = m_pDispatcher->calledServices().find(serviceName).proxies;
    return std::any_of(proxies.begin(), proxies.end(), [](const OBproxy* pProxy) { return pProxy->isConnected(); });
}

std::string OBcomponent::obstacle(const std::string& serviceName) const
{
    const auto& proxies = m_pDispatcher->calledServices().find(serviceName).proxies;
    if (proxies.empty()) {
        return "the component has no proxy to the service";
    }
    std::string reason;
    for (const OBproxy* const pProxy : proxies) {
        if (pProxy->isConnected()) {
            return "";
        }
        reason = reason.empty() ? pProxy->obstacle() : reason;
    }
    return reason;
}

std::uint64_t OBcomponent::lastSequenceNumber(const std::string& serviceName) const
{
    return m_pDispatcher->calledServices().find(serviceName).lastSequenceNumber;
}

std::size_t OBcomponent::dispatch(std::chrono::milliseconds timeout)
{
    return m_pDispatcher->dispatch(timeout);
}

void OBcomponent::run()
{
    m_pDispatcher->run();
}

void OBcomponent::stop() noexcept
{
    m_pDispatcher->stop();
}

bool OBcomponent::isStopping() const noexcept
{
    return m_pDispatcher->isStopping();
}

int OBcomponent::fileDescriptor() const noexcept
{
    return m_pDispatcher->descriptor();
}
