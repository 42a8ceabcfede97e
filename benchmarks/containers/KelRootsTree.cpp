// Balanced trees filled, torn down and searched, by KelRoots.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <roots/containers/BryBalancedTree.h>

namespace {

constexpr char kLibrary[] = "KelRoots";

struct Entry : BryBalancedTreeEntry {
    explicit Entry(int k) : key(k) {}
    int compare(const BryBalancedTreeEntry& other) const override {
        const int o = static_cast<const Entry&>(other).key;
        return (o > key) - (o < key);
    }

    int key;
};

void insertAll(BryBalancedTree& tree, const std::vector<int>& keys, std::uint32_t odd = 1) {
    for (const int key : keys) tree.insert(new Entry(scattered(key, odd)));
}

struct LookUp {
    explicit LookUp(const std::vector<int>& keys) : wanted(picksOf(keys)) { insertAll(tree, keys); }
    const BryBalancedTreeEntry* operator()() {
        probe.key = wanted.next();
        return tree.search(probe);
    }

    BryBalancedTree tree;
    Entry probe{0};
    Picks<int> wanted;
};

const int registered = [] {
    measure("tree insert", kLibrary, {1000, 100000, 1000000}, [](std::size_t size) {
        return [keys = keys(size), numbers = Numbers()]() mutable {
            BryBalancedTree tree;
            insertAll(tree, keys, numbers.next() | 1);  // an order that the processor has not learned
            return 0;
        };
    });
    measure("tree search", kLibrary, {1000, 100000, 1000000}, [](std::size_t size) { return LookUp(keys(size)); });
    return 0;
}();

}  // namespace
