#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kLeast = INT_MIN, kMost = INT_MAX;
constexpr double kInfinity = INFINITY, kLargest = DBL_MAX, kSmallest = 0x1p-1074;

// What a number becomes in a buffer that it just fits, and that one unit less is refused.
template <class Unit, class Number>
void expectNumber(int (*text)(Number, Unit*, std::size_t, int), int value, int radix) {
    char digits[40] = {};
    if (radix == 10) std::to_chars(digits, digits + 40, value);
    if (radix != 10) std::to_chars(digits, digits + 40, static_cast<unsigned>(value), radix);
    const std::vector<Unit> expected = units<Unit>(digits);
    std::vector<Unit> to(expected.size(), Unit('#'));
    EXPECT_EQ(text(value, to.data(), to.size(), radix), 0) << digits;
    EXPECT_EQ(to, expected) << digits << " in radix " << radix;
    EXPECT_EQ(text(value, to.data(), to.size() - 1, radix), 34) << digits;
    EXPECT_EQ(to[0], 0) << digits;
}

TEST(IntegerText, IsThatOfThe32BitValueInEveryRadix) {
    std::vector<int> values = {0, kMost, kLeast, kLeast + 1};
    for (const int base : {2, 7, 10, 16, 36})
        for (int power = base; power < kMost / base; power *= base)
            values.insert(values.end(), {power - 1, power, -power, 1 - power});
    for (const int value : values) {
        for (const int radix : {2, 3, 8, 10, 16, 36}) {
            expectNumber<char, int>(_itoa_s, value, radix);
            expectNumber<wchar_t, int>(_itow_s, value, radix);
            expectNumber<char, long>(_ltoa_s, value, radix);
            expectNumber<wchar_t, long>(_ltow_s, value, radix);
        }
    }
    EXPECT_EQ(_itow_s(1, nullptr, 9, 10), 22);
    wchar_t to[9] = L"#";
    EXPECT_EQ(_itow_s(1, to, 0, 10), 22);
    for (const int radix : {-1, 0, 1, 37}) {
        EXPECT_EQ(std::exchange(to[0], L'#'), radix < 0 ? '#' : 0) << radix;
        EXPECT_EQ(_itow_s(1, to, 9, radix), 22) << radix;
    }
}

TEST(GcvtS, KeepsThePointAndGoesToAnExponentOutsideItsDigits) {
    // Wine leaves the point out and stays fixed down to 0.0001.
    // clang-format off
    const struct { double value; int digits; const char* text; const char* wine = text; } rows[] = {
        {0, 6, "0.", "0"}, {-0.0, 6, "-0.", "-0"}, {100, 3, "100.", "100"}, {100, 2, "1.e+002", "1e+002"},
        {999999.5, 6, "1.e+006", "1e+006"}, {0.01, 6, "1.e-002", "0.01"}, {-0.00125, 6, "-1.25e-003", "-0.00125"},
        {2.5, 1, "3.", "3"}, {2.5e21, 1, "3.e+021", "3e+021"}, {12345.678, 0, "1.e+004", "1e+004"},
        {1e20, 40, "100000000000000000000.", "100000000000000000000"}, {0.5, 6, "0.5"}, {0.09999996, 6, "0.1"},
        {123456, 5, "1.2346e+005"}, {0.125, 2, "0.13"}, {32.5, 2, "33.", "33"}, {0.15, 1, "0.1"}, {1.0 / 3, 0, "0.3"},
        {0.1, 17, "0.10000000000000001"}, {kLargest, 6, "1.79769e+308"}, {kSmallest, 6, "4.94066e-324"},
        {kInfinity, 6, "1.#INF"}, {-kInfinity, 7, "-1.#INF"},
        {1.0 / 3, 40, "0.3333333333333333148296162562473909929395"},
    };
    // clang-format on
    char to[1200];
    for (const auto& row : rows) {
        EXPECT_EQ(_gcvt_s(to, 101, row.value, row.digits), 0) << row.text;
        EXPECT_STREQ(to, underWine() ? row.wine : row.text);
    }
    for (const int digits : {700, 767, 768, 1100}) {  // no double has more than 767
        EXPECT_EQ(_gcvt_s(to, sizeof to, std::nextafter(0x1p-1021, 0), digits), 0);
        EXPECT_EQ(_gcvt_s(to, sizeof to, kLargest, digits), 0);
        EXPECT_EQ(std::strtod(to, nullptr), kLargest) << digits;
    }
}

TEST(GcvtS, NeedsMoreRoomThanDigits) {
    const std::size_t size = underWine() ? 1 : 0;  // Wine writes the terminator behind the size
    // clang-format off
    const struct { double value; int digits; std::size_t size; const char* text; } rows[] = {
        {1.5, 6, 7, "1.5"}, {1.5, 6, 6, ""}, {-1.5, 2, 5, "-1.5"}, {-1.5, 2, 4 - size, ""},
        {1234567, 3, 10, "1.23e+006"}, {1234567, 3, 9 - size, ""}, {1.5, -1, 99, ""}, {1.5, INT_MAX, 99, ""},
        {1.5, 6, 0, "#"},
    };
    // clang-format on
    for (const auto& row : rows) {
        char to[100] = "#";
        EXPECT_EQ(_gcvt_s(to, row.size, row.value, row.digits), row.text[0] > '#' ? 0 : 34) << row.size;
        EXPECT_STREQ(to, row.text) << row.size;
    }
    EXPECT_EQ(_gcvt_s(nullptr, 9, 1.5, 6), 22);
}

