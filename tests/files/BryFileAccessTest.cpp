#include <roots/files/BryFileAccess.h>

#include <gtest/gtest.h>
#include <tests/support/Platform.h>
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

class BryStreamsTest : public BryFileAccessTest {};

const std::string kUtf8Mark = "\xEF\xBB\xBF", kUtf16Mark = "\xFF\xFE";

BryString manyOf(const wchar_t* text, int count) {
    BryString part(text), all;
    for (; count > 0; count /= 2, part += part)
        if (count % 2 == 1) all += part;
    return all;
}

TEST_F(BryFileAccessTest, OpensWithTheEncodingThatItKeeps) {
    EXPECT_EQ(File().isOpen(), 0);
    EXPECT_EQ(File().getCodingMethod(), File::encodeANSI);
    const struct { const wchar_t* name; const wchar_t* mode; File::encodeType encoding; int open; } rows[] = {
        {L"", L"w", File::encodeUTF8, 0},  {L"none", L"r", File::encodeUTF16LE, 0}, {L"t", L"q", File::encodeANSI, 0},
        {L"t", L"w", File::encodeANSI, 1}, {L"t", L"w", File::encodeUNICODE, 1},    {L"t", L"w", File::encodeUTF8, 1},
        {L"t", L"wb", File::encodeUTF16LE, 1},
    };
    for (const auto& row : rows) {
        File file(row.name, row.mode, row.encoding);
        EXPECT_EQ(file.isOpen(), row.open) << row.encoding;
        EXPECT_EQ(file.getCodingMethod(), row.encoding);
        file.close();
        file.close();
        EXPECT_EQ(file.isOpen(), 0);
        EXPECT_EQ(file.getCodingMethod(), row.encoding);
    }
}

TEST_F(BryFileAccessTest, AnswersEveryCallWhenClosed) {
    const File file(L"", L"r", File::encodeUTF8);
    File closed(file);
    BryString token(L"old");
    int number = 7;
    double real = 7;
    char buffer[4];
    EXPECT_EQ(closed.write("%d", 1), 0);
    EXPECT_EQ(closed.write(L"%d", 1), 0);
    EXPECT_EQ(closed.write(reinterpret_cast<const unsigned short*>(L"x")), 0);
    EXPECT_EQ(closed.read(buffer, 1, 4), 0u);
    EXPECT_EQ(closed.getc(), 0);
    EXPECT_EQ(closed.readString(token), 0);
    EXPECT_EQ(closed.readInt(number), 0);
    EXPECT_EQ(closed.readDouble(real), 0);
    EXPECT_EQ(token, L"old");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(real, 7);
    EXPECT_EQ(closed.puts(L"x"), -1);
    EXPECT_NE(closed.seek(0, 0), 0);
    EXPECT_NE(closed.eof(), 0);
    EXPECT_EQ(closed.getFileLength(), 0);
    line = L"old";
    EXPECT_EQ(closed.gets(line, 100), L"");
    EXPECT_EQ(line, L"");
    EXPECT_EQ(closed.readFile(token, 10), 0u);
    EXPECT_EQ(token, L"");
}

TEST_F(BryFileAccessTest, SharesItsStreamWithItsCopies) {
    File assigned;
    {
        File first(L"t", L"w", File::encodeUTF8);
        File copy(first);
        assigned = first;
        assigned = *&assigned;
        EXPECT_EQ(first.puts(L"a"), 0);
        EXPECT_EQ(copy.puts(L"b"), 0);
    }
    EXPECT_EQ(assigned.isOpen(), 1);
    EXPECT_EQ(assigned.getCodingMethod(), File::encodeUTF8);
    EXPECT_EQ(assigned.puts(L"c"), 0);
    File last(assigned);
    assigned.close();
    EXPECT_EQ(last.isOpen(), 0);
    EXPECT_EQ(last.puts(L"d"), -1);
    EXPECT_EQ(fileBytes("t"), kUtf8Mark + "abc");

    File other(L"u", L"w", File::encodeANSI);
    other = File();  // the last owner is gone
    EXPECT_EQ(other.isOpen(), 0);
    EXPECT_EQ(File::removeFile(L"u"), 0);
}

