// Arrays filled one element after another, by a plain loop under the same growth rule and by std::vector.

#include <benchmarks/support/Measure.h>

#include <cstring>
#include <vector>

namespace {

// Grows by 8 elements at a time into zeroed storage.
std::size_t appendByHand(std::size_t size) {
    double* values = nullptr;
    std::size_t length = 0, room = 0;
    for (std::size_t i = 0; i < size; ++i) {
        if (length == room) {
            double* const larger = new double[room + 8];
            std::memset(larger, 0, (room + 8) * sizeof(double));
            if (length != 0) std::memcpy(larger, values, length * sizeof(double));
            delete[] values;
            values = larger;
            room += 8;
        }
        values[length++] = static_cast<double>(i);
    }
    benchmark::DoNotOptimize(values);
    delete[] values;
    return length;
}

const int registered = [] {
    measure("array append", "plain loop", {100000},
            [](std::size_t size) { return [size] { return appendByHand(size); }; });
    for (const char* work : {"array append, room preset", "array setAt, length preset"})
        measure(work, "vector", {100000}, [](std::size_t size) {
            return [size] {
                std::vector<double> values;
                values.reserve(size);
                for (std::size_t i = 0; i < size; ++i) values.push_back(static_cast<double>(i));
                benchmark::DoNotOptimize(values.data());
                return values.size();
            };
        });
    return 0;
}();

}  // namespace
