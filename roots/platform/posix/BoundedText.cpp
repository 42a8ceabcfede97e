#include <roots/platform/Win32.h>

#include "BoundedUnits.h"
#include "CharacterTypes.h"

#include <algorithm>
#include <climits>

using namespace platform;

namespace {

// A count for "the whole text"; _TRUNCATE, the one above it, means "as much as fits".
constexpr std::size_t kWhole = _TRUNCATE - 1;

// Puts at most count units of from behind the first used units of the destination, which has room for one unit more.
template <class Unit>
errno_t put(Unit* to, std::size_t size, std::size_t used, const Unit* from, std::size_t count) {
    const std::size_t room = size - used;
    std::size_t length = lengthWithin(from, std::min(count, room));
    const bool cut = length == room;
    if (cut && count != _TRUNCATE) return fail(to, kTooSmall);
    if (cut) --length;
    write(to + used, from, length);
    return cut ? STRUNCATE : 0;
}

template <class Unit>
errno_t copy(Unit* to, std::size_t size, const Unit* from, std::size_t count) {
    if (count == 0 && to == nullptr && size == 0) return 0;
    if (to == nullptr || size == 0) return fail(kBadArgument);
    if (count == 0) {
        *to = Unit{};
        return 0;
    }
    if (from == nullptr) return fail(to, kBadArgument);
    return put(to, size, 0, from, count);
}

template <class Unit>
errno_t append(Unit* to, std::size_t size, const Unit* from, std::size_t count) {
    if (count == 0 && to == nullptr && size == 0) return 0;
    if (to == nullptr || size == 0) return fail(kBadArgument);
    const std::size_t used = lengthInside(to, size);
    if (used == size || (from == nullptr && count != 0)) return fail(to, kBadArgument);
    return count == 0 ? 0 : put(to, size, used, from, count);
}

// Ends what happens to a text in place before it begins where there is no terminator within the size.
template <class Unit, class Change>
errno_t change(Unit* text, std::size_t size, Change changeUnits) {
    if (text == nullptr || size == 0) return fail(kBadArgument);
    const std::size_t length = lengthInside(text, size);
    if (length == size) return fail(text, kBadArgument);
    changeUnits(text, length);
    return 0;
}

// Flips the case of the 26 letters from first on.
template <class Unit>
void flipLetters(Unit* text, std::size_t length, Unit first) {
    const auto flip = [first](Unit& unit) {
        const bool letter = static_cast<std::make_unsigned_t<Unit>>(unit - first) < 26;
        unit = static_cast<Unit>(unit ^ (letter ? 0x20 : 0));
    };
    constexpr std::size_t kBlock = 32;  // a loop whose count the compiler knows becomes vector code
    for (; length >= kBlock; length -= kBlock, text += kBlock) {
        for (std::size_t i = 0; i < kBlock; ++i) flip(text[i]);
    }
    for (std::size_t i = 0; i < length; ++i) flip(text[i]);
}

template <class Unit>
errno_t toCase(Case to, Unit* text, std::size_t size) {
    return change(text, size, [to](Unit* units, std::size_t length) {
        if (localeChosen())
            changeCase(to, units, length);
        else
            flipLetters(units, length, to == Case::eUpper ? Unit('a') : Unit('A'));
    });
}

template <class Unit>
errno_t fillAll(Unit* text, std::size_t size, Unit fill) {
    const auto fillUnits = [fill](Unit* units, std::size_t length) { std::fill_n(units, length, fill); };
    return change(text, size, fillUnits);
}

// Behind the leading units that are delimiters (or that are none) of the set.
template <class Unit>
Unit* skip(Unit* text, const Unit* set, bool delimiters) {
    const Unit* setEnd = set + lengthOf(set);
    while (*text != Unit{} && (std::find(set, setEnd, *text) != setEnd) == delimiters) ++text;
    return text;
}

template <class Unit>
Unit* nextToken(Unit* text, const Unit* delimiters, Unit** context) {
    if (context == nullptr || delimiters == nullptr || (text == nullptr && *context == nullptr)) {
        errno = kBadArgument;
        return nullptr;
    }
    Unit* token = skip(text != nullptr ? text : *context, delimiters, true);
    Unit* end = skip(token, delimiters, false);
    const bool found = end != token;
    if (*end != Unit{}) *end++ = Unit{};
    *context = end;
    return found ? token : nullptr;
}

wchar_t folded(wchar_t unit, bool allLetters) {
    if (allLetters) return inCase(Case::eLower, unit);
    return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 0x20) : unit;
}

}  // namespace

errno_t strcpy_s(char* to, std::size_t size, const char* from) { return copy(to, size, from, kWhole); }

errno_t wcscpy_s(wchar_t* to, std::size_t size, const wchar_t* from) { return copy(to, size, from, kWhole); }

errno_t strncpy_s(char* to, std::size_t size, const char* from, std::size_t count) {
    return copy(to, size, from, count);
}

errno_t wcsncpy_s(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) {
    return copy(to, size, from, count);
}

errno_t strcat_s(char* to, std::size_t size, const char* from) { return append(to, size, from, kWhole); }

errno_t wcscat_s(wchar_t* to, std::size_t size, const wchar_t* from) { return append(to, size, from, kWhole); }

errno_t strncat_s(char* to, std::size_t size, const char* from, std::size_t count) {
    return append(to, size, from, count);
}

errno_t wcsncat_s(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) {
    return append(to, size, from, count);
}

errno_t _strupr_s(char* text, std::size_t size) { return toCase(Case::eUpper, text, size); }

errno_t _wcsupr_s(wchar_t* text, std::size_t size) { return toCase(Case::eUpper, text, size); }

errno_t _strlwr_s(char* text, std::size_t size) { return toCase(Case::eLower, text, size); }

errno_t _wcslwr_s(wchar_t* text, std::size_t size) { return toCase(Case::eLower, text, size); }

errno_t _strset_s(char* text, std::size_t size, int fill) { return fillAll(text, size, static_cast<char>(fill)); }

errno_t _wcsset_s(wchar_t* text, std::size_t size, wchar_t fill) { return fillAll(text, size, fill); }

char* strtok_s(char* text, const char* delimiters, char** context) { return nextToken(text, delimiters, context); }

wchar_t* wcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context) {
    return nextToken(text, delimiters, context);
}

int _wcsicmp(const wchar_t* a, const wchar_t* b) { return _wcsnicmp(a, b, SIZE_MAX); }

// The difference of the first two units that differ in lower case; INT_MAX for a null text.
int _wcsnicmp(const wchar_t* a, const wchar_t* b, std::size_t count) {
    if (count == 0) return 0;
    if (a == nullptr || b == nullptr) {
        errno = kBadArgument;
        return INT_MAX;
    }
    const bool allLetters = localeChosen();
    for (std::size_t i = wide::mismatch(a, b, count); i < count; ++i) {
        const int difference = folded(a[i], allLetters) - folded(b[i], allLetters);
        if (difference != 0 || a[i] == 0) return difference;
    }
    return 0;
}

errno_t wctomb_s(int* count, char* to, std::size_t size, wchar_t unit) {
    int ignored;
    int& result = count != nullptr ? *count : ignored;
    result = -1;
    if (size > INT_MAX) return fail(kBadArgument);
    if (to == nullptr && size > 0) return result = 0;
    if (unit > 0xFF) {
        if (to != nullptr) std::memset(to, 0, size);
        return fail(42);  // the Windows number for an illegal sequence
    }
    if (size == 0) return fail(kTooSmall);
    *to = static_cast<char>(unit);
    result = 1;
    return 0;
}
