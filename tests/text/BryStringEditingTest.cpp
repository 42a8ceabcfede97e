#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>

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
    const struct {
        const char* when;
        BryString got, expected;
    } rows[] = {
        {"left of nothing", text.left(0), L""},
        {"left below nothing", text.left(-1), L""},
        {"left", text.left(2), L"ab"},
        {"left of all", text.left(5), L"abcde"},
        {"left of more", text.left(99), L"abcde"},
        {"right of nothing", text.right(0), L""},
        {"right below nothing", text.right(INT_MIN), L""},
        {"right", text.right(2), L"de"},
        {"right of more", text.right(INT_MAX), L"abcde"},
        {"count reaches past the end", text.mid(1, 99), L"bcde"},
        {"count reaches past all numbers", text.mid(4, INT_MAX), L"e"},
        {"start is the length", text.mid(5, 1), L""},
        {"to the end", text.mid(3), L"de"},
        {"from the length to the end", text.mid(5), L""},
        {"all", text.mid(0), L"abcde"},
        {"start beyond the length", text.mid(6, 1), L""},
        {"start below 0", text.mid(-1, 3), L""},
        {"count below 0", text.mid(1, -1), L""},
        {"shifted", text >> 2, L"cde"},
        {"shifted by nothing", text >> 0, L"abcde"},
        {"shifted by all", text >> 5, L""},
        {"shifted by more", text >> 6, L""},
        {"reversed", text.strRev(), L"edcba"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.got, row.expected) << row.when;
    EXPECT_EQ(text, L"abcde");
}

TEST(BryStringCopy, TakesAPartOfAnotherText) {
    const BryString source(L"abcde");
    const struct {
        int start, count;
        BryString expected;
    } rows[] = {{1, 2, L"bc"}, {4, 9, L"e"}, {5, 1, L""}, {7, 2, L""}, {-1, 2, L""}, {0, 5, L"abcde"}, {2, -1, L""}};
    for (const auto& row : rows) {
        BryString text(L"old");
        EXPECT_EQ(text.copy(source, row.start, row.count), row.expected) << row.start << ", " << row.count;
        EXPECT_EQ(text, row.expected);
    }
    BryString text(L"old");
    EXPECT_EQ(text.copy(source, 3), L"de");
    EXPECT_EQ(text.copy(text, 1), L"e") << "its own text";
    BryString shifted(L"abcde");
    EXPECT_EQ(shifted >>= 2, L"cde");
    EXPECT_EQ(shifted >>= -7, L"cde");
}

TEST(BryStringReplaceCharacter, CountsAndLeavesSharersAlone) {
    const struct {
        BryString text;
        wchar_t from, to;
        int count;
        BryString expected;
    } rows[] = {
        {L"hello", L'l', L'L', 2, L"heLLo"},
        {L"hello", L'x', L'y', 0, L"hello"},
        {L"", L'a', L'b', 0, L""},
        {L"a.b.c", L'.', L'\0', 2, L"a"},
        {L"aaa", L'a', L'\xFFFF', 3, L"\xFFFF\xFFFF\xFFFF"},
        {L"abc", L'\0', L'x', 0, L"abc"},
    };
    for (const auto& row : rows) {
        BryString wide(row.text), spelled(row.text), bytes(row.text);
        const BryString sharer(wide);
        EXPECT_EQ(wide.replace(row.from, row.to), row.count);
        EXPECT_EQ(wide, row.expected);
        EXPECT_EQ(spelled.replace(static_cast<unsigned short>(row.from), static_cast<unsigned short>(row.to)),
                  row.count);
        EXPECT_EQ(spelled, row.expected);
        EXPECT_EQ(sharer, row.text);
    }
    BryString text(L"\xE4\xE4");
    EXPECT_EQ(text.replace('\xE4', '\xF6'), 2) << "8-bit characters are of the ANSI code page";
    EXPECT_EQ(text, L"\xF6\xF6");
}

