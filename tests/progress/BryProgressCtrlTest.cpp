#include <gtest/gtest.h>
#include <roots/progress/BryProgressCtrl.h>

#include <functional>
#include <utility>

#include "tests/support/FailNthAllocation.h"
#include "tests/support/MessageBoxes.h"
#include "tests/support/Printers.h"

namespace {

using Ctrl = BryProgressCtrl;

HWND dialog() { return FindWindowW(L"#32770", nullptr); }

BryString shown(int control) {
    wchar_t text[600] = L"no such control";
    GetDlgItemTextW(dialog(), control, text, 600);
    return text;
}

LRESULT bar(UINT message) { return SendMessageW(GetDlgItem(dialog(), 1001), message, 0, 0); }

// Writes down what it is asked; answers whether it is active.
struct Recorder : BryProgressCtrlWindow {
    ~Recorder() override { Ctrl::removeOutputWindow(this); }
    int activate(BryString title) override { return say(title); }
    int reset() override { return say(L"reset"); }
    int setPercentage(int percent, int force) override { return say(BryString().format(L"%d,%d", percent, force)); }
    int setTitle(const BryString& title) override { return say(title); }
    int say(const BryString& call) {
        s_calls += m_name + call + L" ";
        if (const auto once = std::exchange(m_inCall, nullptr)) once();
        return getActivity();
    }

    BryString m_name = L"N:";
    std::function<void()> m_inCall;
    static inline BryString s_calls;
};

}  // namespace

TEST(BryProgressCtrl, ShowsTitleBarAndPercentage) {
    if (!hasDisplay()) GTEST_SKIP() << "no display";
    EXPECT_EQ(Ctrl::isActive(1) + Ctrl::reset(), 1);
    EXPECT_EQ(Ctrl::activate(L"Reading"), 1);
    EXPECT_EQ(shown(1002) + shown(1003), IsWindowVisible(dialog()) ? L"Reading" : L"hidden");
    EXPECT_EQ(bar(PBM_GETRANGE) * 1000 + bar(PBM_SETSTEP), 100001);
    int now = -1;
    const int rows[][4] = {{42, 0, 1, 42},  {42, 1, 0, 42}, {30, 0, 0, 42}, {30, -2, 1, 30},
                           {101, 0, 0, 30}, {-1, 1, 0, 30}, {0, 1, 1, 0},   {100, 0, 1, 100}};
    for (const auto& [percent, force, answer, at] : rows) {
        EXPECT_EQ(Ctrl::setPercentage(percent, force), answer) << percent;
        EXPECT_EQ(Ctrl::getPercentage(now) * 1000 + now, 1000 + at) << percent;
        EXPECT_EQ(shown(1003) + (bar(PBM_GETPOS) == at ? L"" : L"?"), BryString().format(L"%d%%", at)) << percent;
    }
    BryString longTitle, title;
    for (int i = 0; i < 500; ++i) longTitle += L"x";
    for (const BryString& each : {longTitle, BryString(L"\x90E8\x6750\x756A\x53F7"), BryString()}) {
        EXPECT_EQ(Ctrl::setTitle(each) + Ctrl::getTitle(title), 2);
        EXPECT_TRUE(shown(1002) == each && title == each) << each.length();
    }
    const HWND first = dialog();
    EXPECT_EQ(Ctrl::activate(L"Comparing") + Ctrl::isActive(1) + IsWindow(first) + bar(PBM_GETPOS) + Ctrl::reset(), 3);
    EXPECT_EQ(Ctrl::setPercentage(0, 1) + Ctrl::setPercentage(3, 0) + Ctrl::setTitle(L"Idle"), 0) << "not showing";
    EXPECT_EQ(Ctrl::getTitle(title) + Ctrl::getPercentage(now) + now + title.length(), 1 + 1 + 3 + 4) << "remembered";
    Recorder own;
    EXPECT_EQ(own.BryProgressCtrlWindow::activate(L"R") + own.BryProgressCtrlWindow::reset(), 2);
    EXPECT_EQ(std::exchange(Recorder::s_calls, L""), L"N:reset ") << "activate calls the override";
    for (const WPARAM button : {IDOK, IDCANCEL}) {
        EXPECT_EQ(Ctrl::activate(L"A"), 1);
        SendMessageW(dialog(), WM_COMMAND, button | 0x50000, 0);
        EXPECT_FALSE(IsWindowVisible(dialog()));
        EXPECT_EQ(Ctrl::setPercentage(5, 0) + Ctrl::setTitle(L"B") + Ctrl::isActive(0) + Ctrl::reset(), 4) << "closed";
        EXPECT_EQ(Ctrl::isActive(1) + Ctrl::setPercentage(5, 0) + Ctrl::setTitle(L"B") + Ctrl::reset(), 3) << "none";
    }
}

