#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kLeast = INT_MIN, kMost = INT_MAX;

int text(int value, char* to, std::size_t size, int radix) { return _itoa_s(value, to, size, radix); }
int text(int value, wchar_t* to, std::size_t size, int radix) { return _itow_s(value, to, size, radix); }
int text(long value, char* to, std::size_t size, int radix) { return _ltoa_s(value, to, size, radix); }
int text(long value, wchar_t* to, std::size_t size, int radix) { return _ltow_s(value, to, size, radix); }

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
    // clang-format off
    const struct {
        double value;
        int digits;
        const char *text, *wine;  // Wine leaves the point out and stays fixed down to 0.0001
    } rows[] = {
        {0, 6, "0.", "0"}, {-0.0, 6, "-0.", "-0"}, {3, 6, "3.", "3"}, {-3, 6, "-3.", "-3"}, {100, 3, "100.", "100"},
        {100, 2, "1.e+002", "1e+002"}, {123456, 6, "123456.", "123456"}, {999999.5, 6, "1.e+006", "1e+006"},
        {99.5, 2, "1.e+002", "1e+002"}, {0.01, 6, "1.e-002", "0.01"}, {-0.00125, 6, "-1.25e-003", "-0.00125"},
        {0.00001, 6, "1.e-005", "1e-005"}, {2.5, 1, "3.", "3"}, {2.5e21, 1, "3.e+021", "3e+021"},
        {0x1.8p-30, 1, "1.e-009", "1e-009"}, {12345.678, 0, "1.e+004", "1e+004"}, {1e100, 6, "1.e+100", "1e+100"},
        {1e20, 40, "100000000000000000000.", "100000000000000000000"}};
    // clang-format on
    // clang-format off
    const struct {
        double value;
        int digits;
        const char* text;
    } everywhere[] = {
        {1.5, 6, "1.5"}, {0.5, 6, "0.5"}, {0.1, 6, "0.1"}, {0.09999996, 6, "0.1"}, {123456, 5, "1.2346e+005"},
        {0.125, 2, "0.13"}, {0.15, 1, "0.1"}, {0.45, 1, "0.5"}, {644691725, 8, "6.4469173e+008"}, {1.0 / 3, 0, "0.3"},
        {0.1, 17, "0.10000000000000001"}, {kLargest, 6, "1.79769e+308"}, {kSmallest, 6, "4.94066e-324"},
        {kInfinity, 6, "1.#INF"}, {-kInfinity, 7, "-1.#INF"},
        {1.0 / 3, 40, "0.3333333333333333148296162562473909929395"}};
    // clang-format on
    char to[101];
    for (const auto& row : rows) {
        EXPECT_EQ(_gcvt_s(to, 101, row.value, row.digits), 0) << row.text;
        EXPECT_STREQ(to, underWine() ? row.wine : row.text);
    }
    for (const auto& row : everywhere) {
        EXPECT_EQ(_gcvt_s(to, 101, row.value, row.digits), 0) << row.text;
        EXPECT_STREQ(to, row.text);
    }
    char large[1200];
    for (const int digits : {700, 767, 768, 1100}) {  // no double has more than 767
        EXPECT_EQ(_gcvt_s(large, sizeof large, std::nextafter(0x1p-1021, 0), digits), 0);
        EXPECT_EQ(_gcvt_s(large, sizeof large, kLargest, digits), 0);
        EXPECT_EQ(std::strtod(large, nullptr), kLargest) << digits;
    }
}

