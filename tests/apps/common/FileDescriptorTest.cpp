#include "common/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <string>
#include <thread>

#include <fcntl.h>

#include <gtest/gtest.h>

namespace brantel {
namespace {

TEST(WriteAll, WaitsForANonBlockingPipe)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
    const std::string text(1'000'000, 'x');
    std::size_t received = 0;
    std::thread reader([&] {
        std::array<char, 65536> part{};
        while (received < text.size()) {
            const ssize_t count = ::read(ends[0], part.data(), part.size());
            received += (count > 0) ? static_cast<std::size_t>(count) : 0;
        }
    });

    EXPECT_EQ(writeAll(ends[1], text), 0);
    reader.join();
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(WriteAll, ReturnsWhyItFails)
{
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(writeAll(full, "text"), ENOSPC);
    ::close(full);
    EXPECT_EQ(writeAll(-1, "text"), EBADF);
}

}  // namespace

}  // namespace brantel
