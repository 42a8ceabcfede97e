#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/support/Printers.h"

namespace {

BryString repeated(const BryString& text, int times) {
    std::vector<wchar_t> units;
    for (int i = 0; i < times; ++i) units.insert(units.end(), text.getStringW(), text.getStringW() + text.length());
    units.push_back(0);
    return BryString(units.data());
}

// Lengths around every vector and loop size of the text primitives.
const int kLengths[] = {1, 7, 8, 9, 15, 16, 17, 31, 32, 33, 40, 63, 64, 65, 127, 128, 129, 1000, 5000};

}  // namespace

TEST(BryStringConstruction, TakesNullAsTheEmptyText) {
    const BryString rows[] = {BryString(),
                              BryString(L""),
                              BryString(static_cast<const wchar_t*>(nullptr)),
                              BryString(static_cast<const unsigned short*>(nullptr)),
                              BryString(static_cast<const char*>(nullptr)),
                              BryString("")};
    for (const BryString& row : rows) {
        EXPECT_STREQ(row.getStringA(), "");
        EXPECT_EQ(row.length(), 0);
        EXPECT_TRUE(row.isEmpty());
        EXPECT_EQ(row[0], 0);
    }
}

TEST(BryStringConstruction, CopiesTextsOfEveryLength) {
    for (const int n : kLengths) {
        const BryString text = repeated(L"k", n);
        ASSERT_EQ(text.length(), n);
        EXPECT_EQ(text[n], 0);
        EXPECT_EQ(BryString(text.getStringA()), text) << n;
        EXPECT_EQ(BryString(text.getStringWAsUnsignedShort()), text) << n;
        EXPECT_EQ(std::strlen(text.getStringA()), static_cast<std::size_t>(n));
    }
}

