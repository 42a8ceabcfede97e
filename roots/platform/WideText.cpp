#include <roots/platform/WideText.h>

#include <roots/platform/WideTextAvx2.h>
#include <roots/platform/WideTextVector.h>

#include <algorithm>

#ifdef __SSE2__
#    include <emmintrin.h>
#endif

namespace wide {
namespace {

#ifdef __SSE2__

struct Units {
    static constexpr std::size_t kUnits = 8;
    static constexpr std::uint32_t kAllBytes = 0xFFFF;
    __m128i v;

    static Units fill(int unit) noexcept { return {_mm_set1_epi16(static_cast<short>(unit))}; }
    KELROOTS_READS_AHEAD static Units load(const wchar_t* p) noexcept {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    void store(wchar_t* p) const noexcept { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    Units equals(Units o) const noexcept { return {_mm_cmpeq_epi16(v, o.v)}; }
    Units both(Units o) const noexcept { return {_mm_and_si128(v, o.v)}; }
    Units either(Units o) const noexcept { return {_mm_or_si128(v, o.v)}; }
    Units least(Units o) const noexcept { return {_mm_subs_epu16(v, _mm_subs_epu16(v, o.v))}; }
    Units minus(Units o) const noexcept { return {_mm_sub_epi16(v, o.v)}; }
    Units choose(Units substitute, Units where) const noexcept {
        return {_mm_or_si128(_mm_and_si128(where.v, substitute.v), _mm_andnot_si128(where.v, v))};
    }
    std::uint32_t mask() const noexcept { return static_cast<std::uint32_t>(_mm_movemask_epi8(v)); }

    std::size_t sum() const noexcept {
        __m128i sums = _mm_madd_epi16(v, _mm_set1_epi16(1));
        sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, 0x4E));
        sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, 0xB1));
        return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sums));
    }

    Units reversed() const noexcept {
        const __m128i halves = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0x1B), 0x1B);
        return {_mm_shuffle_epi32(halves, 0x4E)};
    }
};

#else

// One unit at a time, for processors without a vector unit that we know.
struct Units {
    static constexpr std::size_t kUnits = 1;
    static constexpr std::uint32_t kAllBytes = 3;
    std::uint16_t v;

    static Units make(int unit) noexcept { return {static_cast<std::uint16_t>(unit)}; }
    static Units fill(int unit) noexcept { return make(unit); }
    static Units load(const wchar_t* p) noexcept { return make(*p); }
    void store(wchar_t* p) const noexcept { *p = static_cast<wchar_t>(v); }
    Units equals(Units o) const noexcept { return make(v == o.v ? 0xFFFF : 0); }
    Units both(Units o) const noexcept { return make(v & o.v); }
    Units either(Units o) const noexcept { return make(v | o.v); }
    Units least(Units o) const noexcept { return v < o.v ? *this : o; }
    Units minus(Units o) const noexcept { return make(v - o.v); }
    Units choose(Units substitute, Units where) const noexcept { return where.v ? substitute : *this; }
    std::uint32_t mask() const noexcept { return v ? kAllBytes : 0; }
    std::size_t sum() const noexcept { return v; }
    Units reversed() const noexcept { return *this; }
};

#endif

using Loops = vector::Loops<Units>;
using vector::Anchors;

constexpr std::size_t kUnits = Units::kUnits;
constexpr std::size_t kWorthwhile = 64;  // from this many units on the larger vectors pay

bool largeVectors() noexcept {
#ifdef KELROOTS_AVX2
    return avx2::usable();
#else
    return false;
#endif
}

// Calls the AVX2 form of a loop, or the form above.
#ifdef KELROOTS_AVX2
#    define KELROOTS_LARGE(call) avx2::call
#else
#    define KELROOTS_LARGE(call) Loops::call
#endif

template <class T>
T* nextBoundary(T* p, std::size_t bytes) noexcept {
    return reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(p) / bytes + 1) * bytes);
}

