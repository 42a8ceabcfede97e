#include <roots/platform/WideText.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/support/GuardedText.h"

namespace {

using Text = std::u16string;

// Random texts over small alphabets, whose units differ in the low or the high byte only, placed at any alignment
// before an unreadable page.
class WideTextPrimitives : public testing::Test {
protected:
    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(m_random); }

    Text make(std::size_t length, std::size_t alphabet) {
        Text text(length, u' ');
        for (char16_t& c : text) c = static_cast<char16_t>(0x100 * below(2) + 1 + below(alphabet));
        return text;
    }

    wchar_t* place(GuardedText& where, const Text& text) { return where.place(text, below(3) == 0 ? 0 : below(40)); }

    Text next() { return make(below(m_round++ % 20 == 0 ? 9000 : 150), 1 + below(4)); }

    GuardedText m_first, m_second;

private:
    std::mt19937 m_random{11};
    int m_round = 0;
};

constexpr int kRounds = 3000;

std::size_t orNpos(std::size_t found) { return found == Text::npos ? wide::npos : found; }

}  // namespace

TEST_F(WideTextPrimitives, MeasuresAndComparesWithinThePages) {
    for (int round = 0; round < kRounds; ++round) {
        const Text text = next();
        Text other = text;
        const std::size_t i = text.empty() ? 0 : below(text.size());
        if (!other.empty()) other[i] = static_cast<char16_t>(other[i] ^ 0x100);
        if (below(4) == 0) other.resize(i);
        const wchar_t* a = place(m_first, text);
        const wchar_t* b = place(m_second, text);
        ASSERT_EQ(wide::length(a), text.size());
        const std::size_t max = below(text.size() + 20);
        ASSERT_EQ(wide::length(a, max), std::min(max, text.size()));
        ASSERT_TRUE(wide::equal(a, b));
        ASSERT_EQ(wide::compare(a, b), 0);
        b = place(m_second, other);
        const int order = text.compare(other) < 0 ? -1 : text.compare(other) > 0;
        ASSERT_EQ(wide::compare(a, b), order);
        ASSERT_EQ(wide::compare(b, a), -order);
        ASSERT_EQ(wide::equal(a, b), order == 0);
        const std::size_t limit = below(text.size() + 20);
        ASSERT_EQ(wide::mismatch(a, b, limit), std::min(limit, text.empty() ? 0 : i)) << text.size() << ' ' << i;
    }
}

TEST_F(WideTextPrimitives, FindsAndCountsUnits) {
    for (int round = 0; round < kRounds; ++round) {
        const Text text = next();
        const char16_t unit = make(1, 4)[0];
        const wchar_t* a = place(m_first, text);
        const wchar_t wanted = static_cast<wchar_t>(unit);
        ASSERT_EQ(wide::find(a, text.size(), wanted), orNpos(text.find(unit)));
        ASSERT_EQ(wide::findLast(a, text.size(), wanted), orNpos(text.rfind(unit)));
        ASSERT_EQ(wide::count(a, text.size(), wanted),
                  static_cast<std::size_t>(std::count(text.begin(), text.end(), unit)));
    }
    const Text many(2'000'000, u'x');  // more than the lanes of one vector can count
    EXPECT_EQ(wide::count(reinterpret_cast<const wchar_t*>(many.data()), many.size(), L'x'), many.size());
}

TEST_F(WideTextPrimitives, FindsEveryOccurrenceOnce) {
    for (int round = 0; round < kRounds; ++round) {
        const Text text = next();
        Text what = make(1 + below(below(3) ? 5 : 60), 1 + below(3));
        if (below(2) && text.size() > what.size()) what = text.substr(below(text.size() - what.size()), what.size());
        const std::size_t start = below(text.size() + 1);
        std::vector<std::size_t> expected, found(text.size() + 1);
        for (std::size_t at = start; (at = text.find(what, at)) != Text::npos; at += what.size())
            expected.push_back(at);
        const wchar_t* a = place(m_first, text);
        const wchar_t* w = place(m_second, what);
        found.resize(wide::findEach(a, text.size(), start, w, what.size(), found.data(), found.size()));
        ASSERT_EQ(found, expected) << what.size() << " in " << text.size();
        ASSERT_EQ(wide::find(a, text.size(), w, what.size()), orNpos(text.find(what)));
        const std::size_t max = below(4);
        ASSERT_EQ(wide::findEach(a, text.size(), start, w, what.size(), found.data(), std::min(max, found.size())),
                  std::min(max, expected.size()));
    }
}

TEST_F(WideTextPrimitives, CopiesWithoutWritingPastTheEnd) {
    for (int round = 0; round < kRounds; ++round) {
        const Text text = next();
        const std::size_t n = text.size();
        const wchar_t* a = place(m_first, text);
        const char16_t unit = make(1, 4)[0];
        const auto result = [&](std::size_t length, auto&& fill) {
            wchar_t* out = m_second.place(Text(length, u'.'), 0);
            fill(out);
            EXPECT_EQ(out[-1], 0x7777);
            EXPECT_EQ(out[length], 0);
            return Text(out, out + length);
        };
        Text expected = text;
        std::replace(expected.begin(), expected.end(), unit, u'@');
        ASSERT_EQ(result(n, [&](wchar_t* out) { wide::copyReplaced(out, a, n, static_cast<wchar_t>(unit), L'@'); }),
                  expected);
        ASSERT_EQ(result(n, [&](wchar_t* out) { wide::copyReversed(out, a, n); }), Text(text.rbegin(), text.rend()));
        expected = text;
        expected.erase(std::remove(expected.begin(), expected.end(), unit), expected.end());
        const std::size_t kept = expected.size();
        ASSERT_EQ(result(kept, [&](wchar_t* out) { wide::copyWithout(out, kept, a, n, static_cast<wchar_t>(unit)); }),
                  expected);
    }
}

TEST_F(WideTextPrimitives, WipesThroughTheTerminatorAndNothingElse) {
    for (int round = 0; round < kRounds; ++round) {
        const Text text = next();
        const std::size_t spare = below(40);
        wchar_t* const a = m_first.place(text, spare);
        wide::wipe(a);
        ASSERT_EQ(Text(a, a + text.size() + 1), Text(text.size() + 1, u'\0'));
        ASSERT_EQ(Text(a + text.size() + 1, a + text.size() + 1 + spare), Text(spare, 0x7777));
        ASSERT_EQ(Text(a - 20, a), Text(20, 0x7777));
    }
}
