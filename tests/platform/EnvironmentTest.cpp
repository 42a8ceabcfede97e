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
    setEnvironment("KelRootsTest", "HEA 200");
    const char* const names[] = {"KelRootsTest", "KELROOTSTEST", "kelrootstest"};
    for (const char* name : names) {
        char* copy = nullptr;
        wchar_t* wideCopy = nullptr;
        std::size_t count = 99;
        EXPECT_EQ(_dupenv_s(&copy, &count, name), 0);
        EXPECT_EQ(count, 8u);
        EXPECT_STREQ(copy, "HEA 200");
        std::free(copy);
        EXPECT_EQ(_wdupenv_s(&wideCopy, nullptr, units<wchar_t>(name).data()), 0);
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
    setEnvironment("KELROOTSUMLAUT", "other");
    setEnvironment("KelRootsUmlaut", "\xC3\xA4\xF0\x9F\x98\x80");
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
            [&](wchar_t* to, std::size_t room) {
                return _wsearchenv_s(units<wchar_t>(file).data(), L"KELROOTSPATH", to, room);
            });
    }

    std::string here(const std::string& file) const {
        const std::string slash = onWindows ? "\\" : "/";
        return std::filesystem::current_path().string() + slash + file;
    }

    TempFolder m_folder;
};

TEST_F(SearchEnv, LooksInTheWorkingDirectoryAndThenInEachFolder) {
    const std::string slash = onWindows ? "\\" : "/", notFound = "2";
    // clang-format off
    const struct {
        const char *list, *file;
        std::string found;
    } rows[] = {
        {"d1;d2", "here.txt", here("here.txt")},
        {"d1;d2", "one.txt", "d1" + slash + "one.txt"},
        {"d1;d2", "two.txt", "d1" + slash + "two.txt"},
        {"d2;d1", "two.txt", "d2" + slash + "two.txt"}, {";;d1/;d2", "one.txt", "d1/one.txt"},
        {"d1\\", "one.txt", "d1\\one.txt"},
        {"none;\"d 3\"", "three.txt", "d 3" + slash + "three.txt"},
        {"\"d\"2", "two.txt", "d2" + slash + "two.txt"}, {"\"d1;d2\"", "two.txt", notFound},
        {"d2", "folder", "d2" + slash + "folder"},
        {"d2", "d1\\one.txt", here("d1" + slash + "one.txt")},
        {"d1", "..\\d2\\two.txt", "d1" + slash + "..\\d2\\two.txt"},
        {"d1", ".\\d1\\..\\here.txt", here("here.txt")}, {"d1;d2", "none.txt", notFound},
        {"d1", "", underWine() ? "d1\\" : notFound},  // Wine answers with the first folder
        {"", "one.txt", notFound}, {"", "here.txt", here("here.txt")}};
    // clang-format on
    for (const auto& row : rows) {
        setEnvironment("KelRootsPath", row.list);
        EXPECT_EQ(find(row.file), row.found) << row.list << ": " << row.file;
    }
}

TEST_F(SearchEnv, SaysWhereThePathDoesNotFit) {
    setEnvironment("KelRootsPath", "d1");
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
    setEnvironment("KELROOTS_DRIVE_Q", "d2");
    setEnvironment("KelRootsPath", "none:d1:q:\\");
    EXPECT_EQ(find("one.txt"), "d1/one.txt");
    EXPECT_EQ(find("folder"), "q:\\folder");
}
#endif

TEST(ErrorText, IsThatOfTheWindowsNumberCutToTheSize) {
    const bool wine = underWine();  // has other texts for half of the numbers
    // clang-format off
    const struct {
        int error;
        const char* text;
    } rows[] = {
        {0, wine ? "Success" : "No error"}, {1, "Operation not permitted"}, {2, "No such file or directory"},
        {7, wine ? "Argument list too long" : "Arg list too long"}, {17, "File exists"}, {22, "Invalid argument"},
        {28, "No space left on device"}, {34, wine ? "Numerical result out of range" : "Result too large"},
        {36, "Resource deadlock avoided"}, {38, wine ? "File name too long" : "Filename too long"},
        {41, "Directory not empty"}, {15, "Unknown error"}, {26, "Unknown error"}, {35, "Unknown error"},
        {37, "Unknown error"}, {43, "Unknown error"}, {-1, "Unknown error"}, {INT_MIN, "Unknown error"}};
    // clang-format on
    for (const auto& row : rows) {
        const std::string text = row.text;
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
    for (const std::size_t size : {0u, 1u, 8u}) {
        EXPECT_EQ(timeText(size), "34");
        EXPECT_EQ(dateText(size), "34");
    }
    EXPECT_EQ(_strtime_s(nullptr, 9), 22);
    EXPECT_EQ(_wstrdate_s(nullptr, 0), 22);
}

TEST(LocalTime, ReachesFrom1970To3000) {
    setEnvironment("TZ", "UTC0");
    // clang-format off
    const struct {
        __time64_t seconds;
        int error, year, month, day, hour, minute, second, weekday, yearDay;
    } rows[] = {
        {0, 0, 70, 0, 1, 0, 0, 0, 4, 0}, {1234567890, 0, 109, 1, 13, 23, 31, 30, 5, 43},
        {951782400, 0, 100, 1, 29, 0, 0, 0, 2, 59}, {32535215999, 0, 1100, 11, 31, 23, 59, 59, 3, 364},
        {32535244799, 0, 1101, 0, 1, 7, 59, 59, 4, 0}, {32535244800, 22, -1, -1, -1, -1, -1, -1, -1, -1},
        {-1, 22, -1, -1, -1, -1, -1, -1, -1, -1}, {INT64_MAX, 22, -1, -1, -1, -1, -1, -1, -1, -1},
        {INT64_MIN, 22, -1, -1, -1, -1, -1, -1, -1, -1}};
    // clang-format on
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
    const auto year = &std::tm::tm_year, month = &std::tm::tm_mon, day = &std::tm::tm_mday, hour = &std::tm::tm_hour,
               minute = &std::tm::tm_min, second = &std::tm::tm_sec, weekday = &std::tm::tm_wday,
               yearDay = &std::tm::tm_yday;
    // clang-format off
    const struct {
        const char *format, *text;
        int std::tm::*field;
        int value;
    } rows[] = {
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
