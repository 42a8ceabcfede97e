#include <roots/platform/Win32.h>

namespace {

constexpr std::int64_t kPerMillisecond = 10000, kPerSecond = 1000 * kPerMillisecond, kPerDay = 86400 * kPerSecond;
constexpr std::int64_t kUnixEpoch = 11644473600 * kPerSecond;  // the beginning of 1970
constexpr int kDaysInFourCenturies = 146097;

// Years begin in March here, so that the day that some years have more is their last: month 0 is March, and the years
// of a leap day, of a century and of four centuries end with theirs.
constexpr int daysBeforeMonth(int month) { return (153 * month + 2) / 5; }

constexpr int daysBefore(int year, int month) {
    return year * 365 + year / 4 - year / 100 + year / 400 + daysBeforeMonth(month);
}

constexpr int kFirstDay = daysBefore(1600, 10);  // January 1601

int daysSince1601(const SYSTEMTIME& time) {
    const bool isEarly = time.wMonth < 3;
    return daysBefore(time.wYear - isEarly, time.wMonth + (isEarly ? 9 : -3)) + time.wDay - 1 - kFirstDay;
}

int daysInMonth(const SYSTEMTIME& time) {
    if (time.wMonth != 2)
        return time.wMonth == 4 || time.wMonth == 6 || time.wMonth == 9 || time.wMonth == 11 ? 30 : 31;
    return time.wYear % 4 == 0 && (time.wYear % 100 != 0 || time.wYear % 400 == 0) ? 29 : 28;
}

bool isValid(const SYSTEMTIME& time) {
    return time.wYear >= 1601 && time.wYear <= 30827 && time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 &&
           time.wDay <= daysInMonth(time) && time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 &&
           time.wMilliseconds < 1000;
}

WORD word(int value) { return static_cast<WORD>(value); }

void setDate(SYSTEMTIME& time, int daysSince1601) {
    time.wDayOfWeek = word((daysSince1601 + 1) % 7);
    const int day = daysSince1601 + kFirstDay, inEra = day % kDaysInFourCenturies;
    const int yearOfEra = (inEra - inEra / 1460 + inEra / 36524 - inEra / (kDaysInFourCenturies - 1)) / 365;
    const int year = day / kDaysInFourCenturies * 400 + yearOfEra;
    const int inYear = day - daysBefore(year, 0), month = (5 * inYear + 2) / 153;
    time.wYear = word(year + (month >= 10));
    time.wMonth = word(month + (month < 10 ? 3 : -9));
    time.wDay = word(inYear - daysBeforeMonth(month) + 1);
}

void setTimeOfDay(SYSTEMTIME& time, int milliseconds) {
    time.wHour = word(milliseconds / 3600000);
    time.wMinute = word(milliseconds / 60000 % 60);
    time.wSecond = word(milliseconds / 1000 % 60);
    time.wMilliseconds = word(milliseconds % 1000);
}

std::uint64_t countIn(const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

FILETIME fileTime(std::int64_t count) { return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)}; }

BOOL refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

}  // namespace

BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* count) {
    if (!isValid(*time)) return refuse();
    const int seconds = (time->wHour * 60 + time->wMinute) * 60 + time->wSecond;
    *count = fileTime(daysSince1601(*time) * kPerDay + seconds * kPerSecond + time->wMilliseconds * kPerMillisecond);
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* count, SYSTEMTIME* time) {
    if (countIn(*count) > INT64_MAX) return refuse();
    const auto since1601 = static_cast<std::int64_t>(countIn(*count));
    setDate(*time, static_cast<int>(since1601 / kPerDay));
    setTimeOfDay(*time, static_cast<int>(since1601 % kPerDay / kPerMillisecond));
    return TRUE;
}

LONG CompareFileTime(const FILETIME* first, const FILETIME* second) {
    const std::uint64_t a = countIn(*first), b = countIn(*second);
    return (a > b) - (a < b);
}

void GetSystemTime(SYSTEMTIME* time) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const FILETIME count = fileTime(kUnixEpoch + now.tv_sec * kPerSecond + now.tv_nsec / 100);
    FileTimeToSystemTime(&count, time);
}

// The zone may be minutes and, long ago, seconds off UTC: its fields are the C library's.
void GetLocalTime(SYSTEMTIME* time) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local = {};
    localtime_r(&now.tv_sec, &local);
    *time = {word(local.tm_year + 1900), word(local.tm_mon + 1),
             word(local.tm_wday),        word(local.tm_mday),
             word(local.tm_hour),        word(local.tm_min),
             word(local.tm_sec),         word(static_cast<int>(now.tv_nsec / 1000000))};
}
