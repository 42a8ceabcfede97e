#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>

#include "BoundedUnits.h"
#include "CharacterTypes.h"

#include <unistd.h>

#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <vector>

using namespace platform;

namespace {

constexpr int kNotFound = 2;
constexpr int kNoMemory = 12;

// Zero-terminated text.
using WideText = std::vector<wchar_t>;
using AnsiText = std::vector<char>;

WideText toWide(const char* ansi) {
    WideText wide(std::strlen(ansi) + 1);
    MultiByteToWideChar(CP_ACP, 0, ansi, -1, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

AnsiText toAnsi(const wchar_t* wide) {
    AnsiText ansi(static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr)) + 1);
    WideCharToMultiByte(CP_ACP, 0, wide, -1, ansi.data(), static_cast<int>(ansi.size()), nullptr, nullptr);
    return ansi;
}

WideText fromHost(const std::string& host) {
    WideText wide(host.size() + 1);
    wideName(host.c_str(), wide.data(), wide.size());
    return wide;
}

bool sameName(const wchar_t* a, const wchar_t* b, bool anyCase) {
    for (;; ++a, ++b) {
        if (*a != *b && (!anyCase || inCase(Case::eUpper, *a) != inCase(Case::eUpper, *b))) return false;
        if (*a == 0) return true;
    }
}

// The value of an environment variable in this system's encoding, or null. Names compare without case as on Windows,
// but where this system has several spellings the very one comes first.
const char* findVariable(const wchar_t* name) {
    for (const bool anyCase : {false, true}) {
        for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
            const std::string text = *entry;
            const std::size_t equals = text.find('=');
            if (equals == 0 || equals == std::string::npos) continue;
            if (sameName(fromHost(text.substr(0, equals)).data(), name, anyCase)) return *entry + equals + 1;
        }
    }
    return nullptr;
}

template <class Unit>
errno_t duplicate(const Unit* text, Unit** copy, std::size_t* count) {
    const std::size_t size = lengthOf(text) + 1;
    *copy = static_cast<Unit*>(std::malloc(size * sizeof(Unit)));
    if (*copy == nullptr) return fail(kNoMemory);
    write(*copy, text, size - 1);
    if (count != nullptr) *count = size;
    return 0;
}

// ---- file search in a list of folders -------------------------------------------------------------------------------

bool exists(const std::string& path) { return !path.empty() && access(path.c_str(), F_OK) == 0; }

// From the root on, without "." and "..".
std::string fullPath(const std::string& path) {
    std::string from = path;
    if (path.front() != '/') {
        char* const folder = getcwd(nullptr, 0);
        if (folder != nullptr) from = std::string(folder) + '/' + path;
        std::free(folder);
    }
    std::string full;
    for (std::size_t at = 0; at < from.size();) {
        const std::size_t end = std::min(from.find('/', at), from.size());
        const std::string name = from.substr(at, end - at);
        if (name == "..")
            full.resize(full.empty() ? 0 : full.rfind('/'));
        else if (!name.empty() && name != ".")
            full += '/' + name;
        at = end + 1;
    }
    return full.empty() ? "/" : full;
}

// The next entry of a list of folders, without its quotes; list moves behind it. Semicolons separate, and colons too as
// in this system's own lists, but for the colon behind the letter of a drive.
WideText nextEntry(const wchar_t*& list) {
    WideText entry;
    bool quoted = false;
    for (; *list != 0; ++list) {
        const bool drive = entry.size() == 1 && (entry[0] | 0x20) >= L'a' && (entry[0] | 0x20) <= L'z';
        if (!quoted && (*list == L';' || (*list == L':' && !drive))) {
            ++list;
            break;
        }
        if (*list == L'"')
            quoted = !quoted;
        else
            entry.push_back(*list);
    }
    return entry;
}

// The file in the working directory, as a full path, or else below the first folder of the list that has it, the folder
// as written there; empty where there is none.
WideText findFile(const wchar_t* file, const char* list) {
    if (*file == 0) return {};
    if (const std::string here = hostPath(file); exists(here)) return fromHost(fullPath(here));
    if (list == nullptr) return {};
    const WideText folders = fromHost(list);
    for (const wchar_t* rest = folders.data(); *rest != 0;) {
        WideText path = nextEntry(rest);
        if (path.empty()) continue;
        if (path.back() != L'/' && path.back() != L'\\') path.push_back(L'/');
        path.insert(path.end(), file, file + wide::length(file) + 1);
        if (exists(hostPath(path.data()))) return path;
    }
    return {};
}

