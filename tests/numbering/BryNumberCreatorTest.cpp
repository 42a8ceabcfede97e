#include <gtest/gtest.h>
#include <roots/numbering/BryNumberCreator.h>

#include <climits>
#include <string>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

using Type = BryNumberCreator::eNumberingType;
constexpr Type kNumeric = BryNumberCreator::eNumberingNumeric, kOther = Type(1), kNone = Type(0);
constexpr SetCodeTag yes = eCodeSet, no = eCodeNotSet;

StructNumberingDataRange rangeOf(const BryString& firstSymbol, int symbolCount, const BryString& defaultStart) {
    return {0, {}, firstSymbol, symbolCount, defaultStart, {}};
}

struct Creator : BryNumberCreator {
    Creator(const StructNumberingDataRange& range, Type type, const BryString& prefix = {}, const BryString& sufix = {})
        : BryNumberCreator(Type(77), prefix) {
        setNumberingSufix(sufix);
        overrideDataRange(range, type);
    }
    using BryNumberCreator::checkNumber;
};

BryString textOf(const std::string& text) { return text.c_str(); }

}  // namespace

TEST(BryNumberCreator, StepsLikeAnOdometer) {
    // clang-format off
    const struct { BryString first; int count; Type type; BryString value, next; } rows[] = {
        {L"0", 10, kNumeric, L"0199", L"0200"}, {L"0", 10, kNumeric, L"", L"1"}, {L"0", 10, kOther, L"9", L"00"},
        {L"A", 26, kOther, L"Z", L"AA"}, {L"A", 26, kOther, L"AZ", L"BA"}, {L"A", 26, kNumeric, L"Z", L"BA"},
        {L"Axyz", 26, kOther, L"AB", L"AC"}, {L"A", 1, kOther, L"AA", L"AAA"},
        // characters outside the alphabet: below it they step up, behind it they come round and carry
        {L"0", 10, kNumeric, L"1-", L"1."}, {L"0", 10, kNumeric, L"1A", L"28"}, {L"0", 10, kNumeric, L"1/", L"10"},
        // no alphabet: every character moves on by one and carries; below the first symbol it does not
        {L"0", 0, kNumeric, L"19", L"12:"}, {L"0", -7, kOther, L"0", L"01"}, {L"5", 0, kOther, L"00", L"01"},
        // no first symbol: it is character 0, which ends the text
        {L"", 10, kOther, L"\x09", L""}, {L"", 10, kNumeric, L"\x09", L"\x01"}, {L"", 0, kOther, L"", L""},
        // both ends of 16 bits
        {L"\xFFFE", 9, kOther, L"x\xFFFF", L"x"}, {L"\xFFFF", INT_MAX, kOther, L"\x0001", L"\x0002"},
        {L"\xFFFF", 1, kNumeric, L"\xFFFF", L""}, {L"\xFFFF", INT_MIN, kOther, L"\x8000", L"\xFFFF\x8001"}};
    // clang-format on
    for (const auto& row : rows) {
        Creator creator(rangeOf(row.first, row.count, row.value), row.type);
        for (const BryString& number : {row.value, row.next})
            EXPECT_EQ(creator.getNextNumber(), number) << testing::PrintToString(row.value) << " of " << row.count;
    }
}

TEST(BryNumberCreator, PutsPrefixAndSuffixAroundNumbersOfAnyLength) {
    for (std::size_t digits : {1u, 125u, 126u, 127u, 128u, 10000u}) {
        Creator creator(rangeOf(L"0", 10, textOf(std::string(digits, '9'))), kNumeric, L"P", L"S");
        EXPECT_EQ(creator.getNextNumber(), textOf("P" + std::string(digits, '9') + "S")) << digits;
        EXPECT_EQ(creator.getNextNumber(), textOf("P1" + std::string(digits, '0') + "S")) << digits;
    }
    Creator creator(rangeOf(L"0", 10, L"1"), kNumeric, L"P");
    for (int i = 1; i < 120; ++i) ASSERT_EQ(creator.getNextNumber(), textOf("P" + std::to_string(i)));
}

