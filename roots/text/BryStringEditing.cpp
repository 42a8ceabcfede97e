// Substrings, replacement, trimming, case and order: the operations that make one text from another.

#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/text/BryRuntime.h>
#include <roots/text/BryString.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <new>

namespace {

// The unit that an 8-bit character stands for in the ANSI code page.
wchar_t widened(char c) {
    wchar_t units[5] = {};
    MultiByteToWideChar(CP_ACP, 0, &c, 1, units, 5);
    return units[0];
}

std::size_t asSize(int n) { return static_cast<std::size_t>(n); }

}  // namespace

// ---- substrings ----------------------------------------------------------------------------------

BryString BryString::left(int n) const { return mid(0, std::max(n, 0)); }

BryString BryString::right(int n) const {
    const int units = length();
    if (n >= units) return *this;
    n = std::max(n, 0);
    return BryString(makeRep(getStringW() + (units - n), asSize(n)));
}

BryString BryString::mid(int start, int count) const {
    if (start < 0 || count < 0) return BryString();
    wchar_t const* const text = getStringW();
    const std::size_t from = asSize(start), to = wide::length(text, from + asSize(count));
    if (from == 0 && text[to] == 0) return *this;
    return BryString(makeRep(text + from, to > from ? to - from : 0));
}

BryString BryString::mid(int start) const { return mid(start, INT32_MAX); }

BryString BryString::copy(const BryString& src, int start, int count) {
    return *this = start < src.length() ? src.mid(start, count) : BryString();
}

BryString BryString::copy(const BryString& src, int start) { return copy(src, start, INT32_MAX); }

BryString& BryString::operator>>=(int n) { return n < 1 ? *this : *this = mid(n); }

BryString BryString::operator>>(int n) const { return n < 1 ? *this : mid(n); }

BryString& BryString::empty() { return take(m_repEmpty); }

BryString& BryString::keep(std::size_t from, std::size_t to) { return take(makeRep(getStringW() + from, to - from)); }

// ---- replacement of units ------------------------------------------------------------------------

int BryString::replace(wchar_t from, wchar_t to) {
    wchar_t const* const text = getStringW();
    const std::size_t units = wide::length(text), first = wide::find(text, units, from);
    if (first == wide::npos) return 0;
    const std::size_t replaced = wide::count(text + first, units - first, from);
    if (to == 0) {
        keep(0, first);
    } else {
        BryStringRepr* const rep = BryStringRepr::make(units);
        wide::copy(rep->m_buffer, text, first);
        wide::copyReplaced(rep->m_buffer + first, text + first, units - first, from, to);
        take(rep);
    }
    return static_cast<int>(replaced);
}

int BryString::replace(unsigned short from, unsigned short to) {
    return replace(static_cast<wchar_t>(from), static_cast<wchar_t>(to));
}

int BryString::replace(char from, char to) { return replace(widened(from), widened(to)); }

void BryString::removeAll(wchar_t const& c) {
    wchar_t const* const text = getStringW();
    const wchar_t unwanted = c;  // c may be a unit of this text
    const std::size_t units = wide::length(text), first = wide::find(text, units, unwanted);
    if (first == wide::npos) return;

    constexpr std::size_t kShort = 64;
    if (units <= kShort) {
        wchar_t kept[kShort];
        std::size_t count = 0;
        for (std::size_t i = 0; i < units; ++i) {
            kept[count] = text[i];
            count += text[i] != unwanted;
        }
        take(makeRep(kept, count));
        return;
    }
    const std::size_t kept = units - wide::count(text + first, units - first, unwanted);
    if (kept == 0) {
        empty();
        return;
    }
    BryStringRepr* const rep = BryStringRepr::make(kept);
    wide::copy(rep->m_buffer, text, first);
    wide::copyWithout(rep->m_buffer + first, kept - first, text + first, units - first, unwanted);
    take(rep);
}

void BryString::removeAll(unsigned short const& c) { removeAll(static_cast<wchar_t>(c)); }
void BryString::removeAll(char const& c) { removeAll(widened(c)); }

