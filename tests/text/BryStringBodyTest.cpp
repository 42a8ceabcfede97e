// Sharing, release and failing memory, seen from inside: this file is compiled without access control.
#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

int sharesOf(const BryString& text) { return text.m_rep->m_count; }

bool sharesTheEmptyBody(const BryString& text) { return text.m_rep == BryString::m_repEmpty; }

BryString longText(int units, wchar_t first = L'a') {
    std::vector<wchar_t> text(static_cast<std::size_t>(units) + 1);
    for (int i = 0; i < units; ++i) text[static_cast<std::size_t>(i)] = static_cast<wchar_t>(first + i % 7);
    return BryString(text.data());
}

}  // namespace

TEST(BryStringBody, IsSharedByCopiesAndCounted) {
    const BryString* first = new BryString(L"HEA200");
    BryString second(*first), third;
    third = second;
    EXPECT_EQ(sharesOf(third), 3);
    EXPECT_EQ(first->getStringW(), third.getStringW());
    delete first;
    EXPECT_EQ(sharesOf(third), 2);
    EXPECT_EQ(third, L"HEA200");
    second.setAt(0, L'x');
    EXPECT_EQ(sharesOf(third), 1);
    EXPECT_EQ(third, L"HEA200");
    EXPECT_EQ(second, L"xEA200");
}

TEST(BryStringBody, IsTheSharedEmptyOneForEveryEmptyText) {
    BryString emptied(L"abc");
    emptied.empty();
    BryString trimmed(L" \t\n");
    trimmed.TrimRight();
    BryString removed(L"xxx");
    removed.removeAll(L'x');
    BryString cut(L"abc");
    cut.replace(L'a', L'\0');
    BryString replaced(L"abab");
    replaced.replace(L"ab", L"");
    const BryString rows[] = {BryString(),
                              BryString(L""),
                              BryString(""),
                              emptied,
                              trimmed,
                              removed,
                              cut,
                              replaced,
                              BryString(L"abc").mid(3),
                              BryString(L"abc").left(-1),
                              BryString(L"abc") >> 3};
    for (const BryString& row : rows) EXPECT_TRUE(sharesTheEmptyBody(row));
}

TEST(BryStringBody, DoesNotCountTheSharesOfTheEmptyOne) {
    const int before = BryString::m_repEmpty->m_count;
    {
        std::vector<BryString> many(1000);
        BryString assigned(L"x");
        assigned = many[7];
    }
    EXPECT_EQ(BryString::m_repEmpty->m_count, before);
    EXPECT_EQ(before, 1);
}

TEST(BryStringBody, IsKeptByOperationsThatChangeNothing) {
    const BryString original(L"abcabc");
    const struct {
        const char* what;
        std::function<void(BryString&)> operation;
    } rows[] = {
        {"removeAll of what does not occur", [](BryString& s) { s.removeAll(L'x'); }},
        {"removeAll of zero", [](BryString& s) { s.removeAll(L'\0'); }},
        {"replace of what does not occur", [](BryString& s) { s.replace(L'x', L'y'); }},
        {"replace of an absent text", [](BryString& s) { s.replace(L"xy", L"z"); }},
        {"replace of no characters", [](BryString& s) { s.replace(1, 0, L"z"); }},
        {"trimming nothing", [](BryString& s) { s.TrimLeft(), s.TrimRight(L"x"); }},
        {"shifting by nothing", [](BryString& s) { s >>= -1; }},
        {"assigning itself", [](BryString& s) { s = *&s; }},
    };
    for (const auto& row : rows) {
        BryString text(original);
        row.operation(text);
        EXPECT_EQ(text.m_rep, original.m_rep) << row.what;
    }
}

TEST(BryStringBody, IsMadeFromTheCharactersOfARange) {
    BryString::Characters chars;
    BryString::StringToArr(L"abcde", chars);
    ASSERT_EQ(chars.length(), 5);
    EXPECT_EQ(BryString(chars, 1, 3), L"bcd");
    EXPECT_EQ(BryString(chars, 0, 4), L"abcde");
    EXPECT_TRUE(sharesTheEmptyBody(BryString(chars, 3, 2)));
    EXPECT_TRUE(sharesTheEmptyBody(BryString(chars, 5, 5)));
    EXPECT_TRUE(sharesTheEmptyBody(BryString(chars, 0, 5)));
    EXPECT_TRUE(sharesTheEmptyBody(BryString(BryString::Characters(), 0, 0)));
    chars.setAt(2, L'\0');
    EXPECT_EQ(BryString(chars, 1, 3), L"bd") << "zero characters contribute nothing";
}

