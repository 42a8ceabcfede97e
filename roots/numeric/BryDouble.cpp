#include <roots/numeric/BryDouble.h>

#include <cmath>
#include <cstdint>

namespace {

double powerOfTen(unsigned exponent) {
    double power = 1;
    for (double factor = 10; exponent != 0; exponent >>= 1, factor *= factor)
        if (exponent & 1) power *= factor;
    return power;
}

}  // namespace

double BryDouble::round(double value, unsigned short decimals, double step) {
    if (step > 1e-10) value = step * std::trunc((value + step * 0.5) / step);
    const double f = powerOfTen(decimals);
    return std::floor(value * f + 0.5) / f;
}

long BryDouble::longRound(const double& value, double roundOffset) {
    const double offset = roundOffset >= MinRoundOffset && roundOffset <= 0.9999 ? roundOffset : MinRoundOffset;
    const double whole = value >= 0 ? value + offset : value - offset;
    if (whole >= 2147483648.0) return INT32_MAX;
    if (whole <= -2147483649.0) return INT32_MIN;
    return whole == whole ? static_cast<long>(whole) : 0;
}
