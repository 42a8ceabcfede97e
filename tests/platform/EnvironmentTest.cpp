#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

const std::string kSlash = onWindows ? "\\" : "/";

// Both widths of a routine give the same error number and the same text; this is the text, or the number.
template <class Narrow, class Wide>
std::string both(std::size_t size, Narrow narrowRoutine, Wide wideRoutine) {
    std::vector<char> bytes(400, '#');
    std::vector<wchar_t> units(400, L'#');
    bytes.back() = 0;
    const int error = narrowRoutine(bytes.data(), size);
    EXPECT_EQ(wideRoutine(units.data(), size), error);
    // Wine leaves a wide text that it has cut without terminator.
    units[size == 0 || !underWine() ? 399 : size - 1] = 0;
    EXPECT_EQ(narrow(units.data()), bytes.data());
    EXPECT_EQ(bytes[0] == '#', size == 0);
    EXPECT_TRUE(error == 0 || size == 0 || bytes[0] == 0) << error;
    return error == 0 ? bytes.data() : std::to_string(error);
}

// The answer, the count and the copy.
template <class Unit, class Routine>
std::string duplicate(Routine routine, const std::string& name) {
    Unit junk = '#', *copy = &junk;
    std::size_t count = 99;
    const std::string error = std::to_string(routine(&copy, &count, units<Unit>(name).data())) + ' ';
    const std::string answer = error + std::to_string(count) + ' ' + (copy == nullptr ? "none" : narrow(copy));
    std::free(copy);
    return answer;
}

TEST(Dupenv, GivesACopyWhoseNameComparesWithoutCase) {
    setEnvironment("KelRootsTest", "HEA 200");
    // clang-format off
    const std::pair<const char*, const char*> rows[] = {
        {"KelRootsTest", "0 8 HEA 200"}, {"KELROOTSTEST", "0 8 HEA 200"}, {"kelrootstest", "0 8 HEA 200"},
        {"KelRootsTestNone", "0 0 none"}, {"KelRoots", "0 0 none"}, {"", "0 0 none"}};
    // clang-format on
    for (const auto& [name, answer] : rows)
        EXPECT_TRUE(duplicate<char>(_dupenv_s, name) == answer && duplicate<wchar_t>(_wdupenv_s, name) == answer)
            << name;
    char* copy;
    EXPECT_TRUE(_dupenv_s(nullptr, nullptr, "KelRootsTest") == 22 && _dupenv_s(&copy, nullptr, nullptr) == 22);
    if (onWindows) return;  // elsewhere the variables are UTF-8, in several spellings
    setEnvironment("KELROOTSTEST", "\xC3\xA4\xF0\x9F\x98\x81");
    EXPECT_EQ(duplicate<char>(_dupenv_s, "KelRootsTest"), "0 8 HEA 200");
    EXPECT_EQ(duplicate<char>(_dupenv_s, "KELROOTSTEST"), "0 4 \xE4??");
    EXPECT_EQ(duplicate<wchar_t>(_wdupenv_s, "KELROOTSTEST"), "0 4 \xE4=\x01");  // the low bytes of the units
}

TEST(SearchEnv, LooksInTheWorkingDirectoryAndThenInEachFolder) {
    const TempFolder folder;
    for (const char* name : {"d1", "d2/folder", "d 3"}) std::filesystem::create_directories(name);
    for (const char* name : {"here.txt", "d1/one.txt", "d1/two.txt", "d2/two.txt", "d 3/three.txt"})
        writeFile(name, "");
    const std::string here = std::filesystem::current_path().string() + kSlash, one = "d1" + kSlash + "one.txt";
    const std::size_t size = here.size() + 8;
    // clang-format off
    const struct { const char *list, *file; std::string found; std::size_t size = 399; } rows[] = {
        {"d1;d2", "here.txt", here + "here.txt"}, {"d1;d2", "one.txt", one}, {";;d1/;d2", "one.txt", "d1/one.txt"},
        {"d1;d2", "two.txt", "d1" + kSlash + "two.txt"}, {"d2;d1", "two.txt", "d2" + kSlash + "two.txt"},
        {"d1\\", "one.txt", "d1\\one.txt"}, {"none;\"d 3\"", "three.txt", "d 3" + kSlash + "three.txt"},
        {"\"d\"2", "two.txt", "d2" + kSlash + "two.txt"}, {"\"d1;d2\"", "two.txt", "2"},
        {"d2", "folder", "d2" + kSlash + "folder"}, {"d2", "d1\\one.txt", here + one}, {"d1;d2", "none.txt", "2"},
        {"d1", "..\\d2\\two.txt", "d1" + kSlash + "..\\d2\\two.txt"}, {"", "one.txt", "2"},
        {"d1", ".\\d1\\..\\here.txt", here + "here.txt"}, {"", "here.txt", here + "here.txt"},
        {"d1", "", underWine() ? "d1\\" : "2"},  // Wine answers with the first folder
        {"d1", "one.txt", "34", 10}, {"d1", "one.txt", one, 11}, {"d1", "one.txt", "22", 0},
        {"d1", "here.txt", here + "here.txt", size + 1},
        {"d1", "here.txt", underWine() ? "" : "34", size},  // Wine tells of no error
        // this system's lists have colons, which may also be those of drives
        {"none:d1:q:\\", "one.txt", onWindows ? "2" : "d1/one.txt"},
        {"d1:q:\\", "folder", onWindows ? "2" : "q:\\folder"}};
    // clang-format on
    setEnvironment("KELROOTS_DRIVE_Q", "d2");
    for (const auto& row : rows) {
        setEnvironment("KelRootsPath", row.list);
        const auto found = both(
            row.size, [&](char* to, std::size_t room) { return _searchenv_s(row.file, "KelRootsPath", to, room); },
            [&](wchar_t* to, std::size_t room) {
                return _wsearchenv_s(units<wchar_t>(row.file).data(), L"KELROOTSPATH", to, room);
            });
        EXPECT_EQ(found, row.found) << row.list << ": " << row.file << ' ' << row.size;
    }
    char path[9] = "#";
    EXPECT_TRUE(_searchenv_s(nullptr, "A", path, 9) == 22 && _searchenv_s("here.txt", "A", nullptr, 9) == 22);
}

