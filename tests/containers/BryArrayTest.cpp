#include <gtest/gtest.h>
#include <roots/containers/BryArray.h>
#include <roots/containers/BryMemoryController.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/support/FailNthAllocation.h"

namespace {

using Ints = BryArray<int, BryArrayMemCopyReallocator<int>, BryArrayMemoryController<int>>;
using Texts = BryArray<std::string>;
using Model = std::vector<std::string>;

template <class Array, class... T>
Array arrayOf(const T&... values) {
    Array array;
    return (array.setAt(array.length(), values), ...), array;
}

template <class T, class R>
std::vector<T> elementsOf(const BryArray<T, R>& array) {
    return array.isEmpty() ? std::vector<T>() : std::vector<T>(&array[0], &array[0] + array.length());
}

int compareInts(const void* a, const void* b) { return *static_cast<const int*>(a) - *static_cast<const int*>(b); }

// An element that allocates whenever it is made or assigned, so that each of these can be made to fail.
struct Fragile {
    Fragile(int number = 0) : text(std::to_string(number) + " in a text too long to be kept in place") {}
    Fragile(const Fragile& other) : text(other.text.c_str()) {}
    Fragile& operator=(const Fragile& other) { return text = std::string(other.text.c_str()), *this; }
    bool operator==(const Fragile& other) const { return text == other.text; }
    std::string text;
};
using Fragiles = BryArray<Fragile>;
using Kilobytes = BryArray<std::array<char, 1024>>;

}  // namespace

TEST(BryArrayGrowth, GoesInGrowLengthStepsAndShrinksBeyondAQuarter) {
    using Change = Ints& (Ints::*)(long);
    const Change hold = &Ints::setLogicalLength, request = &Ints::setPhysicalLength;
    // clang-format off
    const struct { long physical, grow, filled; Change change; long n, newPhysical, newLogical; } rows[] = {
        {0, 8, 0, hold, 8, 8, 8}, {0, 8, 0, hold, 17, 24, 17}, {5, 8, 5, hold, 5, 5, 5}, {5, 8, 5, hold, 6, 8, 6},
        {4, 3, 4, hold, 5, 6, 5}, {0, 0, 0, hold, 1, 8, 1}, {0, -3, 0, hold, 9, 16, 9}, {0, 99, 0, hold, 1, 99, 1},
        {-3, 8, 0, hold, 1, 8, 1}, {8, 8, 8, request, 7, 8, 8}, {8, 8, 8, request, 6, 6, 6},
        {8, 8, 3, request, 6, 6, 3}, {8, 8, 8, request, 0, 0, 0}, {8, 8, 8, request, -1, 8, 8},
        {8, 8, 8, request, 9, 9, 8}, {5, 8, 5, request, 4, 5, 5}, {5, 8, 5, request, 3, 3, 3},
        {-3, 8, 0, request, 0, -3, 0}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.n << " on " << row.physical << " growing by " << row.grow);
        Ints array(row.physical, row.grow);
        EXPECT_EQ(array.growLength(), row.grow == 0 ? 8 : row.grow);
        for (int i = 0; i < row.filled; ++i) array.append(i);
        EXPECT_EQ((array.*row.change)(row.n).physicalLength(), row.newPhysical);
        ASSERT_EQ(array.length(), row.newLogical);
        for (int i = 0; i < std::min(row.filled, row.newLogical); ++i) EXPECT_EQ(array[i], i);
    }
}

TEST(BryArrayGrowth, RefusesWhatDoesNotFit32BitsAndStaysAsItWas) {
    const std::pair<const char*, void (*)(Kilobytes&)> rows[] = {
        {"2^22 slots of 2^10 bytes: the product would wrap", [](auto& a) { a.setPhysicalLength(1L << 22); }},
        {"past the longest", [](auto&) { BryArray<char>(0, INT_MAX - 1).setLogicalLength(INT_MAX); }},
        {"an enormous grow length", [](auto& a) { a.setGrowLength(LONG_MAX).setLogicalLength(9); }},
        {"the last position", [](auto& a) { a.setAt(LONG_MAX, a[0]); }},
        {"a new array", [](auto&) { Kilobytes b(LONG_MAX); }}};
    for (const auto& [what, run] : rows) {
        Kilobytes array = arrayOf<Kilobytes>(std::array<char, 1024>{{'x'}});
        EXPECT_THROW(run(array), std::bad_alloc) << what;
        EXPECT_TRUE(array.length() == 1 && array.physicalLength() == 8 && array[0][0] == 'x') << what;
    }
}

