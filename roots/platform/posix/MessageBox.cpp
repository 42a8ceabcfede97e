#include <roots/platform/Win32.h>
#include <roots/platform/posix/ProgressLine.h>
#include <roots/platform/posix/TerminalText.h>

#include <unistd.h>

#include <new>
#include <string>

namespace {

using namespace platform;

constexpr UINT kIcons = 0xF0;

// CR LF and a CR of its own are line ends here, as they are in a box.
void append(std::string& shown, const wchar_t* text) {
    bool afterReturn = false;
    forEachCharacter(text, [&](unsigned value) {
        const bool ended = afterReturn && value == '\n';
        afterReturn = value == '\r';
        if (afterReturn) value = '\n';
        if (!ended) appendUtf8(shown, isTerminalControl(value) && value != '\n' && value != '\t' ? 0xFFFD : value);
        return true;
    });
}

void waitForEnter() {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) return;
    std::fputs("Press Enter to continue ", stderr);
    for (int c = std::getchar(); c != '\n' && c != EOF;) c = std::getchar();
}

}  // namespace

int MessageBoxW(HWND, const wchar_t* text, const wchar_t* caption, UINT style) {
    if ((style & ~kIcons) != MB_OK) {
        SetLastError(ERROR_INVALID_MSGBOX_STYLE);
        return 0;
    }
    try {
        std::string shown;
        append(shown, caption != nullptr ? caption : L"Error");
        shown += ": ";
        append(shown, text != nullptr ? text : L"");
        shown += '\n';
        const ProgressLineAside aside;
        std::fwrite(shown.data(), 1, shown.size(), stderr);
        waitForEnter();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    return IDOK;
}