TEST(ErrorText, IsThatOfTheWindowsNumberCutToTheSize) {
    const bool wine = underWine();  // has other texts for half of the numbers
    // clang-format off
    const std::pair<int, std::string> rows[] = {
        {0, wine ? "Success" : "No error"}, {1, "Operation not permitted"}, {2, "No such file or directory"},
        {7, wine ? "Argument list too long" : "Arg list too long"}, {17, "File exists"}, {22, "Invalid argument"},
        {28, "No space left on device"}, {34, wine ? "Numerical result out of range" : "Result too large"},
        {38, wine ? "File name too long" : "Filename too long"}, {41, "Directory not empty"}, {15, "Unknown error"},
        {26, "Unknown error"}, {35, "Unknown error"}, {37, "Unknown error"}, {43, "Unknown error"},
        {-1, "Unknown error"}, {INT_MIN, "Unknown error"}};
    // clang-format on
    for (const auto& row : rows) {
        for (const std::size_t size : {std::size_t{399}, row.second.size() + 1, row.second.size(), std::size_t{}}) {
            const auto message = both(
                size, [&](char* to, std::size_t room) { return strerror_s(to, room, row.first); },
                [&](wchar_t* to, std::size_t room) { return _wcserror_s(to, room, row.first); });
            EXPECT_EQ(message, size == 0 ? "22" : row.second.substr(0, size - 1)) << row.first;
        }
    }
    EXPECT_EQ(_wcserror_s(nullptr, 9, 2), 22);
}

TEST(ClockText, NeedsNineElements) {
    const auto now = [](const char* format) {
        const __time64_t seconds = std::time(nullptr);
        std::tm local;
        char text[18];
        EXPECT_EQ(_localtime64_s(&local, &seconds), 0);
        return std::string(text, crt::strftime(text, 18, format, &local));
    };
    std::string before, time, date;
    do {
        before = now("%x %X");
        time = both(9, _strtime_s, _wstrtime_s);
        date = both(9, _strdate_s, _wstrdate_s);
    } while (now("%x %X") != before);
    EXPECT_EQ(date + ' ' + time, before);
    for (const std::size_t size : {0u, 1u, 8u})
        EXPECT_EQ(both(size, _strtime_s, _wstrtime_s) + both(size, _strdate_s, _wstrdate_s), "3434") << size;
    EXPECT_TRUE(_strtime_s(nullptr, 9) == 22 && _wstrdate_s(nullptr, 0) == 22);
}

TEST(LocalTime, ReachesFrom1970To3000) {
    setEnvironment("TZ", "UTC0");
    // Year, month, day, hour, minute, second, weekday, day of the year, daylight saving.
    using Fields = std::vector<int>;
    const Fields none(9, -1);
    // clang-format off
    const std::pair<__time64_t, Fields> rows[] = {
        {0, {70, 0, 1, 0, 0, 0, 4, 0, 0}}, {1234567890, {109, 1, 13, 23, 31, 30, 5, 43, 0}},
        {951782400, {100, 1, 29, 0, 0, 0, 2, 59, 0}}, {32535244799, {1101, 0, 1, 7, 59, 59, 4, 0, 0}},
        {32535244800, none}, {-1, none}, {INT64_MAX, none}, {INT64_MIN, none}};
    // clang-format on
    for (const auto& [seconds, fields] : rows) {
        std::tm t;
        EXPECT_EQ(_localtime64_s(&t, &seconds), fields == none ? 22 : 0) << seconds;
        const Fields f = {t.tm_year, t.tm_mon,  t.tm_mday, t.tm_hour, t.tm_min,
                          t.tm_sec,  t.tm_wday, t.tm_yday, t.tm_isdst};
        EXPECT_EQ(f, fields) << seconds;
    }
    std::tm t;
    EXPECT_TRUE(_localtime64_s(&t, nullptr) == 22 && t.tm_mon == -1 && _localtime64_s(nullptr, &rows[0].first) == 22);
}

