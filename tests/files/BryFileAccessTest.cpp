#include <roots/files/BryFileAccess.h>

#include <gtest/gtest.h>
#include <tests/support/Printers.h>
#include <tests/support/TempFolder.h>

#include <string>
#include <vector>

namespace {

using File = BryFileAccess;

class BryFileAccessTest : public testing::Test {
protected:
    TempFolder folder;
    BryString line;
};

const File::encodeType kEncodings[] = {File::encodeANSI, File::encodeUTF8, File::encodeUTF16LE, File::encodeUNICODE};
const std::string kUtf8Mark = "\xEF\xBB\xBF", kUtf16Mark = "\xFF\xFE";

BryString manyOf(const wchar_t* text, int count) {
    BryString part(text), all;
    for (; count > 0; count /= 2, part += part)
        if (count % 2 == 1) all += part;
    return all;
}

TEST_F(BryFileAccessTest, OpensWithTheEncodingThatItKeeps) {
    // clang-format off
    const struct { const wchar_t *name, *mode; File::encodeType encoding; int open; } rows[] = {
        {L"", L"w", File::encodeUTF8, 0}, {L"none", L"r", File::encodeUTF16LE, 0}, {L"t", L"q", File::encodeANSI, 0},
        {L"t", L"w", File::encodeUNICODE, 1}, {L"t", L"w", File::encodeANSI, 1}, {L"t", L"wb", File::encodeUTF8, 1}};
    // clang-format on
    for (const auto& row : rows) {
        File file(row.name, row.mode, row.encoding);
        EXPECT_EQ(file.isOpen(), row.open) << row.encoding;
        file.close();
        file.close();
        EXPECT_EQ(file.isOpen(), 0);
        EXPECT_EQ(file.getCodingMethod(), row.encoding);
    }
    EXPECT_EQ(File().isOpen(), 0);
    EXPECT_EQ(File().getCodingMethod(), File::encodeANSI);
}

TEST_F(BryFileAccessTest, AnswersEveryCallWhenClosed) {
    File closed(File(L"", L"r", File::encodeUTF8));
    BryString token(L"old");
    int number = 7;
    double real = 7;
    char buffer[4];
    EXPECT_TRUE(closed.write("%d", 1) == 0 && closed.write(L"%d", 1) == 0);
    EXPECT_EQ(closed.write(reinterpret_cast<const unsigned short*>(L"x")), 0);
    EXPECT_TRUE(closed.read(buffer, 1, 4) == 0 && closed.getc() == 0 && closed.getFileLength() == 0);
    EXPECT_TRUE(closed.readString(token) == 0 && closed.readInt(number) == 0 && closed.readDouble(real) == 0);
    EXPECT_TRUE(token == L"old" && number == 7 && real == 7);
    EXPECT_TRUE(closed.puts(L"x") == -1 && closed.seek(0, 0) != 0 && closed.eof() != 0);
    line = L"old";
    EXPECT_EQ(closed.gets(line, 100) + line, L"");
    EXPECT_EQ(closed.readFile(token, 10), 0u);
    EXPECT_EQ(token, L"");
}

TEST_F(BryFileAccessTest, SharesItsStreamWithItsCopies) {
    File assigned(L"u", L"w", File::encodeANSI);
    {
        File first(L"t", L"w", File::encodeUTF8), copy(first);
        assigned = first;
        assigned = *&assigned;
        EXPECT_TRUE(first.puts(L"a") == 0 && copy.puts(L"b") == 0);
    }
    EXPECT_EQ(File::removeFile(L"u"), 0);  // closed, as the last owner is gone
    EXPECT_EQ(assigned.getCodingMethod(), File::encodeUTF8);
    EXPECT_EQ(assigned.puts(L"c"), 0);
    File last(assigned);
    assigned.close();
    EXPECT_EQ(last.isOpen(), 0);
    EXPECT_EQ(last.puts(L"d"), -1);
    EXPECT_EQ(fileBytes("t"), kUtf8Mark + "abc");
}

TEST_F(BryFileAccessTest, PutsAndGetsTextInItsEncoding) {
    const BryString wide(L"Tr\x00E4ger\n\x2192\x20AC \xD83D\xDE00\n");
    const std::string utf8 = "Tr\xC3\xA4ger\r\n\xE2\x86\x92\xE2\x82\xAC \xF0\x9F\x98\x80\r\n";
    // clang-format off
    const struct { File::encodeType encoding; BryString text; std::string bytes; } rows[] = {
        {File::encodeANSI, L"Tr\x00E4ger\n5 \x20AC", "Tr\xE4ger\r\n5 \x80"}, {File::encodeUTF8, wide, kUtf8Mark + utf8},
        {File::encodeUTF16LE, L"\x20AC \xD83D\xDE00\n", kUtf16Mark + bytes("\xAC\x20 \0\x3D\xD8\0\xDE\r\0\n\0")},
        {File::encodeUNICODE, L"a", kUtf16Mark + bytes("a\0")}};
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_GE(File(L"t", L"w", row.encoding).puts(row.text), 0);
        EXPECT_EQ(fileBytes("t"), row.bytes) << row.encoding;
        File file(L"t", L"r", row.encoding);
        BryString all;
        do all += file.gets(line, 200);
        while (!line.isEmpty());
        EXPECT_EQ(all, row.text) << row.encoding;
        EXPECT_NE(file.eof(), 0);
        EXPECT_EQ(file.puts(L"x"), -1);
    }
}