TEST(BryNumberCreator, TellsWhetherASetterChangedAnything) {
    BryNumberCreator c;
    for (const auto& [text, answer] : {std::pair(L"", no), std::pair(L"P", yes), std::pair(L"P", no)})
        EXPECT_TRUE(c.setNumberingPrefix(text) == answer && c.setNumberingSufix(text) == answer) << answer;
    EXPECT_TRUE(c.setNumberingType(kNone) == no && c.setNumberingStart(L"1") == no) << "no alphabet yet";
    EXPECT_EQ(c.overrideDataRange(rangeOf(L"24", 5, L"6"), kNone), no) << "but the range is taken";
    EXPECT_TRUE(c.setNumberingStart(L"3") == yes && c.setNumberingStart(L"3") == yes);
    EXPECT_EQ(c.getNextNumber(), L"PP");
    c.reset();
    EXPECT_EQ(c.getNextNumber(), L"P3P");
    EXPECT_EQ(c.setNumberingType(kNumeric), yes);
    EXPECT_EQ(c.getNumberingStart(), L"24");
    EXPECT_EQ(c.getNextNumber(), L"P24P");
    EXPECT_EQ(c.overrideDataRange(rangeOf(L"2", 5, L"6"), kOther), yes);
    for (const wchar_t* next : {L"P6P", L"P22P"}) EXPECT_EQ(c.getNextNumber(), next);
    EXPECT_TRUE(c.getNumberingType() == kOther && c.getNumberingPrefix() == L"P" && c.getNumberingSufix() == L"P");
}

TEST(BryNumberCreator, AcceptsAStartWhollyInsideTheAlphabet) {
    // clang-format off
    const struct { BryString first; int count; BryString start; int accepted; } rows[] = {
        {L"2", 5, L"", 1}, {L"2", 5, L"26", 1}, {L"2", 5, L"1", 0}, {L"2", 5, L"127", 0}, {L"2", 5, L"321", 0},
        {L"2", 0, L"2", 0}, {L"", 65, L"@A", 0}, {L"", 66, L"@A", 1}, {L"2", INT_MAX, L"\xFFFF", 1}};
    // clang-format on
    for (const auto& row : rows) {
        Creator creator(rangeOf(row.first, row.count, L"old"), kNumeric);
        EXPECT_EQ(creator.checkNumber(row.start), row.accepted) << testing::PrintToString(row.start);
        EXPECT_EQ(creator.setNumberingStart(row.start), row.accepted ? yes : no);
        EXPECT_EQ(creator.getNumberingStart(), row.accepted ? row.start : BryString(L"old"));
    }
}

TEST(BryNumberCreator, ContinuesInACopyWhereTheOriginalIs) {
    Creator creator(rangeOf(L"A", 26, L"AY"), kOther, L"<", L">");
    EXPECT_EQ(creator.getNextNumber(), L"<AY>");
    BryNumberCreator copy(creator), assigned;
    assigned = creator;
    for (BryNumberCreator* c : {&copy, static_cast<BryNumberCreator*>(&creator), &assigned}) {
        for (const wchar_t* next : {L"<AZ>", L"<BA>"}) EXPECT_EQ(c->getNextNumber(), next);
        c->reset();
        EXPECT_EQ(c->getNextNumber(), L"<AY>");
    }
}

TEST(BryNumberCreator, SkipsNoNumberWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    Creator creator(rangeOf(L"0", 10, textOf(std::string(200, '9'))), kNumeric, L"P");
    BryString number;
    EXPECT_GT(failEachAllocation([&] { number = creator.getNextNumber(); }, [] {}), 2);
    EXPECT_EQ(number, textOf("P" + std::string(200, '9')));
}
