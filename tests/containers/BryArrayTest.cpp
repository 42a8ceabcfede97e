#include <gtest/gtest.h>
#include <roots/containers/BryArray.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "tests/support/FailNthAllocation.h"

namespace {

using Doubles = BryArray<double, BryArrayMemCopyReallocator<double>, BryArrayMemoryController<double>>;
using Texts = BryArray<std::string>;

template <class Array, class T>
Array arrayOf(std::initializer_list<T> values) {
    Array array;
    for (const T& value : values) array.append(value);
    return array;
}

Doubles doublesUpTo(long count) {
    Doubles array;
    for (long i = 0; i < count; ++i) array.append(static_cast<double>(i));
    return array;
}

template <class T, class R>
std::vector<T> elementsOf(const BryArray<T, R>& array) {
    std::vector<T> elements;
    for (long i = 0; i < array.length(); ++i) elements.push_back(array[i]);
    return elements;
}

int compareDoubles(const void* a, const void* b) {
    const double x = *static_cast<const double*>(a), y = *static_cast<const double*>(b);
    return x < y ? -1 : x > y;
}

// An element that allocates whenever it is made or assigned, so that each of these can be made to fail.
struct Fragile {
    Fragile() : text("an empty one, too long to be kept in place") {}
    Fragile(int number) : text(std::to_string(number) + " in a text too long to be kept in place") {}
    Fragile(const Fragile& other) : text(other.text.c_str()) {}
    Fragile& operator=(const Fragile& other) {
        text = Fragile(other).text;
        return *this;
    }
    bool operator==(const Fragile& other) const { return text == other.text; }
    std::string text;
};

using Fragiles = BryArray<Fragile>;

const struct Change {
    const char* name;
    bool allOrNothing;
    void (*run)(Fragiles& array, const Fragiles& other);
} kChanges[] = {
    {"append", true, [](Fragiles& a, const Fragiles&) { a.append(a[0]); }},
    {"append an array", true, [](Fragiles& a, const Fragiles& o) { a.append(o); }},
    {"append itself", true, [](Fragiles& a, const Fragiles&) { a.append(a); }},
    {"setAt behind the end", true, [](Fragiles& a, const Fragiles&) { a.setAt(40, a[1]); }},
    {"setPhysicalLength up", true, [](Fragiles& a, const Fragiles&) { a.setPhysicalLength(17); }},
    {"setPhysicalLength down", true, [](Fragiles& a, const Fragiles&) { a.setPhysicalLength(3); }},
    {"setLogicalLength", true, [](Fragiles& a, const Fragiles&) { a.setLogicalLength(9); }},
    {"assignment", true, [](Fragiles& a, const Fragiles& o) { a = o; }},
    {"copy", true, [](Fragiles&, const Fragiles& o) { Fragiles copy(o); }},
    {"insertAt", false, [](Fragiles& a, const Fragiles&) { a.insertAt(1, a.last()); }},
    {"removeAt", false, [](Fragiles& a, const Fragiles&) { a.removeAt(0); }},
    {"setAll", false, [](Fragiles& a, const Fragiles&) { a.setAll(a[2]); }},
    {"reverse", false, [](Fragiles& a, const Fragiles&) { a.reverse(); }},
};

Fragiles fullArray(int firstValue, long growLength) {
    Fragiles array(0, growLength);
    for (int i = 0; i < growLength; ++i) array.append(Fragile(firstValue + i));
    return array;
}

}  // namespace

TEST(BryArrayGrowth, RaisesThePhysicalLengthInGrowLengthSteps) {
    const struct { long physical, grow, hold, expected; } rows[] = {
        {0, 8, 1, 8}, {0, 8, 8, 8}, {0, 8, 9, 16}, {0, 8, 17, 24}, {0, 8, 11, 16}, {5, 8, 5, 5}, {5, 8, 6, 8},
        {4, 3, 5, 6}, {0, 0, 1, 8}, {0, -3, 9, 16}, {0, 1000, 1, 1000}, {-3, 8, 1, 8},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.hold << " into " << row.physical << " growing by " << row.grow);
        Doubles array(row.physical, row.grow);
        EXPECT_EQ(array.physicalLength(), row.physical);
        EXPECT_EQ(array.growLength(), row.grow == 0 ? 8 : row.grow);
        array.setLogicalLength(row.hold);
        EXPECT_EQ(array.physicalLength(), row.expected);
        EXPECT_EQ(array.logicalLength(), row.hold);
    }
    Doubles array = doublesUpTo(8);
    EXPECT_EQ(array.setGrowLength(0).growLength(), 0);
    EXPECT_EQ(array.append(1), 8);
    EXPECT_EQ(array.physicalLength(), 16);
}

