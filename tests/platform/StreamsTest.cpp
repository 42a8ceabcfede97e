// The streams of the C runtime: line ends, marks, encodings, positions; files and folders as a whole.
#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Units = std::u16string;

class Streams : public testing::Test {
protected:
    TempFolder folder;
};

const std::string kUtf8Mark = "\xEF\xBB\xBF", kUtf16Mark = "\xFF\xFE";

std::FILE* open(const char* mode, const wchar_t* name = L"t.txt") {
    const std::vector<wchar_t> wide(mode, mode + std::strlen(mode) + 1);
    std::FILE* stream = nullptr;
    EXPECT_EQ(_wfopen_s(&stream, name, wide.data()), 0) << mode;
    return stream;
}

int openError(const wchar_t* name, const wchar_t* mode) {
    std::FILE* stream = nullptr;
    const int error = _wfopen_s(&stream, name, mode);
    if (stream != nullptr) crt::fclose(stream);
    return error;
}

// All that one character after the other gives.
Units unitsOf(std::FILE* stream) {
    Units units;
    for (unsigned short unit; (unit = crt::fgetwc(stream)) != 0xFFFF;) units += static_cast<char16_t>(unit);
    return units;
}

// All that lines read through a buffer of the given size give; "|" ends each of them.
Units linesOf(std::FILE* stream, int size) {
    Units units;
    std::vector<wchar_t> line(static_cast<std::size_t>(size));
    while (crt::fgetws(line.data(), size, stream) != nullptr) {
        for (const wchar_t* at = line.data(); *at != 0; ++at) units += static_cast<char16_t>(*at);
        units += u'|';
    }
    return units;
}

std::string narrowLinesOf(std::FILE* stream, int size) {
    std::string text;
    std::vector<char> line(static_cast<std::size_t>(size));
    while (crt::fgets(line.data(), size, stream) != nullptr) text += line.data() + std::string("|");
    return text;
}

std::string blockOf(std::FILE* stream, std::size_t size) {
    std::string block(size, '#');
    block.resize(crt::fread(block.data(), 1, size, stream));
    return block;
}

