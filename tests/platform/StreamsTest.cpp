// The streams of the C runtime: line ends, marks, encodings, positions; files and folders as a whole.
#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>
#include <tests/support/Units.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {

using Text = std::u16string;

const std::string kUtf8Mark = "\xEF\xBB\xBF", kUtf16Mark = "\xFF\xFE";

class Streams : public testing::Test {
protected:
    TempFolder folder;
};

std::FILE* open(const char* mode, const std::string& name = "t.txt", int expectedError = 0) {
    std::FILE* stream = nullptr;
    EXPECT_EQ(_wfopen_s(&stream, units<wchar_t>(name).data(), units<wchar_t>(mode).data()), expectedError)
        << name << mode;
    EXPECT_EQ(stream != nullptr, expectedError == 0) << name << mode;
    return stream;
}

void openAndClose(const char* mode, const std::string& name, int expectedError) {
    if (std::FILE* const stream = open(mode, name, expectedError)) crt::fclose(stream);
}

// The line that a buffer of the given size takes. Where nothing is read, the buffer stays as it is.
template <class Unit>
Text lineOf(std::FILE* stream, int size, Unit* (*read)(Unit*, int, std::FILE*)) {
    std::vector<Unit> line(static_cast<std::size_t>(size) + 1, Unit('#'));
    const bool got = read(line.data(), size, stream) != nullptr;
    EXPECT_TRUE(got || line[0] == Unit('#'));
    Text all;
    for (const Unit* at = line.data(); got && *at != 0; ++at)
        all += static_cast<char16_t>(*at & (sizeof *at == 1 ? 0xFF : 0xFFFF));
    return all;
}

// What a stream answers to a step: the characters read, "!" for a failure, nothing for what is merely done.
//   get, rest           one character, all of them              block n         as many bytes
//   line n, line8 n     a line, for a buffer of that size       number          one that is scanned
//   lines n, lines8 n   all lines through such a buffer         to, by, end n   the position is set
//   put, put8 text      wide or 8-bit text is written           tell            as many dots as the position says
Text answerOf(std::FILE* stream, const Text& step) {
    const std::size_t blank = std::min(step.find(u' '), step.size() - 1);
    const Text verb = step.substr(0, step.find(u' ')), text = step.substr(blank + 1);
    const std::string bytes(text.begin(), text.end());
    int n = std::atoi(bytes.c_str());
    if (verb == u"get") return lineOf(stream, 2, crt::fgetws);
    if (verb == u"line") return lineOf(stream, n, crt::fgetws);
    if (verb == u"line8") return lineOf(stream, n, crt::fgets);
    if (verb == u"lines" || verb == u"lines8") {
        const Text line = answerOf(stream, (verb == u"lines" ? u"line " : u"line8 ") + text);
        return line.empty() ? line : line + answerOf(stream, step);
    }
    if (verb == u"tell") return Text(static_cast<std::size_t>(crt::ftell(stream)), u'.');
    if (verb == u"number") return fwscanf_s(stream, L"%d", &n) == 1 && n == 12 ? u"12" : u"!";
    if (verb == u"block") {
        std::vector<unsigned char> block(static_cast<std::size_t>(n));
        return Text(block.data(), block.data() + crt::fread(block.data(), 1, block.size(), stream));
    }
    if (verb == u"rest") {
        Text all;
        for (unsigned short unit; (unit = crt::fgetwc(stream)) != 0xFFFF;) all += static_cast<char16_t>(unit);
        return all;
    }
    const std::vector<wchar_t> wide(text.c_str(), text.c_str() + text.size() + 1);
    const int origin = verb == u"to" ? SEEK_SET : verb == u"by" ? SEEK_CUR : verb == u"end" ? SEEK_END : 3;
    const int result = verb == u"put"    ? crt::fputws(wide.data(), stream)
                       : verb == u"put8" ? crt::fputs(bytes.c_str(), stream)
                                         : crt::fseek(stream, n, origin);
    return result < 0 || result == 0xFFFF ? u"!" : u"";  // Wine answers with the end mark of characters
}

