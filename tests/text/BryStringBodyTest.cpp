// Sharing, release and failing memory, seen from inside: this file is compiled without access control.
#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>
#include <vector>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

int sharesOf(const BryString& text) { return text.m_rep->m_count; }

bool sharesTheEmptyBody(const BryString& text) { return text.m_rep == BryString::m_repEmpty; }

using S = BryString;
// Whether the text of a body, or any other block, has a byte of 0x5A. The addresses that a body begins with may have
// one.
bool showsTheSecret(const void* block, std::size_t size) {
    const char* const bytes = static_cast<const char*>(block);
    const char* text = nullptr;
    if (size > sizeof(BryStringRepr)) std::memcpy(&text, bytes + sizeof text, sizeof text);
    const std::size_t skipped = text == bytes + sizeof(BryStringRepr) ? sizeof(BryStringRepr) : 0;
    return std::memchr(bytes + skipped, 0x5A, size - skipped) != nullptr;
}

struct Operation {
    const char* what;
    void (*run)(S& s);
};
const S theAb(L"ab"), theXyz(L"xyz"), theLetters(L"abcdefghijklmnopqr");

}  // namespace

TEST(BryStringBody, IsSharedByCopiesAndCounted) {
    const BryString* first = new BryString(L"HEA200");
    BryString second(*first), third;
    third = second;
    EXPECT_EQ(sharesOf(third), 3);
    EXPECT_EQ(first->getStringW(), third.getStringW());
    delete first;
    EXPECT_EQ(sharesOf(third), 2);
    second.setAt(0, L'x');
    EXPECT_EQ(sharesOf(third), 1);
    EXPECT_TRUE(third == L"HEA200" && second == L"xEA200");
}

TEST(BryStringBody, IsTheSharedEmptyOneForEveryEmptyText) {
    // clang-format off
    const Operation rows[] = {
        {"null", [](S& s) { s = S(); }}, {"wide", [](S& s) { s = L""; }}, {"8-bit", [](S& s) { s = ""; }},
        {"empty", [](S& s) { s.empty(); }}, {"TrimRight", [](S& s) { s.TrimRight(L"ab"); }},
        {"removeAll", [](S& s) { s.replace(L'b', L'a'), s.removeAll(L'a'); }}, {"mid", [](S& s) { s = s.mid(4); }},
        {"replace cutting", [](S& s) { s.replace(L'a', L'\0'); }}, {"replace", [](S& s) { s.replace(L"ab", L""); }},
        {"left", [](S& s) { s = s.left(-1); }}, {"replace range", [](S& s) { s.replace(0, 9, S()); }},
        {"removeAll of many", [](S& s) { s.format(L"%99s", L" "), s.removeAll(L' '); }},
        {"shifting", [](S& s) { s = s >> 4; }}};
    // clang-format on
    for (const Operation& row : rows) {
        BryString text(L"abab");
        row.run(text);
        EXPECT_TRUE(sharesTheEmptyBody(text)) << row.what;
    }
    const BryString empty, other(empty);
    EXPECT_EQ(sharesOf(other), 1) << "its shares are not counted";
}

TEST(BryStringBody, IsKeptByOperationsThatChangeNothing) {
    // clang-format off
    const Operation rows[] = {
        {"removeAll of what does not occur", [](S& s) { s.removeAll(L'x'); }},
        {"removeAll of zero", [](S& s) { s.removeAll(L'\0'); }}, {"shifting by nothing", [](S& s) { s >>= -1; }},
        {"replace of what does not occur", [](S& s) { s.replace(L'x', L'y'); }},
        {"replace of an absent text", [](S& s) { s.replace(L"xy", L"z"); }},
        {"replace of no characters", [](S& s) { s.replace(1, 0, L"z"); }}, {"assigning itself", [](S& s) { s = *&s; }},
        {"trimming nothing", [](S& s) { s.TrimLeft(), s.TrimRight(L"x"); }}};
    // clang-format on
    const BryString original(L"abcabc");
    for (const Operation& row : rows) {
        BryString text(original);
        row.run(text);
        EXPECT_EQ(text.m_rep, original.m_rep) << row.what;
    }
}

TEST(BryStringBody, IsMadeFromTheCharactersOfARange) {
    BryString::Characters chars;
    EXPECT_TRUE(sharesTheEmptyBody(BryString(chars, 0, 0)));
    BryString::StringToArr(L"abcde", chars);
    ASSERT_EQ(chars.length(), 5);
    EXPECT_EQ(BryString(chars, 1, 3), L"bcd");
    EXPECT_EQ(BryString(chars, 0, 4), L"abcde");
    for (const auto& [from, to] : {std::pair(3, 2), std::pair(5, 5), std::pair(0, 5)})
        EXPECT_TRUE(sharesTheEmptyBody(BryString(chars, from, to))) << from << ", " << to;
    chars.setAt(2, L'\0');
    EXPECT_EQ(BryString(chars, 1, 3), L"bd") << "zero characters contribute nothing";
}

