// Balanced trees filled, torn down and searched, by Boost's intrusive::avl_set, whose links lie in the entries too.

#include <benchmarks/support/Measure.h>
#include <benchmarks/support/Texts.h>

#include <boost/intrusive/avl_set.hpp>

#include <memory>

namespace {

namespace intrusive = boost::intrusive;

constexpr char kLibrary[] = "Boost";

struct Entry : intrusive::avl_set_base_hook<intrusive::link_mode<intrusive::normal_link>> {
    explicit Entry(int k) : key(k) {}

    int key;
};

struct KeyOfEntry {
    using type = int;
    const int& operator()(const Entry& entry) const { return entry.key; }
};

// Owns its entries.
class Tree {
public:
    explicit Tree(const std::vector<int>& keys, std::uint32_t odd = 1) {
        for (const int key : keys) m_set.insert(*new Entry(scattered(key, odd)));
    }
    Tree(const Tree&) = delete;
    ~Tree() { m_set.clear_and_dispose(std::default_delete<Entry>()); }

    const Entry* search(int key) const {
        const auto found = m_set.find(key);
        return found == m_set.end() ? nullptr : &*found;
    }

private:
    intrusive::avl_set<Entry, intrusive::key_of_value<KeyOfEntry>> m_set;
};

struct LookUp {
    explicit LookUp(const std::vector<int>& keys) : tree(keys), wanted(picksOf(keys)) {}
    const Entry* operator()() { return tree.search(wanted.next()); }

    Tree tree;
    Picks<int> wanted;
};

const int registered = [] {
    measure("tree insert", kLibrary, {1000, 100000, 1000000}, [](std::size_t size) {
        return [keys = keys(size), numbers = Numbers()]() mutable {
            const Tree tree(keys, numbers.next() | 1);
            return 0;
        };
    });
    measure("tree search", kLibrary, {1000, 100000, 1000000}, [](std::size_t size) { return LookUp(keys(size)); });
    return 0;
}();

}  // namespace
