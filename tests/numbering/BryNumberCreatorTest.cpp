#include <gtest/gtest.h>
#include <roots/numbering/BryNumberCreator.h>

#include <climits>
#include <string>
#include <vector>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

using Type = BryNumberCreator::eNumberingType;
constexpr Type kNumeric = BryNumberCreator::eNumberingNumeric;
constexpr Type kOther = static_cast<Type>(1);
constexpr Type kNone = static_cast<Type>(0);

StructNumberingDataRange rangeOf(const BryString& firstSymbol, int symbolCount, const BryString& defaultStart) {
    StructNumberingDataRange range;
    range.firstSymbol = firstSymbol;
    range.symbolCount = symbolCount;
    range.defaultStart = defaultStart;
    return range;
}

BryNumberCreator creatorOf(const BryString& firstSymbol, int symbolCount, Type type, const BryString& start) {
    BryNumberCreator creator(static_cast<Type>(77), L"");
    creator.overrideDataRange(rangeOf(firstSymbol, symbolCount, start), type);
    return creator;
}

struct Checking : BryNumberCreator {
    using BryNumberCreator::checkNumber;
};

}  // namespace

TEST(BryNumberCreator, StepsLikeAnOdometer) {
    const struct { BryString first; int count; Type type; BryString value, next; } rows[] = {
        {L"0", 10, kNumeric, L"1", L"2"},      {L"0", 10, kNumeric, L"9", L"10"},   {L"0", 10, kNumeric, L"99", L"100"},
        {L"0", 10, kNumeric, L"0199", L"0200"}, {L"0", 10, kNumeric, L"", L"1"},     {L"0", 10, kOther, L"9", L"00"},
        {L"0", 10, kOther, L"", L"0"},         {L"A", 26, kOther, L"Z", L"AA"},     {L"A", 26, kOther, L"AZ", L"BA"},
        {L"A", 26, kNumeric, L"Z", L"BA"},     {L"Axyz", 26, kOther, L"AB", L"AC"}, {L"A", 1, kOther, L"AA", L"AAA"},
        // characters outside the alphabet: below it they step up, behind it they come round and carry
        {L"0", 10, kNumeric, L"1-", L"1."},    {L"0", 10, kNumeric, L"1A", L"28"},  {L"0", 10, kNumeric, L"1/", L"10"},
        // no alphabet: every character moves on by one and carries; below the first symbol it does not
        {L"0", 0, kNumeric, L"19", L"12:"},    {L"0", -7, kOther, L"0", L"01"},     {L"5", 0, kOther, L"00", L"01"},
        // no first symbol: it is character 0, which ends the text
        {L"", 10, kOther, L"\x09", L""},       {L"", 10, kNumeric, L"\x09", L"\x01"}, {L"", 0, kOther, L"", L""},
        // both ends of 16 bits
        {L"\xFFFE", 9, kOther, L"x\xFFFF", L"x"}, {L"\xFFFF", INT_MAX, kOther, L"\x0001", L"\x0002"},
        {L"\xFFFF", 1, kNumeric, L"\xFFFF", L""}, {L"\xFFFF", INT_MIN, kOther, L"\x8000", L"\xFFFF\x8001"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.first) << ", " << row.count << ", " << row.type);
        BryNumberCreator creator = creatorOf(row.first, row.count, row.type, row.value);
        EXPECT_EQ(creator.getNextNumber(), row.value);
        EXPECT_EQ(creator.getNextNumber(), row.next);
    }
}

TEST(BryNumberCreator, CarriesThroughNumbersOfAnyLength) {
    for (std::size_t digits : {1u, 125u, 126u, 127u, 128u, 10000u}) {
        BryNumberCreator creator = creatorOf(L"0", 10, kNumeric, std::string(digits, '9').c_str());
        creator.setNumberingPrefix(L"P");
        creator.setNumberingSufix(L"S");
        EXPECT_EQ(creator.getNextNumber(), BryString(("P" + std::string(digits, '9') + "S").c_str())) << digits;
        EXPECT_EQ(creator.getNextNumber(), BryString(("P1" + std::string(digits, '0') + "S").c_str())) << digits;
    }
}

TEST(BryNumberCreator, PutsPrefixAndSuffixAroundTheRunningValue) {
    BryNumberCreator creator(kNone, L"P");
    EXPECT_EQ(creator.overrideDataRange(rangeOf(L"0", 10, L"1"), kNumeric), eCodeSet);
    EXPECT_EQ(creator.setNumberingSufix(L"S"), eCodeSet);
    for (int i = 1; i < 120; ++i)
        ASSERT_EQ(creator.getNextNumber(), BryString(("P" + std::to_string(i) + "S").c_str()));
    creator.reset();
    EXPECT_EQ(creator.getNextNumber(), L"P1S");
}