TEST_F(BryFileAccessTest, GetsALineUpToTheCount) {
    const BryString longLine = manyOf(L"HEA200 ", 15000) + L"\n";
    // clang-format off
    const std::pair<int, BryString> rows[] = {
        {3, L"ab"}, {99, L"c\n"}, {4, L"de\n"}, {1, L""}, {0, L""}, {-5, L""}, {2, L"\n"}, {256, longLine.left(255)},
        {257, longLine.mid(255, 256)}, {512, longLine.mid(511, 511)}, {513, longLine.mid(1022, 512)},
        {2147483647, longLine.mid(1534)}, {512, L"end"}, {512, L""}};
    // clang-format on
    for (const File::encodeType encoding : kEncodings) {
        EXPECT_GE(File(L"t", L"w", encoding).puts(BryString(L"abc\nde\n\n") + longLine + L"end"), 0);
        File file(L"t", L"r", encoding);
        for (const auto& [maxChars, expected] : rows) {
            EXPECT_EQ(file.gets(line, maxChars), expected) << encoding << ' ' << maxChars;
            EXPECT_EQ(line, expected);
        }
    }
}

TEST_F(BryFileAccessTest, WritesWhatTheWideFormatSays) {
    {
        const File file(L"t", L"w", File::encodeUTF8);
        EXPECT_EQ(file.write("%s \xE4 %d\n", L"\x20AC", 5), 6);
        EXPECT_EQ(file.write(L"%S%s", "\xE4", L"b"), 2);
        EXPECT_EQ(file.write(reinterpret_cast<const unsigned short*>(L"[%04d]"), 42), 6);
    }
    EXPECT_EQ(fileBytes("t"), kUtf8Mark +
                                  "\xE2\x82\xAC \xC3\xA4 5\r\n\xC3\xA4"
                                  "b[0042]");
}

TEST_F(BryFileAccessTest, MeasuresTheFileAndGoesToItsStart) {
    writeFile("t", "ab\r\ncd");
    File file(L"t", L"r", File::encodeANSI);
    EXPECT_EQ(file.getc(), L'a');
    EXPECT_EQ(file.getFileLength(), 6);
    EXPECT_EQ(file.gets(line, 100), L"ab\n");
    EXPECT_TRUE(file.seek(1, 0) == 0 && file.getc() == L'b' && file.seek(-1, 2) == 0 && file.getc() == L'd');
    EXPECT_EQ(file.eof(), 0);
    EXPECT_EQ(file.getc(), 65535);
    EXPECT_NE(file.eof(), 0);
    EXPECT_NE(file.seek(-1, 0), 0);
    EXPECT_EQ(file.seek(0, 0), 0);
    char items[6] = "#####";
    EXPECT_EQ(file.read(items, 2, 3), 2u);
    EXPECT_EQ(std::string(items, 4), "ab\nc");
}