BryString& BryString::setAt(int i, wchar_t const& c) {
    wchar_t const* const text = getStringW();
    const int units = length();
    if (i < 0 || i >= units) return *this;
    const wchar_t unit = c;  // c may be a unit of this text
    if (unit == 0) return keep(0, asSize(i));
    BryStringRepr* const rep = makeRep(text, asSize(units));
    rep->m_buffer[i] = unit;
    return take(rep);
}

BryString& BryString::setAt(int i, unsigned short const& c) { return setAt(i, static_cast<wchar_t>(c)); }
BryString& BryString::setAt(int i, char const& c) { return setAt(i, widened(c)); }

// ---- replacement of texts ------------------------------------------------------------------------

namespace {

// Where a text occurs in another, found in one pass. The first positions need no memory of their own.
class Occurrences {
public:
    Occurrences(wchar_t const* text, std::size_t length, wchar_t const* what, std::size_t whatLength) {
        m_count = wide::findEach(text, length, 0, what, whatLength, m_first, kFirst);
        std::size_t room = kFirst;
        while (m_count == room) {  // there may be more
            std::unique_ptr<std::size_t[]> more(new std::size_t[room * 4]);
            std::copy(positions(), positions() + m_count, more.get());
            m_more = std::move(more);
            m_count += wide::findEach(text, length, m_more[m_count - 1] + whatLength, what, whatLength,
                                      m_more.get() + m_count, room * 3);
            room *= 4;
        }
    }

    std::size_t count() const { return m_count; }
    const std::size_t* positions() const { return m_more ? m_more.get() : m_first; }

private:
    static constexpr std::size_t kFirst = 256;
    std::size_t m_first[kFirst];
    std::unique_ptr<std::size_t[]> m_more;
    std::size_t m_count;
};

// Writes a text of newLength units to out: text with the units at each occurrence, gone of them, replaced by insert.
void copyReplaced(wchar_t* out, std::size_t newLength, wchar_t const* text, std::size_t units, const Occurrences& found,
                  std::size_t gone, wchar_t const* insert, std::size_t put) {
    wchar_t* to = out;
    std::size_t done = 0;  // units of the old text that are dealt with
    const auto add = [&to](wchar_t const* from, std::size_t n) {
        wide::copy(to, from, n);
        to += n;
    };
    // Short pieces are copied in one step of a fixed size as long as both texts have the room: the next piece
    // overwrites what was too much.
    constexpr std::size_t kStep = 16;
    wchar_t padded[kStep] = {};
    wchar_t const* const end = out + newLength;
    wide::copy(padded, insert, std::min(put, kStep));
    for (std::size_t i = 0; i < found.count(); ++i) {
        const std::size_t at = found.positions()[i], gap = at - done;
        if (gap <= kStep && put <= kStep && end - to >= static_cast<std::ptrdiff_t>(3 * kStep) &&
            units - done >= kStep) {
            wide::copy(to, text + done, kStep);
            wide::copy(to + gap, padded, kStep);
            to += gap + put;
        } else {
            add(text + done, gap);
            add(insert, put);
        }
        done = at + gone;
    }
    add(text + done, units - done);
}

}  // namespace

int BryString::replace(const BryString& what, const BryString& with) {
    if (what.isEmpty() || isEmpty()) return 0;
    wchar_t const* const text = getStringW();
    const std::size_t units = wide::length(text), gone = wide::length(what.getStringW());
    const Occurrences found(text, units, what.getStringW(), gone);
    const std::size_t count = found.count();
    if (count == 0) return 0;

    const std::size_t put = wide::length(with.getStringW());
    const std::uint64_t newLength = units - count * gone + std::uint64_t(count) * put;
    if (newLength > INT_MAX) throw std::bad_alloc();
    if (newLength == 0) {
        empty();
    } else {
        BryStringRepr* const rep = BryStringRepr::make(static_cast<std::size_t>(newLength));
        copyReplaced(rep->m_buffer, static_cast<std::size_t>(newLength), text, units, found, gone, with.getStringW(),
                     put);
        take(rep);
    }
    return static_cast<int>(count);
}

