// Arrays filled one element after another, arrays of strings sorted and searched, by KelRoots.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <roots/containers/BryArray.h>
#include <roots/containers/BryStringClassArray.h>

namespace {

constexpr char kLibrary[] = "KelRoots";

using Doubles = BryArray<double, BryArrayMemCopyReallocator<double>, BryArrayMemoryController<double>>;

void filling() {
    measure("array append", kLibrary, {100000}, [](std::size_t size) {
        return [size] {
            Doubles values;
            for (std::size_t i = 0; i < size; ++i) values.append(static_cast<double>(i));
            benchmark::DoNotOptimize(values.first());
            return values.logicalLength();
        };
    });
    measure("array append, room preset", kLibrary, {100000}, [](std::size_t size) {
        return [size] {
            Doubles values;
            values.setPhysicalLength(static_cast<long>(size));
            for (std::size_t i = 0; i < size; ++i) values.append(static_cast<double>(i));
            benchmark::DoNotOptimize(values.first());
            return values.logicalLength();
        };
    });
    measure("array setAt, length preset", kLibrary, {100000}, [](std::size_t size) {
        return [size] {
            Doubles values;
            values.setLogicalLength(static_cast<long>(size));
            for (std::size_t i = 0; i < size; ++i) values.setAt(static_cast<long>(i), static_cast<double>(i));
            benchmark::DoNotOptimize(values.first());
            return values.logicalLength();
        };
    });
}

std::vector<BryString> strings(std::size_t count) {
    std::vector<BryString> strings;
    for (const std::u16string& word : words(count))
        strings.emplace_back(reinterpret_cast<wchar_t const*>(word.c_str()));
    return strings;
}

BryStringClassArray arrayOf(const std::vector<BryString>& strings) {
    BryStringClassArray array(static_cast<long>(strings.size()));
    for (const BryString& string : strings) array.append(string);
    return array;
}

void order() {
    measure("sort strings", kLibrary, {100000}, [](std::size_t count) {
        return [array = arrayOf(strings(count))] {
            BryStringClassArray sorted(array);
            sorted.sort(BryString::strCompare);
            return sorted;
        };
    });
    measure("bsearch in strings", kLibrary, {100000}, [](std::size_t count) {
        const std::vector<BryString> unsorted = strings(count);
        BryStringClassArray sorted = arrayOf(unsorted);
        sorted.sort(BryString::strCompare);
        return [sorted, wanted = picksOf(unsorted)]() mutable {
            long index;
            return sorted.bsearch(wanted.next(), index, BryString::strCompare) ? index : -1;
        };
    });
}

const int registered = (filling(), order(), 0);

}  // namespace
