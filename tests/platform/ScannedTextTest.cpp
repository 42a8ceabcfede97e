// Scanned text: the Windows meaning of every conversion, from texts of both widths and from streams.
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdarg>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>

namespace {

// The units consumed; where the format's end is not reached, the count of the conversions less 1. Both widths agree.
template <class... Targets>
int scan(const std::string& text, const std::string& format, Targets... targets) {
    int narrow = -1, wide = -1;
    const int narrowCount = sscanf_s(text.c_str(), (format + "%n").c_str(), targets..., &narrow) - 1;
    const auto wideText = units<wchar_t>(text), wideFormat = units<wchar_t>(format + "%n");
    const int wideCount = swscanf_s(wideText.data(), wideFormat.data(), targets..., &wide) - 1;
    EXPECT_TRUE(narrow == wide && narrowCount == wideCount) << text << " as " << format;
    return wide >= 0 && wideCount >= 0 ? wide : wideCount;
}

template <class Value>
struct Row {
    std::string text;
    const char* format;
    Value value;
    int consumed;
    std::size_t bytes = std::is_integral_v<Value> ? 4 : 8;  // that the conversion owns; the others keep their 77
};

template <class Value>
void check(std::initializer_list<Row<Value>> rows) {
    for (const Row<Value>& row : rows) {
        Value value, expected;
        std::memset(&value, 0x77, sizeof value);
        std::memset(&expected, 0x77, sizeof expected);
        std::memcpy(&expected, &row.value, row.consumed < 0 ? 0 : row.bytes);
        EXPECT_EQ(scan(row.text, row.format, &value), row.consumed) << row.text << " as " << row.format;
        EXPECT_EQ(value, expected) << row.text << " as " << row.format;
    }
}

constexpr int none = -1, ended = -2;

// clang-format off

TEST(ScannedText, ReadsIntegers) {
    check<long long>({
        {"42rest", "%d", 42, 2}, {"\v\f\r\n\t -42", "%d", -42, 9}, {"+42", "%d", 42, 3}, {"010", "%d", 10, 3},
        {"0x1F", "%u", 0, 1}, {"0x1F", "%i", 31, 4}, {"-0x10", "%i", -16, 5}, {"08", "%i", 0, 1}, {"017", "%i", 15, 3},
        {"0X1f", "%X", 31, 4}, {"178", "%o", 15, 2}, {"1FG", "%p", 31, 2, 8}, {"99999999999", "%d", 1215752191, 11},
        {"99999999999", "%I64d", 99999999999, 11, 8}, {"-5", "%Id", -5, 2, 8},
        {"18446744078004518913", "%llu", 4294967297, 20, 8}, {"12345678901", "%10I32d", 1234567890, 10},
        {"70000", "%hd", 4464, 5, 2}, {"  -12345", "%3d", -12, 5}, {"0x1F", "%3x", 1, 3}, {"5 6", "%*d%d", 6, 3},
        {"12 ,5", "%d ,", 12, 4}, {"12 %5", "%d%%", 12, 4}, {"a5", "a%d", 5, 2}, {"- 42", "%d", 0, none},
        {"+", "%d", 0, none}, {"0x", "%i", 0, none}, {"8", "%o", 0, none}, {"x", "%", 0, none},
        {"0x1F", "%2x", 0, none}, {"5", "%y", 0, none}, {"5", "%*d%d", 0, none}, {" a5", "a%d", 0, none},
        {"", "x", 0, ended}, {"", "%*d", 0, ended}, {"", "%%", 0, ended}, {"  ", "%d", 0, underWine() ? none : ended},
    });
    long value = 1;
    unsigned long whole = 1;
    EXPECT_EQ(scan("-99999999999 -1", "%ld %lu", &value, &whole), 15);
    EXPECT_TRUE(value == -1215752191 && whole == 0xFFFFFFFF) << "a long has 32 bits";
    int first = 0, second = 0;
    for (const char* text : {"5 x", "5", "5,6"}) EXPECT_EQ(scan(text, "%d%d", &first, &second), 0) << text;
}

TEST(ScannedText, ReadsFloatingPointNumbers) {
    const std::string zeros(400, '0');  // the exponent alone does not tell the size
    const int broken = underWine() ? ended : none;
    check<double>({
        {"-1.5e3x", "%lf", -1500, 6}, {"  +1.25 ", "%le", 1.25, 7}, {".5", "%lg", .5, 2}, {"5.", "%Lf", 5, 2},
        {"1d5", "%lf", 1e5, 3}, {"1E+05x", "%lG", 1e5, 5}, {"0x10", "%lf", 0, 1}, {"1.5.5", "%lf", 1.5, 3},
        {"12345", "%3lf", 123, 3}, {"1-", "%lf", 1, 1}, {"-1e-2", "%5lE", -.01, 5}, {"1e-400", "%lf", 0, 6},
        {"-1e99999999999999999999", "%lf", -INFINITY, 23}, {"1e-99999999999999999999", "%lf", 0, 23},
        {"." + zeros + "1", "%lf", 0, 402}, {"." + zeros + "1e9", "%lf", 0, 404}, {"1" + zeros, "%lf", INFINITY, 401},
        {"1" + zeros + "e-9", "%lf", INFINITY, 404}, {"0e9999999999", "%lf", 0, 12}, {"inf", "%lf", 0, none},
        {"1e", "%lf", 0, broken}, {"1e+x", "%lf", 0, broken}, {"-.", "%lf", 0, broken}, {"", "%lf", 0, ended},
    });
    float single[] = {-99, -99};
    EXPECT_EQ(scan("0.1", "%f", single), 3);
    EXPECT_TRUE(single[0] == 0.1f && single[1] == -99) << single[0];
}

// The count and two texts; what stays of ~~ in them was not written.
template <class Unit, class Scan>
std::string texts(Scan scan, const char* text, const char* format, unsigned size) {
    Unit first[8] = {'~', '~'}, second[8] = {'~', '~'};
    const int count = scan(units<Unit>(text).data(), units<Unit>(format).data(), first, size, second, 7u);
    return std::to_string(count) + ' ' + narrow(first) + '|' + narrow(second);
}

TEST(ScannedText, ReadsTexts) {
    const struct { const char *text, *format; unsigned size; const char* expected; } rows[] = {
        {"a\vb", "%s %s", 7, "2 a|b"}, {"abc", "%s", 4, "1 abc|~~"}, {"abc", "%s", 3, "0 |~~"},
        {"", "%s", 7, "-1 ~~|~~"}, {"abc", "%2s", 3, "1 ab|~~"}, {"a", "%s%s", 1, "0 |~~"},
        {"abc", "%2s%s", 4, "2 ab|c"}, {"", "%c", 1, "-1 ~~|~~"}, {"abc", "%c", 1, "1 a~|~~"},
        {"abc", "%2c", 1, "0 |~~"}, {"abc", "%2c%s", 2, "2 ab|c"}, {"b", "%[a]", 7, "0 |~~"},
        {"abc", "%4c", 7, "1 abc|~~"}, {" a", "%c%s", 1, "2  ~|a"}, {" abc", "%[abc]", 7, "0 |~~"},
        {"abc1", "%[^1]%s", 7, "2 abc|1"}, {"abc1", "%[a-c]%s", 4, "2 abc|1"}, {"abc1", "%[c-a]%s", 7, "2 abc|1"},
        {"a-c1", "%[a-]%s", 7, "2 a-|c1"}, {"a-c1", "%[-a]%s", 7, "2 a-|c1"}, {"]a1", "%[]a]%s", 7, "2 ]a|1"},
        {"b]a1", "%[^]a]%s", 7, "2 b|]a1"}, {"ab^1", "%[ab^]%s", 7, "2 ab^|1"}, {"a-c1", "%[a-c-]%s", 7, "2 a-c|1"},
        {"abc1", "%2[abc]%s", 7, "2 ab|c1"}, {"abc1", "%[abc]%s", 3, "0 |~~"}, {"abc1", "%*[abc]%s", 7, "1 1|~~"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text + std::string(" as ") + row.format);
        EXPECT_EQ(texts<char>(sscanf_s, row.text, row.format, row.size), row.expected);
        EXPECT_EQ(texts<wchar_t>(swscanf_s, row.text, row.format, row.size), row.expected);
    }
}

TEST(ScannedText, ReadsTheKindOfTextThatTheConversionNames) {
    for (const wchar_t* format : {L"%S", L"%hs", L"%3C", L"%3hc"}) {
        char text[8] = {};
        EXPECT_TRUE(swscanf_s(L"ab\xE4", format, text, 7u) == 1 && text == std::string("ab\xE4")) << format[1];
    }
    for (const char* format : {"%S", "%ls", "%ws", "%3C", "%3lc"}) {
        wchar_t text[8] = {};
        EXPECT_TRUE(sscanf_s("ab\xE4", format, text, 7u) == 1 && text[1] == 'b' && text[2] == 0xE4) << format;
    }
    wchar_t text[8];
    char first[8], second[8];
    EXPECT_EQ(swscanf_s(L"\xA0\x3000\x4E2D\x20AC\xA0z", L"%ls%S", text, 7u, first, 7u), 2);
    EXPECT_TRUE(text[0] == 0x4E2D && text[2] == 0 && first[0] == 'z') << "the wide form knows the blanks of Unicode";
    EXPECT_EQ(sscanf_s("a\xA0z y", "%s%s", first, 7u, second, 7u), 2);
    EXPECT_EQ(first + std::string(second), "a\xA0zy") << "the narrow form does not";
}

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Stream open(const wchar_t* mode) {
    std::FILE* stream = nullptr;
    EXPECT_EQ(_wfopen_s(&stream, L"scan.txt", mode), 0);
    return Stream(stream, [](std::FILE* file) { return crt::fclose(file); });
}

TEST(ScannedStream, LeavesTheCharacterBehindTheMatch) {
    const TempFolder folder;
    const struct { const char* bytes; const wchar_t* format; int count, next; } rows[] = {
        {"0x1F", L"%d", 1, 'x'}, {"- 5", L"%d", 0, ' '}, {"", L"%d", -1, 0xFFFF}, {"7 \r\n8", L"%d\n", 1, '8'},
        {" x", L"%d", 0, 'x'}, {"12,", L"%d;", 1, ','}, {"12", L"%d", 1, 0xFFFF}, {"12 34", L"%3d", 1, ' '},
        {"IPE\xA0\r\n\v42\t-1.5e2x", L"%*s%*d%lf", 1, 'x'}, {"abcdefgh", L"%s", 0, 'e'}, {"abc d", L"%s", 1, ' '},
    };
    for (const auto& row : rows) {
        writeFile("scan.txt", row.bytes);
        const Stream stream = open(L"r");
        alignas(double) wchar_t to[4];
        EXPECT_EQ(fwscanf_s(stream.get(), row.format, to, 4u), row.count) << row.bytes;
        EXPECT_EQ(crt::fgetwc(stream.get()), row.next) << row.bytes;
    }
}

// clang-format on

int put(std::FILE* to, const wchar_t* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = vfwprintf_s(to, format, args);
    va_end(args);
    return result;
}

TEST(ScannedStream, TakesWhatFormattedTextWrote) {
    const TempFolder folder;
    Stream stream = open(L"w");
    EXPECT_EQ(put(stream.get(), L"%s %d\n", L"a\xE4", 42), 6);
    EXPECT_EQ(put(stream.get(), L"%2000s%c\n", L"y", 0), 2002) << "longer than any buffer nearby";
    EXPECT_EQ(put(stream.get(), L"%y", 5), -1);
    stream.reset();
    EXPECT_EQ(fileBytes("scan.txt"), "a\xE4 42\r\n" + std::string(1999, ' ') + bytes("y\0\r\n"));
}

}  // namespace
