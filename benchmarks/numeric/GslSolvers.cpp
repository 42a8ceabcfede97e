// The same by GSL's closed forms. It has none of degree four and finds all complex roots of a quartic by iteration.

#include <benchmarks/support/Equations.h>
#include <benchmarks/support/Measure.h>

#include <gsl/gsl_poly.h>

#include <algorithm>
#include <memory>

namespace {

template <int kDegree, class Solve>
void solveAll(const char* work, Solve solve) {
    measure(work, "GSL", {kEquations}, [solve](std::size_t) {
        return [solve, all = equations<kDegree>()] {
            double sum = 0, roots[2 * kDegree];
            for (const auto& equation : all)
                if (solve(equation, roots) > 0) sum += roots[0];
            return sum;
        };
    });
}

const int registered = [] {
    solveAll<2>("QuadraticSolver", [](const auto& e, double* roots) {
        return gsl_poly_solve_quadratic(e[0], e[1], e[2], roots, roots + 1);
    });
    solveAll<3>("CubicSolver", [](const auto& e, double* roots) {
        return gsl_poly_solve_cubic(e[1] / e[0], e[2] / e[0], e[3] / e[0], roots, roots + 1, roots + 2);
    });
    std::shared_ptr<gsl_poly_complex_workspace> workspace(gsl_poly_complex_workspace_alloc(5),
                                                          gsl_poly_complex_workspace_free);
    solveAll<4>("QuarticSolver", [workspace](const auto& e, double* roots) {
        const double rising[] = {e[4], e[3], e[2], e[1], e[0]};
        return gsl_poly_complex_solve(rising, 5, workspace.get(), roots) == 0 ? 4 : 0;
    });
    return 0;
}();

}  // namespace