TEST(BryArraySlots, AreZeroOrDefaultUntilUsedAndKeepTheirValuesBehindTheEnd) {
    // clang-format off
    struct Half { int unset, set; Half() : set(7) {} };
    // clang-format on
    BryArray<Half> halves(1000);
    for (long i = 0; i < 1000; ++i) EXPECT_TRUE(halves[i].unset == 0 && halves[i].set == 7) << i;
    BryArray<wchar_t> units;
    ASSERT_EQ(units.setAt(10, L'x').physicalLength(), 16);
    for (long i = 0; i < 16; ++i) EXPECT_EQ(units[i], i == 10 ? L'x' : 0) << i;
    Texts texts = arrayOf<Texts>("a", "b", "c", "d", "e");
    texts.setLogicalLength(2).setLogicalLength(5).removeAt(1).removeLast().removeFirst().setLogicalLength(5);
    EXPECT_EQ(elementsOf(texts), (Model{"c", "d", "d", "e", "e"}));
    EXPECT_EQ(elementsOf(texts.setLogicalLength(1).setAt(3, "z")), (Model{"c", "d", "d", "z"}));
}

TEST(BryArray, BehavesLikeAVectorUnderAnyMixOfChanges) {
    std::mt19937 random(20090203);
    const auto below = [&](long limit) { return static_cast<long>(random() % static_cast<unsigned long>(limit)); };
    Texts array(0, 3);
    Model model;
    for (int round = 0; round < 4000; ++round) {
        const long n = static_cast<long>(model.size()), i = below(n + 1), j = n > 0 ? below(n) : 0;
        // Half of the values are elements of the array itself.
        const std::string value = n > 0 && below(2) ? model[static_cast<std::size_t>(j)] : std::to_string(below(9));
        const std::string& given = n > 0 && array[j] == value ? array[j] : value;
        const auto at = model.begin() + i, found = std::find(at, model.end(), value);
        const bool isThere = found != model.end();
        // clang-format off
        switch (n > 40 ? 7 + below(2) : below(8)) {  // removes once there is much to remove
            case 0: ASSERT_EQ(array.append(given), n); model.push_back(value); break;
            case 1: array.insertAt(i, given), model.insert(at, value); break;
            case 2: array.setAt(i, given), i == n ? model.push_back(value) : void(*at = value); break;
            case 3: if (n > 0) array.swap(j, n - 1), std::swap(model.begin()[j], model.back()); break;
            case 4: array.reverse(), std::reverse(model.begin(), model.end()); break;
            case 5: array = Texts(array), array = static_cast<const Texts&>(array); break;
            case 6: array.append(array), std::copy_n(Model(model).begin(), n, std::back_inserter(model)); break;
            case 7: ASSERT_EQ(array.remove(given, i), isThere); if (isThere) model.erase(found); break;
            case 8: array.removeAt(j), model.erase(model.begin() + j);
        }
        // clang-format on
        ASSERT_EQ(elementsOf(array), model) << "round " << round;
        ASSERT_EQ(array.isEmpty() != 0, model.empty());
    }
    EXPECT_EQ(elementsOf(array.setAll(array[1])), Model(model.size(), model[1]));
}

TEST(BryArray, CopiesItsLengthsAndLeavesAnEmptyArrayAlone) {
    Ints source(40, 3), target = arrayOf<Ints>(1);
    source.setGrowLength(-2).append(7);
    Ints copy(source);
    for (const Ints* a : {&copy, &(target = source)})
        EXPECT_TRUE(a->physicalLength() == 40 && a->growLength() == -2 && elementsOf(*a) == std::vector<int>{7});
    Ints array;
    array.removeAt(0).removeFirst().removeLast().reverse().setAll(7).append(Ints(array)).setAt(-1, 7);
    array.sort(compareInts);
    EXPECT_TRUE(array.length() == 0 && array.physicalLength() == 0);
    Ints negative(-5);
    negative.append(7);
    EXPECT_TRUE(negative.physicalLength() == 8 && elementsOf(negative) == std::vector<int>{7});
}

