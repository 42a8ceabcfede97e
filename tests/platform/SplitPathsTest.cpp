#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace {

// The error, and what the four buffers then hold.
template <class Unit, class Routine>
std::string split(Routine routine, const char* path, const std::size_t (&sizes)[4]) {
    Unit to[4][40] = {{'#'}, {'#'}, {'#'}, {'#'}};
    const int error =
        routine(units<Unit>(path).data(), to[0], sizes[0], to[1], sizes[1], to[2], sizes[2], to[3], sizes[3]);
    return std::to_string(error) + ' ' + narrow(to[0]) + '|' + narrow(to[1]) + '|' + narrow(to[2]) + '|' +
           narrow(to[3]);
}

TEST(SplitPaths, PartsEndAtTheLastSlashAndTheLastPointAndAllFitOrAllAreEmpty) {
    const char* const path = "c:\\a\\abc.txt";
    // clang-format off
    const struct { const char* path; std::string answer; std::size_t sizes[4] = {9, 40, 40, 40}; } rows[] = {
        {"", "0 |||"}, {path, "0 c:|\\a\\|abc|.txt"}, {"c:", "0 c:|||"}, {"c:a.b.c", "0 c:||a.b|.c"}, {".", "0 |||."},
        {"..", "0 ||.|."}, {".a", "0 |||.a"}, {"a.", "0 ||a|."}, {"a.b\\c", "0 |a.b\\|c|"}, {"a.b/", "0 |a.b/||"},
        {"a/b\\c/d.e", "0 |a/b\\c/|d|.e"}, {"a b.c d", "0 ||a b|.c d"}, {"1:x", "0 1:||x|"}, {"::", "0 ::|||"},
        {":a", "0 ||:a|"}, {"a:b:c", "0 a:||b:c|"}, {"cc:\\a", "0 |cc:\\|a|"},
        {"\\\\?\\c:\\x\\y", "0 |\\\\?\\c:\\x\\|y|"}, {path, "0 c:|\\a\\|abc|.txt", {3, 4, 4, 5}},
        {path, "34 |||", {2, 4, 4, 5}}, {path, "34 |||", {3, 3, 4, 5}}, {path, "34 |||", {3, 4, 3, 5}},
        {path, "34 |||", {3, 4, 4, 4}}, {path, "22 #|||", {0, 4, 4, 5}}, {path, "22 |#||", {3, 0, 4, 5}},
        {path, "22 ||#|", {3, 4, 0, 5}}, {path, "22 |||#", {3, 4, 4, 0}}};
    // clang-format on
    for (const auto& row : rows) {
        const bool refused = row.answer[0] == '2';
        const std::string answer = refused && underWine() ? "22 #|#|#|#" : row.answer;  // Wine leaves all buffers alone
        const auto ansi = [](auto... parts) { return _splitpath_s(parts...); };
        const auto wide = [](auto... parts) { return _wsplitpath_s(parts...); };
        EXPECT_EQ(split<char>(ansi, row.path, row.sizes), answer) << row.path;
        EXPECT_EQ(split<wchar_t>(wide, row.path, row.sizes), answer) << row.path;
    }
    char name[9];
    EXPECT_EQ(_splitpath_s(path, nullptr, 0, nullptr, 0, name, 9, nullptr, 0), 0);
    EXPECT_STREQ(name, "abc");
    EXPECT_EQ(_splitpath_s(path, nullptr, 1, nullptr, 0, name, 9, nullptr, 0), 22);
    EXPECT_EQ(_splitpath_s(nullptr, nullptr, 0, nullptr, 0, name, 9, nullptr, 0), 22);
}

// The error, and what the buffer then holds.
template <class Unit, class Routine>
std::string make(Routine routine, const char* const (&texts)[4], std::size_t size) {
    std::vector<Unit> parts[4], to(20, '#');
    const Unit* at[4] = {};
    for (int i = 0; i < 4; ++i)
        if (texts[i] != nullptr) at[i] = (parts[i] = units<Unit>(texts[i])).data();
    to.back() = 0;
    const int error = routine(to.data(), size, at[0], at[1], at[2], at[3]);
    return std::to_string(error) + ' ' + narrow(to.data());
}

TEST(SplitPaths, AreMadeOfPartsWithWhatSeparatesThem) {
    // clang-format off
    const struct { const char* parts[4]; std::string path; } rows[] = {
        {{"c", "a", "b", "t"}, "c:a\\b.t"}, {{"cd", "a\\", "b", ".t"}, "c:a\\b.t"}, {{":", "a/", "b", "."}, "::a/b."},
        {{"", "", "", ""}, ""}, {{}, ""}, {{nullptr, "a", "\\b", nullptr}, "a\\\\b"},
        {{nullptr, "", "b", "..x"}, "b..x"}, {{"c:", "\\", "", "t"}, "c:\\.t"}};
    // clang-format on
    for (const auto& [parts, path] : rows) {
        for (std::size_t size = path.size() + 2; size-- > 0;) {
            const std::string answer = size > path.size() ? "0 " + path : size > 0 ? "34 " : "22 ###################";
            const auto ansi = [](auto... of) { return _makepath_s(of...); };
            const auto wide = [](auto... of) { return _wmakepath_s(of...); };
            EXPECT_EQ(make<char>(ansi, parts, size), answer) << path << size;
            EXPECT_EQ(make<wchar_t>(wide, parts, size), answer) << path << size;
        }
    }
    EXPECT_EQ(_makepath_s(nullptr, 9, "c", "a", "b", "t"), 22);
}

// In code page 932 the second byte of a character may be that of a letter, a slash or a point.
TEST(AnsiPairsDeathTest, AreNeitherLettersNorSlashes) {
    if (onWindows) GTEST_SKIP() << "Windows has the code page in its settings";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto child = [] {
        setEnvironment("KELROOTS_ANSI_CODE_PAGE", "932");
        std::setlocale(LC_ALL, "C.UTF-8");
        char text[] = "a\x83\x61z", name[9], dir[9], path[20];
        bool right = _strupr_s(text, sizeof text) == 0 && std::string(text) == "A\x83\x61Z";
        right &= _splitpath_s("d\\\x83\x5C\x61", nullptr, 0, dir, 9, name, 9, nullptr, 0) == 0;
        right &= std::string(dir) == "d\\" && std::string(name) == "\x83\x5C\x61";
        right &= _makepath_s(path, 20, nullptr, "\x83\x5C", "b", nullptr) == 0;
        std::exit(right && std::string(path) == "\x83\x5C\\b" ? 0 : 1);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

}  // namespace
