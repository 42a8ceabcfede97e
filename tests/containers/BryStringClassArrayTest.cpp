#include <gtest/gtest.h>
#include <roots/containers/BryStringClassArray.h>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

using Array = BryStringClassArray;

BryString joined(const Array& array) {
    BryString text;
    for (long i = 0; i < array.length(); ++i) text += array[i] + L" ";
    return text;
}

Array arrayOf(const char* letters) {
    Array array;
    for (; *letters; ++letters) array.append(BryString().format("%c", *letters));
    return array;
}

int failingCompare(const void* a, const void* b) {
    static int calls = 0;
    if (++calls % 5 == 0) throw calls;
    return BryString::strCompare(a, b);
}

}  // namespace

TEST(BryStringClassArray, ChangesAsTheArrayItHolds) {
    // clang-format off
    const struct { const char* what; void (*change)(Array& a); const wchar_t* result; } rows[] = {
        {"setAt", [](auto& a) { a.setAt(4, L"x").setAt(0, L"y"); }, L"y a c b x "},
        {"setAll", [](auto& a) { a.setAll(a[2]); }, L"c c c c "},
        {"append", [](auto& a) { EXPECT_EQ(a.append(a[0]), 4); }, L"b a c b b "},
        {"append all", [](auto& a) { a.append(Array()).append(a); }, L"b a c b b a c b "},
        {"insertAt", [](auto& a) { a.insertAt(4, L"y").insertAt(0, a.last()); }, L"y b a c b y "},
        {"removeAt", [](auto& a) { a.removeAt(1).removeFirst(); }, L"c b "},
        {"removeLast", [](auto& a) { a.removeLast().removeLast(); }, L"b a "},
        {"remove", [](auto& a) { EXPECT_TRUE(a.remove(L"b", 1) && !a.remove(L"B") && !a.remove(L"b", 1)); }, L"b a c "},
        {"setLogicalLength", [](auto& a) { a.setLogicalLength(1).setLogicalLength(2); }, L"b a "},
        {"setPhysicalLength", [](auto& a) { EXPECT_EQ(a.setPhysicalLength(2).physicalLength(), 2); }, L"b a "},
        {"setGrowLength", [](auto& a) { EXPECT_EQ(a.setGrowLength(5).setAt(8, L"x").physicalLength(), 10); },
         L"b a c b     x "},
        {"sort", [](auto& a) { a.sort(BryString::strCompare); }, L"a b b c "},
        {"sort a part", [](auto& a) { a.sort(1, 3, BryString::strCompare); }, L"b a b c "},
        {"swap", [](auto& a) { a.swap(0, 2).first() = L"x"; }, L"x a b b "},
        {"reverse", [](auto& a) { a.reverse(); }, L"b c a b "}};
    // clang-format on
    for (const auto& row : rows) {
        Array array = arrayOf("bacb"), other;
        (other = array) = *&other;
        row.change(array);
        EXPECT_EQ(joined(array), row.result) << row.what;
        EXPECT_EQ(joined(other), L"b a c b ") << row.what << " reached a copy";
        EXPECT_EQ(other[1].getStringW(), Array(other).at(1).getStringW()) << "strings share their bodies";
    }
    const Array empty;
    EXPECT_TRUE(empty.isEmpty() && empty.logicalLength() == 0 && empty.physicalLength() == 0);
    EXPECT_EQ(empty.growLength(), 8);
}

TEST(BryStringClassArray, TellsWhereAStringStands) {
    const Array array = arrayOf("aabbc");
    // clang-format off
    const struct { const wchar_t* text; long start; int found; long index; } rows[] = {
        {L"a", 0, 1, 0}, {L"a", 1, 1, 1}, {L"a", 2, 0, 0}, {L"c", 4, 1, 4}, {L"c", 5, 0, 0}, {L"B", 0, 0, 0}};
    // clang-format on
    for (const auto& row : rows) {
        long found = 77, scanned = 77;
        EXPECT_EQ(array.find(row.text, found, row.start), row.found) << row.text << row.start;
        EXPECT_EQ(array.contains(row.text, row.start), row.found);
        EXPECT_EQ(array.lfind(row.text, scanned, BryString::strCompare, row.start), row.found);
        EXPECT_TRUE(found == (row.found ? row.index : 77) && scanned == (row.found ? row.index : -1)) << found;
    }
    long index = 77;
    for (long i = 0; i < array.length(); ++i)
        EXPECT_TRUE(array.bsearch(array[i], index, BryString::strCompare) && array[index] == array[i]) << i;
    EXPECT_TRUE(!array.bsearch(L"ab", index, BryString::strCompare) && index == -1);
}

TEST(BryStringClassArray, CanBeDestroyedWhateverFailed) {
    Array array = arrayOf("edcba");
    for (int i = 0; i < 4; ++i) EXPECT_THROW(array.sort(failingCompare), int);
    array.sort(BryString::strCompare);
    EXPECT_EQ(joined(array), L"a b c d e ") << "a comparison that throws loses no string";
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    const long live = liveAllocations();
    EXPECT_GT(failEachAllocation(
                  [&] {
                      Array copy(array), other(3);
                      (other = copy).setAt(40, L"x");
                  },
                  [] {}),
              6);
    EXPECT_EQ(liveAllocations(), live);
}
