// What a message box shows: on Windows the real one is found, read and closed, elsewhere it goes to the error stream.
#pragma once

#include <gtest/gtest.h>
#include <roots/text/BryString.h>

#include <thread>

#include "Dialogs.h"
#include "Platform.h"

#ifdef _WIN32

// The text of the box with this caption that the action shows. Waits up to ten seconds for it, and closes it.
template <class Action>
BryString shownInBox(const wchar_t* caption, Action action) {
    wchar_t text[1000] = L"there was no message box";
    std::thread user([&] {
        HWND box = nullptr;
        for (int i = 0; i < 1000 && (box == nullptr || !IsWindowVisible(box)); ++i, Sleep(10))
            box = FindWindowW(L"#32770", caption);
        if (box == nullptr) return;
        GetDlgItemTextW(box, 0xFFFF, text, sizeof text / sizeof *text);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    });
    action();
    user.join();
    return text;
}

#else

template <class Action>
BryString shownInBox(const wchar_t* caption, Action action) {
    testing::internal::CaptureStderr();
    action();
    const BryString shown(testing::internal::GetCapturedStderr().c_str());
    const int before = BryString(caption).length();
    EXPECT_EQ(shown.left(before), caption);
    return shown.mid(before + 2, shown.length() - before - 3);
}

#endif
