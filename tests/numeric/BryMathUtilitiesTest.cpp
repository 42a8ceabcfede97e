#include <gtest/gtest.h>
#include <roots/numeric/BryMathUtilities.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using BryMathUtilities::Roots;
using Numbers = std::vector<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();

// The coefficients c, that of the highest power first, decide on the solver.
Numbers solve(const Numbers& c) {
    Roots roots;
    roots.append(77);
    const int count = c.size() == 3   ? BryMathUtilities::QuadraticSolver(c[0], c[1], c[2], roots)
                      : c.size() == 4 ? BryMathUtilities::CubicSolver(c[0], c[1], c[2], c[3], roots)
                                      : BryMathUtilities::QuarticSolver(c[0], c[1], c[2], c[3], c[4], roots);
    EXPECT_EQ(count, roots.length());
    EXPECT_EQ(roots.physicalLength(), 8);
    Numbers found;
    for (long i = 0; i < roots.length(); ++i) found.push_back(roots[i]);
    return found;
}

// The coefficients of the equation with these roots, and with a complex pair if its real and imaginary part are given.
Numbers equationOf(const Numbers& roots, double real = 0, double imaginary = 0) {
    Numbers c{1};
    for (const double root : roots) {
        c.push_back(0);
        for (std::size_t i = c.size() - 1; i > 0; --i) c[i] -= root * c[i - 1];
    }
    if (imaginary == 0) return c;
    c.insert(c.end(), 2, 0);
    for (std::size_t i = c.size() - 1; i > 0; --i)
        c[i] += (i > 1 ? c[i - 2] * (real * real + imaginary * imaginary) : 0) - c[i - 1] * 2 * real;
    return c;
}

// All of them, each within error times the largest.
void expectRoots(Numbers found, Numbers expected, double error) {
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(found.size(), expected.size()) << "expected " << testing::PrintToString(expected);
    double largest = 0;
    for (const double root : expected) largest = std::max(largest, std::fabs(root));
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected[i], error * largest);
}

struct Random {
    std::uint64_t state = 1;

    double upTo(double limit) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state >> 11) * 0x1p-52 * limit - limit;
    }
};

}  // namespace

TEST(Solvers, AnswerTheRootsInTheirOrder) {
    // clang-format off
    const struct { const char* what; Numbers equation, roots; } rows[] = {
        {"quadratic", {1, -3, 2}, {1, 2}}, {"minus sign first", {2, -4, -6}, {-1, 3}},
        {"minus sign first, a below 0", {-1, 3, -2}, {2, 1}}, {"double", {1, -2, 1}, {1}}, {"none", {1, 0, 1}, {}},
        {"D within the tolerance", {1, 0, -2.4e-10}, {0}}, {"D beyond it", {1, 0, -2.6e-10}, {-1.6124515496597099e-5, 1.6124515496597099e-5}},
        {"linear", {0, 2, -4}, {2}}, {"constant", {0, 0, 5}, {}}, {"a within the tolerance", {1e-10, 2, -4}, {2}},
        {"a beyond it", {1e-9, 0, -4}, {-63245.553203367586, 63245.553203367586}}, {"tiny b", {0, 1e-300, 1}, {-1e300}},
        {"equation times 1e150", {1e150, -3e150, 2e150}, {1, 2}}, {"times 1e-150: linear", {1e-150, -3e-150, 2e-150}, {2. / 3}},
        {"roots of 1e153", {1, -3e153, 2e306}, {1e153, 2e153}}, {"D overflows", {1, 1e200, 1}, {-kInfinity, kInfinity}},
        {"D is NaN", {1, 3e200, 2e300 * 1e100}, {}}, {"NaN", {1, kNaN, 1}, {}}, {"infinite a", {kInfinity, 1, 1}, {}},
        {"cubic", {1, -6, 11, -6}, {3, 1, 2}}, {"double last", {1, 0, -3, 2}, {-2, 1}}, {"double -1", {1, 0, -3, -2}, {2, -1}},
        {"triple", {1, -9, 27, -27}, {3}}, {"one", {1, 0, 0, -1}, {1}}, {"one, R below 0", {2, 0, 0, 16}, {-2}},
        {"zero root", {1, -3, 2, 0}, {0, 1, 2}}, {"triple zero", {1, 0, 0, 0}, {0}}, {"zero not twice", {1, -1, 0, 0}, {0, 1}},
        {"cubic without a", {0, 1, -3, 2}, {1, 2}}, {"cubic times 1e150", {1e150, -6e150, 11e150, -6e150}, {3, 1, 2}},
        {"cubic times 1e-150: linear", {1e-150, -6e-150, 11e-150, -6e-150}, {6. / 11}},
        {"Q^3 + R^2 is NaN", {1, 1e60, 0, 1e180}, {}}, {"cubic with NaN", {1, 1, kNaN, 1}, {}},
        {"R - s cancels", {1, 0, 1e-7, -1}, {0.99999996666666667}}, {"R + s cancels", {1, 0, 1e-7, 1}, {-0.99999996666666667}},
        {"quartic", {1, -10, 35, -50, 24}, {3, 4, 1, 2}}, {"two", {1, 0, 0, 0, -1}, {-1, 1}}, {"no root", {1, 0, 0, 0, 1}, {}},
        {"triple zero and 1", {1, -1, 0, 0, 0}, {0, 1}}, {"quartic without a", {0, 1, -6, 11, -6}, {3, 1, 2}},
        {"two double", {1, 0, -8, 0, 16}, {-2, 2}}, {"fourfold", {1, -12, 54, -108, 81}, {3}},
        {"triple and 4", {1, -7, 15, -13, 4}, {1, 4}}, {"times 1e150", {1e150, -1e151, 35e150, -5e151, 24e150}, {3, 4, 1, 2}},
        {"quartic with NaN", {1, 1, 1, kNaN, 1}, {}}, {"q is zero", {1, 0, -37, 0, 36}, {-6, -1, 1, 6}},
        {"q^2 below the tolerance", {1, 0.07, -0.031, -0.0011, 2e-5}, {}},
        {"q is zero, g is not", {1, 2, -23, 12, 36}, {-6, -1, 2, 3}}};
    // clang-format on
    const auto isEqual = [](double a, double b) { return a == b || std::fabs(a - b) <= 1e-15 * std::fabs(b); };
    for (const auto& row : rows) {
        const Numbers found = solve(row.equation);
        EXPECT_TRUE(std::equal(found.begin(), found.end(), row.roots.begin(), row.roots.end(), isEqual))
            << row.what << ": " << testing::PrintToString(found);
    }
}

