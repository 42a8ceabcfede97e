#include <roots/numeric/BryMathUtilities.h>
#include <roots/numeric/Elementary.h>

#include <algorithm>
#include <cmath>

namespace {

using elementary::Exact;

constexpr double kNear = 1e-9;

bool isNearZero(double x) { return std::fabs(x) < kNear; }

// At most four, in the order in which they are found.
struct Found {
    int count = 0;
    double roots[4];

    void add(double root) { roots[count++] = root; }

    bool hasOneNear(double x) const {
        return std::any_of(roots, roots + count, [x](double root) { return isNearZero(root - x); });
    }

    // Zero and these, unless zero is among them.
    Found withZero() const {
        if (hasOneNear(0)) return *this;
        Found all;
        all.add(0);
        for (int i = 0; i < count; ++i) all.add(roots[i]);
        return all;
    }

    int storeIn(BryMathUtilities::Roots& result) const {
        result.setLogicalLength(0);
        result.setLogicalLength(count);
        for (int i = 0; i < count; ++i) result[i] = roots[i];
        return count;
    }
};

// ---- quadratic and cubic --------------------------------------------------------------------------------------------

Found linear(double b, double c) {
    Found found;
    if (b != 0) found.add(-c / b);
    return found;
}

Found quadratic(double a, double b, double c) {
    if (isNearZero(a)) return linear(b, c);
    Found found;
    const double discriminant = b * b - 4 * a * c;
    if (isNearZero(discriminant)) {
        found.add(b * -0.5 / a);
    } else if (discriminant > 0) {
        const double s = std::sqrt(discriminant);
        found.add((-b - s) * 0.5 / a);
        found.add((s - b) * 0.5 / a);
    }
    return found;
}

// The sum of the real cube roots of R + s and R - s. The one without cancellation is taken; the product of both is -Q.
double sumOfCubeRoots(double Q, double R, double s) {
    const double larger = elementary::cubeRoot(R < 0 ? R - s : R + s);
    return larger - Q / larger;
}

// x^3 + B x^2 + C x + E = 0
Found cubicOfOne(double B, double C, double E) {
    using BryMathUtilities::PI;
    Found found;
    const double Q = (3 * C - B * B) / 9, R = (9 * B * C - 27 * E - 2 * B * B * B) / 54, third = B / 3;
    const double cubeOfQ = Q * Q * Q, discriminant = cubeOfQ + R * R;
    if (isNearZero(discriminant)) {
        if (isNearZero(R)) {
            found.add(B / -3);
        } else {
            const double S = elementary::cubeRoot(R);
            found.add(2 * S - third);
            found.add(-S - third);
        }
    } else if (discriminant > 0) {
        found.add(sumOfCubeRoots(Q, R, std::sqrt(discriminant)) - third);
    } else if (discriminant < 0) {  // not where overflow has made it NaN
        const double theta = elementary::arcCosine(R / std::sqrt(-cubeOfQ)), m = 2 * std::sqrt(-Q);
        found.add(m * elementary::cosineOfThird(theta) - third);
        found.add(m * elementary::cosineOfThird(theta + 2 * PI) - third);
        found.add(m * elementary::cosineOfThird(theta + 4 * PI) - third);
    }
    return found;
}

Found cubic(double a, double b, double c, double d) {
    if (isNearZero(a)) return quadratic(b, c, d);
    if (isNearZero(d)) return quadratic(a, b, c).withZero();
    return cubicOfOne(b / a, c / a, d / a);
}

// ---- quartic: numbers of twice the digits ---------------------------------------------------------------------------

// The quartic splits by small differences of large numbers, of which 16 digits would leave nothing but noise.

Exact operator+(Exact a, Exact b) {
    const Exact whole = elementary::sum(a.high, b.high);
    return elementary::sum(whole.high, whole.low + (a.low + b.low));
}

Exact operator*(Exact a, Exact b) {
    const Exact whole = elementary::product(a.high, b.high);
    return elementary::sum(whole.high, whole.low + (a.high * b.low + a.low * b.high));
}

Exact exact(double x) { return {x, 0}; }

// What such a number of this size is off by after a few operations.
double roundingOf(double size) { return 0x1p-98 * std::fabs(size); }

// A difference that is no more than its own error is zero.
double unlessError(Exact difference, double error) { return std::fabs(difference.high) <= error ? 0 : difference.high; }

// ---- quartic --------------------------------------------------------------------------------------------------------

// x^4 + B x^3 + C x^2 + D x + E = 0
struct Quartic {
    double B, C, D, E;

