// How the library's values are shown where an expectation fails.
#pragma once

#include <roots/text/BryString.h>

#include <cstdio>
#include <ostream>

inline void PrintTo(const BryString& text, std::ostream* out) {
    *out << "L\"";
    for (const wchar_t* c = text.getStringW(); *c != 0; ++c) {
        char shown[8] = {static_cast<char>(*c)};
        if (*c < 0x20 || *c > 0x7E) std::snprintf(shown, sizeof shown, "\\x%04X", static_cast<unsigned>(*c));
        *out << shown;
    }
    *out << '"';
}