TEST_F(Streams, GiveTheCharactersOfTheFile) {
    const struct { const char* when; const char* mode; std::string file; Units expected; } rows[] = {
        // line ends and the end
        {"a lone CR, CR CR LF, CR at the end", "r", "a\rb\r\r\nc\r\nd\ne\r", u"a\rb\r\nc\nd\ne\r"},
        {"Ctrl-Z ends text", "r", "a\x1A" "b", u"a"},
        {"Ctrl-Z behind CR", "r", "a\r\x1A" "b", u"a\r"},
        {"Ctrl-Z ends UTF-8 text", "r, ccs=UTF-8", "a\x1A" "b", u"a"},
        {"a Ctrl-Z of 16 bits", "r, ccs=UTF-16LE", bytes("a\0\r\0\x1A\0b\0"), u"a\r"},
        {"low bytes of Ctrl-Z, CR, LF", "r, ccs=UTF-16LE", bytes("\x1A\4\r\4\n\4"), u"\x041A\x040D\x040A"},
        {"line ends of 16 bits", "r, ccs=UTF-16LE", bytes("\r\0\r\0\n\0\r\0"), u"\r\n\r"},
        {"bytes are units of the same number", "r", "\x80\xE4\xFF", u"\x80\xE4\xFF"},
        {"binary moves units, an odd byte is none", "rb", bytes("a\0\x1A\0\r\0\n\0\x3D\xD8z"), u"a\x1A\r\n\xD83D"},
        // marks
        {"of the encoding asked for", "r, ccs=UTF-8", kUtf8Mark + "\xC3\xA4", u"ä"},
        {"wins over UTF-8", "r, ccs=UTF-8", kUtf16Mark + bytes("\xE4\0"), u"ä"},
        {"wins over UTF-16LE", "r, ccs=UTF-16LE", kUtf8Mark + "\xC3\xA4", u"ä"},
        {"decides for UNICODE", "r, ccs=UNICODE", kUtf8Mark + "\xC3\xA4", u"ä"},
        {"none with UNICODE is 8-bit", "r, ccs=UNICODE", "\xC3\xA4", u"\xC3\xA4"},
        {"none with UTF-16LE", "r, ccs=UTF-16LE", bytes("\xE4\0z"), u"ä"},
        {"alone", "r, ccs=UTF-8", kUtf8Mark, u""},
        {"half a mark", "r, ccs=UTF-8", "\xEF\xBB", u"\xFFFD"},
        {"half a UTF-16 mark", "r, ccs=UNICODE", "\xFF", u"\xFF"},
        {"a second one is text", "r, ccs=UTF-8", kUtf8Mark + kUtf8Mark, u"\xFEFF"},
        {"behind the start is text", "r, ccs=UTF-8", "a" + kUtf8Mark, u"a\xFEFF"},
        {"the other byte order is none", "r, ccs=UTF-16LE", bytes("\xFE\xFF\0a"), u"\xFFFE\x6100"},
        {"is text without an encoding", "r", kUtf16Mark, u"\xFF\xFE"},
        {"empty file", "r, ccs=UTF-8", "", u""},
        // UTF-8 and what is none
        {"stray trail", "r, ccs=UTF-8", "\x80z", u"\xFFFDz"},
        {"lead of a too long form", "r, ccs=UTF-8", "\xC0\x80z", u"\xFFFD\xFFFDz"},
        {"broken off by text", "r, ccs=UTF-8", "\xE2\x82z", u"\xFFFDz"},
        {"broken off by the end", "r, ccs=UTF-8", "z\xF0\x9F\x98", u"z\xFFFD"},
        {"broken off by a line end", "r, ccs=UTF-8", "\xE2\x82\r\nz", u"\xFFFD\nz"},
        {"surrogate", "r, ccs=UTF-8", "\xED\xA0\x80z", u"\xFFFD\xFFFDz"},
        {"too long, 3 bytes", "r, ccs=UTF-8", "\xE0\x80\xAFz", u"\xFFFD\xFFFDz"},
        {"too long, 4 bytes", "r, ccs=UTF-8", "\xF0\x80\x80\x80z", u"\xFFFD\xFFFD\xFFFDz"},
        {"beyond U+10FFFF", "r, ccs=UTF-8", "\xF4\x90\x80\x80z", u"\xFFFD\xFFFD\xFFFDz"},
        {"no lead at all", "r, ccs=UTF-8", "\xF8\x88z\xFF", u"\xFFFD\xFFFDz\xFFFD"},
        {"both ends of 2, 3 and 4 bytes", "r, ccs=UTF-8",
                "\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
                u"\x80\x7FF\x800\xD7FF\xE000\xD800\xDC00\xDBFF\xDFFF"},
    };
    for (const auto& row : rows) {
        writeFile("t.txt", row.file);
        std::FILE* stream = open(row.mode);
        EXPECT_EQ(unitsOf(stream), row.expected) << row.when;
        EXPECT_NE(crt::feof(stream), 0) << row.when;
        crt::fclose(stream);
        if (row.expected.find(u'\n') != Units::npos) continue;
        stream = open(row.mode);  // without a line feed, whole buffers give the same
        EXPECT_EQ(linesOf(stream, 100), row.expected.empty() ? Units() : row.expected + u'|') << row.when;
        crt::fclose(stream);
    }
}

