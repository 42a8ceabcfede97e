// The library's progress dialog and what it tracks of it.
#pragma once

#include <roots/platform/Win32.h>

// Defined in Library.cpp. The bar's handle is kept when the dialog is gone.
extern HINSTANCE g_hInstance;   // the library's own module, whose resources it loads
extern HWND g_hProgressDialog;  // null where no dialog is up
extern HWND g_hProgressBar;

namespace progress {

// Numbers of the dialog and of its controls; Dialogs.inc has all but the bar.
enum { kDialog = 101, kBar = 1001, kTitle = 1002, kPercentage = 1003 };

// The dialog's procedure. Its creation parameter is null or the BryString to use as the bar's text.
INT_PTR CALLBACK progressDialogProc(HWND dialog, UINT message, WPARAM first, LPARAM second);

// A smooth bar that goes from 0 to max in steps of step, at that place of the dialog's client area, in pixels. Null,
// and a message box, where it cannot be made.
HWND createProgressBar(HWND dialog, const RECT& place, int id, HINSTANCE module, int max, int step,
                       const wchar_t* text);

// Moves the bar of the dialog that is up, and writes the percentage below it.
void showPercentage(int percent);

}  // namespace progress