// The printf family rounds the half of the last digit to even, Windows up.
double printedAndRead(double value, int digits) {
    char printed[120];
    std::snprintf(printed, sizeof printed, "%.90e", value);
    const std::string behind = std::string(printed + (digits == 1 ? 2 : digits + 1)).substr(0, 70);
    if (behind == '5' + std::string(69, '0')) value = std::nextafter(value, kInfinity);
    std::snprintf(printed, sizeof printed, "%.*e", digits - 1, value);
    return std::strtod(printed, nullptr);
}

TEST(GcvtS, RoundsToTheDigits) {
    std::mt19937 random(2009);
    for (int i = 0; i < 20000; ++i) {
        const int decimals = static_cast<int>(random() % 8), digits = 1 + static_cast<int>(random() % 15);
        double value = std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 40));
        if (i % 2 != 0) value = std::nearbyint(value * std::pow(10, decimals)) / std::pow(10, decimals);
        char to[40];
        ASSERT_EQ(_gcvt_s(to, sizeof to, value, digits), 0);
        ASSERT_EQ(std::strtod(to, nullptr), printedAndRead(value, digits)) << to << " to " << digits << " digits";
    }
}

TEST(Wtoi, ReadsDigitsOfManyScriptsAndStopsAtTheLimits) {
    // clang-format off
    const struct { const wchar_t* text; int value; int error = 0; } rows[] = {
        {L"", 0}, {L" \t\n\v\f\r-12abc", -12}, {L"+-5", 0}, {L"- 5", 0}, {L"0x10", 0}, {L"\x200B+7", 0},
        {L"2147483647", kMost}, {L"2147483648", kMost, 34}, {L"-2147483648", kLeast}, {L"-2147483649", kLeast, 34},
        {L"-4294967295", kLeast, 34}, {L"99999999999999999999", kMost, 34}, {L"\xA0\x3000\x2009+7", 7},
        {L"-\xFF11\xFF12", -12}, {L"\xFF0D\xFF15", 0}, {L"\x661\x6F2\x33", 123}, {L"1\xE59\xFF10\xFF1A", 190},
    };
    // clang-format on
    for (const auto& row : rows) {
        errno = 0;
        EXPECT_TRUE(_wtoi(row.text) == row.value && errno == row.error && _wtol(row.text) == row.value) << &row - rows;
    }
    int digits = 0;
    for (wchar_t number[] = L"1\x80"; number[1] != 0; ++number[1]) digits += _wtoi(number) >= 10;
    EXPECT_EQ(digits, 170);
}

double read(const std::string& text) { return _wtof(units<wchar_t>(text).data()); }

TEST(Wtof, IsExactForAnyLength) {
    const std::string zeros(5000, '0'), nines(400, '9');
    // clang-format off
    const std::pair<std::string, double> rows[] = {
        {"", 0}, {"-1.5", -1.5}, {"+.5", 0.5}, {".", 0}, {"1.", 1}, {"-", 0}, {" \t\n\v\f\r7", 7}, {"1D-2", 0.01},
        {"1E+2", 100}, {"1d5x", 1e5}, {"1e", 1}, {"1e+", 1}, {"1e 5", 1}, {".e5", 0}, {"1..5", 1}, {"inf", 0},
        {"nan", 0}, {"0x10", 0}, {"1e400", kInfinity}, {"-1e400", -kInfinity}, {"0e99999999999", 0},
        {"1e99999999999999999999", kInfinity}, {"1e-99999999999999999999", 0}, {"5e-324", kSmallest},
        {"2.4703282292062327e-324", 0}, {"2.4703282292062328e-324", kSmallest}, {"1.7976931348623158e308", kLargest},
        {"0." + zeros + "1", 0}, {"1.7976931348623159e308", kInfinity}, {"9007199254740993." + zeros, 9007199254740992},
        {"0." + nines, 1}, {"9007199254740993." + zeros + "1", 9007199254740994}, {zeros + "1" + zeros + "e-5000", 1},
        {"0." + zeros + "1e5001", 1}, {nines + "." + nines, kInfinity},
    };
    // clang-format on
    for (const auto& [text, value] : rows) EXPECT_EQ(read(text), value) << text;
    EXPECT_TRUE(std::signbit(_wtof(L"-0")) && _wtof(L"\xA0\x3000+7.5") == 7.5 && _wtof(L"\xFF17") == 0);
}

TEST(Wtof, ReadsBackWhatWasPrinted) {
    std::mt19937_64 random(2009);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        char printed[40];
        std::snprintf(printed, sizeof printed, "%.17g", value);
        ASSERT_EQ(read(printed), value) << printed;
    }
}

}  // namespace