TEST(BryStringConstruction, TakesEightBitTextBeyondTheScratchBuffer) {
    const std::vector<char> bytes = [] {
        std::vector<char> text(600'000, 'x');
        text.back() = 0;
        return text;
    }();
    const BryString text(bytes.data());
    EXPECT_EQ(text.length(), 599'999);
    EXPECT_EQ(text[599'998], L'x');
    EXPECT_STREQ(text.getStringA(), bytes.data());
}

TEST(BryStringAssignment, AcceptsItsOwnText) {
    BryString text(L"HEA200");
    text = text.getStringW() + 3;
    EXPECT_EQ(text, L"200");
    text = text.getStringWAsUnsignedShort() + 1;
    EXPECT_EQ(text, L"00");
    text = text.getStringA() + 1;
    EXPECT_EQ(text, L"0");
    const BryString& itself = text;
    text = itself;
    EXPECT_EQ(text, L"0");
    text = text.getStringW();
    EXPECT_EQ(text, L"0");
    text = static_cast<const wchar_t*>(nullptr);
    EXPECT_TRUE(text.isEmpty());
}

TEST(BryStringMove, HandsTheTextOnAndLeavesTheEmptyOne) {
    BryString from(L"IPE"), to(L"old");
    from.getStringA();
    to = std::move(from);
    EXPECT_EQ(to, L"IPE");
    EXPECT_STREQ(to.getStringA(), "IPE");
    EXPECT_TRUE(from.isEmpty());
    BryString made(std::move(to));
    EXPECT_EQ(made, L"IPE");
    to = L"again";
    EXPECT_EQ(to, L"again");
}

TEST(BryStringComparison, OrdersByUnsignedUnits) {
    const struct {
        BryString a, b;
        int order;
    } rows[] = {
        {L"", L"", 0},
        {L"", L"a", -1},
        {L"a", L"ab", -1},
        {L"ab", L"a", 1},
        {L"abc", L"abd", -1},
        {L"Z", L"a", -1},
        {L"\xFFFF", L"a", 1},
        {L"\x7FFF", L"\x8000", -1},
        {L"\x0100", L"\x00FF", 1},
        {L"HEA200", L"HEA200", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.a) + " and " + testing::PrintToString(row.b));
        EXPECT_EQ(BryString::compare(row.a, row.b), row.order);
        EXPECT_EQ(BryString::compare(row.b, row.a), -row.order);
        EXPECT_EQ(BryString::strCompare(&row.a, &row.b), row.order);
        EXPECT_EQ(row.a < row.b, row.order < 0);
        EXPECT_EQ(row.a > row.b, row.order > 0);
        EXPECT_EQ(row.a == row.b, row.order == 0);
        EXPECT_EQ(row.a != row.b, row.order != 0);
    }
    EXPECT_EQ(BryString::strCompare(nullptr, &rows[0].a), 0);
    EXPECT_EQ(BryString::strCompare(&rows[1].b, nullptr), 0);
}

TEST(BryStringComparison, SeesTheOneDifferenceAtAnyPosition) {
    for (const int n : kLengths) {
        const BryString text = repeated(L"m", n);
        for (const int i : {0, n / 2, n - 1}) {
            BryString other(text.getStringW());
            EXPECT_EQ(other, text);
            other.setAt(i, L'n');
            EXPECT_EQ(BryString::compare(text, other), -1) << i << " of " << n;
            EXPECT_NE(other, text) << i << " of " << n;
        }
        EXPECT_EQ(BryString::compare(text, text.left(n - 1)), 1) << n;
    }
}

TEST(BryStringComparison, StopsAfterNUnits) {
    const BryString a(L"abcX"), b(L"abcY");
    EXPECT_EQ(BryString::compare(a, b, 3), 0);
    EXPECT_LT(BryString::compare(a, b, 4), 0);
    EXPECT_LT(BryString::compare(a, b, 99), 0);
    EXPECT_EQ(BryString::compare(a, b, 0), 0);
    EXPECT_EQ(BryString::compare(a, a + L"more", 4), 0);
}

TEST(BryStringComparison, LeavesOutCaseOnRequest) {
    EXPECT_EQ(BryString::compareNoCase(L"hea200B", L"HEA200b"), 0);
    EXPECT_LT(BryString::compareNoCase(L"A", L"b"), 0);
    EXPECT_GT(BryString::compareNoCase(L"B", L"a"), 0);
    EXPECT_LT(BryString::compareNoCase(L"_", L"B"), 0) << "letters count as small ones";
    EXPECT_NE(BryString::compareNoCase(L"\xE4", L"\xC4"), 0) << "the C locale has the letters A to Z";
    EXPECT_EQ(BryString::compareNoCase(L"IPEx", L"ipeY", 3), 0);
    EXPECT_LT(BryString::compareNoCase(L"IPEx", L"ipeY", 4), 0);
    EXPECT_EQ(BryString::compareNoCase(L"a", L"b", -1), 0);
}

TEST(BryStringAnsiForm, IsKeptUntilTheTextChanges) {
    BryString text(L"B\xE4nder \x4E00");
    const char* const ansi = text.getStringA();
    EXPECT_STREQ(ansi, "B\xE4nder ?");
    EXPECT_EQ(text.getStringA(), ansi);
    const BryString copy(text);
    EXPECT_NE(copy.getStringA(), ansi) << "each string has its own";
    text = copy;
    EXPECT_EQ(text.getStringA(), ansi) << "the body is the same";
    text = L"Blech";
    EXPECT_STREQ(text.getStringA(), "Blech");
}

TEST(BryStringFind, GivesTheFirstPositionAtOrBehindStart) {
    const struct {
        BryString text, sub;
        int start, expected;
    } rows[] = {
        {L"abcabc", L"c", 0, 2},   {L"abcabc", L"c", 1, 2},      {L"abcabc", L"c", 3, 5},
        {L"abcabc", L"abc", 1, 3}, {L"abcabc", L"abcabc", 0, 0}, {L"abc", L"abcd", 0, -1},
        {L"abc", L"", 0, 0},       {L"abc", L"", 2, 2},          {L"abc", L"", 3, -1},
        {L"abc", L"a", -1, -1},    {L"abc", L"c", 3, -1},        {L"", L"", 0, -1},
        {L"aab", L"ab", 0, 1},     {L"abababac", L"abac", 0, 4}, {L"\x0161", L"\x6101", 0, -1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.text.find(row.sub, row.start), row.expected)
            << testing::PrintToString(row.sub) << " in " << testing::PrintToString(row.text) << " from " << row.start;
}

TEST(BryStringFind, FindsNeedlesAtTheEndOfLongTexts) {
    for (const int n : kLengths) {
        for (const int k : {1, 2, 8, 17, 40}) {
            const BryString needle = repeated(L"a", k - 1) + L"b";
            const BryString text = repeated(L"a", n) + needle;
            EXPECT_EQ(text.find(needle), n) << k << " behind " << n;
            EXPECT_EQ(text.left(text.length() - 1).find(needle), -1);
            EXPECT_EQ(text.find(needle, n), n);
        }
    }
}

// The needle's odd unit in each place, and texts made to defeat a search that starts over at each candidate.
TEST(BryStringFind, IsLinearInPeriodicTexts) {
    const int half = 200'000;
    const BryString as = repeated(L"a", half), periodic = repeated(L"ab", half / 2);
    EXPECT_EQ((as + as).find(as + L"b" + as), -1);
    EXPECT_EQ((as + as + L"b").find(as + L"b"), half);
    EXPECT_EQ((as + as).find(BryString(L"b") + as), -1);
    EXPECT_EQ((as + L"b" + as).find(as), 0);
    EXPECT_EQ((as + L"c" + as + L"b" + as).find(as + L"b" + as), half + 1);
    EXPECT_EQ((periodic + L"c" + periodic + periodic + L"c").find(periodic + L"bc"), -1);
    EXPECT_EQ((periodic + periodic + L"c").find(periodic + L"c"), half);
}

TEST(BryStringFindLastOf, LooksForOneCharacter) {
    EXPECT_EQ(BryString(L"banana").find_last_of(L'a'), 5);
    EXPECT_EQ(BryString(L"banana").find_last_of(static_cast<unsigned short>('b')), 0);
    EXPECT_EQ(BryString(L"banana").find_last_of('n'), 4);
    EXPECT_EQ(BryString(L"banana").find_last_of('x'), -1);
    EXPECT_EQ(BryString(L"b\xE4nana").find_last_of('\xE4'), 1);
    EXPECT_EQ(BryString(L"").find_last_of(L'a'), -1);
    EXPECT_EQ(BryString(L"abc").find_last_of(L'\0'), -1) << "the terminator is no part of the text";
    for (const int n : kLengths) EXPECT_EQ((BryString(L"x") + repeated(L"y", n)).find_last_of(L'x'), 0) << n;
}

TEST(BryStringClassification, TestsEveryUnit) {
    const struct {
        BryString text;
        bool alphaNumeric, alphabetic, numeric;
    } rows[] = {
        {L"", true, true, true},
        {L"abcXYZ", true, true, false},
        {L"0123456789", true, false, true},
        {L"12a", true, false, false},
        {L"-1", false, false, false},
        {L"1.5", false, false, false},
        {L"a b", false, false, false},
        {L"\xC4\x0416\x4E00", true, true, false},
        {L"\x00B2", true, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(row.text.IsAlphaNumeric(), row.alphaNumeric);
        EXPECT_EQ(row.text.IsAlphabetic(), row.alphabetic);
        EXPECT_EQ(row.text.IsNumeric(), row.numeric);
    }
}

TEST(BryStringNumbers, ReadsWhatTheTextBeginsWith) {
    const struct {
        BryString text;
        int integer;
        double real;
    } rows[] = {
        {L"12abc", 12, 12.0},
        {L"x", 0, 0.0},
        {L"", 0, 0.0},
        {L"  \t-42", -42, -42.0},
        {L"+7.5e2x", 7, 750.0},
        {L"99999999999", 2147483647, 99999999999.0},
        {L"-99999999999", -2147483647 - 1, -99999999999.0},
        {L"0x10", 0, 0.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(row.text.toInteger(), row.integer);
        EXPECT_EQ(row.text.toIntPtr(), row.integer);
        EXPECT_EQ(row.text.toLong(), row.integer);
        EXPECT_EQ(row.text.toDouble(), row.real);
    }
}

TEST(BryStringConcatenation, JoinsWithoutTouchingTheOperands) {
    for (const int n : kLengths) {
        const BryString a = repeated(L"a", n), b = repeated(L"b", n + 3);
        const BryString joined = a + b;
        EXPECT_EQ(joined.length(), 2 * n + 3);
        EXPECT_EQ(joined.left(n), a);
        EXPECT_EQ(joined.right(n + 3), b);
    }
    BryString text(L"IPE");
    text += L"200";
    EXPECT_EQ(text, L"IPE200");
    text += text;
    EXPECT_EQ(text, L"IPE200IPE200");
    EXPECT_EQ(text + BryString(), text);
    EXPECT_EQ(BryString() + text, text);
}

TEST(BryStringConcatenation, HasNoLimitAtTheScratchBuffers) {
    const BryString half = repeated(L"0123456789", 40'000);
    const BryString whole = half + half;
    EXPECT_EQ(whole.length(), 800'000);
    EXPECT_EQ(whole.right(400'000), half);
}