TEST(BryArraySearch, AnswersPositionsOfTheWholeArrayInOrder) {
    Ints array = arrayOf<Ints>(7, 5, 3, 3, 1);
    array.sort(1, 3, compareInts);
    array.sort(4, 3, compareInts);  // an empty range
    EXPECT_EQ(elementsOf(array), (std::vector<int>{7, 3, 3, 5, 1}));
    array.sort(compareInts);
    const std::array<int, 4> rows[] = {{3, 0, 1, 1}, {3, 2, 1, 2},  {7, 3, 1, 4}, {7, 4, 1, 4}, {5, -1, 1, 3},
                                       {3, 3, 0, 0}, {1, -9, 1, 0}, {7, 5, 0, 0}, {4, 0, 0, 0}};
    for (const auto& [key, start, found, at] : rows) {
        SCOPED_TRACE(testing::Message() << key << " from " << start);
        long index = 77, scanned = 77, halved = 77;
        EXPECT_EQ(array.find(key, index, start), found);
        EXPECT_EQ(index, found ? at : 77);
        EXPECT_EQ(array.contains(key, start), found);
        EXPECT_EQ(array.lfind(key, scanned, compareInts, start), found);
        EXPECT_EQ(scanned, found ? at : -1);
        EXPECT_EQ(array.bsearch(key, halved, compareInts), key != 4);
        EXPECT_TRUE(key == 4 ? halved == -1 : array[halved] == key);
        EXPECT_TRUE(Ints().bsearch(key, halved, compareInts) == 0 && halved == -1);
    }
}

TEST(BryArrayFailure, LeaksNothingAndLeavesTheArrayAsItWas) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    // clang-format off
    const struct { const char* name; bool allOrNothing; void (*run)(Fragiles& a, const Fragiles& other); } rows[] = {
        {"append an array", true, [](auto& a, auto& other) { a.append(other); }},
        {"append itself", true, [](auto& a, auto&) { a.append(a); }},
        {"setAt behind the end", true, [](auto& a, auto&) { a.setAt(40, a[1]); }},
        {"setPhysicalLength", true, [](auto& a, auto&) { a.setPhysicalLength(3); }},
        {"assignment", true, [](auto& a, auto& other) { a = other; }},
        {"insertAt", false, [](auto& a, auto&) { a.insertAt(1, a.last()); }},
        {"removeAt", false, [](auto& a, auto&) { a.removeAt(0); }}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const long live = liveAllocations();
        {
            Fragiles array = arrayOf<Fragiles>(1, 2, 3, 4, 5, 6, 7, 8), other = arrayOf<Fragiles>(9, 10);
            const Fragiles before = array;
            const auto check = [&] {
                EXPECT_GE(array.length(), before.length());
                EXPECT_TRUE(!row.allOrNothing || elementsOf(array) == elementsOf(before));
                if (!row.allOrNothing) array = before;
            };
            EXPECT_GT(failEachAllocation([&] { row.run(array, other); }, check), 0);
        }
        EXPECT_EQ(liveAllocations(), live);
    }
}

TEST(BryMemoryController, MultipliesIn32BitsAndNullsWhatItReleases) {
    using Controller = BryMemoryControllerController;
    const std::array<long, 3> rows[] = {{3, 5, 15}, {0, 8, 0}, {0x40000001, 4, 4}, {-3, -1, 3}};
    for (const auto& [count, size, bytes] : rows) {
        unsigned char* block = Controller::allocateArray(count, static_cast<unsigned>(size));
        std::memset(block, 1, static_cast<std::size_t>(bytes));  // the sanitizer knows how many there are
        Controller::deallocateArray(block);
        EXPECT_EQ(block, nullptr) << count << " x " << size;
        Controller::deallocateArray(block);
    }
    Controller one, other;
    EXPECT_EQ(&(one = other), &one);
}
