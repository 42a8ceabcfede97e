#include <roots/platform/posix/FloatingText.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

constexpr int maxSignificant = 767;  // digits of the longest exact value
constexpr int maxFraction = 1074;    // digits behind the point of the longest exact value

// A finite value that is not negative, as mantissa * 2^exponent.
struct Binary {
    explicit Binary(double value) {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        const int biased = static_cast<int>(bits >> 52);
        mantissa = bits & (hiddenBit - 1);
        if (biased != 0) mantissa |= hiddenBit;
        exponent = std::max(biased, 1) - 1023 - 52;
    }

    static constexpr std::uint64_t hiddenBit = std::uint64_t(1) << 52;
    std::uint64_t mantissa;
    int exponent;
};

// The decimal digits of a value: d.ddd times ten to the power of exponent. What is behind count is zero.
struct Digits {
    int exponent = 0;
    int count = 0;
    char text[FloatingText::bodyCapacity];

    // significant digits of a finite value that is not negative.
    void setSignificant(double value, int significant);

    // The same up to the given number of decimal places; zeros may lead.
    void setFixed(double value, int places);

    // What the Windows runtime takes for the digits of infinity and of what is no number. They are rounded and filled
    // up like digits, so that two places give "1.#J".
    void setSpecial(double value, int significant);

    void dropClosingZeros() {
        while (count > 1 && text[count - 1] == '0') --count;
    }

    // Puts zeros in front until the first digit is the one before the point.
    void startBeforeThePoint();

private:
    // To the nearest value, to the even one where it lies halfway.
    void setNearestSignificant(double value, int significant);
    void setNearestFixed(double value, int places);

    // Drops the last digit and adds one unit to the one before. All nines: one digit more, in front.
    void roundLastUp();
};

// Whether value lies exactly between two neighbours with the given number of decimal places (negative: tens, hundreds
// ...). With m odd in value = m * 2^e that is so where value * 10^places * 2 is an odd whole number.
bool isHalfway(double value, int places) {
    if (value == 0) return false;
    const Binary binary(value);
    const int lowZeros = __builtin_ctzll(binary.mantissa);
    if (binary.exponent + lowZeros != -(places + 1)) return false;
    std::uint64_t m = binary.mantissa >> lowZeros;
    for (; places < 0; ++places) {
        if (m % 5 != 0) return false;
        m /= 5;
    }
    return true;
}

void Digits::setNearestSignificant(double value, int significant) {
    const auto end = std::to_chars(text, std::end(text), value, std::chars_format::scientific, significant - 1).ptr;
    char* const mark = std::find(text, end, 'e');
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);
    count = significant;
    if (count > 1) std::memmove(text + 1, text + 2, static_cast<std::size_t>(count - 1));
}

void Digits::setNearestFixed(double value, int places) {
    char* end = std::to_chars(text, std::end(text), value, std::chars_format::fixed, places).ptr;
    if (places > 0) {
        char* const point = end - places - 1;
        std::memmove(point, point + 1, static_cast<std::size_t>(places));
        --end;
    }
    count = static_cast<int>(end - text);
    exponent = count - places - 1;
}

// Halfway, the text with one digit more is exact and ends in 5.
void Digits::setFixed(double value, int places) {
    if (places >= maxFraction) {
        setNearestFixed(value, maxFraction);
    } else if (isHalfway(value, places)) {
        setNearestFixed(value, places + 1);
        roundLastUp();
    } else {
        setNearestFixed(value, places);
    }
}

void Digits::setSignificant(double value, int significant) {
    setNearestSignificant(value, std::min(significant, maxSignificant));
    const int places = significant - 1 - exponent;
    // 9.5 may have become 10 already, which hides the place that was rounded.
    if (significant >= maxSignificant || !(isHalfway(value, places) || isHalfway(value, places + 1))) return;
    setNearestSignificant(value, significant + 1);
    if (isHalfway(value, significant - 1 - exponent)) {
        roundLastUp();
        count = significant;
    } else {
        setNearestSignificant(value, significant);
    }
}

void Digits::roundLastUp() {
    int at = --count - 1;
    while (at >= 0 && text[at] == '9') text[at--] = '0';
    if (at >= 0) {
        ++text[at];
        return;
    }
    std::memmove(text + 1, text, static_cast<std::size_t>(count));
    text[0] = '1';
    ++count;
    ++exponent;
}

void Digits::setSpecial(double value, int significant) {
    const char* const digits = std::isinf(value) ? "1#INF" : std::signbit(value) ? "1#IND" : "1#QNAN";
    const int length = static_cast<int>(std::strlen(digits));
    count = std::min(length, significant);
    std::memcpy(text, digits, static_cast<std::size_t>(count));
    if (count < length && digits[count] >= '5') ++text[count - 1];
}

void Digits::startBeforeThePoint() {
    if (exponent >= 0) return;
    const int zeros = -exponent;
    std::memmove(text + zeros, text, static_cast<std::size_t>(count));
    std::memset(text, '0', static_cast<std::size_t>(zeros));
    count += zeros;
    exponent = 0;
}

