// The works on texts, done by ICU's UnicodeString.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <unicode/unistr.h>

namespace {

using icu::UnicodeString;

constexpr char kLibrary[] = "ICU";

UnicodeString string(const std::u16string& text) {
    return UnicodeString(text.data(), static_cast<std::int32_t>(text.size()));
}

void lifeAndComparison() {
    measure("construct from wide text", kLibrary, {8, 40, 1000, 65536},
            [](std::size_t size) { return [text = letters(size)] { return UnicodeString(text.c_str()); }; });
    measure("copy", kLibrary, {40, 1000},
            [](std::size_t size) { return [text = string(letters(size))] { return text; }; });
    measure("assign a shared body, twice", kLibrary, {40, 1000}, [](std::size_t size) {
        return [a = string(letters(size)), b = string(letters(size - 1)), target = UnicodeString()]() mutable {
            target = a;
            benchmark::DoNotOptimize(target);
            target = b;
            return &target;
        };
    });
    measure("equal texts", kLibrary, {8, 1000, 65536},
            [](std::size_t size) { return [a = string(letters(size)), b = string(letters(size))] { return a == b; }; });
    measure("compare, different at once", kLibrary, {8, 1000, 65536}, [](std::size_t size) {
        return [a = string(letters(size)), b = string(u"?" + letters(size - 1))] { return a == b; };
    });
    measure("compare, shared body", kLibrary, {8, 1000, 65536}, [](std::size_t size) {
        const UnicodeString text = string(letters(size));
        return [a = text, b = text] { return a == b; };
    });
}

void search() {
    measure("find, hit at the end", kLibrary, {1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(endingInWanted(size)), wanted = string(kWanted)] { return text.indexOf(wanted); };
    });
    measure("find_last_of, hit at the start", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(u"?" + letters(size - 1))] { return text.lastIndexOf(u'?'); };
    });
}

void composition() {
    measure("operator+", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [a = string(letters(size / 2)), b = string(letters(size / 2))] { return a + b; };
    });
    measure("left half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<std::int32_t>(size / 2)] {
            return UnicodeString(text, 0, n);
        };
    });
    measure("middle half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<std::int32_t>(size / 2)] {
            return UnicodeString(text, n / 2, n);
        };
    });
    measure("right half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<std::int32_t>(size / 2)] {
            return UnicodeString(text, text.length() - n);
        };
    });
}

// Replacing and removing move the rest of the text for every occurrence: the sizes end where that takes too long.
void editing() {
    measure("replace a character", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size))] {
            UnicodeString edited(text);
            edited.findAndReplace(UnicodeString(u'e'), UnicodeString(u'x'));
            return edited;
        };
    });
    const auto replaceTexts = [](const char* work, std::size_t size, std::initializer_list<std::size_t> counts) {
        measure(work, kLibrary, counts, [size](std::size_t count) {
            return
                [text = string(withOccurrences(count, size)), what = string(kReplaced), with = string(kReplacement)] {
                    UnicodeString edited(text);
                    edited.findAndReplace(what, with);
                    return edited;
                };
        });
    };
    replaceTexts("replace texts in 1,000 units, occurrences", 1000, {1});
    replaceTexts("replace texts in 10,000 units, occurrences", 10000, {1, 1000});
    replaceTexts("replace texts in 1,000,000 units, occurrences", 1000000, {1});
    measure("removeAll", kLibrary, {16, 1000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            UnicodeString edited(text);
            edited.findAndReplace(UnicodeString(u'e'), UnicodeString());
            return edited;
        };
    });
    const auto trim = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {20, 1000, 65536}, [make](std::size_t size) {
            return [text = string(make(size))] {
                UnicodeString edited(text);
                edited.trim();
                return edited;
            };
        });
    };
    trim("trim 3 blanks at both ends", paddedALittle);
    trim("trim a quarter at both ends", paddedByHalf);
    measure("toUpper", kLibrary, {1000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            UnicodeString edited(text);
            edited.toUpper();
            return edited;
        };
    });
    measure("strRev", kLibrary, {1000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            UnicodeString edited(text);
            edited.reverse();
            return edited;
        };
    });
}

const int registered = (lifeAndComparison(), search(), composition(), editing(), 0);

}  // namespace
