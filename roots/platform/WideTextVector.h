// The loops of WideText over one kind of vector, written once and compiled for each instruction set in a file of its
// own. V is a vector type of that file's anonymous namespace, so that no instantiation leaks into another file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Vector loads of these loops reach past the end of a text on purpose, within its page.
#define KELROOTS_READS_AHEAD __attribute__((no_sanitize("address")))

namespace wide::vector {

// Static, not merely inline: each file that includes this has its own, compiled for its own processor.

constexpr std::uintptr_t kPage = 4096;

static inline std::size_t bytesLeftInPage(const void* p) noexcept {
    return kPage - (reinterpret_cast<std::uintptr_t>(p) & (kPage - 1));
}

static inline std::size_t lowestUnit(std::uint32_t byteMask) noexcept {
    return static_cast<std::size_t>(__builtin_ctz(byteMask)) / 2;
}

static inline std::size_t highestUnit(std::uint32_t byteMask) noexcept {
    return static_cast<std::size_t>(31 - __builtin_clz(byteMask)) / 2;
}

// Where a search for a text compares first: two units of it that differ, where it has two such.
struct Anchors {
    std::size_t first, second;
};

template <class V>
struct Loops {
    static constexpr std::size_t kUnits = V::kUnits;
    static constexpr std::size_t kBytes = 2 * kUnits;

    // text is aligned to kBytes. What is not below max may be anything from max on.
    KELROOTS_READS_AHEAD static std::size_t length(const wchar_t* text, std::size_t max) noexcept {
        const V zero = V::fill(0);
        std::size_t i = 0;
        for (; reinterpret_cast<std::uintptr_t>(text + i) % (4 * kBytes) != 0; i += kUnits) {
            if (const std::uint32_t mask = V::load(text + i).equals(zero).mask()) return i + lowestUnit(mask);
        }
        for (; i < max; i += 4 * kUnits) {
            const wchar_t* const p = text + i;
            const V a = V::load(p), b = V::load(p + kUnits), c = V::load(p + 2 * kUnits), d = V::load(p + 3 * kUnits);
            if (a.least(b).least(c.least(d)).equals(zero).mask() == 0) continue;
            const V vectors[] = {a, b, c};
            for (const V& v : vectors) {
                if (const std::uint32_t mask = v.equals(zero).mask()) return i + lowestUnit(mask);
                i += kUnits;
            }
            return i + lowestUnit(d.equals(zero).mask());
        }
        return max;
    }

    // Positions from i on, as long as whole vectors of both texts lie within their pages and below count. Returns
    // where it stopped; found tells that it stopped at a difference or an end.
    KELROOTS_READS_AHEAD static std::size_t mismatch(const wchar_t* a, const wchar_t* b, std::size_t i,
                                                     std::size_t count, bool& found) noexcept {
        const V zero = V::fill(0);
        const std::size_t left =
            bytesLeftInPage(a + i) < bytesLeftInPage(b + i) ? bytesLeftInPage(a + i) : bytesLeftInPage(b + i);
        const std::size_t stop = left / 2 < count - i ? i + left / 2 : count;
        if (i + kUnits <= stop) {  // one vector to where those of a are aligned
            const V v = V::load(a + i);
            if (const std::uint32_t mask = v.equals(V::load(b + i)).both(v).equals(zero).mask()) {
                found = true;
                return i + lowestUnit(mask);
            }
            i += kUnits - reinterpret_cast<std::uintptr_t>(a + i) % kBytes / 2;
        }
        // A vector is clean where the texts are equal and neither ends: both(equal, a) is then nowhere 0.
        const auto clean = [a, b](std::size_t at) KELROOTS_READS_AHEAD {
            const V v = V::load(a + at);
            return v.equals(V::load(b + at)).both(v);
        };
        for (; i + 4 * kUnits <= stop; i += 4 * kUnits) {
            const V first = clean(i).least(clean(i + kUnits)),
                    second = clean(i + 2 * kUnits).least(clean(i + 3 * kUnits));
            if (first.least(second).equals(zero).mask() != 0) break;
        }
        for (; i + kUnits <= stop; i += kUnits) {
            const V v = V::load(a + i);
            if (const std::uint32_t mask = v.equals(V::load(b + i)).both(v).equals(zero).mask()) {
                found = true;
                return i + lowestUnit(mask);
            }
        }
        if (i < stop && stop >= kUnits) {  // what is left before a page ends, together with units known to be equal
            i = stop - kUnits;
            const V v = V::load(a + i);
            if (const std::uint32_t mask = v.equals(V::load(b + i)).both(v).equals(zero).mask()) {
                found = true;
                return i + lowestUnit(mask);
            }
            i = stop;
        }
        return i;
    }

