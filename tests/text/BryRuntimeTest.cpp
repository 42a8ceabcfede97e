#include <roots/platform/Win32.h>
#include <roots/text/BryRuntime.h>
#include <roots/text/BryString.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <string>

namespace {

// The result of a call and the 32 elements that it may change: | is a terminator, # what nobody has written. The call
// gets texts of its own spelling from its last parameter.
template <class Unit, class Member, class Call>
std::string outcome(Member member, std::string before, Call call) {
    before.resize(32, '#');
    std::replace(before.begin(), before.end(), '|', '\0');
    std::vector<Unit> to(before.begin(), before.end());
    std::list<std::vector<Unit>> texts;
    const auto keep = [&texts](const char* text) -> const Unit* {
        return texts.emplace_back(units<Unit>(text)).data();
    };
    const int result = call(member, to.data(), keep);
    std::string after(to.begin(), to.end());
    std::replace(after.begin(), after.end(), '\0', '|');
    return std::to_string(result) + ' ' + after.erase(after.find_last_not_of('#') + 1);
}

// The 8-bit, the wchar_t and the unsigned short spelling of a member do the same with the same text.
template <class Narrow, class Wide8, class Wide6, class Call>
void expectAll(const std::string& expected, const char* before, Narrow narrow, Wide8 wide8, Wide6 wide6, Call call) {
    EXPECT_EQ(outcome<wchar_t>(wide8, before, call), expected) << "wchar_t";
    EXPECT_EQ(outcome<unsigned short>(wide6, before, call), expected) << "unsigned short";
    EXPECT_EQ(outcome<char>(narrow, before, call), expected);
}

TEST(BryRuntime, CopiesJoinsAndChangesTexts) {
    const auto all = [](auto member, auto* to, auto& text) { return member(to, 4, text("abc")); };
    const auto cut = [](auto member, auto* to, auto& text) { return member(to, 4, text("wxyz"), _TRUNCATE); };
    const auto change = [](auto member, auto* to, auto&) { return member(to, 5); };
    const auto fill = [](auto member, auto* to, auto&) { return member(to, 5, '+'); };
    const auto tokens = [](auto member, auto* to, auto& text) {
        auto* context = to;
        int sum = 0;  // the digits are the positions of the tokens
        for (auto* token = member(to, text(",;"), &context); token != nullptr;
             token = member(nullptr, text(",;"), &context))
            sum = sum * 10 + static_cast<int>(token - to);
        return sum;
    };
    expectAll("0 abc|", "", brystrcpy, brywcscpy8, brywcscpy6, all);
    expectAll("80 wxy|", "", brystrncpy, brywcsncpy8, brywcsncpy6, cut);
    expectAll("0 abc|", "|", brystrcat, brywcscat8, brywcscat6, all);
    expectAll("80 xwx|", "x|", brystrncat, brywcsncat8, brywcsncat6, cut);
    expectAll("0 A1BC|", "a1Bc|", brystrupr, brywcsupr8, brywcsupr6, change);
    expectAll("0 a1bc|", "a1Bc|", brystrlwr, brywcslwr8, brywcslwr6, change);
    expectAll("147 ,a|,b|;c|", ",a,,b;;c|", brystrtok, brywcstok8, brywcstok6, tokens);
    EXPECT_EQ(outcome<wchar_t>(brywcsset8, "a1Bc|", fill), "0 ++++|");
    EXPECT_EQ(outcome<unsigned short>(brywcsset6, "a1Bc|", fill), "0 ++++|");
    if (underWine()) return;  // it ends the process in _strset_s
    EXPECT_EQ(outcome<char>(brystrset, "a1Bc|", fill), "0 ++++|");
}

TEST(BryRuntime, WritesNumbersPathsAndTimes) {
    const auto number = [](auto member, auto* to, auto&) { return member(-5, to, 9, 16); };
    const auto split = [](auto member, auto* to, auto& text) {
        return member(text("c:\\a\\bc.txt"), to, 3, to + 8, 4, to + 16, 3, to + 24, 5);
    };
    const auto make = [](auto member, auto* to, auto& text) {
        return member(to, 16, text("c"), text("a"), text("b"), text("txt"));
    };
    const auto digitsHidden = [](auto member, auto* to, auto&) {
        const int error = member(to, 9);
        std::replace_if(
            to, to + 9, [](auto unit) { return unit >= '0' && unit <= '9'; }, '9');
        return error;
    };
    expectAll("0 fffffffb|", "", bryitoa, bryitow8, bryitow6, number);
    expectAll("0 fffffffb|", "", bryltoa, bryltow8, bryltow6, number);
    expectAll("0 c:|#####\\a\\|####bc|#####.txt|", "", brysplitpath, brywsplitpath8, brywsplitpath6, split);
    expectAll("0 c:a\\b.txt|", "", brymakepath, brywmakepath8, brywmakepath6, make);
    expectAll("0 99:99:99|", "", brystrtime, brywstrtime8, brywstrtime6, digitsHidden);
    expectAll("0 99/99/99|", "", brystrdate, brywstrdate8, brywstrdate6, digitsHidden);
    char text[9];
    EXPECT_EQ(brygcvt(text, 9, 0.25, 3), 0);
    EXPECT_STREQ(text, "0.25");
    const std::int64_t noon = 1234526400, before = -1;  // 2009-02-13 12:00 UTC
    std::tm local;
    EXPECT_EQ(brylocaltime(&local, &noon), 0);
    EXPECT_EQ(local.tm_year, 109);
    EXPECT_EQ(brylocaltime(&local, &before), 22);
}

TEST(BryRuntime, ReadsTheEnvironmentAndTheErrors) {
    const auto duplicate = [](auto member, auto* to, auto& text) {
        auto* copy = to;
        std::size_t count = 9;
        const int missing = member(&copy, &count, text("KelRootsNone"));
        if (copy != nullptr || count != 0) return -1;
        const int error = member(&copy, &count, text("PATH"));
        const bool whole = count > 1 && copy[count - 1] == 0 && copy[count - 2] != 0;
        std::free(copy);
        return whole ? missing + error : -1;
    };
    const auto nowhere = [](auto member, auto* to, auto& text) {
        return member(text("none.txt"), text("PATH"), to, 9);
    };
    const auto message = [](auto member, auto* to, auto&) { return member(to, 30, 2); };
    expectAll("0 ", "", brydupenv, brywdupenv8, brywdupenv6, duplicate);
    expectAll("2 |", "x", brysearchenv, brywsearchenv8, brywsearchenv6, nowhere);
    expectAll("0 No such file or directory|", "", brystrerror, brywcserror8, brywcserror6, message);
}

TEST(BryRuntime, GivesOleStringsThatTheCallerOwns) {
    for (const BryString& text : {BryString(L""), BryString(L"\xE4\xD83D\xDE00")}) {
        unsigned short* const six = bryGetBSTR6(text);
        for (wchar_t* const made : {bryGetBSTR8(text), reinterpret_cast<wchar_t*>(six)}) {
            EXPECT_EQ(SysStringLen(made), static_cast<UINT>(text.length()));
            EXPECT_TRUE(std::equal(made, made + text.length() + 1, text.getStringW()));
            SysFreeString(made);
        }
    }
}

}  // namespace