TEST(BryArrayGrowth, ChangesStorageOnlyBeyondAQuarter) {
    const struct { long physical, logical, request, newPhysical, newLogical; } rows[] = {
        {8, 8, 7, 8, 8}, {8, 8, 6, 6, 6},  {8, 8, 0, 0, 0},   {8, 3, 6, 6, 3}, {8, 8, -1, 8, 8},
        {8, 8, 8, 8, 8}, {8, 8, 9, 9, 8},  {4, 4, 3, 3, 3},   {1, 1, 0, 0, 0}, {0, 0, 0, 0, 0},
        {5, 5, 4, 5, 5}, {5, 5, 3, 3, 3},  {0, 0, 3, 3, 0},   {0, 0, -1, 0, 0}, {-3, 0, 0, -3, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.request << " on " << row.physical);
        Doubles array(row.physical);
        for (long i = 0; i < row.logical; ++i) array.append(static_cast<double>(i + 1));
        array.setPhysicalLength(row.request);
        EXPECT_EQ(array.physicalLength(), row.newPhysical);
        ASSERT_EQ(array.length(), row.newLogical);
        for (long i = 0; i < row.newLogical; ++i) EXPECT_EQ(array[i], static_cast<double>(i + 1));
    }
}

TEST(BryArrayGrowth, RefusesWhatDoesNotFit32BitsAndStaysAsItWas) {
    struct Kilobyte { char bytes[1024]; };
    using Big = BryArray<Kilobyte>;
    const struct { const char* what; void (*run)(Big& array); } rows[] = {
        {"2^22 slots of 2^10 bytes", [](Big& a) { a.setPhysicalLength(1L << 22); }},
        {"one slot more: the product would wrap to 1024", [](Big& a) { a.setPhysicalLength((1L << 22) + 1); }},
        {"the longest length", [](Big& a) { a.setLogicalLength(INT_MAX); }},
        {"bytes, rounded up past the longest length",
         [](Big&) { BryArray<char>(0, INT_MAX - 1).setLogicalLength(INT_MAX); }},
        {"an enormous grow length", [](Big& a) { a.setGrowLength(LONG_MAX).setLogicalLength(9); }},
        {"the last position", [](Big& a) { a.setAt(LONG_MAX, Kilobyte{}); }},
        {"a new array", [](Big&) { Big b(LONG_MAX); }},
    };
    for (const auto& row : rows) {
        Big array(1);
        array.setAt(0, Kilobyte{{'x'}});
        EXPECT_THROW(row.run(array), std::bad_alloc) << row.what;
        EXPECT_EQ(array.length(), 1) << row.what;
        EXPECT_EQ(array.physicalLength(), 1) << row.what;
        EXPECT_EQ(array[0].bytes[0], 'x') << row.what;
    }
}

TEST(BryArraySlots, AreZeroOrDefaultUntilUsedAndKeepTheirValuesBehindTheEnd) {
    struct Half { int unset; int set; Half() : set(7) {} };
    BryArray<Half> halves(64);
    for (long i = 0; i < 64; ++i) EXPECT_TRUE(halves[i].unset == 0 && halves[i].set == 7) << i;

    BryArray<wchar_t> units;
    units.setAt(10, L'x');
    EXPECT_EQ(units.physicalLength(), 16);
    for (long i = 0; i < 16; ++i) EXPECT_EQ(units[i], i == 10 ? L'x' : 0) << i;

    Texts texts = arrayOf<Texts, std::string>({"a", "b", "c", "d", "e"});
    texts.setLogicalLength(2).setLogicalLength(5);
    EXPECT_EQ(elementsOf(texts), (std::vector<std::string>{"a", "b", "c", "d", "e"}));
    texts.removeAt(1);
    EXPECT_EQ(texts[4], "e");  // the slot behind the end
    texts.removeLast().removeFirst();
    texts.setLogicalLength(5);
    EXPECT_EQ(elementsOf(texts), (std::vector<std::string>{"c", "d", "d", "e", "e"}));
    texts.setLogicalLength(1).setAt(3, "z");
    EXPECT_EQ(elementsOf(texts), (std::vector<std::string>{"c", "d", "d", "z"}));
}