struct Session {
    const char* mode;
    std::string before;
    std::vector<Text> steps;
    Text answers;  // behind each: | or, once a read has met the end of the file, $
    std::string after = "as before";
};

void check(const std::vector<Session>& sessions) {
    for (const Session& session : sessions) {
        SCOPED_TRACE(session.mode + testing::PrintToString(session.before) + testing::PrintToString(session.steps));
        writeFile("t.txt", session.before);
        std::FILE* const stream = open(session.mode);
        Text answers;
        for (const Text& step : session.steps) {
            answers += answerOf(stream, step);
            answers += crt::feof(stream) != 0 ? u'$' : u'|';
        }
        EXPECT_TRUE(crt::fclose(stream) == 0 || answers.find(u'!') != Text::npos);
        EXPECT_EQ(answers, session.answers);
        EXPECT_EQ(fileBytes("t.txt"), session.after == "as before" ? session.before : session.after);
    }
}

TEST_F(Streams, GiveTheCharactersOfTheFileWhicheverRoutineReads) {
    const char *const utf8 = "r, ccs=UTF-8", *const utf16 = "r, ccs=UTF-16LE", *const byMark = "r, ccs=UNICODE";
    // clang-format off
    const struct { const char* mode; std::string file; Text expected; } rows[] = {
        // line ends and Ctrl-Z
        {"r", "a\rb\r\r\nc\r\nd\ne\r", u"a\rb\r\nc\nd\ne\r"}, {"r", "a\x1A" "b", u"a"}, {"r", "a\r\x1A" "b", u"a\r"},
        {"r", "\x80\xE4\xFF", u"\x80\xE4\xFF"}, {utf8, "a\x1A" "b", u"a"},
        {utf16, bytes("\r\0\r\0\n\0\r\0"), u"\r\n\r"}, {utf16, bytes("a\0\r\0\x1A\0b\0"), u"a\r"},
        {utf16, bytes("\x1A\4\r\4\n\4"), u"\x041A\x040D\x040A"},
        {"rb", bytes("a\0\x1A\0\r\0\n\0\x3D\xD8z"), u"a\x1A\r\n\xD83D"},  // an odd byte is no unit
        // marks: the file's wins, at its start and whole only
        {utf8, kUtf8Mark + "\xC3\xA4", u"ä"}, {utf8, kUtf16Mark + bytes("\xE4\0"), u"ä"},
        {utf16, kUtf8Mark + "\xC3\xA4", u"ä"}, {byMark, kUtf8Mark + "\xC3\xA4", u"ä"},
        {byMark, "\xC3\xA4", u"\xC3\xA4"}, {utf16, bytes("\xE4\0z"), u"ä"}, {utf8, kUtf8Mark, u""},
        {utf8, "\xEF\xBB", u"\xFFFD"}, {byMark, "\xFF", u"\xFF"}, {utf8, kUtf8Mark + kUtf8Mark, u"\xFEFF"},
        {utf8, "a" + kUtf8Mark, u"a\xFEFF"}, {utf16, bytes("\xFE\xFF\0a"), u"\xFFFE\x6100"},
        {"r", kUtf16Mark, u"\xFF\xFE"}, {utf8, "", u""},
        // UTF-8 and what is none: stray trails, broken off, too long, surrogates, beyond the end, no lead
        {utf8, "\x80z", u"\xFFFDz"}, {utf8, "\xC0\x80z", u"\xFFFD\xFFFDz"}, {utf8, "\xE2\x82z", u"\xFFFDz"},
        {utf8, "z\xF0\x9F\x98", u"z\xFFFD"}, {utf8, "\xE2\x82\r\nz", u"\xFFFD\nz"},
        {utf8, "\xE0\x80\xAFz", u"\xFFFD\xFFFDz"}, {utf8, "\xED\xA0\x80z", u"\xFFFD\xFFFDz"},
        {utf8, "\xF8\x88z\xFF", u"\xFFFD\xFFFDz\xFFFD"}, {utf8, "\xF0\x80\x80\x80z", u"\xFFFD\xFFFD\xFFFDz"},
        {utf8, "\xF4\x90\x80\x80z", u"\xFFFD\xFFFD\xFFFDz"},
        {utf8, "\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         u"\x80\x7FF\x800\xD7FF\xE000\xD800\xDC00\xDBFF\xDFFF"}};
    // clang-format on
    for (const auto& row : rows) {
        std::vector<Text> ways = {u"rest", u"lines 2", u"lines 3", u"lines 99"};
        if (row.mode == std::string("r")) ways.insert(ways.end(), {u"lines8 99", u"block 99"});
        for (const Text& way : ways) check({{row.mode, row.file, {way, way}, row.expected + u"$$"}});
    }
}

TEST_F(Streams, WriteWideTextAsTheModeAsks) {
    // clang-format off
    check({
        {"w", "", {u"put a\n\r\n", u"put \xFF"}, u"||", "a\r\n\r\r\n\xFF"},
        {"wb", "", {u"put a\n", u"put \xD83D"}, u"||", bytes("a\0\n\0\x3D\xD8")},
        {"w, ccs=UTF-8", "old", {u"put \xE4\n", u"put \x20AC"}, u"||", kUtf8Mark + "\xC3\xA4\r\n\xE2\x82\xAC"},
        {"w, ccs=UTF-16LE", "", {u"put a\n", u"put \x20AC"}, u"||", kUtf16Mark + bytes("a\0\r\0\n\0\xAC\x20")},
        {"w, ccs=UTF-8", "", {u"put a\xD83D", u"put \xDE00z"}, u"||", kUtf8Mark + "a\xF0\x9F\x98\x80z"},
        {"w, ccs=UTF-8", "", {u"put \xDE00\xD83D\n", u"put \xD83D"}, u"||",
         kUtf8Mark + "\xEF\xBF\xBD\xEF\xBF\xBD\r\n\xEF\xBF\xBD"},
        // the mark of a new or empty file, and none for others
        {"w, ccs=UNICODE", "", {}, u"", kUtf16Mark}, {"w, ccs=UTF-8", "", {}, u"", kUtf8Mark},
        {"a, ccs=UNICODE", "", {u"put a"}, u"|", kUtf16Mark + bytes("a\0")}, {"a", "", {u"put a"}, u"|", "a"},
        {"r+, ccs=UTF-8", "", {u"put a"}, u"|", kUtf8Mark + "a"},
        {"wb, ccs=UTF-8", "", {u"put a"}, u"|", kUtf8Mark + bytes("a\0")},
        {"a, ccs=UTF-8", kUtf8Mark + "x", {u"put \xE4"}, u"|", kUtf8Mark + "x\xC3\xA4"},
        {"a, ccs=UTF-8", kUtf16Mark, {u"put \xE4\n"}, u"|", kUtf16Mark + bytes("\xE4\0\r\0\n\0")},
        {"a, ccs=UNICODE", kUtf8Mark, {u"put \xE4"}, u"|", kUtf8Mark + "\xC3\xA4"},
        {"a, ccs=UNICODE", "x", {u"put \xE4\n"}, u"|", "x\xE4\r\n"}, {"a", "x\x1A", {u"put y"}, u"|", "x\x1Ay"},
        {"a+, ccs=UTF-8", "x", {u"put \xE4"}, u"|", "x\xC3\xA4"}});
    // clang-format on
}

TEST_F(Streams, ReadWriteAndSeekByTurns) {
    // clang-format off
    check({
        // lines longer than the buffer; a buffer without room
        {"r", "abcdef\r\ng", {u"line 4", u"line8 4", u"line 4", u"line8 4", u"line 4"}, u"abc|def|\n|g$$"},
        {"r", "abcdef\r\ng", {u"line8 7", u"line 7", u"to 0", u"line8 8"}, u"abcdef|\n||abcdef\n|"},
        {"r", "a", {u"line 1", u"line8 1", u"line8 0", u"block 1", u"line 2", u"line8 2"}, u"|||a|$$"},
        // positions are bytes of the file; a seek forgets the end, and does not skip the mark
        {"r", "ab\r\ncd\r\n", {u"rest", u"to 4", u"get", u"end -3", u"tell", u"rest"}, u"ab\ncd\n$|c||.....|d\n$"},
        {"r", "a\r\n\x1A" "b\r\nc", {u"block 8", u"block 8", u"to 4", u"block 8"}, u"a\n$$|b\nc$"},
        {"r, ccs=UTF-8", kUtf8Mark + "a", {u"get", u"to 0", u"rest"}, u"a||\xFEFF" u"a$"},
        {"r+", "ab", {u"to -1", u"elsewhere 0", u"to 4", u"put8 e"}, u"!|!|||", bytes("ab\0\0e")},
        {"r+", "abc\r\ndef\r\nghi\r\n", {u"line8 16", u"by 0", u"put8 X\n", u"by 0", u"rest"}, u"abc\n||||\nghi\n$",
         "abc\r\nX\r\n\r\nghi\r\n"},
        {"a+", "abc", {u"get", u"to 1", u"put8 e\n\r\n\xE4", u"put8 ", u"put z", u"to 1", u"get"}, u"a||||||b|",
         "abce\r\n\r\r\n\xE4z"},
        {"r", "a", {u"put8 x", u"put x"}, u"!|!|"}, {"w", "", {u"get", u"block 1"}, u"||"},
        // what stands behind a number
        {"r", "12\n\xE4", {u"number", u"rest"}, u"12|\n\xE4$"},
        {"r", "12\r\n\xE4", {u"number", u"rest"}, u"12|\n\xE4$"},
        {"r, ccs=UTF-8", "12\xC3\xA4z", {u"number", u"rest"}, u"12|äz$"},
        {"r, ccs=UTF-8", "12\xE2\x82\xACz", {u"number", u"rest"}, u"12|€z$"},
        {"r, ccs=UTF-8", "12\xF0\x9F\x98\x80z", {u"number", u"rest"}, u"12|\xD83D\xDE00z$"},
        {"r, ccs=UTF-16LE", bytes("1\0002\0\xAC\x20z\0"), {u"number", u"rest"}, u"12|€z$"},
        {"r, ccs=UTF-16LE", bytes("1\0002\0\r\0\n\0z\0"), {u"number", u"rest"}, u"12|\nz$"}});
    // clang-format on
}

TEST_F(Streams, TakeTheModesOfTheRuntime) {
    const std::pair<Text, std::vector<const char*>> rows[] = {
        {u"\xC3\xA4\n$", {"r", " r", "rt", "rw", "r+", "r, ccs=UNICODE"}},
        {u"\xA4C3\x0A0D$", {"rb", "rb+", "r+b", "r, ccs=UTF-16LE"}},
        {u"ä\n$", {"rt, ccs=UTF-8", "r,ccs=UTF-8", "r, ccs=utf-8 ", "r,  ccs = UTF-8"}}};
    for (const auto& [text, modes] : rows)
        for (const char* mode : modes) check({{mode, "\xC3\xA4\r\n", {u"rest"}, text}});
    for (const char* mode : {"", "x", "b", "+r", "r,", "r, ccs=", "r, ccs=UTF-8x", "r, CCS=UTF-8", "r, ccs=UTF-16"})
        openAndClose(mode, "t.txt", 22);
}

TEST_F(Streams, NameTheReasonAFileDoesNotOpen) {
    std::filesystem::create_directories("d/e");
    writeFile("f", "");
    const std::string tooLong(300, 'n');
    // clang-format off
    const struct { int reading, writing; std::vector<std::string> names; } rows[] = {
        {2, 0, {"none", "d\\e\\f", "d/e\\g", ".\\d\\..\\d/e\\\\h", "d\\e\\i. ."}}, {13, 13, {"d", "."}},
        {2, 2, {"", "no\\f", "no/f", "f\\x", tooLong, "q:\\none"}},
        {22, 22, {"a*", "a?", "a<b", "a|b", "a\"b", "a\x01", "*\\x"}}};
    // clang-format on
    for (const auto& row : rows)
        for (const std::string& name : row.names)
            for (const char* mode : {"r", "w", "a, ccs=UTF-8"})
                openAndClose(mode, name, *mode == 'r' ? row.reading : row.writing);
    for (const char* name : {"d/e/f", "d/e/g", "d/e/h", "d/e/i"}) EXPECT_TRUE(std::filesystem::exists(name)) << name;
    auto* const marker = reinterpret_cast<std::FILE*>(&folder);
    std::FILE* stream = marker;
    EXPECT_TRUE(_wfopen_s(&stream, nullptr, L"r") == 22 && _wfopen_s(&stream, L"f", nullptr) == 22 && stream == marker);
    EXPECT_TRUE(_wfopen_s(&stream, L"no\\f", L"r") == 2 && stream == nullptr);
}

// 0, or the error number that a failed operation leaves.
int errorOf(int result) {
    EXPECT_TRUE(result == 0 || result == -1) << result;
    return result == 0 ? 0 : std::exchange(errno, -1);
}

TEST_F(Streams, FoldersAreMadeAndFilesRemovedAndRenamedButNeverReplaced) {
    for (const char* name : {"full", "sub", "sub2"}) std::filesystem::create_directory(name);
    for (const char* name : {"a", "b", "f", "full/x"}) writeFile(name, name);
    const auto make = _wmkdir, enter = _wchdir, remove = _wremove;
    // clang-format off
    const struct { int (*operation)(const wchar_t*); const char* name; int error; } steps[] = {
        {make, "d", 0}, {make, "d", 17}, {make, "d\\", 17}, {make, "e\\", 0}, {make, "no\\e", 2}, {make, "f", 17},
        {make, "", 2}, {make, "a*b", 22}, {enter, "d", 0}, {enter, "..\\", 0}, {enter, "f", 22}, {enter, "none", 2},
        {remove, "d", 13}, {remove, "full\\none", 2}, {remove, "full\\*", 22}, {remove, "full\\x", 0}};
    const struct { const char *from, *to; int error; } renamings[] = {
        {"a", "b", 17}, {"a", "sub", 17}, {"sub", "sub2", 17}, {"a", ".\\a", 0}, {"none", "x", 2}, {"a", "no\\a", 2},
        {"sub", "sub\\x", 22}, {"a", "a*", 22}, {"a", "sub\\a2", 0}, {"sub", "sub3", 0}};
    // clang-format on
    for (const auto& [operation, name, error] : steps)
        EXPECT_EQ(errorOf(operation(units<wchar_t>(name).data())), error) << name;
    for (const auto& [from, to, error] : renamings)
        EXPECT_EQ(errorOf(_wrename(units<wchar_t>(from).data(), units<wchar_t>(to).data())), error) << from << to;
    EXPECT_TRUE(std::filesystem::exists("e") && !std::filesystem::exists("full/x"));
    EXPECT_EQ(fileBytes("sub3/a2") + fileBytes("b"), "ab");
}

// ---- where this layer has an answer of its own ---------------------------------------------------------------------

// What Windows loses, refuses or leaves undefined, and what this library's own layer does about it.
class StreamsOfTheLayer : public Streams {
    void SetUp() override {
        if (onWindows) GTEST_SKIP() << "the system's own runtime";
    }
};

TEST_F(StreamsOfTheLayer, LoseNothing) {
    const std::string euroAndArrow = kUtf8Mark + "\xE2\x82\xAC 4\r\n\xE2\x86\x92\xC3\xA4";
    // clang-format off
    check({
        {"w", "", {u"put a\x20AC\xD83D\xDE00z\n"}, u"|", "a???z\r\n"},
        {"w, ccs=UTF-8", "", {u"put8 \x80 4\n", u"put \x2192\xE4"}, u"||", euroAndArrow},
        {"r, ccs=UTF-8", euroAndArrow, {u"line8 4", u"line8 4", u"line8 4"}, u"\x80 4|\n|?\xE4$"},
        {"r, ccs=UTF-8", euroAndArrow, {u"block 3"}, u"\xAC\x20|"},  // whole units only
        {"r+", "abc\r\ndef", {u"get", u"put8 X", u"get"}, u"a||c|", "aXc\r\ndef"}});
    // clang-format on
    openAndClose("wx", "new", 0);
    openAndClose("wx", "new", 17);
}

TEST_F(StreamsOfTheLayer, ReportAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    for (const char* mode : {"w", "wb", "w, ccs=UTF-8"}) {
        std::FILE *const few = open(mode, "/dev/full"), *const many = open(mode, "/dev/full");
        EXPECT_GE(crt::fputws(L"few", few), 0) << mode;  // still in the buffer
        EXPECT_EQ(errorOf(crt::fclose(few)), 28) << mode;
        EXPECT_EQ(errorOf(crt::fputs(std::string(1 << 20, 'x').c_str(), many)), 28) << mode;
        crt::fclose(many);
    }
}

TEST_F(StreamsOfTheLayer, LeaveForeignStreamsUntranslatedAndRefuseNone) {
    std::FILE* stream = std::fopen("t.txt", "w+");
    for (const char16_t* step : {u"put a\n\xE4", u"put8 \r\n\x1A", u"to 0"}) EXPECT_EQ(answerOf(stream, step), u"");
    EXPECT_EQ(answerOf(stream, u"rest"), u"a\n\xE4\r\n\x1A");
    crt::fclose(stream);

    std::FILE* volatile none = nullptr;  // so that no compiler sees it coming
    for (const char16_t* step : {u"put8 x", u"to 0"}) EXPECT_EQ(answerOf(none, step), u"!");
    for (const char16_t* step : {u"rest", u"line8 9", u"block 2"}) EXPECT_EQ(answerOf(none, step), u"");
    EXPECT_EQ(errorOf(crt::fclose(none)), 22);
}

TEST_F(StreamsOfTheLayer, FindDrivesInTheirFolders) {
    const std::string drive = folder.path().string() + "/some/c";
    setEnvironment("KELROOTS_DRIVE_C", drive.c_str());
    setEnvironment("KELROOTS_DRIVE_Q", (folder.path().string() + "/none").c_str());
    openAndClose("r", "c:\\norrab.log", 2);
    EXPECT_FALSE(std::filesystem::exists(drive));  // looking makes nothing
    openAndClose("a", "q:\\norrab.log", 2);
    for (const char* name : {"c:\\norrab.log", "C:sub.log", "\\\\?\\c:\\long.log"}) openAndClose("a", name, 0);
    EXPECT_EQ(errorOf(_wchdir(L"c:\\")), 0);
    EXPECT_EQ(std::filesystem::current_path(), drive);
    for (const char* name : {"norrab.log", "sub.log", "long.log"}) openAndClose("r", name, 0);
}

TEST_F(StreamsOfTheLayer, MoveAFileToAnotherFileSystem) {
    if (!std::filesystem::exists("/dev/shm")) GTEST_SKIP() << "no second file system";
    const std::string other = "/dev/shm/kelroots-moved";
    for (const int error : {0, 17}) {
        writeFile("t.txt", error == 0 ? "content" : "later");
        EXPECT_EQ(errorOf(_wrename(L"t.txt", units<wchar_t>(other).data())), error);
        EXPECT_EQ(std::filesystem::exists("t.txt"), error != 0);
        EXPECT_EQ(fileBytes(other), "content");
    }
    std::filesystem::remove(other);
}

}  // namespace
