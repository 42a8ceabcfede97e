// Part numbers and counter values handed out one after another, the same rules written with QString.

#include <benchmarks/support/Measure.h>

#include <QString>

namespace {

struct Creator {
    QString prefix = QStringLiteral("HEA200-"), suffix = QStringLiteral("/A"), current = QStringLiteral("1");
    QString symbols = QStringLiteral("0123456789");

    QString getNextNumber() {
        const QString number = prefix + current + suffix;
        step();
        return number;
    }

    void step() {
        for (qsizetype i = current.size() - 1; i >= 0; --i) {
            const qsizetype symbol = symbols.indexOf(current.at(i)) + 1;
            current[i] = symbols.at(symbol % symbols.size());
            if (symbol < symbols.size()) return;
        }
        current.prepend(symbols.at(1));
    }
};

struct Counter {
    QString start;
    QChar first, last;
    QString excluded;
    int maxValues;
    bool isNumeric = first.isDigit();
    QString value = start;
    int count = 1;

    void reset() {
        value = start;
        count = 1;
    }

    bool increment() {
        if (count == maxValues) return false;
        ++count;
        for (qsizetype i = value.size() - 1; i >= 0; --i) {
            const QChar next = following(value.at(i));
            value[i] = next <= last ? next : first;
            if (next <= last) return true;
        }
        value.prepend(isNumeric ? following(first) : first);
        return true;
    }

    QChar following(QChar c) const {
        do c = QChar(c.unicode() + 1);
        while (c <= last && excluded.contains(c));
        return c;
    }
};

void count(const char* work, const Counter& start) {
    measure(work, "Qt", {0}, [start](std::size_t) {
        return [counter = start]() mutable {
            if (!counter.increment()) counter.reset();
            return counter.value;
        };
    });
}

const int registered = [] {
    measure("getNextNumber", "Qt", {0},
            [](std::size_t) { return [creator = Creator()]() mutable { return creator.getNextNumber(); }; });
    count("increment, digits", {QStringLiteral("0001"), u'0', u'9', QString(), 9999});
    count("increment, letters", {QStringLiteral("AAAA"), u'A', u'Z', QStringLiteral("IO"), 9999});
    return 0;
}();

}  // namespace
