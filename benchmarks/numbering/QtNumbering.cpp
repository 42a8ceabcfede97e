// Part numbers handed out one after another, the same rule written with QString.

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

const int registered = [] {
    measure("getNextNumber", "Qt", {0},
            [](std::size_t) { return [creator = Creator()]() mutable { return creator.getNextNumber(); }; });
    return 0;
}();

}  // namespace
