#include <roots/files/BryWinMessage.h>

#include <roots/platform/Win32.h>

void BryWinMessage::messageBox(const BryString& text) {
    MessageBoxW(nullptr, text.getStringW(), L"Norrab", MB_OK | MB_ICONINFORMATION);
}

void BryOutputDebugString(const BryString&) {}
