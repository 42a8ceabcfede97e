// Searching a folder: which names a pattern finds, what is told of them, and why nothing is found.
#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>
#include <tests/support/Units.h>

#include <ctime>
#include <numeric>
#include <set>
#include <string>

namespace {

class FileSearch : public testing::Test {
protected:
    FileSearch() {
        std::filesystem::create_directories("d/inner");
        for (const char* name : {"c", "a.txt", "a.tx", "ab.txt", "abc.tar.gz", "B.TXT", ".hid", "a b", "d/in.txt"})
            writeFile(name, "four");
    }

    // The names found, sorted, with a blank behind each; or "error n". The last one stays in data.
    std::string found(const wchar_t* pattern) {
        const HANDLE search = FindFirstFileW(pattern, &data);
        if (search == INVALID_HANDLE_VALUE) return "error " + std::to_string(GetLastError());
        std::set<std::string> names;
        do names.insert(narrow(data.cFileName));
        while (FindNextFileW(search, &data));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
        EXPECT_TRUE(FindClose(search));
        return std::accumulate(names.begin(), names.end(), std::string(), [](auto a, auto b) { return a + b + " "; });
    }

    TempFolder folder;
    WIN32_FIND_DATAW data;
};

TEST_F(FileSearch, FindsTheNamesThatFit) {
    const std::string every = ". .. .hid B.TXT a b a.tx a.txt ab.txt abc.tar.gz c d ";
    // clang-format off
    const std::pair<const char*, std::string> rows[] = {
        {"*", every}, {"*.*", every}, {"*.*.*", every}, {"c", "c "}, {"c.", "c "}, {"c..", "c "}, {"c.*", "c "},
        {"c*.*", "c "}, {"c?", "error 2"}, {"?", ". c d "}, {"??", ".. "}, {"?.", ". c d "}, {"a.??", "a.tx "},
        {"?????", "B.TXT a.txt "}, {"a??.txt", "error 2"}, {"*.TX?", "B.TXT a.txt ab.txt "}, {"*.*gz", "abc.tar.gz "},
        {"abc.*.gz", "abc.tar.gz "}, {"ab*.t*t", "ab.txt "}, {"*.??", "a.tx abc.tar.gz "}, {"a ?", "a b "},
        {"?.*", ". .. B.TXT a.tx a.txt c d "}, {".h*", ".hid "}, {"*hid", ".hid "}, {"a.txt ", "a.txt "},
        {"A.TXT", "a.txt "}, {"d", "d "}, {"d\\", "error 2"}, {"d\\.", "d "}, {"d\\inner\\..", "d "},
        {"d\\*", ". .. in.txt inner "}, {"d/*.txt", "in.txt "}, {".\\d\\IN.TXT", "in.txt "}, {"none", "error 2"},
        {"a<b", "error 2"}, {"", "error 3"}, {"none\\*", "error 3"}, {"none\\x", "error 3"}, {"q:\\*", "error 3"},
        {"*\\x", "error 123"}, {"d*\\in.txt", "error 123"},
        {"*.", underWine() ? every : ". .. a b c d "}};  // Wine drops the point, and with it the condition
    // clang-format on
    for (const auto& [pattern, names] : rows) EXPECT_EQ(found(units<wchar_t>(pattern).data()), names) << pattern;

    writeFile(std::string(200, 'a'), "");
    std::string slow = "b";  // if each star tried every place
    for (int i = 0; i < 60; ++i) slow = "*a" + slow;
    EXPECT_EQ(found(units<wchar_t>(slow).data()), "error 2");
}

TEST_F(FileSearch, TellsSizeKindAndTimes) {
    EXPECT_EQ(found(L"d"), "d ");
    EXPECT_NE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_EQ(found(L"A.TXT"), "a.txt ");
    EXPECT_EQ(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_TRUE(data.nFileSizeHigh == 0 && data.nFileSizeLow == 4);
    const FILETIME& time = data.ftLastWriteTime;
    const std::int64_t written = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    EXPECT_NEAR(static_cast<double>(written / 10000000 - 11644473600), static_cast<double>(std::time(nullptr)), 60.0);
}

// Names as only this system has them, made byte by byte: UTF-8 of one to four bytes, Latin-1, half a sequence, half a
// pair as it would be encoded.
TEST_F(FileSearch, FindsNamesOfAnyBytesInAnyCaseAndOpensThem) {
    if (onWindows) GTEST_SKIP() << "names are bytes elsewhere only";
    std::set<std::string> names = {"B\xC3\xA4r", "\xD0\x9A",  "\xE2\x82\xAC", "x\xF0\x9F\x98\x80",
                                   "B\xE4r",     "y\xE2\x82", "z\xED\xA0\x80"};
    std::filesystem::current_path("d/inner");
    for (const std::string& name : names) writeFile(name, name);
    const HANDLE search = FindFirstFileW(L"*", &data);
    do {
        std::FILE* stream = nullptr;
        if (_wfopen_s(&stream, data.cFileName, L"rb") != 0) continue;  // . and ..
        char content[16];
        EXPECT_EQ(names.erase(std::string(content, crt::fread(content, 1, sizeof content, stream))), 1u);
        crt::fclose(stream);
    } while (FindNextFileW(search, &data));
    FindClose(search);
    EXPECT_TRUE(names.empty()) << testing::PrintToString(names);

    EXPECT_EQ(found(L"b\xC4R"), "B\xE4r ");
    std::FILE* halfPairs = nullptr;
    EXPECT_EQ(_wfopen_s(&halfPairs, L"\xD800\xDC00\xDC00\xD800", L"w"), 0);
    crt::fclose(halfPairs);
    EXPECT_TRUE(std::filesystem::exists("\xF0\x90\x80\x80\xED\xB0\x80\xED\xA0\x80"));
    std::filesystem::create_symlink("nowhere", "link");
    EXPECT_EQ(found(L"link"), "link ");
}

}  // namespace
