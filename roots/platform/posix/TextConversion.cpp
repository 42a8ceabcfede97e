// Between 8-bit and wide text. ASCII goes sixteen characters at a step, the rest through the tables of its page; once a
// page's tables are there, nothing here allocates or locks.
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "CodePages.h"

#ifdef __SSE2__
#    include <emmintrin.h>
#endif

namespace {

using Byte = unsigned char;
using Size = std::size_t;

constexpr wchar_t kBadUnit = 0xFFFD;

// How far a conversion came. What fits is written; where taken is less than the text's length, not all did.
struct Progress {
    Size taken;
    Size written;
    bool lost = false;  // whether the page lacked one of the characters taken
};

// ---- characters whose byte and unit are the same number -------------------------------------------------------------

// 00 to 7F in every page; in 1252, which is Latin-1 but for 80 to 9F, the rest from A0 to FF as well.
enum class Same { ascii, latin1 };

constexpr Size kBlock = 16;

#ifdef __SSE2__

__m128i load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }

void store(void* to, __m128i value) { _mm_storeu_si128(static_cast<__m128i*>(to), value); }

bool isZero(__m128i value) { return _mm_movemask_epi8(_mm_cmpeq_epi8(value, _mm_setzero_si128())) == 0xFFFF; }

// As signed numbers, 80 to 9F are the bytes below A0.
__m128i from80To9F(__m128i bytes) { return _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(0xA0))); }

// Copies a block if all of it is the same on both sides; else answers false and writes nothing.
template <Same same>
bool copyBlock(const Byte* from, wchar_t* to) {
    const __m128i bytes = load(from);
    if (_mm_movemask_epi8(same == Same::ascii ? bytes : from80To9F(bytes)) != 0) return false;
    store(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    store(to + 8, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
    return true;
}

template <Same same>
bool copyBlock(const wchar_t* from, Byte* to) {
    const __m128i low = load(from), high = load(from + 8);
    const __m128i bytes = _mm_packus_epi16(low, high);
    const short tooHigh = static_cast<short>(same == Same::ascii ? 0xFF80 : 0xFF00);
    __m128i others = _mm_and_si128(_mm_or_si128(low, high), _mm_set1_epi16(tooHigh));
    if (same == Same::latin1) others = _mm_or_si128(others, from80To9F(bytes));
    if (!isZero(others)) return false;
    store(to, bytes);
    return true;
}

// The same with half a block, which most short texts end with.
template <Same same>
bool copyHalfBlock(const Byte* from, wchar_t* to) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    if ((_mm_movemask_epi8(same == Same::ascii ? bytes : from80To9F(bytes)) & 0xFF) != 0) return false;
    store(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    return true;
}

template <Same same>
bool copyHalfBlock(const wchar_t* from, Byte* to) {
    const __m128i units = load(from), bytes = _mm_packus_epi16(units, units);
    const short tooHigh = static_cast<short>(same == Same::ascii ? 0xFF80 : 0xFF00);
    __m128i others = _mm_and_si128(units, _mm_set1_epi16(tooHigh));
    if (same == Same::latin1) others = _mm_or_si128(others, from80To9F(bytes));
    if (!isZero(others)) return false;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), bytes);
    return true;
}

#else

template <Same same, class From, class To>
bool copyHalfBlock(const From*, To*) {
    return false;
}

template <Same same, class From, class To>
bool copyBlock(const From* from, To* to) {
    for (Size i = 0; i < kBlock; ++i)
        if (from[i] >= 0x80 && (same == Same::ascii || from[i] < 0xA0 || from[i] > 0xFF)) return false;
    for (Size i = 0; i < kBlock; ++i) to[i] = static_cast<To>(from[i]);
    return true;
}

#endif

// Copies blocks until one is not wholly the same or less than a block is left, and answers how much that is.
// Never inlined: in a function of its own this loop runs from registers.
template <Same same, class From, class To>
__attribute__((noinline)) Size copyBlocks(const From* from, Size count, To* to) {
    Size i = 0;
    if (count >= 4 * kBlock) i = wide::copySame(from, count, to, same == Same::latin1);
    while (count - i >= kBlock && copyBlock<same>(from + i, to + i)) i += kBlock;
    return i;
}

// Copies the ASCII that a text begins with and answers how much that is.
template <class From, class To>
Size copyAscii(const From* from, Size count, To* to) {
    Size i = copyBlocks<Same::ascii>(from, count, to);
    for (; i < count && from[i] < 0x80; ++i) to[i] = static_cast<To>(from[i]);
    return i;
}

