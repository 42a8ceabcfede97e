#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

const UINT kPages[] = {874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 1361, CP_UTF8};

constexpr wchar_t kUntouched = 0xBEEF;

// Bytes to units into a buffer of just the size that was asked for.
std::u16string widen(UINT page, const std::string& text) {
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(page, 0, text.data(), length, nullptr, 0);
    std::vector<wchar_t> buffer(static_cast<std::size_t>(size));
    EXPECT_EQ(MultiByteToWideChar(page, 0, text.data(), length, buffer.data(), size), size);
    return {buffer.begin(), buffer.end()};
}

std::string narrow(UINT page, const std::u16string& text, const char* defaultChar = nullptr, BOOL* used = nullptr) {
    const std::vector<wchar_t> units(text.begin(), text.end());
    const int length = static_cast<int>(units.size());
    const int size = WideCharToMultiByte(page, 0, units.data(), length, nullptr, 0, defaultChar, used);
    std::string result(static_cast<std::size_t>(size), '.');
    EXPECT_EQ(WideCharToMultiByte(page, 0, units.data(), length, &result[0], size, defaultChar, used), size);
    return result;
}

class Checksum {
public:
    void add(unsigned value) { m_sum = (m_sum ^ value) * 1099511628211u; }
    unsigned long long value() const { return m_sum; }

private:
    unsigned long long m_sum = 14695981039346656037u;
};

// Over what every single byte and every two bytes become.
unsigned long long checksumOfBytes(UINT page) {
    Checksum sum;
    for (unsigned pair = 0; pair < 0x10100; ++pair) {
        const char bytes[] = {static_cast<char>(pair < 0x100 ? pair : (pair - 0x100) >> 8), static_cast<char>(pair)};
        wchar_t units[2] = {};
        sum.add(static_cast<unsigned>(MultiByteToWideChar(page, 0, bytes, pair < 0x100 ? 1 : 2, units, 2)));
        sum.add(units[0]);
        sum.add(units[1]);
    }
    return sum.value();
}

// Over the bytes of every unit that comes back from them; that leaves out look-alikes and question marks.
unsigned long long checksumOfUnits(UINT page) {
    Checksum sum;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const wchar_t text = static_cast<wchar_t>(unit);
        char bytes[2] = {};
        wchar_t back = 0;
        const int count = WideCharToMultiByte(page, 0, &text, 1, bytes, 2, nullptr, nullptr);
        if (MultiByteToWideChar(page, 0, bytes, count, &back, 1) != 1 || back != text) continue;
        sum.add(unit);
        sum.add(static_cast<unsigned char>(bytes[0]));
        sum.add(static_cast<unsigned char>(bytes[1]));
    }
    return sum.value();
}

}  // namespace

TEST(CodePages, HaveTheSameCharactersOnEverySystem) {
    const struct {
        UINT page;
        unsigned long long bytes, units;
    } rows[] = {
        {874, 0x2529B02B85D66F65u, 0x6CF44C3F78F5F707u},  {932, 0x10B67E3C7E23BC8Du, 0xF2255646BAF60807u},
        {936, 0x4596E9472AC54124u, 0x2E4D4C66BF8F6073u},  {949, 0xB9197612782CC02Bu, 0x559BD10F63C15B27u},
        {950, 0xEA513624FC65F27Au, 0x8E388872B156C60Du},  {1250, 0x14ABC9C7EE53366Du, 0xDC72338E7A5A2E79u},
        {1251, 0x05A57D97BDB65BE5u, 0x1D793B181FCDD7FFu}, {1252, 0xF6DCEF142686BE3Bu, 0x6130EC306F136CC7u},
        {1253, 0xC71DAE9D5A414D78u, 0x42DE12E3E6FAF0F4u}, {1254, 0x71371F00305350ABu, 0x2CF062C4A12683B7u},
        {1255, 0xBE18A4673A974D4Au, 0xC6C9B1DFD7FED898u}, {1256, 0x80B28951C3267266u, 0x0273652D621B022Cu},
        {1257, 0x49D284F54A943993u, 0xA6D79231FE9E9D5Du}, {1258, 0xBA566897622D8118u, 0x2F1D7A47EA454E92u},
        {1361, 0xEF21D3F04A7B11D6u, 0x9CD58F6D47654B37u},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(checksumOfBytes(row.page), row.bytes) << row.page;
        EXPECT_EQ(checksumOfUnits(row.page), row.units) << row.page;
    }
}