TEST_F(BryFileAccessTest, ReadsTokensAndNumbers) {
    const BryString longToken = manyOf(L"x", 300);
    const BryString text = BryString(L" -12 HEA\x20AC\t1.5e2\nfoo 7 ") + longToken + L" z";
    EXPECT_GE(File(L"t", L"w", File::encodeUTF16LE).puts(text), 0);
    const File file(L"t", L"r", File::encodeUTF16LE);
    BryString token;
    int number = 7;
    double real = 7;
    EXPECT_TRUE(file.readInt(number) == 1 && number == -12);
    EXPECT_TRUE(file.readInt(number) == 0 && number == -12);
    EXPECT_TRUE(file.readString(token) == 1 && token == L"HEA\x20AC");
    EXPECT_TRUE(file.readDouble(real) == 1 && real == 150);
    EXPECT_TRUE(file.readDouble(real) == 0 && real == 150);
    for (const BryString& expected :
         {BryString(L"foo"), BryString(L"7"), longToken.left(255), longToken.left(45), BryString(L"z")})
        EXPECT_TRUE(file.readString(token) == 1 && token == expected) << testing::PrintToString(expected);
    EXPECT_TRUE(file.readString(token) == -1 && token == L"z");
    EXPECT_TRUE(file.readInt(number) == -1 && file.readDouble(real) == -1 && number == -12 && real == 150);
}

TEST_F(BryFileAccessTest, ReadsAWholeFileByItsMark) {
    // clang-format off
    const struct { std::string file; unsigned count; BryString binary, text; unsigned result, textResult; } rows[] = {
        {"", 9, L"", L"", 0, 0}, {"a", 9, L"a", L"a", 1, 1}, {"abc", 2, L"ab", L"ab", 2, 2}, {"abc", 0, L"", L"", 0, 0},
        {"\x80 \xE4\r\nb", 99, L"\x20AC \xE4\r\nb", L"\x20AC \xE4\nb", 6, 5}, {bytes("a\0b"), 9, L"a", L"a", 3, 3},
        // half a mark, and marks alone
        {"\xFF", 9, L"\xFF", L"\xFF", 1, 1}, {"\xEF\xBB", 9, L"\xEF\xBB", L"\xEF\xBB", 2, 2},
        {kUtf16Mark, 9, L"", L"", 0, 0}, {kUtf8Mark, 9, L"", L"", 0, 0},
        // 16-bit text: an odd byte, the bytes of a line end and of Ctrl-Z, the other byte order
        {kUtf16Mark + bytes("a\0\xAC\x20"), 1, L"a", L"a", 1, 1}, {kUtf16Mark + bytes("a\0b"), 9, L"a", L"a", 1, 1},
        {kUtf16Mark + bytes("\x1A\x04\r\n\r\0\n\0z\0"), 9, L"\x041A\x0A0D\r\nz", L"\x041A\x0A0D\r\nz", 5, 5},
        {bytes("\xFE\xFF\0a\x20\xAC"), 9, L"a\x20AC", L"a\x20AC", 2, 2},
        // UTF-8: cut between characters, not within a pair; broken
        {kUtf8Mark + "\xE2\x82\xAC\r\nz", 99, L"\x20AC\r\nz", L"\x20AC\nz", 4, 3},
        {kUtf8Mark + "\xE2\x82\xAC\xE2\x82\xAC", 1, L"\x20AC", L"\x20AC", 1, 1},
        {kUtf8Mark + "a\xF0\x9F\x98\x80z", 2, L"a", L"a", 1, 1},
        {kUtf8Mark + "a\xFFz", 9, L"a\xFFFDz", L"a\xFFFDz", 3, 3},
        {kUtf8Mark + "a\xF0\x9F\x98\x80z", 3, L"a\xD83D\xDE00", L"a\xD83D\xDE00", 3, 3}};
    // clang-format on
    for (const auto& row : rows) {
        writeFile("t", row.file);
        BryString text(L"old");
        EXPECT_EQ(File(L"t", L"rb", File::encodeANSI).readFile(text, row.count), row.result) << row.file;
        EXPECT_EQ(text, row.binary) << row.file;
        for (const File::encodeType encoding : kEncodings) {
            text = L"old";
            EXPECT_EQ(File(L"t", L"r", encoding).readFile(text, row.count), row.textResult) << row.file << encoding;
            EXPECT_EQ(text, row.text) << row.file << encoding;
        }
    }
}

