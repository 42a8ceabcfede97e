// The progress dialog on a terminal. A row that a test ends with a line feed stays on the screen as it was then.

#include <gtest/gtest.h>
#include <pty.h>
#include <roots/files/BryWinMessage.h>
#include <roots/platform/Win32.h>
#include <roots/progress/BryProgressCtrl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

using Ctrl = BryProgressCtrl;
using Rows = std::vector<std::string>;

// What the action writes in a process of its own that has a terminal. Afterwards the process ends by _exit.
template <class Action>
std::string written(Action action) {
    int terminal = -1;
    winsize size = {24, 41, 0, 0};
    std::fflush(stdout);  // the child would write it as well
    if (forkpty(&terminal, nullptr, nullptr, &size) == 0) {
        alarm(60), setenv("TERM", "xterm", 1);
        Ctrl::isActive(1);
        action();
        _exit(0);
    }
    std::string bytes;
    for (char byte; read(terminal, &byte, 1) == 1;) bytes += byte;
    int status = close(terminal);
    EXPECT_TRUE(wait(&status) > 0 && (status == 0 || WTERMSIG(status) == SIGINT)) << status;
    return bytes;
}

// The rows that the terminal shows then. It knows the return, the line feed and the erasure of the rest of a row.
Rows rowsOf(const std::string& bytes) {
    Rows rows(1);
    for (std::size_t i = 0, at = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        EXPECT_TRUE(c >= ' ' || c < 0 || c == '\r' || c == '\n' || bytes.compare(i, 3, "\x1b[K") == 0) << int{c};
        if (c == '\n') rows.emplace_back();
        if (c == '\r' || c == '\n') at = 0;
        if (c == '\x1b') rows.back().resize(at), i += 2;
        if (c >= ' ' || c < 0) rows.back().replace(at++, 1, 1, c);
    }
    return rows;
}

void pass() { std::this_thread::sleep_for(std::chrono::milliseconds(100)); }

void endRow() { pass(), std::fputs("\n", stderr); }

}  // namespace

TEST(ProgressLine, FitsTheTerminal) {
    // clang-format off
    const struct { const wchar_t* title; int percent; unsigned short columns; const char* row; } rows[] = {
        {L"Marking", 100, 41, "Marking [#############] 100%"},
        {L"Marking of plates", 42, 30, "Marking of plates  42%"},
        {L"Nineteen columns...", 42, 41, "Nineteen columns... [#####        ]  42%"},
        {L"One column too many.", 42, 41, "One column too man\u2026 [#####        ]  42%"},
        {L"Marking", 7, 12, "Marki\u2026   7%"}, {L"Marking", 8, 6, "   8%"}, {L"Marking", 9, 5, ""},
        {L"\u90e8\u6750\u756a\u53f7\u306e\u5272\u308a", 42, 31, "\u90e8\u6750\u756a\u53f7\u306e\u2026 [####      ]  42%"},
        {L"e\u0301\u0323\U0001F600\xD83D\u1100\u1161\u1161\u2764\uFE0F.... cut", 43, 31,
         "e\u0301\u0323\U0001F600\uFFFD\u1100\u1161\u1161\u2764\uFE0F...\u2026 [####      ]  43%"},
        {L"a\tb\nc\x1b[2Jd\x9b\x202E", 44, 41, "a b c\uFFFD[2Jd\uFFFD\uFFFD [#####        ]  44%"},
    };
    // clang-format on
    const auto steps = [&] {
        Ctrl::activate(L"Progress");
        for (const auto& row : rows) {
            const winsize size = {24, row.columns, 0, 0};
            ioctl(STDERR_FILENO, TIOCSWINSZ, &size);
            pass(), Ctrl::setTitle(row.title), Ctrl::setPercentage(row.percent, 1), endRow();
        }
    };
    Rows expected;
    for (const auto& row : rows) expected.emplace_back(row.row);
    expected.emplace_back();
    EXPECT_EQ(rowsOf(written(steps)), expected);
}

TEST(ProgressLine, ShowsTheLastValueUntilDialogOrProcessEnd) {
    const std::string nine = "M [#            ]   9%", most = "M [############ ]  99%";
    // clang-format off
    const struct { const char* when; void (*action)(); Rows rows; } cases[] = {
        {"_exit", [] {}, {nine}},
        {"interrupted", [] { raise(SIGINT); }, {""}},
        {"a million", [] { for (int i = 0; i < 1'000'000; ++i) Ctrl::setPercentage(i % 100, 1); pass(); }, {most}},
        {"no change", [] { endRow(), Ctrl::setPercentage(9, 1), Ctrl::setTitle(L"M"), pass(); }, {nine, ""}},
        {"no thread", [] {
             pthread_attr_t huge;
             pthread_attr_init(&huge), pthread_attr_setstacksize(&huge, std::size_t{1} << 60);
             pthread_setattr_default_np(&huge), Ctrl::setPercentage(50, 1), Ctrl::setPercentage(99, 1); }, {most}},
        {"reset", [] { Ctrl::setPercentage(50, 1), Ctrl::reset(), pass(); }, {""}},
        {"closed", [] { SendMessageW(FindWindowW(nullptr, nullptr), WM_CLOSE, 0, 0), Ctrl::setTitle(L"N"), pass(); }, {""}},
        {"exit", [] { Ctrl::setPercentage(50, 1), std::exit(0); }, {""}},
        {"interrupted later", [] { endRow(), Ctrl::reset(), raise(SIGINT); }, {nine, ""}},
        {"box", [] { close(0), BryWinMessage::messageBox(L"B"), Ctrl::setPercentage(99, 1), pass(); }, {"Norrab: B", most}},
        {"a forked child", [] { if (fork() == 0) Ctrl::setPercentage(50, 1), std::exit(0); wait(nullptr); }, {nine}},
        {"background", [] {
             const pid_t other = fork();
             if (other == 0) pause();
             setpgid(other, other), tcsetpgrp(STDERR_FILENO, other);
             Ctrl::setPercentage(50, 1), pass(), kill(other, SIGKILL);
         }, {nine}},
        {"dumb", [] { Ctrl::reset(), setenv("TERM", "dumb", 1), Ctrl::isActive(1), Ctrl::activate(L"N"); }, {""}},
    };
    // clang-format on
    for (const auto& row : cases) {
        const auto start = std::chrono::steady_clock::now();
        const auto action = [&] { Ctrl::activate(L"M"), pass(), Ctrl::setPercentage(9, 0), pass(), row.action(); };
        const std::string bytes = written(action);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(rowsOf(bytes), row.rows) << row.when;
        EXPECT_LE(std::count(bytes.begin(), bytes.end(), '%'), 1 + 30 * elapsed.count()) << row.when;
    }
}
