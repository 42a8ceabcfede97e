#include <roots/numbering/BryNumberCreator.h>
#include <roots/platform/WideText.h>

#include <memory>

namespace {

// Room for a text of `units` units, the terminator included: in place where it is as short as part numbers are.
class TextRoom {
public:
    explicit TextRoom(std::size_t units) {
        if (units > sizeof(m_few) / sizeof(*m_few)) m_many.reset(new wchar_t[units]);
    }
    wchar_t* text() { return m_many ? m_many.get() : m_few; }

private:
    wchar_t m_few[128];
    std::unique_ptr<wchar_t[]> m_many;
};

std::size_t lengthOf(const BryString& text) { return wide::length(text.getStringW()); }

}  // namespace

BryNumberCreator::BryNumberCreator() : m_type(eNumberingType{}) {}

BryNumberCreator::BryNumberCreator(eNumberingType type, const BryString& prefix) : m_type(type), m_prefix(prefix) {}

BryNumberCreator::BryNumberCreator(const BryNumberCreator& other) = default;

BryNumberCreator& BryNumberCreator::operator=(const BryNumberCreator& other) = default;

BryNumberCreator::~BryNumberCreator() = default;

SetCodeTag BryNumberCreator::setNumberingPrefix(const BryString& prefix) {
    if (prefix == m_prefix) return eCodeNotSet;
    m_prefix = prefix;
    return eCodeSet;
}

SetCodeTag BryNumberCreator::setNumberingSufix(const BryString& sufix) {
    if (sufix == m_sufix) return eCodeNotSet;
    m_sufix = sufix;
    return eCodeSet;
}

SetCodeTag BryNumberCreator::setNumberingStart(const BryString& start) {
    if (!checkNumber(start)) return eCodeNotSet;
    m_start = start;
    return eCodeSet;
}

SetCodeTag BryNumberCreator::setNumberingType(eNumberingType type) {
    if (type == m_type) return eCodeNotSet;
    m_type = type;
    startFrom(m_range.firstSymbol);
    return eCodeSet;
}

SetCodeTag BryNumberCreator::overrideDataRange(const StructNumberingDataRange& range, eNumberingType type) {
    m_range = range;
    if (type == m_type) return eCodeNotSet;
    m_type = type;
    startFrom(m_range.defaultStart);
    return eCodeSet;
}

void BryNumberCreator::startFrom(const BryString& start) {
    m_start = start;
    reset();
}

void BryNumberCreator::reset() { m_current = m_start; }

BryString BryNumberCreator::getNextNumber() {
    const std::size_t length = lengthOf(m_current);
    BryString number = composeNumber(length);
    step(length);
    return number;
}

BryString BryNumberCreator::composeNumber(std::size_t current) const {
    const std::size_t prefix = lengthOf(m_prefix), sufix = lengthOf(m_sufix);
    if (prefix + sufix == 0) return m_current;
    BryStringRepr* const rep = BryStringRepr::make(prefix + current + sufix);
    wchar_t* const text = rep->m_buffer;
    wide::copy(text, m_prefix.getStringW(), prefix);
    wide::copy(text + prefix, m_current.getStringW(), current);
    wide::copy(text + prefix + current, m_sufix.getStringW(), sufix);
    return BryString(rep);
}

// The next value is complete before the running one is touched: where memory is out, no number is skipped.
void BryNumberCreator::step(std::size_t length) {
    const int first = m_range.firstSymbol[0];  // 0 where the text is empty
    const int count = m_range.symbolCount;
    TextRoom room(length + 2);
    wchar_t* text = room.text() + 1;  // one unit in front, for the carry out of the leftmost character
    wide::copy(text, m_current.getStringW(), length + 1);

    bool carry = true, cut = false;
    for (std::size_t i = length; carry && i-- > 0;) {
        int symbol = text[i] - first + 1;
        carry = symbol >= count;
        if (count > 0) symbol = symbol == count ? 0 : symbol % count;
        text[i] = static_cast<wchar_t>(first + symbol);
        cut |= text[i] == 0;
    }
    if (carry) *--text = static_cast<wchar_t>(m_type == eNumberingNumeric ? first + 1 : first);
    if (carry || cut || !m_current.overwrite(text, length)) m_current = text;
}

int BryNumberCreator::checkNumber(const BryString& text) const {
    const long long first = m_range.firstSymbol[0];
    const long long end = first + m_range.symbolCount;
    for (const wchar_t* c = text.getStringW(); *c != 0; ++c) {
        if (*c < first || *c >= end) return 0;
    }
    return 1;
}
