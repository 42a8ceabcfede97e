// Formatted text: the Windows meaning of every conversion, in both widths.
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

// Wide text as 8-bit text, what is not ASCII as \xNNNN.
std::string shown(const wchar_t* text, int length) {
    std::string result;
    for (int i = 0; i < length; ++i) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, text[i] < 0x7F ? "%c" : "\\x%04X", static_cast<unsigned>(text[i]));
        result += text[i] == 0 ? std::string("\\0") : escaped;
    }
    return result;
}

std::string shown(const char* text, int length) {
    std::vector<wchar_t> units(text, text + length);
    for (wchar_t& unit : units) unit &= 0xFF;
    return shown(units.data(), length);
}

std::vector<wchar_t> widened(const char* text) { return std::vector<wchar_t>(text, text + std::strlen(text) + 1); }

int print(char* to, std::size_t size, const char* format, va_list args) { return vsprintf_s(to, size, format, args); }
int print(wchar_t* to, std::size_t size, const wchar_t* format, va_list args) {
    return vswprintf_s(to, size, format, args);
}
int measure(const char* format, va_list args) { return _vscprintf(format, args); }
int measure(const wchar_t* format, va_list args) { return _vscwprintf(format, args); }

template <class Unit>
int printInto(Unit* to, std::size_t size, const Unit* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = print(to, size, format, args);
    va_end(args);
    return result;
}

// The text, or "refused" where the answer is -1 with an empty text; the measured length must agree.
template <class Unit>
std::string formatted(const Unit* format, ...) {
    Unit buffer[2000] = {'~', '~', 0};
    va_list args, again;
    va_start(args, format);
    va_copy(again, args);
    const int result = print(buffer, std::size(buffer), format, args);
    const int measured = result < 0 ? result : measure(format, again);
    va_end(again);
    va_end(args);
    if (result < 0) return result == -1 && buffer[0] == 0 ? "refused" : "not empty: " + shown(buffer, 2);
    if (measured != result) return "measured " + std::to_string(measured) + ", not " + std::to_string(result);
    return buffer[result] != 0 ? "not terminated" : shown(buffer, result);
}

// Arguments that wait for their format. The same ones go through both widths and must give one text.
using Arguments = std::function<std::string(const char*)>;

template <class... Values>
Arguments with(Values... values) {
    return [=](const char* format) {
        const std::string narrow = formatted(format, values...);
        const std::string wide = formatted(widened(format).data(), values...);
        return narrow == wide ? narrow : "narrow " + narrow + ", wide " + wide;
    };
}

struct Row {
    const char* format;
    Arguments arguments;
    const char* expected;
};

template <std::size_t count>
void check(const Row (&rows)[count]) {
    for (const Row& row : rows) EXPECT_EQ(row.arguments(row.format), row.expected) << row.format;
}

constexpr long long big = 0x1234567890;

TEST(FormattedText, ShowsIntegers) {
    check({
        {"%d|%i|%u|%o|%x|%X", with(-5, 7, -1, 8, 255, 255), "-5|7|4294967295|10|ff|FF"},
        {"%d|%d|%d|%d|%d", with(0, 9, 10, 99, 100), "0|9|10|99|100"},
        {"%d|%u|%o", with(INT_MIN, UINT_MAX, UINT_MAX), "-2147483648|4294967295|37777777777"},
        {"%I64d|%I64u", with(LLONG_MIN, ULLONG_MAX), "-9223372036854775808|18446744073709551615"},
        {"%I64o|%I64x", with(ULLONG_MAX, ULLONG_MAX), "1777777777777777777777|ffffffffffffffff"},
        {"[%5d][%-5d][%05d][%-05d]", with(42, 42, 42, 42), "[   42][42   ][00042][42   ]"},
        {"%+d|% d|%+ d|%+d|% d|%+05d|% 05d", with(5, 5, 5, -5, -5, 5, 5), "+5| 5|+5|-5|-5|+0005| 0005"},
        {"%+u|% u|%+x", with(5, 5, 5), "5|5|5"},
        {"%.3d|%5.3d|%-5.3d|%.3d", with(42, 42, 42, -42), "042|  042|042  |-042"},
        {"[%.0d][%.0x][%.d][%+.0d][%3.0d]", with(0, 0, 0, 0, 0), "[][][][+][   ]"},
        {"%#x|%#x|%#X|%#8x|%#08x|%-#8x|%#.4x", with(0, 1, 255, 255, 255, 255, 255),
         "0|0x1|0XFF|    0xff|0x0000ff|0xff    |0x00ff"},
        {"%#o|%#o|%#.3o|%#.5o|%#5o|%#05o", with(0, 8, 8, 8, 8, 8), "0|010|010|00010|  010|00010"},
        {"%*d|%*d|%-*d", with(5, 42, -5, 42, 5, 42), "   42|42   |42   "},
        {"%.*d|%.*d|%*.*d", with(4, 42, -1, 42, 6, 3, 42), "0042|42|   042"},
        {"% 5d|%++d|%--5d|%00005d", with(5, 5, 5, 5), "    5|+5|5    |00005"},
        {"%.15d|%20.15d|%-20.15d|", with(42, 42, 42), "000000000000042|     000000000000042|000000000000042     |"},
    });
    // Windows ignores the flag 0 beside a precision, Wine does not.
    if (!underWine()) check({{"%05.3d|%#010.3x", with(42, 255), "  042|     0x0ff"}});
}