    // The coefficients of the resolvent y^3 - C y^2 + linear y + constant = 0.
    double linear() const { return B * D - 4 * E; }
    double constant() const { return E * (4 * C - B * B) - D * D; }

    struct Root {
        Exact value;
        double error;
    };

    // y, a root of the resolvent, without what rounding has done to it: two terms of the series for the root of a
    // function next to y. Where another root of the resolvent is too near for that, or the tolerance has put y further
    // off than rounding does, y itself.
    Root unrounded(double y) const {
        const Exact exactLinear = elementary::product(B, D) + exact(-4 * E);
        const Exact exactConstant = exact(E) * (exact(4 * C) + elementary::product(-B, B)) + elementary::product(-D, D);
        const Exact value = (elementary::sum(y, -C) * exact(y) + exactLinear) * exact(y) + exactConstant;
        const double slope = (3 * y - 2 * C) * y + linear();
        const double step = -value.high / slope, bend = step * (3 * y - C) / slope;
        const bool isRounding = std::fabs(step) <= 0x1p-20 * (std::fabs(y) + std::fabs(C)) && std::fabs(bend) < 0x1p-10;
        if (!isRounding) return {exact(y), 0};
        const double size = std::fabs(y),
                     slopeTerms = (3 * size + 2 * std::fabs(C)) * size + std::fabs(B * D) + 4 * std::fabs(E);
        const double terms = slopeTerms * size + std::fabs(E) * (4 * std::fabs(C) + B * B) + D * D;
        const double stepError = std::fabs(step) * (4 * bend * bend + 0x1p-50 * std::fabs(slopeTerms / slope));
        return {elementary::sum(y, step - step * bend), roundingOf(terms / slope) + stepError};
    }

    Found solve() const {
        const Found resolvent = cubic(1, -C, linear(), constant());
        if (resolvent.count == 0) return {};
        const Root y = unrounded(*std::max_element(resolvent.roots, resolvent.roots + resolvent.count));
        const Exact h = y.value * exact(0.5), squareOfH = h * h;
        const double g = B * 0.5;

        const double squareOfQ =
            unlessError(squareOfH + exact(-E), std::fabs(h.high) * y.error + roundingOf(squareOfH.high));
        if (squareOfQ <= -kNear) return {};
        const double q = squareOfQ < 0 ? 0 : std::sqrt(squareOfQ);
        double p = 0;
        if (q >= kNear) {
            p = (h * exact(g) + exact(-D * 0.5)).high / q;
        } else {
            const double squareOfP = unlessError(elementary::product(g, g) + exact(-C) + y.value,
                                                 y.error + roundingOf(g * g + std::fabs(C)));
            if (squareOfP <= -kNear) return {};
            p = squareOfP < 0 ? 0 : std::sqrt(squareOfP);
        }
        return bothOf(quadratic(1, g + p, h.high + q), quadratic(1, g - p, h.high - q));
    }

    // The roots of the second factor join those of the first unless they are near one of these.
    static Found bothOf(const Found& first, const Found& second) {
        Found both = first;
        for (int i = 0; i < second.count; ++i)
            if (!first.hasOneNear(second.roots[i])) both.add(second.roots[i]);
        return both;
    }
};

Found quartic(double a, double b, double c, double d, double e) {
    if (isNearZero(a)) return cubic(b, c, d, e);
    if (isNearZero(e)) return cubic(a, b, c, d).withZero();
    return Quartic{b / a, c / a, d / a, e / a}.solve();
}

}  // namespace

int BryMathUtilities::QuadraticSolver(double a, double b, double c, Roots& roots) {
    return quadratic(a, b, c).storeIn(roots);
}

int BryMathUtilities::CubicSolver(double a, double b, double c, double d, Roots& roots) {
    return cubic(a, b, c, d).storeIn(roots);
}

int BryMathUtilities::QuarticSolver(double a, double b, double c, double d, double e, Roots& roots) {
    return quartic(a, b, c, d, e).storeIn(roots);
}
