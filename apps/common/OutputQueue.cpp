#include "common/OutputQueue.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <utility>

namespace brantel {

// Shared with the thread, which stays behind when a write never returns.
struct OutputQueue::State {
    State(std::size_t itsCapacity, Write itsWrite, DropNotice itsDropNotice)
        : capacity(itsCapacity), write(std::move(itsWrite)), dropNotice(std::move(itsDropNotice))
    {
    }

    bool isEmpty() const { return items.empty() && (dropped == 0); }
    bool hasRoomFor(std::size_t size) const { return items.empty() || (bytes + size <= capacity); }

    void push(Item item)
    {
        bytes += item.text.size();
        items.push_back(std::move(item));
    }

    void dropWaitingPicture()
    {
        if (!items.empty() && items.back().isPicture) {
            bytes -= items.back().text.size();
            items.pop_back();
        }
    }

    Item take()
    {
        if (items.empty()) {
            return dropNotice(std::exchange(dropped, 0));
        }
        Item item = std::move(items.front());
        items.pop_front();
        bytes -= item.text.size();
        return item;
    }

    const std::size_t capacity;
    const Write write;
    const DropNotice dropNotice;

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Item> items;
    std::size_t bytes = 0;
    std::uint64_t dropped = 0;  ///< after the last item
    int error = 0;
    bool isEnding = false;
    bool hasEnded = false;
};

OutputQueue::OutputQueue(std::size_t capacity, Write write, DropNotice dropNotice)
    : m_pState(std::make_shared<State>(capacity, std::move(write), std::move(dropNotice)))
{
    // Signals are for other threads; a reader that is gone is an error of the write.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([pState = m_pState] { writeItems(pState); });
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

OutputQueue::~OutputQueue()
{
    finish(std::chrono::steady_clock::now());
}

void OutputQueue::put(Item item)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    if (m_pState->dropped > 0) {
        Item notice = m_pState->dropNotice(m_pState->dropped);
        if (m_pState->hasRoomFor(notice.text.size() + item.text.size())) {
            m_pState->push(std::move(notice));
            m_pState->dropped = 0;
        }
    }
    if ((m_pState->dropped == 0) && m_pState->hasRoomFor(item.text.size())) {
        m_pState->push(std::move(item));
    } else {
        ++m_pState->dropped;
    }
    m_pState->changed.notify_all();
}

void OutputQueue::putPicture(Item item)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->dropWaitingPicture();
    item.isPicture = true;
    m_pState->push(std::move(item));
    m_pState->changed.notify_all();
}

int OutputQueue::error() const
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    return m_pState->error;
}

void OutputQueue::finish(std::chrono::steady_clock::time_point deadline)
{
    if (!m_thread.joinable()) {
        return;
    }
    std::unique_lock<std::mutex> lock(m_pState->mutex);
    m_pState->isEnding = true;
    m_pState->changed.notify_all();
    const bool hasEnded = m_pState->changed.wait_until(lock, deadline, [&] { return m_pState->hasEnded; });
    m_pState->items.clear();
    m_pState->dropped = 0;
    lock.unlock();
    if (hasEnded) {
        m_thread.join();
    } else {
        m_thread.detach();
    }
}

void OutputQueue::writeItems(const std::shared_ptr<State>& pState)
{
    std::unique_lock<std::mutex> lock(pState->mutex);
    for (;;) {
        pState->changed.wait(lock, [&] { return pState->isEnding || !pState->isEmpty(); });
        if (pState->isEmpty()) {
            break;
        }
        const Item item = pState->take();
        lock.unlock();
        const int error = pState->write(item);
        lock.lock();
        if (error != 0) {
            pState->error = error;
        }
    }
    pState->hasEnded = true;
    pState->changed.notify_all();
}

}  // namespace brantel