TEST_F(BryFileAccessTest, PutsAndGetsTextInItsEncoding) {
    const BryString ansi(L"Tr\x00E4ger\n"), wide(L"\x2192\x20AC \xD83D\xDE00\n");
    const struct { File::encodeType encoding; BryString text; std::string bytes; } rows[] = {
        {File::encodeANSI, ansi, "Tr\xE4ger\r\n"},
        {File::encodeANSI, L"5 \x20AC", "5 \x80"},
        {File::encodeUTF8, ansi + wide, kUtf8Mark + "Tr\xC3\xA4ger\r\n\xE2\x86\x92\xE2\x82\xAC \xF0\x9F\x98\x80\r\n"},
        {File::encodeUTF16LE, wide, kUtf16Mark + bytes("\x92\x21\xAC\x20 \0\x3D\xD8\0\xDE\r\0\n\0")},
        {File::encodeUNICODE, L"a", kUtf16Mark + bytes("a\0")},
    };
    for (const auto& row : rows) {
        EXPECT_GE(File(L"t", L"w", row.encoding).puts(row.text), 0);
        EXPECT_EQ(fileBytes("t"), row.bytes) << row.encoding;
        File file(L"t", L"r", row.encoding);
        BryString all;
        do all += file.gets(line, 200); while (!line.isEmpty());
        EXPECT_EQ(all, row.text) << row.encoding;
        EXPECT_NE(file.eof(), 0);
    }
    EXPECT_EQ(File(L"t", L"r", File::encodeANSI).puts(L"x"), -1);
}

TEST_F(BryFileAccessTest, GetsALineUpToTheCount) {
    const BryString longLine = manyOf(L"HEA200 ", 15000) + L"\n";
    for (const File::encodeType encoding : {File::encodeANSI, File::encodeUTF8, File::encodeUTF16LE}) {
        EXPECT_GE(File(L"t", L"w", encoding).puts(BryString(L"abc\nde\n\n") + longLine + L"end"), 0);
        File file(L"t", L"r", encoding);
        const struct { int maxChars; BryString expected; } rows[] = {
            {3, L"ab"},   {99, L"c\n"},   {4, L"de\n"},
            {1, L""},     {0, L""},       {-5, L""},
            {2, L"\n"},   {256, longLine.left(255)}, {257, longLine.mid(255, 256)},
            {512, longLine.mid(511, 511)}, {513, longLine.mid(1022, 512)}, {2147483647, longLine.mid(1534)},
            {512, L"end"}, {512, L""},
        };
        for (const auto& row : rows) {
            EXPECT_EQ(file.gets(line, row.maxChars), row.expected) << encoding << ' ' << row.maxChars;
            EXPECT_EQ(line, row.expected);
        }
    }
}

TEST_F(BryFileAccessTest, WritesWhatTheWideFormatSays) {
    File file(L"t", L"w", File::encodeUTF8);
    EXPECT_EQ(file.write("%s \xE4 %d\n", L"\x20AC", 5), 6);
    EXPECT_EQ(file.write(L"%S%s", "\xE4", L"b"), 2);
    EXPECT_EQ(file.write(reinterpret_cast<const unsigned short*>(L"[%04d]"), 42), 6);
    file.close();
    EXPECT_EQ(fileBytes("t"), kUtf8Mark + "\xE2\x82\xAC \xC3\xA4 5\r\n\xC3\xA4" "b[0042]");
}

TEST_F(BryFileAccessTest, MeasuresTheFileAndGoesToItsStart) {
    writeFile("t", "ab\r\ncd");
    File file(L"t", L"r", File::encodeANSI);
    EXPECT_EQ(file.getc(), L'a');
    EXPECT_EQ(file.getFileLength(), 6);
    EXPECT_EQ(file.gets(line, 100), L"ab\n");
    EXPECT_EQ(file.seek(1, 0), 0);
    EXPECT_EQ(file.getc(), L'b');
    EXPECT_EQ(file.seek(-1, 2), 0);
    EXPECT_EQ(file.getc(), L'd');
    EXPECT_EQ(file.eof(), 0);
    EXPECT_EQ(file.getc(), 65535);
    EXPECT_NE(file.eof(), 0);
    EXPECT_NE(file.seek(-1, 0), 0);

    char items[6] = "#####";
    EXPECT_EQ(file.seek(0, 0), 0);
    EXPECT_EQ(file.read(items, 2, 3), 2u);
    EXPECT_EQ(std::string(items, 4), "ab\nc");
    EXPECT_EQ(File(L"none", L"r", File::encodeANSI).getFileLength(), 0);
}