TEST(BryNumberCreator, TellsWhetherASetterChangedAnything) {
    BryNumberCreator creator;
    EXPECT_EQ(creator.getNumberingType(), 0);
    EXPECT_EQ(creator.setNumberingPrefix(L""), eCodeNotSet);
    EXPECT_EQ(creator.setNumberingPrefix(L"P"), eCodeSet);
    EXPECT_EQ(creator.setNumberingPrefix(L"P"), eCodeNotSet);
    EXPECT_EQ(creator.setNumberingSufix(L""), eCodeNotSet);
    EXPECT_EQ(creator.setNumberingSufix(L"S"), eCodeSet);
    EXPECT_EQ(creator.setNumberingSufix(L"S"), eCodeNotSet);
    EXPECT_EQ(creator.setNumberingType(kNone), eCodeNotSet);
    EXPECT_EQ(creator.setNumberingStart(L"1"), eCodeNotSet);  // no alphabet yet
    EXPECT_EQ(creator.overrideDataRange(rangeOf(L"24", 5, L"6"), kNone), eCodeNotSet);
    EXPECT_EQ(creator.getNumberingStart(), L"");
    EXPECT_EQ(creator.setNumberingStart(L"3"), eCodeSet);  // the alphabet was taken nevertheless
    EXPECT_EQ(creator.setNumberingStart(L"3"), eCodeSet);
    EXPECT_EQ(creator.getNextNumber(), L"PS");
    creator.reset();
    EXPECT_EQ(creator.getNextNumber(), L"P3S");
    EXPECT_EQ(creator.setNumberingType(kNumeric), eCodeSet);
    EXPECT_EQ(creator.getNumberingStart(), L"24");
    EXPECT_EQ(creator.getNextNumber(), L"P24S");
    EXPECT_EQ(creator.overrideDataRange(rangeOf(L"2", 5, L"6"), kOther), eCodeSet);
    EXPECT_EQ(creator.getNumberingType(), kOther);
    EXPECT_EQ(creator.getNumberingPrefix(), L"P");
    EXPECT_EQ(creator.getNumberingSufix(), L"S");
    EXPECT_EQ(creator.getNextNumber(), L"P6S");
    EXPECT_EQ(creator.getNextNumber(), L"P22S");
}

TEST(BryNumberCreator, AcceptsAStartWhollyInsideTheAlphabet) {
    const struct { BryString first; int count; BryString start; int accepted; } rows[] = {
        {L"2", 5, L"", 1},    {L"2", 5, L"26", 1}, {L"2", 5, L"1", 0}, {L"2", 5, L"7", 0}, {L"2", 5, L"127", 0},
        {L"2", 5, L"321", 0}, {L"2", 0, L"2", 0},  {L"2", -1, L"", 1}, {L"", 65, L"@A", 0}, {L"", 66, L"@A", 1},
        {L"2", INT_MAX, L"\xFFFF", 1},
    };
    for (const auto& row : rows) {
        Checking creator;
        creator.overrideDataRange(rangeOf(row.first, row.count, L"old"), kNumeric);
        EXPECT_EQ(creator.checkNumber(row.start), row.accepted) << testing::PrintToString(row.start);
        EXPECT_EQ(creator.setNumberingStart(row.start), row.accepted ? eCodeSet : eCodeNotSet);
        EXPECT_EQ(creator.getNumberingStart(), row.accepted ? row.start : BryString(L"old"));
    }
}

TEST(BryNumberCreator, ContinuesInACopyWhereTheOriginalIs) {
    BryNumberCreator creator = creatorOf(L"A", 26, kOther, L"AY"), assigned;
    creator.setNumberingPrefix(L"<");
    creator.setNumberingSufix(L">");
    creator.getNextNumber();
    BryNumberCreator copy(creator);
    assigned = creator;
    assigned = static_cast<const BryNumberCreator&>(assigned);
    for (BryNumberCreator* c : {&creator, &copy, &assigned}) {
        EXPECT_EQ(c->getNextNumber(), L"<AZ>");
        EXPECT_EQ(c->getNextNumber(), L"<BA>");
        c->reset();
        EXPECT_EQ(c->getNextNumber(), L"<AY>");
        EXPECT_EQ(c->getNumberingType(), kOther);
    }
}

TEST(BryNumberCreator, SkipsNoNumberWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    BryNumberCreator creator = creatorOf(L"0", 10, kNumeric, std::string(200, '9').c_str());
    creator.setNumberingPrefix(L"P");
    BryString number;
    EXPECT_GT(failEachAllocation([&] { number = creator.getNextNumber(); }, [] {}), 2);
    EXPECT_EQ(number, BryString(("P" + std::string(200, '9')).c_str()));
}
