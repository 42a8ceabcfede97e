#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// NAME=value; both systems keep the text or a copy of it.
void setVariable(const char* assignment) {
#ifdef _WIN32
    _putenv(assignment);
#else
    putenv(const_cast<char*>(assignment));
#endif
}

std::string narrow(const wchar_t* text) {
    std::string result;
    while (*text != 0) result += static_cast<char>(*text++);
    return result;
}

std::vector<wchar_t> wide(const std::string& text) { return {text.c_str(), text.c_str() + text.size() + 1}; }

// Both widths of a routine give the same error number and the same text; this is the text, or the number.
template <class Narrow, class Wide>
std::string both(std::size_t size, Narrow narrowRoutine, Wide wideRoutine) {
    std::vector<char> bytes(400, '#');
    std::vector<wchar_t> units(400, L'#');
    const int error = narrowRoutine(bytes.data(), size);
    EXPECT_EQ(wideRoutine(units.data(), size), error);
    if (size == 0) {
        EXPECT_EQ(bytes[0], '#');
        EXPECT_EQ(units[0], L'#');
        return std::to_string(error);
    }
    if (underWine()) units[size - 1] = 0;  // Wine leaves a wide text that it has cut without terminator
    EXPECT_EQ(narrow(units.data()), bytes.data());
    EXPECT_TRUE(error == 0 || bytes[0] == '\0') << error;
    return error == 0 ? bytes.data() : std::to_string(error);
}

TEST(Dupenv, GivesACopyWhoseNameComparesWithoutCase) {
    setVariable("KelRootsTest=HEA 200");
    const char* const names[] = {"KelRootsTest", "KELROOTSTEST", "kelrootstest"};
    for (const char* name : names) {
        char* copy = nullptr;
        wchar_t* wideCopy = nullptr;
        std::size_t count = 99;
        EXPECT_EQ(_dupenv_s(&copy, &count, name), 0);
        EXPECT_EQ(count, 8u);
        EXPECT_STREQ(copy, "HEA 200");
        std::free(copy);
        EXPECT_EQ(_wdupenv_s(&wideCopy, nullptr, wide(name).data()), 0);
        EXPECT_EQ(narrow(wideCopy), "HEA 200");
        std::free(wideCopy);
    }
    for (const char* name : {"KelRootsTestNone", "KelRoots", ""}) {
        char* copy = const_cast<char*>(name);
        std::size_t count = 99;
        EXPECT_EQ(_dupenv_s(&copy, &count, name), 0) << name;
        EXPECT_EQ(copy, nullptr) << name;
        EXPECT_EQ(count, 0u) << name;
    }
    char* copy;
    EXPECT_EQ(_dupenv_s(nullptr, nullptr, "KelRootsTest"), 22);
    EXPECT_EQ(_dupenv_s(&copy, nullptr, nullptr), 22);
}

#ifndef _WIN32
TEST(Dupenv, ReadsUtf8AndPrefersTheExactSpelling) {
    setVariable("KelRootsUmlaut=\xC3\xA4\xF0\x9F\x98\x80");
    setVariable("KELROOTSUMLAUT=other");
    wchar_t* copy = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(_wdupenv_s(&copy, &count, L"KelRootsUmlaut"), 0);
    ASSERT_EQ(count, 4u);
    EXPECT_TRUE(copy[0] == 0xE4 && copy[1] == 0xD83D && copy[2] == 0xDE00 && copy[3] == 0);
    std::free(copy);
    char* bytes = nullptr;
    EXPECT_EQ(_dupenv_s(&bytes, &count, "KelRootsUmlaut"), 0);
    EXPECT_STREQ(bytes, "\xE4??");
    std::free(bytes);
}
#endif

class SearchEnv : public ::testing::Test {
protected:
    SearchEnv() {
        for (const char* folder : {"d1", "d2", "d2/folder", "d 3"}) std::filesystem::create_directory(folder);
        for (const char* file : {"here.txt", "d1/one.txt", "d1/two.txt", "d2/two.txt", "d 3/three.txt"})
            writeFile(file, "x");
    }

    static std::string find(const std::string& file, std::size_t size = 399) {
        return both(
            size, [&](char* to, std::size_t room) { return _searchenv_s(file.c_str(), "KelRootsPath", to, room); },
            [&](wchar_t* to, std::size_t room) { return _wsearchenv_s(wide(file).data(), L"KELROOTSPATH", to, room); });
    }

    std::string here(const std::string& file) const {
        const std::string slash = onWindows ? "\\" : "/";
        return std::filesystem::current_path().string() + slash + file;
    }

