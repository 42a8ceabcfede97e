#include "FileAges.h"

#include "Utf8.h"

#include <roots/numeric/BryRegExWrapper.h>
#include <roots/numeric/BryTimeUtilities.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <system_error>

namespace {

namespace fs = std::filesystem;

// To the millisecond: the clock of files and that of the calendar are read one after the other.
bool lastWritten(const BryString& file, SYSTEMTIME& time) {
    using namespace std::chrono;
    std::error_code error;
    const fs::file_time_type written = fs::last_write_time(toPath(file), error);
    if (error) return false;
    const auto age = fs::file_time_type::clock::now() - written;
    const auto since1970 = system_clock::now().time_since_epoch() - duration_cast<system_clock::duration>(age);
    const auto count = duration_cast<milliseconds>(since1970 + microseconds(500)).count();
    const std::time_t seconds = static_cast<std::time_t>(count / 1000);
    const std::tm* const local = std::localtime(&seconds);
    if (count < 0 || local == nullptr) return false;
    const int parts[] = {local->tm_year + 1900, local->tm_mon + 1, local->tm_wday, local->tm_mday,
                         local->tm_hour,        local->tm_min,     local->tm_sec,  static_cast<int>(count % 1000)};
    WORD* const fields[] = {&time.wYear, &time.wMonth,  &time.wDayOfWeek, &time.wDay,
                            &time.wHour, &time.wMinute, &time.wSecond,    &time.wMilliseconds};
    for (std::size_t i = 0; i < 8; ++i) *fields[i] = static_cast<WORD>(parts[i]);
    return true;
}

using Difference = int (*)(const SYSTEMTIME&, const SYSTEMTIME&, int&);

// In the largest unit of which there is one, 0 seconds where there is none.
std::string distanceText(const SYSTEMTIME& time, const SYSTEMTIME& since) {
    constexpr std::pair<Difference, const char*> units[] = {
        {BryTimeUtilities::getDifferenceBetweenTimesInDays, "day"},
        {BryTimeUtilities::getDifferenceBetweenTimesInHours, "hour"},
        {BryTimeUtilities::getDifferenceBetweenTimesInMinutes, "minute"},
        {BryTimeUtilities::getDifferenceBetweenTimesInSeconds, "second"}};
    int count = 0;
    const char* unit = "";
    for (const auto& [difference, name] : units) {
        difference(time, since, count);
        unit = name;
        if (count != 0) break;
    }
    count = std::abs(count);
    return std::to_string(count) + " " + unit + (count == 1 ? "" : "s");
}

}  // namespace

bool parseTime(const BryString& text, SYSTEMTIME& time) {
    BryRegExWrapper expression;
    // Not \d, which is the digits of other scripts too.
    expression.setRegularExpression(L"([0-9]{4})-([0-9]{2})-([0-9]{2})(?: ([0-9]{2}):([0-9]{2})(?::([0-9]{2}))?)?");
    BryArray<BryString, BryArrayObjectCopyReallocator<BryString>, BryArrayMemoryController<BryString>> parts;
    if (!expression.match(text, parts)) return false;
    time = {};
    WORD* const fields[] = {&time.wYear, &time.wMonth, &time.wDay, &time.wHour, &time.wMinute, &time.wSecond};
    for (long i = 1; i < parts.length(); ++i) *fields[i - 1] = static_cast<WORD>(parts[i].toInteger());
    const WORD day = time.wDay;
    return BryTimeUtilities::addTime(time, 0, time) != 0 && time.wDay == day;  // 29 February may have become 1 March
}

std::string agesText(const std::vector<BryString>& files, const SYSTEMTIME& since) {
    static const char* const order[] = {"older", "same ", "newer"};
    std::string text;
    for (const BryString& file : files) {
        SYSTEMTIME written;
        int seconds = 0;
        if (!lastWritten(file, written)) continue;
        const int newer = BryTimeUtilities::getDifferenceBetweenTimesInSeconds(written, since, seconds);
        text += std::string("  ") + order[newer + 1] + "  " + stringToUtf8(file);
        text += newer != 0 ? " (" + distanceText(written, since) + ")\n" : "\n";
    }
    return text;
}