TEST_F(Streams, WriteWideTextAsTheModeAsks) {
    const std::string whole = "\xF0\x9F\x98\x80";
    const struct {
        const char* when; const char* mode; std::string before; const wchar_t *first, *second; std::string expected;
    } rows[] = {
        {"CR LF for LF, behind a CR too", "w", "", L"a\n\r\n", L"\xFF", "a\r\n\r\r\n\xFF"},
        {"binary", "wb", "", L"a\n", L"\xD83D", bytes("a\0\n\0\x3D\xD8")},
        {"UTF-8", "w, ccs=UTF-8", "old", L"\xE4\n", L"\x20AC", kUtf8Mark + "\xC3\xA4\r\n\xE2\x82\xAC"},
        {"UTF-16LE", "w, ccs=UTF-16LE", "", L"a\n", L"\x20AC", kUtf16Mark + bytes("a\0\r\0\n\0\xAC\x20")},
        {"UNICODE", "w, ccs=UNICODE", "", L"a", L"", kUtf16Mark + bytes("a\0")},
        {"a pair", "w, ccs=UTF-8", "", L"\xD83D\xDE00", L"x", kUtf8Mark + whole + "x"},
        {"a pair in two parts", "w, ccs=UTF-8", "", L"a\xD83D", L"\xDE00z", kUtf8Mark + "a" + whole + "z"},
        {"half pairs", "w, ccs=UTF-8", "", L"\xDE00\xD83D\n", L"\xD83D",
         kUtf8Mark + "\xEF\xBF\xBD\xEF\xBF\xBD\r\n\xEF\xBF\xBD"},
        {"the mark of a new file", "w, ccs=UTF-8", "", L"", L"", kUtf8Mark},
        {"the mark of an empty file", "a, ccs=UNICODE", "", L"", L"a", kUtf16Mark + bytes("a\0")},
        {"the mark of an empty file to change", "r+, ccs=UTF-8", "", L"", L"a", kUtf8Mark + "a"},
        {"the mark of a new binary file", "wb, ccs=UTF-8", "", L"a", L"", kUtf8Mark + bytes("a\0")},
        {"no encoding, no mark", "a", "", L"a", L"", "a"},
        {"append in UTF-8", "a, ccs=UTF-8", kUtf8Mark + "x", L"\xE4", L"", kUtf8Mark + "x\xC3\xA4"},
        {"append to UTF-16 as UTF-8", "a, ccs=UTF-8", kUtf16Mark + bytes("x\0"), L"\xE4", L"\n",
         kUtf16Mark + bytes("x\0\xE4\0\r\0\n\0")},
        {"append to UTF-8 as UNICODE", "a, ccs=UNICODE", kUtf8Mark, L"\xE4", L"", kUtf8Mark + "\xC3\xA4"},
        {"append to 8-bit as UNICODE", "a, ccs=UNICODE", "x", L"\xE4", L"\n", "x\xE4\r\n"},
        {"append to 8-bit as UTF-8", "a+, ccs=UTF-8", "x", L"\xE4", L"", "x\xC3\xA4"},
        {"append behind Ctrl-Z", "a", "x\x1A", L"y", L"", "x\x1Ay"},
    };
    for (const auto& row : rows) {
        writeFile("t.txt", row.before);
        std::FILE* stream = open(row.mode);
        EXPECT_GE(crt::fputws(row.first, stream), 0) << row.when;
        EXPECT_GE(crt::fputws(row.second, stream), 0) << row.when;
        EXPECT_EQ(crt::fclose(stream), 0) << row.when;
        EXPECT_EQ(fileBytes("t.txt"), row.expected) << row.when;
    }
}

TEST_F(Streams, WriteTheMarkAtOpening) {
    std::FILE* stream = open("w, ccs=UTF-16LE");
    EXPECT_EQ(fileBytes("t.txt"), kUtf16Mark);
    crt::fclose(stream);
}

TEST_F(Streams, SkipTheMarkAtOpeningOnly) {
    writeFile("t.txt", kUtf8Mark + "a");
    std::FILE* stream = open("r, ccs=UTF-8");
    EXPECT_EQ(crt::fgetwc(stream), L'a');
    EXPECT_EQ(crt::fseek(stream, 0, SEEK_SET), 0);
    EXPECT_EQ(unitsOf(stream), u"\xFEFF" u"a");
    crt::fclose(stream);
}

TEST_F(Streams, MoveEightBitTextWithItsLineEnds) {
    std::FILE* stream = open("w");
    EXPECT_GE(crt::fputs("a\n\r\n\xE4", stream), 0);
    EXPECT_GE(crt::fputs("", stream), 0);
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), "a\r\n\r\r\n\xE4");

    stream = open("r");
    EXPECT_EQ(narrowLinesOf(stream, 100), "a\n|\r\n|\xE4|");
    EXPECT_EQ(crt::fseek(stream, 0, SEEK_SET), 0);
    EXPECT_EQ(blockOf(stream, 100), "a\n\r\n\xE4");
    crt::fclose(stream);

    stream = open("rb");
    EXPECT_EQ(narrowLinesOf(stream, 100), "a\r\n|\r\r\n|\xE4|");
    crt::fclose(stream);
}

