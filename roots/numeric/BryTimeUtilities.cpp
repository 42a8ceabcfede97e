#include "BryTimeUtilities.h"

#include <roots/platform/Win32.h>

#include <algorithm>
#include <climits>

namespace {

SYSTEMTIME localTime() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return now;
}

SYSTEMTIME systemTime() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    return now;
}

std::uint64_t countIn(const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

// Counts are below 2^63.
FILETIME countOf(const SYSTEMTIME& time) {
    FILETIME count = {};
    return SystemTimeToFileTime(&time, &count) ? count : FILETIME{};
}

}  // namespace

int BryTimeUtilities::getDifferenceBetweenTimesIn100NanoSeconds(const SYSTEMTIME& first, const SYSTEMTIME& second,
                                                                std::int64_t& difference) {
    const FILETIME a = countOf(first), b = countOf(second);
    difference = static_cast<std::int64_t>(countIn(a)) - static_cast<std::int64_t>(countIn(b));
    return static_cast<int>(CompareFileTime(&a, &b));
}

int BryTimeUtilities::getDifferenceIn(std::int64_t unit, const SYSTEMTIME& first, const SYSTEMTIME& second,
                                      int& difference) {
    std::int64_t fine = 0;
    const int order = getDifferenceBetweenTimesIn100NanoSeconds(first, second, fine);
    const double whole = static_cast<double>(fine) / static_cast<double>(unit);
    difference = static_cast<int>(std::clamp<double>(whole, INT_MIN, INT_MAX));
    return order;
}

int BryTimeUtilities::getDifferenceBetweenTimesInSeconds(const SYSTEMTIME& first, const SYSTEMTIME& second,
                                                         int& difference) {
    return getDifferenceIn(m_nano100SecInSecond, first, second, difference);
}

int BryTimeUtilities::getDifferenceBetweenTimesInMinutes(const SYSTEMTIME& first, const SYSTEMTIME& second,
                                                         int& difference) {
    return getDifferenceIn(m_nano100SecInMinute, first, second, difference);
}

int BryTimeUtilities::getDifferenceBetweenTimesInHours(const SYSTEMTIME& first, const SYSTEMTIME& second,
                                                       int& difference) {
    return getDifferenceIn(m_nano100SecInHour, first, second, difference);
}

int BryTimeUtilities::getDifferenceBetweenTimesInDays(const SYSTEMTIME& first, const SYSTEMTIME& second,
                                                      int& difference) {
    return getDifferenceIn(m_nano100SecInDay, first, second, difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndLocalTimeInSeconds(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInSecond, time, localTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndSystemTimeInSeconds(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInSecond, time, systemTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndLocalTimeInMinutes(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInMinute, time, localTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndSystemTimeInMinutes(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInMinute, time, systemTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndLocalTimeInHours(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInHour, time, localTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndSystemTimeInHours(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInHour, time, systemTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndLocalTimeInDays(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInDay, time, localTime(), difference);
}

int BryTimeUtilities::getDifferenceBetweenTimeAndSystemTimeInDays(const SYSTEMTIME& time, int& difference) {
    return getDifferenceIn(m_nano100SecInDay, time, systemTime(), difference);
}

int BryTimeUtilities::addTime(const SYSTEMTIME& time, int hours, SYSTEMTIME& result) {
    constexpr int kMostHours = static_cast<int>(INT64_MAX / m_nano100SecInHour);  // the range of all times has fewer
    FILETIME count = {};
    if (hours > kMostHours || hours < -kMostHours || !SystemTimeToFileTime(&time, &count)) return FALSE;

    // A sum below 0 comes round to 2^63 and more, as does one that is too great: both are refused.
    const std::uint64_t sum = countIn(count) + static_cast<std::uint64_t>(hours * m_nano100SecInHour);
    count = {static_cast<DWORD>(sum), static_cast<DWORD>(sum >> 32)};
    return FileTimeToSystemTime(&count, &result);
}

int BryTimeUtilities::addTimeToLocalTime(int hours, SYSTEMTIME& result) { return addTime(localTime(), hours, result); }
