#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Environment.h>
#include <tests/support/Platform.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

const UINT kPages[] = {874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 1361, CP_UTF8};

// The answers of the two calls, or the error number made negative.
constexpr int kBadArgument = -87, kTooSmall = -122, kBadFlags = -1004;

int widened(UINT page, DWORD flags, const char* text, int length, wchar_t* to, int size) {
    SetLastError(0);
    const int count = MultiByteToWideChar(page, flags, text, length, to, size);
    return count != 0 ? count : -static_cast<int>(GetLastError());
}

int narrowed(UINT page, DWORD flags, const wchar_t* text, int length, char* to, int size) {
    SetLastError(0);
    const int count = WideCharToMultiByte(page, flags, text, length, to, size, nullptr, nullptr);
    return count != 0 ? count : -static_cast<int>(GetLastError());
}

// Bytes to units and back, into buffers of just the size that was asked for.
std::u16string widen(UINT page, const std::string& text) {
    const int length = static_cast<int>(text.size()), size = widened(page, 0, text.data(), length, nullptr, 0);
    std::vector<wchar_t> buffer(static_cast<std::size_t>(size));
    EXPECT_EQ(widened(page, 0, text.data(), length, buffer.data(), size), size);
    return {buffer.begin(), buffer.end()};
}

std::string narrow(UINT page, const std::u16string& text, const char* standIn = nullptr, BOOL* used = nullptr) {
    const std::vector<wchar_t> units(text.begin(), text.end());
    const int length = static_cast<int>(units.size());
    const int size = WideCharToMultiByte(page, 0, units.data(), length, nullptr, 0, standIn, used);
    std::string result(static_cast<std::size_t>(size), '.');
    EXPECT_EQ(WideCharToMultiByte(page, 0, units.data(), length, &result[0], size, standIn, used), size);
    return result;
}

using Checksums = std::pair<std::uint64_t, std::uint64_t>;

// Over what every single byte and every two bytes become, and over the bytes of every unit that comes back from them;
// that leaves out look-alikes and question marks.
Checksums checksums(UINT page) {
    Checksums sums(14695981039346656037u, 14695981039346656037u);
    const auto add = [](std::uint64_t& sum, int value) { sum = (sum ^ static_cast<unsigned>(value)) * 1099511628211u; };
    for (unsigned pair = 0; pair < 0x10100; ++pair) {
        const char bytes[] = {static_cast<char>(pair < 0x100 ? pair : (pair - 0x100) >> 8), static_cast<char>(pair)};
        wchar_t units[2] = {};
        add(sums.first, widened(page, 0, bytes, pair < 0x100 ? 1 : 2, units, 2));
        for (const wchar_t unit : units) add(sums.first, unit);
    }
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const wchar_t text = static_cast<wchar_t>(unit);
        char bytes[2] = {};
        wchar_t back = 0;
        const int count = narrowed(page, 0, &text, 1, bytes, 2);
        if (widened(page, 0, bytes, count, &back, 1) != 1 || back != text) continue;
        add(sums.second, text);
        for (const char byte : bytes) add(sums.second, static_cast<unsigned char>(byte));
    }
    return sums;
}

}  // namespace

// clang-format off

TEST(CodePages, HaveTheSameCharactersOnEverySystem) {
    const std::pair<UINT, Checksums> rows[] = {
        {874, {0x2529B02B85D66F65u, 0x6CF44C3F78F5F707u}}, {932, {0x10B67E3C7E23BC8Du, 0xF2255646BAF60807u}},
        {936, {0x4596E9472AC54124u, 0x2E4D4C66BF8F6073u}}, {949, {0xB9197612782CC02Bu, 0x559BD10F63C15B27u}},
        {950, {0xEA513624FC65F27Au, 0x8E388872B156C60Du}}, {1250, {0x14ABC9C7EE53366Du, 0xDC72338E7A5A2E79u}},
        {1251, {0x05A57D97BDB65BE5u, 0x1D793B181FCDD7FFu}}, {1252, {0xF6DCEF142686BE3Bu, 0x6130EC306F136CC7u}},
        {1253, {0xC71DAE9D5A414D78u, 0x42DE12E3E6FAF0F4u}}, {1254, {0x71371F00305350ABu, 0x2CF062C4A12683B7u}},
        {1255, {0xBE18A4673A974D4Au, 0xC6C9B1DFD7FED898u}}, {1256, {0x80B28951C3267266u, 0x0273652D621B022Cu}},
        {1257, {0x49D284F54A943993u, 0xA6D79231FE9E9D5Du}}, {1258, {0xBA566897622D8118u, 0x2F1D7A47EA454E92u}},
        {1361, {0xEF21D3F04A7B11D6u, 0x9CD58F6D47654B37u}},
    };
    for (const auto& [page, expected] : rows) EXPECT_EQ(checksums(page), expected) << page;
}

