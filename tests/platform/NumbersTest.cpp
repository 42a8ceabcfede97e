#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();

int text(int value, char* to, std::size_t size, int radix) { return _itoa_s(value, to, size, radix); }
int text(int value, wchar_t* to, std::size_t size, int radix) { return _itow_s(value, to, size, radix); }
int text(long value, char* to, std::size_t size, int radix) { return _ltoa_s(value, to, size, radix); }
int text(long value, wchar_t* to, std::size_t size, int radix) { return _ltow_s(value, to, size, radix); }

template <class Unit>
std::string narrow(const Unit* units) {
    std::string result;
    while (*units != 0) result += static_cast<char>(*units++);
    return result;
}

std::string reference(int value, int radix) {
    char digits[40];
    const auto end = radix == 10 ? std::to_chars(digits, digits + 40, value)
                                 : std::to_chars(digits, digits + 40, static_cast<unsigned>(value), radix);
    return {digits, end.ptr};
}

// What a number becomes in a buffer that it just fits, and that one unit less is refused.
template <class Unit, class Number>
void expectNumber(Number value, int radix) {
    const std::string expected = reference(static_cast<int>(value), radix);
    std::vector<Unit> to(expected.size() + 1, Unit('#'));
    EXPECT_EQ(text(value, to.data(), to.size(), radix), 0) << expected;
    EXPECT_EQ(narrow(to.data()), expected) << "radix " << radix;
    EXPECT_EQ(text(value, to.data(), to.size() - 1, radix), 34) << expected;
    EXPECT_EQ(to[0], 0) << expected;
}