    TempFolder m_folder;
};

TEST_F(SearchEnv, LooksInTheWorkingDirectoryAndThenInEachFolder) {
    const std::string slash = onWindows ? "\\" : "/", notFound = "2";
    const struct {
        const char *list, *file;
        std::string found;
    } rows[] = {
        {"KelRootsPath=d1;d2", "here.txt", here("here.txt")},
        {"KelRootsPath=d1;d2", "one.txt", "d1" + slash + "one.txt"},
        {"KelRootsPath=d1;d2", "two.txt", "d1" + slash + "two.txt"},
        {"KelRootsPath=d2;d1", "two.txt", "d2" + slash + "two.txt"},
        {"KelRootsPath=;;d1/;d2", "one.txt", "d1/one.txt"},
        {"KelRootsPath=d1\\", "one.txt", "d1\\one.txt"},
        {"KelRootsPath=none;\"d 3\"", "three.txt", "d 3" + slash + "three.txt"},
        {"KelRootsPath=\"d\"2", "two.txt", "d2" + slash + "two.txt"},
        {"KelRootsPath=\"d1;d2\"", "two.txt", notFound},
        {"KelRootsPath=d2", "folder", "d2" + slash + "folder"},
        {"KelRootsPath=d2", "d1\\one.txt", here("d1" + slash + "one.txt")},
        {"KelRootsPath=d1", "..\\d2\\two.txt", "d1" + slash + "..\\d2\\two.txt"},
        {"KelRootsPath=d1", ".\\d1\\..\\here.txt", here("here.txt")},
        {"KelRootsPath=d1;d2", "none.txt", notFound},
        {"KelRootsPath=d1", "", underWine() ? "d1\\" : notFound},  // Wine answers with the first folder
        {"KelRootsPath=", "one.txt", notFound},
        {"KelRootsPath=", "here.txt", here("here.txt")},
    };
    for (const auto& row : rows) {
        setVariable(row.list);
        EXPECT_EQ(find(row.file), row.found) << row.list << ": " << row.file;
    }
}

TEST_F(SearchEnv, SaysWhereThePathDoesNotFit) {
    setVariable("KelRootsPath=d1");
    EXPECT_EQ(find("one.txt", 10), "34");
    EXPECT_EQ(find("one.txt", 11), onWindows ? "d1\\one.txt" : "d1/one.txt");
    EXPECT_EQ(find("one.txt", 0), "22");
    const std::string full = here("here.txt");
    EXPECT_EQ(find("here.txt", full.size()), underWine() ? "" : "34");  // Wine tells of no error
    EXPECT_EQ(find("here.txt", full.size() + 1), full);
    char path[9] = "#";
    EXPECT_EQ(_searchenv_s(nullptr, "KelRootsPath", path, 9), 22);
    EXPECT_EQ(_searchenv_s("here.txt", "KelRootsPath", nullptr, 9), 22);
}

#ifndef _WIN32
TEST_F(SearchEnv, ReadsTheListsOfThisSystemToo) {
    setVariable("KELROOTS_DRIVE_Q=d2");
    setVariable("KelRootsPath=none:d1:q:\\");
    EXPECT_EQ(find("one.txt"), "d1/one.txt");
    EXPECT_EQ(find("folder"), "q:\\folder");
}
#endif

TEST(ErrorText, IsThatOfTheWindowsNumberCutToTheSize) {
    const struct {
        int error;
        const char *text, *wine;
    } rows[] = {
        {0, "No error", "Success"},
        {1, "Operation not permitted", nullptr},
        {2, "No such file or directory", nullptr},
        {7, "Arg list too long", "Argument list too long"},
        {12, "Not enough space", "Cannot allocate memory"},
        {16, "Resource device", "Device or resource busy"},
        {17, "File exists", nullptr},
        {22, "Invalid argument", nullptr},
        {28, "No space left on device", nullptr},
        {34, "Result too large", "Numerical result out of range"},
        {36, "Resource deadlock avoided", nullptr},
        {38, "Filename too long", "File name too long"},
        {41, "Directory not empty", nullptr},
        {42, "Illegal byte sequence", "Invalid or incomplete multibyte or wide character"},
        {15, "Unknown error", nullptr},
        {26, "Unknown error", nullptr},
        {35, "Unknown error", nullptr},
        {37, "Unknown error", nullptr},
        {43, "Unknown error", nullptr},
        {-1, "Unknown error", nullptr},
        {INT_MIN, "Unknown error", nullptr},
    };
    for (const auto& row : rows) {
        const std::string text = underWine() && row.wine != nullptr ? row.wine : row.text;
        for (const std::size_t size : {std::size_t{399}, text.size() + 1, text.size(), std::size_t{1}}) {
            const auto message = both(
                size, [&](char* to, std::size_t room) { return strerror_s(to, room, row.error); },
                [&](wchar_t* to, std::size_t room) { return _wcserror_s(to, room, row.error); });
            EXPECT_EQ(message, text.substr(0, size - 1)) << row.error;
        }
    }
    char text[3] = "#";
    EXPECT_EQ(strerror_s(text, 0, 2), 22);
    EXPECT_EQ(text[0], '#');
    EXPECT_EQ(_wcserror_s(nullptr, 9, 2), 22);
}

