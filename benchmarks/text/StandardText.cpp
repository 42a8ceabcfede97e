// The works on texts, done by the standard library: std::u16string, std::to_chars, memmem.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <string.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>
#include <vector>

namespace {

constexpr char kLibrary[] = "std";

void lifeAndComparison() {
    measure("construct from wide text", kLibrary, {8, 40, 1000, 65536},
            [](std::size_t size) { return [text = letters(size)] { return std::u16string(text.c_str()); }; });
    measure("copy", kLibrary, {40, 1000}, [](std::size_t size) { return [text = letters(size)] { return text; }; });
    measure("assign a shared body, twice", kLibrary, {40, 1000}, [](std::size_t size) {
        return [a = letters(size), b = letters(size - 1), target = std::u16string()]() mutable {
            target = a;
            benchmark::DoNotOptimize(target);
            target = b;
            return &target;
        };
    });
    measure("equal texts", kLibrary, {8, 1000, 65536},
            [](std::size_t size) { return [a = letters(size), b = letters(size)] { return a == b; }; });
    measure("compare, different at once", kLibrary, {8, 1000, 65536},
            [](std::size_t size) { return [a = letters(size), b = u"?" + letters(size - 1)] { return a == b; }; });
}

void search() {
    measure("find, hit at the end", kLibrary, {1000, 65536, 1000000}, [](std::size_t size) {
        return [text = endingInWanted(size), wanted = kWanted] { return text.find(wanted); };
    });
    for (const auto& [work, odd] :
         {std::pair("find, odd unit first", Odd::kFirst), std::pair("find, odd unit in the middle", Odd::kMiddle),
          std::pair("find, odd unit last", Odd::kLast)})
        measure(work, "memmem", {8192}, [odd = odd](std::size_t size) {
            return [text = oddHaystack(), needle = oddNeedle(size, odd)] {
                return memmem(text.data(), 2 * text.size(), needle.data(), 2 * needle.size());
            };
        });
    measure("find_last_of, hit at the start", kLibrary, {16, 1000, 65536, 1000000},
            [](std::size_t size) { return [text = u"?" + letters(size - 1)] { return text.rfind(u'?'); }; });
}

void composition() {
    measure("operator+", kLibrary, {16, 1000, 65536},
            [](std::size_t size) { return [a = letters(size / 2), b = letters(size / 2)] { return a + b; }; });
    measure("left half", kLibrary, {16, 1000, 65536},
            [](std::size_t size) { return [text = letters(size), n = size / 2] { return text.substr(0, n); }; });
    measure("middle half", kLibrary, {16, 1000, 65536},
            [](std::size_t size) { return [text = letters(size), n = size / 2] { return text.substr(n / 2, n); }; });
    measure("right half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = letters(size), n = size / 2] { return text.substr(text.size() - n); };
    });
}

// Into a new text: replacing in place moves the rest of the text for every occurrence.
std::u16string replaced(const std::u16string& text, const std::u16string& what, const std::u16string& with) {
    std::u16string result;
    std::size_t done = 0;
    for (std::size_t at; (at = text.find(what, done)) != text.npos; done = at + what.size())
        result.append(text, done, at - done).append(with);
    return result.append(text, done);
}

void editing() {
    measure("replace a character", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = letters(size)] {
            std::u16string edited(text);
            std::replace(edited.begin(), edited.end(), u'e', u'x');
            return edited;
        };
    });
    const auto replaceTexts = [](const char* work, std::size_t size, std::initializer_list<std::size_t> counts) {
        measure(work, kLibrary, counts, [size](std::size_t count) {
            return [text = withOccurrences(count, size), what = kReplaced, with = kReplacement] {
                return replaced(text, what, with);
            };
        });
    };
    replaceTexts("replace texts in 1,000 units, occurrences", 1000, {1});
    replaceTexts("replace texts in 10,000 units, occurrences", 10000, {1, 1000});
    replaceTexts("replace texts in 1,000,000 units, occurrences", 1000000, {1, 1000, 100000});
    measure("replace texts against two copies, occurrences", "two copies", {100000}, [](std::size_t count) {
        return [text = withOccurrences(count, 1000000)] {
            std::u16string first(text);
            benchmark::DoNotOptimize(first);
            return std::u16string(first);
        };
    });
    measure("removeAll", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = letters(size)] {
            std::u16string edited(text);
            edited.erase(std::remove(edited.begin(), edited.end(), u'e'), edited.end());
            return edited;
        };
    });
    const auto trim = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {20, 1000, 65536}, [make](std::size_t size) {
            return [text = make(size)] {
                const std::size_t from = text.find_first_not_of(u"\t\n "), to = text.find_last_not_of(u"\t\n ");
                return text.substr(from, to - from + 1);
            };
        });
    };
    trim("trim 3 blanks at both ends", paddedALittle);
    trim("trim a quarter at both ends", paddedByHalf);
    measure("toUpper", kLibrary, {1000}, [](std::size_t size) {
        return [text = letters(size)] {
            std::u16string edited(text);
            for (char16_t& c : edited)
                if (c < 0x80) c = static_cast<char16_t>(std::toupper(c));
            return edited;
        };
    });
    measure("strRev", kLibrary, {1000}, [](std::size_t size) {
        return [text = letters(size)] { return std::u16string(text.rbegin(), text.rend()); };
    });
}

void conversion() {
    const auto integerTo = [](const char* work, auto make) {
        measure(work, "to_chars", {0}, [make](std::size_t) {
            return [make, numbers = integers()]() mutable {
                char digits[16];
                return make(digits, std::to_chars(digits, digits + sizeof digits, numbers.next()).ptr);
            };
        });
    };
    integerTo("integer to text", [](char* from, char* to) { return std::u16string(from, to); });
    integerTo("integer to 8-bit text of the peers", [](char* from, char* to) { return std::string(from, to); });
    measure("double to text, digits", "to_chars", {6, 15}, [](std::size_t digits) {
        return [numbers = lengths(), n = static_cast<int>(digits)]() mutable {
            char text[40];
            return std::u16string(
                text, std::to_chars(text, text + sizeof text, numbers.next(), std::chars_format::general, n).ptr);
        };
    });
}

// A doubled quote closes a stretch and opens the next.
std::vector<std::u16string> tokensOf(std::u16string_view text, char16_t separator, char16_t quote) {
    std::vector<std::u16string> tokens;
    std::size_t from = 0;
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == quote) isQuoted = !isQuoted;
        if (text[i] != separator || isQuoted) continue;
        if (i > from) tokens.emplace_back(text.substr(from, i - from));
        from = i + 1;
    }
    if (from < text.size()) tokens.emplace_back(text.substr(from));
    return tokens;
}

void splitting() {
    measure("getTokens with quotes", "plain loop", {1000, 1000000}, [](std::size_t count) {
        return [text = sentence(count, Quotes::kSome)] { return tokensOf(text, u' ', u'\''); };
    });
}

const int registered = (lifeAndComparison(), search(), composition(), editing(), conversion(), splitting(), 0);

}  // namespace
