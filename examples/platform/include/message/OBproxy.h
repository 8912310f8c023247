#ifndef MINIMAL_OB_PROXY_H
#define MINIMAL_OB_PROXY_H

#include <string>

class OBproxyReplyInterface {};

class OBproxy {
public:
    virtual ~OBproxy() = default;

    void subscribe_synchronous(const char* name) { m_service = name; }
    void subscribe_asynchronous(const char*, OBproxyReplyInterface*) {}  // calls of such a proxy fail
    void setReplyWaitTime(int) {}                                        // answers are there at once

protected:
    std::string m_service;
};

#endif
