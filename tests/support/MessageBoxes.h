// What a message box shows: on Windows the real one is found, read and closed, elsewhere it goes to the error stream.
#pragma once

#include <gtest/gtest.h>
#include <roots/text/BryString.h>

#include <thread>

#include "Platform.h"

#ifdef _WIN32

inline bool hasDisplay() {
    const HWND window = CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    return window != nullptr && DestroyWindow(window);
}

// Waits up to ten seconds for a message box with this caption and closes it; its text.
inline BryString closeBox(const wchar_t* caption) {
    wchar_t text[1000] = L"there was no message box";
    for (int i = 0; i < 1000; ++i, Sleep(10)) {
        const HWND box = FindWindowW(L"#32770", caption);
        if (box == nullptr || !IsWindowVisible(box)) continue;
        GetDlgItemTextW(box, 0xFFFF, text, sizeof text / sizeof *text);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        break;
    }
    return text;
}

template <class Action>
BryString shownInBox(const wchar_t* caption, Action action) {
    BryString text;
    std::thread user([&] { text = BryString(closeBox(caption).getStringW()); });
    action();
    user.join();
    return text;
}

#else

inline bool hasDisplay() { return true; }

template <class Action>
BryString shownInBox(const wchar_t* caption, Action action) {
    testing::internal::CaptureStderr();
    action();
    const BryString shown(testing::internal::GetCapturedStderr().c_str()), before = BryString(caption) + L": ";
    EXPECT_EQ(shown.left(before.length()), before);
    return shown.mid(before.length(), shown.length() - before.length() - 1);
}

#endif