// No released block may hold the text any more, wide or 8-bit, not even a part of it.
TEST(BryStringBody, IsWipedBeforeItIsReleased) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    for (const int units : {1, 2, 3, 4, 7, 8, 9, 12, 15, 16, 17, 20, 31, 33, 64, 100, 1000, 70'000}) {
        // The same byte twice: seen at any alignment.
        std::vector<wchar_t> secret(static_cast<std::size_t>(units), 0x5A5A);
        std::vector<char> narrow(secret.size(), 'Z');
        secret.push_back(0);
        narrow.push_back(0);
        long released = 0, unwiped = 0;
        {
            WatchReleases watch([&](const void* block, std::size_t size) {
                ++released;
                unwiped += showsTheSecret(block, size);
            });
            BryString text(secret.data());
            text = BryString(narrow.data());
            text.getStringA();
            text += text;
            text.toLower();
            text.replace(L'z', L'Z');
            text.TrimLeft(L"x");
            text.setAt(0, L'x');
            text.getStringA();
            text.setAt(1, L'\0');
        }
        EXPECT_GE(released, 8) << "bodies, texts and caches";
        EXPECT_EQ(unwiped, 0) << units << " units";
    }
}

TEST(BryStringBody, IsWipedInABlockThatTokensShare) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    std::vector<wchar_t> secrets;
    for (std::size_t units = 1; units < 90; ++units) {
        secrets.insert(secrets.end(), units, 0x5A5A);
        secrets.push_back(L',');
    }
    secrets.push_back(0);
    BryString text(secrets.data());
    long unwiped = 0;
    WatchReleases watch([&](const void* block, std::size_t size) {
        // Four bytes in a row: an address may have fewer.
        unwiped += std::string_view(static_cast<const char*>(block), size).find("ZZZZ") != std::string_view::npos;
    });
    for (const long kept : {0, 3, 15, 16, 70, 88}) {
        BryArray<BryString> tokens;
        BryString::getTokens(text, tokens, L",");
        const BryString survivor = tokens[kept];
        tokens.setPhysicalLength(0);
        EXPECT_EQ(survivor.length(), kept + 1);
        EXPECT_EQ(sharesOf(survivor), 1);
    }
    EXPECT_EQ(unwiped, 0);
}

// Whatever allocation fails, the exception comes through, the string keeps its text and nothing is lost.
TEST(BryStringBody, KeepsItsTextWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    // clang-format off
    const Operation rows[] = {
        {"construct", [](S& s) { S other(s.getStringW()); }}, {"assign wide", [](S& s) { s = s.getStringW() + 1; }},
        {"construct from 8-bit text", [](S&) { S other("some bytes"); }}, {"assign 8-bit", [](S& s) { s = "bytes"; }},
        {"append", [](S& s) { s += s; }}, {"ANSI form", [](S& s) { s.getStringA(); }},
        {"substrings", [](S& s) { s = s.mid(3, 900).left(800).right(700); }}, {"upper", [](S& s) { s.toUpper(); }},
        {"replace character", [](S& s) { s.replace(L'a', L'z'); }}, {"removeAll", [](S& s) { s.removeAll(L'a'); }},
        {"replace text", [](S& s) { s.replace(theAb, theXyz); }}, {"setAt", [](S& s) { s.setAt(3, L'x'); }},
        {"replace range", [](S& s) { s.replace(3, 4, theXyz); }}, {"trim", [](S& s) { s.TrimLeft(theLetters); }},
        {"reverse", [](S& s) { s = s.strRev(); }}, {"format 8-bit", [](S& s) { s.format("%d %s", 1, "x"); }},
        {"format", [](S& s) { s.format(L"%s%s", s.getStringW(), s.getStringW()); }},
        {"MIF", [](S& s) { s.setFromMIFString("a\\M+182A0b"); }}};
    // clang-format on
    BryString original;
    while (original.length() < 1000) original += L"abcdefg";
    for (const Operation& row : rows) {
        SCOPED_TRACE(row.what);
        BryString text(original.getStringW());
        const long before = liveAllocations();
        const auto check = [&] {
            EXPECT_EQ(text, original);
            EXPECT_EQ(sharesOf(text), 1);
            EXPECT_EQ(liveAllocations(), before);
        };
        const auto attempt = [&] {
            BryString copy(text);
            row.run(copy);
        };
        EXPECT_GE(failEachAllocation(attempt, check), 1);
        // The string itself, not only those that share its body, stays as it was.
        failEachAllocation([&] { row.run(text); }, check);
    }
}
