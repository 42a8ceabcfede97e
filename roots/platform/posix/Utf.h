// The arithmetic of UTF-16 and UTF-8, for the files of this folder that go through text character by character.
#pragma once

namespace platform {

constexpr bool isHighSurrogate(unsigned unit) { return (unit & 0xFFFFFC00u) == 0xD800u; }

constexpr bool isLowSurrogate(unsigned unit) { return (unit & 0xFFFFFC00u) == 0xDC00u; }

// The character that two surrogates make, and the two that a character above U+FFFF has.
constexpr unsigned pairValue(unsigned high, unsigned low) {
    return 0x10000u + ((high & 0x3FFu) << 10 | (low & 0x3FFu));
}

constexpr wchar_t highSurrogate(unsigned value) { return static_cast<wchar_t>(0xD7C0u + (value >> 10)); }

constexpr wchar_t lowSurrogate(unsigned value) { return static_cast<wchar_t>(0xDC00u + (value & 0x3FFu)); }

// The bytes that follow the lead byte of a sequence; 0 for a byte that can be none, ASCII aside.
constexpr int trailCount(unsigned lead) {
    return lead < 0xC2 || lead > 0xF4 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
}

// What the lead byte adds to the value of its sequence.
constexpr unsigned leadBits(unsigned lead, int trails) { return lead & (0x3Fu >> trails); }

constexpr bool isTrail(int byte) { return (byte & ~0x3F) == 0x80; }

// Whether the second byte makes a sequence longer than it need be, a surrogate, or more than U+10FFFF.
constexpr bool isOutOfRange(unsigned lead, unsigned second) {
    return (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
           (lead == 0xF4 && second > 0x8F);
}

// Gives the bytes of a character one after the other, a surrogate being encoded like any other.
template <class Add>
void encodeUtf8(unsigned value, Add add) {
    if (value < 0x80) return add(value);
    if (value < 0x800) {
        add(0xC0u | value >> 6);
    } else {
        if (value < 0x10000) {
            add(0xE0u | value >> 12);
        } else {
            add(0xF0u | value >> 18);
            add(0x80u | (value >> 12 & 0x3Fu));
        }
        add(0x80u | (value >> 6 & 0x3Fu));
    }
    add(0x80u | (value & 0x3Fu));
}

}  // namespace platform