    // length is at least kUnits.
    static std::size_t find(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
        const V wanted = V::fill(unit);
        std::size_t i = 0;
        for (; i + 4 * kUnits <= length; i += 4 * kUnits) {
            const V a = V::load(text + i).equals(wanted), b = V::load(text + i + kUnits).equals(wanted);
            const V c = V::load(text + i + 2 * kUnits).equals(wanted),
                    d = V::load(text + i + 3 * kUnits).equals(wanted);
            if (a.either(b).either(c.either(d)).mask() != 0) break;
        }
        for (; i + kUnits <= length; i += kUnits) {
            if (const std::uint32_t mask = V::load(text + i).equals(wanted).mask()) return i + lowestUnit(mask);
        }
        const std::uint32_t mask = V::load(text + length - kUnits).equals(wanted).mask();
        return mask ? length - kUnits + lowestUnit(mask) : static_cast<std::size_t>(-1);
    }

    // length is at least kUnits.
    static std::size_t findLast(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
        const V wanted = V::fill(unit);
        std::size_t end = length;
        for (; end >= 4 * kUnits; end -= 4 * kUnits) {
            const wchar_t* p = text + end - 4 * kUnits;
            const V a = V::load(p).equals(wanted), b = V::load(p + kUnits).equals(wanted);
            const V c = V::load(p + 2 * kUnits).equals(wanted), d = V::load(p + 3 * kUnits).equals(wanted);
            if (a.either(b).either(c.either(d)).mask() != 0) break;
        }
        for (; end >= kUnits; end -= kUnits) {
            if (const std::uint32_t mask = V::load(text + end - kUnits).equals(wanted).mask())
                return end - kUnits + highestUnit(mask);
        }
        const std::uint32_t mask = V::load(text).equals(wanted).mask();
        return mask ? highestUnit(mask) : static_cast<std::size_t>(-1);
    }

    // Counts in whole vectors and returns where it stopped.
    static std::size_t count(const wchar_t* text, std::size_t length, wchar_t unit, std::size_t& counted) noexcept {
        const V wanted = V::fill(unit);
        std::size_t i = 0;
        while (i + kUnits <= length) {
            V sums = V::fill(0);  // a lane counts down by one for each hit, so at most 0xFFFF rounds
            std::size_t rounds = (length - i) / kUnits;
            if (rounds > 0x7FFF) rounds = 0x7FFF;
            for (; rounds != 0; --rounds, i += kUnits) sums = sums.minus(V::load(text + i).equals(wanted));
            counted += sums.sum();
        }
        return i;
    }

    static std::size_t copyReplaced(wchar_t* out, const wchar_t* text, std::size_t count, wchar_t from,
                                    wchar_t to) noexcept {
        const V wanted = V::fill(from), substitute = V::fill(to);
        std::size_t i = 0;
        for (; i + kUnits <= count; i += kUnits) {
            const V v = V::load(text + i);
            v.choose(substitute, v.equals(wanted)).store(out + i);
        }
        return i;
    }

    static std::size_t copyReversed(wchar_t* out, const wchar_t* text, std::size_t count) noexcept {
        std::size_t i = 0;
        for (; i + kUnits <= count; i += kUnits) V::load(text + count - i - kUnits).reversed().store(out + i);
        return i;
    }

