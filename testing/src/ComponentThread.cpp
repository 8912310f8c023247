#include "brantel/testing/ComponentThread.h"

#include <exception>
#include <future>

namespace brantelTesting {

ComponentThread::ComponentThread(const std::string& name, const Make& make, const std::string& directoryFile)
{
    std::promise<OBcomponent*> promise;
    std::future<OBcomponent*> made = promise.get_future();
    // What this function owns is not used after the promise is kept.
    m_thread = std::thread([&promise, &name, &make, &directoryFile] {
        try {
            OBcomponent component = directoryFile.empty() ? OBcomponent(name) : OBcomponent(name, directoryFile);
            const std::shared_ptr<void> pMade = make(component);
            promise.set_value(&component);
            component.run();
        } catch (...) {
            promise.set_exception(std::current_exception());
        }
    });
    try {
        m_pComponent = made.get();
    } catch (...) {
        m_thread.join();
        throw;
    }
}

ComponentThread::~ComponentThread()
{
    m_pComponent->stop();
    m_thread.join();
}

}  // namespace brantelTesting
