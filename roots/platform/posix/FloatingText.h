// Floating-point numbers as text in the Windows manner: exact digits, halves rounded away from zero, exponents of three
// digits at least, 1.#INF and 1.#QNAN. Serves the formatted text of both widths.
#pragma once

#include <cstddef>

// The parts of a number's text, in the order in which they are written. The zeros stand apart because a precision may
// ask for billions of them; they are never stored.
struct FloatingText {
    // conversion is one of e E f g G a A; a negative precision stands for the default one. A number without fraction
    // keeps its point where alternate is set, and %g then keeps its closing zeros.
    FloatingText(double value, char conversion, int precision, bool alternate);

    bool negative;
    const char* prefix = "";       // "0x" of the hexadecimal forms
    std::size_t bodyLength = 0;    // digits with their point
    std::size_t closingZeros = 0;  // behind the body
    std::size_t suffixLength = 0;  // the exponent
    char suffix[8];

    // A finite value has at most 309 digits before the point and, exactly, 1074 behind it.
    enum { bodyCapacity = 309 + 1 + 1074 + 16 };
    char body[bodyCapacity];
};
