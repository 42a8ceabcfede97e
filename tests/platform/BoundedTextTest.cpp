#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <numeric>
#include <string>
#include <vector>

namespace {

// The routines of either width under one name, all with the same parameters.
#define BOUNDED(name, narrow, wide, ...)                                                                          \
    template <class Unit>                                                                                         \
    int name(Unit* to, std::size_t size, [[maybe_unused]] const Unit* text, [[maybe_unused]] std::size_t count) { \
        if constexpr (sizeof(Unit) == 1) return narrow(__VA_ARGS__);                                              \
        if constexpr (sizeof(Unit) == 2) return wide(__VA_ARGS__);                                                \
    }
BOUNDED(copyAll, strcpy_s, wcscpy_s, to, size, text)
BOUNDED(copySome, strncpy_s, wcsncpy_s, to, size, text, count)
BOUNDED(addAll, strcat_s, wcscat_s, to, size, text)
BOUNDED(addSome, strncat_s, wcsncat_s, to, size, text, count)
BOUNDED(toUpper, _strupr_s, _wcsupr_s, to, size)
BOUNDED(toLower, _strlwr_s, _wcslwr_s, to, size)
BOUNDED(fillWith, _strset_s, _wcsset_s, to, size, static_cast<wchar_t>(count))
char* nextToken(char* text, const char* delimiters, char** context) { return strtok_s(text, delimiters, context); }
wchar_t* nextToken(wchar_t* text, const wchar_t* delimiters, wchar_t** context) {
    return wcstok_s(text, delimiters, context);
}

// Sixteen units from a picture in which | is the terminator; what the picture does not show is #.
template <class Unit>
std::vector<Unit> buffer(std::string picture) {
    picture.resize(16, '#');
    std::replace(picture.begin(), picture.end(), '|', '\0');
    return {picture.begin(), picture.end()};
}

template <class Unit>
struct BoundedText : ::testing::Test {};
using Widths = ::testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(BoundedText, Widths, );

TYPED_TEST(BoundedText, ChangesWithinTheSizeOrEmptiesTheDestination) {
    using Unit = TypeParam;
    using Routine = decltype(&copyAll<Unit>);
    const auto copy = copyAll<Unit>, copyN = copySome<Unit>, add = addAll<Unit>, addN = addSome<Unit>;
    const auto upper = toUpper<Unit>, lower = toLower<Unit>, fill = fillWith<Unit>;
    const char* const null = nullptr;
    const std::size_t fit = _TRUNCATE, letter = sizeof(Unit) == 1 ? 0x141 : 'A';
    const bool wine = underWine();  // tells other errors where there is no terminator or nothing to do
    // clang-format off
    const struct { Routine routine; const char* to; std::size_t size; const char* text; std::size_t count; int error;
                   const char* after; } rows[] = {
        {copy, "", 4, "abc", 1, 0, "abc|"}, {copy, "", 0, "", 1, 22, ""}, {copy, "", 2, null, 1, 22, "|"},
        {copyN, "", 4, "abcdef", 2, 0, "ab|"}, {copyN, "", 3, "abcd", 3, 34, "|"},
        {copyN, "", 3, "abc", fit - 1, 34, "|"}, {copyN, "", 3, "abcd", fit, 80, "ab|"},
        {copyN, "", 4, "abc", fit, 0, "abc|"}, {copyN, "", 2, null, 0, 0, "|"}, {copyN, "", 2, null, 1, 22, "|"},
        {copyN, "", 0, "a", 0, wine ? 0 : 22, ""}, {add, "ab|", 5, "cd", 1, 0, "abcd|"},
        {add, "ab|", 4, "cd", 1, 34, "|b|"}, {add, "ab|", 4, null, 1, 22, "|b|"}, {add, "", 0, "a", 1, 22, ""},
        {add, "abcd|", 4, "", 1, wine ? 34 : 22, "|bcd|"}, {addN, "ab|", 6, "cdef", 2, 0, "abcd|"},
        {addN, "ab|", 4, "cdef", 1, 0, "abc|"}, {addN, "ab|", 4, "cdef", 2, 34, "|b|"},
        {addN, "ab|", 4, "cdef", fit, 80, "abc|"}, {addN, "abc|", 4, "d", fit, 80, "abc|"},
        {addN, "ab|", 4, null, 0, 0, "ab|"}, {addN, "abc|x", 4, "", fit, wine ? 80 : 0, "abc|x"},
        {addN, "abcd|", 4, "x", 1, 22, "|bcd|"}, {addN, "abcd|", 4, "x", 0, wine ? 0 : 22, wine ? "abcd|" : "|bcd|"},
        {upper, "abc|", 3, "", 1, 22, "|bc|"}, {lower, "ABC|", 3, "", 1, 22, "|BC|"},
        {upper, "abc|", 0, "", 1, 22, wine && sizeof(Unit) == 2 ? "|bc|" : "abc|"},
        {fill, "xyz|x|", 6, "", letter, 0, "AAA|x|"}, {fill, "xyz|x", 6, "", 0, 0, "||||x"},
        {fill, "xyz|", 3, "", letter, 22, "|yz|"}, {fill, "xyz|", 0, "", letter, 22, "xyz|"},
    };
    // clang-format on
    for (const auto& row : rows) {
        if (row.routine == fill && wine && sizeof(Unit) == 1) continue;  // Wine ends the process in _strset_s
        SCOPED_TRACE("row " + std::to_string(&row - rows) + ": " + row.to + " becomes " + row.after);
        std::vector<Unit> to = buffer<Unit>(row.to), after = buffer<Unit>(row.after);
        const std::vector<Unit> text = units<Unit>(row.text != nullptr ? row.text : "");
        const int error = row.routine(to.data(), row.size, row.text != nullptr ? text.data() : nullptr, row.count);
        EXPECT_EQ(error, row.error);
        // Windows leaves what it has done before it fails in the rest of the destination.
        if (onWindows && error != 0 && error != 80 && row.size > 0) std::copy_n(&after[1], row.size - 1, &to[1]);
        EXPECT_EQ(to, after);
        EXPECT_TRUE(row.count == 0 || row.routine(nullptr, 5, text.data(), 1) == 22) << "without a destination";
    }
    EXPECT_TRUE(copyN(nullptr, 0, nullptr, 0) == 0 && addN(nullptr, 0, nullptr, 0) == (wine ? 22 : 0));
    std::vector<Unit> to = buffer<Unit>("abcdef|");
    EXPECT_TRUE(copy(to.data(), 16, to.data() + 2, 0) == 0 && copyN(to.data(), 16, to.data() + 1, 2) == 0);
    EXPECT_EQ(to, buffer<Unit>("de|f|f|"));
}

// Sources and destinations have no unit more than they need, so that a sanitizer sees any other access.
TYPED_TEST(BoundedText, HoldsForEveryLength) {
    using Unit = TypeParam;
    for (std::size_t length = 0; length < 200; ++length) {
        SCOPED_TRACE(length);
        std::vector<Unit> from(length), to(length + 1, Unit('#')), both(2 * length + 1), upper, lower;
        for (std::size_t i = 0; i < length; ++i) from[i] = static_cast<Unit>('@' + i % 63);
        EXPECT_EQ(copySome(to.data(), length + 1, from.data(), length), 0);
        from.push_back(Unit{});
        EXPECT_EQ(to, from);
        EXPECT_EQ(copyAll(to.data(), length, from.data(), 0), length > 0 ? 34 : 22);
        EXPECT_TRUE(copyAll(to.data(), length + 1, from.data(), 0) == 0 && to == from);
        for (int i = 0; i < 2; ++i) EXPECT_EQ(addAll(both.data(), both.size(), from.data(), 0), 0);
        EXPECT_TRUE(std::equal(from.begin(), from.end(), both.end() - static_cast<std::ptrdiff_t>(from.size())));

        for (const Unit unit : from) upper.push_back(static_cast<Unit>(std::toupper(unit)));
        for (const Unit unit : from) lower.push_back(static_cast<Unit>(std::tolower(unit)));
        EXPECT_TRUE(toUpper<Unit>(to.data(), to.size(), nullptr, 0) == 0 && to == upper);
        EXPECT_TRUE(toLower<Unit>(from.data(), from.size(), nullptr, 0) == 0 && from == lower);
    }
}

TYPED_TEST(BoundedText, GivesTokensAndLeavesTheContextAtTheEnd) {
    using Unit = TypeParam;
    Unit* const null = nullptr;
    const char* const rows[][2] = {{"a,b;;c", "a.b.c."}, {",;abc;", "abc."}, {"abc", "abc."}, {",,", ""}, {"", ""}};
    const std::vector<Unit> delimiters = units<Unit>(",;");
    for (const auto& row : rows) {
        std::vector<Unit> text = units<Unit>(row[0]);
        Unit *context = nullptr, *token = nextToken(text.data(), delimiters.data(), &context);
        std::string tokens;
        for (; token != nullptr; token = nextToken(null, delimiters.data(), &context)) tokens += narrow(token) + '.';
        EXPECT_EQ(tokens, row[1]) << row[0];
        EXPECT_TRUE(!nextToken(null, delimiters.data(), &context) && context == &text.back()) << row[0];
    }
    Unit text[] = {'a', ',', 'b', 0}, *context = nullptr;
    errno = 0;
    EXPECT_TRUE(!nextToken(null, delimiters.data(), &context) && errno == 22);
    EXPECT_EQ(nextToken(text, static_cast<const Unit*>(nullptr), &context), nullptr);
    EXPECT_EQ(nextToken(text, delimiters.data(), static_cast<Unit**>(nullptr)), nullptr);
    EXPECT_EQ(narrow(nextToken(text, text + 3, &context)), "a,b") << "without delimiters";
}

// Chooses the locale that a host would, and goes back to the one that every program starts in.
struct HostLocale {
    HostLocale() { EXPECT_NE(std::setlocale(LC_ALL, onWindows ? "" : "C.UTF-8"), nullptr); }
    ~HostLocale() { std::setlocale(LC_ALL, "C"); }
};

TEST(WideText, ComparesInLowerCase) {
    // clang-format off
    const struct { const wchar_t *a, *b; std::size_t count; int sign, signInHostLocale; } rows[] = {
        {L"", L"", 9, 0, 0}, {L"HEA200", L"hea200", 9, 0, 0}, {L"abc", L"ABD", 9, -1, -1}, {L"abc", L"ABD", 2, 0, 0},
        {L"ab", L"abc", 9, -1, -1}, {L"abc", L"AB", 9, 1, 1}, {L"abc", L"x", 0, 0, 0}, {L"_", L"A", 9, -1, -1},
        {L"a", L"\xFFFF", 9, -1, -1}, {L"\xE4", L"\xC4", 9, 1, 0}, {L"\x430z", L"\x410Z", 9, 1, 0},
        {L"ab\0c", L"AB\0d", 9, 0, 0},
    };
    // clang-format on
    const auto sign = [](int difference) { return (difference > 0) - (difference < 0); };
    for (const auto& row : rows) {
        EXPECT_EQ(sign(_wcsnicmp(row.a, row.b, row.count)), row.sign) << &row - rows;
        EXPECT_TRUE(row.count < 9 || sign(_wcsicmp(row.a, row.b)) == row.sign) << &row - rows;
        const HostLocale chosen;
        EXPECT_EQ(sign(_wcsnicmp(row.a, row.b, row.count)), row.signInHostLocale) << &row - rows;
    }
}

using Summary = std::pair<int, std::uint32_t>;  // how many there are, and their checksum

// The units that change.
Summary changes(decltype(&toUpper<wchar_t>) change) {
    std::vector<wchar_t> text(0x10000);
    std::iota(text.begin(), text.end(), L'\x1');  // from 1 to 65535, then 0
    EXPECT_EQ(change(text.data(), text.size(), nullptr, 0), 0);
    Summary sum;
    for (unsigned unit = 1; unit < 0x10000; ++unit)
        if (text[unit - 1] != unit) sum = {sum.first + 1, (sum.second * 31 + unit) * 31 + text[unit - 1]};
    return sum;
}

template <class Is>
Summary members(Is is) {
    Summary sum;
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        if (is(static_cast<unsigned short>(unit))) sum = {sum.first + 1, sum.second * 31 + unit};
    return sum;
}

TEST(Case, IsAMatterOfAsciiUntilTheHostChoosesALocale) {
    std::string text = "a\xE4\xDF\xFF\x9A\xC4Z\xF7\xD7\xB5";
    EXPECT_EQ(changes(toUpper<wchar_t>).first, 26);
    EXPECT_EQ(changes(toLower<wchar_t>).first, 26);
    EXPECT_EQ(_strupr_s(text.data(), text.size() + 1), 0);
    EXPECT_EQ(text, "A\xE4\xDF\xFF\x9A\xC4Z\xF7\xD7\xB5");
    const HostLocale chosen;
    EXPECT_EQ(changes(toUpper<wchar_t>), Summary(1163, 1253105637u));
    EXPECT_EQ(changes(toLower<wchar_t>), Summary(1163, 3653988859u));
    EXPECT_EQ(_strupr_s(text.data(), text.size() + 1), 0);
    EXPECT_EQ(text, "A\xC4\xDF\x9F\x8A\xC4Z\xF7\xD7\xB5") << "in the ANSI page";
    EXPECT_EQ(_strlwr_s(text.data(), text.size() + 1), 0);
    EXPECT_EQ(text, "a\xE4\xDF\xFF\x9A\xE4z\xF7\xD7\xB5") << "in the ANSI page";
}

TEST(CharacterTypes, AreThoseOfWindows) {
    EXPECT_EQ(members([](unsigned short unit) { return crt::iswalpha(unit); }), Summary(49027, 1499608394u));
    EXPECT_EQ(members([](unsigned short unit) { return crt::iswdigit(unit); }), Summary(373, 2059054055u));
    EXPECT_EQ(members([](unsigned short unit) { return crt::iswalnum(unit); }), Summary(49400, 2755545045u));
}

}  // namespace
