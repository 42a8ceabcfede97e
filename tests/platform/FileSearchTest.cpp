// Searching a folder: which names a pattern finds, what is told of them, and why nothing is found.
#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <set>
#include <string>
#include <vector>

namespace {

class FileSearch : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"d", "d/inner"}) std::filesystem::create_directory(name);
        for (const char* name : {"c", "a.txt", "a.tx", "ab.txt", "abc.tar.gz", "B.TXT", ".hid", "a b", "d/in.txt"})
            writeFile(name, "four");
    }

    TempFolder folder;
};

std::string narrow(const wchar_t* text) {
    std::string result;
    while (*text != 0) result += static_cast<char>(*text++);
    return result;
}

// The names found, one blank between them, in their order without regard to case; or "error n".
std::string found(const wchar_t* pattern) {
    const auto before = [](const std::string& a, const std::string& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                            [](char x, char y) { return std::tolower(x) < std::tolower(y); });
    };
    std::set<std::string, decltype(before)> names(before);
    WIN32_FIND_DATAW data;
    const HANDLE search = FindFirstFileW(pattern, &data);
    if (search == INVALID_HANDLE_VALUE) return "error " + std::to_string(GetLastError());
    do names.insert(narrow(data.cFileName)); while (FindNextFileW(search, &data));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(search));
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : " ") + name;
    return all;
}

TEST_F(FileSearch, FindsTheNamesThatFit) {
    const std::string every = ". .. .hid a b a.tx a.txt ab.txt abc.tar.gz B.TXT c d";
    const struct { const wchar_t* pattern; std::string expected; } rows[] = {
        {L"*", every},                  {L"*.*", every},                {L"**", every},         {L"*.*.*", every},
        {L"c", "c"},                    {L"C", "c"},                    {L"c.", "c"},           {L"c..", "c"},
        {L"c.*", "c"},                  {L"c*", "c"},                   {L"c*.*", "c"},         {L"c?", "error 2"},
        {L"?", ". c d"},                {L"??", ".."},                  {L"?????", "a.txt B.TXT"}, {L"?.", ". c d"},
        {L"a.??", "a.tx"},              {L"a.???", "a.txt"},            {L"a.????", "error 2"}, {L"a?.txt", "ab.txt"},
        {L"a??.txt", "error 2"},        {L"*.txt", "a.txt ab.txt B.TXT"}, {L"*.TX?", "a.txt ab.txt B.TXT"},
        {L"*.gz", "abc.tar.gz"},        {L"*tar*", "abc.tar.gz"},       {L"*.*gz", "abc.tar.gz"},
        {L"abc.*.gz", "abc.tar.gz"},    {L"ab*.t*t", "ab.txt"},         {L"*.??", "a.tx abc.tar.gz"},
        {L"?.*", ". .. a.tx a.txt B.TXT c d"},
        {L".h*", ".hid"},               {L"*hid", ".hid"},              {L"a ?", "a b"},        {L"a.txt.", "a.txt"},
        {L"a.txt ", "a.txt"},           {L"A.TXT", "a.txt"},            {L"b.txt", "B.TXT"},    {L"none", "error 2"},
        {L"d", "d"},                    {L"d\\", "error 2"},            {L"d\\.", "d"},         {L"d\\inner\\..", "d"},
        {L"d\\*", ". .. in.txt inner"}, {L"d/*.txt", "in.txt"},         {L".\\d\\IN.TXT", "in.txt"},
        {L"d\\none", "error 2"},
        {L"none\\*", "error 3"},        {L"none\\x", "error 3"},        {L"", "error 3"},       {L"*\\x", "error 123"},
        {L"d*\\in.txt", "error 123"},   {L"q:\\*", "error 3"},          {L"a<b", "error 2"},
    };
    for (const auto& row : rows) EXPECT_EQ(found(row.pattern), row.expected) << '"' << narrow(row.pattern) << '"';
    EXPECT_EQ(found(L"*."), underWine() ? every : ". .. a b c d");  // Wine drops the point, and with it the condition
}

TEST_F(FileSearch, TellsSizeKindAndTimes) {
    WIN32_FIND_DATAW data;
    HANDLE search = FindFirstFileW(L"A.TXT", &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(FindClose(search));
    EXPECT_EQ(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_EQ(data.nFileSizeHigh, 0u);
    EXPECT_EQ(data.nFileSizeLow, 4u);
    EXPECT_EQ(narrow(data.cFileName), "a.txt");
    const FILETIME& time = data.ftLastWriteTime;
    const std::int64_t written = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    EXPECT_NEAR(static_cast<double>(written / 10000000 - 11644473600), static_cast<double>(std::time(nullptr)), 60.0);

    search = FindFirstFileW(L"d", &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(FindClose(search));
    EXPECT_NE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
}

TEST_F(FileSearch, SearchesLongPatternsInGoodTime) {
    writeFile(std::string(200, 'a'), "");
    std::vector<wchar_t> pattern;
    for (int i = 0; i < 60; ++i) pattern.insert(pattern.end(), {L'*', L'a'});
    pattern.insert(pattern.end(), {L'b', 0});
    EXPECT_EQ(found(pattern.data()), "error 2");
}

// Names as only this system has them. They are made by the C library, byte by byte.
class NamesOnDisk : public FileSearch {
    void SetUp() override {
        if (onWindows) GTEST_SKIP() << "names are bytes elsewhere only";
    }
};

TEST_F(NamesOnDisk, AreFoundInAnyCaseAndOpenedAsTheyAre) {
    // UTF-8 of one to four bytes; Latin-1; half a sequence; half a pair as it would be encoded
    const std::string names[] = {"B\xC3\xA4r", "\xD0\x9A", "\xE2\x82\xAC", "x\xF0\x9F\x98\x80",
                                 "B\xE4r", "y\xE2\x82", "z\xED\xA0\x80"};
    for (const std::string& name : names) writeFile(name, name);
    WIN32_FIND_DATAW data;
    std::size_t count = 0;
    const HANDLE search = FindFirstFileW(L"*", &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    do {
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) continue;
        ++count;
        std::FILE* stream = nullptr;
        ASSERT_EQ(_wfopen_s(&stream, data.cFileName, L"rb"), 0) << count;
        char bytes[16];
        const std::string content(bytes, crt::fread(bytes, 1, sizeof bytes, stream));
        EXPECT_NE(std::find(std::begin(names), std::end(names), content), std::end(names)) << content;
        crt::fclose(stream);
    } while (FindNextFileW(search, &data));
    EXPECT_EQ(count, std::size(names));
    FindClose(search);

    HANDLE single = FindFirstFileW(L"b\xC4R", &data);
    ASSERT_NE(single, INVALID_HANDLE_VALUE);
    EXPECT_EQ(data.cFileName[1], 0xE4);
    FindClose(single);
}

TEST_F(NamesOnDisk, MayBeLinksThatLeadNowhere) {
    std::filesystem::create_symlink("nowhere", "link");
    EXPECT_EQ(found(L"link"), "link");
}

TEST_F(NamesOnDisk, MayBeHalfPairs) {
    std::FILE* stream = nullptr;
    ASSERT_EQ(_wfopen_s(&stream, L"\xD800\xDC00\xDC00\xD800", L"w"), 0);
    crt::fclose(stream);
    EXPECT_TRUE(std::filesystem::exists("\xF0\x90\x80\x80\xED\xB0\x80\xED\xA0\x80"));
}

}  // namespace
