#include <roots/progress/ProgressDialog.h>
#include <roots/text/BryString.h>

namespace {

constexpr RECT kBarPlace = {10, 40, 300, 60};
constexpr DWORD kSmoothBar = WS_CHILD | WS_VISIBLE | 1;

}  // namespace

INT_PTR CALLBACK progress::progressDialogProc(HWND dialog, UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_CREATE: return TRUE;
        case WM_INITDIALOG: {
            const auto* const text = reinterpret_cast<const BryString*>(second);
            g_hProgressBar = createProgressBar(dialog, kBarPlace, kBar, g_hInstance, 100, 1,
                                               text != nullptr ? text->getStringW() : L"");
            return TRUE;
        }
        case WM_COMMAND:
            if (LOWORD(first) != IDOK && LOWORD(first) != IDCANCEL) return FALSE;
            EndDialog(dialog, LOWORD(first));
            return TRUE;
        default: return FALSE;
    }
}

HWND progress::createProgressBar(HWND dialog, const RECT& place, int id, HINSTANCE module, int max, int step,
                                 const wchar_t* text) {
    const HWND bar = CreateWindowExW(0, L"msctls_progress32", text, kSmoothBar, place.left, place.top,
                                     place.right - place.left, place.bottom - place.top, dialog,
                                     reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), module, nullptr);
    if (bar == nullptr) {
        MessageBoxW(nullptr, L"Progress Bar not created!", nullptr, MB_OK);
        return nullptr;
    }
    SendMessageW(bar, PBM_SETRANGE, 0, MAKELPARAM(0, max));
    SendMessageW(bar, PBM_SETSTEP, static_cast<WPARAM>(step), 0);
    return bar;
}

// The system may give a bar's handle to another window once the bar is gone: only the bar of this dialog is moved.
void progress::showPercentage(int percent) {
    if (GetDlgItem(g_hProgressDialog, kBar) == g_hProgressBar)
        SendMessageW(g_hProgressBar, PBM_SETPOS, static_cast<WPARAM>(percent), 0);
    BryString text;
    SetDlgItemTextW(g_hProgressDialog, kPercentage, text.format(L"%d%%", percent).getStringW());
}
