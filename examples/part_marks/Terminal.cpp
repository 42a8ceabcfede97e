#include "Terminal.h"

#include "Utf8.h"

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

namespace {

struct Range {
    unsigned first, last;
};

// What goes onto the character before it.
constexpr Range kOntoOthers[] = {
    {0x300, 0x36F},   {0x483, 0x489},    {0x591, 0x5BD},   {0x610, 0x61A},   {0x64B, 0x65F},   {0x670, 0x670},
    {0x6D6, 0x6DC},   {0x6DF, 0x6E4},    {0x900, 0x902},   {0x93C, 0x93C},   {0x941, 0x948},   {0x94D, 0x94D},
    {0xE31, 0xE31},   {0xE34, 0xE3A},    {0xE47, 0xE4E},   {0x1AB0, 0x1ACE}, {0x1DC0, 0x1DFF}, {0x200B, 0x200D},
    {0x2060, 0x2064}, {0x20D0, 0x20F0},  {0x302A, 0x302D}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
    {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF}};

// East Asian characters and pictures, and the few narrow ones among them.
constexpr Range kWide[] = {
    {0x1100, 0x115F}, {0x231A, 0x231B}, {0x2329, 0x232A}, {0x23E9, 0x23F3},   {0x25FD, 0x25FE},   {0x2600, 0x27BF},
    {0x2B00, 0x2BFF}, {0x2E80, 0xA4CF}, {0xA960, 0xA97F}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE1F},
    {0xFE30, 0xFE6F}, {0xFF01, 0xFF60}, {0xFFE0, 0xFFE6}, {0x16FE0, 0x1B2FF}, {0x1F000, 0x1FAFF}, {0x20000, 0x3FFFD}};

// Those that turn round what follows included.
constexpr Range kControls[] = {{0, 0x1F}, {0x7F, 0x9F}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

constexpr unsigned kReplacement = 0xFFFD, kPictureForm = 0xFE0F;

template <std::size_t Count>
bool isIn(const Range (&ranges)[Count], unsigned character) {
    for (const Range& range : ranges)
        if (character >= range.first && character <= range.last) return true;
    return false;
}

bool isHighSurrogate(unsigned unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(unsigned unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The character that begins there, as it may be shown; at moves to its last unit.
unsigned shownCharacter(const wchar_t*& at) {
    const unsigned unit = *at;
    if (isHighSurrogate(unit) && isLowSurrogate(at[1])) return 0x10000 + ((unit - 0xD800) << 10) + (*++at - 0xDC00u);
    if (isHighSurrogate(unit) || isLowSurrogate(unit)) return kReplacement;
    if (unit == '\n' || unit == '\r' || unit == '\t') return ' ';
    return isIn(kControls, unit) ? kReplacement : unit;
}

std::string utf8Of(unsigned character) {
    if (character < 0x10000) {
        const wchar_t text[] = {static_cast<wchar_t>(character), 0};
        return stringToUtf8(text);
    }
    const wchar_t pair[] = {static_cast<wchar_t>(0xD7C0 + (character >> 10)),
                            static_cast<wchar_t>(0xDC00 + (character & 0x3FF)), 0};
    return stringToUtf8(pair);
}

}  // namespace

std::vector<TerminalCharacter> terminalCharacters(const BryString& text) {
    std::vector<TerminalCharacter> characters;
    for (const wchar_t* at = text.getStringW(); *at != 0; ++at) {
        const unsigned character = shownCharacter(at);
        const bool isMark = isIn(kOntoOthers, character);
        if (!isMark || characters.empty()) characters.emplace_back();
        TerminalCharacter& last = characters.back();
        last.text += utf8Of(character);
        if (!isMark || last.columns == 0) last.columns = isIn(kWide, character) ? 2 : 1;
        if (character == kPictureForm) last.columns = 2;
    }
    return characters;
}
