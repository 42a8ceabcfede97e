#include <roots/text/BryString.h>

#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <new>

// ---- the body ------------------------------------------------------------------------------------

BryStringRepr* BryStringRepr::make(std::size_t length) {
    constexpr std::size_t kMost = (SIZE_MAX - sizeof(BryStringRepr)) / sizeof(wchar_t) - 1;
    if (length > INT_MAX || length > kMost) throw std::bad_alloc();
    void* const block = ::operator new(sizeof(BryStringRepr) + (length + 1) * sizeof(wchar_t));
    wchar_t* const buffer = reinterpret_cast<wchar_t*>(static_cast<char*>(block) + sizeof(BryStringRepr));
    buffer[length] = 0;
    return ::new (block) BryStringRepr(buffer);
}

BryStringRepr::~BryStringRepr() { wide::wipe(m_buffer); }

BryStringRepr* BryString::makeRep(wchar_t const* text, std::size_t length) {
    if (length == 0) return m_repEmpty;
    BryStringRepr* const rep = BryStringRepr::make(length);
    wide::copy(rep->m_buffer, text, length);
    return rep;
}

// No code page makes more units than there are bytes, and mostly it makes as many: the text is converted into its body
// at once, and copied into a shorter one only where characters took two bytes.
BryStringRepr* BryString::makeRep(char const* text, unsigned codePage) {
    const std::size_t bytes = text ? std::strlen(text) : 0;
    if (bytes == 0) return m_repEmpty;
    BryString converted(BryStringRepr::make(bytes));
    wchar_t* const buffer = converted.m_rep->m_buffer;
    const int capacity = static_cast<int>(bytes);
    const int units = MultiByteToWideChar(codePage, 0, text, capacity, buffer, capacity);
    buffer[units] = 0;
    BryStringRepr* const rep = units == capacity ? converted.m_rep : makeRep(buffer, static_cast<std::size_t>(units));
    if (units == capacity) converted.forget();
    return rep;
}

void BryString::destroyRep() noexcept {
    delete m_rep;
    m_rep = nullptr;
}

void BryString::destroyCharCache() noexcept {
    SecureZeroMemory(m_ansi, std::strlen(m_ansi));
    delete[] m_ansi;
    m_ansi = nullptr;
}

BryString& BryString::take(BryStringRepr* rep) noexcept {
    ReleaseCharCache();
    ReleaseRep();
    m_rep = rep;
    return *this;
}

bool BryString::overwrite(wchar_t const* text, std::size_t length) noexcept {
    if (!isUnshared()) return false;
    ReleaseCharCache();
    wide::copy(m_rep->m_buffer, text, length);
    return true;
}

// ---- construction, assignment --------------------------------------------------------------------

namespace {

wchar_t const* asWide(unsigned short const* text) { return reinterpret_cast<wchar_t const*>(text); }

}  // namespace

BryString::BryString(wchar_t const* text) : BryString(text ? makeRep(text, wide::length(text)) : m_repEmpty) {}
BryString::BryString(unsigned short const* text) : BryString(asWide(text)) {}
BryString::BryString(char const* text) : BryString(makeRep(text, CP_ACP)) {}

BryString& BryString::operator=(BryString&& other) noexcept {
    if (m_rep != other.m_rep) {
        ReleaseCharCache();
        ReleaseRep();
        m_rep = other.m_rep;
        m_ansi = other.m_ansi;
        other.forget();
    }
    return *this;
}

// The new body is made before the old one is released: text may be a part of it.
BryString& BryString::operator=(wchar_t const* text) {
    return take(text ? makeRep(text, wide::length(text)) : m_repEmpty);
}
BryString& BryString::operator=(unsigned short const* text) { return *this = asWide(text); }
BryString& BryString::operator=(char const* text) { return *this = BryString(text); }

BryString::BryString(const Characters& chars, int from, int to) : BryString() {
    if (from >= chars.logicalLength() || to >= chars.logicalLength() || from > to) return;
    BryStringRepr* const rep = BryStringRepr::make(static_cast<std::size_t>(to - from) + 1);
    wchar_t* end = rep->m_buffer;
    for (int i = from; i <= to; ++i)
        if (const wchar_t c = chars.at(i)) *end++ = c;
    *end = 0;
    m_rep = rep;
}

void BryString::StringToArr(const BryString& text, Characters& chars) {
    for (wchar_t const* c = text.getStringW(); *c != 0; ++c) chars.append(*c);
}

// ---- comparison ----------------------------------------------------------------------------------

bool BryString::hasSameText(const BryString& other) const { return wide::equal(getStringW(), other.getStringW()); }

