#ifndef BRANTEL_TESTING_COMPONENT_THREAD_H
#define BRANTEL_TESTING_COMPONENT_THREAD_H

// A component that runs in a thread of its own, so that a test may call its services synchronously.

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "message/OBcomponent.h"

namespace brantelTesting {

class ComponentThread {
public:
    /// Makes the connections and proxies of the component, on its thread, and returns what keeps them: it is destroyed
    /// there, before the component.
    using Make = std::function<std::shared_ptr<void>(OBcomponent&)>;

    /// Returns when `make` has returned and the component runs; throws what the component or `make` threw. With
    /// `directoryFile`, services are found through that file.
    ComponentThread(const std::string& name, const Make& make, const std::string& directoryFile = "");

    /// Stops the component, and waits for the end of what it is doing.
    ~ComponentThread();
    ComponentThread(const ComponentThread&) = delete;
    ComponentThread& operator=(const ComponentThread&) = delete;

private:
    OBcomponent* m_pComponent = nullptr;
    std::thread m_thread;
};

}  // namespace brantelTesting

#endif