// No released block may hold the text any more, wide or 8-bit, not even a part of it.
TEST(BryStringBody, IsWipedBeforeItIsReleased) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    for (const int units : {1, 2, 3, 4, 7, 8, 9, 12, 15, 16, 17, 20, 31, 33, 64, 100, 1000, 70'000}) {
        const wchar_t mark = 0x5A5A;  // the same byte twice: seen at any alignment
        std::vector<wchar_t> secret(static_cast<std::size_t>(units) + 1, mark);
        secret.back() = 0;
        const std::vector<char> secretBytes(static_cast<std::size_t>(units), 'Z');
        std::vector<char> narrow(secretBytes);
        narrow.push_back(0);
        long released = 0, unwiped = 0;
        {
            WatchReleases watch([&](const void* block, std::size_t size) {
                ++released;
                if (std::memchr(block, 0x5A, size)) ++unwiped;
            });
            BryString text(secret.data());
            text = BryString(narrow.data());
            text.getStringA();
            text += text;
            text.toLower();
            text.replace(L'z', L'Z');
            text.TrimLeft(L"x");
            text.setAt(0, L'Z');
            text.getStringA();
        }
        EXPECT_GE(released, 8) << "bodies, texts and caches";
        EXPECT_EQ(unwiped, 0) << units << " units";
    }
}

// Whatever allocation fails, the exception comes through, the string keeps its text and nothing is lost.
TEST(BryStringBody, KeepsItsTextWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    const BryString original = longText(1000), what(L"ab"), with(L"xyz");
    const struct {
        const char* what;
        std::function<void(BryString&)> operation;
    } rows[] = {
        {"construct", [](BryString& s) { BryString other(s.getStringW()); }},
        {"construct from 8-bit text", [](BryString&) { BryString other("some bytes"); }},
        {"assign wide", [](BryString& s) { s = s.getStringW() + 1; }},
        {"assign 8-bit", [](BryString& s) { s = "bytes"; }},
        {"append", [](BryString& s) { s += s; }},
        {"ANSI form", [](BryString& s) { s.getStringA(); }},
        {"substrings", [](BryString& s) { s = s.mid(3, 900).left(800).right(700); }},
        {"replace character", [](BryString& s) { s.replace(L'a', L'z'); }},
        {"replace text", [&](BryString& s) { s.replace(what, with); }},
        {"replace range", [&](BryString& s) { s.replace(3, 4, with); }},
        {"removeAll", [](BryString& s) { s.removeAll(L'a'); }},
        {"setAt", [](BryString& s) { s.setAt(3, L'x'); }},
        {"trim", [](BryString& s) { s.TrimLeft(L"abcdefghijklmnopqr"); }},
        {"upper", [](BryString& s) { s.toUpper(); }},
        {"reverse", [](BryString& s) { s = s.strRev(); }},
        {"format", [](BryString& s) { s.format(L"%s%s", s.getStringW(), s.getStringW()); }},
        {"format 8-bit", [](BryString& s) { s.format("%d %s", 1, "x"); }},
        {"MIF", [](BryString& s) { s.setFromMIFString("a\\M+182A0b"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        BryString text(original.getStringW());
        const long before = liveAllocations();
        const long failed = failEachAllocation(
            [&] {
                BryString attempt(text);
                row.operation(attempt);
            },
            [&] {
                EXPECT_EQ(text, original);
                EXPECT_EQ(sharesOf(text), 1);
                EXPECT_EQ(liveAllocations(), before);
            });
        EXPECT_GE(failed, 1);
        // The string itself, not only those that share its body, stays as it was.
        FailNthAllocation failing(1);
        EXPECT_THROW(row.operation(text), std::bad_alloc);
        EXPECT_EQ(text, original);
    }
}