TEST_F(BryFileAccessTest, ReadsFilesLongerThanAnyBufferAndLinesAfterwards) {
    const BryString many = manyOf(L"St\xFCtze ", 100000);
    for (const File::encodeType encoding : kEncodings) {
        const bool wide = encoding == File::encodeUTF16LE || encoding == File::encodeUNICODE;  // read as it is
        const BryString expected = BryString(wide ? L"\xE4\r\nb\r\n" : L"\xE4\nb\n") + many;
        EXPECT_GE(File(L"t", L"w", encoding).puts(BryString(L"\xE4\nb\n") + many), 0);
        File file(L"t", L"r", encoding);
        for (const unsigned count : {static_cast<unsigned>(file.getFileLength()), 4294967295u}) {
            EXPECT_EQ(file.readFile(line, count), wide ? 700006u : 700004u) << encoding;
            EXPECT_TRUE(line == expected) << encoding;
        }
        EXPECT_EQ(file.seek(encoding == File::encodeANSI ? 0 : encoding == File::encodeUTF8 ? 3 : 2, 0), 0);
        EXPECT_EQ(file.gets(line, 9), L"\xE4\n") << encoding;
        EXPECT_EQ(file.gets(line, 9), L"b\n") << encoding;
    }
}

TEST_F(BryFileAccessTest, WorksOnFilesAndFolders) {
    EXPECT_TRUE(File::makeDir(L"d") == 0 && File::makeDir(L"d") == 0 && File::makeDir(L"no\\d") == -1);
    writeFile("a.txt", "");
    writeFile("b", "");
    EXPECT_NE(File::renameFile(L"a.txt", L"b"), 0);
    EXPECT_EQ(File::renameFile(L"a.txt", L"d\\a.txt"), 0);
    EXPECT_TRUE(File::changeWorkingDir(L"d") == 0 && File::changeWorkingDir(L"none") == -1);
    EXPECT_TRUE(bryFileExists(L"a.txt") == 1 && File::changeWorkingDir(L"..") == 0);
    for (const wchar_t* path : {L"d", L"d\\A.TXT", L"d\\*.txt", L"*"})
        EXPECT_EQ(bryFileExists(path), 1) << BryString(path).getStringA();
    for (const wchar_t* path : {L"none", L"d\\none", L"d\\*.doc", L"none\\*", L"*\\a.txt", L""})
        EXPECT_EQ(bryFileExists(path), 0) << BryString(path).getStringA();
    EXPECT_EQ(File::removeFile(L"d"), -1);
    EXPECT_EQ(File::removeFile(L"d\\a.txt"), 0);
    EXPECT_EQ(File::removeFile(L"d\\a.txt"), -1);
}

TEST_F(BryFileAccessTest, HasTheRuntimesRoutinesBesides) {
    FILE* stream = nullptr;
    ASSERT_EQ(bryfopen(&stream, L"t", L"w"), 0);
    EXPECT_EQ(bryfprintf(stream, "%s %d\n", "text", 5), 7);
    EXPECT_EQ(bryfprintf(stream, L"%s %S\n", L"wide", "narrow"), 12);
    EXPECT_TRUE(bryfputs("end", stream) >= 0 && bryfclose(stream) == 0);
    EXPECT_EQ(fileBytes("t"), "text 5\r\nwide narrow\r\nend");

    ASSERT_EQ(bryfopen(&stream, L"t", L"r"), 0);
    char buffer[32];
    EXPECT_STREQ(bryfgets(buffer, sizeof buffer, stream), "text 5\n");
    EXPECT_EQ(bryfread(buffer, 6, 9, stream), 2u);
    EXPECT_EQ(std::string(buffer, 12), "wide narrow\n");
    EXPECT_TRUE(bryfeof(stream) != 0 && bryfgets(buffer, sizeof buffer, stream) == nullptr && bryfclose(stream) == 0);
    EXPECT_TRUE(bryfopen(&stream, L"none", L"r") == 2 && stream == nullptr);
}

}  // namespace