std::size_t sameUnits(const wchar_t* a, const wchar_t* b, std::size_t count) noexcept {
    return Loops::sameUnits(a, b, count);
}

// Kept out of the functions that answer for short texts: these loops need registers saved.
__attribute__((noinline)) KELROOTS_READS_AHEAD std::size_t lengthFrom(const wchar_t* text, std::size_t i,
                                                                      std::size_t max) noexcept {
    if (i >= max) return max;
    if (!largeVectors()) return std::min(max, i + Loops::length(text + i, max - i));
    if (reinterpret_cast<std::uintptr_t>(text + i) % (4 * kUnits) != 0) {  // to a boundary of the large vectors
        const std::uint32_t mask = Units::load(text + i).equals(Units::fill(0)).mask();
        if (mask != 0) return std::min(max, i + vector::lowestUnit(mask));
        i += kUnits;
        if (i >= max) return max;
    }
    return std::min(max, i + KELROOTS_LARGE(length(text + i, max - i)));
}

__attribute__((noinline)) KELROOTS_READS_AHEAD std::size_t mismatchFrom(const wchar_t* a, const wchar_t* b,
                                                                        std::size_t i, std::size_t count) noexcept {
    const bool large = largeVectors();
    bool found = false;
    while (i < count) {
        if (large && i >= 2 * kUnits) {
            i = KELROOTS_LARGE(mismatch(a, b, i, count, found));
        } else {
            i = Loops::mismatch(a, b, i, count, found);
        }
        if (found) return i;
        // A text that begins just before its page ends: unit by unit into the next page.
        for (; i < count && i < 2 * kUnits; ++i)
            if (a[i] != b[i] || a[i] == 0) return i;
    }
    return count;
}

}  // namespace

KELROOTS_READS_AHEAD std::size_t length(const wchar_t* text, std::size_t max) noexcept {
    const Units zero = Units::fill(0);
    const wchar_t* p = text;
    if (vector::bytesLeftInPage(p) >= 2 * kUnits) {
        if (const std::uint32_t mask = Units::load(p).equals(zero).mask())
            return std::min(max, vector::lowestUnit(mask));
        p = nextBoundary(p, 2 * kUnits);
    } else {
        for (; reinterpret_cast<std::uintptr_t>(p) % (2 * kUnits) != 0; ++p)
            if (*p == 0) return std::min(max, static_cast<std::size_t>(p - text));
    }
    for (int step = 0; step < 5; ++step, p += kUnits) {
        if (const std::uint32_t mask = Units::load(p).equals(zero).mask())
            return std::min(max, static_cast<std::size_t>(p - text) + vector::lowestUnit(mask));
    }
    return lengthFrom(text, static_cast<std::size_t>(p - text), max);
}

KELROOTS_READS_AHEAD std::size_t mismatch(const wchar_t* a, const wchar_t* b, std::size_t count) noexcept {
    std::size_t i = 0;
    if (count >= 2 * kUnits && vector::bytesLeftInPage(a) >= 4 * kUnits && vector::bytesLeftInPage(b) >= 4 * kUnits) {
        const Units zero = Units::fill(0), v = Units::load(a), w = Units::load(a + kUnits);
        const std::uint32_t first = v.equals(Units::load(b)).both(v).equals(zero).mask();
        const std::uint32_t second = w.equals(Units::load(b + kUnits)).both(w).equals(zero).mask();
        if (const std::uint32_t mask = first | second << (2 * kUnits)) return vector::lowestUnit(mask);
        i = 2 * kUnits;
    }
    return mismatchFrom(a, b, i, count);
}

std::size_t find(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
    if (length >= kWorthwhile && largeVectors()) return KELROOTS_LARGE(find(text, length, unit));
    if (length >= kUnits) return Loops::find(text, length, unit);
    for (std::size_t i = 0; i < length; ++i)
        if (text[i] == unit) return i;
    return npos;
}

