// Cube root, arc cosine and cosine with the same bits on every platform. The C libraries' own differ in their last
// bit from one system and version to the next; these consist of sums, products, quotients and square roots only, which
// IEEE 754 rounds alike everywhere. Whoever includes this is compiled without contraction and without excess precision,
// see roots/CMakeLists.txt. The polynomials are Chebyshev fits. Results are within 3 units of their last place, a
// cosine near zero within 1e-26.
#pragma once

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace elementary {

// The sum or product of two numbers without rounding: high is the rounded result, low what the rounding took off.
struct Exact {
    double high, low;
};

inline Exact sum(double a, double b) {
    const double high = a + b, bPart = high - a;
    return {high, (a - (high - bPart)) + (b - bPart)};
}

// The upper half of the digits, so that products of halves are exact. Numbers above 1e300 give NaN.
inline double upperHalf(double a) {
    const double shifted = a * 134217729.0;  // 2^27 + 1
    return shifted - (shifted - a);
}

inline Exact product(double a, double b) {
    const double high = a * b, aUp = upperHalf(a), bUp = upperHalf(b), aDown = a - aUp, bDown = b - bUp;
    return {high, ((aUp * bUp - high) + aUp * bDown + aDown * bUp) + aDown * bDown};
}

inline double fromBits(std::uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

inline std::uint64_t bitsOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// The real cube root, to half a unit of its last place. x is not subnormal, and not zero.
inline double cubeRoot(double x) {
    const double size = std::fabs(x);
    if (!(size <= DBL_MAX)) return x;

    // size = m * 8^k with m in [1, 8). 1023, the bias of the exponent, is 3 * 341.
    const std::uint64_t bits = bitsOf(size), exponent = bits >> 52;
    const double m = fromBits((bits & 0xFFFFFFFFFFFFF) | (1023 + exponent % 3) << 52);
    const double power = fromBits((exponent / 3 + 1023 - 341) << 52);

    // A third of the bits is a rough logarithm; two steps of a series make 1 / root of it, without a division.
    double inverse = fromBits(0x553EE00000000000 - bitsOf(m) / 3);
    double rest = 1 - m * inverse * (inverse * inverse);
    const double rest2 = rest * rest;
    inverse += inverse * rest *
               ((1.0 / 3 + rest * (2.0 / 9)) + rest2 * ((14.0 / 81 + rest * (35.0 / 243)) + rest2 * (91.0 / 729)));
    rest = 1 - m * inverse * (inverse * inverse);
    inverse += inverse * rest * (1.0 / 3 + rest * (2.0 / 9));

    // The last digit: the cube of the upper 17 bits is exact, and so is what it leaves of m.
    const double inverse2 = inverse * inverse;
    double root = m * inverse2;
    const double upper = fromBits(bitsOf(root) & ~std::uint64_t{0xFFFFFFFFF}), lower = root - upper;
    const double cubeRest = lower * (3 * (upper * root) + lower * lower);
    root += ((m - upper * upper * upper) - cubeRest) * inverse2 * (1.0 / 3);
    return std::copysign(root * power, x);
}

// 0 to pi. Numbers that rounding has taken beyond -1 or 1 count as these.
inline double arcCosine(double x) {
    // In the middle start - arcsin(x), near the ends start +- 2 arcsin(s) with s = sqrt((1 - |x|) / 2).
    static constexpr struct {
        double start, startRest, factor;
    } kRegions[] = {
        {1.5707963267948966, 6.123233995736766e-17, -1}, {0, 0, 2}, {3.141592653589793, 1.2246467991473532e-16, -2}};
    const double size = std::fabs(x), left = size < 1 ? 1 - size : 0;
    const auto& region = kRegions[(x > 0.5) + 2 * (x < -0.5)];
    const double z = size > 0.5 ? left * 0.5 : x * x, z2 = z * z, z4 = z2 * z2;
    const double low =
        (0.1666666666666665 + z * 0.07500000000020764) + z2 * (0.044642857103423646 + z * 0.03038194736709848);
    const double middle =
        (0.02237204763174451 + z * 0.017355259955786323) + z2 * (0.013929652902326633 + z * 0.011875494382636922);
    const double high =
        (0.0078029494773533175 + z * 0.01603551434914882) + z2 * (-0.010749050339697808 + z * 0.028169218060881414);
    const double root = std::sqrt(z), s = region.factor * (size > 0.5 ? root : x);
    return region.start + (s + (region.startRest + s * z * (low + z4 * (middle + z4 * high))));
}

// The cosine of a third of an angle, which lies between 0 and six turns. Thus the third is not rounded on the way.
inline double cosineOfThird(double angle) {
    constexpr double kStep = 4.712388980318792, kStepRest = 6.589769336825097e-11;  // three quarters of a turn
    const double steps = angle * 0.2122065907891938 + 0.5;
    const int quarters = static_cast<int>(steps);
    const double x = ((angle - quarters * kStep) - quarters * kStepRest) * (1.0 / 3), z = x * x, z2 = z * z;
    const double sines = (-0.16666666666666666 + z * 0.008333333333330948) +
                         z2 * ((-0.00019841269836758528 + z * 2.7557316102528646e-06) +
                               z2 * (-2.5051131840044124e-08 + z * 1.5918128937554457e-10));
    const double cosines = (0.041666666666666664 - z * 0.0013888888888887398) +
                           z2 * ((2.480158729876566e-05 - z * 2.7557317271714906e-07) +
                                 z2 * (2.0876146265300598e-09 - z * 1.138263220199036e-11));
    const double half = 0.5 * z, whole = 1 - half;
    const double size = quarters & 1 ? x + x * z * sines : whole + (((1 - whole) - half) + z2 * cosines);
    return (quarters + 1) & 2 ? -size : size;
}

}  // namespace elementary
