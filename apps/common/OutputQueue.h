#ifndef APPS_COMMON_OUTPUT_QUEUE_H
#define APPS_COMMON_OUTPUT_QUEUE_H

// Output that never waits for its reader (a pipe, a terminal, the socket of the log), which may stop reading at any
// time: a separate thread writes, and items for which there is no room are dropped and counted.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace brantel {

class OutputQueue {
public:
    struct Item {
        std::string text;
        int priority = 0;        ///< for the log only
        bool isPicture = false;  ///< set by putPicture
    };

    /// Writes one item, however long that takes. Returns 0 or an errno. Called on the queue's thread, which may
    /// outlive the queue: it must not refer to anything that ends before the program.
    using Write = std::function<int(const Item&)>;

    /// The item that is written instead of a number of dropped ones. Called like Write, and by put.
    using DropNotice = std::function<Item(std::uint64_t)>;

    /// Holds at most `capacity` bytes, or one item that is larger.
    OutputQueue(std::size_t capacity, Write write, DropNotice dropNotice);
    ~OutputQueue();
    OutputQueue(const OutputQueue&) = delete;
    OutputQueue& operator=(const OutputQueue&) = delete;

    /// Adds an item, or drops it. Any thread.
    void put(Item item);

    /// Adds an item, instead of the last one that was added so if that is still waiting: a newer picture.
    void putPicture(Item item);

    /// The errno of the last write that failed; 0 if none did.
    int error() const;

    /// Waits until all is written, at most until `deadline`; the rest is dropped. Call nothing else after it.
    void finish(std::chrono::steady_clock::time_point deadline);

private:
    struct State;
    static void writeItems(const std::shared_ptr<State>& pState);

    std::shared_ptr<State> m_pState;
    std::thread m_thread;
};

}  // namespace brantel

#endif