// Digits up to and with the one of the point's place, the point, then exactly places digits.
void layOut(FloatingText& to, const Digits& digits, std::size_t places, bool keepPoint) {
    const auto count = static_cast<std::size_t>(digits.count);
    const auto whole = static_cast<std::size_t>(digits.exponent) + 1;
    const std::size_t known = std::min(count, whole);
    std::memcpy(to.body, digits.text, known);
    std::memset(to.body + known, '0', whole - known);
    to.bodyLength = whole;
    if (places > 0 || keepPoint) to.body[to.bodyLength++] = '.';
    const std::size_t fraction = std::min(places, count - known);
    std::memcpy(to.body + to.bodyLength, digits.text + known, fraction);
    to.bodyLength += fraction;
    to.closingZeros = places - fraction;
}

void writeExponent(FloatingText& to, char letter, int exponent, int minDigits) {
    char* at = to.suffix;
    *at++ = letter;
    *at++ = exponent < 0 ? '-' : '+';
    char digits[8];
    const auto length = std::to_chars(digits, std::end(digits), std::abs(exponent)).ptr - digits;
    for (auto zeros = minDigits - length; zeros > 0; --zeros) *at++ = '0';
    std::memcpy(at, digits, static_cast<std::size_t>(length));
    to.suffixLength = static_cast<std::size_t>(at + length - to.suffix);
}

void writeScientific(FloatingText& to, Digits& digits, char letter, std::size_t places, bool keepPoint) {
    const int exponent = digits.exponent;
    digits.exponent = 0;
    layOut(to, digits, places, keepPoint);
    writeExponent(to, letter, exponent, 3);
}

void writeGeneral(FloatingText& to, Digits& digits, char letter, int significant, bool alternate) {
    if (!alternate) digits.dropClosingZeros();
    const int shown = alternate ? significant : digits.count;
    if (digits.exponent < -4 || digits.exponent >= significant) {
        writeScientific(to, digits, letter, static_cast<std::size_t>(shown - 1), alternate);
        return;
    }
    const std::int64_t places = std::int64_t(shown) - 1 - digits.exponent;
    digits.startBeforeThePoint();
    layOut(to, digits, static_cast<std::size_t>(std::max<std::int64_t>(0, places)), alternate);
}

// The hexadecimal form always shows the digit before the point: 1, 0 for subnormals and zero, 2 where 1.f.. is rounded.
void writeHexadecimal(FloatingText& to, double value, bool upper, int precision, bool alternate) {
    constexpr int stored = 13;
    const Binary binary(value);
    std::uint64_t mantissa = binary.mantissa;
    const int exponent = mantissa != 0 ? binary.exponent + 52 : 0;
    const int shown = std::min(precision, stored);
    const int dropped = 4 * (stored - shown);
    if (dropped > 0) mantissa = (mantissa + (std::uint64_t(1) << (dropped - 1))) >> dropped;

    Digits digits;
    digits.count = shown + 1;
    for (int at = shown; at >= 0; --at, mantissa >>= 4)
        digits.text[at] = (upper ? "0123456789ABCDEF" : "0123456789abcdef")[mantissa & 15];
    layOut(to, digits, static_cast<std::size_t>(precision), alternate);
    writeExponent(to, upper ? 'P' : 'p', exponent, 1);
}

}  // namespace

FloatingText::FloatingText(double value, char conversion, int precision, bool alternate)
    : negative(std::signbit(value)) {
    const bool finite = std::isfinite(value);
    const double magnitude = std::fabs(value);
    const bool upper = conversion < 'a';
    const char kind = static_cast<char>(conversion | 0x20);
    if (kind == 'a') prefix = upper ? "0X" : "0x";
    if (precision < 0) precision = kind == 'a' ? 13 : 6;
    const auto places = static_cast<std::size_t>(precision);
    // Beyond these no digit but zero comes; more is closing zeros, and the sums below stay small.
    const int significant = std::min(precision, maxSignificant) + (kind == 'g' ? (precision == 0) : 1);

    if (kind == 'a' && finite) {
        writeHexadecimal(*this, magnitude, upper, precision, alternate);
        return;
    }
    Digits digits;
    if (!finite) {
        digits.setSpecial(value, significant);
    } else if (kind == 'f') {
        digits.setFixed(magnitude, precision);
    } else {
        digits.setSignificant(magnitude, significant);
    }
    switch (kind) {
        case 'a':
            layOut(*this, digits, places, alternate);
            writeExponent(*this, upper ? 'P' : 'p', 0, 1);
            break;
        case 'e': writeScientific(*this, digits, upper ? 'E' : 'e', places, alternate); break;
        case 'f': layOut(*this, digits, places, alternate); break;
        default: writeGeneral(*this, digits, upper ? 'E' : 'e', std::max(precision, 1), alternate); break;
    }
}