TEST_F(BryFileAccessTest, ReadsTokensAndNumbers) {
    const BryString longToken = manyOf(L"x", 300);
    const BryString text = BryString(L" -12 HEA\x20AC\t1.5e2\nfoo 7 ") + longToken + L" z";
    EXPECT_GE(File(L"t", L"w", File::encodeUTF16LE).puts(text), 0);
    File file(L"t", L"r", File::encodeUTF16LE);
    BryString token;
    int number = 7;
    double real = 7;
    EXPECT_EQ(file.readInt(number), 1);
    EXPECT_EQ(number, -12);
    EXPECT_EQ(file.readInt(number), 0);
    EXPECT_EQ(number, -12);
    EXPECT_EQ(file.readString(token), 1);
    EXPECT_EQ(token, L"HEA\x20AC");
    EXPECT_EQ(file.readDouble(real), 1);
    EXPECT_EQ(real, 150);
    EXPECT_EQ(file.readDouble(real), 0);
    EXPECT_EQ(real, 150);
    for (const BryString& expected :
         {BryString(L"foo"), BryString(L"7"), longToken.left(255), longToken.left(45), BryString(L"z")}) {
        EXPECT_EQ(file.readString(token), 1);
        EXPECT_EQ(token, expected);
    }
    EXPECT_EQ(file.readString(token), -1);
    EXPECT_EQ(token, L"z");
    EXPECT_EQ(file.readInt(number), -1);
    EXPECT_EQ(file.readDouble(real), -1);
}

TEST_F(BryFileAccessTest, ReadsAWholeFileByItsMark) {
    const struct {
        const char* when; std::string file; unsigned count; BryString binary, text; unsigned result, textResult;
    } rows[] = {
        {"empty", "", 9, L"", L"", 0, 0},
        {"one byte", "a", 9, L"a", L"a", 1, 1},
        {"half a mark", "\xFF", 9, L"\xFF", L"\xFF", 1, 1},
        {"two thirds of a mark", "\xEF\xBB", 9, L"\xEF\xBB", L"\xEF\xBB", 2, 2},
        {"8-bit", "\x80 \xE4\r\nb", 99, L"\x20AC \xE4\r\nb", L"\x20AC \xE4\nb", 6, 5},
        {"8-bit, bounded", "abc", 2, L"ab", L"ab", 2, 2},
        {"8-bit, none", "abc", 0, L"", L"", 0, 0},
        {"zero inside", bytes("a\0b"), 9, L"a", L"a", 3, 3},
        {"UTF-16", kUtf16Mark + bytes("a\0\xAC\x20"), 99, L"a\x20AC", L"a\x20AC", 2, 2},
        {"UTF-16, bounded", kUtf16Mark + bytes("a\0b\0"), 1, L"a", L"a", 1, 1},
        {"UTF-16, odd byte", kUtf16Mark + bytes("a\0b"), 9, L"a", L"a", 1, 1},
        {"UTF-16, mark alone", kUtf16Mark, 9, L"", L"", 0, 0},
        {"UTF-16 with the bytes of line end and Ctrl-Z", kUtf16Mark + bytes("\x1A\x04\r\n\r\0\n\0z\0"), 9,
         L"\x041A\x0A0D\r\nz", L"\x041A\x0A0D\r\nz", 5, 5},
        {"the other byte order", bytes("\xFE\xFF\0a\x20\xAC"), 9, L"a\x20AC", L"a\x20AC", 2, 2},
        {"UTF-8", kUtf8Mark + "\xE2\x82\xAC\r\n\xF0\x9F\x98\x80", 99, L"\x20AC\r\n\xD83D\xDE00",
         L"\x20AC\n\xD83D\xDE00", 5, 4},
        {"UTF-8, bounded", kUtf8Mark + "\xE2\x82\xAC\xE2\x82\xAC", 1, L"\x20AC", L"\x20AC", 1, 1},
        {"UTF-8, bounded in a pair", kUtf8Mark + "a\xF0\x9F\x98\x80z", 2, L"a", L"a", 1, 1},
        {"UTF-8, bounded behind a pair", kUtf8Mark + "a\xF0\x9F\x98\x80z", 3, L"a\xD83D\xDE00", L"a\xD83D\xDE00", 3, 3},
        {"UTF-8, broken", kUtf8Mark + "a\xFFz", 9, L"a\xFFFDz", L"a\xFFFDz", 3, 3},
        {"UTF-8, mark alone", kUtf8Mark, 9, L"", L"", 0, 0},
    };
    for (const auto& row : rows) {
        writeFile("t", row.file);
        BryString text(L"old");
        EXPECT_EQ(File(L"t", L"rb", File::encodeANSI).readFile(text, row.count), row.result) << row.when;
        EXPECT_EQ(text, row.binary) << row.when;
        for (const File::encodeType encoding : kEncodings) {
            text = L"old";
            EXPECT_EQ(File(L"t", L"r", encoding).readFile(text, row.count), row.textResult) << row.when << encoding;
            EXPECT_EQ(text, row.text) << row.when << encoding;
        }
    }
}

