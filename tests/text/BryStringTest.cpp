#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/Printers.h"

namespace {

BryString repeated(const BryString& text, int times) {
    std::vector<wchar_t> units;
    for (int i = 0; i < times; ++i) units.insert(units.end(), text.getStringW(), text.getStringW() + text.length());
    units.push_back(0);
    return BryString(units.data());
}

std::string shown(const BryString& a, const BryString& b) {
    return testing::PrintToString(a) + " and " + testing::PrintToString(b);
}

}  // namespace

TEST(BryStringConstruction, TakesNullAsTheEmptyText) {
    const unsigned short* const none = nullptr;
    for (const BryString& empty : {BryString(), BryString(L""), BryString(static_cast<const wchar_t*>(nullptr)),
                                   BryString(none), BryString(static_cast<const char*>(nullptr)), BryString("")}) {
        EXPECT_TRUE(empty.length() == 0 && empty.isEmpty() && empty[0] == 0);
        EXPECT_STREQ(empty.getStringA(), "");
    }
}

// Lengths around every vector and loop size of the text primitives, and around the scratch buffers.
TEST(BryStringConstruction, CopiesAndJoinsTextsOfEveryLength) {
    for (const int n : {1, 7, 8, 9, 16, 17, 31, 33, 64, 65, 129, 1000, 524'286, 524'287, 524'288, 800'000}) {
        SCOPED_TRACE(n);
        const BryString text = repeated(L"k", n), joined = text + L"end";
        EXPECT_TRUE(text.length() == n && text[n] == 0 && !text.isEmpty());
        EXPECT_EQ(std::strlen(text.getStringA()), static_cast<std::size_t>(n));
        EXPECT_EQ(BryString(text.getStringA()), text);
        EXPECT_EQ(BryString(text.getStringWAsUnsignedShort()), text);
        EXPECT_TRUE(joined.length() == n + 3 && joined.left(n) == text && joined.right(3) == L"end");
    }
    BryString text(L"IPE");
    text += L"200";
    EXPECT_EQ(text += text, L"IPE200IPE200");
    EXPECT_TRUE(text + BryString() == text && BryString() + text == text);
}

TEST(BryStringAssignment, AcceptsItsOwnText) {
    BryString text(L"HEA200");
    EXPECT_EQ(text = text.getStringW() + 3, L"200");
    EXPECT_EQ(text = text.getStringWAsUnsignedShort() + 1, L"00");
    EXPECT_EQ(text = text.getStringA() + 1, L"0");
    EXPECT_EQ(text = static_cast<const BryString&>(text), L"0");
    EXPECT_EQ(text = text.getStringW(), L"0");
    EXPECT_TRUE((text = static_cast<const wchar_t*>(nullptr)).isEmpty());
}

TEST(BryStringMove, HandsTheTextOnAndLeavesTheEmptyOne) {
    BryString from(L"IPE"), to(L"old");
    from.getStringA();
    to = std::move(from);
    EXPECT_STREQ(to.getStringA(), "IPE");
    BryString made(std::move(to));
    EXPECT_TRUE(made == L"IPE" && from.isEmpty() && to.isEmpty());
    EXPECT_EQ(to = L"again", L"again");
}

TEST(BryStringComparison, OrdersByUnsignedUnits) {
    const std::tuple<BryString, BryString, int> rows[] = {
        {L"", L"", 0},        {L"", L"a", -1},        {L"a", L"ab", -1},          {L"ab", L"a", 1},
        {L"abc", L"abd", -1}, {L"Z", L"a", -1},       {L"HEA200", L"HEA200", 0},  {L"\xFFFF", L"a", 1},
        {L"aZ", L"aa", -1},   {L"a\xFFFF", L"ab", 1}, {L"\x7FFF", L"\x8000", -1}, {L"\x0100", L"\x00FF", 1}};
    for (const auto& [a, b, order] : rows) {
        SCOPED_TRACE(shown(a, b));
        EXPECT_EQ(BryString::compare(a, b), order);
        EXPECT_EQ(BryString::compare(b, a), -order);
        EXPECT_EQ(BryString::strCompare(&a, &b), order);
        EXPECT_TRUE((a < b) == (order < 0) && (a > b) == (order > 0));
        EXPECT_TRUE((a == b) == (order == 0) && (a != b) == (order != 0));
        EXPECT_TRUE(BryString::strCompare(nullptr, &a) == 0 && BryString::strCompare(&b, nullptr) == 0);
    }
}

TEST(BryStringComparison, StopsAfterNUnitsAndLeavesOutCaseOnRequest) {
    using Compare = int (*)(const BryString&, const BryString&, int);
    const Compare exact = BryString::compare, noCase = BryString::compareNoCase;
    const Compare whole = [](const BryString& a, const BryString& b, int) { return BryString::compareNoCase(a, b); };
    // clang-format off
    const std::tuple<Compare, BryString, BryString, int, int> rows[] = {
        {exact, L"abcX", L"abcY", 3, 0}, {exact, L"abcX", L"abcY", 4, -1}, {exact, L"abcX", L"abcY", 99, -1},
        {exact, L"a", L"b", 0, 0}, {exact, L"abcX", L"abcXmore", 4, 0}, {noCase, L"IPEx", L"ipeY", 3, 0},
        {noCase, L"IPEx", L"ipeY", 4, -1}, {noCase, L"a", L"b", -1, -1}, {exact, L"abcX", L"abcY", -1, -1}, {whole, L"hea200B", L"HEA200b", 0, 0},
        {whole, L"A", L"b", 0, -1}, {whole, L"B", L"a", 0, 1},
        // letters count as small ones; the C locale has A to Z only
        {whole, L"_", L"B", 0, -1}, {whole, L"\xE4", L"\xC4", 0, 1}};
    // clang-format on
    for (const auto& [compare, a, b, n, order] : rows) {
        const int result = compare(a, b, n);
        EXPECT_EQ((result > 0) - (result < 0), order) << shown(a, b) << ", " << n;
    }
}

