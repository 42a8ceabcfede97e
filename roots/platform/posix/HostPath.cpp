#include <roots/platform/WideText.h>
#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/Utf.h>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace platform {
namespace {

bool isSeparator(wchar_t unit) { return unit == L'\\' || unit == L'/'; }

// The letter of the path's drive in lower case, or 0.
char driveOf(const wchar_t* path) {
    const unsigned letter = path[0] | 0x20u;
    return letter >= 'a' && letter <= 'z' && path[1] == L':' ? static_cast<char>(letter) : '\0';
}

const wchar_t* withoutPrefix(const wchar_t* path) {
    const bool prefixed = isSeparator(path[0]) && isSeparator(path[1]) && path[2] == L'?' && isSeparator(path[3]);
    return prefixed ? path + 4 : path;
}

std::string driveFolder(char letter) {
    const std::string variable = std::string("KELROOTS_DRIVE_") + static_cast<char>(letter - 'a' + 'A');
    if (const char* folder = std::getenv(variable.c_str()); folder != nullptr && *folder != '\0') return folder;
    return homeFolder() + "/.local/share/norrab/drive_" + letter;
}

void appendName(std::string& text, const wchar_t* name) {
    const auto add = [&text](unsigned byte) { text += static_cast<char>(byte); };
    for (; *name != 0; ++name) {
        const unsigned unit = *name;
        if (isHighSurrogate(unit) && isLowSurrogate(name[1]))
            encodeUtf8(pairValue(unit, *++name), add);
        else if (unit >= 0xDC80 && unit <= 0xDCFF)
            add(unit & 0xFF);  // a byte that wideName could not read
        else
            encodeUtf8(unit == L'\\' ? L'/' : unit, add);
    }
}

// Points and blanks at the end of the last name go; the names "." and ".." stay.
void dropTail(std::string& path, std::size_t nameAt) {
    const std::size_t slash = path.rfind('/');
    const std::size_t start = slash == std::string::npos || slash < nameAt ? nameAt : slash + 1;
    if (path.compare(start, std::string::npos, ".") == 0 || path.compare(start, std::string::npos, "..") == 0) return;
    while (path.size() > start && (path.back() == '.' || path.back() == ' ')) path.pop_back();
}

// The code point of the UTF-8 sequence at the start of text and its size; a size of 0 where it is none.
struct Decoded {
    unsigned value;
    std::size_t size;
};

Decoded decode(const unsigned char* text) {
    const unsigned lead = text[0];
    if (lead < 0x80) return {lead, 1};
    const int trails = trailCount(lead);
    if (trails == 0 || isOutOfRange(lead, text[1])) return {0, 0};
    unsigned value = leadBits(lead, trails);
    for (int i = 1; i <= trails; ++i) {
        if (!isTrail(text[i])) return {0, 0};
        value = value << 6 | (text[i] & 0x3Fu);
    }
    return {value, static_cast<std::size_t>(trails) + 1};
}

}  // namespace

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
    const passwd* user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

bool makeFolders(const std::string& path) {
    for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        mkdir(path.substr(0, at).c_str(), 0777);
    return mkdir(path.c_str(), 0777) == 0;
}

std::string hostPath(const wchar_t* path) {
    path = withoutPrefix(path);
    std::string result;
    if (const char letter = driveOf(path); letter != '\0') {
        result = driveFolder(letter) + '/';
        for (path += 2; isSeparator(*path);) ++path;
    }
    const std::size_t nameAt = result.size();
    appendName(result, path);
    dropTail(result, nameAt);
    return result;
}

bool isImpossiblePath(const wchar_t* path) noexcept {
    for (path = withoutPrefix(path); *path != 0; ++path) {
        if (*path < L' ') return true;
        if (wide::find(L"*?\"<>|", 6, *path) != wide::npos) return true;
    }
    return false;
}

bool provideDrive(const wchar_t* path) { return driveOf(withoutPrefix(path)) == 'c' && makeFolders(driveFolder('c')); }

std::size_t wideName(const char* name, wchar_t* to, std::size_t size) noexcept {
    std::size_t length = 0;
    for (const auto* at = reinterpret_cast<const unsigned char*>(name); *at != 0;) {
        const Decoded next = decode(at);
        const bool pair = next.value > 0xFFFF;
        if (length + (pair ? 2 : 1) >= size) break;
        if (next.size == 0) {
            to[length++] = static_cast<wchar_t>(0xDC00 + *at++);
            continue;
        }
        if (pair) to[length++] = highSurrogate(next.value);
        to[length++] = pair ? lowSurrogate(next.value) : static_cast<wchar_t>(next.value);
        at += next.size;
    }
    to[length] = 0;
    return length;
}

int windowsError(int hostError) noexcept {
    switch (hostError) {
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP: return 2;
        case EPERM:
        case EROFS:
        case EISDIR:
        case ETXTBSY:
        case EBUSY: return 13;
        case EDQUOT: return 28;
        case ENOTEMPTY: return 41;
        case EILSEQ: return 42;
        default: return hostError <= ERANGE ? hostError : 22;  // up to there both have the same numbers
    }
}

int failWith(int windowsError) noexcept {
    errno = windowsError;
    return -1;
}

}  // namespace platform