TEST(FormattedText, TakesIntegersOfTheSizeTheFormatNames) {
    check({
        {"%d|%ld|%lu|%I32d|%wd", with(big, big, big, big, big), "878082192|878082192|878082192|878082192|878082192"},
        {"%hd|%hu|%hi|%hx|%ho", with(70000, 70000, 65535, -1, 65544), "4464|4464|-1|ffff|10"},
        {"%lld|%I64d|%Id|%Ii|%zd|%jd|%td", with(big, big, big, big, big, big, big),
         "78187493520|78187493520|78187493520|78187493520|78187493520|78187493520|78187493520"},
        {"%ld|%lu|%lx|%Lx", with(-5, -1, -1, big), "-5|4294967295|ffffffff|34567890"},
        {"%hld|%lhd|%llhd|%hlld", with(big, big, big, big), "878082192|30864|78187493520|78187493520"},
        {"%Iu|%Ix|%IX|%Io", with(-5LL, 255LL, 255LL, 8LL), "18446744073709551611|ff|FF|10"},
    });
    // hh is a char on Windows; Wine takes it for h.
    if (!underWine()) check({{"%hhd|%hhx|%hhu", with(300, -1, 255), "44|ff|255"}});
}

TEST(FormattedText, ShowsPointers) {
    void* const one = reinterpret_cast<void*>(1);
    check({
        {"%p|%p", with(reinterpret_cast<void*>(0xABCDEF12), nullptr), "00000000ABCDEF12|0000000000000000"},
        {"%20p|%-20p|%020p|%+p", with(one, one, one, one),
         "    0000000000000001|0000000000000001    |    0000000000000001|0000000000000001"},
        {"%#p", with(one), "0X0000000000000001"},
    });
}

TEST(FormattedText, ShowsFloatingPointNumbers) {
    check({
        {"%f|%e|%E|%g|%G", with(1.5, 1.5, 1.5, 1.5, 1.5), "1.500000|1.500000e+000|1.500000E+000|1.5|1.5"},
        {"%lf|%Lf|%hf|%le|%lg", with(1.5, 1.5, 1.5, 1.5, 1.5), "1.500000|1.500000|1.500000|1.500000e+000|1.5"},
        {"%10.3f|%-10.3f|%010.3f|%+f|% f", with(3.14159, 3.14159, -3.14159, 1.0, 1.0),
         "     3.142|3.142     |-00003.142|+1.000000| 1.000000"},
        {"%+010.2f|% 010.2f|%012g|%-12.1e|", with(1.0, 1.0, 1.5, 1.5),
         "+000001.00| 000001.00|0000000001.5|1.5e+000    |"},
        {"%e|%e|%e|%.3e", with(0.0, -0.0, 1e-300, 4.9e-324), "0.000000e+000|-0.000000e+000|1.000000e-300|4.941e-324"},
        {"%g|%g|%g|%g|%g|%g", with(1e5, 1e6, 1e-4, 1e-5, 0.0, -0.0), "100000|1e+006|0.0001|1e-005|0|-0"},
        {"%g|%g|%g|%g", with(1234567.0, 999999.5, 99999.95, 1e100), "1.23457e+006|1e+006|99999.9|1e+100"},
        {"%.2g|%.2g|%.3g|%.0g|%.10g", with(99.5, 0.00009996, 99999.0, 1.5, 1234567890.0),
         "1e+002|0.0001|1e+005|2|1234567890"},
        {"%#g|%#g|%#.0f|%#.0e|%#.0g|%#.3g", with(1.0, 0.0, 1.0, 1.0, 0.0, 1.0), "1.00000|0.00000|1.|1.e+000|0.|1.00"},
        {"%.0e|%.0g|%.f|%*.*f", with(0.0, 0.0, 1.7, 8, 2, 2.5), "0e+000|0|2|    2.50"},
        {"%.3f|%.1f|%.0f|%.3f", with(9.9996, 9.96, 9.5, 0.0004), "10.000|10.0|10|0.000"},
        {"%f|%.1f", with(1e23, 123456789012345680.0), "99999999999999991611392.000000|123456789012345680.0"},
        {"%.30f|%.20g", with(0.1, 0.1), "0.100000000000000005551115123126|0.10000000000000000555"},
        {"%.30e", with(0.1), "1.000000000000000055511151231258e-001"},
        {"%.15g|%.16g|%.17g|%.18g", with(0.1, 0.1, 0.1, 0.1), "0.1|0.1|0.10000000000000001|0.100000000000000006"},
        {"%g|%g", with(DBL_MAX, DBL_MIN), "1.79769e+308|2.22507e-308"},
    });
}

