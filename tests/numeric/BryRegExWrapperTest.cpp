#include <gtest/gtest.h>
#include <pthread.h>
#include <roots/numeric/BryRegExWrapper.h>

#include <locale>
#include <string>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Platform.h"
#include "tests/support/Printers.h"

namespace {

BryString textOf(const std::string& text) { return text.c_str(); }

std::string repeated(int count, const std::string& text) {
    return count == 1 ? text : repeated(count / 2, text) + repeated(count - count / 2, text);
}

// The texts found, each with a ; behind it, or "no".
BryString found(const BryString& pattern, const BryString& text) {
    BryRegExWrapper expression;
    expression.setRegularExpression(pattern);
    BryArray<BryString> results;
    if (!expression.match(text, results)) return results.isEmpty() ? L"no" : L"no, but with results";
    BryString all;
    for (long i = 0; i < results.length(); ++i) all += results[i] + L";";
    return all;
}

// On a stack as small as a host's thread may have.
void onSmallStack(void (*work)()) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 0x40000);
    const auto run = [](void* function) -> void* { return (*static_cast<void (**)()>(function))(), nullptr; };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace

TEST(BryRegExWrapper, FindsTheWholeTextAndTheGroupsThatAreNotEmpty) {
    // clang-format off
    const struct { BryString pattern, text, expected; } rows[] = {
        {L"(\\d+)-(\\d+)", L"12-345", L"12-345;12;345;"}, {L"(\\d+)-(\\d+)", L"x12-345", L"no"},
        {L"(\\d+)-(\\d+)", L"12-345x", L"no"}, {L"a(b)?c", L"ac", L"ac;"}, {L"(x?)y", L"y", L"y;"},
        {L"((a)(b))(c)", L"abc", L"abc;ab;a;b;c;"}, {L"abc", L"ABC", L"no"}, {L"(?i)abc", L"ABC", L"ABC;"},
        {L"", L"", L""}, {L"", L"a", L"no"}, {L"a*", L"", L""}, {L"a|ab", L"ab", L"ab;"}, {L"a.b", L"a\nb", L"a\nb;"},
        {L"(", L"(", L"no"}, {L"[a", L"a", L"no"}, {L"a)", L"a", L"no"}, {L"*", L"*", L"no"}, {L"a\\", L"a", L"no"},
        {L"\\1", L"", L"no"}, {L"a|\\1", L"a", L"a;"}, {L"(a)\\1", L"aa", L"aa;a;"}, {L"(a)\\2", L"aa", L"no"},
        {L"a{2,3}", L"aaa", L"aaa;"}, {L"a{3,2}", L"aaa", L"no"}, {L"a{99999999999}", L"a", L"no"},
        {L"\\x41\\u00e4\\101", L"A\x00E4" L"A", L"A\x00E4" L"A;"}, {L"[[:digit:]]+\\Q.*\\E", L"12.*", L"12.*;"},
        {L"a(?R)?b", L"aabb", L"aabb;"}, {L"(?P<n>a)(?P=n)", L"aa", L"aa;a;"},
        {L"[\x0410-\x042F]+", L"\x0411\x0416", L"\x0411\x0416;"}, {L"\x4E2D.", L"\x4E2D\xFFFF", L"\x4E2D\xFFFF;"},
        {L"\xD83D\xDE00", L"\xD83D\xDE00", L"\xD83D\xDE00;"}, {L".", L"\xD83D\xDE00", L"no"},
        {L"(.)(.)", L"\xD83D\xDE00", L"\xD83D\xDE00;\xD83D;\xDE00;"}, {L"\xDE00+", L"\xDE00", L"\xDE00;"}};
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(found(row.pattern, row.text), row.expected) << testing::PrintToString(row.pattern);
}

TEST(BryRegExWrapper, AppendsToWhatResultsHasAndKeepsItOtherwise) {
    BryRegExWrapper first;
    first.setRegularExpression(L"(a)(.*)");
    const BryRegExWrapper copy(first);
    first.setRegularExpression(L"(");
    BryArray<BryString> results(0, 1);
    results.append(L"ab");
    EXPECT_TRUE(BryRegExWrapper(copy).match(results[0], results));  // grows while its own element is the text
    EXPECT_FALSE(first.match(L"ab", results));
    first = copy;
    const auto matchesWithout = [&, text = BryString(L"a")](int nthAllocation) {
        const FailNthAllocation failing(nthAllocation);
        return first.match(text, results);
    };
    for (int nth = 1; !matchesWithout(nth); ++nth) results.setLogicalLength(4);
    const BryString expected[] = {L"ab", L"ab", L"a", L"b", L"a", L"a"};
    ASSERT_EQ(results.length(), 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(results[i], expected[i]) << i;
}

TEST(BryRegExWrapper, AnswersNoWhereTheStackOrTheTimeWouldNotDo) {
    const auto check = [] {
        const BryString as = textOf(repeated(100000, "a"));
        for (const char* unit : {"(", "(?:", "(?=a", "(a|b)*", "a.", "()", "(?i)", "(?:a?)", "[a]", "\\b", "a|"})
            for (const std::string& end : {std::string(), repeated(100000, ")"), std::string("\\9")})
                EXPECT_EQ(found(textOf(repeated(100000, unit) + end), as), L"no") << unit << end[0];
        for (const int depth : {350, 12000}) EXPECT_EQ(found(textOf(repeated(depth, "(")), as), L"no") << depth;
        for (const BryString& pattern : {as, BryString(L"[a-z]*")}) EXPECT_EQ(found(pattern, as), as + L";");
        for (const wchar_t* pattern : {L"(a|b)*", L"(?:(a)|b)*?", L"(?:(?=(a))a)*", L"((a*)*)*b", L"a(?R)?"})
            EXPECT_EQ(found(pattern, as), L"no");
        for (const wchar_t* pattern : {L"(a+)+b", L"(a|aa)*b", L"(?:(?:a?){30}){30}b"})
            EXPECT_EQ(found(pattern, as.left(60)), L"no");
        EXPECT_EQ(found(L"(|a)(a|b)*", as.left(60)), as.left(60) + L";a;");
    };
    check();
    onSmallStack(check);
}

TEST(BryRegExWrapper, TakesTheGlobalLocaleOfTheMoment) {
    EXPECT_EQ(found(L"\\w", L"\x0411"), onWindows ? L"\x0411;" : L"no");
    if (onWindows) GTEST_SKIP() << "the compiler's library has the classic locale alone";
    const std::locale before = std::locale::global(std::locale("C.UTF-8"));
    EXPECT_EQ(found(L"(?i)\\w\x0431", L"\x0411\x0411"), L"\x0411\x0411;");
    std::locale::global(before);
    EXPECT_EQ(found(L"\\w", L"\x0411"), L"no");
}
