#include <roots/numbering/BryIncrementalCounter.h>

#include <roots/platform/WideText.h>

#include <climits>

namespace {

// Character 0 makes an empty text, and that is found in every text but the empty one.
bool contains(const wchar_t* excluded, wchar_t c) {
    if (*excluded == 0) return false;
    while (*excluded != 0 && *excluded != c) ++excluded;
    return *excluded == c;
}

}  // namespace

BryIncrementalCounter::BryIncrementalCounter() = default;
BryIncrementalCounter::BryIncrementalCounter(const BryIncrementalCounter& other) = default;
// The positions come first: they alone may fail.
BryIncrementalCounter& BryIncrementalCounter::operator=(const BryIncrementalCounter& other) {
    m_chars = other.m_chars;
    m_data = other.m_data;
    m_isNumeric = other.m_isNumeric;
    m_counterString = other.m_counterString;
    m_incrementCount = other.m_incrementCount;
    m_isShownWhole = other.m_isShownWhole;
    return *this;
}
BryIncrementalCounter::~BryIncrementalCounter() = default;

int BryIncrementalCounter::setDataFrom(const StructIncrementalCounter& data) {
    setCounterString(data.startValue);  // nothing fails behind it
    m_data = data;
    m_isNumeric = m_data.startValue.IsNumeric() && m_data.initString.IsNumeric();
    m_incrementCount = 0;
    return 1;
}

void BryIncrementalCounter::reset() {
    setCounterString(m_data.startValue);
    m_incrementCount = 0;
}

void BryIncrementalCounter::setCounterString(const BryString& value) {
    const std::size_t length = wide::length(value.getStringW());
    m_chars.setLogicalLength(static_cast<long>(length));
    if (length != 0) wide::copy(&m_chars[0], value.getStringW(), length);
    m_counterString = value;
    m_isShownWhole = true;
}

BryIncrementalCounter::eIncrementStatus BryIncrementalCounter::increment() {
    const int count = m_incrementCount < INT_MAX ? m_incrementCount + 1 : INT_MAX;
    const bool isMaxReached = m_data.maxValues != -1 && count >= m_data.maxValues;
    if (!isMaxReached) advance();
    m_incrementCount = count;
    return isMaxReached ? eMaxReached : eIncremented;
}

void BryIncrementalCounter::advance() {
    const wchar_t* const excluded = m_data.excludedChars.getStringW();
    const long length = m_chars.length();
    long wrapping = 0;  // positions, from the last one on
    int carry = 1;
    wchar_t next = 0;
    while (carry && wrapping < length) {
        next = following(m_chars[length - 1 - wrapping], excluded, carry);
        wrapping += carry;
    }
    if (carry) {
        widen();
        return;
    }
    const wchar_t wrapped = wrapping > 0 ? wrappedChar() : next;
    const bool isInPlace = m_isShownWhole && next != 0 && wrapped != 0 && m_counterString.isUnshared();
    BryString room;
    if (!isInPlace) room = BryString(BryStringRepr::make(static_cast<std::size_t>(length)));
    const auto change = [=](wchar_t* positions) {
        positions[length - 1 - wrapping] = next;
        for (long i = length - wrapping; i < length; ++i) positions[i] = wrapped;
    };
    change(&m_chars[0]);
    if (isInPlace)
        change(m_counterString.m_rep->m_buffer);  // which nobody has asked for an 8-bit form
    else
        showIn(room);
}

// All positions have wrapped, or there is none.
void BryIncrementalCounter::widen() {
    const BryString excluded = m_isNumeric ? m_data.excludedChars + L"0" : m_data.excludedChars;
    const long length = m_chars.length();
    int ignored;
    const wchar_t front = following(static_cast<wchar_t>(initChar() - 1), excluded.getStringW(), ignored);
    BryString room(BryStringRepr::make(static_cast<std::size_t>(length) + 1));
    m_chars.setLogicalLength(length + 1);
    m_chars[0] = front;
    for (long i = 1; i <= length; ++i) m_chars[i] = wrappedChar();
    showIn(room);
}

// The characters 0 do not show.
void BryIncrementalCounter::showIn(BryString& room) {
    const std::size_t length = static_cast<std::size_t>(m_chars.length());
    const std::size_t shown = length - wide::count(&m_chars[0], length, 0);
    wchar_t* const text = room.m_rep->m_buffer;
    wide::copyWithout(text, shown, &m_chars[0], length, 0);
    text[shown] = 0;
    m_isShownWhole = shown == length;
    if (shown != 0)
        m_counterString = static_cast<BryString&&>(room);
    else
        m_counterString.empty();
}

wchar_t BryIncrementalCounter::initChar() {
    const wchar_t* const text = m_data.initString.getStringW();
    if (text[0] == 0) return 0;
    return text[1] == 0 ? text[0] : text[wide::length(text) - 1];  // mostly there is one
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): derived classes call it with a value of their own
wchar_t BryIncrementalCounter::incrementAtPosition(wchar_t c, BryString excluded, int& wrapped) {
    return following(c, excluded.getStringW(), wrapped);
}

wchar_t BryIncrementalCounter::following(wchar_t c, const wchar_t* excluded, int& wrapped) {
    const int first = initChar();
    wchar_t next = c;
    do ++next;
    while (contains(excluded, next) && next - first < m_data.charRange && next != c);
    wrapped = next - first == m_data.charRange;
    return wrapped ? wrappedChar() : next;
}

wchar_t BryIncrementalCounter::wrappedChar() { return m_isNumeric ? L'0' : initChar(); }
