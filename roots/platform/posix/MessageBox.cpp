#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/Utf.h>

#include <unistd.h>

#include <new>
#include <string>

namespace {

using namespace platform;

constexpr UINT kIcons = 0xF0;
constexpr unsigned kReplacement = 0xFFFD;

bool isControl(unsigned value) { return value < 0x20 || (value >= 0x7F && value < 0xA0); }

// The character as a terminal may be shown it: what would move the cursor, change colours or write back is replaced.
unsigned harmless(unsigned value) {
    const bool half = isHighSurrogate(value) || isLowSurrogate(value);
    return half || (isControl(value) && value != '\n' && value != '\t') ? kReplacement : value;
}

// CR LF and a CR of its own are line ends here, as they are in a box.
void append(std::string& shown, const wchar_t* text) {
    for (; *text != 0; ++text) {
        unsigned value = *text;
        if (value == '\r') {
            if (text[1] == L'\n') continue;
            value = '\n';
        } else if (isHighSurrogate(value) && isLowSurrogate(text[1])) {
            value = pairValue(value, *++text);
        }
        encodeUtf8(harmless(value), [&shown](unsigned byte) { shown += static_cast<char>(byte); });
    }
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
        std::fwrite(shown.data(), 1, shown.size(), stderr);
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    waitForEnter();
    return IDOK;
}
