#include <roots/platform/Win32.h>

#include "BoundedUnits.h"
#include "CharacterTypes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

using namespace platform;

namespace {

// "00", "01" ... "99": two digits a division.
struct DigitPairs {
    char text[200] = {};
    constexpr DigitPairs() {
        for (int i = 0; i < 100; ++i) {
            text[2 * i] = static_cast<char>('0' + i / 10);
            text[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
    }
};
constexpr DigitPairs kPairs;

std::size_t digitCount(std::uint32_t value, std::uint32_t radix) {
    std::size_t count = 1;
    for (std::uint64_t limit = radix; value >= limit; limit *= radix) ++count;
    return count;
}

template <class Unit>
void writeDecimal(Unit* end, std::uint32_t value) {
    for (; value >= 100; value /= 100) {
        const char* pair = kPairs.text + value % 100 * 2;
        *--end = static_cast<Unit>(pair[1]);
        *--end = static_cast<Unit>(pair[0]);
    }
    *--end = static_cast<Unit>(kPairs.text[value * 2 + 1]);
    if (value >= 10) *--end = static_cast<Unit>(kPairs.text[value * 2]);
}

template <class Unit>
void writeInRadix(Unit* end, std::uint32_t value, std::uint32_t radix) {
    do {
        *--end = static_cast<Unit>("0123456789abcdefghijklmnopqrstuvwxyz"[value % radix]);
        value /= radix;
    } while (value != 0);
}

// Only decimal numbers have a sign; in other radices the value is its 32 bits.
template <class Unit>
errno_t integerText(std::int32_t value, Unit* to, std::size_t size, int radix) {
    if (to == nullptr || size == 0) return fail(kBadArgument);
    if (radix < 2 || radix > 36) return fail(to, kBadArgument);
    const bool minus = radix == 10 && value < 0;
    const std::uint32_t magnitude = minus ? 0u - static_cast<std::uint32_t>(value) : static_cast<std::uint32_t>(value);
    const std::size_t length = minus + digitCount(magnitude, static_cast<std::uint32_t>(radix));
    if (length >= size) return fail(to, kTooSmall);
    if (minus) *to = Unit('-');
    if (radix == 10)
        writeDecimal(to + length, magnitude);
    else
        writeInRadix(to + length, magnitude, static_cast<std::uint32_t>(radix));
    to[length] = Unit{};
    return 0;
}

// ---- _gcvt_s --------------------------------------------------------------------------------------------------------

// No double has more significant digits than these; all that follow are zeros.
constexpr int kMostDigits = 767;

// No double that is not half of a decimal place comes closer to it than this many digits can tell.
constexpr int kDigitsToTellAHalf = 42;

// A decimal number: its significant digits without trailing zeros, and the exponent of the first.
class Decimal {
public:
    Decimal(double magnitude, int digitsWanted) {
        if (digitsWanted > std::numeric_limits<double>::digits10 || !hasFewDecimals(magnitude, digitsWanted))
            roundTo(magnitude, std::min(digitsWanted, kMostDigits));
    }

    const char* digits() const { return m_digits; }
    std::size_t count() const { return m_count; }
    int exponent() const { return m_exponent; }

private:
    // Lengths in drawings rarely have more than six decimals, and then this takes half the time. A number of at most 15
    // digits whose nearest double is the value is what the value rounds to, at any count from its own digits to 15.
    bool hasFewDecimals(double magnitude, int digitsWanted) {
        constexpr double kScale = 1e6;
        if (magnitude >= 1e9) return false;
        // Any rounding will do: the next line finds out whether it hit the value.
        const auto scaled =
            static_cast<std::uint64_t>(magnitude * kScale + 0.5);  // NOLINT(bugprone-incorrect-roundings)
        if (static_cast<double>(scaled) / kScale != magnitude) return false;
        m_digits = m_buffer;
        m_count = static_cast<std::size_t>(std::to_chars(m_buffer, std::end(m_buffer), scaled).ptr - m_buffer);
        m_exponent = scaled != 0 ? static_cast<int>(m_count) - 7 : 0;
        dropTrailingZeros();
        return m_count <= static_cast<std::size_t>(digitsWanted);
    }

    // A half rounds up, as it does on Windows; the conversions of the standard library round it to even.
    void roundTo(double magnitude, int count) {
        print(magnitude, count + 1);
        if (m_digits[count] == '5') print(magnitude, count + kDigitsToTellAHalf);
        m_count = static_cast<std::size_t>(count);
        if (m_digits[count] >= '5') addOneToLast();
        dropTrailingZeros();
    }

    void addOneToLast() {
        std::size_t i = m_count;
        while (i > 0 && m_digits[i - 1] == '9') m_digits[--i] = '0';
        if (i > 0) {
            ++m_digits[i - 1];
        } else {
            m_digits[0] = '1';
            ++m_exponent;
        }
    }

    // At least two digits: 1.5e-05 or 1.5e+123, where the first then takes the place of the point.
    void print(double magnitude, int count) {
        const char* const end =
            std::to_chars(m_buffer, std::end(m_buffer), magnitude, std::chars_format::scientific, count - 1).ptr;
        m_digits = m_buffer + 1;
        m_digits[0] = m_buffer[0];
        const char* const e = m_digits + count;
        m_exponent = 0;
        for (const char* p = e + 2; p != end; ++p) m_exponent = m_exponent * 10 + (*p - '0');
        if (e[1] == '-') m_exponent = -m_exponent;
    }

    void dropTrailingZeros() {
        while (m_count > 1 && m_digits[m_count - 1] == '0') --m_count;
    }

    char m_buffer[kMostDigits + kDigitsToTellAHalf + 8];
    char* m_digits = nullptr;
    std::size_t m_count = 0;
    int m_exponent = 0;
};

char* add(char* to, const char* text, std::size_t count) {
    std::memcpy(to, text, count);
    return to + count;
}

std::size_t digitsBeforePoint(const Decimal& number) {
    return static_cast<std::size_t>(std::max(number.exponent() + 1, 1));
}

std::size_t fixedLength(const Decimal& number) {
    return number.exponent() < 0 ? 2 + number.count() : std::max(digitsBeforePoint(number), number.count()) + 1;
}

char* addFixed(char* to, const Decimal& number) {
    if (number.exponent() < 0) return add(add(to, "0.", 2), number.digits(), number.count());
    const std::size_t before = digitsBeforePoint(number), known = std::min(before, number.count());
    to = add(to, number.digits(), known);
    to = std::fill_n(to, before - known, '0');
    *to++ = '.';
    return add(to, number.digits() + known, number.count() - known);
}

std::size_t exponentialLength(const Decimal& number) { return number.count() + 6; }

char* addExponential(char* to, const Decimal& number) {
    *to++ = number.digits()[0];
    *to++ = '.';
    to = add(to, number.digits() + 1, number.count() - 1);
    const int exponent = std::abs(number.exponent());
    *to++ = 'e';
    *to++ = number.exponent() < 0 ? '-' : '+';
    *to++ = static_cast<char>('0' + exponent / 100);
    return add(to, kPairs.text + exponent % 100 * 2, 2);
}

errno_t finiteText(char* to, std::size_t size, double value, int digits) {
    const Decimal number(std::fabs(value), digits);
    const bool fixed = number.exponent() >= -1 && number.exponent() < digits;
    const std::size_t minus = std::signbit(value);
    const std::size_t length = minus + (fixed ? fixedLength(number) : exponentialLength(number));
    if (length >= size) return fail(to, kTooSmall);
    if (minus) *to++ = '-';
    *(fixed ? addFixed(to, number) : addExponential(to, number)) = '\0';
    return 0;
}

// ---- _wtoi, _wtof ---------------------------------------------------------------------------------------------------

const wchar_t* skipBlanks(const wchar_t* text) {
    while (isBlank(*text)) ++text;
    return text;
}

bool skipSign(const wchar_t*& text) {
    const bool minus = *text == L'-';
    if (minus || *text == L'+') ++text;
    return minus;
}

bool isAsciiDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

// The numeral that a text begins with, in the characters that std::from_chars reads, and what is needed to tell too
// large from too small: where its first digit other than 0 stands.
struct Numeral {
    std::string text;
    std::int64_t leadingExponent = 0;
    bool zero = true;

    explicit Numeral(const wchar_t* units) {
        const wchar_t* const first = units;
        std::int64_t whole = 0, significant = -1;
        bool point = false;
        for (; isAsciiDigit(*units) || (*units == L'.' && !point); ++units) {
            text += static_cast<char>(*units);
            if (*units == L'.') {
                point = true;
                continue;
            }
            if (*units != L'0' && significant < 0) significant = digits(first, units, point);
            if (!point) ++whole;
        }
        zero = significant < 0;
        leadingExponent = whole - 1 - significant;
        if (!text.empty() && text != ".") addExponent(units);
    }

private:
    static std::int64_t digits(const wchar_t* first, const wchar_t* to, bool point) {
        return to - first - (point ? 1 : 0);
    }

    void addExponent(const wchar_t* units) {
        if (*units != L'e' && *units != L'E' && *units != L'd' && *units != L'D') return;
        ++units;
        const bool minus = skipSign(units);
        if (!isAsciiDigit(*units)) return;
        text += minus ? "e-" : "e+";
        std::int64_t exponent = 0;
        for (; isAsciiDigit(*units); ++units) {
            text += static_cast<char>(*units);
            exponent = std::min<std::int64_t>(exponent * 10 + (*units - L'0'), INT32_MAX);
        }
        leadingExponent += minus ? -exponent : exponent;
    }
};

std::int32_t readInteger(const wchar_t* text) {
    if (text == nullptr) {
        errno = kBadArgument;
        return 0;
    }
    text = skipBlanks(text);
    const bool minus = skipSign(text);
    const std::int64_t limit = INT32_MAX + std::int64_t{minus};
    std::int64_t magnitude = 0;
    for (int digit; (digit = digitValue(*text)) >= 0; ++text) {
        magnitude = magnitude * 10 + digit;
        if (magnitude > limit) {
            errno = kTooSmall;
            magnitude = limit;
        }
    }
    return static_cast<std::int32_t>(minus ? -magnitude : magnitude);
}

}  // namespace

errno_t _itoa_s(int value, char* to, std::size_t size, int radix) { return integerText(value, to, size, radix); }

errno_t _itow_s(int value, wchar_t* to, std::size_t size, int radix) { return integerText(value, to, size, radix); }

errno_t _ltoa_s(long value, char* to, std::size_t size, int radix) {
    return integerText(static_cast<std::int32_t>(value), to, size, radix);
}

errno_t _ltow_s(long value, wchar_t* to, std::size_t size, int radix) {
    return integerText(static_cast<std::int32_t>(value), to, size, radix);
}

// A point stands even behind a whole number. The exponent form is for values below 0.1 and for those with more digits
// before the point than asked for; it has three digits.
errno_t _gcvt_s(char* to, std::size_t size, double value, int digits) {
    if (to == nullptr) return fail(kBadArgument);
    if (size == 0) return fail(kTooSmall);
    if (digits < 0 || static_cast<std::size_t>(digits) >= size) return fail(to, kTooSmall);
    if (std::isnan(value)) return strcpy_s(to, size, std::signbit(value) ? "-1.#IND" : "1.#QNAN");
    if (std::isinf(value)) return strcpy_s(to, size, std::signbit(value) ? "-1.#INF" : "1.#INF");
    return finiteText(to, size, value, std::max(digits, 1));
}

int _wtoi(const wchar_t* text) { return readInteger(text); }

long _wtol(const wchar_t* text) { return readInteger(text); }

double _wtof(const wchar_t* text) {
    if (text == nullptr) {
        errno = kBadArgument;
        return 0;
    }
    text = skipBlanks(text);
    const bool minus = skipSign(text);
    const Numeral numeral(text);
    double value = 0;
    const auto read = std::from_chars(numeral.text.data(), numeral.text.data() + numeral.text.size(), value);
    if (read.ec == std::errc::result_out_of_range)
        value = numeral.leadingExponent > 0 ? std::numeric_limits<double>::infinity() : 0;
    if (std::isinf(value) || (value == 0 && !numeral.zero)) errno = kTooSmall;
    return minus ? -value : value;
}
