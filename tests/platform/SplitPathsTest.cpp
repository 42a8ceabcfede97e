#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

int split(const char* path, char* drive, std::size_t a, char* dir, std::size_t b, char* name, std::size_t c, char* ext,
          std::size_t d) {
    return _splitpath_s(path, drive, a, dir, b, name, c, ext, d);
}
int split(const wchar_t* path, wchar_t* drive, std::size_t a, wchar_t* dir, std::size_t b, wchar_t* name, std::size_t c,
          wchar_t* ext, std::size_t d) {
    return _wsplitpath_s(path, drive, a, dir, b, name, c, ext, d);
}
int make(char* to, std::size_t size, const char* drive, const char* dir, const char* name, const char* ext) {
    return _makepath_s(to, size, drive, dir, name, ext);
}
int make(wchar_t* to, std::size_t size, const wchar_t* drive, const wchar_t* dir, const wchar_t* name,
         const wchar_t* ext) {
    return _wmakepath_s(to, size, drive, dir, name, ext);
}

template <class Unit>
struct SplitPaths : ::testing::Test {};
using Widths = ::testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(SplitPaths, Widths, );

TYPED_TEST(SplitPaths, PartsEndAtTheLastSlashAndTheLastPoint) {
    // clang-format off
    const struct {
        const char *path, *parts;
    } rows[] = {
        {"", "|||"}, {"c:\\a\\b.txt", "c:|\\a\\|b|.txt"}, {"c:", "c:|||"}, {"c:a.b.c", "c:||a.b|.c"}, {".", "|||."},
        {"..", "||.|."}, {"...", "||..|."}, {".a", "|||.a"}, {"a.", "||a|."}, {"a.b\\c", "|a.b\\|c|"},
        {"a.b/", "|a.b/||"}, {"a\\.x", "|a\\||.x"}, {"a/b\\c/d.e", "|a/b\\c/|d|.e"}, {"a b.c d", "||a b|.c d"},
        {"1:x", "1:||x|"}, {"::", "::|||"}, {":", "||:|"}, {":a", "||:a|"}, {"a:b:c", "a:||b:c|"},
        {"cc:\\a", "|cc:\\|a|"}, {"c:\\", "c:|\\||"}, {"\\\\srv\\share\\f.e", "|\\\\srv\\share\\|f|.e"},
        {"\\\\?\\c:\\x\\y.z", "|\\\\?\\c:\\x\\|y|.z"}};
    // clang-format on
    for (const auto& row : rows) {
        TypeParam drive[9], dir[40], name[40], ext[40];
        EXPECT_EQ(split(units<TypeParam>(row.path).data(), drive, 9, dir, 40, name, 40, ext, 40), 0) << row.path;
        EXPECT_EQ(narrow(drive) + '|' + narrow(dir) + '|' + narrow(name) + '|' + narrow(ext), row.parts) << row.path;
    }
}

TYPED_TEST(SplitPaths, AllPartsFitOrAllAreEmpty) {
    const std::vector<TypeParam> path = units<TypeParam>("c:\\a\\abc.txt");
    const struct {
        std::size_t drive, dir, name, ext;
        int error;
    } rows[] = {{3, 4, 4, 5, 0},  {2, 4, 4, 5, 34}, {3, 3, 4, 5, 34}, {3, 4, 3, 5, 34}, {3, 4, 4, 4, 34},
                {1, 1, 1, 1, 34}, {0, 4, 4, 5, 22}, {3, 0, 4, 5, 22}, {3, 4, 0, 5, 22}, {3, 4, 4, 0, 22}};
    for (const auto& row : rows) {
        TypeParam parts[4][8];
        for (auto& part : parts) part[0] = '#';
        EXPECT_EQ(split(path.data(), parts[0], row.drive, parts[1], row.dir, parts[2], row.name, parts[3], row.ext),
                  row.error);
        const std::size_t sizes[] = {row.drive, row.dir, row.name, row.ext};
        for (int i = 0; i < 4; ++i) {
            const bool untouched = sizes[i] == 0 || (underWine() && row.error == 22);  // Wine leaves all buffers alone
            EXPECT_EQ(parts[i][0], row.error == 0 ? "c\\a."[i] : untouched ? '#' : 0) << &row - rows << " part " << i;
        }
    }
    TypeParam name[9] = {'#'};
    TypeParam* const none = nullptr;
    EXPECT_EQ(split(path.data(), none, 0, none, 0, name, 9, none, 0), 0);
    EXPECT_EQ(narrow(name), "abc");
    EXPECT_EQ(split(path.data(), none, 1, none, 0, name, 9, none, 0), 22);
    EXPECT_EQ(split(static_cast<const TypeParam*>(nullptr), none, 0, none, 0, name, 9, none, 0), 22);
}

TYPED_TEST(SplitPaths, AreMadeOfPartsWithWhatSeparatesThem) {
    const char* const null = nullptr;
    const struct {
        const char *drive, *dir, *name, *ext, *path;
    } rows[] = {{"c", "a", "b", "t", "c:a\\b.t"}, {"cd", "a\\", "b", ".t", "c:a\\b.t"},
                {":", "a/", "b", ".", "::a/b."},  {"", "", "", "", ""},
                {null, null, null, null, ""},     {null, "a", "\\b", null, "a\\\\b"},
                {null, "", "b", "..x", "b..x"},   {"c", null, "b", "", "c:b"},
                {"c:", "\\", "", "t", "c:\\.t"},  {null, "\\", "b", null, "\\b"},
                {null, null, null, "t", ".t"}};
    for (const auto& row : rows) {
        std::vector<TypeParam> parts[4];
        const TypeParam* at[4];
        const char* const texts[] = {row.drive, row.dir, row.name, row.ext};
        for (int i = 0; i < 4; ++i) {
            if (texts[i] != nullptr) parts[i] = units<TypeParam>(texts[i]);
            at[i] = texts[i] != nullptr ? parts[i].data() : nullptr;
        }
        std::vector<TypeParam> to(std::string(row.path).size() + 1);
        EXPECT_EQ(make(to.data(), to.size(), at[0], at[1], at[2], at[3]), 0) << row.path;
        EXPECT_EQ(narrow(to.data()), row.path);
        if (to.size() > 1) {
            EXPECT_EQ(make(to.data(), to.size() - 1, at[0], at[1], at[2], at[3]), 34) << row.path;
            EXPECT_EQ(to[0], 0) << row.path;
        }
        to[0] = '#';
        EXPECT_EQ(make(to.data(), 0, at[0], at[1], at[2], at[3]), 22) << row.path;
        EXPECT_EQ(to[0], '#') << row.path;
        EXPECT_EQ(make(static_cast<TypeParam*>(nullptr), 9, at[0], at[1], at[2], at[3]), 22) << row.path;
    }
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