// How much ASCII a text begins with.
template <class To, class From>
Size asciiLength(const From* from, Size count) {
    To scrap[kBlock];
    Size i = 0;
    while (count - i >= kBlock && copyBlock<Same::ascii>(from + i, scrap)) i += kBlock;
    while (i < count && from[i] < 0x80) ++i;
    return i;
}

// Converts a text whose characters have one byte and one unit each.
template <Same same, class From, class To, class Table>
void convertSingles(const From* from, Size count, To* to, Table table) {
    Size i = 0;
    while (count - i >= kBlock) {
        i += copyBlocks<same>(from + i, count - i, to + i);
        for (const Size end = std::min(count, i + kBlock); i < end; ++i) to[i] = table(from[i]);
    }
    if (count - i >= kBlock / 2 && copyHalfBlock<same>(from + i, to + i)) i += kBlock / 2;
    for (; i < count; ++i) to[i] = table(from[i]);
}

// Converts any text: ASCII in runs, a character between them by convertOne(i, out), which moves both positions behind
// it, or answers false where it does not fit.
template <class From, class To, class ConvertOne>
Progress convertRuns(const From* text, Size length, To* to, Size capacity, ConvertOne convertOne) {
    Size i = 0, out = 0;
    while (i < length && out < capacity) {
        const Size run = copyAscii(text + i, std::min(length - i, capacity - out), to + out);
        i += run;
        out += run;
        while (i < length && out < capacity && text[i] >= 0x80)
            if (!convertOne(i, out)) return {i, out};
    }
    return {i, out};
}

// The size of what a text becomes; measureOne(i) moves the position behind a character and answers its size.
template <class To, class From, class MeasureOne>
Progress measureRuns(const From* text, Size length, MeasureOne measureOne) {
    Size i = 0, size = 0;
    while (i < length) {
        const Size run = asciiLength<To>(text + i, length - i);
        i += run;
        size += run;
        while (i < length && text[i] >= 0x80) size += measureOne(i);
    }
    return {length, size};
}

// ---- bytes to units, by code page -----------------------------------------------------------------------------------

// A lead byte takes any byte behind it along, even if they stand for nothing together, but never a zero or the end.
bool beginsPair(const CodePage& page, const Byte* text, Size count) {
    return page.lead[text[0]] && count > 1 && text[1] != 0;
}

Progress countUnits(const CodePage& page, const Byte* text, Size length) {
    if (!page.pairs) return {length, length};
    return measureRuns<wchar_t>(text, length, [&](Size& i) -> Size {
        i += beginsPair(page, text + i, length - i) ? 2 : 1;
        return 1;
    });
}

Progress widenSingles(const CodePage& page, const Byte* text, Size count, wchar_t* to) {
    const auto table = [&page](Byte byte) { return page.single[byte]; };
    if (page.latin1)
        convertSingles<Same::latin1>(text, count, to, table);
    else
        convertSingles<Same::ascii>(text, count, to, table);
    return {count, count};
}

Progress widenPairs(const CodePage& page, const Byte* text, Size length, wchar_t* to, Size capacity) {
    return convertRuns(text, length, to, capacity, [&](Size& i, Size& out) {
        const bool pair = beginsPair(page, text + i, length - i);
        to[out++] = pair ? page.pairs[text[i]][text[i + 1]] : page.single[text[i]];
        i += pair ? 2 : 1;
        return true;
    });
}

// ---- units to bytes, by code page -----------------------------------------------------------------------------------

// Looks up the bytes of units: one byte, or lead byte * 256 + trail byte.
class Narrower {
public:
    Narrower(const CodePage& page, const char* defaultChar) : m_page(page), m_replacement('?') {
        if (!defaultChar) return;
        const Byte first = static_cast<Byte>(defaultChar[0]);
        const Byte second = page.pairs && first ? static_cast<Byte>(defaultChar[1]) : Byte{0};
        m_replacement = static_cast<unsigned>(second ? first << 8 | second : first);
    }

    unsigned operator()(wchar_t unit) {
        const unsigned bytes = m_page.bytes[unit];
        if (bytes != 0 || unit == 0) return bytes;
        m_lost = true;
        return m_replacement;
    }

    // Whether the page lacked one of the units so far.
    bool lost() const { return m_lost; }

private:
    const CodePage& m_page;
    unsigned m_replacement;
    bool m_lost = false;
};

// The functions have a Narrower of their own each, which the compiler sees nobody else change.
Progress countBytes(Narrower narrow, const wchar_t* text, Size length) {
    Progress progress =
        measureRuns<Byte>(text, length, [&](Size& i) -> Size { return narrow(text[i++]) > 0xFF ? 2 : 1; });
    progress.lost = narrow.lost();
    return progress;
}