TEST_F(Streams, EndABlockAtCtrlZUntilTheNextSeek) {
    writeFile("t.txt", "a\r\n\x1A" "b\r\nc");
    std::FILE* stream = open("r");
    char items[8] = "#######";
    EXPECT_EQ(crt::fread(items, 2, 3, stream), 1u);
    EXPECT_EQ(std::string(items, 2), "a\n");
    EXPECT_NE(crt::feof(stream), 0);
    EXPECT_EQ(blockOf(stream, 8), "");
    EXPECT_EQ(crt::fseek(stream, 4, SEEK_SET), 0);
    EXPECT_EQ(crt::feof(stream), 0);
    EXPECT_EQ(blockOf(stream, 8), "b\nc");
    crt::fclose(stream);
}

TEST_F(Streams, CutLinesAtTheBufferAndGoOnBehind) {
    writeFile("t.txt", "abcdef\r\ng");
    for (const auto& [size, expected] : {std::pair{4, u"abc|def|\n|g|"}, {7, u"abcdef|\n|g|"}, {8, u"abcdef\n|g|"}}) {
        std::FILE* stream = open("r");
        EXPECT_EQ(linesOf(stream, size), expected) << size;
        EXPECT_EQ(crt::fseek(stream, 0, SEEK_SET), 0);
        const std::string narrow = narrowLinesOf(stream, size);
        EXPECT_EQ(Units(narrow.begin(), narrow.end()), expected) << size;
        crt::fclose(stream);
    }
}

TEST_F(Streams, GiveBothHalvesOfAPairThatTheBufferCuts) {
    writeFile("t.txt", "a\xF0\x9F\x98\x80z");
    std::FILE* stream = open("r, ccs=UTF-8");
    EXPECT_EQ(linesOf(stream, 3), u"a\xD83D|\xDE00z|");
    crt::fclose(stream);
}

TEST_F(Streams, LeaveTheBufferAloneWhereNothingIsRead) {
    writeFile("t.txt", "a");
    std::FILE* stream = open("r");
    wchar_t wide[2] = {L'#', L'#'};
    char narrow[2] = {'#', '#'};
    EXPECT_EQ(crt::fgetws(wide, 1, stream), nullptr);
    EXPECT_EQ(crt::fgets(narrow, 1, stream), nullptr);
    EXPECT_EQ(crt::fgets(narrow, 0, stream), nullptr);
    EXPECT_EQ(blockOf(stream, 1), "a");
    EXPECT_EQ(crt::feof(stream), 0);  // reading exactly all has not met the end
    EXPECT_EQ(crt::fgetws(wide, 2, stream), nullptr);
    EXPECT_EQ(crt::fgets(narrow, 2, stream), nullptr);
    EXPECT_NE(crt::feof(stream), 0);
    EXPECT_EQ(wide[0], L'#');
    EXPECT_EQ(narrow[0], '#');
    crt::fclose(stream);
}

TEST_F(Streams, SeekToBytesOfTheFile) {
    writeFile("t.txt", "ab\r\ncd\r\n");
    std::FILE* stream = open("r");
    EXPECT_EQ(crt::fseek(stream, 0, SEEK_END), 0);
    EXPECT_EQ(crt::ftell(stream), 8);
    EXPECT_EQ(crt::fseek(stream, 4, SEEK_SET), 0);
    EXPECT_EQ(crt::ftell(stream), 4);
    EXPECT_EQ(crt::fgetwc(stream), L'c');
    EXPECT_EQ(crt::fseek(stream, -3, SEEK_END), 0);
    EXPECT_EQ(unitsOf(stream), u"d\n");
    EXPECT_NE(crt::fseek(stream, -1, SEEK_SET), 0);
    EXPECT_NE(crt::fseek(stream, 0, 3), 0);
    crt::fclose(stream);

    stream = open("r+");
    EXPECT_EQ(crt::fseek(stream, 10, SEEK_SET), 0);  // beyond the end
    EXPECT_GE(crt::fputs("e", stream), 0);
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), bytes("ab\r\ncd\r\n\0\0e"));
}