TEST(MultiByteToWideChar, GivesEveryByteAndEveryPairItsUnit) {
    const struct {
        const char* when;
        UINT page;
        std::string text;
        std::u16string expected;
    } rows[] = {
        {"C1 controls", 1252, "\x81\x8D\x8F\x90\x9D", u"\u0081\u008D\u008F\u0090\u009D"},
        {"euro", 1252, "\x80", u"\u20AC"},
        {"euro", 936, "\x80", u"\u20AC"},
        {"bytes without a character", 1253, "\xAA\xD2\xFF", u"\uF8F9\uF8FA\uF8FB"},
        {"bytes without a character", 874, "\xDB\xFF", u"\uF8C1\uF8C8"},
        {"bytes without a character", 932, "\x80\xA0\xFD\xFF", u"\u0080\uF8F0\uF8F1\uF8F3"},
        {"the user's own characters", 932, "\xF0\x40\xF9\xFC", u"\uE000\uE757"},
        {"backslash", 1361, "\\", u"\\"},
        {"bad pair", 932, std::string("\x81 a", 3), u"\u30FBa"},
        {"bad pair", 936, std::string("\x81 a", 3), u"?a"},
        {"bad pair", 1361, std::string("\x84 a", 3), u"?a"},
        {"pair with a zero", 932, std::string("\x81\0a", 3), std::u16string(u"\u30FB\0a", 3)},
        {"lone lead byte at the end", 949, "a\x81", u"a?"},
        {"lead byte behind a block", 932, "0123456789abcdef\x82\xA0z", u"0123456789abcdef\u3042z"},
        {"one to four bytes", CP_UTF8, "z\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", u"z\u00E4\u20AC\U0001F600"},
        {"mark", CP_UTF8, "\xEF\xBB\xBF", u"\uFEFF"},
        {"cut off by a letter", CP_UTF8, "\xE2\x82z", u"\uFFFDz"},
        {"cut off by the end", CP_UTF8, "\xF0\x9F\x98", u"\uFFFD"},
        {"stray trail bytes", CP_UTF8, "\x80\xBF", u"\uFFFD\uFFFD"},
        {"needless length", CP_UTF8, "\xC1\xBF", u"\uFFFD\uFFFD"},
        {"needless length", CP_UTF8, "\xE0\x9F\xBF", u"\uFFFD\uFFFD"},
        {"needless length", CP_UTF8, "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {"surrogate", CP_UTF8, "\xED\xBF\xBF", u"\uFFFD\uFFFD"},
        {"last before the surrogates", CP_UTF8, "\xED\x9F\xBF", u"\uD7FF"},
        {"last character of all", CP_UTF8, "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
        {"beyond the last character", CP_UTF8, "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"beyond the last character", CP_UTF8, "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"five bytes", CP_UTF8, "\xF8\x88\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& row : rows) EXPECT_EQ(widen(row.page, row.text), row.expected) << row.page << ", " << row.when;
    // Wine drops the letter where the sequence would reach beyond the end.
    EXPECT_EQ(widen(CP_UTF8, "\xE2z"), underWine() ? u"\uFFFD" : u"\uFFFDz");
}

TEST(WideCharToMultiByte, AnswersAQuestionMarkForWhatThePageLacks) {
    const struct {
        const char* when;
        UINT page;
        std::u16string text;
        const char* defaultChar;
        std::string expected;
        BOOL used;
    } rows[] = {
        {"all there", 1252, u"a\u20AC\u00FF?", nullptr, "a\x80\xFF?", FALSE},
        {"lacking", 1252, u"a\u0900b", nullptr, "a?b", TRUE},
        {"lacking behind a block", 1252, u"0123456789abcdef\u0900", nullptr, "0123456789abcdef?", TRUE},
        {"lacking", 932, u"\u3042\u0900", nullptr, "\x82\xA0?", TRUE},
        {"the sign for bad bytes", 932, u"\u30FB", nullptr, "\x81\x45", FALSE},
        {"surrogate pair", 1252, u"\U0001F600", nullptr, "??", TRUE},
        {"surrogate pair", 936, u"\U0001F600", nullptr, "??", TRUE},
        {"own default", 1252, u"\u0900?", "#", "#?", TRUE},
        {"own default of two bytes", 932, u"\u0900z", "\x81\x45", "\x81\x45z", TRUE},
        {"own default of two bytes", 1252, u"\u0900z", "\x81\x45", "\x81z", TRUE},
        {"zero", 1252, std::u16string(u"a\0b", 3), nullptr, std::string("a\0b", 3), FALSE},
        {"zero", 949, std::u16string(u"a\0b", 3), nullptr, std::string("a\0b", 3), FALSE},
    };
    for (const auto& row : rows) {
        BOOL used = 77;
        EXPECT_EQ(narrow(row.page, row.text, row.defaultChar, &used), row.expected) << row.page << ", " << row.when;
        EXPECT_EQ(used, row.used) << row.page << ", " << row.when;
        EXPECT_EQ(narrow(row.page, row.text, row.defaultChar), row.expected) << row.page << ", " << row.when;
    }
}

TEST(WideCharToMultiByte, WritesUtf8AndTheReplacementForHalfASurrogatePair) {
    EXPECT_EQ(narrow(CP_UTF8, u"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    const char16_t high[] = {0xD83D, 0xD83D, 0xDE00, 0}, low[] = {'a', 0xDE00, 'z', 0}, last[] = {'a', 0xD83D, 0};
    EXPECT_EQ(narrow(CP_UTF8, high), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
    EXPECT_EQ(narrow(CP_UTF8, low), "a\xEF\xBF\xBDz");
    EXPECT_EQ(narrow(CP_UTF8, last), "a\xEF\xBF\xBD");

    // Windows refuses a default here, as UTF-8 lacks nothing.
    BOOL used = 77;
    const int count = WideCharToMultiByte(CP_UTF8, 0, L"a", 1, nullptr, 0, "?", &used);
    EXPECT_EQ(count, underWine() ? 1 : 0);
}

// Texts of every length around the sizes of blocks, with one special character at every place.
TEST(TextConversion, DoesNotDependOnWhereInTheTextACharacterStands) {
    for (const UINT page : kPages) {
        for (const char16_t special : {u'\0', u'\u0080', u'\u009F', u'\u00A0', u'\u00FF', u'\u0100', u'\u0178',
                                       u'\u20AC', u'\u0436', u'\u4E00', u'\u0900'}) {
            const std::string bytes = narrow(page, {special});
            const std::u16string units = widen(page, bytes);
            for (std::size_t length = 1; length < 36; ++length) {
                for (std::size_t at = 0; at < length; ++at) {
                    const std::u16string before(at, u'S'), after(length - at - 1, u'p');
                    const std::string narrowed = std::string(at, 'S') + bytes + std::string(after.size(), 'p');
                    ASSERT_EQ(narrow(page, before + special + after), narrowed) << page << " " << at << "/" << length;
                    ASSERT_EQ(widen(page, narrowed), before + units + after) << page << " " << at << "/" << length;
                }
            }
        }
    }
}

TEST(TextConversion, WritesWhatFitsIntoABufferThatIsTooSmall) {
    const struct {
        UINT page;
        std::string bytes;
        std::u16string units;
        int capacity;
        std::u16string unitsWritten;
        std::string bytesWritten;
    } rows[] = {
        {1252, "ab\x80", u"ab\u20AC", 2, u"ab", "ab"},
        {1252, "0123456789abcdefgh", u"0123456789abcdefgh", 17, u"0123456789abcdefg", "0123456789abcdefg"},
        {932, "a\x82\xA0st", u"a\u3042st", 2, u"a\u3042", "a."},
        {932, "a\x82\xA0st", u"a\u3042st", 3, u"a\u3042s", "a\x82\xA0"},
        {CP_UTF8, "a\xE2\x82\xACst", u"a\u20ACst", 3, u"a\u20ACs", "a.."},
        {CP_UTF8, "abc\xF0\x9F\x98\x80z", u"abc\U0001F600z", 4, std::u16string(u"abc\U0001F600", 4), "abc."},
    };
    for (const auto& row : rows) {
        const std::size_t capacity = static_cast<std::size_t>(row.capacity);
        std::vector<wchar_t> buffer(capacity);
        SetLastError(0);
        int count = MultiByteToWideChar(row.page, 0, row.bytes.data(), static_cast<int>(row.bytes.size()),
                                        buffer.data(), row.capacity);
        EXPECT_EQ(count, 0) << row.bytes;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER}) << row.bytes;
        EXPECT_EQ(std::u16string(buffer.begin(), buffer.end()), row.unitsWritten) << row.bytes;

        const std::vector<wchar_t> units(row.units.begin(), row.units.end());
        std::string bytes(capacity, '.');
        SetLastError(0);
        count = WideCharToMultiByte(row.page, 0, units.data(), static_cast<int>(units.size()), &bytes[0], row.capacity,
                                    nullptr, nullptr);
        EXPECT_EQ(count, 0) << row.bytes;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER}) << row.bytes;
        EXPECT_EQ(bytes, row.bytesWritten) << row.bytes;
    }
}

TEST(TextConversion, CountsATerminatorOnlyWhereTheLengthIsNegative) {
    for (const UINT page : kPages) {
        for (const auto& row : {std::pair<int, int>{-1, 4}, {-9, 4}, {3, 3}, {2, 2}}) {
            wchar_t units[] = {kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
            char bytes[] = ".....";
            EXPECT_EQ(MultiByteToWideChar(page, 0, "HEA", row.first, units, 5), row.second) << page;
            EXPECT_EQ(WideCharToMultiByte(page, 0, L"HEA", row.first, bytes, 5, nullptr, nullptr), row.second) << page;
            EXPECT_EQ(std::string(bytes, 5), std::string("HEA\0", static_cast<std::size_t>(row.second)) +
                                                 std::string(static_cast<std::size_t>(5 - row.second), '.'));
            EXPECT_EQ(units[row.second], kUntouched) << page;
        }
    }
}

TEST(TextConversion, RefusesBadArguments) {
    wchar_t units[4];
    char bytes[4];
    const struct {
        const char* when;
        UINT page;
        DWORD flags;
        bool text, buffer;
        int length, capacity;
        DWORD error;
    } rows[] = {
        {"no text", 1252, 0, false, true, 1, 4, ERROR_INVALID_PARAMETER},
        {"no text, asking for the size", 1252, 0, false, false, -1, 0, ERROR_INVALID_PARAMETER},
        {"length 0", 1252, 0, true, true, 0, 4, ERROR_INVALID_PARAMETER},
        {"length 0", CP_UTF8, 0, true, true, 0, 4, ERROR_INVALID_PARAMETER},
        {"negative capacity", 932, 0, true, true, 1, -1, ERROR_INVALID_PARAMETER},
        {"no buffer", CP_UTF8, 0, true, false, 1, 4, ERROR_INVALID_PARAMETER},
        {"no such page", 12345, 0, true, true, 1, 4, ERROR_INVALID_PARAMETER},
        {"flags", 1252, 0x80000000, true, true, 1, 4, ERROR_INVALID_FLAGS},
        {"flags", CP_UTF8, 0x80000000, true, true, 1, 4, ERROR_INVALID_FLAGS},
    };
    for (const auto& row : rows) {
        SetLastError(0);
        int count = MultiByteToWideChar(row.page, row.flags, row.text ? "a" : nullptr, row.length,
                                        row.buffer ? units : nullptr, row.capacity);
        EXPECT_EQ(count, 0) << row.when;
        EXPECT_EQ(GetLastError(), row.error) << row.when;
        SetLastError(0);
        count = WideCharToMultiByte(row.page, row.flags, row.text ? L"a" : nullptr, row.length,
                                    row.buffer ? bytes : nullptr, row.capacity, nullptr, nullptr);
        EXPECT_EQ(count, 0) << row.when;
        EXPECT_EQ(GetLastError(), row.error) << row.when;
    }
}

// The child process starts afresh, so that it reads the variable.
TEST(AnsiCodePageDeathTest, IsTheOneInTheEnvironment) {
    if (onWindows) GTEST_SKIP() << "Windows has the number in its settings";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const struct {
        const char* variable;
        UINT page;
    } rows[] = {{"932", 932}, {"65001", 65001}, {"1361", 1361}, {"437", 1252}, {"932x", 1252}, {"", 1252}};
    for (const auto& row : rows) {
        const auto child = [&row] {
            setEnvironment("KELROOTS_ANSI_CODE_PAGE", row.variable);
            const bool right = GetACP() == row.page && widen(CP_ACP, "\x85\x92") == widen(row.page, "\x85\x92");
            std::exit(right ? 0 : 1);
        };
        EXPECT_EXIT(child(), testing::ExitedWithCode(0), "") << row.variable;
    }
}