TEST(FormattedText, RoundsHalvesAwayFromZero) {
    check({
        {"%.0f|%.0f|%.0f|%.0f", with(0.5, 1.5, 2.5, 3.5), "1|2|3|4"},
        {"%.1f|%.2f|%.2f|%.1f|%.0f", with(0.25, 0.125, 1.005, 0.05, -2.5), "0.3|0.13|1.00|0.1|-3"},
        {"%.2e|%.3g|%.1e|%.0e|%.0e", with(1.125, 1.125, 0.25, 2.5, 9.5), "1.13e+000|1.13|2.5e-001|3e+000|1e+001"},
        {"%.0e|%.1e|%.2g|%.1g", with(25.0, 1250.0, 125.0, 250000.0), "3e+001|1.3e+003|1.3e+002|3e+005"},
    });
}

TEST(FormattedText, ShowsHexadecimalFloatingPoint) {
    check({
        {"%a|%A|%a", with(1.5, 255.0, -1.0), "0x1.8000000000000p+0|0X1.FE00000000000P+7|-0x1.0000000000000p+0"},
        {"%a|%a|%a", with(0.1, 0.0, DBL_MAX), "0x1.999999999999ap-4|0x0.0000000000000p+0|0x1.fffffffffffffp+1023"},
        {"%.0a|%.0a|%#.0a|%.2a|%.1a|%.14a", with(1.5, 1.25, 1.0, 1.1, 1.96875, 0.1),
         "0x2p+0|0x1p+0|0x1.p+0|0x1.1ap+0|0x2.0p+0|0x1.999999999999a0p-4"},
        {"%a|%+a|%025a", with(4.9e-324, 1.0, 1.0),
         "0x0.0000000000001p-1022|+0x1.0000000000000p+0|0x000001.0000000000000p+0"},
    });
}

TEST(FormattedText, NamesWhatIsNoFiniteNumber) {
    check({
        {"%f|%e|%g|%G", with(INFINITY, INFINITY, INFINITY, -INFINITY), "1.#INF00|1.#INF00e+000|1.#INF|-1.#INF"},
        {"%f|%e|%g|%+f", with(NAN, NAN, NAN, INFINITY), "1.#QNAN0|1.#QNAN0e+000|1.#QNAN|+1.#INF00"},
        {"%10.4f|%.10f", with(INFINITY, INFINITY), "    1.#INF|1.#INF000000"},
    });
}

TEST(FormattedText, TakesTheTextThatTheConversionNames) {
    const wchar_t* const w = L"w\x00E4";
    const char* const n = "n\xE4";
    for (const wchar_t* format : {L"%s", L"%ls", L"%ws", L"%lS", L"%hls", L"%lls"})
        EXPECT_EQ(formatted(format, w), "w\\x00E4") << format[1];
    for (const wchar_t* format : {L"%S", L"%hs", L"%hS", L"%lhs"})
        EXPECT_EQ(formatted(format, n), "n\\x00E4") << format[1];
    for (const char* format : {"%s", "%hs", "%hS"}) EXPECT_EQ(formatted(format, n), "n\\x00E4") << format;
    for (const char* format : {"%S", "%ls", "%ws", "%lS"}) EXPECT_EQ(formatted(format, w), "w\\x00E4") << format;
    EXPECT_EQ(formatted(L"%10S|%-5S|%.1S|%05S", "abc", "abc", "abc", "abc"), "       abc|abc  |a|00abc");
    EXPECT_EQ(formatted("%10S|%-5S|%.1S|%05S", L"abc", L"abc", L"abc", L"abc"), "       abc|abc  |a|00abc");
    EXPECT_EQ(formatted(L"%s", L"\xD83D\xDE00\x20AC"), "\\xD83D\\xDE00\\x20AC");
    EXPECT_EQ(formatted("%.1S", L"a\x20AC"), "a") << "what the precision cuts off does not count";
}

