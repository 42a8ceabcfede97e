// Arrays of strings sorted and searched, by the standard algorithms over Qt's QString.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <QString>

#include <algorithm>

namespace {

constexpr char kLibrary[] = "Qt";

std::vector<QString> strings(std::size_t count) {
    std::vector<QString> strings;
    for (const std::u16string& word : words(count)) strings.push_back(QString::fromStdU16String(word));
    return strings;
}

const int registered = [] {
    measure("sort strings", kLibrary, {100000}, [](std::size_t count) {
        return [array = strings(count)] {
            std::vector<QString> sorted(array);
            std::sort(sorted.begin(), sorted.end());
            return sorted;
        };
    });
    measure("bsearch in strings", kLibrary, {100000}, [](std::size_t count) {
        const std::vector<QString> unsorted = strings(count);
        std::vector<QString> sorted = unsorted;
        std::sort(sorted.begin(), sorted.end());
        return [sorted, wanted = picksOf(unsorted)]() mutable {
            const QString& key = wanted.next();
            const auto found = std::lower_bound(sorted.begin(), sorted.end(), key);
            return found != sorted.end() && *found == key ? found - sorted.begin() : -1;
        };
    });
    return 0;
}();

}  // namespace