TEST(ClockText, NeedsNineElements) {
    const auto now = [](const char* format) {
        const __time64_t seconds = std::time(nullptr);
        std::tm local;
        char text[9];
        EXPECT_EQ(_localtime64_s(&local, &seconds), 0);
        EXPECT_EQ(crt::strftime(text, 9, format, &local), 8u);
        return std::string(text);
    };
    const auto timeText = [](std::size_t size) {
        return both(
            size, [](char* to, std::size_t room) { return _strtime_s(to, room); },
            [](wchar_t* to, std::size_t room) { return _wstrtime_s(to, room); });
    };
    const auto dateText = [](std::size_t size) {
        return both(
            size, [](char* to, std::size_t room) { return _strdate_s(to, room); },
            [](wchar_t* to, std::size_t room) { return _wstrdate_s(to, room); });
    };
    std::string before, time, date;
    do {
        before = now("%X");
        time = timeText(9);
        date = dateText(9);
    } while (now("%X") != before);
    EXPECT_EQ(time, before);
    EXPECT_EQ(date, now("%x"));
    for (const std::size_t size : {0, 1, 8}) {
        EXPECT_EQ(timeText(size), "34");
        EXPECT_EQ(dateText(size), "34");
    }
    EXPECT_EQ(_strtime_s(nullptr, 9), 22);
    EXPECT_EQ(_wstrdate_s(nullptr, 0), 22);
}

TEST(LocalTime, ReachesFrom1970To3000) {
    setVariable("TZ=UTC0");
    const struct {
        __time64_t seconds;
        int error, year, month, day, hour, minute, second, weekday, yearDay;
    } rows[] = {
        {0, 0, 70, 0, 1, 0, 0, 0, 4, 0},
        {1234567890, 0, 109, 1, 13, 23, 31, 30, 5, 43},
        {951782400, 0, 100, 1, 29, 0, 0, 0, 2, 59},
        {32535215999, 0, 1100, 11, 31, 23, 59, 59, 3, 364},
        {32535244799, 0, 1101, 0, 1, 7, 59, 59, 4, 0},
        {32535244800, 22, -1, -1, -1, -1, -1, -1, -1, -1},
        {-1, 22, -1, -1, -1, -1, -1, -1, -1, -1},
        {INT64_MAX, 22, -1, -1, -1, -1, -1, -1, -1, -1},
        {INT64_MIN, 22, -1, -1, -1, -1, -1, -1, -1, -1},
    };
    for (const auto& row : rows) {
        std::tm t;
        EXPECT_EQ(_localtime64_s(&t, &row.seconds), row.error) << row.seconds;
        EXPECT_EQ(
            (std::vector<int>{t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_wday, t.tm_yday}),
            (std::vector<int>{row.year, row.month, row.day, row.hour, row.minute, row.second, row.weekday,
                              row.yearDay}))
            << row.seconds;
        EXPECT_EQ(t.tm_isdst, row.error == 0 ? 0 : -1) << row.seconds;
    }
    std::tm t;
    EXPECT_EQ(_localtime64_s(&t, nullptr), 22);
    EXPECT_EQ(t.tm_mon, -1);
    EXPECT_EQ(_localtime64_s(nullptr, &rows[0].seconds), 22);
}

