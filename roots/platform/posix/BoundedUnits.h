// What the bounded routines share: one spelling for texts of char and of wchar_t, and one way to fail.
#pragma once

#include <roots/platform/WideText.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace platform {

constexpr int kBadArgument = 22;
constexpr int kTooSmall = 34;

// Units before the terminator, at most limit; nothing behind the first of the two belongs to the text. A text compared
// with itself stops only where it ends.
inline std::size_t lengthWithin(const char* text, std::size_t limit) { return strnlen(text, limit); }

inline std::size_t lengthWithin(const wchar_t* text, std::size_t limit) { return wide::mismatch(text, text, limit); }

// The same where size units belong to the caller whatever they hold, as a destination's do.
inline std::size_t lengthInside(const char* text, std::size_t size) { return strnlen(text, size); }

inline std::size_t lengthInside(const wchar_t* text, std::size_t size) {
    return std::min(wide::find(text, size, L'\0'), size);
}

inline std::size_t lengthOf(const char* text) { return std::strlen(text); }

inline std::size_t lengthOf(const wchar_t* text) { return wide::length(text); }

// Copies count units and ends the text behind them; the source may overlap the destination.
template <class Unit>
void write(Unit* to, const Unit* from, std::size_t count) {
    std::memmove(to, from, count * sizeof(Unit));
    to[count] = Unit{};
}

inline int fail(int error) {
    errno = error;
    return error;
}

// Empties the destination, which has room for that.
template <class Unit>
int fail(Unit* to, int error) {
    *to = Unit{};
    return fail(error);
}

// Writes a text that starts the destination, or fails.
template <class Unit>
int writeBounded(Unit* to, std::size_t size, const Unit* from, std::size_t count) {
    if (to == nullptr || size == 0) return fail(kBadArgument);
    if (count >= size) return fail(to, kTooSmall);
    write(to, from, count);
    return 0;
}

}  // namespace platform
