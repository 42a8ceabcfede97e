// Arrays filled one element after another, by KelRoots.

#include <benchmarks/support/Measure.h>

#include <roots/containers/BryArray.h>

namespace {

constexpr char kLibrary[] = "KelRoots";

using Doubles = BryArray<double, BryArrayMemCopyReallocator<double>, BryArrayMemoryController<double>>;

const int registered = [] {
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
    return 0;
}();

}  // namespace