Progress narrowSingles(const CodePage& page, Narrower narrow, const wchar_t* text, Size count, Byte* to) {
    const auto table = [&narrow](wchar_t unit) { return static_cast<Byte>(narrow(unit)); };
    if (page.latin1)
        convertSingles<Same::latin1>(text, count, to, table);
    else
        convertSingles<Same::ascii>(text, count, to, table);
    return {count, count, narrow.lost()};
}

Progress narrowPairs(Narrower narrow, const wchar_t* text, Size length, Byte* to, Size capacity) {
    Progress progress = convertRuns(text, length, to, capacity, [&](Size& i, Size& out) {
        const unsigned bytes = narrow(text[i]);
        if (bytes > 0xFF && capacity - out < 2) return false;
        if (bytes > 0xFF) to[out++] = static_cast<Byte>(bytes >> 8);
        to[out++] = static_cast<Byte>(bytes);
        ++i;
        return true;
    });
    progress.lost = narrow.lost();
    return progress;
}

// ---- UTF-8 ----------------------------------------------------------------------------------------------------------

struct Character {
    char32_t value;
    Size size;  // its bytes, or its units
};

// The character that a text of at least one byte begins with; bytes that are none make one U+FFFD up to the byte that
// shows it: one that cannot follow, or the second one of a surrogate, of a number above 10FFFF or of a needless length.
Character decodeUtf8(const Byte* text, Size count) {
    const Byte lead = text[0];
    if (lead < 0x80) return {lead, 1};
    if (lead < 0xC2 || lead > 0xF4) return {kBadUnit, 1};
    const Size size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t value = lead & (0x7Fu >> size);
    for (Size i = 1; i < size; ++i) {
        if (i == count || (text[i] & 0xC0) != 0x80) return {kBadUnit, i};
        value = value << 6 | (text[i] & 0x3Fu);
        if (i > 1) continue;
        if (size == 3 && (value < 0x20 || (value >= 0x360 && value < 0x380))) return {kBadUnit, 2};
        if (size == 4 && (value < 0x10 || value >= 0x110)) return {kBadUnit, 2};
    }
    return {value, size};
}

// The character that a text of at least one unit begins with; U+FFFD for half a surrogate pair.
Character decodeUtf16(const wchar_t* text, Size count) {
    const char32_t unit = text[0];
    if ((unit & 0xF800) != 0xD800) return {unit, 1};
    if (unit >= 0xDC00 || count == 1 || (text[1] & 0xFC00) != 0xDC00) return {kBadUnit, 1};
    return {0x10000 + ((unit & 0x3FF) << 10 | (text[1] & 0x3FFu)), 2};
}

Size utf16SizeOf(char32_t value) { return value < 0x10000 ? 1 : 2; }

Size utf8SizeOf(char32_t value) { return value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4; }

Progress countUnitsOfUtf8(const Byte* text, Size length) {
    return measureRuns<wchar_t>(text, length, [&](Size& i) {
        const Character character = decodeUtf8(text + i, length - i);
        i += character.size;
        return utf16SizeOf(character.value);
    });
}

Progress countBytesOfUtf8(const wchar_t* text, Size length) {
    return measureRuns<Byte>(text, length, [&](Size& i) {
        const Character character = decodeUtf16(text + i, length - i);
        i += character.size;
        return utf8SizeOf(character.value);
    });
}

// Of a surrogate pair that does not fit, the first half is written if that does.
Progress widenUtf8(const Byte* text, Size length, wchar_t* to, Size capacity) {
    return convertRuns(text, length, to, capacity, [&](Size& i, Size& out) {
        const Character character = decodeUtf8(text + i, length - i);
        if (utf16SizeOf(character.value) == 1) {
            to[out++] = static_cast<wchar_t>(character.value);
        } else {
            to[out++] = static_cast<wchar_t>(0xD7C0 + (character.value >> 10));
            if (out == capacity) return false;
            to[out++] = static_cast<wchar_t>(0xDC00 | (character.value & 0x3FF));
        }
        i += character.size;
        return true;
    });
}

