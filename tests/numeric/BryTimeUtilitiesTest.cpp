#include <gtest/gtest.h>
#include <roots/numeric/BryTimeUtilities.h>
#include <roots/platform/Win32.h>

#include <climits>
#include <cstring>

namespace {

using Time = BryTimeUtilities;
using Between = int (*)(const SYSTEMTIME&, const SYSTEMTIME&, int&);
using FromNow = int (*)(const SYSTEMTIME&, int&);

// Seconds, minutes, hours, days.
constexpr int kUnits = 4;
constexpr Between kBetween[] = {Time::getDifferenceBetweenTimesInSeconds, Time::getDifferenceBetweenTimesInMinutes,
                                Time::getDifferenceBetweenTimesInHours, Time::getDifferenceBetweenTimesInDays};
constexpr FromNow kFromNow[][kUnits] = {
    {Time::getDifferenceBetweenTimeAndLocalTimeInSeconds, Time::getDifferenceBetweenTimeAndLocalTimeInMinutes,
     Time::getDifferenceBetweenTimeAndLocalTimeInHours, Time::getDifferenceBetweenTimeAndLocalTimeInDays},
    {Time::getDifferenceBetweenTimeAndSystemTimeInSeconds, Time::getDifferenceBetweenTimeAndSystemTimeInMinutes,
     Time::getDifferenceBetweenTimeAndSystemTimeInHours, Time::getDifferenceBetweenTimeAndSystemTimeInDays}};

constexpr SYSTEMTIME kFirst = {1601, 1, 1, 1, 0, 0, 0, 0}, kLast = {30827, 12, 5, 31, 23, 59, 59, 999},
                     kMonth13 = {2009, 13, 0, 1, 0, 0, 0, 0}, kUntouched = {7, 7, 7, 7, 7, 7, 7, 7};

bool isSame(const SYSTEMTIME& a, const SYSTEMTIME& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

TEST(BryTimeUtilitiesDifference, IsInWholeUnitsCutTowardsZero) {
    // clang-format off
    const struct { SYSTEMTIME first, second; int order, expected[kUnits]; } rows[] = {
        {{2009, 1, 0, 1, 12, 0, 0, 0}, {2009, 1, 0, 1, 10, 30, 0, 0}, 1, {5400, 90, 1, 0}},
        {{2009, 1, 5, 1, 12, 0, 0, 0}, {2009, 1, 9, 1, 12, 0, 0, 0}, 0, {0, 0, 0, 0}},
        {{2009, 1, 0, 2, 9, 59, 59, 999}, {2009, 1, 0, 1, 10, 0, 0, 0}, 1, {86399, 1439, 23, 0}},
        {{2009, 1, 0, 1, 10, 0, 0, 999}, {2009, 1, 0, 1, 10, 0, 0, 0}, 1, {0, 0, 0, 0}},
        {{1669, 1, 0, 19, 3, 14, 6, 999}, kFirst, 1, {INT_MAX - 1, 35791394, 596523, 24855}},
        {{1669, 1, 0, 19, 3, 14, 9, 0}, kFirst, 1, {INT_MAX, 35791394, 596523, 24855}},
        {kLast, kFirst, 1, {INT_MAX, INT_MAX, 256198607, 10674941}},
        {kMonth13, {1601, 1, 0, 1, 0, 0, 7, 0}, -1, {-7, 0, 0, 0}}};
    // clang-format on
    for (const auto& row : rows) {
        for (int unit = 0; unit < kUnits; ++unit) {
            int there = 77, back = 77;
            EXPECT_EQ(kBetween[unit](row.first, row.second, there), row.order);
            EXPECT_EQ(kBetween[unit](row.second, row.first, back), -row.order);
            EXPECT_EQ(there, row.expected[unit]) << "row " << &row - rows << " unit " << unit;
            EXPECT_EQ(back, there == INT_MAX ? INT_MIN : -there) << "row " << &row - rows;
        }
    }
}

TEST(BryTimeUtilitiesDifference, IsPositiveForATimeToComeFromNow) {
    constexpr int kHours = 100, kPerUnit[kUnits] = {3600 * kHours, 60 * kHours, kHours, kHours / 24};
    for (const int sign : {1, -1}) {
        SYSTEMTIME now, times[2];
        GetSystemTime(&now);
        EXPECT_TRUE(Time::addTimeToLocalTime(sign * kHours, times[0]) && Time::addTime(now, sign * kHours, times[1]));
        for (int i = 0; i < 2 * kUnits; ++i) {
            int difference = 0;
            EXPECT_EQ(kFromNow[i / kUnits][i % kUnits](times[i / kUnits], difference), sign);
            EXPECT_NEAR(difference, sign * kPerUnit[i % kUnits], i % kUnits == 0 ? 60 : 1) << i;
        }
    }
}

TEST(BryTimeUtilitiesAddTime, FillsInTheDayOfTheWeekOrLeavesTheResult) {
    // clang-format off
    const struct { SYSTEMTIME time; int hours; SYSTEMTIME expected; } rows[] = {
        {{2009, 3, 9, 1, 0, 0, 0, 0}, -24, {2009, 2, 6, 28, 0, 0, 0, 0}},
        {{2009, 3, 9, 1, 1, 2, 3, 4}, 0, {2009, 3, 0, 1, 1, 2, 3, 4}},
        {{2008, 2, 0, 28, 23, 59, 59, 999}, 1, {2008, 2, 5, 29, 0, 59, 59, 999}},
        {kFirst, 256204778, {30828, 9, 4, 14, 2, 0, 0, 0}}, {kFirst, 256204779, kUntouched},
        {kFirst, INT_MAX, kUntouched}, {kLast, INT_MIN, kUntouched}, {kLast, 256204778, kUntouched},
        {{30827, 12, 5, 31, 23, 0, 0, 0}, -256198607, {1601, 1, 1, 1, 0, 0, 0, 0}},
        {{30827, 12, 5, 31, 23, 0, 0, 0}, -256198608, kUntouched}, {kFirst, -1, kUntouched}, {kMonth13, 0, kUntouched}};
    // clang-format on
    for (const auto& row : rows) {
        SYSTEMTIME result = kUntouched;
        EXPECT_EQ(Time::addTime(row.time, row.hours, result) != 0, !isSame(row.expected, kUntouched)) << &row - rows;
        EXPECT_TRUE(isSame(result, row.expected)) << "row " << &row - rows;
    }
    SYSTEMTIME itself = rows[0].time;
    EXPECT_TRUE(Time::addTime(itself, -24, itself) && isSame(itself, rows[0].expected));
    EXPECT_TRUE(Time::addTimeToLocalTime(INT_MAX, itself) == 0 && isSame(itself, rows[0].expected));
}
