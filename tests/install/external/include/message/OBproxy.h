#ifndef FOREIGN_OBPROXY_H
#define FOREIGN_OBPROXY_H

class OBproxyReplyInterface {};

class OBproxy {
public:
    virtual ~OBproxy() = default;
    bool subscribe_synchronous(const char* name);
    bool subscribe_asynchronous(const char* name, OBproxyReplyInterface* pReply);
    void setReplyWaitTime(int seconds) { m_replyWaitTime = seconds; }

private:
    int m_replyWaitTime = 7;
};

#endif