TEST_F(Streams, ReadAndWriteByTurns) {
    writeFile("t.txt", "abc\r\ndef\r\nghi\r\n");
    std::FILE* stream = open("r+");
    char line[16];
    EXPECT_STREQ(crt::fgets(line, sizeof line, stream), "abc\n");
    EXPECT_EQ(crt::fseek(stream, 0, SEEK_CUR), 0);
    EXPECT_GE(crt::fputs("X\n", stream), 0);
    EXPECT_EQ(crt::fseek(stream, 0, SEEK_CUR), 0);
    EXPECT_EQ(unitsOf(stream), u"\nghi\n");
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), "abc\r\nX\r\n\r\nghi\r\n");

    stream = open("a+");
    EXPECT_EQ(crt::fgetwc(stream), L'a');
    EXPECT_EQ(crt::fseek(stream, 1, SEEK_SET), 0);
    EXPECT_GE(crt::fputws(L"end", stream), 0);
    EXPECT_EQ(crt::fseek(stream, 1, SEEK_SET), 0);
    EXPECT_EQ(crt::fgetwc(stream), L'b');
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), "abc\r\nX\r\n\r\nghi\r\nend");
}

TEST_F(Streams, RefuseTheWrongDirection) {
    writeFile("t.txt", "a");
    std::FILE* stream = open("r");
    EXPECT_EQ(crt::fputs("x", stream), -1);
    EXPECT_EQ(crt::fputws(L"x", stream), underWine() ? 0xFFFF : -1);  // Wine passes on the end mark of wide characters
    crt::fclose(stream);
    stream = open("w");
    EXPECT_EQ(crt::fgetwc(stream), 0xFFFF);
    EXPECT_EQ(blockOf(stream, 1), "");
    crt::fclose(stream);
}

TEST_F(Streams, HaveTheCharacterBehindANumberNext) {
    const struct { const char* mode; std::string file; } rows[] = {
        {"r", "12\n\xE4"}, {"r", "12\r\n\xE4"}, {"r, ccs=UTF-8", "12\xC3\xA4z"}, {"r, ccs=UTF-8", "12\xE2\x82\xACz"},
        {"r, ccs=UTF-8", "12\xF0\x9F\x98\x80z"}, {"r, ccs=UTF-16LE", bytes("1\0002\0\xAC\x20z\0")},
        {"r, ccs=UTF-16LE", bytes("1\0002\0\r\0\n\0z\0")},
    };
    for (const auto& row : rows) {
        writeFile("t.txt", row.file);
        std::FILE* stream = open(row.mode);
        const Units rest = unitsOf(stream).substr(2);
        EXPECT_EQ(crt::fseek(stream, 0, SEEK_SET), 0);
        int number = 0;
        EXPECT_EQ(fwscanf_s(stream, L"%d", &number), 1) << row.file;
        EXPECT_EQ(number, 12);
        EXPECT_EQ(unitsOf(stream), rest) << row.mode << ' ' << testing::PrintToString(row.file);
        crt::fclose(stream);
    }
}

TEST_F(Streams, TakeTheModesOfTheRuntime) {
    const struct { const wchar_t* mode; int error; const char16_t* read; } rows[] = {
        {L"r", 0, u"\xC3\xA4\n"},       {L" r", 0, u"\xC3\xA4\n"},  {L"rt", 0, u"\xC3\xA4\n"},
        {L"rw", 0, u"\xC3\xA4\n"},      {L"r+", 0, u"\xC3\xA4\n"},  {L"rb", 0, u"\xA4C3\x0A0D"},
        {L"rb+", 0, u"\xA4C3\x0A0D"},   {L"r+b", 0, u"\xA4C3\x0A0D"}, {L"rt, ccs=UTF-8", 0, u"ä\n"},
        {L"r,ccs=UTF-8", 0, u"ä\n"},    {L"r, ccs=utf-8 ", 0, u"ä\n"}, {L"r,  ccs = UTF-8", 0, u"ä\n"},
        {L"r, ccs=UTF-16LE", 0, u"\xA4C3\x0A0D"}, {L"r, ccs=UNICODE", 0, u"\xC3\xA4\n"},
        {L"", 22, u""},                 {L"x", 22, u""},            {L"b", 22, u""},
        {L"+r", 22, u""},               {L"r,", 22, u""},           {L"r, ccs=", 22, u""},
        {L"r, ccs=UTF-8x", 22, u""},    {L"r, ccs=UTF8", 22, u""},  {L"r, CCS=UTF-8", 22, u""},
        {L"r, ccs=UTF-16", 22, u""},    {nullptr, 22, u""},
    };
    for (const auto& row : rows) {
        writeFile("t.txt", "\xC3\xA4\r\n");
        std::FILE* stream = nullptr;
        std::string shown;
        for (const wchar_t* at = row.mode; at != nullptr && *at != 0; ++at) shown += static_cast<char>(*at);
        ASSERT_EQ(_wfopen_s(&stream, L"t.txt", row.mode), row.error) << shown;
        ASSERT_EQ(stream != nullptr, row.error == 0) << shown;
        if (stream == nullptr) continue;
        EXPECT_EQ(unitsOf(stream), row.read) << shown;
        crt::fclose(stream);
    }
}

