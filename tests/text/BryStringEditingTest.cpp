#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <string>
#include <tuple>

#include "tests/support/Printers.h"

namespace {

using Text = std::u16string;  // the model: obvious, one character at a time

BryString toBry(const Text& text) { return BryString(reinterpret_cast<const unsigned short*>(text.c_str())); }

Text toModel(const BryString& text) {
    return Text(reinterpret_cast<const char16_t*>(text.getStringW()), static_cast<std::size_t>(text.length()));
}

}  // namespace

TEST(BryStringSubstring, TakesPartsByPositionAndCount) {
    const BryString text(L"abcde");
    const std::tuple<int, BryString, BryString, BryString> sides[] = {
        {0, L"", L"", L"abcde"},  {INT_MIN, L"", L"", L"abcde"}, {2, L"ab", L"de", L"cde"},
        {5, text, L"abcde", L""}, {6, L"abcde", L"abcde", L""},  {INT_MAX, text, L"abcde", L""}};
    for (const auto& [n, left, right, rest] : sides) {
        BryString shifted(text.getStringW());
        EXPECT_TRUE(text.left(n) == left && text.right(n) == right) << n;
        EXPECT_TRUE((text >> n) == rest && (shifted >>= n) == rest && shifted == rest) << n;
    }
    const std::tuple<int, int, BryString> middles[] = {
        {1, 2, L"bc"}, {1, 99, L"bcde"}, {4, INT_MAX, L"e"}, {0, 5, L"abcde"}, {5, 1, L""}, {6, 1, L""},
        {-1, 3, L""},  {1, -1, L""},     {3, 9, L"de"},      {0, 9, L"abcde"}, {1, 0, L""}};
    for (const auto& [start, count, expected] : middles) {
        BryString copy(L"old"), rest(L"old");
        EXPECT_EQ(text.mid(start, count), expected) << start << ", " << count;
        EXPECT_TRUE(copy.copy(text, start, count) == expected && copy == expected) << start << ", " << count;
        if (count < 9) continue;
        EXPECT_TRUE(text.mid(start) == expected && rest.copy(text, start) == expected) << start;
    }
    BryString itself(L"abcde");
    EXPECT_TRUE(text.mid(5).isEmpty() && itself.copy(itself, 3) == L"de" && itself == L"de");
    EXPECT_EQ(text, L"abcde");
}

TEST(BryStringReplace, CountsAndDoesNotLookIntoTheInsertedText) {
    // clang-format off
    const std::tuple<BryString, wchar_t, wchar_t, int, BryString> units[] = {
        {L"hello", L'l', L'L', 2, L"heLLo"}, {L"hello", L'x', L'y', 0, L"hello"}, {L"", L'a', L'b', 0, L""},
        {L"a.b.c", L'.', L'\0', 2, L"a"}, {L"abc", L'\0', L'x', 0, L"abc"},
        {L"aa", L'a', L'\xFFFF', 2, L"\xFFFF\xFFFF"}};
    const std::tuple<BryString, BryString, BryString, int, BryString> texts[] = {
        {L"aaa", L"a", L"aa", 3, L"aaaaaa"}, {L"abc", L"", L"x", 0, L"abc"}, {L"", L"a", L"b", 0, L""},
        {L"abc", L"abc", L"", 1, L""}, {L"abc", L"abcd", L"x", 0, L"abc"}, {L"abab", L"ab", L"abab", 2, L"abababab"}};
    // clang-format on
    for (const auto& [before, from, to, count, expected] : units) {
        BryString wide(before), spelled(before);
        const auto shortFrom = static_cast<unsigned short>(from), shortTo = static_cast<unsigned short>(to);
        EXPECT_TRUE(wide.replace(from, to) == count && spelled.replace(shortFrom, shortTo) == count);
        EXPECT_TRUE(wide == expected && spelled == expected) << testing::PrintToString(before);
    }
    for (const auto& [before, what, with, count, expected] : texts) {
        BryString text(before);
        EXPECT_EQ(text.replace(what, with), count) << testing::PrintToString(before);
        EXPECT_EQ(text, expected);
    }
    BryString itself(L"ab"), ansi(L"\xE4\xE4");
    EXPECT_TRUE(ansi.replace('\xE4', '\xF6') == 2 && ansi == L"\xF6\xF6") << "units of the ANSI code page";
    EXPECT_TRUE(itself.replace(itself, itself) == 1 && itself == L"ab");
    EXPECT_TRUE(itself.replace(itself, BryString()) == 1 && itself.isEmpty());
}

