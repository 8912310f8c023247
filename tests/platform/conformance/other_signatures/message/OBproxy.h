#ifndef OTHER_OBPROXY_H
#define OTHER_OBPROXY_H

class OBproxyReplyInterface;

class OBproxy {
public:
    void subscribe_synchronous(int service);
    void subscribe_asynchronous(const char* name);
    void setReplyWaitTime();
};

#endif
