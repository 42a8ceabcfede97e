#include <roots/platform/Win32.h>

namespace {

constexpr std::uint64_t kPerMillisecond = 10000, kPerSecond = 1000 * kPerMillisecond, kPerDay = 86400 * kPerSecond;
constexpr std::uint64_t kUnixEpoch = 11644473600 * kPerSecond;  // the beginning of 1970
constexpr unsigned kDaysInFourCenturies = 146097;

// Years begin in March here, so that the day that some years have more is their last: month 0 is March, and the years
// of a leap day, of a century and of four centuries end with theirs.
constexpr unsigned daysBeforeMonth(unsigned month) { return (153 * month + 2) / 5; }

constexpr unsigned daysBefore(unsigned year, unsigned month) {
    return year * 365 + year / 4 - year / 100 + year / 400 + daysBeforeMonth(month);
}

constexpr unsigned kFirstDay = daysBefore(1600, 10);  // January 1601

unsigned daysSince1601(const SYSTEMTIME& time) {
    const unsigned isEarly = time.wMonth < 3;
    return daysBefore(time.wYear - isEarly, time.wMonth + 12 * isEarly - 3) + time.wDay - 1 - kFirstDay;
}

unsigned daysInMonth(const SYSTEMTIME& time) {
    constexpr BYTE kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeap = time.wYear % 4 == 0 && (time.wYear % 100 != 0 || time.wYear % 400 == 0);
    return time.wMonth == 2 && isLeap ? 29 : kDays[time.wMonth - 1];
}

bool isValid(const SYSTEMTIME& time) {
    return time.wYear >= 1601 && time.wYear <= 30827 && time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 &&
           (time.wDay <= 28 || time.wDay <= daysInMonth(time)) && time.wHour < 24 && time.wMinute < 60 &&
           time.wSecond < 60 && time.wMilliseconds < 1000;
}

WORD word(unsigned value) { return static_cast<WORD>(value); }

void setDate(SYSTEMTIME& time, unsigned daysSince1601) {
    time.wDayOfWeek = word((daysSince1601 + 1) % 7);
    const unsigned day = daysSince1601 + kFirstDay, era = day / kDaysInFourCenturies;
    const unsigned inEra = day - era * kDaysInFourCenturies;
    const unsigned yearOfEra = (inEra - inEra / 1460 + inEra / 36524 - inEra / (kDaysInFourCenturies - 1)) / 365;
    const unsigned inYear = inEra - daysBefore(yearOfEra, 0), month = (5 * inYear + 2) / 153;
    time.wYear = word(era * 400 + yearOfEra + (month >= 10));
    time.wMonth = word(month < 10 ? month + 3 : month - 9);
    time.wDay = word(inYear - daysBeforeMonth(month) + 1);
}

void setTimeOfDay(SYSTEMTIME& time, unsigned milliseconds) {
    const unsigned seconds = milliseconds / 1000, minutes = seconds / 60, hours = minutes / 60;
    time.wHour = word(hours);
    time.wMinute = word(minutes - hours * 60);
    time.wSecond = word(seconds - minutes * 60);
    time.wMilliseconds = word(milliseconds - seconds * 1000);
}

std::uint64_t countIn(const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

FILETIME fileTime(std::uint64_t count) { return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)}; }

BOOL refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

}  // namespace

BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* count) {
    if (!isValid(*time)) return refuse();
    const unsigned seconds = (time->wHour * 60u + time->wMinute) * 60 + time->wSecond;
    *count = fileTime(daysSince1601(*time) * kPerDay + seconds * kPerSecond + time->wMilliseconds * kPerMillisecond);
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* count, SYSTEMTIME* time) {
    if (countIn(*count) > INT64_MAX) return refuse();
    const std::uint64_t since1601 = countIn(*count), day = since1601 / kPerDay;
    setDate(*time, static_cast<unsigned>(day));
    setTimeOfDay(*time, static_cast<unsigned>((since1601 - day * kPerDay) / kPerMillisecond));
    return TRUE;
}

LONG CompareFileTime(const FILETIME* first, const FILETIME* second) {
    const std::uint64_t a = countIn(*first), b = countIn(*second);
    return (a > b) - (a < b);
}

void GetSystemTime(SYSTEMTIME* time) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const auto seconds = static_cast<std::uint64_t>(now.tv_sec);
    const FILETIME count = fileTime(kUnixEpoch + seconds * kPerSecond + static_cast<unsigned>(now.tv_nsec) / 100);
    FileTimeToSystemTime(&count, time);
}

// The zone may be minutes and, long ago, seconds off UTC: its fields are the C library's.
void GetLocalTime(SYSTEMTIME* time) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local = {};
    localtime_r(&now.tv_sec, &local);
    time->wYear = static_cast<WORD>(local.tm_year + 1900);
    time->wMonth = static_cast<WORD>(local.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(local.tm_wday);
    time->wDay = static_cast<WORD>(local.tm_mday);
    time->wHour = static_cast<WORD>(local.tm_hour);
    time->wMinute = static_cast<WORD>(local.tm_min);
    time->wSecond = static_cast<WORD>(local.tm_sec);
    time->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1000000);
}
