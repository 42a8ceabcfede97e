#include <gtest/gtest.h>
#include <roots/platform/Win32.h>

#include <set>
#include <sstream>

#include "tests/support/Dialogs.h"

namespace {

enum { kBar = 1001, kTitle = 1002, kLabel = 1003 };

HWND g_dialog, g_bar;
UINT g_destroyAt;           // the message at which the procedure destroys its dialog
std::ostringstream g_seen;  // in hexadecimal

// Notes the messages that do not come of a screen, a keyboard or a mouse; handles by their controls' numbers, of fonts
// and texts only that they are there.
INT_PTR CALLBACK record(HWND dialog, UINT message, WPARAM first, LPARAM second) {
    static const std::set<UINT> noted = {WM_CREATE,  WM_SETTEXT,    WM_CLOSE,   WM_SHOWWINDOW, WM_SETFONT,
                                         WM_COMMAND, WM_INITDIALOG, WM_DESTROY, WM_NCDESTROY,  WM_PARENTNOTIFY};
    if (noted.count(message) == 0) return FALSE;
    g_dialog = dialog;
    if (message == WM_PARENTNOTIFY)
        second = (g_bar = reinterpret_cast<HWND>(second)) == GetDlgItem(dialog, kBar) ? kBar : 0;
    if (message == WM_INITDIALOG) first = reinterpret_cast<HWND>(first) == GetDlgItem(dialog, kTitle) ? kTitle : 0;
    if (message == WM_SETFONT) first = first != 0;
    if (message == WM_SETTEXT) second = 0;
    g_seen << std::hex << message << ' ' << first << ' ' << second << "; ";
    if (message == WM_INITDIALOG)
        g_bar = CreateWindowExW(0, L"MSCTLS_Progress32", L"", WS_CHILD | WS_VISIBLE, 10, 40, 290, 20, dialog,
                                reinterpret_cast<HMENU>(INT_PTR{kBar}), nullptr, nullptr);
    if (message == g_destroyAt) DestroyWindow(dialog);
    return message == WM_INITDIALOG;
}

void create() { CreateDialogParamW(nullptr, MAKEINTRESOURCEW(101), nullptr, record, 0x77); }

class WindowsTest : public testing::Test {
protected:
    void SetUp() override {
        if (!hasDisplay()) GTEST_SKIP() << "no display";
        provideDialogs();
        g_destroyAt = 0;
        create();
    }
    void TearDown() override { DestroyWindow(g_dialog); }
};

}  // namespace

TEST_F(WindowsTest, DialogProceduresSeeTheirMessagesInOrder) {
    DestroyWindow(g_dialog);
    // clang-format off
    const struct { const char* when; void (*action)(); const char* messages; } rows[] = {
        {"created", create, "30 1 0; 110 3ea 77; 210 3e90001 3e9; 18 1 0; "},
        {"shown though visible", [] { EXPECT_NE(ShowWindow(g_dialog, SW_SHOW), FALSE); }, ""},
        {"a control's text", [] { EXPECT_NE(SetDlgItemTextW(g_dialog, kTitle, L"Plates"), FALSE); }, ""},
        {"its text", [] { SendMessageW(g_dialog, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"Marks")); }, "c 0 0; "},
        {"found", [] { EXPECT_EQ(FindWindowW(L"#32770", L"mARKS"), g_dialog); }, ""},
        {"a command", [] { SendMessageW(g_dialog, WM_COMMAND, IDCANCEL, 7); }, "111 2 7; "},
        {"ended", [] { EXPECT_NE(EndDialog(g_dialog, IDOK), FALSE); }, ""},
        {"shown again", [] { EXPECT_EQ(ShowWindow(g_dialog, SW_SHOW), FALSE); }, "18 1 0; "},
        {"hidden", [] { EXPECT_NE(ShowWindow(g_dialog, SW_HIDE), FALSE); }, "18 0 0; "},
        {"a control destroyed", [] { DestroyWindow(GetDlgItem(g_dialog, kLabel)); }, ""},
        {"the bar destroyed", [] { DestroyWindow(g_bar); }, "210 3e90002 3e9; "},
        {"destroyed", [] { EXPECT_NE(DestroyWindow(g_dialog), FALSE); }, "2 0 0; 82 0 0; "},
    };
    // clang-format on
    for (const auto& row : rows) {
        g_seen.str("");
        row.action();
        EXPECT_EQ(g_seen.str(), row.messages) << row.when;
    }
}