TEST_F(Streams, NameTheReasonAFileDoesNotOpen) {
    std::filesystem::create_directory("d");
    writeFile("f", "");
    const std::vector<wchar_t> longName = [] {
        std::vector<wchar_t> name(301, L'n');
        name.back() = 0;
        return name;
    }();
    const struct { const wchar_t* name; int reading, writing; } rows[] = {
        {L"none", 2, 0},     {L"", 2, 2},       {L"no\\f", 2, 2},  {L"no/f", 2, 2},    {L"f\\x", 2, 2}, {L"d", 13, 13},
        {L".", 13, 13},      {L"a*", 22, 22},   {L"a?", 22, 22},   {L"a<b", 22, 22},   {L"a|b", 22, 22},
        {L"a\"b", 22, 22},  {L"a\x01", 22, 22},  {L"*\\x", 22, 22}, {longName.data(), 2, 2},
        {L"q:\\none", 2, 2}, {nullptr, 22, 22},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(openError(rows[i].name, L"r"), rows[i].reading) << "row " << i;
        EXPECT_EQ(openError(rows[i].name, L"w"), rows[i].writing) << "row " << i;
        EXPECT_EQ(openError(rows[i].name, L"a, ccs=UTF-8"), rows[i].writing) << "row " << i;
    }
    auto* const marker = reinterpret_cast<std::FILE*>(&folder);
    std::FILE* stream = marker;
    EXPECT_EQ(_wfopen_s(&stream, L"no\\f", L"r"), 2);
    EXPECT_EQ(stream, nullptr);
    stream = marker;
    EXPECT_EQ(_wfopen_s(&stream, nullptr, L"r"), 22);
    EXPECT_EQ(stream, marker);
}

TEST_F(Streams, TakeBothSeparatorsAndDropPointsAtTheEnd) {
    std::filesystem::create_directories("d/e");
    for (const wchar_t* name : {L"d\\e\\f", L"d/e\\g", L".\\d\\..\\d/e\\\\h", L"d\\e\\i. ."})
        EXPECT_EQ(openError(name, L"w"), 0);
    for (const char* name : {"d/e/f", "d/e/g", "d/e/h", "d/e/i"}) EXPECT_TRUE(std::filesystem::exists(name)) << name;
}

// ---- files and folders as a whole ----------------------------------------------------------------------------------

struct Call {
    const char* what;
    int result, error;
    int expectedError;
};

template <class Operation, class... Names>
Call call(const char* what, int expectedError, Operation operation, Names... names) {
    errno = 0;
    const int result = operation(names...);
    return {what, result, errno, expectedError};
}

void check(const Call& made) {
    EXPECT_EQ(made.result, made.expectedError == 0 ? 0 : -1) << made.what;
    if (made.result != 0) {
        EXPECT_EQ(made.error, made.expectedError) << made.what;
    }
}