TEST(BryStringReplaceRange, PutsTextInPlaceOfCharacters) {
    // clang-format off
    const std::tuple<int, int, BryString> rows[] = {
        {1, 2, L"aXYde"}, {0, 5, L"XY"}, {0, 1, L"XYbcde"}, {4, 1, L"abcdXY"}, {4, 99, L"abcdXY"}, {5, 1, L"abcdeXY"},
        {9, 1, L"abcdeXY"}, {1, 0, L"abcde"}, {1, -1, L"abcde"}, {-2, 3, L"XYbcde"}, {-5, 2, L"XYabcde"},
        {1, INT_MAX, L"aXY"}, {INT_MIN, 1, L"XYabcde"}, {INT_MAX, INT_MAX, L"abcdeXY"}};
    // clang-format on
    for (const auto& [start, count, expected] : rows)
        EXPECT_EQ(BryString(L"abcde").replace(start, count, L"XY"), expected) << start << ", " << count;
    BryString itself(L"abc");
    EXPECT_EQ(itself.replace(1, 1, itself), L"aabcc");
    EXPECT_TRUE(itself.replace(0, 99, BryString()).isEmpty());
}

TEST(BryStringUnits, AreSetAndRemovedInEverySpelling) {
    BryString text(L"abc"), many(L"axb\xE4x");
    EXPECT_EQ(text.setAt(1, L'X').setAt(-1, L'y').setAt(3, L'y'), L"aXc") << "the length is no position";
    EXPECT_EQ(text.setAt(0, text[2]), L"cXc") << "its own unit";
    EXPECT_EQ(text.setAt(2, '\xE4').setAt(1, static_cast<unsigned short>('d')), L"cd\xE4");
    EXPECT_EQ(text.setAt(1, L'\0'), L"c");
    EXPECT_TRUE(text.setAt(0, L'\0').isEmpty());
    many.removeAll(L'x');
    many.removeAll('\xE4');
    EXPECT_EQ(many, L"ab");
    many.removeAll(static_cast<unsigned short>('a'));
    many.removeAll(many[0]);
    EXPECT_TRUE(many.isEmpty());
}

TEST(BryStringTrim, TakesRunsOffTheEndsButNoCarriageReturnByDefault) {
    // clang-format off
    const std::tuple<BryString, BryString, BryString, BryString> rows[] = {
        {L"\t\n a b \t", L"\t\n ", L"a b \t", L"\t\n a b"}, {L" \t ", L" \t", L"", L""}, {L"abc", L"", L"abc", L"abc"},
        {L"", L"x", L"", L""}, {L"xyabcyx", L"xy", L"abcyx", L"xyabc"},
        {L"zya", L"abcdefghijklmnopqrstuvwxyz", L"", L""}, {L"by!a", L"abcdefghijkly", L"!a", L"by!"},
        {L"\xFFFF-a\x8000", L"\xFFFF-\x8000 0123456789abcdefg", L"", L""}};
    // clang-format on
    for (const auto& [text, set, leftTrimmed, rightTrimmed] : rows) {
        BryString left(text), right(text);
        left.TrimLeft(set);
        right.TrimRight(set);
        EXPECT_TRUE(left == leftTrimmed && right == rightTrimmed) << testing::PrintToString(text);
    }
    BryString text(L"\t\n a b\r\n"), itself(L"aba");
    text.TrimLeft();
    EXPECT_EQ(text, L"a b\r\n");
    text.TrimRight();
    EXPECT_EQ(text, L"a b\r");
    itself.TrimLeft(itself);
    EXPECT_TRUE(itself.isEmpty());
}

