// Text in and out of a stream as its mode asks: line ends, encoding, the end mark. What the formatted and the scanned
// text stand on; the streams implement it (Streams.cpp).
#pragma once

#include <cstddef>
#include <cstdio>

namespace streams {

// Writes wide text of the given length, embedded zeros included; false on a write error. A unit that an 8-bit stream
// cannot express becomes "?", and what follows is written all the same.
bool putUnits(std::FILE* stream, const wchar_t* text, std::size_t length);

// Writes 8-bit text the same way: LF becomes CR LF in text mode.
bool putBytes(std::FILE* stream, const char* text, std::size_t length);

// The next wide character as fgetwc gives it, or -1 at the end and on an error.
int getUnit(std::FILE* stream);

// Puts back the unit just read; one unit at a time.
void ungetUnit(std::FILE* stream, int unit);

}  // namespace streams
