// Reports of progress through a vector of pointers, and nothing else.

#include <benchmarks/support/Measure.h>

#include <memory>
#include <vector>

namespace {

struct Listener {
    virtual ~Listener() = default;
    virtual void progressChanged(int key, int percent) = 0;
};

// Two kinds, so that the compiler cannot guess which one is called.
struct Line final : Listener {
    void progressChanged(int key, int percent) override { shown += key + percent; }
    int shown = 0;
};
struct Dialog final : Listener {
    void progressChanged(int key, int percent) override { shown -= key + percent; }
    int shown = 0;
};

const int registered = [] {
    measure("increaseProgress", "vector", {1, 10}, [](std::size_t displays) {
        auto listeners = std::make_shared<std::vector<std::unique_ptr<Listener>>>();
        for (std::size_t i = 0; i < displays; ++i) {
            if (i % 2 == 0) {
                listeners->push_back(std::make_unique<Line>());
            } else {
                listeners->push_back(std::make_unique<Dialog>());
            }
        }
        return [listeners, percent = 0]() mutable {
            benchmark::DoNotOptimize(listeners->data());  // they may be others
            ++percent;
            for (const auto& listener : *listeners) listener->progressChanged(0, percent & 127);
            return percent;
        };
    });
    return 0;
}();

}  // namespace
