#include "message/OBcomponent.h"

#include <cstdlib>
#include <exception>
#include <string_view>

#include "Descriptors.h"
#include "Dispatcher.h"
#include "LocalListener.h"

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
    obmessage::requireDescriptors(obmessage::DESCRIPTORS_OF_CONTEXT + nProxies * obmessage::DESCRIPTORS_OF_CALLER);
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
