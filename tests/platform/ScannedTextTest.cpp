// Scanned text: the Windows meaning of every conversion, from texts of both widths and from streams.
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <string>
#include <vector>

namespace {

std::vector<wchar_t> widened(const char* text) {
    std::vector<wchar_t> units;
    do units.push_back(static_cast<unsigned char>(*text));
    while (*text++ != 0);
    return units;
}

// What is left behind the conversion, which must be the same from both widths.
struct Scanned {
    int count = 0;
    int consumed = -1;  // -1: not reached
};

template <class... Targets>
Scanned scan(const char* text, const std::string& format, Targets... targets) {
    Scanned narrow, wide;
    const std::string counting = format + "%n";
    narrow.count = sscanf_s(text, counting.c_str(), targets..., &narrow.consumed);
    wide.count = swscanf_s(widened(text).data(), widened(counting.c_str()).data(), targets..., &wide.consumed);
    EXPECT_EQ(narrow.count, wide.count) << '"' << text << "\" as " << format;
    EXPECT_EQ(narrow.consumed, wide.consumed) << '"' << text << "\" as " << format;
    return wide;
}

constexpr long long untouched = 0x7777777777777777;

struct IntegerRow {
    const char* text;
    const char* format;
    long long expected;  // bytes that the conversion does not own keep their 77
    int consumed;
};

// clang-format off: dense tables
TEST(ScannedText, ReadsIntegers) {
    const IntegerRow rows[] = {
        {"42rest", "%d", 0x777777770000002A, 2},       {"  42 ", "%d", 0x777777770000002A, 4},
        {"-42", "%d", 0x77777777FFFFFFD6, 3},          {"+42", "%d", 0x777777770000002A, 3},
        {"\v\f\r\n\t5", "%d", 0x7777777700000005, 6},  {"010", "%d", 0x777777770000000A, 3},
        {"0x1F", "%d", 0x7777777700000000, 1},         {"0x1F", "%u", 0x7777777700000000, 1},
        {"0x1F", "%i", 0x777777770000001F, 4},         {"-0x10", "%i", 0x77777777FFFFFFF0, 5},
        {"017", "%i", 0x777777770000000F, 3},          {"08", "%i", 0x7777777700000000, 1},
        {"1F", "%x", 0x777777770000001F, 2},           {"0X1f", "%X", 0x777777770000001F, 4},
        {"-1", "%x", 0x77777777FFFFFFFF, 2},           {"178", "%o", 0x777777770000000F, 2},
        {"99999999999", "%d", 0x777777774876E7FF, 11}, {"-99999999999", "%d", 0x77777777B7891801, 12},
        {"99999999999", "%I64d", 99999999999, 11},     {"99999999999", "%lld", 99999999999, 11},
        {"99999999999999999999", "%I64u", 0x6BC75E2D630FFFFF, 20},
        {"-5", "%Id", -5, 2},                          {"5", "%I32d", 0x7777777700000005, 1},
        {"70000", "%hd", 0x7777777777771170, 5},       {"12345", "%3d", 0x777777770000007B, 3},
        {"-12345", "%3d", 0x77777777FFFFFFF4, 3},      {"  12345", "%3d", 0x777777770000007B, 5},
        {"0x1F", "%3x", 0x7777777700000001, 3},        {"12345", "%0d", 0x7777777700003039, 5},
        {"5 6", "%*d%d", 0x7777777700000006, 3},       {"12 ,5", "%d ,", 0x777777770000000C, 4},
        {"12 %5", "%d%%", 0x777777770000000C, 4},      {"a5", "a%d", 0x7777777700000005, 2},
        {"1F", "%p", 0x1F, 2},
    };
    for (const IntegerRow& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " as " + row.format);
        long long value = untouched;
        const Scanned result = scan(row.text, row.format, &value);
        EXPECT_EQ(result.count, 1);
        EXPECT_EQ(value, row.expected);
        EXPECT_EQ(result.consumed, row.consumed);
    }
}

TEST(ScannedText, ReadsALongAsA32BitValue) {
    long value = 1;
    unsigned long whole = 1;
    EXPECT_EQ(scan("-99999999999 -1", "%ld %lu", &value, &whole).count, 2);
    EXPECT_EQ(value, static_cast<int>(0xB7891801));
    EXPECT_EQ(whole, 0xFFFFFFFFul);
}