TEST(BryStringReplaceText, DoesNotLookIntoTheInsertedText) {
    const struct {
        BryString text, what, with;
        int count;
        BryString expected;
    } rows[] = {
        {L"aaa", L"a", L"aa", 3, L"aaaaaa"},
        {L"xabyab", L"ab", L"", 2, L"xy"},
        {L"abc", L"", L"x", 0, L"abc"},
        {L"", L"a", L"b", 0, L""},
        {L"aaaa", L"aa", L"a", 2, L"aa"},
        {L"aaaaa", L"aa", L"b", 2, L"bba"},
        {L"abc", L"abc", L"", 1, L""},
        {L"abc", L"abcd", L"x", 0, L"abc"},
        {L"abab", L"ab", L"abab", 2, L"abababab"},
        {L"IPE200", L"IPE", L"HEB", 1, L"HEB200"},
    };
    for (const auto& row : rows) {
        BryString text(row.text);
        EXPECT_EQ(text.replace(row.what, row.with), row.count) << testing::PrintToString(row.text);
        EXPECT_EQ(text, row.expected);
    }
    BryString itself(L"ab");
    EXPECT_EQ(itself.replace(itself, itself), 1);
    EXPECT_EQ(itself, L"ab");
    EXPECT_EQ(itself.replace(itself, BryString()), 1);
    EXPECT_TRUE(itself.isEmpty());
}

TEST(BryStringReplaceRange, PutsTextInPlaceOfCharacters) {
    const struct {
        int start, count;
        BryString expected;
    } rows[] = {
        {1, 2, L"aXYde"},
        {0, 5, L"XY"},
        {0, 1, L"XYbcde"},
        {4, 1, L"abcdXY"},
        {4, 99, L"abcdXY"},
        {5, 1, L"abcdeXY"},
        {9, 1, L"abcdeXY"},
        {1, 0, L"abcde"},
        {1, -1, L"abcde"},
        {-2, 3, L"XYbcde"},
        {-5, 2, L"XYabcde"},
        {1, INT_MAX, L"aXY"},
        {INT_MAX, INT_MAX, L"abcdeXY"},
        {INT_MIN, 1, L"XYabcde"},
    };
    for (const auto& row : rows) {
        BryString text(L"abcde");
        EXPECT_EQ(text.replace(row.start, row.count, L"XY"), row.expected) << row.start << ", " << row.count;
    }
    BryString itself(L"abc");
    EXPECT_EQ(itself.replace(1, 1, itself), L"aabcc");
    EXPECT_TRUE(itself.replace(0, 99, BryString()).isEmpty());
}

TEST(BryStringSetAt, ReplacesOneUnitOrCuts) {
    BryString text(L"abc");
    EXPECT_EQ(text.setAt(1, L'X'), L"aXc");
    EXPECT_EQ(text.setAt(0, text[2]), L"cXc") << "its own unit";
    EXPECT_EQ(text.setAt(2, '\xE4'), L"cX\xE4");
    EXPECT_EQ(text.setAt(2, static_cast<unsigned short>('d')), L"cXd");
    EXPECT_EQ(text.setAt(3, L'y'), L"cXd") << "the length is no position";
    EXPECT_EQ(text.setAt(-1, L'y'), L"cXd");
    EXPECT_EQ(text.setAt(1, L'\0'), L"c");
    EXPECT_TRUE(text.setAt(0, L'\0').isEmpty());
}

TEST(BryStringRemoveAll, RemovesEveryUnit) {
    BryString text(L"axbxc");
    text.removeAll(L'x');
    EXPECT_EQ(text, L"abc");
    text.removeAll(static_cast<unsigned short>('a'));
    text.removeAll('c');
    EXPECT_EQ(text, L"b");
    text.removeAll(text[0]);
    EXPECT_TRUE(text.isEmpty());
}

TEST(BryStringTrim, TakesRunsOffTheEnds) {
    const struct {
        BryString text, set, left, right;
    } rows[] = {
        {L"\t\n a b \t", L"\t\n ", L"a b \t", L"\t\n a b"},
        {L" \t ", L" \t", L"", L""},
        {L"abc", L"", L"abc", L"abc"},
        {L"", L"x", L"", L""},
        {L"0010", L"0", L"10", L"001"},
        {L"xyabcyx", L"xy", L"abcyx", L"xyabc"},
        {L"zya", L"abcdefghijklmnopqrstuvwxyz", L"", L""},
        {L"\xFFFF-a\x8000", L"\xFFFF-\x8000 0123456789abcdefg", L"", L""},
    };
    for (const auto& row : rows) {
        BryString left(row.text), right(row.text);
        left.TrimLeft(row.set);
        right.TrimRight(row.set);
        EXPECT_EQ(left, row.left) << testing::PrintToString(row.text);
        EXPECT_EQ(right, row.right) << testing::PrintToString(row.text);
    }
}

