#include <roots/platform/WideText.h>
#include <roots/text/BryString.h>

#include <cstdint>
#include <cstring>
#include <new>

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

    const wchar_t* end() const { return m_text + m_length; }

    long count() const {
        if (m_quotes.isEmpty()) return static_cast<long>(m_breaks.countBetween(m_text, m_length));
        long counted = 0;
        forEach([&counted](const wchar_t*, std::size_t) { ++counted; });
        return counted;
    }

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

// Appends tokens to an array that has room for them.
//
// To ask for memory is the largest part of what a short token costs, so neighbours share one block: each is a body like
// any other, and the last of them to go releases the block. Long tokens have bodies of their own, so that no token
// keeps more than a little memory for others.
class BryString::TokenWriter {
public:
    // The tokens lie before end.
    TokenWriter(BryArray<BryString>& tokens, const wchar_t* end) : m_tokens(tokens), m_end(end) {}

    void add(const wchar_t* text, std::size_t length) {
        const bool isLong = length > kLongest;
        if (isLong || m_count == kMost) writeNeighbours();
        if (isLong)
            append(BryString::makeRep(text, length));
        else
            m_neighbours[m_count++] = {text, length};
    }

    void writeNeighbours() {
        const std::size_t first = Body::roundedUp(sizeof(Bodies) + sizeof(Place));
        std::size_t size = first + kStep * sizeof(wchar_t);
        for (std::size_t i = 0; i < m_count; ++i) size += Body::sizeFor(m_neighbours[i].length);
        if (m_count == 0) return;
        char* const block = static_cast<char*>(::operator new(size));
        ::new (static_cast<void*>(block)) Bodies(static_cast<Bodies>(m_count));
        std::size_t place = first;
        for (std::size_t i = 0; i < m_count; ++i) {
            const Stretch token = m_neighbours[i];
            copy(Body::bufferAt(block + place), token.text, token.length);
            append(Body::make(block, place, token.length));
            place += Body::sizeFor(token.length);
        }
        m_count = 0;
    }

private:
    static constexpr std::size_t kMost = 16, kLongest = 64, kStep = 8;

    // A block begins with the number of its bodies that are alive. In front of each body stands its place in the block.
    using Bodies = std::uint16_t;
    using Place = std::uint16_t;

    class Body final : public BryStringRepr {
    public:
        static constexpr std::size_t roundedUp(std::size_t size) {
            return (size + alignof(Body) - 1) / alignof(Body) * alignof(Body);
        }
        // From one body to the next.
        static std::size_t sizeFor(std::size_t length) {
            return roundedUp(sizeof(Body) + (length + 1) * sizeof(wchar_t) + sizeof(Place));
        }

        static wchar_t* bufferAt(char* body) { return reinterpret_cast<wchar_t*>(body + sizeof(Body)); }

        static BryStringRepr* make(char* block, std::size_t place, std::size_t length) {
            char* const body = block + place;
            ::new (static_cast<void*>(body - sizeof(Place))) Place(static_cast<Place>(place));
            std::memset(bufferAt(body) + length, 0, kStep * sizeof(wchar_t));  // what was copied beyond the token, too
            return ::new (static_cast<void*>(body)) Body(bufferAt(body));
        }

        static void operator delete(void* body) {
            Place place;
            std::memcpy(&place, static_cast<char*>(body) - sizeof place, sizeof place);
            Bodies* const block = reinterpret_cast<Bodies*>(static_cast<char*>(body) - place);
            if (--*block == 0) ::operator delete(block);
        }

    private:
        using BryStringRepr::BryStringRepr;
    };

    // In steps of a fixed size, which may reach over the end into what the next body overwrites: no processor foresees
    // the lengths of tokens.
    void copy(wchar_t* to, const wchar_t* from, std::size_t length) const {
        if (static_cast<std::size_t>(m_end - from) < (length + kStep - 1) / kStep * kStep) {
            wide::copy(to, from, length);
        } else {
            for (std::size_t i = 0; i < length; i += kStep) wide::copy(to + i, from + i, kStep);
        }
    }

    void append(BryStringRepr* rep) {
        const long i = m_tokens.length();
        m_tokens.setLogicalLength(i + 1)[i].take(rep);
    }

    struct Stretch {
        const wchar_t* text;
        std::size_t length;
    };

    BryArray<BryString>& m_tokens;
    const wchar_t* m_end;
    Stretch m_neighbours[kMost];
    std::size_t m_count = 0;
};

void BryString::getTokens(BryString& text, BryArray<BryString>& tokens, const BryString& separators) {
    getTokens(text, tokens, separators, BryString());
}

// The first pass counts, so that the array grows once. The text and the sets may stand in it: text is kept by a copy,
// separators in the tokenizer.
// NOLINTNEXTLINE(performance-unnecessary-value-param): quotes too
void BryString::getTokens(BryString& text, BryArray<BryString>& tokens, const BryString& separators, BryString quotes) {
    const BryString kept(text);  // NOLINT(performance-unnecessary-copy-initialization)
    const Tokenizer tokenizer(kept, separators, quotes);
    tokens.setLogicalLength(0).setLogicalLength(tokenizer.count()).setLogicalLength(0);
    TokenWriter writer(tokens, tokenizer.end());
    tokenizer.forEach([&writer](const wchar_t* token, std::size_t length) { writer.add(token, length); });
    writer.writeNeighbours();
}
