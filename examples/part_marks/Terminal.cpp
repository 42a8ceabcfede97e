#include "Terminal.h"

#ifdef _WIN32
#    include <windows.h>

#    include <io.h>
#else
#    include <sys/ioctl.h>
#    include <unistd.h>
#endif

#ifdef _WIN32

int Terminal::columns() const {
    CONSOLE_SCREEN_BUFFER_INFO info;
    const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(m_stream)));
    return GetConsoleScreenBufferInfo(handle, &info) ? info.srWindow.Right - info.srWindow.Left + 1 : 0;
}

#else

int Terminal::columns() const {
    const int file = fileno(m_stream);
    if (isatty(file) == 0) return 0;
    const pid_t foreground = tcgetpgrp(file);
    if (foreground != -1 && foreground != getpgrp()) return 0;
    winsize size{};
    return ioctl(file, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

#endif

void Terminal::write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), m_stream);
    std::fflush(m_stream);
}