TEST(BryStringCase, MapsTheLettersAToZ) {
    BryString text(L"azAZ09_\xE4\xC4\x0434@[`{");
    const BryString sharer(text);
    EXPECT_EQ(text.toUpper(), L"AZAZ09_\xE4\xC4\x0434@[`{");
    EXPECT_EQ(text.toLower(), L"azaz09_\xE4\xC4\x0434@[`{");
    EXPECT_EQ(sharer, L"azAZ09_\xE4\xC4\x0434@[`{");
}

// Random texts over small alphabets, of lengths on both sides of every vector size, against the obvious model.
TEST(BryStringEditing, AgreesWithTheModel) {
    std::mt19937 random(20);
    const auto below = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
    for (int round = 0; round < 3000; ++round) {
        const std::size_t alphabet = 1 + below(5), length = below(round % 10 == 0 ? 3000 : 90);
        const auto make = [&](std::size_t n) {
            Text text(n, u' ');
            for (char16_t& c : text) c = static_cast<char16_t>(0x100 * below(2) + 'a' + below(alphabet));
            return text;
        };
        const Text text = make(length), what = make(1 + below(4)), with = make(below(6));
        const BryString original = toBry(text);
        SCOPED_TRACE(testing::Message() << "round " << round << ", " << length << " units");

        Text expected;
        int count = 0;
        std::size_t at = 0;
        for (std::size_t f; (f = text.find(what, at)) != Text::npos; at = f + what.size(), ++count)
            expected += text.substr(at, f - at) + with;
        BryString replaced(original), swapped(original), left(original), right(original), without(original);
        ASSERT_EQ(replaced.replace(toBry(what), toBry(with)), count);
        ASSERT_EQ(toModel(replaced), expected + text.substr(at));

        const char16_t unit = what[0], other = static_cast<char16_t>(unit + 1);
        Text others = text, rest = text;
        std::replace(others.begin(), others.end(), unit, other);
        rest.erase(std::remove(rest.begin(), rest.end(), unit), rest.end());
        ASSERT_EQ(swapped.replace(wchar_t(unit), wchar_t(other)), int(text.size() - rest.size()));
        ASSERT_EQ(toModel(swapped), others);
        without.removeAll(wchar_t(unit));
        ASSERT_EQ(toModel(without), rest);
        ASSERT_EQ(toModel(original.strRev()), Text(text.rbegin(), text.rend()));
        ASSERT_EQ(original.find(toBry(what)), int(long(text.find(what))));
        ASSERT_EQ(original.find_last_of(wchar_t(unit)), int(long(text.rfind(unit))));

        const std::size_t first = text.find_first_not_of(what), last = text.find_last_not_of(what);
        left.TrimLeft(toBry(what));
        right.TrimRight(toBry(what));
        ASSERT_EQ(toModel(left), first == Text::npos ? Text() : text.substr(first));
        ASSERT_EQ(toModel(right), text.substr(0, last + 1));
        ASSERT_EQ(toModel(original), text);
    }
}

// What is described as one step an occurrence is one pass: a quadratic way takes minutes for these.
TEST(BryStringEditing, IsLinear) {
    BryString text(L"ab,cdefghi");
    while (text.length() < 4'000'000) text += text;
    const int tens = text.length() / 10;
    BryString changed(text);
    EXPECT_EQ(changed.replace(L",", L"; "), tens);
    EXPECT_EQ(changed.length(), text.length() + tens);
    EXPECT_TRUE(changed.replace(L"; ", L",") == tens && changed == text);
    changed.removeAll(L',');
    EXPECT_EQ(changed.length(), text.length() - tens);
    EXPECT_EQ(changed.replace(L"abcdefghi", L" "), tens);
    changed.TrimLeft();
    EXPECT_TRUE(changed.isEmpty());
}
