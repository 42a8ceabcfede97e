#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/Units.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <string>
#include <vector>

namespace {

// The routines of either width under one name.
int copyAll(char* to, std::size_t size, const char* from, std::size_t) { return strcpy_s(to, size, from); }
int copyAll(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t) { return wcscpy_s(to, size, from); }
int copySome(char* to, std::size_t size, const char* from, std::size_t count) {
    return strncpy_s(to, size, from, count);
}
int copySome(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) {
    return wcsncpy_s(to, size, from, count);
}
int addAll(char* to, std::size_t size, const char* from, std::size_t) { return strcat_s(to, size, from); }
int addAll(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t) { return wcscat_s(to, size, from); }
int addSome(char* to, std::size_t size, const char* from, std::size_t count) {
    return strncat_s(to, size, from, count);
}
int addSome(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) {
    return wcsncat_s(to, size, from, count);
}
int toUpper(char* text, std::size_t size) { return _strupr_s(text, size); }
int toUpper(wchar_t* text, std::size_t size) { return _wcsupr_s(text, size); }
int toLower(char* text, std::size_t size) { return _strlwr_s(text, size); }
int toLower(wchar_t* text, std::size_t size) { return _wcslwr_s(text, size); }
int fillWith(char* text, std::size_t size, int fill) { return _strset_s(text, size, fill); }
int fillWith(wchar_t* text, std::size_t size, int fill) { return _wcsset_s(text, size, static_cast<wchar_t>(fill)); }
char* nextToken(char* text, const char* delimiters, char** context) { return strtok_s(text, delimiters, context); }
wchar_t* nextToken(wchar_t* text, const wchar_t* delimiters, wchar_t** context) {
    return wcstok_s(text, delimiters, context);
}

// Sixteen units, shown as a picture in which | is the terminator; what the picture does not show is #.
template <class Unit>
struct Buffer {
    Unit at[16];

    explicit Buffer(const std::string& picture) {
        std::fill(at, at + 16, Unit('#'));
        for (std::size_t i = 0; i < picture.size(); ++i) at[i] = picture[i] == '|' ? Unit{} : Unit(picture[i]);
    }
    std::string picture() const {
        std::string shown;
        for (const Unit unit : at) shown += unit == 0 ? '|' : static_cast<char>(unit);
        return shown.erase(shown.find_last_not_of('#') + 1);
    }

