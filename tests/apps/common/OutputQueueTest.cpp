#include "common/OutputQueue.h"

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>

namespace brantel {
namespace {

using Texts = std::vector<std::string>;

const auto SOON = [] { return std::chrono::steady_clock::now() + std::chrono::seconds(30); };

// The reader of a queue: takes texts, or nothing while it is stuck. It outlives the queue's thread.
class Reader {
public:
    OutputQueue::Write write()
    {
        return [this](const OutputQueue::Item& item) {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_isBusy = true;
            m_changed.notify_all();
            m_changed.wait(lock, [&] { return !m_isStuck; });
            m_isBusy = false;
            m_taken.push_back(item.text);
            return m_error;
        };
    }

    void getStuck()
    {
        change([&] { m_isStuck = true; });
    }
    void goOn()
    {
        change([&] { m_isStuck = false; });
    }
    void fail(int error)
    {
        change([&] { m_error = error; });
    }

    /// Waits until it has been handed a text that it does not take.
    void waitUntilBusy()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [&] { return m_isBusy; });
    }

    Texts taken()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_taken;
    }

private:
    template <typename Change>
    void change(const Change& how)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        how();
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isStuck = false;
    bool m_isBusy = false;
    int m_error = 0;
    Texts m_taken;
};

OutputQueue::Item missing(std::uint64_t count)
{
    return {std::to_string(count) + " missing"};
}

TEST(OutputQueue, WritesItemsInOrder)
{
    Reader reader;
    OutputQueue queue(100, reader.write(), missing);
    queue.put({"one"});
    queue.put({"two"});
    queue.finish(SOON());

    EXPECT_EQ(reader.taken(), (Texts{"one", "two"}));
    EXPECT_EQ(queue.error(), 0);
}

TEST(OutputQueue, DropsAndCountsItemsWithoutRoomWhileItsReaderIsStuck)
{
    Reader reader;
    reader.getStuck();
    OutputQueue queue(10, reader.write(), missing);
    queue.put({"in the write"});
    reader.waitUntilBusy();
    for (const char* const text : {"12345", "67890", "lost", "lost too", "lost"}) {
        queue.put({text});
    }
    reader.goOn();
    queue.finish(SOON());

    EXPECT_EQ(reader.taken(), (Texts{"in the write", "12345", "67890", "3 missing"}));
}

TEST(OutputQueue, PutsTheCountWhereTheGapIs)
{
    Reader reader;
    reader.getStuck();
    OutputQueue queue(24, reader.write(), missing);
    queue.put({"in the write"});
    reader.waitUntilBusy();
    queue.put({"123456789012345678901234"});
    queue.put({"lost"});
    reader.goOn();
    while (reader.taken().size() < 3) {
        std::this_thread::yield();
    }
    queue.put({"after"});
    queue.finish(SOON());

    EXPECT_EQ(reader.taken(), (Texts{"in the write", "123456789012345678901234", "1 missing", "after"}));
}

TEST(OutputQueue, TakesOneItemThatIsLargerThanItsRoom)
{
    Reader reader;
    OutputQueue queue(3, reader.write(), missing);
    queue.put({"a large item"});
    queue.finish(SOON());

    EXPECT_EQ(reader.taken(), (Texts{"a large item"}));
}

TEST(OutputQueue, KeepsOnlyTheNewestPicture)
{
    Reader reader;
    reader.getStuck();
    OutputQueue queue(10, reader.write(), missing);
    queue.put({"screen"});
    reader.waitUntilBusy();
    queue.putPicture({"picture 1"});
    queue.putPicture({"picture 2"});
    queue.putPicture({"picture 3"});
    reader.goOn();
    queue.finish(SOON());

    EXPECT_EQ(reader.taken(), (Texts{"screen", "picture 3"}));
}

TEST(OutputQueue, DoesNotWaitForAStuckReaderWhenItEnds)
{
    static Reader reader;  // the queue's thread stays behind
    reader.getStuck();
    {
        OutputQueue queue(10, reader.write(), missing);
        queue.put({"one"});
        reader.waitUntilBusy();
        queue.put({"two"});
        queue.finish(std::chrono::steady_clock::now());
    }
    EXPECT_EQ(reader.taken(), (Texts{}));
    reader.goOn();
    while (reader.taken().empty()) {
        std::this_thread::yield();
    }

    EXPECT_EQ(reader.taken(), (Texts{"one"})) << "what waited is given up";
}

TEST(OutputQueue, KeepsTheErrorOfAWriteThatFailed)
{
    Reader reader;
    reader.fail(ENOSPC);
    OutputQueue queue(100, reader.write(), missing);
    queue.put({"one"});
    queue.finish(SOON());

    EXPECT_EQ(queue.error(), ENOSPC);
}

}  // namespace

}  // namespace brantel
