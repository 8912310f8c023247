#ifndef MESSAGE_CALLED_SERVICES_H
#define MESSAGE_CALLED_SERVICES_H

// The services that the proxies of one component call, by name.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "message/OBproxy.h"

namespace obmessage {

/// What the component's proxies to one service share.
struct CalledService {
    std::vector<const OBproxy*> proxies;  // also those that could not subscribe; the oldest first
    std::uint64_t lastSequenceNumber = 0;
};

class CalledServices {
public:
    /// `proxy` calls the service from now on, and no other one. The result is valid until remove().
    CalledService& add(const std::string& serviceName, const OBproxy& proxy)
    {
        remove(proxy);
        CalledService& service = m_services[serviceName];
        service.proxies.push_back(&proxy);
        return service;
    }

    void remove(const OBproxy& proxy)
    {
        for (auto service = m_services.begin(); service != m_services.end();) {
            std::vector<const OBproxy*>& proxies = service->second.proxies;
            proxies.erase(std::remove(proxies.begin(), proxies.end(), &proxy), proxies.end());
            service = proxies.empty() ? m_services.erase(service) : std::next(service);
        }
    }

    /// One without proxies if there are none to this service.
    const CalledService& find(const std::string& serviceName) const
    {
        static const CalledService none;
        const auto service = m_services.find(serviceName);
        return (service == m_services.end()) ? none : service->second;
    }

private:
    std::map<std::string, CalledService> m_services;
};

}  // namespace obmessage

#endif
