// The 16-bit text primitives that everything else is made of, vectorised, on both systems: the runtimes' own are slow
// (Windows) or made for 32-bit wide characters (elsewhere).
//
// Texts are zero-terminated unless a length is given; lengths and positions count 16-bit units. Vector loads may read
// past the end of a text, but never into another memory page; nothing is written past it. Nothing here allocates.
#pragma once

#include <roots/Export.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace wide {

constexpr std::size_t npos = static_cast<std::size_t>(-1);

// Units before the terminator; with a max no more than that, and what lies behind is not looked at.
std::size_t length(const wchar_t* text, std::size_t max = npos) noexcept;

// The first position below count at which two texts differ or both end; count where there is none.
std::size_t mismatch(const wchar_t* a, const wchar_t* b, std::size_t count = npos) noexcept;

// Whether two texts are the same.
inline bool equal(const wchar_t* a, const wchar_t* b) noexcept {
    const std::size_t i = mismatch(a, b);
    return a[i] == b[i];
}

// -1, 0 or +1 over at most count units, in the order of unsigned 16-bit units; a text that begins the other comes
// first.
inline int compare(const wchar_t* a, const wchar_t* b, std::size_t count = npos) noexcept {
    const std::size_t i = mismatch(a, b, count);
    if (i == count) return 0;
    return (a[i] > b[i]) - (a[i] < b[i]);
}

// The first or last position of unit in text[0 .. length), or npos.
std::size_t find(const wchar_t* text, std::size_t length, wchar_t unit) noexcept;
std::size_t findLast(const wchar_t* text, std::size_t length, wchar_t unit) noexcept;

// How many units at the start, or the end, of text[0 .. length) occur in set, which has 1 to kSmallSet units.
constexpr std::size_t kSmallSet = 4;
std::size_t spanAtStart(const wchar_t* text, std::size_t length, const wchar_t* set, std::size_t setLength) noexcept;
std::size_t spanAtEnd(const wchar_t* text, std::size_t length, const wchar_t* set, std::size_t setLength) noexcept;

// How many of text[0 .. length) are unit.
std::size_t count(const wchar_t* text, std::size_t length, wchar_t unit) noexcept;

// The first position of what in text, or npos; an empty what is found at 0. Linear in length + whatLength.
std::size_t find(const wchar_t* text, std::size_t length, const wchar_t* what, std::size_t whatLength) noexcept;

// The positions, in order, of the first at most max occurrences of a non-empty what in text that begin at start or
// behind it and do not overlap each other. Returns how many were stored.
std::size_t findEach(const wchar_t* text, std::size_t length, std::size_t start, const wchar_t* what,
                     std::size_t whatLength, std::size_t* positions, std::size_t max) noexcept;

// A set of units. Up to kSmallSet of them are compared with, more are looked up.
class UnitSet {
public:
    UnitSet(const wchar_t* units, std::size_t count) noexcept;

    bool isEmpty() const noexcept { return m_count == 0; }
    bool contains(wchar_t unit) const noexcept;

    // The positions, in order, of the first at most max units of text[0 .. length) that stand at start or behind it
    // and are in the set. Returns how many were stored. length is below 2^32.
    std::size_t findEach(const wchar_t* text, std::size_t length, std::size_t start, std::uint32_t* positions,
                         std::size_t max) const noexcept;

    // How many stretches of units that are not in the set text[0 .. length) has.
    std::size_t countBetween(const wchar_t* text, std::size_t length) const noexcept;

private:
    std::size_t m_count;
    wchar_t m_few[kSmallSet];
    std::uint64_t m_bits[1024];  // a bit for each unit; left alone in a small set
};

// The ranges of source and destination of what follows do not overlap.

inline void copy(wchar_t* to, const wchar_t* from, std::size_t count) noexcept {
    std::memcpy(to, from, count * sizeof(wchar_t));
}

// Copies count units, every unit equal to from replaced by to.
void copyReplaced(wchar_t* out, const wchar_t* text, std::size_t count, wchar_t from, wchar_t to) noexcept;

// Copies the units of text[0 .. length) that are not unit to out, which has room for just those.
void copyWithout(wchar_t* out, std::size_t outLength, const wchar_t* text, std::size_t length, wchar_t unit) noexcept;

// Copies between bytes and the units of the same number, in large steps until one meets a byte or unit above 7F, or
// with latin1 one of 80 to 9F or above FF. Return how many were copied, from 0 (no such step is known for the
// processor) on.
std::size_t copySame(const unsigned char* from, std::size_t count, wchar_t* to, bool latin1) noexcept;
std::size_t copySame(const wchar_t* from, std::size_t count, unsigned char* to, bool latin1) noexcept;

// Copies count units in reverse order.
void copyReversed(wchar_t* out, const wchar_t* text, std::size_t count) noexcept;

// Overwrites a text with zeros up to its terminator, in one pass that the compiler cannot remove.
void wipe(wchar_t* text) noexcept;

}  // namespace wide