TEST(ScannedText, RefusesWhatIsNoIntegerAndTellsTheEndOfTheText) {
    const struct { const char* text; const char* format; int expected; } rows[] = {
        {"- 42", "%d", 0}, {"-x", "%d", 0}, {"+", "%d", 0},    {"x", "%d", 0},  {"0x", "%i", 0},   {"0xg", "%x", 0},
        {"8", "%o", 0},    {"5", "%y", 0},  {"", "%d", -1},    {"", "%*d", -1}, {"0x1F", "%2x", 0},
        {"", "x", -1},     {"ac", "ab", 0}, {" a5", "a%d", 0}, {"", "%%", -1},  {"inf", "%lf", 0}, {"e5", "%lf", 0},
        {"", "%lf", -1},   {"", "%9s", -1}, {"x", "%", 0},     {"", "%c", -1},  {"", "%[a]", -1},  {"5", "%*d%d", 0},
    };
    for (const auto& row : rows) {
        long long value = untouched;
        EXPECT_EQ(scan(row.text, row.format, &value, 1u).count, row.expected) << row.text << " as " << row.format;
        EXPECT_EQ(value, untouched) << row.text << " as " << row.format;
    }
    int first = 7, second = 7;
    EXPECT_EQ(scan("5 x", "%d%d", &first, &second).count, 1);
    EXPECT_EQ(scan("5", "%d%d", &first, &second).count, 1);
    EXPECT_EQ(scan("5 6", "%d,%d", &first, &second).count, 1);
    // Wine differs: blanks before the end give 0, and a number that breaks off gives -1.
    EXPECT_EQ(scan("  ", "%d", &first).count, underWine() ? 0 : -1);
    for (const char* broken : {"1e", "1ex", "1e+", ".", "-", "-.", "--1"})
        EXPECT_EQ(scan(broken, "%lf", &first).count, underWine() ? -1 : 0) << broken;
}

TEST(ScannedText, ReadsFloatingPointNumbers) {
    const struct { const char* text; const char* format; double expected; int consumed; } rows[] = {
        {"1.5", "%lf", 1.5, 3},      {"-1.5e3x", "%lf", -1500, 6},  {"  +1.25 ", "%le", 1.25, 7}, {".5", "%lg", .5, 2},
        {"5.", "%lf", 5, 2},         {"1d5", "%lf", 1e5, 3},        {"1E+05x", "%lG", 1e5, 5},    {"0x10", "%lf", 0, 1},
        {"1.5.5", "%lf", 1.5, 3},    {"1,5", "%lf", 1, 1},          {"12345", "%3lf", 123, 3},    {"1-", "%lf", 1, 1},
        {"-1e-2", "%5lE", -.01, 5},  {"1e400", "%lf", INFINITY, 5}, {"1e-400", "%lf", 0, 6},      {".1", "%Lf", .1, 2},
        {"-1e99999999999999999999", "%lf", -INFINITY, 23},          {"1e-99999999999999999999", "%lf", 0, 23},
        {"0e9999999999", "%lf", 0, 12},                             {"4.9e-324", "%lf", 4.9e-324, 8},
        {"0.30000000000000004", "%lf", 0.1 + 0.2, 19},              {"9007199254740993", "%lf", 9007199254740992, 16},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " as " + row.format);
        double value = -99;
        const Scanned result = scan(row.text, row.format, &value);
        EXPECT_EQ(result.count, 1);
        EXPECT_EQ(value, row.expected);
        EXPECT_EQ(result.consumed, row.consumed);
    }
    float single[] = {-99, -99};
    EXPECT_EQ(scan("0.1", "%f", single).count, 1);
    EXPECT_EQ(single[0], 0.1f);
    EXPECT_EQ(single[1], -99.0f);
    double tiny = -99, huge = -99;  // the exponent alone does not tell the size
    const std::string zeros(400, '0');
    EXPECT_EQ(scan(("." + zeros + "1e9 1" + zeros + "e-9").c_str(), "%lf%lf", &tiny, &huge).count, 2);
    EXPECT_EQ(tiny, 0);
    EXPECT_EQ(huge, INFINITY);
    EXPECT_EQ(scan(("." + zeros + "1 1" + zeros).c_str(), "%lf%lf", &tiny, &huge).count, 2);
    EXPECT_EQ(tiny, 0);
    EXPECT_EQ(huge, INFINITY);
}