TEST(BryStringTrim, KeepsACarriageReturnByDefault) {
    BryString text(L"\t\n a b\r\n");
    text.TrimLeft();
    EXPECT_EQ(text, L"a b\r\n");
    text.TrimRight();
    EXPECT_EQ(text, L"a b\r");
    text.TrimRight();
    EXPECT_EQ(text, L"a b\r");
    BryString itself(L"aba");
    itself.TrimLeft(itself);
    EXPECT_TRUE(itself.isEmpty());
}

TEST(BryStringCase, MapsTheLettersAToZ) {
    BryString text(L"azAZ09_\xE4\xC4\x0434@[`{");
    const BryString sharer(text);
    EXPECT_EQ(text.toUpper(), L"AZAZ09_\xE4\xC4\x0434@[`{");
    EXPECT_EQ(text.toLower(), L"azaz09_\xE4\xC4\x0434@[`{");
    EXPECT_EQ(sharer, L"azAZ09_\xE4\xC4\x0434@[`{");
    EXPECT_TRUE(BryString().toUpper().isEmpty());
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
        expected += text.substr(at);
        BryString replaced(original);
        ASSERT_EQ(replaced.replace(toBry(what), toBry(with)), count);
        ASSERT_EQ(toModel(replaced), expected);

        const char16_t unit = what[0], other = static_cast<char16_t>(unit + 1);
        Text swapped = text, without, reversed(text.rbegin(), text.rend());
        for (char16_t& c : swapped) c = c == unit ? other : c;
        for (const char16_t c : text) without += c == unit ? u"" : Text(1, c);
        BryString s(original), w(original);
        ASSERT_EQ(s.replace(static_cast<wchar_t>(unit), static_cast<wchar_t>(other)),
                  static_cast<int>(text.size() - without.size()));
        ASSERT_EQ(toModel(s), swapped);
        w.removeAll(static_cast<wchar_t>(unit));
        ASSERT_EQ(toModel(w), without);
        ASSERT_EQ(toModel(original.strRev()), reversed);
        ASSERT_EQ(original.find(toBry(what)), static_cast<int>(static_cast<long>(text.find(what))));
        ASSERT_EQ(original.find_last_of(static_cast<wchar_t>(unit)),
                  static_cast<int>(static_cast<long>(text.rfind(unit))));

        const std::size_t first = text.find_first_not_of(what), last = text.find_last_not_of(what);
        BryString l(original), r(original);
        l.TrimLeft(toBry(what));
        r.TrimRight(toBry(what));
        ASSERT_EQ(toModel(l), first == Text::npos ? Text() : text.substr(first));
        ASSERT_EQ(toModel(r), last == Text::npos ? Text() : text.substr(0, last + 1));
        ASSERT_EQ(toModel(original), text);
    }
}

// What is described as one step an occurrence is one pass: a quadratic way takes minutes for these.
TEST(BryStringEditing, IsLinear) {
    BryString text(L"ab,cdefghi");
    while (text.length() < 4'000'000) text += text;
    const int tens = text.length() / 10;
    BryString replaced(text), removed(text), blanks(text);
    EXPECT_EQ(replaced.replace(L",", L"; "), tens);
    EXPECT_EQ(replaced.length(), text.length() + tens);
    EXPECT_EQ(replaced.replace(L"; ", L","), tens);
    EXPECT_EQ(replaced, text);
    removed.removeAll(L',');
    EXPECT_EQ(removed.length(), text.length() - tens);
    EXPECT_EQ(blanks.replace(L"ab,cdefghi", L" "), tens);
    blanks.TrimLeft();
    EXPECT_TRUE(blanks.isEmpty());
}
