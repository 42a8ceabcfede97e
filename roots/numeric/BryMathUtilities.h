// The real roots of polynomial equations up to degree four, by closed forms.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>

// Each solver empties roots, which keeps its storage, stores the real roots that it finds and answers their number; 0
// stands for none. They come in the order of the formulas below, not sorted, and a multiple root is stored once.
//
// Zero means closer to zero than the tolerance 1e-9, an absolute value. An equation whose leading coefficient is zero
// is one of the next lower degree. So the solvers are at their best where the leading coefficient is about 1 and the
// roots have a size, and lie apart, by 0.3 to 1e6. Divide by a small a, and choose the unit: with x = s z the equation
// for z has the coefficients a s^4, b s^3, c s^2, d s, e. Roots close together far from 0 are told apart in z = x - t,
// with t amid them.
//
// The same coefficients give the same bits on every platform. Every operation is rounded to double by itself, and cube
// root, cosine and arc cosine are the library's own: those of two C libraries differ in the last bit of up to half of
// their results. Apart from PI nothing is shared; concurrent calls need result arrays of their own. Only std::bad_alloc
// passes through, and leaves roots empty.
//
// Limits, with errors as measured on equations made from known roots:
//
// - Roots that are nearer to each other than the tolerance allows are taken for one multiple root: equally spaced ones,
//   with a leading 1, below a distance of 3.2e-5 (quadratic) or 0.055 (cubic). Those of a quartic are off by 3 % below
//   a distance of 0.174.
// - Whether a double root is found, or lost, or found as two next to each other, is up to the rounding of the
//   coefficients: in a cubic with random roots up to 5 nearly all are found, up to 50 half of them, up to 500 a tenth.
//   The same holds for triple roots in cubics from 500 on and for fourfold ones of any size.
// - A root k times smaller than the largest has a relative error of 1e-16 k (quadratic), 1e-16 k^2 (cubic: 1e-4 for
//   k = 1e6, and from 1e8 on nothing is right) or 1e-15 k (quartic). Two roots with a distance of d times their size
//   have one of 4e-16 / d. A quartic whose four roots all lie within 1 % of their size may lose some.
// - Where intermediate results overflow, roots are missing, infinite, NaN or, in a cubic, wrong: with roots of 1e154
//   (quadratic), 1e51 (cubic), 1e25 (quartic), or coefficients of that size beside a leading 1.
// - With coefficients that are NaN or infinite no root means anything. A NaN has none stored, but for the
//   root of a linear equation and the 0.0 of one without constant term.
namespace BryMathUtilities {

// The arc cosine of -1.
extern KELROOTS_API const double PI;

using Roots = BryArray<double, BryArrayMemCopyReallocator<double>, BryArrayMemoryController<double>>;

// a x^2 + b x + c = 0, 0 to 2 roots: with D = b^2 - 4 a c these are (-b - sqrt(D)) * 0.5 / a and
// (sqrt(D) - b) * 0.5 / a, in this order whatever the sign of a; b * -0.5 / a where D is zero. Without a: -c / b,
// unless b is 0 exactly.
KELROOTS_API int QuadraticSolver(double a, double b, double c, Roots& roots);

// a x^3 + b x^2 + c x + d = 0, 0 to 3 roots. Where d is zero: 0.0, unless the quadratic has a zero root already, and
// then the roots of the quadratic a, b, c. Otherwise, with B = b / a, C = c / a, E = d / a, Q = (3 C - B^2) / 9,
// R = (9 B C - 27 E - 2 B^3) / 54:
//
//   Q^3 + R^2 zero      2 S - B / 3 and the double root -S - B / 3 with S the cube root of R; B / -3 where R is zero
//   Q^3 + R^2 above     S + T - B / 3 with S, T the cube roots of R + s, R - s and s the square root of Q^3 + R^2. The
//                       one whose argument cancels is taken from S T = -Q.
//   Q^3 + R^2 below     m cos(t / 3) - B / 3, m cos((t + 2 PI) / 3) - B / 3, m cos((t + 4 PI) / 3) - B / 3 with
//                       t = arccos(R / sqrt(-Q^3)), m = 2 sqrt(-Q)
KELROOTS_API int CubicSolver(double a, double b, double c, double d, Roots& roots);

// a x^4 + b x^3 + c x^2 + d x + e = 0, 0 to 4 roots. Where e is zero: 0.0 and the roots of the cubic, as above.
// Otherwise, with B to E the coefficients divided by a, and y the largest root that the cubic solver finds of
// y^3 - C y^2 + (B D - 4 E) y + E (4 C - B^2) - D^2 = 0:
//
//   h = y / 2, g = B / 2, q = sqrt(h^2 - E), p = (g h - D / 2) / q, or sqrt(g^2 - C + y) where q is zero
//
// The roots of x^2 + (g + p) x + h + q, and then those of x^2 + (g - p) x + h - q that are not equal, to the tolerance,
// to one of the first factor. A square from -1e-9 to 0 counts as 0; one below means no root.
//
// In truth q is 0 for all quartics whose roots give x1 x2 = x3 x4, where two roots are negative and two positive, or
// two real and two a complex pair: x^4 + C x^2 + E with four real roots, such as (x^2 - 1)(x^2 - 36), and others, such
// as -6, -1, 2, 3, or 1, 4, 2i, -2i, or those of the symmetric 3 x^4 + 8 x^3 - 5 x^2 + 8 x + 3. An error of 1e-16 in y
// makes that 1e-8 times h, which the tolerance does not take for zero, and p noise: all roots would be lost, or wrong
// ones found. Therefore y and these differences are taken to 32 digits, and what of h^2 - E and g^2 - C + y is below
// its own error then is zero. 166,000 such quartics with roots up to 1e4 that lie apart by 0.3 and by 1 % of the
// largest got all their roots and no other, with errors up to 1.1e-10 of the largest.
KELROOTS_API int QuarticSolver(double a, double b, double c, double d, double e, Roots& roots);

}  // namespace BryMathUtilities
