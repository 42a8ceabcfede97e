#include <gtest/gtest.h>
#include <roots/containers/BryMemoryController.h>

#include <cstring>

#include "tests/support/FailNthAllocation.h"

using Controller = BryMemoryControllerController;

TEST(BryMemoryController, MultipliesIn32BitsAndNullsWhatItReleases) {
    const struct { long count; unsigned size, bytes; } rows[] = {
        {3, 5, 15}, {0, 8, 0}, {1L << 20, 1, 1u << 20}, {0x40000001, 4, 4}, {-1, 0xFFFFFFFF, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.count << " x " << row.size);
        unsigned char* bytes = Controller::allocateArray(row.count, row.size);
        ASSERT_NE(bytes, nullptr);
        std::memset(bytes, 1, row.bytes);  // the sanitizer knows how many there are
        Controller::deallocateArray(bytes);
        EXPECT_EQ(bytes, nullptr);
        Controller::deallocateArray(bytes);
    }
    Controller one, other;
    EXPECT_EQ(&(one = other), &one);
}

TEST(BryMemoryController, PassesExhaustionOn) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    const long live = liveAllocations();
    FailNthAllocation failing(1);
    EXPECT_THROW(Controller::allocateArray(1, 1), std::bad_alloc);
    EXPECT_EQ(liveAllocations(), live);
}