int BryString::compare(const BryString& a, const BryString& b) {
    if (a.m_rep == b.m_rep) return 0;
    const wchar_t first = a[0], other = b[0];
    if (first != other) return first < other ? -1 : 1;  // mostly, where strings are sorted or searched
    return wide::compare(a.getStringW(), b.getStringW());
}

int BryString::compare(const BryString& a, const BryString& b, int n) {
    return wide::compare(a.getStringW(), b.getStringW(), static_cast<std::size_t>(n));
}

int BryString::compareNoCase(const BryString& a, const BryString& b) {
    return _wcsicmp(a.getStringW(), b.getStringW());
}

int BryString::compareNoCase(const BryString& a, const BryString& b, int n) {
    return _wcsnicmp(a.getStringW(), b.getStringW(), static_cast<std::size_t>(n));
}

int BryString::strCompare(void const* a, void const* b) {
    if (!a || !b) return 0;
    return compare(*static_cast<BryString const*>(a), *static_cast<BryString const*>(b));
}

// ---- access --------------------------------------------------------------------------------------

int BryString::length() const { return static_cast<int>(wide::length(getStringW())); }

char const* BryString::makeAnsiForm() const {
    const int units = length();
    // Mostly there are as many bytes as units; where there are more, they are counted first.
    char* ansi = new char[static_cast<std::size_t>(units) + 1];
    int bytes = WideCharToMultiByte(CP_ACP, 0, getStringW(), units, ansi, units, nullptr, nullptr);
    if (bytes == 0 && units != 0) {
        SecureZeroMemory(ansi, static_cast<std::size_t>(units));
        delete[] ansi;
        bytes = WideCharToMultiByte(CP_ACP, 0, getStringW(), units, nullptr, 0, nullptr, nullptr);
        ansi = new char[static_cast<std::size_t>(bytes) + 1];
        WideCharToMultiByte(CP_ACP, 0, getStringW(), units, ansi, bytes, nullptr, nullptr);
    }
    ansi[bytes] = 0;
    return m_ansi = ansi;
}

// ---- search --------------------------------------------------------------------------------------

namespace {

int position(std::size_t found) { return found == wide::npos ? -1 : static_cast<int>(found); }

}  // namespace

int BryString::find(const BryString& sub, int start) const {
    const int units = length();
    if (start < 0 || start >= units) return -1;
    const std::size_t found = wide::find(getStringW() + start, static_cast<std::size_t>(units - start),
                                         sub.getStringW(), wide::length(sub.getStringW()));
    return found == wide::npos ? -1 : start + static_cast<int>(found);
}

int BryString::find_last_of(wchar_t c) const {
    return position(wide::findLast(getStringW(), wide::length(getStringW()), c));
}

int BryString::find_last_of(unsigned short c) const { return find_last_of(static_cast<wchar_t>(c)); }

int BryString::find_last_of(char c) const {
    char const* const ansi = getStringA();
    for (int i = length() - 1; i >= 0; --i)
        if (ansi[i] == c) return i;
    return -1;
}

// ---- classification, numbers ---------------------------------------------------------------------

namespace {

template <class Test>
bool everyUnit(wchar_t const* text, Test passes) {
    while (*text != 0 && passes(static_cast<unsigned short>(*text))) ++text;
    return *text == 0;
}

}  // namespace

bool BryString::IsAlphaNumeric() const {
    return everyUnit(getStringW(), [](unsigned short c) { return crt::iswalnum(c) != 0; });
}

bool BryString::IsAlphabetic() const {
    return everyUnit(getStringW(), [](unsigned short c) { return crt::iswalpha(c) != 0; });
}

bool BryString::IsNumeric() const {
    return everyUnit(getStringW(), [](unsigned short c) { return crt::iswdigit(c) != 0; });
}

int BryString::toInteger() const { return _wtoi(getStringW()); }
int BryString::toIntPtr() const { return toInteger(); }
long BryString::toLong() const { return _wtol(getStringW()); }
double BryString::toDouble() const { return _wtof(getStringW()); }

// ---- concatenation -------------------------------------------------------------------------------

BryString BryString::operator+(const BryString& other) const {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    const std::size_t first = wide::length(getStringW()), second = wide::length(other.getStringW());
    BryStringRepr* const rep = BryStringRepr::make(first + second);
    wide::copy(rep->m_buffer, getStringW(), first);
    wide::copy(rep->m_buffer + first, other.getStringW(), second);
    return BryString(rep);
}

const BryString& BryString::operator+=(const BryString& other) { return *this = *this + other; }