TEST(FormattedText, ShowsTextInItsField) {
    // The precision also keeps the reader inside a text without terminator.
    const wchar_t wide[] = {'a', 'b', 'c'};
    const char narrow[] = {'a', 'b', 'c'};
    EXPECT_EQ(formatted(L"%.3s|%5.2s|%-5.1s|%.0s|%05.3s", wide, wide, wide, wide, wide), "abc|   ab|a    ||00abc");
    EXPECT_EQ(formatted("%.3s|%5.2s|%-5.1s|%.0s|%05.3s", narrow, narrow, narrow, narrow, narrow),
              "abc|   ab|a    ||00abc");
    EXPECT_EQ(formatted(L"%*s|%-*s|%.*s", -4, L"a", 4, L"b", -1, L"cd"), "a   |b   |cd");
    const char* const null = nullptr;
    check({
        {"%s|%S|%hs|%ls|%#s", with(null, null, null, null, null), "(null)|(null)|(null)|(null)|(null)"},
        {"[%010s][%.3s][%-8s][%8S][%08.2s][%.0s]", with(null, null, null, null, null, null),
         "[0000(null)][(nu][(null)  ][  (null)][000000(n][]"},
    });
}

TEST(FormattedText, ShowsCharacters) {
    check({
        {"%c%5c|%-5c|%C%5C|%05c", with('a', 'b', 'c', 'd', 'e', 'f'), "a    b|c    |d    e|0000f"},
        {"%c|%C|%hc|%lc|%wc|%hC|%lC", with('a', 'b', 'c', 'd', 'e', 'f', 'g'), "a|b|c|d|e|f|g"},
        {"%c|%hc|%lc|%C", with(0xE4, 0xE4, 0xE4, 0xFF), "\\x00E4|\\x00E4|\\x00E4|\\x00FF"},
        {"%c%c%c", with('a', 0, 'b'), "a\\0b"},
        {"100%%|%%%d", with(5), "100%|%5"},
    });
    EXPECT_EQ(formatted(L"%c%lc%hc", 0x20AC, 0x20AC, 0xAC), "\\x20AC\\x20AC\\x00AC");
    EXPECT_EQ(formatted("a%Cb%lcc", 0x20AC, 0x141), "abc") << "no byte for it";
}

TEST(FormattedText, RefusesWhatIsNoConversion) {
    for (const char* format : {"%y", "%F", "%5%", "%", "a%", "%5", "%-", "%l", "%.", "%I64", "%Z", "%1$s", "%!", "%5-d",
                               "%D", "%.5*d", "%5.5.5d", "%I16d", "%Is", "%zs", "ok %d%y"}) {
        EXPECT_EQ(formatted(widened(format).data(), 5, 5, 5), "refused") << "wide " << format;
        if (underWine()) continue;  // its narrow form shows the letter
        EXPECT_EQ(formatted(format, 5, 5, 5), "refused") << "narrow " << format;
    }
    int written = 7;
    if (!underWine()) {  // Wine stores
        EXPECT_EQ(with(&written)("ab%ncd"), "refused");
        EXPECT_EQ(written, 7);
        EXPECT_EQ(formatted("%d %S", 5, L"a\x20AC"), "refused") << "no byte for it; Wine leaves the beginning";
    }
}