TEST(BryStringAnsiForm, IsKeptUntilTheTextChanges) {
    BryString text(L"B\xE4nder \x4E00");
    const char* const ansi = text.getStringA();
    EXPECT_STREQ(ansi, "B\xE4nder ?");
    EXPECT_EQ(text.getStringA(), ansi);
    const BryString copy(text);
    EXPECT_NE(copy.getStringA(), ansi) << "each string has its own";
    EXPECT_EQ((text = copy).getStringA(), ansi) << "the body is the same";
    EXPECT_EQ((text = text.left(99)).getStringA(), ansi) << "so it is here";
    EXPECT_STREQ((text = L"Blech").getStringA(), "Blech");
}

TEST(BryStringFind, GivesTheFirstPositionAtOrBehindStart) {
    // clang-format off
    const std::tuple<BryString, BryString, int, int> rows[] = {
        {L"abcabc", L"c", 0, 2}, {L"abcabc", L"c", 3, 5}, {L"abcabc", L"abc", 1, 3}, {L"abcabc", L"abcabc", 0, 0},
        {L"abc", L"abcd", 0, -1}, {L"abc", L"", 0, 0}, {L"abc", L"", 2, 2}, {L"abc", L"", 3, -1},
        {L"abc", L"a", -1, -1}, {L"abc", L"c", 3, -1}, {L"", L"", 0, -1}, {L"abababac", L"abac", 0, 4},
        {L"\x0161", L"\x6101", 0, -1}};
    // clang-format on
    for (const auto& [text, sub, start, expected] : rows)
        EXPECT_EQ(text.find(sub, start), expected) << shown(text, sub) << " from " << start;
}

// The needle's odd unit in each place, and texts made to defeat a search that starts over at each candidate.
TEST(BryStringFind, IsLinearInPeriodicTexts) {
    const int half = 200'000;
    const BryString as = repeated(L"a", half), periodic = repeated(L"ab", half / 2);
    EXPECT_EQ((as + as).find(as + L"b" + as), -1);
    EXPECT_EQ((as + as + L"b").find(as + L"b"), half);
    EXPECT_EQ((as + as).find(BryString(L"b") + as), -1);
    EXPECT_EQ((as + L"c" + as + L"b" + as).find(as + L"b" + as), half + 1);
    EXPECT_EQ((periodic + L"c" + periodic + periodic + L"c").find(periodic + L"bc"), -1);
    EXPECT_EQ((periodic + periodic + L"c").find(periodic + L"c"), half);
}

TEST(BryStringFindLastOf, LooksForOneCharacter) {
    const BryString text(L"b\xE4nana");
    EXPECT_TRUE(text.find_last_of(L'a') == 5 && text.find_last_of(static_cast<unsigned short>('b')) == 0);
    EXPECT_TRUE(text.find_last_of('n') == 4 && text.find_last_of('\xE4') == 1 && text.find_last_of('x') == -1);
    EXPECT_EQ(text.find_last_of(L'\0'), -1) << "the terminator is no part of the text";
    EXPECT_EQ(BryString().find_last_of(L'a'), -1);
}

TEST(BryStringClassification, TestsEveryUnit) {
    const std::tuple<BryString, bool, bool, bool> rows[] = {
        {L"", true, true, true},       {L"abcXYZ", true, true, false}, {L"0123456789", true, false, true},
        {L"12a", true, false, false},  {L"-1", false, false, false},   {L"\xC4\x0416\x4E00", true, true, false},
        {L"a b", false, false, false}, {L"\x00B2", true, false, true}};
    for (const auto& [text, alphaNumeric, alphabetic, numeric] : rows) {
        EXPECT_EQ(text.IsAlphaNumeric(), alphaNumeric) << testing::PrintToString(text);
        EXPECT_TRUE(text.IsAlphabetic() == alphabetic && text.IsNumeric() == numeric) << testing::PrintToString(text);
    }
}

TEST(BryStringNumbers, ReadsWhatTheTextBeginsWith) {
    // clang-format off
    const std::tuple<BryString, int, double> rows[] = {
        {L"12abc", 12, 12}, {L"x", 0, 0}, {L"", 0, 0}, {L"  \t-42", -42, -42}, {L"+7.5e2x", 7, 750},
        {L"99999999999", 2147483647, 99999999999.0}, {L"-99999999999", -2147483647 - 1, -99999999999.0}};
    // clang-format on
    for (const auto& [text, integer, real] : rows) {
        EXPECT_TRUE(text.toInteger() == integer && text.toIntPtr() == integer) << testing::PrintToString(text);
        EXPECT_TRUE(text.toLong() == integer && text.toDouble() == real) << testing::PrintToString(text);
    }
}