TEST_F(Streams, FoldersAreMadeAndRemoved) {
    writeFile("f", "x");
    check(call("make", 0, _wmkdir, L"d"));
    check(call("make again", 17, _wmkdir, L"d"));
    check(call("make again, slash", 17, _wmkdir, L"d\\"));
    check(call("make, slash", 0, _wmkdir, L"e\\"));
    check(call("make in a missing one", 2, _wmkdir, L"no\\e"));
    check(call("make where a file is", 17, _wmkdir, L"f"));
    check(call("make the empty name", 2, _wmkdir, L""));
    check(call("make a wildcard", 22, _wmkdir, L"a*b"));
    check(call("remove as a file", 13, _wremove, L"d"));
    check(call("enter", 0, _wchdir, L"d"));
    check(call("leave", 0, _wchdir, L"..\\"));
    check(call("enter a file", 22, _wchdir, L"f"));
    check(call("enter a missing one", 2, _wchdir, L"none"));
    writeFile("d/x", "");
    check(call("remove a full one", 41, _wrmdir, L"d"));
    check(call("remove a missing file", 2, _wremove, L"d\\none"));
    check(call("remove a wildcard", 22, _wremove, L"d\\*"));
    check(call("remove a file", 0, _wremove, L"d\\x"));
    check(call("remove", 0, _wrmdir, L"d"));
    check(call("remove a missing one", 2, _wrmdir, L"d"));
    check(call("remove a file as a folder", 22, _wrmdir, L"f"));
    EXPECT_FALSE(std::filesystem::exists("d"));
}

TEST_F(Streams, RenamingNeverReplaces) {
    writeFile("a", "a");
    writeFile("b", "b");
    std::filesystem::create_directories("d");
    std::filesystem::create_directories("e");
    check(call("onto a file", 17, _wrename, L"a", L"b"));
    check(call("onto a folder", 17, _wrename, L"a", L"d"));
    check(call("a folder onto an empty one", 17, _wrename, L"d", L"e"));
    check(call("onto itself", 0, _wrename, L"a", L".\\a"));
    check(call("a missing one", 2, _wrename, L"none", L"x"));
    check(call("into a missing folder", 2, _wrename, L"a", L"no\\a"));
    check(call("a folder into itself", 22, _wrename, L"d", L"d\\x"));
    check(call("to a wildcard", 22, _wrename, L"a", L"a*"));
    check(call("into a folder", 0, _wrename, L"a", L"d\\a2"));
    check(call("a folder", 0, _wrename, L"d", L"d2"));
    EXPECT_EQ(fileBytes("d2/a2"), "a");
    EXPECT_EQ(fileBytes("b"), "b");
}

// ---- where this layer has an answer of its own ---------------------------------------------------------------------

// What Windows loses, refuses or leaves undefined, and what this library's own layer does about it.
class StreamsOfTheLayer : public Streams {
    void SetUp() override {
        if (onWindows) GTEST_SKIP() << "the system's own runtime";
    }
};

TEST_F(StreamsOfTheLayer, WriteAQuestionMarkForWhatEightBitsLack) {
    std::FILE* stream = open("w");
    EXPECT_GE(crt::fputws(L"a\x20AC\xD83D\xDE00z\n", stream), 0);
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), "a???z\r\n");
}

TEST_F(StreamsOfTheLayer, ConvertEightBitTextOnAStreamWithAnEncoding) {
    std::FILE* stream = open("w, ccs=UTF-8");
    EXPECT_GE(crt::fputs("\x80 4\n", stream), 0);
    EXPECT_GE(crt::fputws(L"\x2192\xE4", stream), 0);
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), kUtf8Mark + "\xE2\x82\xAC 4\r\n\xE2\x86\x92\xC3\xA4");

    stream = open("r, ccs=UTF-8");
    EXPECT_EQ(narrowLinesOf(stream, 4), "\x80 4|\n|?\xE4|");
    EXPECT_EQ(crt::fseek(stream, 3, SEEK_SET), 0);
    EXPECT_EQ(blockOf(stream, 5), bytes("\xAC\x20 \0"));  // whole units only
    crt::fclose(stream);
}

TEST_F(StreamsOfTheLayer, ReportAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    const std::vector<wchar_t> name{L'/', L'd', L'e', L'v', L'/', L'f', L'u', L'l', L'l', 0};
    for (const char* mode : {"w", "wb", "w, ccs=UTF-8"}) {
        std::FILE* stream = open(mode, name.data());
        EXPECT_GE(crt::fputws(L"few", stream), 0) << mode;  // still in the buffer
        EXPECT_EQ(crt::fclose(stream), -1) << mode;
        EXPECT_EQ(errno, 28) << mode;
        stream = open(mode, name.data());
        EXPECT_EQ(crt::fputs(std::string(1 << 20, 'x').c_str(), stream), -1) << mode;
        EXPECT_EQ(errno, 28) << mode;
        crt::fclose(stream);
    }
}

