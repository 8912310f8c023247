#include "tables/RowNumbers.h"

#include <vector>

#include <gtest/gtest.h>

namespace brantel {
namespace {

using Ranges = std::map<std::int64_t, std::int64_t>;

TEST(RowNumberSet, TakeRoomForGapsAlone)
{
    RowNumberSet numbers;
    for (const std::int64_t key : {3, 4, 5, 9, 1, 10, 4, 10}) {
        numbers.add(key);
    }
    EXPECT_EQ(numbers.lastByFirst(), (Ranges{{1, 1}, {3, 5}, {9, 10}}));
}

TEST(RowNumberSet, ContainWhatWasAdded)
{
    RowNumberSet numbers;
    EXPECT_FALSE(numbers.contains(0));
    numbers.add(3);
    numbers.add(4);
    numbers.add(7);
    std::vector<std::int64_t> contained;
    for (std::int64_t key = 0; key < 10; ++key) {
        if (numbers.contains(key)) {
            contained.push_back(key);
        }
    }
    EXPECT_EQ(contained, (std::vector<std::int64_t>{3, 4, 7}));
}

}  // namespace

}  // namespace brantel
