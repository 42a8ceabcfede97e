#include <gtest/gtest.h>
#include <roots/numbering/BryIncrementalCounter.h>

#include <algorithm>
#include <climits>
#include <numeric>
#include <string>
#include <vector>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/Printers.h"

namespace {

using Values = std::vector<int>;
constexpr auto eIncremented = BryIncrementalCounter::eIncremented, eMaxReached = BryIncrementalCounter::eMaxReached;

StructIncrementalCounter dataOf(const BryString& init, int range, const BryString& start, const BryString& excluded,
                                int max = -1) {
    return {7, L"a", start, init, range, excluded, max, L"b"};
}

struct Counter : BryIncrementalCounter {
    Counter() = default;
    explicit Counter(const StructIncrementalCounter& data) { EXPECT_EQ(setDataFrom(data), 1); }
    using BryIncrementalCounter::incrementAtPosition;
    using BryIncrementalCounter::initChar;
};

// The text of characters of 16 bits; a 0 does not show.
BryString textOf(const Values& values) {
    std::vector<wchar_t> text;
    for (const int value : values)
        if (value != 0) text.push_back(static_cast<wchar_t>(value));
    text.push_back(0);
    return BryString(text.data());
}

// The rule in whole numbers, a position an element.
struct Model {
    int first, range;
    bool isNumeric;
    Values excluded, value;

    // How far a position moves: to the next character that may stand there, or to the first behind the alphabet.
    int next(int c, const Values& skipped) const {
        const auto mayStop = [&](int at) {
            const bool isSkipped = at == 0 ? !skipped.empty() : std::count(skipped.begin(), skipped.end(), at) != 0;
            return !isSkipped || at - first >= range;
        };
        for (int k = 1; k < 0x10000; ++k)
            if (mayStop((c + k) & 0xFFFF)) return (c + k) & 0xFFFF;
        return c;
    }

    void increment() {
        auto position = value.rbegin();
        for (; position != value.rend(); ++position) {
            *position = next(*position, excluded);
            if (*position != first + range) return;
            *position = isNumeric ? '0' : first;
        }
        Values skipped = excluded;
        if (isNumeric) skipped.push_back('0');
        const int front = next((first - 1) & 0xFFFF, skipped);
        value.insert(value.begin(), front != first + range ? front : isNumeric ? '0' : first);
    }
};

}  // namespace

TEST(BryIncrementalCounter, AgreesWithTheModelForEverySmallAlphabet) {
    // Every set of excluded characters and every start of at most three positions from one below the alphabet to one
    // above it. 0x2F lies below the digits, and 0xFFFD + 3 reaches the end of 16 bits.
    for (const int first : {0x30, 0x31, 0x2F, 0x41, 1, 0, 0xFFFD, 0xFFFF}) {
        for (int range = -1; range <= 3; ++range) {
            const int low = std::max(first - 1, 1), symbols = std::min(first + range, 0xFFFF) - low + 1;
            for (int set = 0; set < 1 << std::max(symbols, 0); ++set) {
                Values excluded;
                for (int i = 0; i < symbols; ++i)
                    if (set >> i & 1) excluded.push_back(low + i);
                const int base = std::max(symbols, 1) + 1;
                for (int n = 0; n < base * base * base; ++n) {
                    Values start;
                    for (int rest = n; rest > 0; rest /= base)
                        if (rest % base != 0) start.push_back(low + rest % base - 1);
                    const BryString init = first == 0 ? BryString() : BryString(L"x1") + textOf({first});
                    const auto isDigit = [](int c) { return c >= '0' && c <= '9'; };
                    const bool digits = std::all_of(start.begin(), start.end(), isDigit);
                    // "x" makes it a letter counter, without it the first symbol decides.
                    for (const BryString& prefix : {init, textOf({first})}) {
                        const bool isNumeric = digits && prefix.IsNumeric();
                        Model model{first, range, isNumeric, excluded, start};
                        Counter counter(dataOf(prefix, range, textOf(start), textOf(excluded)));
                        for (int step = 0; step < 4; ++step) {
                            ASSERT_EQ(counter.getCounterString(), textOf(model.value))
                                << "alphabet " << first << '+' << range << ", excluded "
                                << testing::PrintToString(excluded) << ", start " << testing::PrintToString(start)
                                << ", step " << step;
                            ASSERT_EQ(counter.increment(), eIncremented);
                            model.increment();
                        }
                    }
                }
            }
        }
    }
}

