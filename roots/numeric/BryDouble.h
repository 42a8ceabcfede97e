// Rounding to decimals, to a grid and to whole numbers.
#pragma once

#include <roots/Export.h>

// The operations are those written below, each rounded to double by itself, so that the bits of a result are the same
// on every platform and for every compiler option of the host.
class KELROOTS_API BryDouble {
public:
    // The least offset of longRound.
    static constexpr double MinRoundOffset = 0.0001;

    // First snaps to a grid: with a step above 1e-10 the value becomes step * k, where k is (value + step * 0.5) / step
    // without its fraction. Positive values go to the nearest line of the grid, halves up. Negative ones go to the line
    // above: on a grid of 1 all above -1.5 give 0, and those from there to above -2.5 give -1. A step of at most 1e-10,
    // or NaN, is no grid. Then floor(value * f + 0.5) / f with f = 10 to the power of decimals: halves go up, below
    // zero as well.
    //
    //   round(2.25, 1) == 2.3   round(-2.25, 1) == -2.2   round(7.3, 0, 2.0) == 8.0   round(1.005, 2) == 1.0
    //
    // The last, because 1.005 times 100 is 100.49999999999999. f is the product of those of 10, 10^2, 10^4, 10^8 ...
    // that make up decimals, multiplied in this order: exact up to 22 decimals. value * f + 0.5 is rounded to double:
    // the number right below 0.5 gives 1, and where value * f is an odd whole number from 2^52 to 2^53 the next even
    // one comes out. An overflow of value * f gives an infinity, 309 decimals and more give NaN, and so does NaN itself
    // or an infinite step. k is not limited to 32 bits.
    static double round(double value, unsigned short decimals = 0, double step = 0);

    // value + offset for values from 0 on, else value - offset, without its fraction. An offset of 0.5 rounds halves
    // away from zero. One of 0.0001 cuts the fraction, and only lifts values within 0.0001 below a whole number. An
    // offset outside 0.0001 .. 0.9999, NaN too, counts as 0.0001. Beyond 32 bits the result is the nearer of
    // -2,147,483,648 and 2,147,483,647; for NaN it is 0.
    static long longRound(const double& value, double roundOffset = 0.5);
};
