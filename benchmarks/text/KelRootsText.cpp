// The works on texts, done by KelRoots.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <roots/text/BryString.h>

namespace {

constexpr char kLibrary[] = "KelRoots";

wchar_t const* wideText(const std::u16string& text) { return reinterpret_cast<wchar_t const*>(text.c_str()); }
BryString string(const std::u16string& text) { return BryString(wideText(text)); }

void lifeAndComparison() {
    measure("nothing", kLibrary, {0}, [](std::size_t) { return [] { return 0; }; });
    measure("construct from wide text", kLibrary, {8, 40, 1000, 65536},
            [](std::size_t size) { return [text = letters(size)] { return BryString(wideText(text)); }; });
    measure("copy", kLibrary, {40, 1000},
            [](std::size_t size) { return [text = string(letters(size))] { return BryString(text); }; });
    measure("assign a shared body, twice", kLibrary, {40, 1000}, [](std::size_t size) {
        return [a = string(letters(size)), b = string(letters(size - 1)), target = BryString()]() mutable {
            target = a;
            benchmark::DoNotOptimize(target);
            target = b;
            return &target;
        };
    });
    measure("length", kLibrary, {8, 1000, 65536, 1000000},
            [](std::size_t size) { return [text = string(letters(size))] { return text.length(); }; });
    measure("equal texts", kLibrary, {8, 1000, 65536},
            [](std::size_t size) { return [a = string(letters(size)), b = string(letters(size))] { return a == b; }; });
    measure("compare, different at once", kLibrary, {8, 1000, 65536}, [](std::size_t size) {
        return [a = string(letters(size)), b = string(u"?" + letters(size - 1))] { return a == b; };
    });
    measure("compare, shared body", kLibrary, {8, 1000, 65536}, [](std::size_t size) {
        const BryString text = string(letters(size));
        return [a = text, b = text] { return a == b; };
    });
}

void search() {
    measure("find, hit at the end", kLibrary, {1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(endingInWanted(size)), wanted = string(kWanted)] { return text.find(wanted); };
    });
    for (const auto& [work, odd] :
         {std::pair("find, odd unit first", Odd::kFirst), std::pair("find, odd unit in the middle", Odd::kMiddle),
          std::pair("find, odd unit last", Odd::kLast)})
        measure(work, kLibrary, {8192}, [odd = odd](std::size_t size) {
            return [text = string(oddHaystack()), needle = string(oddNeedle(size, odd))] { return text.find(needle); };
        });
    measure("find_last_of, hit at the start", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(u"?" + letters(size - 1))] { return text.find_last_of(L'?'); };
    });
}

void composition() {
    measure("operator+", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [a = string(letters(size / 2)), b = string(letters(size / 2))] { return a + b; };
    });
    measure("left half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<int>(size / 2)] { return text.left(n); };
    });
    measure("middle half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<int>(size / 2)] { return text.mid(n / 2, n); };
    });
    measure("right half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<int>(size / 2)] { return text.right(n); };
    });
}

// Each begins with a copy of the text, which shares its body.
void editing() {
    measure("replace a character", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            BryString edited(text);
            edited.replace(L'e', L'x');
            return edited;
        };
    });
    const auto replaceTexts = [](const char* work, std::size_t size, std::initializer_list<std::size_t> counts) {
        measure(work, kLibrary, counts, [size](std::size_t count) {
            return
                [text = string(withOccurrences(count, size)), what = string(kReplaced), with = string(kReplacement)] {
                    BryString edited(text);
                    edited.replace(what, with);
                    return edited;
                };
        });
    };
    replaceTexts("replace texts in 1,000 units, occurrences", 1000, {1});
    replaceTexts("replace texts in 10,000 units, occurrences", 10000, {1, 1000});
    replaceTexts("replace texts in 1,000,000 units, occurrences", 1000000, {1, 1000, 100000});
    replaceTexts("replace texts against two copies, occurrences", 1000000, {100000});
    measure("removeAll", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            BryString edited(text);
            edited.removeAll(L'e');
            return edited;
        };
    });
    const auto trim = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {20, 1000, 65536}, [make](std::size_t size) {
            return [text = string(make(size))] {
                BryString edited(text);
                edited.TrimLeft();
                edited.TrimRight();
                return edited;
            };
        });
    };
    trim("trim 3 blanks at both ends", paddedALittle);
    trim("trim a quarter at both ends", paddedByHalf);
    measure("toUpper", kLibrary, {1000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            BryString edited(text);
            edited.toUpper();
            return edited;
        };
    });
    measure("strRev", kLibrary, {1000},
            [](std::size_t size) { return [text = string(letters(size))] { return text.strRev(); }; });
}

void conversion() {
    measure("format %s-%d-%08x", kLibrary, {0}, [](std::size_t) {
        return [name = std::u16string(u"HEA200"), numbers = integers()]() mutable {
            BryString text;
            text.format(L"%s-%d-%08x", wideText(name), numbers.next(), static_cast<unsigned>(numbers.next()));
            return text;
        };
    });
    for (const char* work : {"integer to text", "integer to 8-bit text of the peers"})
        measure(work, kLibrary, {0}, [](std::size_t) {
            return [numbers = integers()]() mutable { return BryString::integerToString(numbers.next(), 10); };
        });
    measure("double to text, digits", kLibrary, {6, 15}, [](std::size_t digits) {
        return [numbers = lengths(), n = static_cast<int>(digits)]() mutable {
            return BryString::doubleToString(numbers.next(), n);
        };
    });
    const auto toAnsi = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {16, 1000, 65536}, [make](std::size_t size) {
            return [text = string(make(size))] {
                BryString copy(text);
                benchmark::DoNotOptimize(copy.getStringA());
                return copy;
            };
        });
    };
    toAnsi("getStringA, first", letters);
    toAnsi("getStringA, first, accented", accented);
    measure("getStringA, cached", kLibrary, {16, 65536},
            [](std::size_t size) { return [text = string(letters(size))] { return text.getStringA(); }; });
    const auto fromAnsi = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {10, 1000, 100000},
                [make](std::size_t size) { return [text = narrow(make(size))] { return BryString(text.c_str()); }; });
    };
    fromAnsi("from 8-bit text", letters);
    fromAnsi("from 8-bit text, accented", accented);
}

void splitting() {
    for (const char* work : {"getTokens", "getTokens against QString"})
        measure(work, kLibrary, {1000, 1000000}, [](std::size_t count) {
            return [text = string(sentence(count)), separators = BryString(L" ")]() mutable {
                BryArray<BryString> tokens;
                BryString::getTokens(text, tokens, separators);
                return tokens;
            };
        });
    measure("getTokens with quotes", kLibrary, {1000, 1000000}, [](std::size_t count) {
        return [text = string(sentence(count, Quotes::kSome)), blank = BryString(L" "),
                quote = BryString(L"'")]() mutable {
            BryArray<BryString> tokens;
            BryString::getTokens(text, tokens, blank, quote);
            return tokens;
        };
    });
}

const int registered = (lifeAndComparison(), search(), composition(), editing(), conversion(), splitting(), 0);

}  // namespace