TEST(BryIncrementalCounter, GivesTheValuesThatPartsAreNumberedWith) {
    // clang-format off
    const struct { BryString init; int range; BryString excluded, value, next; } rows[] = {
        {L"0", 10, L"", L"0009", L"0010"}, {L"0", 10, L"", L"99", L"100"}, {L"0", 10, L"", L"", L"1"},
        {L"0", 10, L"0", L"9", L"10"}, {L"0", 10, L"9", L"8", L"10"}, {L"1", 9, L"", L"19", L"20"},
        {L"A", 26, L"", L"ZZ", L"AAA"}, {L"A", 26, L"IO", L"H", L"J"}, {L"A", 26, L"IO", L"NZ", L"PA"},
        {L"A", 26, L"A", L"Z", L"BA"}, {L"0", 10, L"", L"A09", L"A10"}, {L"0", 10, L"", L"Z9", L"[0"},
        {L"A", 26, L"", L"A9", L"A:"}, {L"\x4E00", 0x5000, L"\x4E02", L"\x4E01", L"\x4E03"}};
    // clang-format on
    for (const auto& row : rows) {
        Counter counter(dataOf(row.init, row.range, row.value, row.excluded));
        EXPECT_EQ(counter.increment(), eIncremented);
        EXPECT_EQ(counter.getCounterString(), row.next) << testing::PrintToString(row.value);
    }
    for (const std::size_t digits : {126u, 127u, 128u, 5000u}) {
        Counter counter(dataOf(L"0", 10, std::string(digits, '9').c_str(), L""));
        counter.increment();
        EXPECT_EQ(counter.getCounterString(), ("1" + std::string(digits, '0')).c_str()) << digits;
    }
    Values all(0xFFFF);
    std::iota(all.begin(), all.end(), 1);
    Counter closed(dataOf(L"A", INT_MAX, L"A", textOf(all)));
    EXPECT_TRUE(closed.increment() == eIncremented && closed.getCounterString() == L"A");
    int wrapped = 7;
    Counter letters(dataOf(L"0A", 26, L"", L""));
    EXPECT_TRUE(letters.initChar() == L'A' && letters.incrementAtPosition(L'Z', L"A", wrapped) == L'A' && wrapped == 1);
    EXPECT_TRUE(letters.incrementAtPosition(L'G', L"HI", wrapped) == L'J' && wrapped == 0);
}

TEST(BryIncrementalCounter, CountsTheCallsSinceTheLastReset) {
    for (const int max : {-1, 0, 1, 3, -2, INT_MAX}) {
        Counter counter(dataOf(L"0", 10, L"1", L"", max));
        for (int round = 0; round < 2; ++round, counter.reset()) {
            for (int call = 1; call < 6; ++call) {
                const bool mayGoOn = max == -1 || call < max;
                const BryString before = counter.getCounterString();
                if (call == 2) counter.setCounterString(before);  // goes on from there, and counts on
                EXPECT_EQ(counter.increment(), mayGoOn ? eIncremented : eMaxReached) << call << " of " << max;
                EXPECT_EQ(counter.getCounterString() == before, !mayGoOn);
            }
        }
    }
    BryIncrementalCounter counter;
    EXPECT_TRUE(counter.increment() == eMaxReached && counter.getCounterString().isEmpty());
    counter.setDataFrom(dataOf(L"0", 10, L"7", L""));
    counter.setCounterString(L"0099");
    BryIncrementalCounter copy(counter), assigned;
    assigned = counter;
    for (BryIncrementalCounter* c : {&copy, &counter, &assigned}) {
        c->increment();
        EXPECT_EQ(c->getCounterString(), L"0100");
        c->setCounterString(L"");
        EXPECT_TRUE(c->getCounterString().isEmpty() && c->increment() == eIncremented);
        EXPECT_EQ(c->getCounterString(), L"1");
        c->reset();
        EXPECT_EQ(c->getCounterString(), L"7");
    }
}

TEST(BryIncrementalCounter, SkipsNoValueWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    for (const std::size_t digits : {8u, 200u}) {
        Counter counter(dataOf(L"0", 10, std::string(digits, '9').c_str(), L"", 3));
        const BryString before = counter.getCounterString();
        EXPECT_GT(
            failEachAllocation([&] { counter.increment(); }, [&] { EXPECT_EQ(counter.getCounterString(), before); }),
            1);
        EXPECT_EQ(counter.getCounterString(), ("1" + std::string(digits, '0')).c_str());
        EXPECT_TRUE(counter.increment() == eIncremented && counter.increment() == eMaxReached);

        Counter other(dataOf(L"A", 26, std::string(digits + 40, 'A').c_str(), L""));
        other.increment();
        const BryString old = counter.getCounterString();
        const auto stays = [&] { EXPECT_EQ(counter.getCounterString(), old); };
        EXPECT_GT(failEachAllocation([&] { counter = other; }, stays), 0);
        counter.increment();
        EXPECT_EQ(counter.getCounterString(), (std::string(digits + 39, 'A') + "C").c_str());
    }
}