// Two texts as the conversions of a format leave them; one "~" stands for all that they never touched.
template <class Unit>
struct TwoTexts {
    Unit first[8], second[8];
    TwoTexts() {
        for (int i = 0; i < 8; ++i) first[i] = second[i] = '~';
        first[7] = second[7] = 0;
    }
    static std::string shown(const Unit* text) {
        std::string result;
        for (; *text != 0 && (result.empty() || result.back() != '~'); ++text) result += static_cast<char>(*text);
        return result;
    }
    std::string both() const { return shown(first) + "|" + shown(second); }
};

TEST(ScannedText, ReadsTexts) {
    const struct { const char* text; const char* format; unsigned size; int count; const char* expected; } rows[] = {
        {"abc def", "%s %s", 7, 2, "abc|def"}, {"abc", "%s", 4, 1, "abc|~"},          {"abc", "%s", 3, 0, "|~"},
        {"abc def", "%s%s", 1, 0, "|~"},       {"abc", "%2s", 3, 1, "ab|~"},          {"abc", "%2s", 2, 0, "|~"},
        {"abc", "%2s%s", 4, 2, "ab|c"},        {"abc", "%c", 1, 1, "a~|~"},           {"abc", "%2c", 1, 0, "|~"},
        {"abc", "%2c%s", 2, 2, "ab~|c"},       {"abc", "%4c", 7, 1, "abc~|~"},        {" a", "%c%s", 1, 2, " ~|a"},
        {"abc1", "%[abc]%s", 4, 2, "abc|1"}, {"abc1", "%[abc]%s", 3, 0, "|~"}, {"abc1", "%[^1]%s", 7, 2, "abc|1"},
        {"abc1", "%[a-c]%s", 7, 2, "abc|1"}, {"abc1", "%[c-a]%s", 7, 2, "abc|1"}, {"a-c1", "%[a-]%s", 7, 2, "a-|c1"},
        {"a-c1", "%[-a]%s", 7, 2, "a-|c1"}, {"]a1", "%[]a]%s", 7, 2, "]a|1"}, {"b]a1", "%[^]a]%s", 7, 2, "b|]a1"},
        {"ab^1", "%[ab^]%s", 7, 2, "ab^|1"},   {"a-c1", "%[a-c-]%s", 7, 2, "a-c|1"},  {"xyz", "%[abc]%s", 7, 0, "|~"},
        {"abc1", "%2[abc]%s", 7, 2, "ab|c1"}, {" abc", "%[abc]", 7, 0, "|~"}, {"abc1", "%*[abc]%s", 7, 1, "1|~"},
        {"abc def", "%*s%s", 7, 1, "def|~"},   {"a\vb", "%s %s", 7, 2, "a|b"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " as " + row.format + ", size " + std::to_string(row.size));
        TwoTexts<char> narrow;
        EXPECT_EQ(sscanf_s(row.text, row.format, narrow.first, row.size, narrow.second, 7u), row.count);
        TwoTexts<wchar_t> wide;
        const auto text = widened(row.text), format = widened(row.format);
        EXPECT_EQ(swscanf_s(text.data(), format.data(), wide.first, row.size, wide.second, 7u), row.count);
        EXPECT_EQ(narrow.both(), row.expected);
        EXPECT_EQ(wide.both(), row.expected);
    }
}

TEST(ScannedText, ReadsTheKindOfTextThatTheConversionNames) {
    for (const wchar_t* format : {L"%S", L"%hs", L"%3C", L"%3hc"}) {
        TwoTexts<char> text;
        EXPECT_EQ(swscanf_s(L"ab\xE4", format, text.first, 7u), 1);
        EXPECT_EQ(text.both().substr(0, 3), "ab\xE4");
    }
    for (const char* format : {"%S", "%ls", "%ws", "%3C", "%3lc"}) {
        TwoTexts<wchar_t> text;
        EXPECT_EQ(sscanf_s("ab\xE4", format, text.first, 7u), 1);
        EXPECT_EQ(text.first[2], 0xE4);
    }
    TwoTexts<wchar_t> text;
    EXPECT_EQ(swscanf_s(L"\xA0\x3000\x4E2D\x20AC\xA0z", L"%ls%s", text.first, 7u, text.second, 7u), 2);
    EXPECT_EQ(text.first[0], 0x4E2D);
    EXPECT_EQ(text.first[2], 0);
    EXPECT_EQ(text.second[0], 'z') << "the wide form knows the blanks of Unicode";
    TwoTexts<char> narrow;
    EXPECT_EQ(sscanf_s("a\xA0" "b c", "%s%s", narrow.first, 7u, narrow.second, 7u), 2);
    EXPECT_EQ(narrow.both(), "a\xA0" "b|c") << "the narrow form does not";
}