TEST(Strftime, HasTheConversionsOfWindows) {
    std::tm time = {};
    time.tm_year = 109, time.tm_mon = 1, time.tm_mday = 3, time.tm_wday = 2, time.tm_yday = 33;
    time.tm_hour = 14, time.tm_min = 5, time.tm_sec = 9;
    using Field = int std::tm::*;
    const struct {
        const char *format, *text;
        Field field;
        int value;
    } rows[] = {
        {"%c|%x|%X", "02/03/09 14:05:09|02/03/09|14:05:09", nullptr, 0},
        {"%#c", "Tuesday, February 03, 2009 14:05:09", nullptr, 0},
        {"%#x|%#X", "Tuesday, February 03, 2009|14:05:09", nullptr, 0},
        {"%a %A %b %B %p", "Tue Tuesday Feb February PM", nullptr, 0},
        {"%d %H %I %j %m %M %S %U %w %W %y %Y", "03 14 02 034 02 05 09 05 2 05 09 2009", nullptr, 0},
        {"%#d %#I %#j %#m %#M %#S %#U %#W %#y %#Y", "3 2 34 2 5 9 5 5 9 2009", nullptr, 0},
        {"100%% %#%", "100% %", nullptr, 0},
        {"%#M%#H", "014", &std::tm::tm_min, 0},
        {"%I%p", "12AM", &std::tm::tm_hour, 0},
        {"%I%p", "12PM", &std::tm::tm_hour, 12},
        {"%H", "23", &std::tm::tm_hour, 23},
        {"%H", "", &std::tm::tm_hour, 24},
        {"%H", "", &std::tm::tm_hour, -1},
        {"%I", "", &std::tm::tm_hour, INT_MAX},
        {"%p", "", &std::tm::tm_hour, 24},
        {"%M", "", &std::tm::tm_min, 60},
        {"%S", "", &std::tm::tm_sec, 60},
        {"%d", "31", &std::tm::tm_mday, 31},
        {"%d", "", &std::tm::tm_mday, 32},
        {"%d", "", &std::tm::tm_mday, 0},
        {"%b%m", "Dec12", &std::tm::tm_mon, 11},
        {"%b", "", &std::tm::tm_mon, 12},
        {"%B", "", &std::tm::tm_mon, -1},
        {"%m", "", &std::tm::tm_mon, INT_MAX},
        {"%a%U%W", "Sun0504", &std::tm::tm_wday, 0},
        {"%U%W", "0405", &std::tm::tm_wday, 6},
        {"%A", "", &std::tm::tm_wday, 7},
        {"%w", "", &std::tm::tm_wday, -1},
        {"%W", "", &std::tm::tm_wday, INT_MIN},
        {"%c", "02/03/09 14:05:09", &std::tm::tm_wday, 99},
        {"%j%U%W", "3665253", &std::tm::tm_yday, 365},
        {"%j", "", &std::tm::tm_yday, 366},
        {"%U", "", &std::tm::tm_yday, INT_MAX},
        {"%y|%Y", "00|1900", &std::tm::tm_year, 0},
        {"%y|%Y", "99|9999", &std::tm::tm_year, 8099},
        {"%Y", "0000", &std::tm::tm_year, -1900},
        {"%Y", "", &std::tm::tm_year, 8100},
        {"%Y", "", &std::tm::tm_year, -1901},
        {"%Y", "", &std::tm::tm_year, INT_MAX},
        {"%y", "", &std::tm::tm_year, -1},
    };
    for (const auto& row : rows) {
        std::tm changed = time;
        if (row.field != nullptr) changed.*row.field = row.value;
        const std::string expected = row.text;
        std::vector<char> to(100, '#');
        EXPECT_EQ(crt::strftime(to.data(), to.size(), row.format, &changed), expected.size()) << row.format;
        EXPECT_EQ(to.data(), expected) << row.format << " of " << row.value;
        to[0] = '#';
        EXPECT_EQ(crt::strftime(to.data(), expected.size(), row.format, &changed), 0u) << row.format;
        EXPECT_EQ(to[0], expected.empty() ? '#' : '\0') << row.format;
        EXPECT_EQ(crt::strftime(to.data(), expected.size() + 1, row.format, &changed), expected.size()) << row.format;
    }
    const std::string known = "aAbBcdHIjmMpSUwWxXyYzZ%";
    for (int conversion = 1; conversion < 256; ++conversion) {
        for (const char* flag : {"%", "%#"}) {
            char to[100] = "#";
            const std::string format = std::string("[") + flag + static_cast<char>(conversion);
            const bool refused = known.find(static_cast<char>(conversion)) == std::string::npos;
            EXPECT_EQ(crt::strftime(to, sizeof to, format.c_str(), &time) == 0, refused) << format;
            EXPECT_EQ(to[0], refused ? '\0' : '[') << format;
        }
    }
    char to[9] = "#";
    const char* const refused[] = {"%", "abc%", "%#", "%Ey", "%-d", "%5d", "", nullptr};
    for (const char* format : refused) EXPECT_EQ(crt::strftime(to, 9, format, &time), 0u) << (format ? format : "null");
    const std::tm* const volatile none = nullptr;
    EXPECT_EQ(crt::strftime(to, 9, "%H", none), 0u);
}

}  // namespace