template <class Unit>
errno_t giveFound(const std::vector<Unit>& found, Unit* path, std::size_t size) {
    return found.empty() ? fail(path, kNotFound) : writeBounded(path, size, found.data(), lengthOf(found.data()));
}

// ---- messages -------------------------------------------------------------------------------------------------------

// Windows' texts; null where its number has no error.
constexpr const char* kMessages[] = {
    "No error",
    "Operation not permitted",
    "No such file or directory",
    "No such process",
    "Interrupted function call",
    "Input/output error",
    "No such device or address",
    "Arg list too long",
    "Exec format error",
    "Bad file descriptor",
    "No child processes",
    "Resource temporarily unavailable",
    "Not enough space",
    "Permission denied",
    "Bad address",
    nullptr,
    "Resource device",
    "File exists",
    "Improper link",
    "No such device",
    "Not a directory",
    "Is a directory",
    "Invalid argument",
    "Too many open files in system",
    "Too many open files",
    "Inappropriate I/O control operation",
    nullptr,
    "File too large",
    "No space left on device",
    "Invalid seek",
    "Read-only file system",
    "Too many links",
    "Broken pipe",
    "Domain error",
    "Result too large",
    nullptr,
    "Resource deadlock avoided",
    nullptr,
    "Filename too long",
    "No locks available",
    "Function not implemented",
    "Directory not empty",
    "Illegal byte sequence",
};

template <class Unit>
errno_t errorText(Unit* to, std::size_t size, int error) {
    if (to == nullptr || size == 0) return fail(kBadArgument);
    const bool known = error >= 0 && error < static_cast<int>(std::size(kMessages)) && kMessages[error] != nullptr;
    const char* const message = known ? kMessages[error] : "Unknown error";
    Unit* const end = std::copy_n(message, lengthWithin(message, size - 1), to);
    *end = Unit{};
    return 0;
}

}  // namespace

errno_t _dupenv_s(char** copy, std::size_t* count, const char* name) try {
    if (copy != nullptr) *copy = nullptr;
    if (count != nullptr) *count = 0;
    if (copy == nullptr || name == nullptr) return fail(kBadArgument);
    const char* const value = findVariable(toWide(name).data());
    return value != nullptr ? duplicate(toAnsi(fromHost(value).data()).data(), copy, count) : 0;
} catch (const std::bad_alloc&) {
    return fail(kNoMemory);
}

errno_t _wdupenv_s(wchar_t** copy, std::size_t* count, const wchar_t* name) try {
    if (copy != nullptr) *copy = nullptr;
    if (count != nullptr) *count = 0;
    if (copy == nullptr || name == nullptr) return fail(kBadArgument);
    const char* const value = findVariable(name);
    return value != nullptr ? duplicate(fromHost(value).data(), copy, count) : 0;
} catch (const std::bad_alloc&) {
    return fail(kNoMemory);
}

errno_t _searchenv_s(const char* file, const char* variable, char* path, std::size_t size) try {
    if (path == nullptr || size == 0) return fail(kBadArgument);
    if (file == nullptr || variable == nullptr) return fail(path, kBadArgument);
    const WideText found = findFile(toWide(file).data(), findVariable(toWide(variable).data()));
    return giveFound(found.empty() ? AnsiText{} : toAnsi(found.data()), path, size);
} catch (const std::bad_alloc&) {
    return fail(path, kNoMemory);
}

// The paths found are this system's own: the parts that are added have slashes.
errno_t _wsearchenv_s(const wchar_t* file, const wchar_t* variable, wchar_t* path, std::size_t size) try {
    if (path == nullptr || size == 0) return fail(kBadArgument);
    if (file == nullptr || variable == nullptr) return fail(path, kBadArgument);
    return giveFound(findFile(file, findVariable(variable)), path, size);
} catch (const std::bad_alloc&) {
    return fail(path, kNoMemory);
}

errno_t strerror_s(char* to, std::size_t size, int error) { return errorText(to, size, error); }

errno_t _wcserror_s(wchar_t* to, std::size_t size, int error) { return errorText(to, size, error); }