TEST(GcvtS, NeedsMoreRoomThanDigits) {
    // clang-format off
    const struct {
        double value;
        int digits;
        std::size_t size;
        const char* text;  // null where it does not fit
    } rows[] = {
        {1.5, 6, 6, nullptr}, {1.5, 6, 7, "1.5"}, {-1.5, 2, 5, "-1.5"}, {1234567, 3, 10, "1.23e+006"},
        {-1.5, 2, underWine() ? 3u : 4u, nullptr},  // Wine writes the terminator behind the size
        {1234567, 3, underWine() ? 8u : 9u, nullptr}, {1.5, -1, 99, nullptr}, {1.5, INT_MAX, 99, nullptr}};
    // clang-format on
    for (const auto& row : rows) {
        char to[100] = "#";
        EXPECT_EQ(_gcvt_s(to, row.size, row.value, row.digits), row.text != nullptr ? 0 : 34) << row.size;
        EXPECT_STREQ(to, row.text != nullptr ? row.text : "") << row.size;
    }
    char untouched = '#';
    EXPECT_EQ(_gcvt_s(&untouched, 0, 1.5, 6), 34);
    EXPECT_EQ(untouched, '#');
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
    const struct {
        const wchar_t* text;
        int value, error;
    } rows[] = {
        {L"", 0, 0}, {L"12abc", 12, 0}, {L" \t\n\v\f\r-12", -12, 0}, {L"+5", 5, 0}, {L"+-5", 0, 0}, {L"- 5", 0, 0},
        {L"0x10", 0, 0}, {L"010", 10, 0}, {L"1.9", 1, 0}, {L"2147483647", kMost, 0}, {L"2147483648", kMost, 34},
        {L"-2147483648", kLeast, 0}, {L"-2147483649", kLeast, 34}, {L"-4294967295", kLeast, 34},
        {L"99999999999999999999", kMost, 34}, {L"\xA0\x3000\x2009+7", 7, 0}, {L"\x200B+7", 0, 0},
        {L"-\xFF11\xFF12", -12, 0}, {L"\xFF0D\xFF15", 0, 0}, {L"\x661\x6F2\x33", 123, 0}, {L"\x669\x66A", 9, 0},
        {L"1\xE59\xFF10\xFF1A", 190, 0}, {L"\xB2", 0, 0}};
    // clang-format on
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

double read(const std::string& text) { return _wtof(units<wchar_t>(text).data()); }

TEST(Wtof, IsExactForAnyLength) {
    // clang-format off
    const struct {
        const char* text;
        double value;
    } rows[] = {
        {"", 0}, {"-1.5", -1.5}, {"+.5", 0.5}, {".", 0}, {"1.", 1}, {"-", 0}, {" \t\n\v\f\r7", 7}, {"1e5x", 1e5},
        {"1d5", 1e5}, {"1D-2", 0.01}, {"1E+2", 100}, {"1e", 1}, {"1e+", 1}, {"1e 5", 1}, {"1 e5", 1}, {".e5", 0},
        {"1..5", 1}, {"1,5", 1}, {"inf", 0}, {"nan", 0}, {"0x10", 0}, {"1e400", kInfinity}, {"-1e400", -kInfinity},
        {"1e99999999999999999999", kInfinity}, {"1e-99999999999999999999", 0}, {"0e99999999999", 0}, {"1e-400", 0},
        {"5e-324", kSmallest}, {"2.4703282292062327e-324", 0}, {"2.4703282292062328e-324", kSmallest},
        {"1.7976931348623158e308", kLargest}, {"1.7976931348623159e308", kInfinity},
        {"9007199254740993", 9007199254740992}};
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(read(row.text), row.value) << row.text;
    const std::string zeros(5000, '0'), nines(400, '9');
    EXPECT_EQ(read("9007199254740993." + zeros), 9007199254740992.0);
    EXPECT_EQ(read("9007199254740993." + zeros + "1"), 9007199254740994.0);
    EXPECT_EQ(read(zeros + "1" + zeros + "e-5000"), 1);
    EXPECT_EQ(read("0." + zeros + "1e5001"), 1);
    EXPECT_EQ(read("0." + zeros + "1"), 0);
    EXPECT_EQ(read(nines + "." + nines), kInfinity);
    EXPECT_EQ(read("0." + nines), 1);
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
        ASSERT_EQ(read(printed), value) << printed;
    }
}

}  // namespace
