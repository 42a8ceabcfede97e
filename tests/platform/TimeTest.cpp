#include <gtest/gtest.h>
#include <roots/platform/Win32.h>

#include <cstring>

#include "tests/support/Platform.h"

namespace {

constexpr std::uint64_t kRefused = UINT64_MAX, kPerDay = 864000000000, kUntouched = 0x7777777777777777;

FILETIME fileTime(std::uint64_t count) { return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)}; }

// kRefused only where the error is right and nothing is written.
std::uint64_t countOf(const SYSTEMTIME& time) {
    FILETIME count = fileTime(kUntouched);
    SetLastError(0);
    const bool converts = SystemTimeToFileTime(&time, &count) != FALSE;
    const std::uint64_t result = std::uint64_t{count.dwHighDateTime} << 32 | count.dwLowDateTime;
    return converts ? result : result == kUntouched && GetLastError() == ERROR_INVALID_PARAMETER ? kRefused : 0;
}

bool gives(std::uint64_t count, const SYSTEMTIME& expected, bool converts = true) {
    SYSTEMTIME time = {7, 7, 7, 7, 7, 7, 7, 7};
    const FILETIME fine = fileTime(count);
    return (FileTimeToSystemTime(&fine, &time) != FALSE) == converts && std::memcmp(&time, &expected, sizeof time) == 0;
}

}  // namespace

TEST(SystemTimeToFileTime, CountsFrom1601AndRefusesWhatTheCalendarLacks) {
    // clang-format off
    const struct { SYSTEMTIME time; std::uint64_t count; bool isSameInWine = true; } rows[] = {
        {{1601, 1, 9, 1, 0, 0, 0, 0}, 0}, {{1600, 12, 0, 31, 23, 59, 59, 999}, kRefused}, {{}, kRefused},
        {{30827, 12, 0, 31, 23, 59, 59, 999}, 0x7fff35f4f06c58f0}, {{30828, 1, 0, 1, 0, 0, 0, 0}, kRefused, false},
        {{2009, 1, 65535, 1, 12, 0, 0, 0}, 0x01c96c0878dc2000}, {{2009, 0, 0, 1, 12, 0, 0, 0}, kRefused},
        {{2009, 13, 0, 1, 12, 0, 0, 0}, kRefused}, {{2009, 1, 0, 0, 12, 0, 0, 0}, kRefused},
        {{2000, 2, 0, 29, 12, 0, 0, 0}, 0x01bf82ac81016000}, {{2000, 2, 0, 30, 12, 0, 0, 0}, kRefused},
        {{2009, 2, 0, 29, 0, 0, 0, 0}, kRefused, false}, {{2100, 2, 0, 29, 0, 0, 0, 0}, kRefused, false},
        {{2009, 4, 0, 31, 0, 0, 0, 0}, kRefused}, {{2009, 12, 0, 32, 0, 0, 0, 0}, kRefused},
        {{2009, 1, 0, 1, 24, 0, 0, 0}, kRefused}, {{2009, 1, 0, 1, 12, 60, 0, 0}, kRefused},
        {{2009, 1, 0, 1, 12, 0, 60, 0}, kRefused}, {{2009, 1, 0, 1, 12, 0, 0, 1000}, kRefused}};
    // clang-format on
    for (const auto& row : rows)  // Wine takes any year, and February 29 of every
        EXPECT_EQ(countOf(row.time), row.isSameInWine || !underWine() ? row.count : countOf(row.time)) << &row - rows;
}

TEST(FileTimeToSystemTime, IsTheInverseAtTheEndOfEveryMonth) {
    std::uint64_t day = 0;
    for (int year = 1601; year <= 30827; ++year) {
        const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
        const int lengths[] = {31, isLeap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        for (WORD month = 1; month <= 12; ++month) {
            const auto last = static_cast<WORD>(lengths[month - 1]), weekday = static_cast<WORD>((day + last) % 7);
            const SYSTEMTIME end = {static_cast<WORD>(year), month, weekday, last, 23, 59, 59, 999};
            day += last;
            ASSERT_TRUE(gives(day * kPerDay - 1, end) && countOf(end) == day * kPerDay - 10000) << year << '-' << month;
        }
    }
    EXPECT_TRUE(gives(INT64_MAX, {30828, 9, 4, 14, 2, 48, 5, 477}));
    EXPECT_TRUE(gives(INT64_MAX + std::uint64_t{1}, {7, 7, 7, 7, 7, 7, 7, 7}, false));
}

TEST(GetSystemTime, IsTheTimeOfTheClockAndTheLocalTimeThatOfItsZone) {
    for (const auto read : {GetSystemTime, GetLocalTime}) {
        const std::time_t now = std::time(nullptr);
        SYSTEMTIME time;
        read(&time);
        const std::tm& tm = read == GetLocalTime ? *std::localtime(&now) : *std::gmtime(&now);
        const SYSTEMTIME before = {WORD(tm.tm_year + 1900), WORD(tm.tm_mon + 1), 0, WORD(tm.tm_mday), WORD(tm.tm_hour),
                                   WORD(tm.tm_min),         WORD(tm.tm_sec),     0};
        EXPECT_TRUE(countOf(time) - countOf(before) < 30000000 && gives(countOf(time), time)) << (read == GetLocalTime);
    }
}