    // Windows leaves what it has done before it fails in the rest of the destination.
    void forgetRest(int error, std::size_t size, const Buffer& expected) {
        if (onWindows && (error == 22 || error == 34) && size > 0)
            std::copy(expected.at + 1, expected.at + size, at + 1);
    }
};

template <class Unit>
struct BoundedText : ::testing::Test {};
using Widths = ::testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(BoundedText, Widths, );

TYPED_TEST(BoundedText, CopiesAndJoinsWithinTheSizeOrEmptiesTheDestination) {
    using Unit = TypeParam;
    using Routine = int (*)(Unit*, std::size_t, const Unit*, std::size_t);
    const Routine copy = &copyAll, copyN = &copySome, add = &addAll, addN = &addSome;
    const char* const null = nullptr;
    const std::size_t fit = _TRUNCATE;
    const bool wine = underWine();  // tells other errors where there is no terminator or nothing to do
    // clang-format off
    const struct {
        Routine routine;
        const char* before;
        std::size_t size;
        const char* from;
        std::size_t count;
        int error;
        const char* after;
    } rows[] = {
        {copy, "xxxxxx", 4, "abc", 0, 0, "abc|xx"}, {copy, "xxxx", 3, "abc", 0, 34, "|xxx"},
        {copy, "xx", 1, "", 0, 0, "|x"}, {copy, "xx", 0, "", 0, 22, "xx"}, {copy, "xx", 2, null, 0, 22, "|x"},
        {copyN, "xxxx", 4, "abcdef", 2, 0, "ab|x"}, {copyN, "xxxx", 4, "ab", 99, 0, "ab|x"},
        {copyN, "xxxx", 4, "abcd", 3, 0, "abc|"}, {copyN, "xxxx", 3, "abcd", 3, 34, "|xxx"},
        {copyN, "xxxx", 3, "abc", fit - 1, 34, "|xxx"}, {copyN, "xxxx", 3, "abcd", fit, 80, "ab|x"},
        {copyN, "xx", 1, "abcd", fit, 80, "|x"}, {copyN, "xxxx", 4, "abc", fit, 0, "abc|"},
        {copyN, "xx", 2, null, 0, 0, "|x"}, {copyN, "xx", 2, null, 1, 22, "|x"},
        {copyN, "xx", 0, "a", 0, wine ? 0 : 22, "xx"}, {add, "ab|xx", 5, "cd", 0, 0, "abcd|"},
        {add, "ab|xx", 4, "cd", 0, 34, "|b|xx"}, {add, "abc|x", 4, "", 0, 0, "abc|x"},
        {add, "ab|x", 4, null, 0, 22, "|b|x"}, {add, "xx", 0, "a", 0, 22, "xx"},
        {add, "abcd|", 4, "x", 0, wine ? 34 : 22, "|bcd|"}, {addN, "ab|xxx", 6, "cdef", 2, 0, "abcd|x"},
        {addN, "ab|x", 4, "cdef", 1, 0, "abc|"}, {addN, "ab|x", 4, "cdef", 2, 34, "|b|x"},
        {addN, "ab|x", 4, "cdef", fit, 80, "abc|"}, {addN, "abc|x", 4, "d", fit, 80, "abc|x"},
        {addN, "abc|x", 4, "", fit, wine ? 80 : 0, "abc|x"}, {addN, "ab|x", 4, null, 1, 22, "|b|x"},
        {addN, "ab|x", 4, null, 0, 0, "ab|x"}, {addN, "abcd|", 4, "x", 1, 22, "|bcd|"},
        {addN, "abcd|", 4, "x", 0, wine ? 0 : 22, wine ? "abcd|" : "|bcd|"}};
    // clang-format on
    for (const auto& row : rows) {
        Buffer<Unit> to(row.before);
        const Buffer<Unit> after(row.after);
        const std::vector<Unit> from = units<Unit>(row.from != nullptr ? row.from : "");
        const int error = row.routine(to.at, row.size, row.from != nullptr ? from.data() : nullptr, row.count);
        to.forgetRest(error, row.size, after);
        const char* const name = row.routine == copy ? "copy " : row.routine == copyN ? "copy some " : "join ";
        const std::string call = name + std::string(row.before) + ' ' + std::to_string(row.size) + ' ' +
                                 (row.from != nullptr ? row.from : "null") + ' ' + std::to_string(row.count);
        EXPECT_EQ(error, row.error) << call;
        EXPECT_EQ(to.picture(), after.picture()) << call;
    }
    const Unit text[] = {Unit('a'), Unit{}};
    for (const Routine routine : {copy, copyN, add, addN}) EXPECT_EQ(routine(nullptr, 5, text, 1), 22);
    EXPECT_EQ(copyN(nullptr, 0, nullptr, 0), 0);
    EXPECT_EQ(addN(nullptr, 0, nullptr, 0), wine ? 22 : 0);
}

// Sources and destinations have no unit more than they need, so that a sanitizer sees any other access.
TYPED_TEST(BoundedText, HoldsForEveryLength) {
    using Unit = TypeParam;
    for (std::size_t length = 0; length < 200; ++length) {
        std::vector<Unit> from(length);
        for (std::size_t i = 0; i < length; ++i) from[i] = static_cast<Unit>('A' + i % 64);
        std::vector<Unit> to(length + 1, Unit('#'));
        EXPECT_EQ(copySome(to.data(), length + 1, from.data(), length), 0) << length;

        from.push_back(Unit{});
        EXPECT_EQ(to, from) << length;
        EXPECT_EQ(copyAll(to.data(), length + 1, from.data(), 0), 0) << length;
        EXPECT_EQ(to, from) << length;
        if (length > 0) {
            EXPECT_EQ(copyAll(to.data(), length, from.data(), 0), 34) << length;
        }

        std::vector<Unit> both(2 * length + 1);
        EXPECT_EQ(addAll(both.data(), both.size(), from.data(), 0), 0) << length;
        EXPECT_EQ(addAll(both.data(), both.size(), from.data(), 0), 0) << length;
        EXPECT_TRUE(std::equal(from.begin(), from.end(), both.begin() + static_cast<std::ptrdiff_t>(length))) << length;

        const auto changed = [&from](Unit first, Unit last, int distance) {
            std::vector<Unit> result = from;
            for (Unit& unit : result) {
                if (unit >= first && unit <= last) unit = static_cast<Unit>(unit + distance);
            }
            return result;
        };
        to = from;
        EXPECT_EQ(toUpper(to.data(), to.size()), 0) << length;
        EXPECT_EQ(to, changed(Unit('a'), Unit('z'), -32)) << length;
        to = from;
        EXPECT_EQ(toLower(to.data(), to.size()), 0) << length;
        EXPECT_EQ(to, changed(Unit('A'), Unit('Z'), 32)) << length;
    }
}

TYPED_TEST(BoundedText, CopiesForwardWithinOneBuffer) {
    Buffer<TypeParam> buffer("abcdef|");
    EXPECT_EQ(copyAll(buffer.at, 16, buffer.at + 2, 0), 0);
    EXPECT_EQ(buffer.picture(), "cdef|f|");
    EXPECT_EQ(copySome(buffer.at, 16, buffer.at + 1, 2), 0);
    EXPECT_EQ(buffer.picture(), "de|f|f|");
}

TYPED_TEST(BoundedText, ChangesInPlaceWhatEndsWithinTheSize) {
    using Unit = TypeParam;
    const auto upper = [](Unit* text, std::size_t size) { return toUpper(text, size); };
    const auto lower = [](Unit* text, std::size_t size) { return toLower(text, size); };
    const auto fill = [](Unit* text, std::size_t size) { return fillWith(text, size, 0x10041); };
    const auto clear = [](Unit* text, std::size_t size) { return fillWith(text, size, 0); };
    const bool sets = !underWine() || sizeof(Unit) == 2;  // Wine ends the process in _strset_s
    const struct {
        const char* when;
        int (*routine)(Unit*, std::size_t);
        const char* before;
        std::size_t size;
        int error;
        const char* after;
        bool runs;
    } rows[] = {{"upper case", upper, "aZ[z`{@|b|", 9, 0, "AZ[Z`{@|b|", true},
                {"lower case", lower, "Az[Z`{@|B|", 9, 0, "az[z`{@|B|", true},
                {"upper case without terminator", upper, "abc|", 3, 22, "|bc|", true},
                {"lower case without terminator", lower, "ABC|", 3, 22, "|BC|", true},
                {"upper case in size 0", upper, "abc|", 0, 22, "abc|", !underWine()},  // Wine empties it all the same
                {"low bits of the fill", fill, "xyz|x|", 6, 0, "AAA|x|", sets},
                {"fill of 0", clear, "xyz|x", 6, 0, "||||x", sets},
                {"fill without terminator", fill, "xyz|", 3, 22, "|yz|", sets},
                {"fill in size 0", fill, "xyz|", 0, 22, "xyz|", sets}};
    for (const auto& row : rows) {
        if (!row.runs) continue;
        Buffer<Unit> text(row.before);
        EXPECT_EQ(row.routine(text.at, row.size), row.error) << row.when;
        text.forgetRest(row.error, row.size, Buffer<Unit>(row.after));
        EXPECT_EQ(text.picture(), Buffer<Unit>(row.after).picture()) << row.when;
        EXPECT_EQ(row.routine(nullptr, 3), 22) << row.when;
    }
}

TYPED_TEST(BoundedText, GivesTokensAndLeavesTheContextAtTheEnd) {
    using Unit = TypeParam;
    const struct {
        const char *text, *delimiters, *tokens;
    } rows[] = {{"a,b;;c", ",;", "a.b.c."}, {",;abc;", ",;", "abc."}, {"abc", "", "abc."},
                {"abc", ",", "abc."},       {",,", ",", ""},          {"", ",", ""},
                {"a,", ",", "a."}};
    for (const auto& row : rows) {
        std::vector<Unit> text = units<Unit>(row.text);
        const std::vector<Unit> delimiters = units<Unit>(row.delimiters);
        Unit* const end = text.data() + text.size() - 1;
        Unit* context = nullptr;
        std::string tokens;
        for (Unit* token = nextToken(text.data(), delimiters.data(), &context); token != nullptr;
             token = nextToken(static_cast<Unit*>(nullptr), delimiters.data(), &context)) {
            while (*token != 0) tokens += static_cast<char>(*token++);
            tokens += '.';
        }
        EXPECT_EQ(tokens, row.tokens) << row.text;
        EXPECT_EQ(context, end) << row.text;
        EXPECT_EQ(nextToken(static_cast<Unit*>(nullptr), delimiters.data(), &context), nullptr) << row.text;
        EXPECT_EQ(context, end) << row.text;
    }
    Unit text[2] = {};
    Unit* none = nullptr;
    Unit* const null = nullptr;
    errno = 0;
    EXPECT_EQ(nextToken(null, text, &none), nullptr);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(nextToken(text, null, &none), nullptr);
    EXPECT_EQ(nextToken(text, text, nullptr), nullptr);
}

TEST(WideText, IsReversedUnitByUnit) {
    wchar_t text[] = L"abc\xD83D\xDE00";
    const wchar_t reversed[] =
        L"\xDE00\xD83D"
        L"cba";
    EXPECT_EQ(_wcsrev(text), text);
    EXPECT_TRUE(std::equal(text, text + 6, reversed));
    wchar_t nothing[] = L"";
    EXPECT_EQ(*_wcsrev(nothing), 0);
}

// Chooses the locale that a host would, and goes back to the one that every program starts in.
struct HostLocale {
    HostLocale() { EXPECT_NE(std::setlocale(LC_ALL, onWindows ? "" : "C.UTF-8"), nullptr); }
    ~HostLocale() { std::setlocale(LC_ALL, "C"); }
};

TEST(WideText, ComparesInLowerCase) {
    const struct {
        const wchar_t *a, *b;
        std::size_t count;
        int sign, signInHostLocale;
    } rows[] = {{L"", L"", 9, 0, 0},         {L"HEA200", L"hea200", 9, 0, 0}, {L"abc", L"ABD", 9, -1, -1},
                {L"abc", L"ABD", 2, 0, 0},   {L"ab", L"abc", 9, -1, -1},      {L"abc", L"AB", 9, 1, 1},
                {L"abc", L"x", 0, 0, 0},     {L"_", L"A", 9, -1, -1},         {L"a", L"\xFFFF", 9, -1, -1},
                {L"\xE4", L"\xC4", 9, 1, 0}, {L"\x430z", L"\x410Z", 9, 1, 0}, {L"ab\0c", L"AB\0d", 9, 0, 0}};
    const auto sign = [](int difference) { return (difference > 0) - (difference < 0); };
    for (const auto& row : rows) {
        EXPECT_EQ(sign(_wcsnicmp(row.a, row.b, row.count)), row.sign) << &row - rows;
        if (row.count == 9) {
            EXPECT_EQ(sign(_wcsicmp(row.a, row.b)), row.sign) << &row - rows;
        }
        const HostLocale chosen;
        EXPECT_EQ(sign(_wcsnicmp(row.a, row.b, row.count)), row.signInHostLocale) << &row - rows;
    }
}

std::uint32_t mixed(std::uint32_t sum, unsigned value) { return sum * 31 + value; }

// The units that change, and a checksum of what becomes of them.
template <class Change>
std::pair<int, std::uint32_t> changes(Change change) {
    std::vector<wchar_t> before(0x10000), after;
    for (unsigned unit = 1; unit < 0x10000; ++unit) before[unit - 1] = static_cast<wchar_t>(unit);
    after = before;
    EXPECT_EQ(change(after.data(), after.size()), 0);
    std::pair<int, std::uint32_t> result;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] == after[i]) continue;
        ++result.first;
        result.second = mixed(mixed(result.second, before[i]), after[i]);
    }
    return result;
}