class ScannedStream : public testing::Test {
protected:
    // Opens a text file of these bytes.
    std::FILE* reading(const std::string& bytes) {
        writeFile("scan.txt", bytes);
        close();
        EXPECT_EQ(_wfopen_s(&m_stream, L"scan.txt", L"r"), 0);
        return m_stream;
    }
    void close() {
        if (m_stream != nullptr) crt::fclose(m_stream);
        m_stream = nullptr;
    }
    void TearDown() override { close(); }

    TempFolder m_folder;
    std::FILE* m_stream = nullptr;
};

TEST_F(ScannedStream, LeavesTheCharacterBehindTheMatch) {
    const struct { const char* bytes; const wchar_t* format; int count; int next; } rows[] = {
        {"0x1F", L"%d", 1, 'x'}, {"- 5", L"%d", 0, ' '},   {"x", L"%d", 0, 'x'},   {"12x", L"%d", 1, 'x'},
        {"", L"%d", -1, 0xFFFF}, {" x", L"%d", 0, 'x'},    {"-x", L"%d", 0, 'x'},  {"12,", L"%d;", 1, ','},
        {"12", L"%d", 1, 0xFFFF}, {"0xg", L"%i", 0, 'g'},  {"7 \r\n8", L"%d\n", 1, '8'}, {"12 34", L"%3d", 1, ' '},
    };
    for (const auto& row : rows) {
        int value = 0;
        std::FILE* const stream = reading(row.bytes);
        EXPECT_EQ(fwscanf_s(stream, row.format, &value), row.count) << row.bytes;
        EXPECT_EQ(crt::fgetwc(stream), row.next) << row.bytes;
    }
}

// clang-format on

TEST_F(ScannedStream, ReadsTokenAfterToken) {
    std::FILE* const stream = reading("IPE 200\t-1.5e2\r\n\xA0" "end");
    wchar_t token[256];
    int number = 0;
    double length = 0;
    EXPECT_EQ(fwscanf_s(stream, L"%s", token, 256u), 1);
    EXPECT_EQ(token[2], 'E');
    EXPECT_EQ(fwscanf_s(stream, L"%d", &number), 1);
    EXPECT_EQ(number, 200);
    EXPECT_EQ(fwscanf_s(stream, L"%lf", &length), 1);
    EXPECT_EQ(length, -150);
    EXPECT_EQ(fwscanf_s(stream, L"%s", token, 256u), 1);
    EXPECT_EQ(token[0], 'e');
    EXPECT_EQ(fwscanf_s(stream, L"%s", token, 256u), -1);
    EXPECT_NE(crt::feof(stream), 0);
}

TEST_F(ScannedStream, TakesTheCharacterForWhichThereIsNoRoom) {
    std::FILE* const stream = reading("abcdefgh x");
    wchar_t token[8] = {'~', '~', '~', '~', '~', '~', '~', '~'};
    EXPECT_EQ(fwscanf_s(stream, L"%s", token, 4u), 0);
    EXPECT_EQ(token[0], 0);
    EXPECT_EQ(token[4], '~');
    EXPECT_EQ(crt::fgetwc(stream), 'e');
}

TEST_F(ScannedStream, TakesWhatFormattedTextWrote) {
    ASSERT_EQ(_wfopen_s(&m_stream, L"scan.txt", L"w"), 0);
    const auto put = [&](auto print, auto format, auto... values) {
        return [print](std::FILE* stream, auto text, ...) {
            va_list args;
            va_start(args, text);
            const int result = print(stream, text, args);
            va_end(args);
            return result;
        }(m_stream, format, values...);
    };
    const std::string filling(2000, 'x');
    EXPECT_EQ(put(vfwprintf_s, L"%s %d\n", L"a\xE4", 42), 6);
    EXPECT_EQ(put(vfprintf_s, "%s %c\n", "n", 0), 4);
    EXPECT_EQ(put(vfwprintf_s, L"%S|%2000s\n", filling.c_str(), L"y"), 4002) << "longer than any buffer nearby";
    EXPECT_EQ(put(vfwprintf_s, L"%y", 5), -1);
    close();
    const std::string blanks(1999, ' ');
    EXPECT_EQ(fileBytes("scan.txt"), "a\xE4 42\r\nn " + bytes("\0") + "\r\n" + filling + "|" + blanks + "y\r\n");
}

}  // namespace