std::size_t findLast(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
    if (length >= kWorthwhile && largeVectors()) return KELROOTS_LARGE(findLast(text, length, unit));
    if (length >= kUnits) return Loops::findLast(text, length, unit);
    while (length-- != 0)
        if (text[length] == unit) return length;
    return npos;
}

namespace {

// A few units, each in all places of a vector; a set of fewer has the last one several times.
struct SmallSet {
    Units members[kSmallSet];

    SmallSet(const wchar_t* set, std::size_t setLength) noexcept {
        for (std::size_t i = 0; i < kSmallSet; ++i) members[i] = Units::fill(set[i < setLength ? i : setLength - 1]);
    }
    // The bytes of units that are not in the set.
    std::uint32_t others(const wchar_t* text) const noexcept {
        const Units v = Units::load(text);
        const Units in =
            v.equals(members[0]).either(v.equals(members[1])).either(v.equals(members[2]).either(v.equals(members[3])));
        return ~in.mask() & Units::kAllBytes;
    }
};

// Of the two bits that each unit of a vector has in a mask.
constexpr std::uint32_t kOneBitEach = 0x5555;

// How many of them are set.
std::size_t countUnits(std::uint32_t oneBitEach) noexcept {
    const std::uint32_t inFours = (oneBitEach & 0x1111) + (oneBitEach >> 2 & 0x1111);
    return inFours * 0x1111 >> 12 & 0xF;
}

bool isIn(wchar_t unit, const wchar_t* set, std::size_t setLength) noexcept {
    for (std::size_t i = 0; i < setLength; ++i)
        if (set[i] == unit) return true;
    return false;
}

}  // namespace

std::size_t spanAtStart(const wchar_t* text, std::size_t length, const wchar_t* set, std::size_t setLength) noexcept {
    std::size_t i = 0;
    if (length != 0 && isIn(text[0], set, setLength)) {
        const SmallSet members(set, setLength);
        for (; i + kUnits <= length; i += kUnits)
            if (const std::uint32_t others = members.others(text + i)) return i + vector::lowestUnit(others);
    }
    while (i < length && isIn(text[i], set, setLength)) ++i;
    return i;
}

std::size_t spanAtEnd(const wchar_t* text, std::size_t length, const wchar_t* set, std::size_t setLength) noexcept {
    std::size_t end = length;
    if (length != 0 && isIn(text[length - 1], set, setLength)) {
        const SmallSet members(set, setLength);
        for (; end >= kUnits; end -= kUnits)
            if (const std::uint32_t others = members.others(text + end - kUnits))
                return length - (end - kUnits + vector::highestUnit(others) + 1);
    }
    while (end > 0 && isIn(text[end - 1], set, setLength)) --end;
    return length - end;
}

std::size_t count(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
    std::size_t counted = 0, i = 0;
    if (length >= kWorthwhile && largeVectors())
        i = KELROOTS_LARGE(count(text, length, unit, counted));
    else
        i = Loops::count(text, length, unit, counted);
    for (; i < length; ++i) counted += text[i] == unit;
    return counted;
}

UnitSet::UnitSet(const wchar_t* units, std::size_t count) noexcept : m_count(count) {
    if (count <= kSmallSet) {
        copy(m_few, units, count);
        return;
    }
    std::memset(m_bits, 0, sizeof m_bits);
    for (std::size_t i = 0; i < count; ++i) m_bits[units[i] / 64] |= std::uint64_t(1) << units[i] % 64;
}

bool UnitSet::contains(wchar_t unit) const noexcept {
    return m_count <= kSmallSet ? isIn(unit, m_few, m_count) : (m_bits[unit / 64] >> unit % 64 & 1) != 0;
}

