// Differences between times of the calendar, and times some hours away.
#pragma once

#include <roots/Export.h>

#include <cstdint>

// The system's calendar time, as <windows.h> has it; whoever makes or reads one includes that, or
// <roots/platform/Win32.h>, which has it on every system.
struct _SYSTEMTIME;
typedef struct _SYSTEMTIME SYSTEMTIME;

// Calculates with times of any one zone, in the calendar of today, as if each day had 24 hours. Times are those that
// SystemTimeToFileTime converts: years 1601 to 30827, and fields that the calendar has. The day of the week is not
// looked at in a time that is given, and filled in in one that is handed out.
class KELROOTS_API BryTimeUtilities {
public:
    // first - second, in whole units: what is left over is dropped on either side of zero, so that 89 minutes are 1
    // hour and -89 minutes -1 hour. A difference beyond 32 bits becomes the least or the greatest int. Returns which
    // time is the later, to the millisecond: 1 for first, 0 for neither, -1 for second.
    //
    // A time that does not convert counts as the beginning of 1601, here and below.
    static int getDifferenceBetweenTimesInSeconds(const SYSTEMTIME& first, const SYSTEMTIME& second, int& difference);
    static int getDifferenceBetweenTimesInMinutes(const SYSTEMTIME& first, const SYSTEMTIME& second, int& difference);
    static int getDifferenceBetweenTimesInHours(const SYSTEMTIME& first, const SYSTEMTIME& second, int& difference);
    static int getDifferenceBetweenTimesInDays(const SYSTEMTIME& first, const SYSTEMTIME& second, int& difference);

    // The same for time - now, so that a time to come gives a positive difference and 1. Now is the local time, or
    // UTC where the name has System.
    static int getDifferenceBetweenTimeAndLocalTimeInSeconds(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndSystemTimeInSeconds(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndLocalTimeInMinutes(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndSystemTimeInMinutes(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndLocalTimeInHours(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndSystemTimeInHours(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndLocalTimeInDays(const SYSTEMTIME& time, int& difference);
    static int getDifferenceBetweenTimeAndSystemTimeInDays(const SYSTEMTIME& time, int& difference);

    // result becomes the time, or the local time, hours later, or earlier where hours is negative. Not 0 on success. 0
    // where time does not convert, or the sum lies before 1601 or behind 30828-09-14 02:48:05.477; result then stays
    // as it was. result may be the time itself.
    static int addTime(const SYSTEMTIME& time, int hours, SYSTEMTIME& result);
    static int addTimeToLocalTime(int hours, SYSTEMTIME& result);

private:
    // In units of 100 ns, like the counts of SystemTimeToFileTime.
    static constexpr std::int64_t m_nano100SecInSecond = 10000000;
    static constexpr std::int64_t m_nano100SecInMinute = 600000000;
    static constexpr std::int64_t m_nano100SecInHour = 36000000000;
    static constexpr std::int64_t m_nano100SecInDay = 864000000000;

    static int getDifferenceBetweenTimesIn100NanoSeconds(const SYSTEMTIME& first, const SYSTEMTIME& second,
                                                         std::int64_t& difference);
    static int getDifferenceIn(std::int64_t unit, const SYSTEMTIME& first, const SYSTEMTIME& second, int& difference);
};
