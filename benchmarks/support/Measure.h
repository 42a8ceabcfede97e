// How a benchmark is put down: one line of work for one library, at the sizes that are of interest.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <initializer_list>
#include <string>

// Registers "work/library/size" for each size. prepare(size) makes the inputs and returns the operation on them; only
// the operation is timed, the destruction of its result included. It is compiled into the loop: nothing is called
// through a pointer.
template <class Prepare>
void measure(const std::string& work, const std::string& library, std::initializer_list<std::size_t> sizes,
             Prepare prepare) {
    for (const std::size_t size : sizes) {
        const std::string name = work + "/" + library + "/" + std::to_string(size);
        benchmark::RegisterBenchmark(name.c_str(), [prepare, size](benchmark::State& state) {
            auto operation = prepare(size);
            benchmark::DoNotOptimize(operation);  // the compiler knows nothing about the inputs
            for (auto _ : state) benchmark::DoNotOptimize(operation());
        });
    }
}