std::size_t UnitSet::findEach(const wchar_t* text, std::size_t length, std::size_t start, std::uint32_t* positions,
                              std::size_t max) const noexcept {
    std::size_t i = start, stored = 0;
    if (m_count == 0) return 0;
    if (m_count <= kSmallSet) {
        const SmallSet members(m_few, m_count);
        for (; i + kUnits <= length && stored + kUnits + 2 <= max; i += kUnits) {
            std::uint32_t mask = ~members.others(text + i) & kOneBitEach;
            std::uint32_t* out = positions + stored;
            stored += countUnits(mask);
            // Two are stored whether they are or not: no processor foresees how many units there are.
            for (; mask != 0; mask &= mask - 1, out += 2) {
                out[0] = static_cast<std::uint32_t>(i + vector::lowestUnit(mask));
                mask &= mask - 1;
                out[1] = static_cast<std::uint32_t>(i + vector::lowestUnit(mask | 0x10000));
            }
        }
    }
    for (; i < length && stored < max; ++i)
        if (contains(text[i])) positions[stored++] = static_cast<std::uint32_t>(i);
    return stored;
}

std::size_t UnitSet::countBetween(const wchar_t* text, std::size_t length) const noexcept {
    std::size_t i = 0, counted = 0;
    std::uint32_t before = 0;  // 1 where the unit before is not in the set
    if (m_count != 0 && m_count <= kSmallSet) {
        const SmallSet members(m_few, m_count);
        for (; i + kUnits <= length; i += kUnits) {
            const std::uint32_t others = members.others(text + i) & kOneBitEach;
            counted += countUnits(others & ~(others << 2 | before));
            before = others >> 2 * (kUnits - 1);
        }
    }
    for (; i < length; ++i) {
        const std::uint32_t isOther = !contains(text[i]);
        counted += isOther & ~before;
        before = isOther;
    }
    return counted;
}

// ---- finding a text ------------------------------------------------------------------------------
//
// Vectors compare two anchor units of the text wanted at many positions at once; the candidates are then compared
// whole. Texts that make too many candidates fail late are handed to the two-way algorithm of Crochemore and Perrin,
// which is linear whatever the texts.

namespace {

Anchors anchorsOf(const wchar_t* what, std::size_t whatLength) noexcept {
    std::size_t second = whatLength - 1;
    while (second > 0 && what[second] == what[0]) --second;
    return {0, second == 0 ? whatLength - 1 : second};
}

// The start of the greatest suffix of what under one of the two orders of units, less one, and its period.
template <class Less>
std::size_t greatestSuffix(const wchar_t* what, std::size_t whatLength, std::size_t& period, Less less) noexcept {
    std::size_t suffix = npos, j = 0, k = 1;
    period = 1;
    while (j + k < whatLength) {
        const wchar_t a = what[j + k], b = what[suffix + k];
        if (less(a, b)) {
            j += k;
            k = 1;
            period = j - suffix;
        } else if (a == b) {
            if (k != period) {
                ++k;
            } else {
                j += period;
                k = 1;
            }
        } else {
            suffix = j++;
            k = period = 1;
        }
    }
    return suffix;
}

// A text wanted, cut where the two-way algorithm cuts it.
class TwoWay {
public:
    TwoWay(const wchar_t* what, std::size_t whatLength) noexcept : m_what(what), m_length(whatLength) {
        std::size_t period, reversePeriod;
        const auto less = [](wchar_t a, wchar_t b) { return a < b; };
        const auto greater = [](wchar_t a, wchar_t b) { return a > b; };
        const std::size_t suffix = greatestSuffix(what, whatLength, period, less) + 1;
        const std::size_t reverse = greatestSuffix(what, whatLength, reversePeriod, greater) + 1;
        m_cut = std::max(suffix, reverse);
        m_period = suffix > reverse ? period : reversePeriod;
        m_periodic = sameUnits(what, what + m_period, m_cut) == m_cut;
        if (!m_periodic) m_period = std::max(m_cut, whatLength - m_cut) + 1;
    }