// Only whole characters are written.
Progress narrowToUtf8(const wchar_t* text, Size length, Byte* to, Size capacity) {
    return convertRuns(text, length, to, capacity, [&](Size& i, Size& out) {
        const Character character = decodeUtf16(text + i, length - i);
        const Size size = utf8SizeOf(character.value);
        if (size > capacity - out) return false;
        char32_t rest = character.value;
        for (Size trail = size - 1; trail > 0; --trail, rest >>= 6)
            to[out + trail] = static_cast<Byte>(0x80 | (rest & 0x3F));
        to[out] = static_cast<Byte>((0xF00u >> size & 0xF0) | rest);
        out += size;
        i += character.size;
        return true;
    });
}

// ---- what both directions ask first and answer last -----------------------------------------------------------------

int fail(DWORD error) {
    SetLastError(error);
    return 0;
}

bool hasBadArguments(const void* text, int length, const void* buffer, int capacity) {
    return !text || length == 0 || capacity < 0 || (!buffer && capacity > 0);
}

int answer(const Progress& progress, Size length) {
    if (progress.taken != length) return fail(ERROR_INSUFFICIENT_BUFFER);
    return progress.written <= INT_MAX ? static_cast<int>(progress.written) : fail(ERROR_INVALID_PARAMETER);
}

UINT readAnsiCodePage() {
    const char* variable = std::getenv("KELROOTS_ANSI_CODE_PAGE");
    if (!variable || variable[0] < '1' || variable[0] > '9') return 1252;
    char* end;
    const unsigned long number = std::strtoul(variable, &end, 10);
    const bool known = *end == 0 && number <= CP_UTF8 && (number == CP_UTF8 || isCodePage(static_cast<UINT>(number)));
    return known ? static_cast<UINT>(number) : 1252;
}

}  // namespace

UINT GetACP() {
    static const UINT codePage = readAnsiCodePage();
    return codePage;
}

namespace {

// The tables of a page, those of the ANSI code page at hand.
const CodePage* pageOf(UINT codePage) {
    static const CodePage* const ansi = GetACP() == CP_UTF8 ? nullptr : findCodePage(GetACP());
    if (codePage == GetACP()) return ansi;
    return codePage == CP_UTF8 ? nullptr : findCodePage(codePage);
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* text, int length, wchar_t* buffer, int capacity) {
    if (hasBadArguments(text, length, buffer, capacity)) return fail(ERROR_INVALID_PARAMETER);
    if (codePage == CP_ACP) codePage = GetACP();
    const CodePage* const page = pageOf(codePage);
    if (!page && codePage != CP_UTF8) return fail(ERROR_INVALID_PARAMETER);
    if (flags != 0) return fail(ERROR_INVALID_FLAGS);

    const Byte* const bytes = reinterpret_cast<const Byte*>(text);
    const Size count = length < 0 ? std::strlen(text) + 1 : static_cast<Size>(length);
    const Size room = static_cast<Size>(capacity);
    if (room == 0) return answer(page ? countUnits(*page, bytes, count) : countUnitsOfUtf8(bytes, count), count);
    if (!page) return answer(widenUtf8(bytes, count, buffer, room), count);
    if (page->pairs) return answer(widenPairs(*page, bytes, count, buffer, room), count);
    return answer(widenSingles(*page, bytes, std::min(count, room), buffer), count);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* text, int length, char* buffer, int capacity,
                        const char* defaultChar, BOOL* usedDefault) {
    if (hasBadArguments(text, length, buffer, capacity)) return fail(ERROR_INVALID_PARAMETER);
    if (codePage == CP_ACP) codePage = GetACP();
    const CodePage* const page = pageOf(codePage);
    if (!page && codePage != CP_UTF8) return fail(ERROR_INVALID_PARAMETER);
    if (flags != 0) return fail(ERROR_INVALID_FLAGS);

    Byte* const bytes = reinterpret_cast<Byte*>(buffer);
    const Size count = length < 0 ? wide::length(text) + 1 : static_cast<Size>(length);
    const Size room = static_cast<Size>(capacity);
    if (!page) {
        // UTF-8 lacks nothing, and Windows refuses to be told what to do if it did.
        if (defaultChar || usedDefault) return fail(ERROR_INVALID_PARAMETER);
        if (room == 0) return answer(countBytesOfUtf8(text, count), count);
        return answer(narrowToUtf8(text, count, bytes, room), count);
    }
    if (room == 0 && !page->pairs && !usedDefault) return answer({count, count}, count);

    const Narrower narrow(*page, defaultChar);
    const Progress progress = room == 0     ? countBytes(narrow, text, count)
                              : page->pairs ? narrowPairs(narrow, text, count, bytes, room)
                                            : narrowSingles(*page, narrow, text, std::min(count, room), bytes);
    if (usedDefault) *usedDefault = progress.lost;
    return answer(progress, count);
}
