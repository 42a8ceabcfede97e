#include <gtest/gtest.h>
#include <roots/numeric/BryZClipping.h>

#include <cmath>

TEST(BryZClipping, StartsWithTheDefaultsOfTheMoment) {
    const BryZClipping before;
    BryZClipping::kClipUpperDefault = 50;
    BryZClipping::kClipLowerDefault = -1;
    const BryZClipping after, copy(before);
    BryZClipping::kClipUpperDefault = 20;
    BryZClipping::kClipLowerDefault = -20;
    EXPECT_TRUE(before.m_eClip == 0 && before.m_clipUpper == 20 && before.m_clipLower == -20);
    EXPECT_TRUE(after.m_eClip == 0 && after.m_clipUpper == 50 && after.m_clipLower == -1);
    EXPECT_TRUE(copy == before && copy != after);
}

TEST(BryZClipping, ComparesModeAndBothLimitsExactly) {
    const BryZClipping::eZClip zero{}, seven = static_cast<BryZClipping::eZClip>(7);
    const BryZClipping clipping(zero, 20, -20), notANumber(zero, 20, std::nan(""));
    EXPECT_TRUE((clipping == BryZClipping(zero, 20, -20)) == 1 && (clipping != BryZClipping(zero, 20, -20)) == 0);
    for (const BryZClipping& other : {BryZClipping(seven, 20, -20), BryZClipping(zero, -20, 20), notANumber,
                                      BryZClipping(zero, 20.0000000001, -20), BryZClipping(zero, 20, -20.0000000001)})
        EXPECT_TRUE((clipping == other) == 0 && (clipping != other) == 1) << other.m_clipUpper << other.m_clipLower;
    EXPECT_TRUE((BryZClipping(notANumber) == notANumber) == 0 && (BryZClipping(notANumber) != notANumber) == 1);
}