    std::size_t find(const wchar_t* text, std::size_t length, std::size_t start) const noexcept {
        std::size_t known = 0;  // units at the start of what that are known to match here
        for (std::size_t at = start; at + m_length <= length;) {
            std::size_t i = std::max(m_cut, known);
            i += sameUnits(m_what + i, text + at + i, m_length - i);
            if (i < m_length) {
                at += i - m_cut + 1;
                known = 0;
                continue;
            }
            i = m_cut;
            while (i > known && m_what[i - 1] == text[at + i - 1]) --i;
            if (i <= known) return at;
            at += m_period;
            known = m_periodic ? m_length - m_period : 0;
        }
        return npos;
    }

private:
    const wchar_t* m_what;
    std::size_t m_length;
    std::size_t m_cut, m_period;
    bool m_periodic;
};

// All the rest of a search by the two-way algorithm.
std::size_t findEachTwoWay(const wchar_t* text, std::size_t length, std::size_t i, const wchar_t* what,
                           std::size_t whatLength, std::size_t* positions, std::size_t max,
                           std::size_t stored) noexcept {
    const TwoWay search(what, whatLength);
    while (stored < max && (i = search.find(text, length, i)) != npos) {
        positions[stored++] = i;
        i += whatLength;
    }
    return stored;
}

}  // namespace

std::size_t findEach(const wchar_t* text, std::size_t length, std::size_t start, const wchar_t* what,
                     std::size_t whatLength, std::size_t* positions, std::size_t max) noexcept {
    std::size_t stored = 0, i = start;
    if (max == 0 || whatLength > length) return 0;
    const Anchors anchors = anchorsOf(what, whatLength);
    bool tooMuch = false;
    if (length - whatLength >= i + kWorthwhile && largeVectors()) {
#ifdef KELROOTS_AVX2
        i = avx2::findEach(text, length, i, what, whatLength, anchors.first, anchors.second, positions, max, stored,
                           tooMuch);
#endif
    }
    if (stored < max && !tooMuch)
        i = Loops::findEach(text, length, i, what, whatLength, anchors, positions, max, stored, tooMuch);
    if (tooMuch) return findEachTwoWay(text, length, i, what, whatLength, positions, max, stored);
    for (; stored < max && i + whatLength <= length; ++i) {
        if (text[i + anchors.second] != what[anchors.second] || sameUnits(text + i, what, whatLength) < whatLength)
            continue;
        positions[stored++] = i;
        i += whatLength - 1;
    }
    return stored;
}

std::size_t find(const wchar_t* text, std::size_t length, const wchar_t* what, std::size_t whatLength) noexcept {
    if (whatLength == 0) return 0;
    if (whatLength == 1) return find(text, length, *what);
    std::size_t position;
    return findEach(text, length, 0, what, whatLength, &position, 1) != 0 ? position : npos;
}

// ---- copying -------------------------------------------------------------------------------------

void copyReplaced(wchar_t* out, const wchar_t* text, std::size_t count, wchar_t from, wchar_t to) noexcept {
    std::size_t i = 0;
    if (count >= kWorthwhile && largeVectors()) i = KELROOTS_LARGE(copyReplaced(out, text, count, from, to));
    i += Loops::copyReplaced(out + i, text + i, count - i, from, to);
    for (; i < count; ++i) out[i] = text[i] == from ? to : text[i];
}

void copyWithout(wchar_t* out, std::size_t outLength, const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
    const Units unwanted = Units::fill(unit);
    const wchar_t* const outEnd = out + outLength;
    std::size_t i = 0;
    if (length >= kWorthwhile && largeVectors()) {
#ifdef KELROOTS_AVX2
        i = avx2::copyWithout(out, outEnd, text, length, unit);
#endif
    }
    // Whole vectors are stored as long as there is room for them; units that do not belong are overwritten by the next.
    for (; i + kUnits <= length && static_cast<std::size_t>(outEnd - out) >= kUnits; i += kUnits) {
        const Units v = Units::load(text + i);
        const std::uint32_t mask = v.equals(unwanted).mask();
        if (mask == 0) {
            v.store(out);
            out += kUnits;
        } else {
            for (std::size_t k = 0; k < kUnits; ++k) {
                *out = text[i + k];
                out += (mask >> 2 * k & 1) ^ 1;
            }
        }
    }
    for (; out < outEnd; ++i) {
        *out = text[i];
        out += text[i] != unit;
    }
}