TEST_F(WindowsTest, ProgressBarsStayInTheirRange) {
    const LPARAM all = MAKELPARAM(0, 100), part = MAKELPARAM(10, 50), most = MAKELPARAM(0, -1),
                 even = MAKELPARAM(-50, 50);
    // clang-format off
    const LRESULT rows[][5] = {  // message, its parameters, the answer, where the bar is then
        {PBM_GETRANGE, 0, 0, 100, 0}, {PBM_SETSTEP, 1, 0, 10, 0}, {PBM_SETPOS, -5, 0, 0, 0}, {PBM_DELTAPOS, 160, 0, 0, 100},
        {PBM_DELTAPOS, -1, 0, 100, 99}, {PBM_STEPIT, 0, 0, 99, 100}, {PBM_STEPIT, 0, 0, 100, 1}, {PBM_SETPOS, 101, 0, 1, 100},
        {PBM_SETPOS, 1, 0, 100, 1}, {PBM_SETSTEP, -7, 0, 1, 1}, {PBM_STEPIT, 0, 0, 1, 94}, {PBM_SETSTEP, 1000, 0, -7, 94},
        {PBM_STEPIT, 0, 0, 94, 94}, {PBM_SETRANGE, 0, part, all, 50}, {PBM_GETRANGE, 1, 0, 10, 50},
        {PBM_SETRANGE, 0, most, part, 50}, {PBM_SETPOS, 60000, 0, 50, 60000}, {PBM_SETRANGE32, -50, 50, most, 50},
        {PBM_SETPOS, -60, 0, 50, -50}, {PBM_SETRANGE, 0, 0, even, 0}, {PBM_STEPIT, 0, 0, 0, 0}, {PBM_GETSTEP, 0, 0, 1000, 0}};
    // clang-format on
    for (const auto& [message, first, second, answer, position] : rows) {
        const LRESULT got = SendMessageW(g_bar, static_cast<UINT>(message), static_cast<WPARAM>(first), second);
        EXPECT_EQ(got, answer) << message << ' ' << position;
        EXPECT_EQ(SendMessageW(g_bar, PBM_GETPOS, 0, 0), position) << message;
    }
}

TEST_F(WindowsTest, StaleHandlesAndUnknownNumbersAreRefused) {
    const HWND dialog = g_dialog, bar = g_bar;
    DestroyWindow(dialog);
    create();
    for (const HWND stale : {HWND{}, dialog, bar}) {
        EXPECT_EQ(IsWindow(stale) | IsWindowVisible(stale) | DestroyWindow(stale) | ShowWindow(stale, SW_SHOW), FALSE);
        EXPECT_EQ(EndDialog(stale, 1) | SetDlgItemTextW(stale, kTitle, L"") | SendMessageW(stale, PBM_STEPIT, 0, 0), 0);
        EXPECT_EQ(CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 1, 1, stale, nullptr, nullptr, nullptr), nullptr);
    }
    wchar_t text[4] = L"abc";
    EXPECT_EQ(GetDlgItemTextW(g_dialog, kTitle, text, 3), 2u) << "with the terminator";
    EXPECT_EQ(GetDlgItemTextW(g_dialog, 77, text, 4), text[0]) << "empty";
    EXPECT_EQ(SetDlgItemTextW(g_dialog, 77, L"x") | EndDialog(g_bar, 1), FALSE);
    EXPECT_EQ(CreateWindowExW(0, L"none", L"", WS_CHILD, 0, 0, 1, 1, g_dialog, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(CreateDialogParamW(nullptr, MAKEINTRESOURCEW(102), nullptr, record, 0), nullptr);
}

TEST_F(WindowsTest, ProceduresMayDestroyTheirDialogAtAnyMessage) {
    for (const UINT at : {WM_SETFONT, WM_INITDIALOG, WM_PARENTNOTIFY, WM_SHOWWINDOW, WM_COMMAND, WM_DESTROY}) {
        DestroyWindow(g_dialog);
        g_destroyAt = at;
        create();
        SendMessageW(g_dialog, WM_COMMAND, IDOK, 0);
        DestroyWindow(g_dialog);
        EXPECT_EQ(IsWindow(g_dialog) | IsWindow(g_bar), FALSE) << at;
    }
}
