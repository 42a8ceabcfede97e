#include <roots/platform/Win32.h>

#include "BoundedUnits.h"

#include <algorithm>
#include <climits>

using namespace platform;

namespace {

// The last second that local times are told for, in the first hours of the year 3001.
constexpr __time64_t kLastTime = 32535244799;

constexpr const char* kDays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr const char* kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                   "July",    "August",   "September", "October", "November", "December"};

// Collects the text that a format makes. A field of the time outside its range, or a conversion that does not exist,
// refuses it.
class TimeText {
public:
    TimeText(char* to, std::size_t size, const std::tm* time) : m_to(to), m_size(size), m_time(time) {}

    std::size_t make(const char* format) {
        addFormat(format);
        if (m_error == 0 && m_length >= m_size) m_error = kTooSmall;
        if (m_error != 0) {
            fail(m_to, m_error);
            return 0;
        }
        m_to[m_length] = '\0';
        return m_length;
    }

private:
    void addFormat(const char* format) {
        for (; m_error == 0 && *format != '\0'; ++format) {
            if (*format != '%') {
                add(*format);
                continue;
            }
            const bool plain = *++format == '#';
            if (plain) ++format;
            if (*format == '%')
                add('%');
            else if (m_time != nullptr)
                addConversion(*format, plain);
            else
                refuse();
        }
    }

    // plain: numbers without leading zeros, dates in words.
    void addConversion(char conversion, bool plain) {
        const std::tm& t = *m_time;
        switch (conversion) {
            case 'a': return addText(kDays[checked(t.tm_wday, 0, 6)], 3);
            case 'A': return addText(kDays[checked(t.tm_wday, 0, 6)]);
            case 'b': return addText(kMonths[checked(t.tm_mon, 0, 11)], 3);
            case 'B': return addText(kMonths[checked(t.tm_mon, 0, 11)]);
            case 'c': return addFormat(plain ? "%A, %B %d, %Y %H:%M:%S" : "%m/%d/%y %H:%M:%S");
            case 'd': return addNumber(checked(t.tm_mday, 1, 31), 2, plain);
            case 'H': return addNumber(checked(t.tm_hour, 0, 23), 2, plain);
            case 'I': return addNumber((checked(t.tm_hour, 0, 23) + 11) % 12 + 1, 2, plain);
            case 'j': return addNumber(checked(t.tm_yday, 0, 365) + 1, 3, plain);
            case 'm': return addNumber(checked(t.tm_mon, 0, 11) + 1, 2, plain);
            case 'M': return addNumber(checked(t.tm_min, 0, 59), 2, plain);
            case 'p': return addText(checked(t.tm_hour, 0, 23) < 12 ? "AM" : "PM");
            case 'S': return addNumber(checked(t.tm_sec, 0, 59), 2, plain);
            case 'U': return addWeek(checked(t.tm_wday, 0, 6), plain);
            case 'w': return addNumber(checked(t.tm_wday, 0, 6), 1, plain);
            case 'W': return addWeek((checked(t.tm_wday, 0, 6) + 6) % 7, plain);
            case 'x': return addFormat(plain ? "%A, %B %d, %Y" : "%m/%d/%y");
            case 'X': return addFormat("%H:%M:%S");
            case 'y': return addNumber(checked(t.tm_year, 0, INT_MAX) % 100, 2, plain);
            case 'Y': return addNumber(checked(t.tm_year, -1900, 8099) + 1900, 4, plain);
            case 'z':
            case 'Z': return addZone();
            default: return refuse();
        }
    }

    // A value that is safe to go on with; one outside its range refuses the format.
    int checked(int value, int least, int most) {
        if (value >= least && value <= most) return value;
        refuse();
        return least;
    }

    void refuse() { m_error = kBadArgument; }

    void add(char c) {
        if (m_length < m_size) m_to[m_length] = c;
        ++m_length;
    }

    void addText(const char* text, std::size_t most = SIZE_MAX) {
        for (; *text != '\0' && most != 0; ++text, --most) add(*text);
    }

    void addNumber(int value, int digits, bool plain) {
        int unit = 1;
        for (int i = 1; i < digits; ++i) unit *= 10;
        while (plain && unit > 1 && value < unit) unit /= 10;
        for (; unit >= 1; unit /= 10) add(static_cast<char>('0' + value / unit % 10));
    }

    // The week of the year: it begins on the day that dayOfWeek counts from.
    void addWeek(int dayOfWeek, bool plain) {
        addNumber((checked(m_time->tm_yday, 0, 365) + 7 - dayOfWeek) / 7, 2, plain);
    }

    void addZone() {
        tzset();
        addText(tzname[m_time->tm_isdst > 0 ? 1 : 0]);
    }

    char* m_to;
    std::size_t m_size;
    const std::tm* m_time;
    std::size_t m_length = 0;
    int m_error = 0;
};

// The local time now in a format that makes eight characters.
template <class Unit>
errno_t nowText(Unit* to, std::size_t size, const char* format) {
    if (to == nullptr) return fail(kBadArgument);
    if (size == 0) return fail(kTooSmall);
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    char text[9];
    crt::strftime(text, sizeof text, format, &local);
    Unit units[9];
    std::copy(text, text + 9, units);
    return writeBounded(to, size, units, 8);
}

}  // namespace

errno_t _strtime_s(char* to, std::size_t size) { return nowText(to, size, "%H:%M:%S"); }

errno_t _wstrtime_s(wchar_t* to, std::size_t size) { return nowText(to, size, "%H:%M:%S"); }

errno_t _strdate_s(char* to, std::size_t size) { return nowText(to, size, "%m/%d/%y"); }

errno_t _wstrdate_s(wchar_t* to, std::size_t size) { return nowText(to, size, "%m/%d/%y"); }

// All fields are -1 after a failure.
errno_t _localtime64_s(std::tm* result, const __time64_t* time) {
    if (result == nullptr) return fail(kBadArgument);
    *result = {};
    if (time != nullptr && *time >= 0 && *time <= kLastTime) {
        const std::time_t seconds = *time;
        if (localtime_r(&seconds, result) != nullptr) return 0;
    }
    result->tm_year = result->tm_mon = result->tm_mday = result->tm_hour = result->tm_min = result->tm_sec = -1;
    result->tm_wday = result->tm_yday = result->tm_isdst = -1;
    return fail(kBadArgument);
}

namespace crt {

// Windows' conversions in English, whatever the locale; %z and %Z are the name of the time zone.
std::size_t strftime(char* to, std::size_t size, const char* format, const std::tm* time) {
    if (to == nullptr || size == 0) {
        errno = kBadArgument;
        return 0;
    }
    if (format == nullptr) {
        fail(to, kBadArgument);
        return 0;
    }
    return TimeText(to, size, time).make(format);
}

}  // namespace crt
