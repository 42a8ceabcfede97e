// What tests of dialogs need of the system they run on.
#pragma once

#include <roots/platform/Win32.h>

#ifdef _WIN32
// Registers the progress bar's class too, as hosts do.
inline bool hasDisplay() {
    InitCommonControls();
    const HWND window = CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    return window != nullptr && DestroyWindow(window);
}

// The library's dialogs are among the resources of the program that tests the system.
inline void provideDialogs() {}
#else
#    include <roots/progress/DialogTemplates.h>
inline bool hasDisplay() { return true; }
inline void provideDialogs() { platform::setDialogs(nullptr, progress::kDialogs, std::size(progress::kDialogs)); }
#endif
