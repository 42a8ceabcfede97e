#include <roots/platform/Win32.h>
#include <roots/text/BryRuntime.h>
#include <roots/text/BryString.h>
#include <tests/support/Platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

// What a routine leaves in the 32 elements it may use, and its result: the same for all three spellings of one text.
template <class Unit, class Call>
std::string outcome(const char* before, Call call) {
    std::vector<Unit> text(32, Unit('#'));
    std::copy(before, before + std::char_traits<char>::length(before) + 1, text.begin());
    std::string result = std::to_string(call(text.data())) + ' ';
    for (const Unit* unit = text.data(); *unit != 0; ++unit) result += static_cast<char>(*unit);
    return result;
}

template <class Unit>
std::vector<Unit> units(const char* text) {
    return std::vector<Unit>(text, text + std::char_traits<char>::length(text) + 1);
}

// The three spellings of a member, each called with the same texts.
#define EXPECT_SPELLINGS(expected, before, narrow, wide8, wide6, ...)                              \
    do {                                                                                           \
        const auto check = [&](auto member, auto unit) {                                           \
            using Unit = decltype(unit);                                                           \
            const auto abc = units<Unit>("abc"), txt = units<Unit>("txt"), c = units<Unit>("c:");  \
            (void)abc, (void)txt, (void)c;                                                         \
            EXPECT_EQ(outcome<Unit>(before, [&](Unit* to) { return member(__VA_ARGS__); }), expected) \
                << #narrow << " with units of " << sizeof(Unit);                                   \
        };                                                                                         \
        check(&narrow, char());                                                                    \
        check(&wide8, wchar_t());                                                                  \
        check(&wide6, static_cast<unsigned short>(0));                                             \
    } while (false)

}  // namespace