std::size_t copySame([[maybe_unused]] const unsigned char* from, [[maybe_unused]] std::size_t count,
                     [[maybe_unused]] wchar_t* to, [[maybe_unused]] bool latin1) noexcept {
#ifdef KELROOTS_AVX2
    if (avx2::usable()) return avx2::widen(from, count, to, latin1);
#endif
    return 0;
}

std::size_t copySame([[maybe_unused]] const wchar_t* from, [[maybe_unused]] std::size_t count,
                     [[maybe_unused]] unsigned char* to, [[maybe_unused]] bool latin1) noexcept {
#ifdef KELROOTS_AVX2
    if (avx2::usable()) return avx2::narrow(from, count, to, latin1);
#endif
    return 0;
}

void copyReversed(wchar_t* out, const wchar_t* text, std::size_t count) noexcept {
    std::size_t i = 0;
    if (count >= kWorthwhile && largeVectors()) i = KELROOTS_LARGE(copyReversed(out, text, count));
    i += Loops::copyReversed(out + i, text, count - i);
    for (; i < count; ++i) out[i] = text[count - 1 - i];
}

namespace {

// Below 8 units, without a branch: lengths of short texts are hard to foresee. What is not to be written goes
// elsewhere.
inline void wipeFew(wchar_t* text, std::size_t length) noexcept {
    wchar_t elsewhere[4];
    const auto zeroIf = [&](std::size_t units) {
        const std::uintptr_t here = 0 - static_cast<std::uintptr_t>((length & units) != 0);  // all bits, or none
        const auto at = reinterpret_cast<std::uintptr_t>(text), other = reinterpret_cast<std::uintptr_t>(elsewhere);
        std::memset(reinterpret_cast<void*>((at & here) | (other & ~here)), 0, units * sizeof(wchar_t));
        text += length & units;
    };
    zeroIf(4), zeroIf(2), zeroIf(1);
}

}  // namespace

KELROOTS_READS_AHEAD void wipe(wchar_t* text) noexcept {
    const Units zero = Units::fill(0);
    wchar_t* p = text;
    if (vector::bytesLeftInPage(p) >= 2 * kUnits && Units::load(p).equals(zero).mask() == 0) {
        p = nextBoundary(p, 2 * kUnits);
        // The zeros of the vector at p: looked at first, the store may reach into it.
        std::uint32_t mask = Units::load(p).equals(zero).mask();
        zero.store(text);
        for (int step = 0; step < 4 && mask == 0; ++step) {
            zero.store(p);
            p += kUnits;
            mask = Units::load(p).equals(zero).mask();
        }
        if (mask == 0) {
            if (reinterpret_cast<std::uintptr_t>(p) % (4 * kUnits) != 0) {
                zero.store(p);
                p += kUnits;
            }
            p = largeVectors() ? KELROOTS_LARGE(wipe(p)) : Loops::wipe(p);
            while ((mask = Units::load(p).equals(zero).mask()) == 0) {
                zero.store(p);
                p += kUnits;
            }
        }
        // At least a vector lies before the terminator by now.
        zero.store(p + vector::lowestUnit(mask) - kUnits);
    } else if (vector::bytesLeftInPage(p) >= 2 * kUnits) {
        wipeFew(p, vector::lowestUnit(Units::load(p).equals(zero).mask()));
    } else {
        while (*p != 0) *p++ = 0;
    }
    __asm__ volatile("" : : "r"(text) : "memory");  // the zeros count as read, so that they are written
}

}  // namespace wide
