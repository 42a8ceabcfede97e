// What a terminal may be shown of a text, and how wide that comes out.
#pragma once

#include <roots/platform/posix/Utf.h>

#include <string>

namespace platform {

// Whether the character could move the cursor, change colours, make the terminal answer or turn round what follows.
constexpr bool isTerminalControl(unsigned value) {
    return value < 0x20 || (value >= 0x7F && value < 0xA0) || (value >= 0x2028 && value <= 0x202E) ||
           (value >= 0x2066 && value <= 0x2069);
}

// The columns that a character takes: 2 for wide ones (East Asian, most pictures), 0 for those that go onto the one
// before them, 1 for all others.
int columnsOf(unsigned value) noexcept;

// Calls use with each character of the text; half a pair is U+FFFD. Stops where use answers false.
template <class Use>
void forEachCharacter(const wchar_t* text, Use use) {
    for (; *text != 0; ++text) {
        unsigned value = *text;
        if (isHighSurrogate(value) && isLowSurrogate(text[1])) {
            value = pairValue(value, *++text);
        } else if (isHighSurrogate(value) || isLowSurrogate(value)) {
            value = 0xFFFD;
        }
        if (!use(value)) return;
    }
}

inline void appendUtf8(std::string& to, unsigned value) {
    encodeUtf8(value, [&to](unsigned byte) { to += static_cast<char>(byte); });
}

}  // namespace platform
