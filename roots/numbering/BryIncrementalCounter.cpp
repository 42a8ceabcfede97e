#include <roots/numbering/BryIncrementalCounter.h>

#include <roots/numbering/TextRoom.h>
#include <roots/platform/WideText.h>

#include <climits>
#include <utility>

namespace {

// Character 0 makes an empty text, and that is found in every text but the empty one.
bool contains(const BryString& excluded, wchar_t c) {
    const wchar_t* const text = excluded.getStringW();
    return c == 0 ? *text != 0 : wide::find(text, wide::length(text), c) != wide::npos;
}

}  // namespace

BryIncrementalCounter::BryIncrementalCounter() = default;
BryIncrementalCounter::BryIncrementalCounter(const BryIncrementalCounter& other) = default;
BryIncrementalCounter& BryIncrementalCounter::operator=(const BryIncrementalCounter& other) = default;
BryIncrementalCounter::~BryIncrementalCounter() = default;

int BryIncrementalCounter::setDataFrom(const StructIncrementalCounter& data) {
    m_data = data;
    m_isNumeric = m_data.startValue.IsNumeric() && m_data.initString.IsNumeric();
    reset();
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
}

BryIncrementalCounter::eIncrementStatus BryIncrementalCounter::increment() {
    const int count = m_incrementCount < INT_MAX ? m_incrementCount + 1 : INT_MAX;
    const bool isMaxReached = m_data.maxValues != -1 && count >= m_data.maxValues;
    if (!isMaxReached) advance();
    m_incrementCount = count;
    return isMaxReached ? eMaxReached : eIncremented;
}

// The next value is complete before the present one is touched.
void BryIncrementalCounter::advance() {
    const std::size_t length = static_cast<std::size_t>(m_chars.length());
    TextRoom room(length + 1);
    wchar_t* const positions = room.text() + 1;
    if (length != 0) wide::copy(positions, &m_chars[0], length);
    const bool isWidened = step(positions, length);
    hold(positions - isWidened, length + isWidened);
}

bool BryIncrementalCounter::step(wchar_t* positions, std::size_t length) {
    int carry = 1;
    for (std::size_t i = length; carry && i-- > 0;)
        positions[i] = incrementAtPosition(positions[i], m_data.excludedChars, carry);
    if (!carry) return false;
    int wrapped;
    positions[-1] = incrementAtPosition(static_cast<wchar_t>(initChar() - 1),
                                        m_isNumeric ? m_data.excludedChars + L"0" : m_data.excludedChars, wrapped);
    return true;
}

// The text is written over where nobody else has it; it lacks the characters 0.
void BryIncrementalCounter::hold(const wchar_t* positions, std::size_t length) {
    const std::size_t shown = length - wide::count(positions, length, 0);
    const bool isAsLong = shown == length && wide::length(m_counterString.getStringW()) == length;
    if (!isAsLong || !m_counterString.overwrite(positions, length)) {
        BryString value;
        if (shown != 0) {
            BryStringRepr* const rep = BryStringRepr::make(shown);
            wide::copyWithout(rep->m_buffer, shown, positions, length, 0);
            value = BryString(rep);
        }
        m_chars.setLogicalLength(static_cast<long>(length));
        m_counterString = std::move(value);
    }
    wide::copy(&m_chars[0], positions, length);
}

wchar_t BryIncrementalCounter::initChar() {
    const wchar_t* const text = m_data.initString.getStringW();
    const std::size_t length = wide::length(text);
    return length == 0 ? wchar_t(0) : text[length - 1];
}

wchar_t BryIncrementalCounter::incrementAtPosition(wchar_t c, BryString excluded, int& wrapped) {
    const int first = initChar();
    wchar_t next = c;
    do ++next;
    while (contains(excluded, next) && next - first < m_data.charRange && next != c);
    wrapped = next - first == m_data.charRange;
    if (!wrapped) return next;
    return m_isNumeric ? L'0' : static_cast<wchar_t>(first);
}
