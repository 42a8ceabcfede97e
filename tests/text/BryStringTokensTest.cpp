#include <gtest/gtest.h>
#include <roots/text/BryString.h>

#include <random>
#include <vector>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

using Strings = BryArray<BryString>;

// One character after another, one string appended after another.
void splitSlowly(const BryString& text, Strings& tokens, const BryString& separators, const BryString& quotes) {
    BryString token;
    wchar_t open = 0;
    tokens.setLogicalLength(0);
    for (int i = 0; i < text.length(); ++i) {
        const wchar_t c = text[i];
        const bool isQuote = quotes.find_last_of(c) >= 0, isSeparator = separators.find_last_of(c) >= 0;
        if (open == 0 && !isQuote && isSeparator) {
            if (!token.isEmpty()) tokens.append(token);
            token.empty();
            continue;
        }
        token += text.mid(i, 1);
        if (open == 0 && isQuote)
            open = c;
        else if (c == open && text[i + 1] == open)
            token += text.mid(++i, 1);
        else if (c == open)
            open = 0;
    }
    if (!token.isEmpty()) tokens.append(token);
}

void checkAgainstSlowly(BryString text, const BryString& separators, const BryString& quotes, long room, long grow) {
    Strings tokens(room, grow), expected(room, grow);
    tokens.append(L"old");
    expected.append(L"old");
    BryString::getTokens(text, tokens, separators, quotes);
    splitSlowly(text, expected, separators, quotes);
    SCOPED_TRACE(testing::PrintToString(text));
    ASSERT_EQ(tokens.length(), expected.length());
    ASSERT_EQ(tokens.physicalLength(), expected.physicalLength());
    for (long i = 0; i < tokens.length(); ++i) ASSERT_EQ(tokens[i], expected[i]);
    if (quotes.isEmpty()) {
        Strings plain(room, grow);
        BryString::getTokens(text, plain, separators);
        ASSERT_EQ(plain.length(), tokens.length());
        for (long i = 0; i < tokens.length(); ++i) ASSERT_EQ(plain[i], tokens[i]);
    }
}

}  // namespace

TEST(BryStringTokens, AreThoseOfTheSlowSplitterForEveryShortText) {
    const std::pair<const wchar_t*, const wchar_t*> sets[] = {{L",", L""},  {L", ", L""},     {L"", L""},
                                                              {L",", L"'"}, {L", ", L"'\""},  {L"',", L"'"},
                                                              {L"", L"'"},  {L"xyz,!", L"'"}, {L",", L"xyz!'"}};
    const wchar_t symbols[] = {L'a', L',', L'\'', L'"', 0xD83D};
    for (const auto& [separators, quotes] : sets) {
        for (int n = 0, texts = 1 + 5 + 25 + 125 + 625 + 3125; n < texts; ++n) {
            BryString text;
            for (int rest = n; rest > 0; rest = (rest - 1) / 5) {
                const wchar_t symbol[] = {symbols[(rest - 1) % 5], 0};
                text += symbol;
            }
            ASSERT_NO_FATAL_FAILURE(checkAgainstSlowly(text, separators, quotes, n % 3, n % 4 - 1)) << quotes;
        }
    }
}

TEST(BryStringTokens, AreThoseOfTheSlowSplitterForLongTexts) {
    std::mt19937 random(20090203);
    const BryString many = L",;:!?\x107\xFFFF";
    for (const wchar_t* symbols :
         {L"a,", L"abcdefghijk'", L"abc,;\x107'\"", L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa,\xFFFF"}) {
        std::vector<wchar_t> text;
        const int count = BryString(symbols).length();
        for (int i = 0; i < 2000; ++i) text.push_back(symbols[random() % static_cast<unsigned>(count)]);
        text.push_back(0);
        for (const BryString& separators : {BryString(L","), many})
            for (const wchar_t* quotes : {L"", L"'", L"'\"", L"'\"<>{}"})
                checkAgainstSlowly(text.data() + random() % 9, separators, quotes, 4, 7);
    }
}

TEST(BryStringTokens, TakeOnePassHoweverManyTheyAre) {
    BryString text, quoted;
    text.format(L"%2000000s", L"").replace(L"  ", L"a,");
    quoted.format(L"'%9999999s", L"x");
    Strings tokens(0, 1);
    BryString::getTokens(text, tokens, L",");
    EXPECT_TRUE(tokens.length() == 1000000 && tokens.physicalLength() == 1000000 && tokens.last() == L"a");
    BryString::getTokens(quoted, tokens, L" ", L"'");
    EXPECT_TRUE(tokens.length() == 1 && tokens.physicalLength() == 1000000 && tokens.first() == quoted);
}

TEST(BryStringTokens, MayReplaceTheTextAndTheSetsThemselves) {
    Strings tokens;
    tokens.append(L"a,b;'c,d'");
    tokens.append(L",;");
    tokens.append(L"'");
    BryString::getTokens(tokens[0], tokens, tokens[1], tokens[2]);
    ASSERT_EQ(tokens.length(), 3);
    EXPECT_TRUE(tokens[0] == L"a" && tokens[1] == L"b" && tokens[2] == L"'c,d'");
}

TEST(BryStringTokens, AreWholeOrMissingWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    BryString text = L"one,two,three,four,five,six,seven,eight,nine", kept = text;
    const long live = liveAllocations();
    {
        Strings tokens(0, 3);
        const auto check = [&] {
            for (long i = 0; i < tokens.length(); ++i) EXPECT_GE(tokens[i].length(), 3);
            EXPECT_EQ(text, kept);
        };
        EXPECT_GT(failEachAllocation([&] { BryString::getTokens(text, tokens, L",", L"'"); }, check), 2);
        EXPECT_EQ(tokens.length(), 9);
    }
    EXPECT_EQ(liveAllocations(), live);
}