TEST_F(BryFileAccessTest, ReadsFilesLongerThanAnyBuffer) {
    const BryString text = manyOf(L"St\xFCtze ", 100000);
    for (const File::encodeType encoding : {File::encodeANSI, File::encodeUTF8, File::encodeUTF16LE}) {
        EXPECT_GE(File(L"t", L"w", encoding).puts(text), 0);
        File file(L"t", L"r", encoding);
        BryString read;
        EXPECT_EQ(file.readFile(read, static_cast<unsigned>(file.getFileLength())), 700000u) << encoding;
        EXPECT_TRUE(read == text) << encoding;
        EXPECT_EQ(file.readFile(read, 4294967295u), 700000u) << encoding;
        EXPECT_TRUE(read == text) << encoding;
    }
}

TEST_F(BryFileAccessTest, ReadsLinesAfterTheWholeFile) {
    for (const File::encodeType encoding : kEncodings) {
        EXPECT_GE(File(L"t", L"w", encoding).puts(L"\xE4\nb"), 0);
        File file(L"t", L"r", encoding);
        file.readFile(line, 1);
        EXPECT_EQ(file.seek(encoding == File::encodeANSI ? 0 : encoding == File::encodeUTF8 ? 3 : 2, 0), 0);
        EXPECT_EQ(file.gets(line, 9), L"\xE4\n") << encoding;
        EXPECT_EQ(file.gets(line, 9), L"b") << encoding;
    }
}

TEST_F(BryFileAccessTest, WorksOnFilesAndFolders) {
    EXPECT_EQ(File::makeDir(L"d"), 0);
    EXPECT_EQ(File::makeDir(L"d"), 0);
    EXPECT_EQ(File::makeDir(L"no\\d"), -1);
    writeFile("a", "");
    writeFile("b", "");
    EXPECT_NE(File::renameFile(L"a", L"b"), 0);
    EXPECT_EQ(File::renameFile(L"a", L"d\\a"), 0);
    EXPECT_EQ(File::changeWorkingDir(L"d"), 0);
    EXPECT_EQ(bryFileExists(L"a"), 1);
    EXPECT_EQ(File::changeWorkingDir(L".."), 0);
    EXPECT_EQ(File::changeWorkingDir(L"none"), -1);
    EXPECT_EQ(File::removeFile(L"d"), -1);
    EXPECT_EQ(File::removeFile(L"d\\a"), 0);
    EXPECT_EQ(File::removeFile(L"d\\a"), -1);
}

TEST_F(BryStreamsTest, MoveEightBitText) {
    FILE* stream = nullptr;
    ASSERT_EQ(bryfopen(&stream, L"t", L"w"), 0);
    EXPECT_EQ(bryfprintf(stream, "%s %d\n", "text", 5), 7);
    EXPECT_EQ(bryfprintf(stream, L"%s %S\n", L"wide", "narrow"), 12);
    EXPECT_GE(bryfputs("end", stream), 0);
    EXPECT_EQ(bryfclose(stream), 0);
    EXPECT_EQ(fileBytes("t"), "text 5\r\nwide narrow\r\nend");

    ASSERT_EQ(bryfopen(&stream, L"t", L"r"), 0);
    char buffer[32];
    EXPECT_STREQ(bryfgets(buffer, sizeof buffer, stream), "text 5\n");
    EXPECT_EQ(bryfread(buffer, 6, 9, stream), 2u);
    EXPECT_EQ(std::string(buffer, 12), "wide narrow\n");
    EXPECT_NE(bryfeof(stream), 0);
    EXPECT_EQ(bryfgets(buffer, sizeof buffer, stream), nullptr);
    EXPECT_EQ(bryfclose(stream), 0);
    EXPECT_EQ(bryfopen(&stream, L"none", L"r"), 2);
    EXPECT_EQ(stream, nullptr);
}

TEST_F(BryStreamsTest, ExistAsFileFolderOrPattern) {
    std::filesystem::create_directory("d");
    writeFile("d/a.txt", "");
    const struct { const wchar_t* path; int expected; } rows[] = {
        {L"d", 1}, {L"d\\a.txt", 1}, {L"d\\A.TXT", 1}, {L"d\\*.txt", 1}, {L"d\\?.txt", 1}, {L"*", 1},
        {L"none", 0}, {L"d\\none", 0}, {L"d\\*.doc", 0}, {L"none\\*", 0}, {L"*\\a.txt", 0}, {L"", 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(bryFileExists(row.path), row.expected) << testing::PrintToString(BryString(row.path));
}

}  // namespace
