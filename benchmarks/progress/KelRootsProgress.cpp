// Reports of progress, by KelRoots.

#include <benchmarks/support/Measure.h>

#include <roots/progress/BryProcessEvolutionManager.h>

namespace {

struct Display final : ProgressDisplayProtocol {
    void progressChanged(int key, int percent) override { shown += key + percent; }
    void processRegistered(int, BryString, bool) override {}
    void processDeRegistered(int) override {}
    int shown = 0;
};

// The size is the number of displays. The copy has the process's manager to itself.
const int registered = [] {
    measure("increaseProgress", "KelRoots", {1, 10}, [](std::size_t displays) {
        auto* manager = new BryProcessEvolutionManager(*BryProcessEvolutionManager::getProcessEvolutionManager());
        int key = manager->registerProcess(L"Marking");
        for (std::size_t i = 0; i < displays; ++i) manager->registerDisplay(new Display);
        return [manager, key, percent = 0]() mutable {
            manager->increaseProgress(key, ++percent & 127);
            return percent;
        };
    });
    return 0;
}();

}  // namespace
