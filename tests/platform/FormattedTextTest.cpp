// Formatted text: the Windows meaning of every conversion, in both widths.
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <random>
#include <string>

namespace {

// Prints into a buffer, or only measures where there is none.
template <class Unit>
int print(Unit* to, std::size_t size, const Unit* format, ...) {
    va_list args;
    va_start(args, format);
    int result;
    if constexpr (sizeof(Unit) == 1) {
        result = to != nullptr ? vsprintf_s(to, size, format, args) : _vscprintf(format, args);
    } else {
        result = to != nullptr ? vswprintf_s(to, size, format, args) : _vscwprintf(format, args);
    }
    va_end(args);
    return result;
}

// The text, with ^ for a unit above FF, or "refused" where the answer is -1 with an empty text. It must fit into a
// buffer of just its length and a terminator, and into none that is smaller.
template <class Unit, class... Values>
std::string formatted(const Unit* format, Values... values) {
    Unit buffer[2000] = {'~', 0};
    const int result = print(buffer, std::size(buffer), format, values...);
    if (result < 0) return result == -1 && buffer[0] == 0 ? "refused" : "not empty";
    const std::size_t length = static_cast<std::size_t>(result);
    if (print<Unit>(nullptr, 0, format, values...) != result) return "of another length";
    std::string text;
    for (const Unit* at = buffer; at < buffer + length; ++at) text += static_cast<char>(int{*at} > 0xFF ? '^' : *at);
    if (buffer[length] != 0) return text + " without terminator";
    if (underWine() && sizeof(Unit) == 1) return text;  // its narrow form fills a buffer that is too small
    if (print(buffer, length + 1, format, values...) != result) return "where it should fit";
    for (const std::size_t size : {length, length / 2}) {
        errno = 0;
        buffer[size] = '~';
        const bool refused = print(buffer, size, format, values...) == -1 && errno == ERANGE && buffer[size] == '~';
        if (!refused || (size > 0 && buffer[0] != 0)) text += " where it does not fit";
    }
    return text;
}

// Both widths give one text.
template <class... Values>
void shows(const std::string& expected, const char* format, Values... values) {
    EXPECT_EQ(formatted(units<wchar_t>(format).data(), values...), expected) << "wide " << format;
    if (underWine() && expected == "refused") return;  // its narrow form shows the letter
    EXPECT_EQ(formatted(format, values...), expected) << "narrow " << format;
}

// Signs, widths, precisions and # of ordinary values: see the random numbers below.
TEST(FormattedText, ShowsIntegersAndPointers) {
    shows("-5|7|4294967295|10|ff|FF", "%d|%i|%u|%o|%x|%X", -5, 7, -1, 8, 255, 255);
    shows("-2147483648|-9223372036854775808|ffffffffffffffff", "%d|%I64d|%I64x", INT_MIN, LLONG_MIN, ULLONG_MAX);
    shows("18446744073709551615|1777777777777777777777", "%I64u|%I64o", ULLONG_MAX, ULLONG_MAX);
    shows("5|5|5|[][][][+][   ]", "%+u|% u|%+x|[%.0d][%.0x][%.d][%+.0d][%3.0d]", 5, 5, 5, 0, 0, 0, 0, 0);
    shows("0|0|   42|42   |42   ", "%#x|%#o|%*d|%*d|%-*d", 0, 0, 5, 42, -5, 42, 5, 42);
    shows("0042|42|   042|+5|5    |+5", "%.*d|%.*d|%*.*d|%++d|%-05d|%+ d", 4, 42, -1, 42, 6, 3, 42, 5, 5, 5);
    for (const char* format : {"%hd", "%hu", "%lhd"}) shows("263", format, 0x100010107);
    for (const char* format : {"%d", "%ld", "%lu", "%I32d", "%wi", "%Lu", "%hld"}) shows("65799", format, 0x100010107);
    for (const char* format : {"%lld", "%I64d", "%Id", "%Iu", "%zi", "%jd", "%td", "%llhd", "%hlld"})
        shows("4295033095", format, 0x100010107);
    shows("-1|ffff|10|-5|4294967295|ffffffff", "%hi|%hx|%ho|%ld|%lu|%lx", 65535, -1, 65544, -5, -1, -1);
    if (!underWine()) {  // it takes hh for h and lets the flag 0 count beside a precision
        shows("44|ff|255|  042|     0x0ff", "%hhd|%hhx|%hhu|%05.3d|%#010.3x", 300, -1, 255, 42, 255);
    }
    void* const one = reinterpret_cast<void*>(1);
    shows("00000000ABCDEF12|0000000000000000", "%p|%p", reinterpret_cast<void*>(0xABCDEF12), nullptr);
    shows("  0000000000000001|0000000000000001 |0X0000000000000001", "%18p|%-17p|%#p", one, one, one);
}

TEST(FormattedText, ShowsFloatingPointNumbers) {
    shows("1.500000|1.500000e+000|1.500000E+000|1.5|1E-005", "%f|%e|%E|%g|%G", 1.5, 1.5, 1.5, 1.5, 1e-5);
    shows("1.500000|1.500000|1.500000|    2.50|2", "%lf|%Lf|%hf|%*.*f|%.f", 1.5, 1.5, 1.5, 8, 2, 2.5, 1.7);
    shows("00000001.5|1.5e+000  |1e+006|100000|0.0001|-0", "%010g|%-10.1e|%g|%g|%g|%g", 1.5, 1.5, 1e6, 1e5, 1e-4, -0.0);
    shows("0.000000e+000|-0.000000e+000|4.941e-324|0e+000|0", "%e|%e|%.3e|%.0e|%.0g", 0.0, -0.0, 4.9e-324, 0.0, 0.0);
    shows("1.23457e+006|1e+006|99999.9|1.79769e+308", "%g|%g|%g|%g", 1234567.0, 999999.5, 99999.95, DBL_MAX);
    shows("1e+002|0.0001|1e+005|2|10.0", "%.2g|%.2g|%.3g|%.0g|%.1f", 99.5, 0.00009996, 99999.0, 1.5, 9.96);
    shows("1.00000|0.00000|1.|1.e+000|0.|1.00", "%#g|%#g|%#.0f|%#.0e|%#.0g|%#.3g", 1.0, 0.0, 1.0, 1.0, 0.0, 1.0);
    shows("99999999999999991611392.000000|123456789012345680.0", "%f|%.1f", 1e23, 123456789012345680.0);
    // Halves go away from zero.
    shows("1|2|3|10|-3|0.3|1.00", "%.0f|%.0f|%.0f|%.0f|%.0f|%.1f|%.2f", 0.5, 1.5, 2.5, 9.5, -2.5, 0.25, 1.005);
    shows("1.13e+000|1.3e+002|1e+001|3e+001|3e+005", "%.2e|%.2g|%.0e|%.0e|%.1g", 1.125, 125.0, 9.5, 25.0, 250000.0);
    shows("0x1.999999999999ap-4|0X1.FE00000000000P+7|0x0.0000000000000p+0", "%a|%A|%a", 0.1, 255.0, 0.0);
    shows("0x0.0000000000001p-1022|0x1.fffffffffffffp+1023", "%a|%a", 4.9e-324, DBL_MAX);
    shows("0x2p+0|0x1p+0|0x1.p+0|0x1.1ap+0|0x2.0p+0", "%.0a|%.0a|%#.0a|%.2a|%.1a", 1.5, 1.25, 1.0, 1.1, 1.96875);
    shows("0x1.999999999999a0p-4|-0x1.0p+0|0x00001.0p+0", "%.14a|%.1a|%012.1a", 0.1, -1.0, 1.0);
    shows("1.#INF00|1.#INF00e+000|-1.#INF|    1.#INF", "%f|%e|%G|%10.4f", INFINITY, INFINITY, -INFINITY, INFINITY);
    shows("1.#QNAN0|1.#QNAN0e+000|1.#QNAN|+1.#INF00", "%f|%e|%g|%+f", NAN, NAN, NAN, INFINITY);
}

TEST(FormattedText, ShowsTextsOfTheKindThatTheConversionNames) {
    const wchar_t w[] = {'w', 0xE4}, *const euro = L"a\x20AC";  // the precision keeps the reader inside the first
    const char n[] = {'n', '\xE4'};
    for (auto format : {L"%.2s", L"%.2ls", L"%.2ws", L"%.2lS", L"%.2hls"}) EXPECT_EQ(formatted(format, w), "w\xE4");
    for (auto format : {L"%.2S", L"%.2hs", L"%.2hS", L"%.2lhs"}) EXPECT_EQ(formatted(format, n), "n\xE4") << format[3];
    for (auto format : {"%.2s", "%.2hs", "%.2hS"}) EXPECT_EQ(formatted(format, n), "n\xE4") << format;
    for (auto format : {"%.2S", "%.2ls", "%.2ws", "%.2lS"}) EXPECT_EQ(formatted(format, w), "w\xE4") << format;
    EXPECT_EQ(formatted(L"%s|%5.1S|%.*s|%-*s|%.0s", euro, "abc", -1, L"cd", 3, L"e", w), "a^|    a|cd|e  |");
    EXPECT_EQ(formatted("%.1S|%-5S|%05S|%.0s", euro, L"abc", L"abc", n), "a|abc  |00abc|") << "what is cut off is free";
    shows("(null)|(null)|(null)", "%s|%S|%ls", nullptr, nullptr, nullptr);
    shows("[0000(null)][(nu][(null)  ]", "[%010s][%.3s][%-8s]", nullptr, nullptr, nullptr);
    shows(std::string("a    b|c  |d00\0|f", 17), "%c%5c|%-3c|%C%03c|%c", 'a', 'b', 'c', 'd', 0, 'f');
    shows("\xE4|\xE4|\xE4|\xFF|w|%5", "%c|%hc|%lc|%C|%wc|%%%d", 0xE4, 0xE4, 0xE4, 0xFF, 'w', 5);
    EXPECT_EQ(formatted(L"%c%lc%hc", 0x20AC, 0x20AC, 0xAC), "^^\xAC");
    EXPECT_EQ(formatted("a%Cb%lcc", 0x20AC, 0x141), "abc") << "no byte for it";
}

TEST(FormattedText, RefusesWhatIsNoConversion) {
    for (const char* format : {"%y", "%F", "%5%", "a%", "%5", "%-", "%l", "%.", "%I64", "%1$s", "%5-d", "%D", "%.5*d",
                               "%5.5.5d", "%I16d", "%Is", "%zs", "ok %d%y"})
        shows("refused", format, 5, 5, 5);
    if (underWine()) return;  // it stores what %n asks for, and leaves the beginning of what has no bytes
    int written = 7;
    shows("refused", "ab%ncd", &written);
    EXPECT_EQ(written, 7);
    EXPECT_EQ(formatted("%d %S", 5, L"a\x20AC"), "refused") << "no byte for it";
}

TEST(FormattedText, SurvivesFieldsOfAnySize) {
    if (onWindows) GTEST_SKIP() << "Wine damages its heap";
    const std::pair<const char*, int> rows[] = {{"%.100000000f", 100000002},  {"%.100000000e", 100000007},
                                                {"%#.100000000g", 100000001}, {"%.100000000a", 100000007},
                                                {"%.100000000g", 3},          {"%-100000000f|", 100000001}};
    for (const auto& [format, length] : rows) EXPECT_EQ(print<char>(nullptr, 0, format, 1.5), length) << format;
    EXPECT_EQ(print<char>(nullptr, 0, "%.100000000d|%-*s|", 5, -100000000, "a"), 200000002);
    for (const char* format : {"%2147483647d%2147483647d", "%99999999999999999999d", "%.2147483647d"})
        shows("refused", format, 1, 1);
    for (const char* format : {"%.2147483647f", "%#.2147483647g"}) shows("refused", format, 0.0001);
    shows("refused", "%*d", INT_MIN, 5);
    shows("1.500000", "%.*f", INT_MIN, 1.5);
    EXPECT_EQ(formatted("%.1080f", -1.0).size(), 1083u);
    EXPECT_EQ(formatted("%.1100f", DBL_MAX).size(), 309u + 1 + 1100);
}

TEST(FormattedText, AgreesWithTheCLibraryOnRandomNumbers) {
    std::mt19937_64 random(2009);
    const auto below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    for (int i = 0; i < 40000 && !HasFailure(); ++i) {
        const char letter = "diuxXofge"[below(9)];
        const bool isFloating = letter >= 'e' && letter <= 'g', isSigned = isFloating || letter == 'd' || letter == 'i';
        std::string format = "%";
        for (const char flag : std::string(isFloating ? "+ -#" : isSigned ? "+ -" : "-#"))
            if (below(3) == 0) format += flag;
        const bool hasPrecision = below(2) == 0;
        if (!hasPrecision && below(3) == 0) format += '0';
        if (letter != 'e' && letter != 'g') format += std::to_string(1 + below(20));  // Wine damages its heap beyond
        if (hasPrecision) format += "." + std::to_string(isFloating ? below(30) : 1 + below(12));
        format += (isFloating ? "" : "ll") + std::string(1, letter);

        const auto reference = [&format](auto value) {
            char text[600];
            return std::string(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format.c_str(), value)));
        };
        const auto integer = static_cast<long long>(random() >> below(64));
        // So many binary places that no value lies halfway, where the two round differently.
        const double number = std::ldexp(static_cast<double>(random()), -64 - static_cast<int>(below(120)));
        std::string expected = isFloating ? reference(number) : reference(integer);
        if (isFloating && expected.find('e') < expected.size()) expected.insert(expected.find('e') + 2, 1, '0');
        isFloating ? shows(expected, format.c_str(), number) : shows(expected, format.c_str(), integer);
    }
}

}  // namespace
