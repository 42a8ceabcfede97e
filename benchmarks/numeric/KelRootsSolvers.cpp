// The real roots of random equations, by KelRoots. Roots that do not solve their equations end the run.

#include <benchmarks/support/Equations.h>
#include <benchmarks/support/Measure.h>

#include <roots/numeric/BryMathUtilities.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

using Roots = BryMathUtilities::Roots;

// |p(x)| beside the sum of its terms' sizes.
template <std::size_t kCount>
double residual(const std::array<double, kCount>& equation, double x) {
    long double value = 0, size = 0;
    for (const double coefficient : equation) {
        value = value * x + coefficient;
        size = size * std::fabs(x) + std::fabs(coefficient);
    }
    return static_cast<double>(std::fabs(value) / size);
}

template <int kDegree, class Solve>
void solveAll(const char* work, double mostResidual, Solve solve) {
    double worst = 0;
    Roots roots;
    for (const auto& equation : equations<kDegree>())
        for (int i = solve(equation, roots) - 1; i >= 0; --i) worst = std::max(worst, residual(equation, roots[i]));
    std::fprintf(stderr, "%s: largest residual %.1e, at most %.0e\n", work, worst, mostResidual);
    if (!(worst <= mostResidual)) std::exit(1);

    measure(work, "KelRoots", {kEquations}, [solve](std::size_t) {
        return [solve, all = equations<kDegree>(), roots = Roots()]() mutable {
            double sum = 0;
            for (const auto& equation : all)
                if (solve(equation, roots) > 0) sum += roots[0];
            return sum;
        };
    });
}

const int registered = [] {
    using namespace BryMathUtilities;
    solveAll<2>("QuadraticSolver", 1e-13,
                [](const auto& e, Roots& roots) { return QuadraticSolver(e[0], e[1], e[2], roots); });
    solveAll<3>("CubicSolver", 1e-12,
                [](const auto& e, Roots& roots) { return CubicSolver(e[0], e[1], e[2], e[3], roots); });
    solveAll<4>("QuarticSolver", 1e-9,
                [](const auto& e, Roots& roots) { return QuarticSolver(e[0], e[1], e[2], e[3], e[4], roots); });
    return 0;
}();

}  // namespace