TEST(Case, IsAMatterOfAsciiUntilTheHostChoosesALocale) {
    const auto upper = [](wchar_t* text, std::size_t size) { return _wcsupr_s(text, size); };
    const auto lower = [](wchar_t* text, std::size_t size) { return _wcslwr_s(text, size); };
    EXPECT_EQ(changes(upper).first, 26);
    EXPECT_EQ(changes(lower).first, 26);
    const HostLocale chosen;
    EXPECT_EQ(changes(upper), (std::pair<int, std::uint32_t>(1163, 1253105637u)));
    EXPECT_EQ(changes(lower), (std::pair<int, std::uint32_t>(1163, 3653988859u)));
}

TEST(Case, OfBytesIsThatOfTheAnsiPage) {
    const std::string mixedCase = "a\xE4\xDF\xFF\x9A\xC4Z\xF7\xD7\xB5", upper = "A\xC4\xDF\x9F\x8A\xC4Z\xF7\xD7\xB5",
                      lower = "a\xE4\xDF\xFF\x9A\xE4z\xF7\xD7\xB5";
    std::string text = mixedCase;
    EXPECT_EQ(_strupr_s(&text[0], text.size() + 1), 0);
    EXPECT_EQ(text, "A" + mixedCase.substr(1));
    const HostLocale chosen;
    text = mixedCase;
    EXPECT_EQ(_strupr_s(&text[0], text.size() + 1), 0);
    EXPECT_EQ(text, upper);
    EXPECT_EQ(_strlwr_s(&text[0], text.size() + 1), 0);
    EXPECT_EQ(text, lower);
}

TEST(CharacterTypes, AreThoseOfWindows) {
    const auto members = [](auto is) {
        std::pair<int, std::uint32_t> result;
        for (unsigned unit = 0; unit < 0x10000; ++unit) {
            if (!is(static_cast<unsigned short>(unit))) continue;
            ++result.first;
            result.second = mixed(result.second, unit);
        }
        return result;
    };
    using Members = std::pair<int, std::uint32_t>;
    EXPECT_EQ(members([](unsigned short unit) { return crt::iswalpha(unit); }), Members(49027, 1499608394u));
    EXPECT_EQ(members([](unsigned short unit) { return crt::iswdigit(unit); }), Members(373, 2059054055u));
    EXPECT_EQ(members([](unsigned short unit) { return crt::iswalnum(unit); }), Members(49400, 2755545045u));
}

}  // namespace