    // Zeros whole vectors until the next one holds the terminator; text is aligned to kBytes. Returns where that one
    // begins.
    KELROOTS_READS_AHEAD static wchar_t* wipe(wchar_t* text) noexcept {
        const V zero = V::fill(0);
        wchar_t* p = text;
        for (; reinterpret_cast<std::uintptr_t>(p) % (4 * kBytes) != 0; p += kUnits) {
            if (V::load(p).equals(zero).mask() != 0) return p;
            zero.store(p);
        }
        for (;; p += 4 * kUnits) {
            const V a = V::load(p), b = V::load(p + kUnits), c = V::load(p + 2 * kUnits), d = V::load(p + 3 * kUnits);
            if (a.least(b).least(c.least(d)).equals(zero).mask() != 0) break;
            for (std::size_t k = 0; k < 4 * kUnits; k += kUnits) zero.store(p + k);
        }
        for (; V::load(p).equals(zero).mask() == 0; p += kUnits) zero.store(p);
        return p;
    }

    // Goes on from position i as long as whole vectors of candidates fit; stores positions of occurrences and how many
    // in stored. Returns where it stopped: at a position still to be tried, or behind the last of max occurrences.
    // tooMuch is set where comparing candidates costs more than scanning: a linear search must take over.
    static std::size_t findEach(const wchar_t* text, std::size_t length, std::size_t i, const wchar_t* what,
                                std::size_t whatLength, Anchors anchors, std::size_t* positions, std::size_t max,
                                std::size_t& stored, bool& tooMuch) noexcept {
        const V first = V::fill(what[anchors.first]), second = V::fill(what[anchors.second]);
        const std::size_t last = length - whatLength;  // the last position possible
        const bool isShort = whatLength <= kUnits && length - i >= kUnits;
        // The units of a short text, and a mask of as many units.
        wchar_t padded[kUnits] = {};
        if (isShort) std::memcpy(padded, what, whatLength * sizeof(wchar_t));
        const V whole = V::load(padded);
        const std::uint32_t wholeMask = static_cast<std::uint32_t>((std::uint64_t(1) << 2 * whatLength % 64) - 1);
        std::size_t effort = 0;
        const std::size_t from = i;
        for (std::size_t block = i; block + kUnits <= last + 1; block += kUnits) {
            std::uint32_t mask = V::load(text + block + anchors.first)
                                     .equals(first)
                                     .both(V::load(text + block + anchors.second).equals(second))
                                     .mask();
            for (; mask != 0; mask &= mask - 1, mask &= mask - 1) {  // each unit has two bits
                const std::size_t at = block + lowestUnit(mask);
                if (at < i) continue;  // overlaps the last occurrence
                std::size_t same;
                if (isShort && at + kUnits <= length) {
                    same = (~V::load(text + at).equals(whole).mask() & wholeMask) == 0 ? whatLength : 1;
                } else {
                    same = sameUnits(text + at, what, whatLength);
                }
                if (same == whatLength) {
                    positions[stored++] = at;
                    i = at + whatLength;
                    if (stored == max) return i;
                } else if ((effort += same) > 8 * (block + kUnits - from) + 1024) {
                    tooMuch = true;
                    return at;
                }
            }
            if (i < block + kUnits)
                i = block + kUnits;
            else if (i >= block + 2 * kUnits)
                block = i - kUnits;  // jump over a long occurrence
        }
        return i;
    }

    // How many units two ranges of count units have in common at their start.
    static std::size_t sameUnits(const wchar_t* a, const wchar_t* b, std::size_t count) noexcept {
        std::size_t i = 0;
        for (; i + kUnits <= count; i += kUnits) {
            const std::uint32_t mask = ~V::load(a + i).equals(V::load(b + i)).mask() & V::kAllBytes;
            if (mask != 0) return i + lowestUnit(mask);
        }
        while (i < count && a[i] == b[i]) ++i;
        return i;
    }
};

}  // namespace wide::vector
