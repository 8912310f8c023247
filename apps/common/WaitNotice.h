#ifndef APPS_COMMON_WAIT_NOTICE_H
#define APPS_COMMON_WAIT_NOTICE_H

// Shows on a terminal what the command is waiting for, if that takes longer than a second:
//
//     const WaitNotice notice("waiting for the card in slot 3");
//     ...  // a call that may take seconds

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace brantel {

class WaitNotice {
public:
    /// Prints `text` as a message after a second, if this still exists and standard error is a terminal.
    explicit WaitNotice(const std::string& text);
    ~WaitNotice();
    WaitNotice(const WaitNotice&) = delete;
    WaitNotice& operator=(const WaitNotice&) = delete;

private:
    void printWhenDue(const std::string& text);

    std::mutex m_mutex;
    std::condition_variable m_end;
    bool m_isOver = false;
    std::thread m_thread;
};

}  // namespace brantel

#endif
