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

bool isSame(const SYSTEMTIME& a, const SYSTEMTIME& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

TEST(SystemTimeToFileTime, CountsFrom1601AndRefusesWhatTheCalendarLacks) {
    // clang-format off
    const struct { SYSTEMTIME time; std::uint64_t count; bool underWine = true; } rows[] = {
        {{1601, 1, 9, 1, 0, 0, 0, 0}, 0}, {{1600, 12, 0, 31, 23, 59, 59, 999}, kRefused}, {{}, kRefused},
        {{30827, 12, 0, 31, 23, 59, 59, 999}, 0x7fff35f4f06c58f0}, {{30828, 1, 0, 1, 0, 0, 0, 0}, kRefused, false},
        {{2009, 1, 65535, 1, 12, 0, 0, 0}, 0x01c96c0878dc2000}, {{2009, 0, 0, 1, 12, 0, 0, 0}, kRefused},
        {{2009, 13, 0, 1, 12, 0, 0, 0}, kRefused}, {{2009, 1, 0, 0, 12, 0, 0, 0}, kRefused},
        {{2000, 2, 0, 29, 12, 0, 0, 0}, 0x01bf82ac81016000}, {{2000, 2, 0, 30, 12, 0, 0, 0}, kRefused},
        {{2009, 2, 0, 29, 0, 0, 0, 0}, kRefused, false}, {{2100, 2, 0, 29, 0, 0, 0, 0}, kRefused, false},
        {{2009, 4, 0, 30, 12, 0, 0, 0}, 0x01c9c98b30046000}, {{2009, 4, 0, 31, 0, 0, 0, 0}, kRefused},
        {{2009, 12, 0, 31, 12, 0, 0, 0}, 0x01ca8a10c7392000}, {{2009, 12, 0, 32, 0, 0, 0, 0}, kRefused},
        {{2009, 1, 0, 1, 23, 0, 0, 0}, 0x01c96c64ac4c9800}, {{2009, 1, 0, 1, 24, 0, 0, 0}, kRefused},
        {{2009, 1, 0, 1, 12, 59, 0, 0}, 0x01c96c10b6dd4200}, {{2009, 1, 0, 1, 12, 60, 0, 0}, kRefused},
        {{2009, 1, 0, 1, 12, 0, 59, 0}, 0x01c96c089c06cf80}, {{2009, 1, 0, 1, 12, 0, 60, 0}, kRefused},
        {{2009, 1, 0, 1, 12, 0, 0, 999}, 0x01c96c0879748f70}, {{2009, 1, 0, 1, 12, 0, 0, 1000}, kRefused}};
    // clang-format on
    for (const auto& row : rows) {  // Wine takes any year, and February 29 of every
        if (underWine() && !row.underWine) continue;
        EXPECT_EQ(countOf(row.time), row.count) << &row - rows;
    }
}

TEST(FileTimeToSystemTime, GivesTheDayOfTheWeekAndRefusesTheUpperHalf) {
    const struct {
        std::uint64_t count;
        SYSTEMTIME time;
    } rows[] = {{0, {1601, 1, 1, 1, 0, 0, 0, 0}},
                {9999, {1601, 1, 1, 1, 0, 0, 0, 0}},
                {INT64_MAX, {30828, 9, 4, 14, 2, 48, 5, 477}},
                {INT64_MAX + 1ull, {7, 7, 7, 7, 7, 7, 7, 7}},
                {UINT64_MAX, {7, 7, 7, 7, 7, 7, 7, 7}}};
    for (const auto& [count, expected] : rows) {
        SYSTEMTIME time = {7, 7, 7, 7, 7, 7, 7, 7};
        const FILETIME fine = fileTime(count);
        EXPECT_EQ(FileTimeToSystemTime(&fine, &time) != FALSE, count <= INT64_MAX);
        EXPECT_TRUE(isSame(time, expected)) << count;
    }
}

TEST(FileTimeToSystemTime, IsTheInverseOnEveryFirstAndLastOfAMonth) {
    std::uint64_t day = 0;
    for (int year = 1601; year <= 30827; ++year) {
        const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
        const int lengths[] = {31, isLeap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        for (int month = 1; month <= 12; ++month) {
            for (const int ofMonth : {1, lengths[month - 1]}) {
                const std::uint64_t at = day + static_cast<std::uint64_t>(ofMonth) - 1, count = (at + 1) * kPerDay - 1;
                const SYSTEMTIME last = {static_cast<WORD>(year),
                                         static_cast<WORD>(month),
                                         static_cast<WORD>((at + 1) % 7),
                                         static_cast<WORD>(ofMonth),
                                         23,
                                         59,
                                         59,
                                         999};
                const FILETIME fine = fileTime(count);
                SYSTEMTIME time;
                FileTimeToSystemTime(&fine, &time);
                ASSERT_TRUE(isSame(time, last) && countOf(time) == count - 9999) << year << '-' << month;
            }
            day += static_cast<std::uint64_t>(lengths[month - 1]);
        }
    }
}

TEST(CompareFileTime, ComparesWithoutASign) {
    const FILETIME low = fileTime(5), high = fileTime(INT64_MAX + 1ull);
    EXPECT_EQ(CompareFileTime(&high, &low), 1);
    EXPECT_EQ(CompareFileTime(&low, &high), -1);
    EXPECT_EQ(CompareFileTime(&low, &low), 0);
}

TEST(GetSystemTime, IsTheTimeOfTheClockAndTheLocalTimeThatOfItsZone) {
    using Read = void(WINAPI*)(SYSTEMTIME*);
    for (const auto& [read, isLocal] : {std::pair<Read, bool>(GetSystemTime, false), {GetLocalTime, true}}) {
        SYSTEMTIME time, again;
        read(&time);
        const std::time_t now = std::time(nullptr);
        const std::tm fields = isLocal ? *std::localtime(&now) : *std::gmtime(&now);
        const SYSTEMTIME expected = {static_cast<WORD>(fields.tm_year + 1900),
                                     static_cast<WORD>(fields.tm_mon + 1),
                                     0,
                                     static_cast<WORD>(fields.tm_mday),
                                     static_cast<WORD>(fields.tm_hour),
                                     static_cast<WORD>(fields.tm_min),
                                     static_cast<WORD>(fields.tm_sec),
                                     0};
        EXPECT_NEAR(static_cast<double>(countOf(time)), static_cast<double>(countOf(expected)), 2e7) << isLocal;
        const FILETIME count = fileTime(countOf(time));
        FileTimeToSystemTime(&count, &again);
        EXPECT_TRUE(isSame(again, time)) << "the day of the week";
    }
}
