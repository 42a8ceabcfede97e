// The works on texts, done by Qt's QString.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <QString>
#include <QStringList>

#include <algorithm>

namespace {

constexpr char kLibrary[] = "Qt";

QString string(const std::u16string& text) {
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}

void lifeAndComparison() {
    measure("construct from wide text", kLibrary, {8, 40, 1000, 65536}, [](std::size_t size) {
        return [text = letters(size)] { return QString(reinterpret_cast<const QChar*>(text.c_str())); };
    });
    measure("copy", kLibrary, {40, 1000},
            [](std::size_t size) { return [text = string(letters(size))] { return text; }; });
    measure("assign a shared body, twice", kLibrary, {40, 1000}, [](std::size_t size) {
        return [a = string(letters(size)), b = string(letters(size - 1)), target = QString()]() mutable {
            target = a;
            benchmark::DoNotOptimize(target);
            target = b;
            return &target;
        };
    });
    measure("length", kLibrary, {8, 1000, 65536, 1000000},
            [](std::size_t size) { return [text = letters(size)] { return QStringView(text.c_str()).size(); }; });
    measure("equal texts", kLibrary, {8, 1000, 65536},
            [](std::size_t size) { return [a = string(letters(size)), b = string(letters(size))] { return a == b; }; });
    measure("compare, different at once", kLibrary, {8, 1000, 65536}, [](std::size_t size) {
        return [a = string(letters(size)), b = string(u"?" + letters(size - 1))] { return a == b; };
    });
    measure("compare, shared body", kLibrary, {8, 1000, 65536}, [](std::size_t size) {
        const QString text = string(letters(size));
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
        return [text = string(letters(size)), n = static_cast<qsizetype>(size / 2)] { return text.left(n); };
    });
    measure("middle half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<qsizetype>(size / 2)] { return text.mid(n / 2, n); };
    });
    measure("right half", kLibrary, {16, 1000, 65536}, [](std::size_t size) {
        return [text = string(letters(size)), n = static_cast<qsizetype>(size / 2)] { return text.right(n); };
    });
}

void editing() {
    measure("replace a character", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            QString edited(text);
            edited.replace(u'e', u'x');
            return edited;
        };
    });
    const auto replaceTexts = [](const char* work, std::size_t size, std::initializer_list<std::size_t> counts) {
        measure(work, kLibrary, counts, [size](std::size_t count) {
            return
                [text = string(withOccurrences(count, size)), what = string(kReplaced), with = string(kReplacement)] {
                    QString edited(text);
                    edited.replace(what, with);
                    return edited;
                };
        });
    };
    replaceTexts("replace texts in 1,000 units, occurrences", 1000, {1});
    replaceTexts("replace texts in 10,000 units, occurrences", 10000, {1, 1000});
    replaceTexts("replace texts in 1,000,000 units, occurrences", 1000000, {1, 1000, 100000});
    measure("removeAll", kLibrary, {16, 1000, 65536, 1000000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            QString edited(text);
            edited.remove(u'e');
            return edited;
        };
    });
    const auto trim = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {20, 1000, 65536},
                [make](std::size_t size) { return [text = string(make(size))] { return text.trimmed(); }; });
    };
    trim("trim 3 blanks at both ends", paddedALittle);
    trim("trim a quarter at both ends", paddedByHalf);
    measure("toUpper", kLibrary, {1000},
            [](std::size_t size) { return [text = string(letters(size))] { return text.toUpper(); }; });
    measure("strRev", kLibrary, {1000}, [](std::size_t size) {
        return [text = string(letters(size))] {
            QString edited(text);
            std::reverse(edited.begin(), edited.end());
            return edited;
        };
    });
}

void conversion() {
    measure("format %s-%d-%08x", kLibrary, {0}, [](std::size_t) {
        return [name = std::string("HEA200"), numbers = integers()]() mutable {
            return QString::asprintf("%s-%d-%08x", name.c_str(), numbers.next(), static_cast<unsigned>(numbers.next()));
        };
    });
    measure("integer to text", kLibrary, {0},
            [](std::size_t) { return [numbers = integers()]() mutable { return QString::number(numbers.next()); }; });
    measure("integer to 8-bit text of the peers", kLibrary, {0}, [](std::size_t) {
        return [numbers = integers()]() mutable { return QByteArray::number(numbers.next()); };
    });
    measure("double to text, digits", kLibrary, {6, 15}, [](std::size_t digits) {
        return [numbers = lengths(), n = static_cast<int>(digits)]() mutable {
            return QString::number(numbers.next(), 'g', n);
        };
    });
    const auto toLatin1 = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {16, 1000, 65536},
                [make](std::size_t size) { return [text = string(make(size))] { return text.toLatin1(); }; });
    };
    toLatin1("getStringA, first", letters);
    toLatin1("getStringA, first, accented", accented);
    const auto fromLatin1 = [](const char* work, std::u16string (*make)(std::size_t)) {
        measure(work, kLibrary, {10, 1000, 100000}, [make](std::size_t size) {
            return [text = narrow(make(size))] { return QString::fromLatin1(text.c_str()); };
        });
    };
    fromLatin1("from 8-bit text", letters);
    fromLatin1("from 8-bit text, accented", accented);
}

void splitting() {
    measure("getTokens against QString", kLibrary, {1000, 1000000}, [](std::size_t count) {
        return [text = string(sentence(count))] { return text.split(u' ', Qt::SkipEmptyParts); };
    });
}

const int registered = (lifeAndComparison(), search(), composition(), editing(), conversion(), splitting(), 0);

}  // namespace
