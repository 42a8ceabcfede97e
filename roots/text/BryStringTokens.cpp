#include <roots/platform/WideText.h>
#include <roots/text/BryString.h>

#include <cstdint>

namespace {

// The places of a text where one of some units stands, handed out in order.
class Places {
public:
    Places(const wchar_t* text, std::size_t length, const wide::UnitSet& units)
        : m_text(text), m_length(length), m_units(units) {}

    // The length of the text when there is none left.
    std::size_t next() {
        if (m_handedOut == m_known) lookAhead();
        return m_handedOut < m_known ? m_places[m_handedOut++] : m_length;
    }

private:
    void lookAhead() {
        m_known = m_units.findEach(m_text, m_length, m_from, m_places, kMost);
        m_from = m_known == kMost ? m_places[kMost - 1] + 1 : m_length;
        m_handedOut = 0;
    }

    static constexpr std::size_t kMost = 256;

    const wchar_t* m_text;
    std::size_t m_length;
    const wide::UnitSet& m_units;
    std::uint32_t m_places[kMost];
    std::size_t m_known = 0, m_handedOut = 0;
    std::size_t m_from = 0;
};

class Tokenizer {
public:
    Tokenizer(const BryString& text, const BryString& separators, const BryString& quotes)
        : m_text(text.getStringW()),
          m_length(wide::length(m_text)),
          m_quotes(quotes.getStringW(), wide::length(quotes.getStringW())),
          m_both(separators + quotes),
          m_breaks(m_both.getStringW(), wide::length(m_both.getStringW())) {}

    // Calls found(first unit, length) for each token, in order.
    template <class Found>
    void forEach(Found found) const {
        Places places(m_text, m_length, m_breaks);
        std::size_t begin = 0;
        for (std::size_t at; (at = places.next()) < m_length;) {
            if (m_quotes.contains(m_text[at])) {
                skipQuoted(places, m_text[at]);
                continue;
            }
            if (begin < at) found(m_text + begin, at - begin);
            begin = at + 1;
        }
        if (begin < m_length) found(m_text + begin, m_length - begin);
    }

private:
    // To behind the quote that closes. The terminator stands behind the last unit and is none.
    void skipQuoted(Places& places, wchar_t quote) const {
        for (std::size_t at; (at = places.next()) < m_length;) {
            if (m_text[at] != quote) continue;
            if (m_text[at + 1] != quote) return;
            places.next();
        }
    }

    const wchar_t* m_text;
    std::size_t m_length;
    wide::UnitSet m_quotes;
    BryString m_both;
    wide::UnitSet m_breaks;  // where a token ends, unless it is quoted there
};

}  // namespace

void BryString::getTokens(BryString& text, BryArray<BryString>& tokens, const BryString& separators) {
    getTokens(text, tokens, separators, BryString());
}

// The first pass counts, so that the array grows once. The text and the sets may stand in it.
void BryString::getTokens(BryString& text, BryArray<BryString>& tokens, const BryString& separators, BryString quotes) {
    const BryString kept(text);
    const Tokenizer tokenizer(kept, separators, quotes);
    long count = 0;
    tokenizer.forEach([&count](const wchar_t*, std::size_t) { ++count; });
    tokens.setLogicalLength(0).setLogicalLength(count).setLogicalLength(0);
    tokenizer.forEach([&tokens](const wchar_t* token, std::size_t length) {
        BryString made(makeRep(token, length));
        const long i = tokens.length();
        tokens.setLogicalLength(i + 1)[i] = static_cast<BryString&&>(made);
    });
}
