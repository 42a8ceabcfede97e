#include "ProgressLine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

// A terminal of a row, which shows what is written to it.
struct Row : Terminal {
    explicit Row(int columns) : Terminal(nullptr), m_columns(columns) {}
    int columns() const override { return m_columns; }
    void write(const std::string& text) override {
        const std::size_t start = text.rfind('\r') + 1;
        EXPECT_EQ(text.substr(0, start), "\r" + std::string(static_cast<std::size_t>(m_columns - 1), ' ') + "\r");
        if (start < text.size()) last = text.substr(start);
        isBlank = start == text.size();
        ++writes;
    }
    int m_columns;
    std::string last;  // that was not blank
    std::atomic<bool> isBlank{true};
    std::atomic<int> writes{0};
};

}  // namespace

TEST(ProgressLine, ShowsNestedProcessesInTheColumnsThatThereAre) {
    const struct {
        int columns;
        const wchar_t *outer, *inner;
        std::string shown;
    } rows[] = {
        {80, L"part_marks", L"reading", "part_marks 45 % > reading 9 %"},
        {24, L"part_marks", L"reading", "part… 45 % > readi… 9 %"},
        {20, L"part_marks", L"reading", "reading 9 %"},
        {8, L"part_marks", L"reading", "9 %"},
        {13, L"m", L"\x90E8\x6750\x90E8\x6750\x90E8", "部材部… 9 %"},
    };
    for (const auto& row : rows) {
        Row terminal(row.columns);
        {
            ProgressLine line(terminal);
            ProgressLine::Aside aside(line);  // only the last state is drawn
            line.processRegistered(0, row.outer, true);
            line.processRegistered(1, row.inner, false);
            line.progressChanged(0, 45);
            line.progressChanged(1, 9);
        }
        EXPECT_EQ(terminal.last, row.shown) << row.columns;
        EXPECT_TRUE(terminal.isBlank);
    }
}

TEST(ProgressLine, DrawsAMillionReportsAsOftenAsOneCanSee) {
    Row terminal(80);
    const auto start = std::chrono::steady_clock::now();
    {
        ProgressLine line(terminal);
        line.processRegistered(0, L"part_marks", false);
        for (int i = 1; i <= 1000000; ++i) line.progressChanged(0, i);
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LE(terminal.writes, 30 * seconds.count() + 3) << "the first, the last and the blank one";
    EXPECT_EQ(terminal.last, "part_marks 1000000 %");
}

TEST(ProgressLine, StaysAwayFromWhatIsNoTerminalAndFromOtherText) {
    Row none(0), terminal(80);
    ProgressLine nothing(none), line(terminal);
    for (ProgressLine* each : {&nothing, &line}) each->processRegistered(0, L"part_marks", false);
    const auto waitUntil = [&](bool isBlank, int writes) {
        for (int i = 0; i < 1000 && (terminal.writes < writes); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_EQ(terminal.isBlank, isBlank);
    };
    waitUntil(false, 1);
    {
        const ProgressLine::Aside aside(line);
        EXPECT_TRUE(terminal.isBlank);
        const int writes = terminal.writes;
        line.progressChanged(0, 50);
        std::this_thread::sleep_for(std::chrono::milliseconds(80));
        EXPECT_EQ(terminal.writes, writes);
    }
    waitUntil(false, 3);
    EXPECT_EQ(terminal.last, "part_marks 50 %");
    line.processRegistered(1, L"reading", false);
    line.processDeRegistered(0);  // as a cancel begins
    line.processDeRegistered(1);
    waitUntil(true, 4);
    EXPECT_EQ(none.writes, 0);
}
