// The inputs, the same for every library, as 16-bit and 8-bit text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// A row of numbers that looks random and is the same in every run.
class Numbers {
public:
    std::uint32_t next() {
        return static_cast<std::uint32_t>((m_state = m_state * 6364136223846793005u + 1442695u) >> 32);
    }

private:
    std::uint64_t m_state = 20240607;
};

// Letters of both cases with blanks now and then; 'm' and the digits do not occur.
inline std::u16string letters(std::size_t size) {
    static constexpr char16_t kSymbols[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijkl nopqrstuvwxyz  eea";
    Numbers numbers;
    std::u16string text(size, u'a');
    for (char16_t& c : text) c = kSymbols[numbers.next() % (sizeof kSymbols / sizeof *kSymbols - 1)];
    return text;
}

inline std::string narrow(const std::u16string& text) {
    std::string narrowed;
    for (const char16_t c : text) narrowed.push_back(static_cast<char>(c));
    return narrowed;
}

// The text wanted stands at the end only; its first unit and the one that is most common occur everywhere.
inline const std::u16string kWanted = u"Frame 17";
inline std::u16string endingInWanted(std::size_t size) { return letters(size - kWanted.size()) + kWanted; }

// A text of one unit, and a needle that misses it by one odd unit at the given position.
constexpr std::size_t kOddHaystack = 16384;
enum class Odd { kFirst, kMiddle, kLast };
inline std::u16string oddHaystack() { return std::u16string(kOddHaystack, u'a'); }
inline std::u16string oddNeedle(std::size_t size, Odd odd) {
    std::u16string needle(size, u'a');
    needle[odd == Odd::kFirst ? 0 : odd == Odd::kMiddle ? size / 2 : size - 1] = u'b';
    return needle;
}

// `size` units with kReplaced at `count` places, evenly spread.
inline const std::u16string kReplaced = u"beam", kReplacement = u"girder";
inline std::u16string withOccurrences(std::size_t count, std::size_t size) {
    std::u16string text = letters(size);
    for (std::size_t i = 0; i < count; ++i) text.replace(size / count * i + size / count / 2, 4, kReplaced);
    return text;
}

// Blanks at both ends: a few, or a quarter of the text each.
inline std::u16string paddedBy(std::size_t blanks, std::size_t size) {
    return std::u16string(blanks, u' ') + u'x' + letters(size - 2 * blanks - 2) + u'x' + std::u16string(blanks, u' ');
}
inline std::u16string paddedALittle(std::size_t size) { return paddedBy(3, size); }
inline std::u16string paddedByHalf(std::size_t size) { return paddedBy(size / 4, size); }

// ASCII with an accented letter of the Western code pages at every 50th place.
inline std::u16string accented(std::size_t size) {
    std::u16string text = letters(size);
    for (std::size_t i = 25; i < size; i += 50) text[i] = u'\u00e4';
    return text;
}

// `count` texts of 3 to 9 capital letters and digits, such as part numbers have.
inline std::vector<std::u16string> words(std::size_t count) {
    Numbers numbers;
    std::vector<std::u16string> words;
    while (words.size() < count) {
        std::u16string& word = words.emplace_back(3 + numbers.next() % 7, u'A');
        for (char16_t& c : word) c = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"[numbers.next() % 36];
    }
    return words;
}

// `count` words with a blank behind each; every third may be quoted and have a blank inside.
enum class Quotes { kNone, kSome };
inline std::u16string sentence(std::size_t count, Quotes quotes = Quotes::kNone) {
    std::u16string text;
    std::size_t i = 0;
    for (std::u16string& word : words(count)) {
        if (quotes == Quotes::kSome && i++ % 3 == 2) word = u"'" + word.insert(2, 1, u' ') + u"'";
        text += word + u' ';
    }
    return text;
}

// The numbers below `count`, in random order.
inline std::vector<int> keys(std::size_t count) {
    Numbers numbers;
    std::vector<int> keys;
    for (std::size_t i = 0; i < count; ++i) {
        keys.push_back(static_cast<int>(i));
        std::swap(keys[i], keys[numbers.next() % (i + 1)]);
    }
    return keys;
}

// The same keys multiplied by an odd number, which keeps them different: another one gives another order.
inline int scattered(int key, std::uint32_t odd) { return static_cast<int>(static_cast<std::uint32_t>(key) * odd); }

// Goes round and round over values that are ready made.
template <class T, unsigned kValues = 256>
class Carousel {
public:
    template <class Make>
    explicit Carousel(Make make) {
        Numbers numbers;
        m_values.reserve(kValues);
        while (m_values.size() < kValues) m_values.push_back(make(numbers.next()));
    }
    const T& next() { return m_values[m_at++ % kValues]; }

private:
    std::vector<T> m_values;
    unsigned m_at = 0;
};

// Values to look up, picked at random: so many that the processor cannot learn the ways to them.
template <class T>
using Picks = Carousel<T, 1u << 20>;
template <class T>
Picks<T> picksOf(const std::vector<T>& values) {
    return Picks<T>([&](std::uint32_t n) { return values[n % values.size()]; });
}

inline Carousel<int> integers() {
    return Carousel<int>([](std::uint32_t n) { return static_cast<int>(n); });
}

// Lengths in millimetres, up to 100 m.
inline Carousel<double> lengths() {
    return Carousel<double>([](std::uint32_t n) { return n / 4294967296.0 * 100000; });
}