TEST(Solvers, FindTheRootsThatEquationsAreMadeOf) {
    // The errors that the header states, as parts of the largest root.
    // clang-format off
    const struct { Numbers roots; double error; } rows[] = {
        {{-2, 5}, 1e-15}, {{3e150, -1e150}, 1e-15}, {{1, 1e8}, 1e-15}, {{100, 100.001}, 4e-11}, {{5, 5.00004}, 4e-11},
        {{-3, 0.5, 4}, 1e-15}, {{1, 2, 1000}, 2e-13}, {{100, 101, -70}, 5e-13}, {{0.06, 0.12, 0.18}, 1e-14},
        {{1e50, -2e50, 4e50}, 1e-14}, {{-7, 1, 3, 12}, 1e-14}, {{1, 2, 3, 1e4}, 1e-15}, {{100, 101, -70, 210}, 5e-13},
        {{100, 102, 105, 110}, 1e-9}, {{0.2, 0.4, 0.6, 0.8}, 1e-14}, {{-1000, -200, 30, 4000}, 1e-14},
        {{1e25, -2e25, 4e25, 5e25}, 1e-14}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.roots));
        Numbers equation = equationOf(row.roots);
        expectRoots(solve(equation), row.roots, row.error);
        for (double& coefficient : equation) coefficient *= -3;
        expectRoots(solve(equation), row.roots, row.error);
    }
}

TEST(QuarticSolver, FindsTheRootsOfFactorsWithEqualLastCoefficients) {
    // x1 x2 = x3 x4: rounding alone would decide whether these have roots.
    Random random;
    for (int i = 0; i < 3000; ++i) {
        const double size = std::exp(5 + random.upTo(4)), ratio = std::exp(2.5 + random.upTo(2.4)),
                     other = 3 + random.upTo(0.8);
        const double root = size * (1.2 + random.upTo(1));
        const Numbers opposite{-size, size, -size * ratio, size * ratio};
        const Numbers four{-size, -size * ratio * other, size * ratio, size * other};
        const Numbers two{root, root + size};
        const double real = random.upTo(0.7) * root, imaginary = std::sqrt(root * (root + size) - real * real);
        Numbers withoutOddPowers = equationOf(opposite);
        withoutOddPowers[1] = withoutOddPowers[3] = 0;
        SCOPED_TRACE(testing::PrintToString(four) + testing::PrintToString(two) + testing::PrintToString(real));
        expectRoots(solve(withoutOddPowers), opposite, 1e-12);
        expectRoots(solve(equationOf(four)), four, 1e-11);
        expectRoots(solve(equationOf(two, real, imaginary)), two, 1e-11);
        if (HasFailure()) break;
    }
}

// 1,024 equations of each degree whose roots lie from -1000 to 1000, some of them complex.
TEST(Solvers, SolveRandomEquationsWithTheSameBitsEverywhere) {
    Random random;
    std::uint64_t sum = 0, bits = 0;
    const double most[] = {1e-13, 1e-12, 1e-9};
    for (std::size_t degree = 2; degree <= 4; ++degree) {
        for (int i = 0; i < 1024; ++i) {
            const double real = random.upTo(1000), imaginary = i % 2 == 0 ? random.upTo(1000) : 0;
            Numbers roots(imaginary == 0 ? degree : degree - 2);
            for (double& root : roots) root = random.upTo(1000);
            Numbers equation = equationOf(roots, real, imaginary);
            for (double& coefficient : equation) coefficient *= 1 + i;
            const Numbers found = solve(equation);
            EXPECT_EQ(found.size(), roots.size());
            for (const double x : found) {
                long double value = 0, size = 0;
                for (const double coefficient : equation) {
                    value = value * x + coefficient;
                    size = size * std::fabs(x) + std::fabs(coefficient);
                }
                EXPECT_LE(std::fabs(value), size * most[degree - 2]) << testing::PrintToString(equation);
                std::memcpy(&bits, &x, sizeof bits);
                sum = (sum ^ bits) * 1099511628211u;
            }
        }
    }
    EXPECT_EQ(sum, 8648826954707977685u);
    EXPECT_EQ(BryMathUtilities::PI, 3.141592653589793);
}
