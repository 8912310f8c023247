#include "common/WaitNotice.h"

#include <chrono>

#include <unistd.h>

#include "common/Message.h"

namespace brantel {

WaitNotice::WaitNotice(const std::string& text)
{
    if (::isatty(STDERR_FILENO) != 0) {
        m_thread = std::thread([this, text] { printWhenDue(text); });
    }
}

WaitNotice::~WaitNotice()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isOver = true;
    }
    m_end.notify_one();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void WaitNotice::printWhenDue(const std::string& text)
{
    constexpr std::chrono::seconds MOMENT{1};
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_end.wait_for(lock, MOMENT, [this] { return m_isOver; })) {
        printMessage(text);
    }
}

}  // namespace brantel
