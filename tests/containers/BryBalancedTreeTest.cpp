// The shape of the tree is seen from inside: this file is compiled without access control.
#include <gtest/gtest.h>
#include <roots/containers/BryBalancedTree.h>

#include <memory>
#include <random>
#include <set>
#include <type_traits>
#include <vector>

namespace {

using Base = BryBalancedTreeEntry;
static_assert(!std::is_copy_constructible_v<BryBalancedTree> && !std::is_copy_assignable_v<BryBalancedTree>);

struct Entry : Base {
    explicit Entry(int k) : key(k) { ++alive; }
    ~Entry() override { --alive; }
    int compare(const Base& other) const override {
        const int o = static_cast<const Entry&>(other).key;
        if (o == kThrown) throw o;
        return o == kOdd ? odd : (o > key) - (o < key);
    }
    static constexpr int kOdd = 1 << 20, kThrown = 2 << 20;
    int key;
    static inline int odd = 2;
    static inline long alive = 0;
};
static_assert(!std::is_copy_constructible_v<Entry> && !std::is_copy_assignable_v<Entry>);

// The height, every order, weight and key on the way checked.
int checked(const Base* entry, std::set<int>::const_iterator& expected) {
    if (entry == nullptr) return 0;
    const int left = checked(entry->m_pLeft, expected);
    EXPECT_EQ(static_cast<const Entry*>(entry)->key, *expected++);
    const int right = checked(entry->m_pRight, expected);
    EXPECT_EQ(entry->m_weight, 1 + right - left) << "at key " << static_cast<const Entry*>(entry)->key;
    return 1 + std::max(left, right);
}

void check(const BryBalancedTree& tree, const std::set<int>& keys) {
    auto expected = keys.begin();
    checked(tree.m_pRoot, expected);
    ASSERT_TRUE(expected == keys.end());
    ASSERT_EQ(Entry::alive, static_cast<long>(keys.size()));
}

Base::eError insert(BryBalancedTree& tree, int key) {
    auto entry = std::make_unique<Entry>(key);
    const Base::eError error = tree.insert(entry.get());
    if (error == Base::eOk) entry.release();
    return error;
}

const Entry* find(const BryBalancedTree& tree, int key) { return static_cast<const Entry*>(tree.search(Entry(key))); }

}  // namespace

TEST(BryBalancedTree, StaysBalancedUnderInsertionsAndRemovals) {
    // A few keys come to every small shape; many keys rotate at every height.
    for (const int range : {5, 12, 60, 20000}) {
        SCOPED_TRACE(range);
        std::mt19937 random(20090203);
        BryBalancedTree tree;
        std::set<int> keys;
        for (int round = 0; round < 150000 && !testing::Test::HasFailure(); ++round) {
            const int key = static_cast<int>(random()) % range;
            const bool isThere = keys.count(key) != 0;
            ASSERT_EQ(find(tree, key) != nullptr, isThere);
            if (random() % 2) {
                ASSERT_EQ(insert(tree, key), isThere ? Base::eAlreadyInTree : Base::eOk);
                keys.insert(key);
            } else {
                const Entry probe(key), *const found = find(tree, key);
                ASSERT_EQ(tree.remove(found && round % 2 ? *found : probe), isThere ? Base::eOk : Base::eNotFound);
                keys.erase(key);
            }
            if (range < 100 || round % 10000 == 0) check(tree, keys);
        }
        check(tree, keys);
    }
    EXPECT_EQ(Entry::alive, 0);
}

TEST(BryBalancedTree, TakesKeysInAnyOrderAndGivesThemBack) {
    const std::initializer_list<int> rows[] = {{1, 2, 3}, {3, 2, 1}, {1, 3, 2}, {3, 1, 2}, {1, 2, 3, 4, 5, 6, 7}};
    for (const auto& row : rows) {
        BryBalancedTree tree;
        for (const int key : row) EXPECT_EQ(insert(tree, key), Base::eOk);
        EXPECT_EQ(static_cast<const Entry*>(tree.m_pRoot)->key, row.size() == 7 ? 4 : 2);
        check(tree, std::set<int>(row));
        tree.reset();
        check(tree, {});
        EXPECT_EQ(find(tree, 2), nullptr);
        EXPECT_EQ(tree.remove(Entry(2)), Base::eNotFound);
        EXPECT_EQ(insert(tree, 2), Base::eOk);
    }
    BryBalancedTree tree;
    EXPECT_EQ(tree.insert(nullptr), Base::eNoEntry);
    for (int key = 200000; key > 0; --key) insert(tree, key);
    for (int key = 1; key <= 200000; ++key) ASSERT_EQ(find(tree, key)->key, key);
}

TEST(BryBalancedTree, IsEmptyWhileItsEntriesGoTheRightOnesFirst) {
    static BryBalancedTree* tree;
    static std::vector<int> gone;
    struct Asking : Entry {
        using Entry::Entry;
        ~Asking() override { gone.push_back(tree->search(*this) ? -1 : key); }
    };
    BryBalancedTree asked;
    tree = &asked;
    for (const int key : {2, 1, 3}) asked.insert(new Asking(key));
    EXPECT_EQ(asked.remove(Entry(1)), Base::eOk);
    asked.insert(new Asking(1));
    asked.reset();
    EXPECT_EQ(gone, (std::vector<int>{1, 2, 3, 1}));
}

TEST(BryBalancedTree, StaysAsItIsWhereComparisonsGoAstray) {
    for (Entry::odd = -3; Entry::odd <= 3; ++Entry::odd) {
        if (Entry::odd >= -1 && Entry::odd <= 1) continue;
        BryBalancedTree tree;
        std::set<int> keys;
        for (int key = 0; key < 10; ++key) insert(tree, key), keys.insert(key);
        Entry odd(Entry::kOdd), thrown(Entry::kThrown);
        EXPECT_EQ(tree.insert(&odd), Base::eOk);
        EXPECT_EQ(tree.search(odd), nullptr);
        EXPECT_EQ(tree.remove(odd), Base::eNotFound);
        EXPECT_THROW(tree.insert(&thrown), int);
        EXPECT_THROW(tree.search(thrown), int);
        EXPECT_THROW(tree.remove(thrown), int);
        keys.insert(odd.key), keys.insert(thrown.key);
        EXPECT_EQ(Entry::alive, static_cast<long>(keys.size())) << "both are still the caller's";
        auto expected = keys.cbegin();
        checked(tree.m_pRoot, expected);
        EXPECT_EQ(*expected, odd.key);
    }
}