TEST(BryArray, BehavesLikeAVectorUnderAnyMixOfChanges) {
    std::mt19937 random(20090203);
    const auto below = [&](long limit) { return static_cast<long>(random() % static_cast<unsigned long>(limit)); };
    Texts array(0, 3);
    std::vector<std::string> model;
    for (int round = 0; round < 4000; ++round) {
        const long n = static_cast<long>(model.size()), i = below(n + 1), j = n > 0 ? below(n) : 0;
        // Half of the values are elements of the array itself.
        const std::string value = n > 0 && below(2) ? model[static_cast<std::size_t>(j)] : std::to_string(below(9));
        const std::string& given = n > 0 && array[j] == value ? array[j] : value;
        const auto at = model.begin() + i;
        switch (below(n > 60 ? 12 : 8)) {  // removes more often once there is much to remove
            case 0: ASSERT_EQ(array.append(given), n); model.push_back(value); break;
            case 1: array.insertAt(i, given), model.insert(at, value); break;
            case 2: array.setAt(i, given), at == model.end() ? model.push_back(value) : void(*at = value); break;
            case 3: if (n > 0) array.swap(j, n - 1), std::swap(model[static_cast<std::size_t>(j)], model.back()); break;
            case 4: array.reverse(), std::reverse(model.begin(), model.end()); break;
            case 5: array = Texts(array), array = static_cast<const Texts&>(array); break;
            case 6:
                if (n > 40) break;
                array.append(array), model.resize(model.size() * 2), std::copy_n(model.begin(), n, model.begin() + n);
                break;
            case 7: {
                const auto found = std::find(at, model.end(), value);
                EXPECT_EQ(array.remove(given, i), found != model.end());
                if (found != model.end()) model.erase(found);
                break;
            }
            default: array.removeAt(j), model.erase(model.begin() + j); break;
        }
        ASSERT_EQ(elementsOf(array), model) << "round " << round;
        ASSERT_EQ(array.isEmpty() != 0, model.empty());
    }
    array.setAll(array[1]);
    EXPECT_EQ(elementsOf(array), std::vector<std::string>(model.size(), model[1]));
}

TEST(BryArray, CopiesItsLengthsAlongWithItsElements) {
    for (long physical : {0L, 5L, 40L}) {
        Texts source(physical, 3), target = arrayOf<Texts, std::string>({"old"});
        source.setGrowLength(-2);
        for (long i = 0; i < physical - 1; ++i) source.append(std::to_string(i));
        Texts copy(source);
        target = source;
        for (const Texts* a : {&copy, &target}) {
            EXPECT_EQ(a->physicalLength(), physical);
            EXPECT_EQ(a->growLength(), -2);
            EXPECT_EQ(elementsOf(*a), elementsOf(source));
        }
    }
}

TEST(BryArray, LeavesAnEmptyArrayAloneWhereThereIsNothingToDo) {
    Texts array;
    array.removeAt(0).removeFirst().removeLast().reverse().setAll("x").append(array);
    array.setAt(-1, "x");
    array.sort([](const void*, const void*) { return 0; });
    EXPECT_EQ(array.length(), 0);
    EXPECT_EQ(array.physicalLength(), 0);
    array.append("a");
    array.setAt(-1, "x");
    EXPECT_EQ(elementsOf(array), std::vector<std::string>{"a"});
}

TEST(BryArraySearch, AnswersPositionsOfTheWholeArray) {
    const Doubles array = arrayOf<Doubles, double>({1, 3, 3, 5, 7});
    const struct { double key; long start; int found; long index; } rows[] = {
        {3, 0, 1, 1},  {3, 2, 1, 2}, {7, 3, 1, 4}, {7, 4, 1, 4}, {3, 3, 0, -1},
        {4, 0, 0, -1}, {7, 5, 0, -1}, {1, -9, 1, 0}, {7, 99, 0, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.key << " from " << row.start);
        long found = 77, scanned = 77;
        EXPECT_EQ(array.find(row.key, found, row.start), row.found);
        EXPECT_EQ(found, row.found ? row.index : 77);
        EXPECT_EQ(array.contains(row.key, row.start), row.found);
        EXPECT_EQ(array.lfind(row.key, scanned, compareDoubles, row.start), row.found);
        EXPECT_EQ(scanned, row.index);
    }
    long index = 77;
    EXPECT_EQ(array.bsearch(5, index, compareDoubles), 1);
    EXPECT_EQ(index, 3);
    EXPECT_EQ(array.bsearch(4, index, compareDoubles), 0);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(Doubles().bsearch(4, index = 77, compareDoubles), 0);
    EXPECT_EQ(index, -1);
}

TEST(BryArraySort, OrdersAllOrOneRange) {
    Doubles array = arrayOf<Doubles, double>({5, 4, 3, 2, 1, 0});
    array.sort(1, 3, compareDoubles);
    EXPECT_EQ(elementsOf(array), (std::vector<double>{5, 2, 3, 4, 1, 0}));
    array.sort(4, 3, compareDoubles);  // an empty range
    EXPECT_EQ(elementsOf(array), (std::vector<double>{5, 2, 3, 4, 1, 0}));
    array.sort(compareDoubles);
    EXPECT_EQ(elementsOf(array), (std::vector<double>{0, 1, 2, 3, 4, 5}));
}

TEST(BryArrayFailure, LeaksNothingAndLeavesTheArrayAsItWas) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.name);
        const long live = liveAllocations();
        {
            Fragiles array = fullArray(1, 5);
            const Fragiles before = array, other = fullArray(50, 6);
            const long failures = failEachAllocation([&] { change.run(array, other); }, [&] {
                EXPECT_GE(array.length(), before.length());
                EXPECT_TRUE(!change.allOrNothing || elementsOf(array) == elementsOf(before));
                if (!change.allOrNothing) array = before;
            });
            EXPECT_GT(failures, 0);
        }
        EXPECT_EQ(liveAllocations(), live);
    }
}
