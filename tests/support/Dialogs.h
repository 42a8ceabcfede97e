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

// What the host's message loop does while there are messages.
inline void handlePosted(HWND dialog) {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
        if (!IsDialogMessageW(dialog, &message)) DispatchMessageW(&message);
}

// The library's dialogs are among the resources of the program that tests the system.
inline void provideDialogs() {}
#else
#    include <roots/progress/DialogTemplates.h>
inline bool hasDisplay() { return true; }
inline void handlePosted(HWND) {}
inline void provideDialogs() { platform::setDialogs(nullptr, progress::kDialogs, std::size(progress::kDialogs)); }
#endif