TEST(BryProgressCtrl, CallsTheWindowsThatAreOnInOrder) {
    BryString title = L"kept";
    int percent = 77;
    Recorder a, b, c, more[20];
    a.m_name = L"A:", b.m_name = L"B:", c.m_name = L"C:";
    a.setActivity(1), b.setActivity(1);
    EXPECT_EQ(Ctrl::appendOutputWindow(&a), 1);
    EXPECT_EQ(Ctrl::activate(L"T") + Ctrl::reset() + Ctrl::getTitle(title) + Ctrl::getPercentage(percent), 0)
        << "all off";
    EXPECT_EQ(title.length() + percent, 4 + 77);
    b.switchOn();
    EXPECT_EQ(Ctrl::appendOutputWindow(&b) + Ctrl::setTitle(L"T"), 3) << "it keeps its own switch";
    EXPECT_EQ(Ctrl::appendOutputWindow(&b) + Ctrl::setTitle(L"U"), 2) << "it is off now";
    EXPECT_EQ(Ctrl::appendOutputWindow(&c), 3);
    a.switchOn(), b.switchOn(), c.switchOn();
    b.BryProgressCtrlWindow::setPercentage(9, 0);
    EXPECT_EQ(Ctrl::getPercentage(percent) + percent, 1) << "that of the first one";
    EXPECT_EQ(Ctrl::activate(L"V") + Ctrl::setPercentage(200, 3) + Ctrl::reset(), 6) << "C answers 0";
    b.m_inCall = [&] {
        EXPECT_EQ(Ctrl::removeOutputWindow(&c) + Ctrl::removeOutputWindow(&b), 3 + 2);
        for (Recorder& window : more) Ctrl::appendOutputWindow(&window);
        a.switchOn(), Ctrl::setTitle(L"inner");
    };
    EXPECT_EQ(Ctrl::setTitle(L"outer"), 2);
    EXPECT_EQ(Recorder::s_calls,
              L"B:T A:V B:V C:V A:200,3 B:200,3 C:200,3 A:reset B:reset C:reset "
              L"A:outer B:outer A:inner ");
    EXPECT_EQ(Ctrl::removeOutputWindow(&a), 1);
    EXPECT_EQ(Ctrl::removeOutputWindow(&a) + Ctrl::removeOutputWindow(nullptr) + Ctrl::appendOutputWindow(nullptr), -3);
    EXPECT_EQ(Ctrl::appendOutputWindow(&more[5]), 7) << "the others keep their positions";
    Ctrl::isActive(1), Ctrl::m_ProgressCtrlWindowController->appendOutputWindow(&c);
    EXPECT_EQ(Ctrl::setTitle(L"W"), 0) << "only C, which answers 0, is on";
    auto* const controller = std::exchange(Ctrl::m_ProgressCtrlWindowController, nullptr);  // as at the unloading
    EXPECT_EQ(Ctrl::reset() + Ctrl::getTitle(title) + Ctrl::isActive(1) + Ctrl::removeOutputWindow(&a), -1);
    Ctrl::m_ProgressCtrlWindowController = controller;
}

TEST(BryProgressCtrl, CopiesOfAWindowHaveATitleOfTheirOwn) {
    BryProgressCtrlWindow window, other;
    BryString title;
    window.setTitle(L"Welds"), window.setPercentage(9, 0), window.switchOn(), window.setActivity(1);
    BryProgressCtrlWindow copy(window);
    EXPECT_EQ(&(other = window), &(other = *&other));
    window.setTitle(L"Bolts"), window.reset();
    int percent = 0;
    EXPECT_EQ(other.getTitle(title) + copy.getPercentage(percent) + other.getOn() + copy.getOn() + percent, 4 + 9);
    EXPECT_EQ(title, L"Welds");
}

// Wherever memory is out, the dialog does without what could not be made, and the next call finds all in order.
TEST(BryProgressCtrl, SaysThatThereIsNoBarAndGoesOn) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    int boxes = Ctrl::isActive(1);
    for (long nth = 1, failed = 1; failed != 0; ++nth) {
        testing::internal::CaptureStderr();
        try {
            const FailNthAllocation failing(nth);
            Ctrl::activate(BryString());
            failed = failing.happened();
            Ctrl::setPercentage(5, 0);
        } catch (const std::bad_alloc&) {
        }
        boxes += testing::internal::GetCapturedStderr() == "Error: Progress Bar not created!\n" && shown(1003) == L"5%";
        EXPECT_TRUE(Ctrl::reset() == 1 && dialog() == nullptr) << nth;
    }
    EXPECT_GT(boxes, 0);
}
