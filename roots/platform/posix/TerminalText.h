// What a terminal may be shown of a text, and how wide that comes out. Free of the system: programs compile it too.
#pragma once

#include <roots/platform/posix/Utf.h>

#include <string>

namespace platform {

// Whether the character could move the cursor, change colours, make the terminal answer or turn round what follows.
constexpr bool isTerminalControl(unsigned value) {
    return value < 0x20 || (value >= 0x7F && value < 0xA0) || (value >= 0x2028 && value <= 0x202E) ||
           (value >= 0x2066 && value <= 0x2069);
}

// What a terminal is shown of a text: UTF-8, and the columns that it takes.
struct TerminalText {
    std::string bytes;
    int columns = 0;
};

// The text in at most room columns; of one that is too long the start and an ellipsis. Line ends and tabs become
// blanks, other controls U+FFFD. Where terminals differ in a character's columns, these are the most that one takes.
TerminalText fitted(const wchar_t* text, int room);

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