// The single bytes and the pairs of the other pages: see the checksums above.
TEST(MultiByteToWideChar, GivesBadBytesTheirCharacters) {
    const struct { UINT page; std::string text; std::u16string expected; } rows[] = {
        {932, "\x81 a", u"\u30FBa"}, {936, "\x81 a", u"?a"}, {932, {"\x81\0a", 3}, {u"\u30FB\0a", 3}},
        {949, "a\x81", u"a?"}, {CP_UTF8, "z\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", u"z\u00E4\u20AC\U0001F600"},
        {CP_UTF8, "\xEF\xBB\xBF", u"\uFEFF"}, {CP_UTF8, "\xE2\x82z", u"\uFFFDz"}, {CP_UTF8, "\xF0\x9F\x98", u"\uFFFD"},
        {CP_UTF8, "\x80\xBF", u"\uFFFD\uFFFD"}, {CP_UTF8, "\xC1\xBF", u"\uFFFD\uFFFD"},
        {CP_UTF8, "\xE0\x9F\xBF", u"\uFFFD\uFFFD"}, {CP_UTF8, "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {CP_UTF8, "\xED\xBF\xBF", u"\uFFFD\uFFFD"}, {CP_UTF8, "\xED\x9F\xBF", u"\uD7FF"},
        {CP_UTF8, "\xF4\x8F\xBF\xBF", u"\U0010FFFF"}, {CP_UTF8, "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD"},
        {CP_UTF8, "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {CP_UTF8, "\xF8\x88\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {CP_UTF8, "\xE2z", underWine() ? u"\uFFFD" : u"\uFFFDz"},
    };
    for (const auto& row : rows) EXPECT_EQ(widen(row.page, row.text), row.expected) << row.page << " " << &row - rows;
}

TEST(WideCharToMultiByte, AnswersAQuestionMarkForWhatThePageLacks) {
    const struct { UINT page; std::u16string text; const char* standIn; std::string expected; BOOL used; } rows[] = {
        {1252, u"a\u20AC\u00FF?", nullptr, "a\x80\xFF?", FALSE}, {1252, u"a\u0900b", nullptr, "a?b", TRUE},
        {932, u"\u3042\u0900", nullptr, "\x82\xA0?", TRUE}, {932, u"\u30FB", nullptr, "\x81\x45", FALSE},
        {1252, u"\U0001F600", nullptr, "??", TRUE}, {936, u"\U0001F600", nullptr, "??", TRUE},
        {1252, u"\u0900?", "#", "#?", TRUE}, {932, u"\u0900z", "\x81\x45", "\x81\x45z", TRUE},
        {1252, u"\u0900z", "\x81\x45", "\x81z", TRUE},
    };
    BOOL used = 77;
    for (const auto& row : rows) {
        EXPECT_EQ(narrow(row.page, row.text, row.standIn, &used), row.expected) << row.page << " " << &row - rows;
        EXPECT_EQ(std::exchange(used, 77), row.used) << row.page << " " << &row - rows;
        EXPECT_EQ(narrow(row.page, row.text, row.standIn), row.expected) << row.page << " " << &row - rows;
    }
    // UTF-8 lacks nothing but half a surrogate pair, and Windows refuses a default there.
    EXPECT_EQ(narrow(CP_UTF8, u"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    const char16_t halves[] = {0xD83D, 0xD83D, 0xDE00, 'a', 0xDE00, 'z', 0xD83D, 0};
    EXPECT_EQ(narrow(CP_UTF8, halves), "\xEF\xBF\xBD\xF0\x9F\x98\x80" "a\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", 1, nullptr, 0, "?", &used), underWine() ? 1 : 0);
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
    const struct { UINT page; std::string bytes, bytesThatFit; std::u16string units, unitsThatFit; } rows[] = {
        {1252, "ab\x80", "ab", u"ab\u20AC", u"ab"}, {932, "a\x82\xA0st", "a.", u"a\u3042st", u"a\u3042"},
        {1252, "0123456789abcdefgh", "0123456789abcdefg", u"0123456789abcdefgh", u"0123456789abcdefg"},
        {932, "a\x82\xA0st", "a\x82\xA0", u"a\u3042st", u"a\u3042s"},
        {CP_UTF8, "a\xE2\x82\xACst", "a..", u"a\u20ACst", u"a\u20ACs"},
        {CP_UTF8, "abc\xF0\x9F\x98\x80z", "abc.", u"abc\U0001F600z", std::u16string(u"abc\U0001F600", 4)},
    };
    for (const auto& row : rows) {
        const std::vector<wchar_t> from(row.units.begin(), row.units.end());
        const int length = static_cast<int>(row.bytes.size()), size = static_cast<int>(row.bytesThatFit.size());
        std::vector<wchar_t> units(row.unitsThatFit.size());
        std::string bytes(row.bytesThatFit.size(), '.');
        EXPECT_EQ(widened(row.page, 0, row.bytes.data(), length, units.data(), size), kTooSmall);
        EXPECT_EQ(narrowed(row.page, 0, from.data(), static_cast<int>(from.size()), &bytes[0], size), kTooSmall);
        EXPECT_EQ(std::u16string(units.begin(), units.end()), row.unitsThatFit) << row.bytes;
        EXPECT_EQ(bytes, row.bytesThatFit) << row.bytes;
    }
}

TEST(TextConversion, CountsATerminatorOnlyWhereTheLengthIsNegative) {
    const std::pair<int, std::string> rows[] = {{-1, {"HEA\0.", 5}}, {-9, {"HEA\0.", 5}}, {3, "HEA.."}, {2, "HE..."}};
    for (const UINT page : kPages) {
        for (const auto& [length, expected] : rows) {
            wchar_t wide[] = L".....";
            std::string text = ".....";
            const int count = static_cast<int>(expected.find_first_of('.'));
            EXPECT_EQ(widened(page, 0, "HEA", length, wide, 5), count) << page;
            EXPECT_EQ(narrowed(page, 0, L"HEA", length, &text[0], 5), count) << page;
            EXPECT_EQ(text, expected) << page;
            EXPECT_TRUE(std::equal(text.begin(), text.end(), wide)) << page;
        }
    }
}

TEST(TextConversion, RefusesBadArguments) {
    wchar_t units[4];
    char bytes[4];
    const struct { UINT page; DWORD flags; bool text, buffer; int length, size; } rows[] = {
        {1252, 0, false, true, 1, 4}, {1252, 0, false, false, -1, 0}, {1252, 0, true, true, 0, 4},
        {CP_UTF8, 0, true, true, 0, 4}, {932, 0, true, true, 1, -1}, {CP_UTF8, 0, true, false, 1, 4},
        {12345, 0, true, true, 1, 4}, {1252, 0x80000000, true, true, 1, 4}, {CP_UTF8, 0x80000000, true, true, 1, 4},
    };
    for (const auto& [page, flags, text, buffer, length, size] : rows) {
        const int error = flags != 0 ? kBadFlags : kBadArgument;
        SCOPED_TRACE("page " + std::to_string(page) + " length " + std::to_string(length));
        EXPECT_EQ(widened(page, flags, text ? "a" : nullptr, length, buffer ? units : nullptr, size), error);
        EXPECT_EQ(narrowed(page, flags, text ? L"a" : nullptr, length, buffer ? bytes : nullptr, size), error);
    }
}

// clang-format on

// The child process starts afresh, so that it reads the variable.
TEST(AnsiCodePageDeathTest, IsTheOneInTheEnvironment) {
    if (onWindows) GTEST_SKIP() << "Windows has the number in its settings";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::pair<const char*, UINT> rows[] = {{"932", 932},  {"65001", 65001}, {"1361", 1361},
                                                 {"437", 1252}, {"932x", 1252},   {"", 1252}};
    for (const auto& row : rows) {
        const auto child = [&row] {
            setEnvironment("KELROOTS_ANSI_CODE_PAGE", row.first);
            const bool right = GetACP() == row.second && widen(CP_ACP, "\x85\x92") == widen(row.second, "\x85\x92");
            std::exit(right ? 0 : 1);
        };
        EXPECT_EXIT(child(), testing::ExitedWithCode(0), "") << row.first;
    }
}
