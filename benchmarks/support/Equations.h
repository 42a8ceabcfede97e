// The equations that the solvers solve: 1,024 of a degree with random roots from -1000 to 1000, of which two are a
// complex pair in every other equation.
#pragma once

#include <benchmarks/support/Texts.h>

#include <array>
#include <vector>

constexpr std::size_t kEquations = 1024;

// The coefficients, that of the highest power first.
template <int kDegree>
using Equation = std::array<double, kDegree + 1>;

// Times x^2 - sum x + product.
template <int kDegree>
void multiply(Equation<kDegree>& equation, double sum, double product) {
    for (int i = kDegree; i > 0; --i) equation[i] += (i > 1 ? equation[i - 2] * product : 0) - equation[i - 1] * sum;
}

template <int kDegree>
std::vector<Equation<kDegree>> equations() {
    Numbers numbers;
    const auto next = [&] { return numbers.next() / 4294967296.0 * 2000 - 1000; };
    std::vector<Equation<kDegree>> equations(kEquations);
    for (std::size_t i = 0; i < kEquations; ++i) {
        equations[i][0] = next();
        const double real = next(), other = next();
        multiply<kDegree>(equations[i], i % 2 == 0 ? real + other : 2 * real,
                          i % 2 == 0 ? real * other : real * real + other * other);
        for (int rest = 2; rest < kDegree; ++rest) multiply<kDegree>(equations[i], next(), 0);
    }
    return equations;
}
