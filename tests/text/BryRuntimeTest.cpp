#include <roots/platform/Win32.h>
#include <roots/text/BryRuntime.h>
#include <roots/text/BryString.h>
#include <tests/support/Platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

namespace {

// Texts of one spelling, alive as long as this object.
template <class Unit>
class Texts {
public:
    const Unit* operator()(const char* text) {
        m_texts.emplace_back(text, text + std::char_traits<char>::length(text) + 1);
        return m_texts.back().data();
    }

private:
    std::list<std::vector<Unit>> m_texts;
};

// The result of a call and the 32 elements that it may change: | is a terminator, # what nobody has written.
template <class Unit, class Member, class Call>
std::string outcome(Member member, const char* before, Call call) {
    std::vector<Unit> to(32, Unit('#'));
    std::replace_copy(before, before + std::char_traits<char>::length(before), to.begin(), '|', '\0');
    Texts<Unit> texts;
    std::string shown = std::to_string(call(member, to.data(), texts)) + ' ';
    for (const Unit unit : to) shown += unit == 0 ? '|' : static_cast<char>(unit);
    return shown.erase(shown.find_last_not_of('#') + 1);
}

// The 8-bit, the wchar_t and the unsigned short spelling of a member do the same with the same text.
template <class Narrow, class Wide8, class Wide6, class Call>
void expectAll(const std::string& expected, const char* before, Narrow narrow, Wide8 wide8, Wide6 wide6, Call call) {
    EXPECT_EQ(outcome<char>(narrow, before, call), expected);
    EXPECT_EQ(outcome<wchar_t>(wide8, before, call), expected) << "wchar_t";
    EXPECT_EQ(outcome<unsigned short>(wide6, before, call), expected) << "unsigned short";
}

TEST(BryRuntime, CopiesAndJoins) {
    const auto all = [](auto member, auto* to, auto& text) { return member(to, 4, text("abc")); };
    const auto two = [](auto member, auto* to, auto& text) { return member(to, 4, text("abc"), 2); };
    const auto cut = [](auto member, auto* to, auto& text) { return member(to, 4, text("wxyz"), _TRUNCATE); };
    expectAll("0 abc|", "", brystrcpy, brywcscpy8, brywcscpy6, all);
    expectAll("0 ab|", "", brystrncpy, brywcsncpy8, brywcsncpy6, two);
    expectAll("80 wxy|", "", brystrncpy, brywcsncpy8, brywcsncpy6, cut);
    expectAll("0 abc|", "|", brystrcat, brywcscat8, brywcscat6, all);
    expectAll("0 xab|", "x|", brystrncat, brywcsncat8, brywcsncat6, two);
    expectAll("80 xwx|", "x|", brystrncat, brywcsncat8, brywcsncat6, cut);
}

TEST(BryRuntime, SaysWhatFails) {
    const auto small = [](auto member, auto* to, auto& text) { return member(to, 1, text("abc")); };
    const auto null = [](auto member, auto* to, auto&) { return member(to, 1, nullptr); };
    expectAll("34 |", "x", brystrcpy, brywcscpy8, brywcscpy6, small);
    expectAll("34 |", "|", brystrcat, brywcscat8, brywcscat6, small);
    expectAll("22 |", "x", brystrcpy, brywcscpy8, brywcscpy6, null);
    EXPECT_EQ(brywcscpy8(nullptr, 9, L"abc"), 22);
}

TEST(BryRuntime, ChangesInPlace) {
    const auto change = [](auto member, auto* to, auto&) { return member(to, 5); };
    const auto fill = [](auto member, auto* to, auto&) { return member(to, 5, '*'); };
    expectAll("0 A1BC|", "a1Bc|", brystrupr, brywcsupr8, brywcsupr6, change);
    expectAll("0 a1bc|", "a1Bc|", brystrlwr, brywcslwr8, brywcslwr6, change);
    if (!underWine()) {  // it ends the process in _strset_s
        expectAll("0 ****|", "a1Bc|", brystrset, brywcsset8, brywcsset6, fill);
    } else {
        EXPECT_EQ(outcome<wchar_t>(brywcsset8, "a1Bc|", fill), "0 ****|");
        EXPECT_EQ(outcome<unsigned short>(brywcsset6, "a1Bc|", fill), "0 ****|");
    }
}

TEST(BryRuntime, GivesTokens) {
    const auto tokens = [](auto member, auto* to, auto& text) {
        auto* context = to;
        const auto* delimiters = text(",;");
        int sum = 0;  // the digits are the positions of the tokens
        for (auto* token = member(to, delimiters, &context); token != nullptr;
             token = member(nullptr, delimiters, &context))
            sum = sum * 10 + static_cast<int>(token - to);
        return sum;
    };
    expectAll("147 ,a|,b|;c|", ",a,,b;;c|", brystrtok, brywcstok8, brywcstok6, tokens);
}

TEST(BryRuntime, WritesNumbers) {
    const auto number = [](auto member, auto* to, auto&) { return member(255, to, 9, 16); };
    const auto negative = [](auto member, auto* to, auto&) { return member(-5, to, 3, 10); };
    expectAll("0 ff|", "", bryitoa, bryitow8, bryitow6, number);
    expectAll("0 -5|", "", bryitoa, bryitow8, bryitow6, negative);
    expectAll("0 ff|", "", bryltoa, bryltow8, bryltow6, number);
    expectAll("0 -5|", "", bryltoa, bryltow8, bryltow6, negative);
    char text[9];
    EXPECT_EQ(brygcvt(text, 9, 0.25, 3), 0);
    EXPECT_STREQ(text, "0.25");
}

TEST(BryRuntime, SplitsAndMakesPaths) {
    const auto split = [](auto member, auto* to, auto& text) {
        return member(text("c:\\a\\bc.txt"), to, 3, to + 8, 4, to + 16, 3, to + 24, 5);
    };
    const auto make = [](auto member, auto* to, auto& text) {
        return member(to, 16, text("c"), text("a"), text("b"), text("txt"));
    };
    expectAll("0 c:|#####\\a\\|####bc|#####.txt|", "", brysplitpath, brywsplitpath8, brywsplitpath6, split);
    expectAll("0 c:a\\b.txt|", "", brymakepath, brywmakepath8, brywmakepath6, make);
}

TEST(BryRuntime, TellsTheTime) {
    const auto digitsHidden = [](auto member, auto* to, auto&) {
        const int error = member(to, 9);
        for (int i = 0; i < 9; ++i) {
            if (to[i] >= '0' && to[i] <= '9') to[i] = '9';
        }
        return error;
    };
    expectAll("0 99:99:99|", "", brystrtime, brywstrtime8, brywstrtime6, digitsHidden);
    expectAll("0 99/99/99|", "", brystrdate, brywstrdate8, brywstrdate6, digitsHidden);
    const std::int64_t noon = 1234526400, before = -1;  // 2009-02-13 12:00 UTC
    std::tm local;
    EXPECT_EQ(brylocaltime(&local, &noon), 0);
    EXPECT_EQ(local.tm_year, 109);
    EXPECT_EQ(brylocaltime(&local, &before), 22);
}

TEST(BryRuntime, ReadsTheEnvironmentAndTheErrors) {
    const auto path = [](auto member, auto* to, auto& text) {
        std::remove_reference_t<decltype(to)> copy = nullptr;
        std::size_t count = 0;
        const int error = member(&copy, &count, text("PATH"));
        const bool whole = count > 1 && copy[count - 1] == 0 && copy[count - 2] != 0;
        std::free(copy);
        return whole ? error : -1;
    };
    const auto missing = [](auto member, auto* to, auto& text) {
        auto* copy = to;
        std::size_t count = 9;
        const int error = member(&copy, &count, text("KelRootsNone"));
        return copy == nullptr && count == 0 ? error : -1;
    };
    const auto nowhere = [](auto member, auto* to, auto& text) {
        return member(text("none.txt"), text("PATH"), to, 9);
    };
    const auto message = [](auto member, auto* to, auto&) { return member(to, 30, 2); };
    expectAll("0 ", "", brydupenv, brywdupenv8, brywdupenv6, path);
    expectAll("0 ", "", brydupenv, brywdupenv8, brywdupenv6, missing);
    expectAll("2 |", "x", brysearchenv, brywsearchenv8, brywsearchenv6, nowhere);
    expectAll("0 No such file or directory|", "", brystrerror, brywcserror8, brywcserror6, message);
}

TEST(BryRuntime, GivesOleStringsThatTheCallerOwns) {
    for (const BryString& text : {BryString(L"abc"), BryString(L""), BryString(L"\xE4\xD83D\xDE00")}) {
        wchar_t* const eight = bryGetBSTR8(text);
        unsigned short* const six = bryGetBSTR6(text);
        ASSERT_NE(eight, nullptr);
        ASSERT_NE(six, nullptr);
        EXPECT_NE(static_cast<void*>(eight), static_cast<void*>(six));
        EXPECT_EQ(SysStringLen(eight), static_cast<UINT>(text.length()));
        EXPECT_EQ(SysStringLen(reinterpret_cast<wchar_t*>(six)), static_cast<UINT>(text.length()));
        EXPECT_TRUE(std::equal(eight, eight + text.length() + 1, text.getStringW()));
        EXPECT_TRUE(std::equal(six, six + text.length() + 1, text.getStringW()));
        SysFreeString(eight);
        SysFreeString(reinterpret_cast<wchar_t*>(six));
    }
}

}  // namespace
