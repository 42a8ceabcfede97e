#include <gtest/gtest.h>
#include <roots/numeric/BryDouble.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();

// Also tells -0.0 from 0.0.
bool isSame(double a, double b) { return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b); }

}  // namespace

TEST(BryDoubleRound, SnapsToTheGridAndThenRoundsHalvesUp) {
    // clang-format off
    const struct { double value; unsigned short decimals; double step, expected; } rows[] = {
        {2.25, 1, 0, 2.3}, {-2.25, 1, 0, -2.2}, {2.375, 2, 0, 2.38}, {-2.5, 0, 0, -2}, {1.005, 2, 0, 1}, {-0.2, 0, 0, 0},
        {7.3, 0, 2, 8}, {7, 0, 2, 8}, {6.9, 0, 2, 6}, {-0.7, 0, 1, 0}, {-1.49, 0, 1, 0}, {-1.5, 0, 1, -1}, {-2.4, 0, 1, -1},
        {7.3, 1, 0.25, 7.3}, {0.49999999999, 0, 1e-10, 0}, {0.49999999999, 0, 1.0001e-10, 1}, {7.3, 0, kNaN, 7},
        {2147483646.6, 0, 1, 2147483647}, {-2147483648.5, 0, 1, -2147483648.0}, {2147483647.5, 0, 1, 2147483648},
        {1e15, 0, 3, 999999999999999}, {0.49999999999999994, 0, 0, 1}, {4503599627370497, 0, 0, 4503599627370498},
        {1.5, 22, 0, 1.5}, {0, 308, 0, 0}, {1, 309, 0, kNaN}, {0, 65535, 0, kNaN}, {1e300, 10, 0, kInfinity},
        {kInfinity, 2, 0.5, kInfinity}, {-kInfinity, 2, 0, -kInfinity}, {1, 0, kInfinity, kNaN}, {kNaN, 2, 1, kNaN}};
    // clang-format on
    for (const auto& row : rows)
        EXPECT_PRED2(isSame, BryDouble::round(row.value, row.decimals, row.step), row.expected)
            << row.value << ", " << row.decimals << ", " << row.step;
    EXPECT_EQ(BryDouble::round(2.5), 3);
}

TEST(BryDoubleLongRound, CutsAtTheOffset) {
    const double above = std::nextafter(0.9999, 1), below = std::nextafter(0.0001, 0);
    const long least = -2147483647 - 1, most = 2147483647;
    // clang-format off
    const struct { double value, offset; long expected; } rows[] = {
        {2.5, 0.5, 3}, {-2.5, 0.5, -3}, {2.49, 0.5, 2}, {2.99995, 0, 3}, {2.9998, 0, 2}, {-2.99995, -1, -3}, {2.9, 1, 2},
        {2.1, 0.9999, 3}, {2.1, above, 2}, {1.99990001, 0.0001, 2}, {1.9, below, 1}, {2.9, kNaN, 2}, {kNaN, 0.5, 0},
        {2147483647.4, 0.5, most}, {2147483647.6, 0.5, most}, {kInfinity, 0.5, most},
        {-2147483648.4, 0.5, least}, {-2147483648.6, 0.5, least}, {-1e300, 0.5, least}};
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(BryDouble::longRound(row.value, row.offset), row.expected) << row.value << ", " << row.offset;
    EXPECT_TRUE(BryDouble::longRound(2.5) == 3 && BryDouble::MinRoundOffset == 0.0001);
}
