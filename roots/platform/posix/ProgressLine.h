// The line that shows a progress dialog where the error stream is a terminal; Win32.h says what it looks like.
#pragma once

namespace platform {

// Has the line show the title, cut where it must be, a bar that is percent full, and the percentage; for a percent
// below 0 no bar, and the label in place of the percentage.
void showProgressLine(const wchar_t* title, int percent, const wchar_t* label) noexcept;

// Erases the line.
void hideProgressLine() noexcept;

// While it lives, the line is erased: for what else is written to the terminal.
class ProgressLineAside {
public:
    ProgressLineAside() noexcept;
    ~ProgressLineAside();
    ProgressLineAside(const ProgressLineAside&) = delete;
    ProgressLineAside& operator=(const ProgressLineAside&) = delete;
};

}  // namespace platform