TEST(Strftime, HasTheConversionsOfWindows) {
    std::tm time = {};
    time.tm_year = 109, time.tm_mon = 1, time.tm_mday = 3, time.tm_wday = 2, time.tm_yday = 33;
    time.tm_hour = 14, time.tm_min = 5, time.tm_sec = 9;
    const auto year = &std::tm::tm_year, month = &std::tm::tm_mon, day = &std::tm::tm_mday, hour = &std::tm::tm_hour,
               minute = &std::tm::tm_min, second = &std::tm::tm_sec, weekday = &std::tm::tm_wday,
               yearDay = &std::tm::tm_yday;
    // clang-format off
    const struct { const char* format; std::string text; int std::tm::*field; int value; } rows[] = {
        {"%H", "23", hour, 23}, {"%H", "", hour, 24}, {"%H", "", hour, -1}, {"%I", "", hour, INT_MAX},
        {"%p", "", hour, 24}, {"%I%p", "12AM", hour, 0}, {"%I%p", "12PM", hour, 12}, {"%#M%#H", "014", minute, 0},
        {"%M", "", minute, 60}, {"%S", "", second, 60}, {"%d", "31", day, 31}, {"%d", "", day, 32}, {"%d", "", day, 0},
        {"%b%m", "Dec12", month, 11}, {"%b", "", month, 12}, {"%B", "", month, -1}, {"%m", "", month, INT_MAX},
        {"%a%U%W", "Sun0504", weekday, 0}, {"%U%W", "0405", weekday, 6}, {"%A", "", weekday, 7},
        {"%w", "", weekday, -1}, {"%W", "", weekday, INT_MIN}, {"%x", "02/03/09", weekday, 99},
        {"%j%U%W", "3665253", yearDay, 365}, {"%j", "", yearDay, 366}, {"%U", "", yearDay, INT_MAX},
        {"%y|%Y", "00|1900", year, 0}, {"%y|%Y", "99|9999", year, 8099}, {"%Y", "0000", year, -1900},
        {"%Y", "", year, 8100}, {"%Y", "", year, -1901}, {"%Y", "", year, INT_MAX}, {"%y", "", year, -1},
        {"%c", "02/03/09 14:05:09", day, 3}, {"%X", "14:05:09", day, 3}, {"100%% %#%", "100% %", day, 3},
        {"%#x|%#X", "Tuesday, February 03, 2009|14:05:09", day, 3}, {"%#Y", "2009", day, 3},
        {"%#c", "Tuesday, February 03, 2009 14:05:09", day, 3}, {"%a %b %B %p", "Tue Feb February PM", day, 3},
        {"%d %H %I %j %m %M %S %U %w %y", "03 14 02 034 02 05 09 05 2 09", day, 3},
        {"%#d %#I %#j %#m %#M %#S %#U %#W %#y", "3 2 34 2 5 9 5 5 9", day, 3}};
    // clang-format on
    for (const auto& row : rows) {
        std::tm changed = time;
        changed.*row.field = row.value;
        for (const std::size_t size : {row.text.empty() ? 100 : row.text.size() + 1, row.text.size()}) {
            char to[100] = "#";
            const std::string expected = size > row.text.size() ? row.text : size == 0 ? "#" : "";
            EXPECT_EQ(crt::strftime(to, size, row.format, &changed), size == 0 ? 0 : expected.size()) << row.format;
            EXPECT_EQ(to, expected) << row.format << " of " << row.value;
        }
    }
    const std::string known = "aAbBcdHIjmMpSUwWxXyYzZ%";
    char to[100];
    for (int conversion = 1; conversion < 256; ++conversion) {
        for (const char* flag : {"[%", "[%#"}) {
            const std::string format = std::string(flag) + static_cast<char>(conversion);
            const bool refused = known.find(format.back()) == std::string::npos;
            EXPECT_EQ(crt::strftime(to, sizeof to, format.c_str(), &time) == 0, refused) << format;
            EXPECT_EQ(to[0], refused ? '\0' : '[') << format;
        }
    }
    for (const char* format : {"%", "abc%", "%#", "%Ey", "%-d", "%5d", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(crt::strftime(to, 9, format, &time), 0u) << (format ? format : "null");
    const std::tm* const volatile none = nullptr;
    EXPECT_EQ(crt::strftime(to, 9, "%H", none), 0u);
}

}  // namespace