TEST(FormattedText, RefusesWhatDoesNotFit) {
    const struct { const char* format; const char* text; std::size_t size; int expected; } rows[] = {
        {"%s", "abc", 4, 3}, {"%s", "abc", 3, -1}, {"%s", "abc", 1, -1}, {"%s", "abc", 0, -1}, {"%s", "", 1, 0},
        {"x%s", "ab", 4, 3}, {"x%s", "ab", 3, -1}, {"%ss", "ab", 3, -1}, {"%4s", "", 5, 4},    {"%4s", "", 4, -1},
        {"", "", 1, 0},      {"", "", 0, -1},      {"%2147483647s", "", 5, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.format + std::string(" of ") + row.text + " into " + std::to_string(row.size));
        wchar_t wide[8] = {'~', '~', '~', '~', '~', '~', '~', '~'};
        errno = 0;
        EXPECT_EQ(printInto(wide, row.size, widened(row.format).data(), widened(row.text).data()), row.expected);
        EXPECT_EQ(errno, row.expected < 0 ? ERANGE : 0);
        EXPECT_EQ(wide[0], row.size == 0 ? '~' : row.expected <= 0 ? 0 : wide[0]);
        EXPECT_EQ(wide[row.size], '~') << "behind the buffer";
        if (underWine()) continue;  // its narrow form leaves a text without terminator
        char narrow[] = "~~~~~~~~";
        EXPECT_EQ(printInto(narrow, row.size, row.format, row.text), row.expected);
        EXPECT_EQ(narrow[0], row.size == 0 ? '~' : row.expected <= 0 ? 0 : narrow[0]);
        EXPECT_EQ(narrow[row.size], '~') << "behind the buffer";
    }
}

TEST(FormattedText, SurvivesFieldsOfAnySize) {
    if (onWindows) GTEST_SKIP() << "Wine damages its heap";
    const auto length = [](const wchar_t* format, auto... values) {
        return [](const wchar_t* text, ...) {
            va_list args;
            va_start(args, text);
            const int result = _vscwprintf(text, args);
            va_end(args);
            return result;
        }(format, values...);
    };
    EXPECT_EQ(length(L"%100000000d", 5), 100000000);
    EXPECT_EQ(length(L"%.100000000d|", 5), 100000001);
    EXPECT_EQ(length(L"%-*s|", -100000000, L"a"), 100000001);
    EXPECT_EQ(length(L"%.100000000f", 1.5), 100000002);
    EXPECT_EQ(length(L"%.100000000e", 1.5), 100000007);
    EXPECT_EQ(length(L"%#.100000000g", 1.5), 100000001);
    EXPECT_EQ(length(L"%.100000000a", 1.5), 100000007);
    EXPECT_EQ(length(L"%.100000000g", 0.5), 3);
    for (const char* format : {"%2147483647d%2147483647d", "%99999999999999999999d", "%.2147483647d", "%.2147483647f",
                               "%#.2147483647g"})
        for (const double value : {1.5, 0.0001}) EXPECT_EQ(with(value, value)(format), "refused") << format;
    EXPECT_EQ(with(INT_MIN, 5)("%*d"), "refused");
    EXPECT_EQ(with(INT_MIN, 1.5)("%.*f"), "1.500000");
    EXPECT_EQ(with(-1.0)("%.1080f").size(), 1083u);
    EXPECT_EQ(with(DBL_MAX)("%.1100f").size(), 309u + 1 + 1100);
}

template <class Value>
std::string fromTheCLibrary(const std::string& format, Value value) {
    char buffer[600];
    return {buffer, static_cast<std::size_t>(std::snprintf(buffer, sizeof buffer, format.c_str(), value))};
}

TEST(FormattedText, AgreesWithTheCLibraryOnRandomNumbers) {
    std::mt19937_64 random(2009);
    const auto below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    for (int i = 0; i < 20000; ++i) {
        const char letter = "diuxXo"[below(6)];
        std::string format = "%";
        for (const char flag : std::string(letter <= 'i' && letter != 'X' ? "+ -" : "#-"))
            if (below(3) == 0) format += flag;
        const bool hasPrecision = below(2) == 0;
        if (!hasPrecision && below(3) == 0) format += '0';
        format += std::to_string(1 + below(20));  // Wine damages its heap beyond
        if (hasPrecision) format += "." + std::to_string(1 + below(12));
        format += std::string("ll") + letter;
        const auto integer = static_cast<long long>(random() >> below(64));
        ASSERT_EQ(with(integer)(format.c_str()), fromTheCLibrary(format, integer)) << format << " of " << integer;

        // So many binary places that no value lies halfway, where the two round differently.
        const double value = std::ldexp(static_cast<double>(random()), -64 - static_cast<int>(below(120)));
        format = "%." + std::to_string(below(30)) + "fge"[below(3)];
        std::string expected = fromTheCLibrary(format, value);
        const std::size_t exponent = expected.find('e');
        if (exponent != std::string::npos) expected.insert(exponent + 2, 1, '0');
        ASSERT_EQ(with(value)(format.c_str()), expected) << format << " of " << value;
    }
}

}  // namespace
