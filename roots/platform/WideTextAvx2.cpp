// Compiled with -mavx2: nothing here may run before the processor was asked, and nothing inline that other files share
// may be compiled here, or the linker could pick this file's version of it.
#include <roots/platform/WideTextAvx2.h>
#include <roots/platform/WideTextVector.h>

#ifdef KELROOTS_AVX2
#    include <immintrin.h>

namespace {

struct Avx2 {
    static constexpr std::size_t kUnits = 16;
    static constexpr std::uint32_t kAllBytes = 0xFFFFFFFF;
    __m256i v;

    static Avx2 fill(int unit) noexcept { return {_mm256_set1_epi16(static_cast<short>(unit))}; }
    KELROOTS_READS_AHEAD static Avx2 load(const wchar_t* p) noexcept {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))};
    }
    void store(wchar_t* p) const noexcept { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    Avx2 equals(Avx2 o) const noexcept { return {_mm256_cmpeq_epi16(v, o.v)}; }
    Avx2 both(Avx2 o) const noexcept { return {_mm256_and_si256(v, o.v)}; }
    Avx2 either(Avx2 o) const noexcept { return {_mm256_or_si256(v, o.v)}; }
    Avx2 least(Avx2 o) const noexcept { return {_mm256_min_epu16(v, o.v)}; }
    Avx2 minus(Avx2 o) const noexcept { return {_mm256_sub_epi16(v, o.v)}; }
    Avx2 choose(Avx2 substitute, Avx2 where) const noexcept { return {_mm256_blendv_epi8(v, substitute.v, where.v)}; }
    std::uint32_t mask() const noexcept { return static_cast<std::uint32_t>(_mm256_movemask_epi8(v)); }

    std::size_t sum() const noexcept {
        const __m256i pairs = _mm256_madd_epi16(v, _mm256_set1_epi16(1));
        __m128i sums = _mm_add_epi32(_mm256_castsi256_si128(pairs), _mm256_extracti128_si256(pairs, 1));
        sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, 0x4E));
        sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, 0xB1));
        return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sums));
    }

    Avx2 reversed() const noexcept {
        const __m256i order = _mm256_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1,  //
                                               14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
        return {_mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, order), 0x4E)};
    }
};

using Loops = wide::vector::Loops<Avx2>;

}  // namespace

namespace wide::avx2 {

std::size_t length(const wchar_t* text, std::size_t max) noexcept { return Loops::length(text, max); }

std::size_t mismatch(const wchar_t* a, const wchar_t* b, std::size_t i, std::size_t count, bool& found) noexcept {
    return Loops::mismatch(a, b, i, count, found);
}

std::size_t find(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
    return Loops::find(text, length, unit);
}

std::size_t findLast(const wchar_t* text, std::size_t length, wchar_t unit) noexcept {
    return Loops::findLast(text, length, unit);
}

std::size_t count(const wchar_t* text, std::size_t length, wchar_t unit, std::size_t& counted) noexcept {
    return Loops::count(text, length, unit, counted);
}

std::size_t copyReplaced(wchar_t* out, const wchar_t* text, std::size_t count, wchar_t from, wchar_t to) noexcept {
    return Loops::copyReplaced(out, text, count, from, to);
}

std::size_t copyReversed(wchar_t* out, const wchar_t* text, std::size_t count) noexcept {
    return Loops::copyReversed(out, text, count);
}

wchar_t* wipe(wchar_t* text) noexcept { return Loops::wipe(text); }

std::size_t widen(const unsigned char* from, std::size_t count, wchar_t* to, bool latin1) noexcept {
    // As signed numbers, the bytes that are not the same are below this.
    const __m256i lowest = _mm256_set1_epi8(static_cast<char>(latin1 ? 0xA0 : 0));
    std::size_t i = 0;
    for (; count - i >= 64; i += 64) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i + 32));
        if (_mm256_movemask_epi8(_mm256_cmpgt_epi8(lowest, _mm256_min_epi8(a, b))) != 0) break;
        for (std::size_t k = 0; k < 64; k += 16) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i + k));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i + k), _mm256_cvtepu8_epi16(bytes));
        }
    }
    return i;
}

std::size_t narrow(const wchar_t* from, std::size_t count, unsigned char* to, bool latin1) noexcept {
    const __m256i lowest = _mm256_set1_epi8(static_cast<char>(latin1 ? 0xA0 : 0));
    const __m256i tooHigh = _mm256_set1_epi16(static_cast<short>(latin1 ? 0xFF00 : 0xFF80));
    std::size_t i = 0;
    for (; count - i >= 32; i += 32) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i + 16));
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
        const __m256i others =
            _mm256_or_si256(_mm256_and_si256(_mm256_or_si256(a, b), tooHigh), _mm256_cmpgt_epi8(lowest, bytes));
        if (!_mm256_testz_si256(others, others)) break;
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), bytes);
    }
    return i;
}

namespace {

// For each set of units to leave out of eight, the places of the others, moved together.
struct Remaining {
    alignas(16) unsigned char places[256][16] = {};
    constexpr Remaining() {
        for (int without = 0; without < 256; ++without) {
            int to = 0;
            for (int from = 0; from < 8; ++from) {
                if (without >> from & 1) continue;
                places[without][2 * to] = static_cast<unsigned char>(2 * from);
                places[without][2 * to + 1] = static_cast<unsigned char>(2 * from + 1);
                ++to;
            }
        }
    }
};
constexpr Remaining kRemaining;

}  // namespace

std::size_t copyWithout(wchar_t*& out, const wchar_t* outEnd, const wchar_t* text, std::size_t length,
                        wchar_t unit) noexcept {
    const __m128i unwanted = _mm_set1_epi16(static_cast<short>(unit));
    wchar_t* to = out;
    std::size_t i = 0;
    for (; i + 8 <= length && outEnd - to >= 8; i += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const __m128i hits = _mm_cmpeq_epi16(units, unwanted);
        const unsigned without = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(hits, _mm_setzero_si128())));
        const __m128i places = _mm_load_si128(reinterpret_cast<const __m128i*>(kRemaining.places[without]));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(units, places));
        to += 8 - __builtin_popcount(without);
    }
    out = to;
    return i;
}

std::size_t findEach(const wchar_t* text, std::size_t length, std::size_t i, const wchar_t* what,
                     std::size_t whatLength, std::size_t firstAnchor, std::size_t secondAnchor, std::size_t* positions,
                     std::size_t max, std::size_t& stored, bool& tooMuch) noexcept {
    return Loops::findEach(text, length, i, what, whatLength, {firstAnchor, secondAnchor}, positions, max, stored,
                           tooMuch);
}

}  // namespace wide::avx2

#endif