BryString& BryString::replace(int start, int count, const BryString& with) {
    if (count < 1) return *this;
    const std::int64_t units = length(), end = std::int64_t(start) + count;
    const std::size_t before = static_cast<std::size_t>(std::clamp<std::int64_t>(start, 0, units));
    const std::size_t behind = static_cast<std::size_t>(std::clamp<std::int64_t>(units - end, 0, units));
    const std::size_t put = wide::length(with.getStringW());
    if (before + put + behind == 0) return empty();
    BryStringRepr* const rep = BryStringRepr::make(before + put + behind);
    wide::copy(rep->m_buffer, getStringW(), before);
    wide::copy(rep->m_buffer + before, with.getStringW(), put);
    wide::copy(rep->m_buffer + before + put, getStringW() + (static_cast<std::size_t>(units) - behind), behind);
    return take(rep);
}

// ---- trimming ------------------------------------------------------------------------------------

namespace {

// The units of a text as a set. A small one is looked through, a large one has a bit for each of the 65,536 units.
class UnitSet {
public:
    UnitSet(wchar_t const* units, std::size_t count) : m_units(units), m_count(count) {
        if (m_count <= kSmall) return;
        m_bits.reset(new std::uint64_t[0x10000 / 64]());
        for (; *units != 0; ++units) m_bits[*units / 64] |= std::uint64_t(1) << *units % 64;
    }

    bool contains(wchar_t c) const {
        if (m_bits) return m_bits[c / 64] >> c % 64 & 1;
        return std::find(m_units, m_units + m_count, c) != m_units + m_count;
    }

private:
    static constexpr std::size_t kSmall = 16;
    wchar_t const* m_units;
    std::size_t m_count;
    std::unique_ptr<std::uint64_t[]> m_bits;
};

// Where the text begins, and ends, that trimming keeps.
std::size_t keptFrom(wchar_t const* text, std::size_t length, wchar_t const* set) {
    const std::size_t members = wide::length(set);
    if (members == 0) return 0;
    if (members <= wide::kSmallSet) return wide::spanAtStart(text, length, set, members);
    const UnitSet trimmed(set, members);
    std::size_t from = 0;
    while (text[from] != 0 && trimmed.contains(text[from])) ++from;
    return from;
}

std::size_t keptTo(wchar_t const* text, std::size_t length, wchar_t const* set) {
    const std::size_t members = wide::length(set);
    if (members == 0) return length;
    if (members <= wide::kSmallSet) return length - wide::spanAtEnd(text, length, set, members);
    const UnitSet trimmed(set, members);
    while (length > 0 && trimmed.contains(text[length - 1])) --length;
    return length;
}

constexpr wchar_t kBlanks[] = L"\t\n ";

}  // namespace

void BryString::trimLeft(wchar_t const* set) {
    const std::size_t units = wide::length(getStringW());
    if (const std::size_t from = keptFrom(getStringW(), units, set)) keep(from, units);
}

void BryString::trimRight(wchar_t const* set) {
    const std::size_t units = wide::length(getStringW()), to = keptTo(getStringW(), units, set);
    if (to != units) keep(0, to);
}

void BryString::TrimLeft(const BryString& set) { trimLeft(set.getStringW()); }
void BryString::TrimRight(const BryString& set) { trimRight(set.getStringW()); }
void BryString::TrimLeft() { trimLeft(kBlanks); }
void BryString::TrimRight() { trimRight(kBlanks); }

// ---- case, order ---------------------------------------------------------------------------------

BryString& BryString::toUpper() {
    const std::size_t units = wide::length(getStringW());
    if (units == 0) return *this;
    BryStringRepr* const rep = makeRep(getStringW(), units);
    brywcsupr8(rep->m_buffer, units + 1);
    return take(rep);
}

BryString& BryString::toLower() {
    const std::size_t units = wide::length(getStringW());
    if (units == 0) return *this;
    BryStringRepr* const rep = makeRep(getStringW(), units);
    brywcslwr8(rep->m_buffer, units + 1);
    return take(rep);
}

BryString BryString::strRev() const {
    const std::size_t units = wide::length(getStringW());
    if (units < 2) return *this;
    BryStringRepr* const rep = BryStringRepr::make(units);
    wide::copyReversed(rep->m_buffer, getStringW(), units);
    return BryString(rep);
}
