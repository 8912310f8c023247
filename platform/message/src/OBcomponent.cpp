#include "message/OBcomponent.h"

#include <cstdlib>

#include "Dispatcher.h"

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

const std::string& OBcomponent::name() const
{
    return m_pDispatcher->componentName();
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