TEST_F(StreamsOfTheLayer, LeaveForeignStreamsUntranslated) {
    std::FILE* stream = std::fopen("t.txt", "w+");
    EXPECT_GE(crt::fputws(L"a\n\xE4", stream), 0);
    EXPECT_GE(crt::fputs("\r\n\x1A", stream), 0);
    EXPECT_EQ(crt::fseek(stream, 0, SEEK_SET), 0);
    EXPECT_EQ(unitsOf(stream), u"a\n\xE4\r\n\x1A");
    crt::fclose(stream);
}

TEST_F(StreamsOfTheLayer, AnswerANullStreamWithFailure) {
    std::FILE* volatile none = nullptr;  // so that no compiler sees it coming
    char buffer[2];
    EXPECT_EQ(crt::fclose(none), -1);
    EXPECT_EQ(crt::fputs("x", none), -1);
    EXPECT_EQ(crt::fgets(buffer, 2, none), nullptr);
    EXPECT_EQ(crt::fgetwc(none), 0xFFFF);
    EXPECT_EQ(crt::fread(buffer, 1, 2, none), 0u);
    EXPECT_EQ(errno, 22);
}

TEST_F(StreamsOfTheLayer, TurnBetweenReadingAndWritingWithoutASeek) {
    writeFile("t.txt", "abc\r\ndef");
    std::FILE* stream = open("r+");
    EXPECT_EQ(crt::fgetwc(stream), L'a');
    EXPECT_GE(crt::fputs("X", stream), 0);
    EXPECT_EQ(crt::fgetwc(stream), L'c');
    crt::fclose(stream);
    EXPECT_EQ(fileBytes("t.txt"), "aXc\r\ndef");
}

TEST_F(StreamsOfTheLayer, MakeAFileOnlyOnceWithX) {
    EXPECT_EQ(openError(L"new", L"wx"), 0);
    EXPECT_EQ(openError(L"new", L"wx"), 17);
}

TEST_F(StreamsOfTheLayer, FindDrivesInTheirFolders) {
    const std::string drive = folder.path().string() + "/some/c";
    setEnvironment("KELROOTS_DRIVE_C", drive.c_str());
    setEnvironment("KELROOTS_DRIVE_Q", (folder.path().string() + "/none").c_str());
    EXPECT_EQ(openError(L"c:\\norrab.log", L"r"), 2);
    EXPECT_FALSE(std::filesystem::exists(drive));  // looking makes nothing
    EXPECT_EQ(openError(L"c:\\norrab.log", L"a"), 0);
    EXPECT_EQ(openError(L"C:sub.log", L"w"), 0);
    EXPECT_EQ(openError(L"\\\\?\\c:\\long.log", L"w"), 0);
    EXPECT_EQ(openError(L"q:\\norrab.log", L"a"), 2);
    for (const char* name : {"/norrab.log", "/sub.log", "/long.log"})
        EXPECT_TRUE(std::filesystem::exists(drive + name)) << name;
    check(call("enter the drive", 0, _wchdir, L"c:\\"));
    EXPECT_EQ(openError(L"norrab.log", L"r"), 0);
}

TEST_F(StreamsOfTheLayer, MoveAFileToAnotherFileSystem) {
    const std::string other = "/dev/shm/kelroots-moved";
    writeFile("t.txt", "content");
    std::error_code error;
    std::filesystem::rename("t.txt", other, error);
    if (error != std::errc::cross_device_link) GTEST_SKIP() << "no second file system";
    const std::vector<wchar_t> to(other.c_str(), other.c_str() + other.size() + 1);
    check(call("move", 0, _wrename, L"t.txt", to.data()));
    EXPECT_EQ(fileBytes(other), "content");
    EXPECT_FALSE(std::filesystem::exists("t.txt"));
    writeFile("t.txt", "later");
    check(call("move onto a file", 17, _wrename, L"t.txt", to.data()));
    EXPECT_EQ(fileBytes(other), "content");
    std::filesystem::remove(other);
}

}  // namespace
