#ifndef DOUBLE_MESSAGE_OB_PROXY_H
#define DOUBLE_MESSAGE_OB_PROXY_H

// A double of the message framework: records what is done with its proxies, and answers calls as the test wants.

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "message/OBcomponent.h"
#include "message/buffer_t.h"

class OBproxyReplyInterface {
public:
    OBproxyReplyInterface() = default;
    OBproxyReplyInterface(const OBproxyReplyInterface&) = delete;
    OBproxyReplyInterface& operator=(const OBproxyReplyInterface&) = delete;
    virtual ~OBproxyReplyInterface() = default;
};

namespace platformDouble {

/// What was done with the proxies, in order. A proxy is named after the component that it was bound to and its number.
inline std::vector<std::string> journal;

/// Takes the place of the service: changes `tlvs` and `result`, and returns what the call returns.
inline std::function<int(buffer_t& tlvs, int& result)> answer;

inline int numberOfProxies = 0;
inline bool isSubscribingImpossible = false;
inline OBproxyReplyInterface* pLastReplyInterface = nullptr;

}  // namespace platformDouble

class OBproxy {
public:
    OBproxy(const OBproxy&) = delete;
    OBproxy& operator=(const OBproxy&) = delete;
    virtual ~OBproxy() { note("destroyed"); }

    int subscribe_synchronous(const char* name) { return subscribe("synchronously", name); }

    int subscribe_asynchronous(const char* name, OBproxyReplyInterface* reply)
    {
        platformDouble::pLastReplyInterface = reply;
        return subscribe("asynchronously", name);
    }

    void setReplyWaitTime(int seconds) { note("waits " + std::to_string(seconds)); }

protected:
    explicit OBproxy(OBcomponent& component)
        : m_name(component.name() + std::to_string(++platformDouble::numberOfProxies))
    {
        note("created");
    }

    void note(const std::string& text) const { platformDouble::journal.push_back(m_name + " " + text); }

private:
    int subscribe(const std::string& way, const std::string& name)
    {
        note("subscribed " + way + " to " + name);
        if (platformDouble::isSubscribingImpossible) {
            throw std::runtime_error("no such service");
        }
        return -1;  // which the client must ignore
    }

    std::string m_name;
};

#endif