TEST(IntegerText, IsThatOfThe32BitValueInEveryRadix) {
    std::vector<int> values = {0, kMost, kLeast, kLeast + 1};
    for (const int base : {2, 7, 10, 16, 36}) {
        for (std::int64_t power = base; power < kMost; power *= base) {
            for (std::int64_t number = power - 1; number <= power + 1; ++number) {
                values.push_back(static_cast<int>(number));
                values.push_back(static_cast<int>(-number));
            }
        }
    }
    for (const int value : values) {
        for (const int radix : {2, 3, 8, 10, 16, 36}) {
            expectNumber<char>(value, radix);
            expectNumber<wchar_t>(value, radix);
            expectNumber<char>(long{value}, radix);
            expectNumber<wchar_t>(long{value}, radix);
        }
    }
    for (const int radix : {-1, 0, 1, 37}) {
        wchar_t to[9] = L"#";
        EXPECT_EQ(_itow_s(1, to, 9, radix), 22) << radix;
        EXPECT_EQ(to[0], 0) << radix;
    }
    wchar_t untouched[2] = L"#";
    EXPECT_EQ(_itow_s(1, untouched, 0, 10), 22);
    EXPECT_EQ(untouched[0], L'#');
    EXPECT_EQ(_itow_s(1, nullptr, 9, 10), 22);
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

TEST(GcvtS, KeepsThePointAndGoesToAnExponentOutsideItsDigits) {
    const struct {
        double value;
        int digits;
        std::size_t size;
        int error;
        const char *text, *wine;  // Wine leaves the point out and stays fixed down to 0.0001
    } rows[] = {
        {0, 6, 100, 0, "0.", "0"},
        {-0.0, 6, 100, 0, "-0.", "-0"},
        {3, 6, 100, 0, "3.", "3"},
        {-3, 6, 100, 0, "-3.", "-3"},
        {1.5, 6, 100, 0, "1.5", nullptr},
        {100, 3, 100, 0, "100.", "100"},
        {100, 2, 100, 0, "1.e+002", "1e+002"},
        {123456, 6, 100, 0, "123456.", "123456"},
        {999999.5, 6, 100, 0, "1.e+006", "1e+006"},
        {99.5, 2, 100, 0, "1.e+002", "1e+002"},
        {123456, 5, 100, 0, "1.2346e+005", nullptr},
        {0.5, 6, 100, 0, "0.5", nullptr},
        {0.1, 6, 100, 0, "0.1", nullptr},
        {0.09999996, 6, 100, 0, "0.1", nullptr},
        {0.01, 6, 100, 0, "1.e-002", "0.01"},
        {-0.00125, 6, 100, 0, "-1.25e-003", "-0.00125"},
        {0.00001, 6, 100, 0, "1.e-005", "1e-005"},
        {2.5, 1, 100, 0, "3.", "3"},
        {0.125, 2, 100, 0, "0.13", nullptr},
        {0.15, 1, 100, 0, "0.1", nullptr},  // the double is below 0.15
        {0.35, 1, 100, 0, "0.3", nullptr},
        {0.45, 1, 100, 0, "0.5", nullptr},  // the double is above 0.45
        {644691725, 8, 100, 0, "6.4469173e+008", nullptr},
        {2.5e21, 1, 100, 0, "3.e+021", "3e+021"},
        {0x1.8p-30, 1, 100, 0, "1.e-009", "1e-009"},
        {1.0 / 3, 0, 100, 0, "0.3", nullptr},
        {12345.678, 0, 100, 0, "1.e+004", "1e+004"},
        {0.1, 17, 100, 0, "0.10000000000000001", nullptr},
        {1.0 / 3, 40, 100, 0, "0.3333333333333333148296162562473909929395", nullptr},
        {1e20, 40, 100, 0, "100000000000000000000.", "100000000000000000000"},
        {1e100, 6, 100, 0, "1.e+100", "1e+100"},
        {kLargest, 6, 100, 0, "1.79769e+308", nullptr},
        {kSmallest, 6, 100, 0, "4.94066e-324", nullptr},
        {kInfinity, 6, 100, 0, "1.#INF", nullptr},
        {-kInfinity, 7, 100, 0, "-1.#INF", nullptr},
        {1.5, 6, 6, 34, "", nullptr},
        {1.5, 6, 7, 0, "1.5", nullptr},
        {-1.5, 2, 4, 34, "", "-1.5"},  // Wine writes the terminator behind the size
        {-1.5, 2, 5, 0, "-1.5", nullptr},
        {1234567, 3, 9, 34, "", "1.23e+006"},
        {1234567, 3, 10, 0, "1.23e+006", nullptr},
        {1.5, -1, 100, 34, "", nullptr},
        {1.5, kMost, 100, 34, "", nullptr},
    };
    for (const auto& row : rows) {
        std::string to(101, '#');
        const char* const expected = underWine() && row.wine != nullptr ? row.wine : row.text;
        EXPECT_EQ(_gcvt_s(&to[0], row.size, row.value, row.digits), *expected != '\0' ? 0 : row.error) << expected;
        EXPECT_EQ(to.c_str(), std::string(expected)) << row.value << " to " << row.digits << " digits";
    }
    char untouched = '#';
    EXPECT_EQ(_gcvt_s(&untouched, 0, 1.5, 6), 34);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(_gcvt_s(nullptr, 9, 1.5, 6), 22);
    char large[1200];
    for (const int digits : {700, 767, 768, 1100}) {  // no double has more than 767
        EXPECT_EQ(_gcvt_s(large, sizeof large, std::nextafter(0x1p-1021, 0), digits), 0);
        EXPECT_EQ(_gcvt_s(large, sizeof large, kLargest, digits), 0);
        EXPECT_EQ(std::strtod(large, nullptr), kLargest) << digits;
    }
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
    const struct {
        const wchar_t* text;
        int value, error;
    } rows[] = {
        {L"", 0, 0},
        {L"12abc", 12, 0},
        {L" \t\n\v\f\r-12", -12, 0},
        {L"+5", 5, 0},
        {L"+-5", 0, 0},
        {L"- 5", 0, 0},
        {L"0x10", 0, 0},
        {L"010", 10, 0},
        {L"1.9", 1, 0},
        {L"2147483647", kMost, 0},
        {L"2147483648", kMost, 34},
        {L"-2147483648", kLeast, 0},
        {L"-2147483649", kLeast, 34},
        {L"99999999999999999999999999999999999999", kMost, 34},
        {L"-4294967295", kLeast, 34},
        {L"\x00A0\x3000\x2009"
         L"7",
         7, 0},
        {L"\x200B"
         L"7",
         0, 0},
        {L"-\xFF11\xFF12", -12, 0},
        {L"\xFF0D"
         L"5",
         0, 0},
        {L"\x0661\x06F2\x0033", 123, 0},
        {L"\x0669\x066A", 9, 0},
        {L"1\x0E59\xFF10\xFF1A", 190, 0},
        {L"\x00B2", 0, 0},
    };
    for (const auto& row : rows) {
        errno = 0;
        EXPECT_EQ(_wtoi(row.text), row.value) << &row - rows;
        EXPECT_EQ(errno, row.error) << &row - rows;
        EXPECT_EQ(_wtol(row.text), row.value) << &row - rows;
    }
    int digits = 0;
    for (unsigned unit = 0x80; unit < 0x10000; ++unit) {
        const wchar_t number[] = {L'1', static_cast<wchar_t>(unit), 0};
        digits += _wtoi(number) >= 10;
    }
    EXPECT_EQ(digits, 170);
}

std::vector<wchar_t> wide(const std::string& text) { return {text.c_str(), text.c_str() + text.size() + 1}; }

TEST(Wtof, IsExactForAnyLength) {
    const std::string zeros(5000, '0'), nines(400, '9');
    const struct {
        std::string text;
        double value;
    } rows[] = {
        {"", 0},
        {"-1.5", -1.5},
        {"+.5", 0.5},
        {".", 0},
        {"1.", 1},
        {"-", 0},
        {" \t\n\v\f\r7", 7},
        {"1e5x", 1e5},
        {"1d5", 1e5},
        {"1D-2", 0.01},
        {"1E+2", 100},
        {"1e", 1},
        {"1e+", 1},
        {"1e 5", 1},
        {"1 e5", 1},
        {".e5", 0},
        {"1..5", 1},
        {"1,5", 1},
        {"inf", 0},
        {"nan", 0},
        {"0x10", 0},
        {"1e400", kInfinity},
        {"-1e400", -kInfinity},
        {"1e99999999999999999999", kInfinity},
        {"1e-99999999999999999999", 0},
        {"0e99999999999", 0},
        {"1e-400", 0},
        {"5e-324", kSmallest},
        {"2.4703282292062327e-324", 0},
        {"2.4703282292062328e-324", kSmallest},
        {"1.7976931348623158e308", kLargest},
        {"1.7976931348623159e308", kInfinity},
        {"9007199254740993", 9007199254740992},
        {"9007199254740993." + zeros, 9007199254740992},
        {"9007199254740993." + zeros + "1", 9007199254740994},
        {zeros + "1" + zeros + "e-5000", 1},
        {"0." + zeros + "1e5001", 1},
        {"0." + zeros + "1", 0},
        {nines + "." + nines, kInfinity},
        {"0." + nines, 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(_wtof(wide(row.text).data()), row.value) << row.text.substr(0, 40) << " of " << row.text.size();
    }
    EXPECT_TRUE(std::signbit(_wtof(L"-0")));
    EXPECT_EQ(_wtof(L"\x00A0\x3000"
                    L"7.5"),
              7.5);
    EXPECT_EQ(_wtof(L"\xFF17"), 0);
}

TEST(Wtof, ReadsBackWhatWasPrinted) {
    std::mt19937_64 random(2009);
    for (int i = 0; i < 20000; ++i) {
        char printed[40];
        double value;
        do {
            const std::uint64_t bits = random();
            std::memcpy(&value, &bits, sizeof value);
        } while (!std::isfinite(value));
        std::snprintf(printed, sizeof printed, "%.17g", value);
        ASSERT_EQ(_wtof(wide(printed).data()), value) << printed;
    }
}

}  // namespace
