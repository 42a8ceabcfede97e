// Searches one folder for the names that fit a pattern. * stands for any run of characters, ? for exactly one; a point
// before a * may be missing at the end of a name, so that *.* fits every name and c.* fits c; points and blanks at the
// end of a pattern do not count, save that "*." asks for names without a point. Case does not matter in the last
// component; the folders before it are named as they are spelt. The names come back sorted, "." and ".." included.
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/CharacterTypes.h>
#include <roots/platform/posix/HostPath.h>

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

struct Search {
    std::string folder;  // ends in a slash, or is empty for the working directory
    std::vector<std::string> names;
    std::size_t next = 0;
};

bool fail(DWORD error) {
    SetLastError(error);
    return false;
}

bool isSeparator(wchar_t unit) { return unit == L'\\' || unit == L'/' || unit == L':'; }

wchar_t upper(wchar_t unit) { return platform::inCase(platform::Case::eUpper, unit); }

bool isSame(wchar_t a, wchar_t b) { return a == b || upper(a) == upper(b); }

bool hasWildcard(const wchar_t* text, std::size_t length) {
    return wide::find(text, length, L'*') != wide::npos || wide::find(text, length, L'?') != wide::npos;
}

bool areDots(const wchar_t* name) { return wide::equal(name, L".") || wide::equal(name, L".."); }

// The last component of a path, as a pattern for names.
struct Pattern {
    const wchar_t* text;
    std::size_t length;
    bool withoutPoint = false;  // the pattern ends in "*."

    explicit Pattern(const wchar_t* last) : text(last), length(wide::length(last)) {
        const std::size_t whole = length;
        if (isDots()) return;
        while (length > 0 && (text[length - 1] == L'.' || text[length - 1] == L' ')) --length;
        withoutPoint = length > 0 && length + 1 == whole && text[length - 1] == L'*' && text[length] == L'.';
    }

    bool isDots() const { return areDots(text); }

    bool fits(const wchar_t* name) const {
        const bool hasPoint = wide::find(name, wide::length(name), L'.') != wide::npos;
        if (withoutPoint && hasPoint && !areDots(name)) return false;
        return fitsFrom(name);
    }

private:
    // Whether nothing but what may be missing at the end of a name is left of the pattern.
    bool mayEndAt(std::size_t at) const {
        while (at < length && (text[at] == L'*' || (text[at] == L'.' && at + 1 < length && text[at + 1] == L'*'))) ++at;
        return at == length;
    }

    // Goes back to the last * only: one that comes later can take over whatever an earlier one would take.
    bool fitsFrom(const wchar_t* name) const {
        std::size_t at = 0, star = wide::npos;
        const wchar_t* taken = name;  // what the last star takes ends here
        for (;;) {
            if (at < length && text[at] == L'*') {
                star = at++;
                taken = name;
            } else if (*name == 0) {
                return mayEndAt(at);
            } else if (at < length && (text[at] == L'?' || isSame(text[at], *name))) {
                ++at;
                ++name;
            } else if (star == wide::npos) {
                return false;
            } else {
                at = star + 1;
                name = ++taken;
            }
        }
    }
};

FILETIME toFileTime(const timespec& time) {
    const std::int64_t ticks = (time.tv_sec + 11644473600LL) * 10000000LL + time.tv_nsec / 100;
    return {static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
}

bool isEarlier(const timespec& a, const timespec& b) {
    return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
}

// Of a link that leads nowhere: the link's own state.
bool stateOf(const std::string& path, struct stat& status) {
    return stat(path.c_str(), &status) == 0 || lstat(path.c_str(), &status) == 0;
}

// False where the entry is not there.
bool describe(const std::string& path, const std::string& name, WIN32_FIND_DATAW& found) {
    struct stat status;
    if (!stateOf(path, status)) return false;
    const bool isFolder = S_ISDIR(status.st_mode);
    const auto size = isFolder ? 0 : static_cast<std::uint64_t>(status.st_size);
    found = {};
    found.dwFileAttributes = isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
    found.ftCreationTime = toFileTime(isEarlier(status.st_ctim, status.st_mtim) ? status.st_ctim : status.st_mtim);
    found.ftLastAccessTime = toFileTime(status.st_atim);
    found.ftLastWriteTime = toFileTime(status.st_mtim);
    found.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    found.nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFF);
    platform::wideName(name.c_str(), found.cFileName, MAX_PATH);
    return true;
}

// The next entry that is still there.
bool giveNext(Search& search, WIN32_FIND_DATAW& found) {
    while (search.next < search.names.size()) {
        const std::string& name = search.names[search.next++];
        if (describe(search.folder + name, name, found)) return true;
    }
    return false;
}

int compareNames(const std::string& a, const std::string& b) {
    wchar_t first[MAX_PATH], second[MAX_PATH];
    platform::wideName(a.c_str(), first, MAX_PATH);
    platform::wideName(b.c_str(), second, MAX_PATH);
    const wchar_t *x = first, *y = second;
    while (*x != 0 && isSame(*x, *y)) ++x, ++y;
    const int difference = upper(*x) - upper(*y);
    return difference != 0 ? difference : a.compare(b);
}

// A path whose last component is "." or "..": the folder itself under its own name.
bool collectFolder(const std::string& path, Search& search) {
    const std::unique_ptr<char, void (*)(void*)> whole(realpath(path.c_str(), nullptr), std::free);
    if (whole == nullptr) return fail(ERROR_FILE_NOT_FOUND);
    const std::string text = whole.get();
    const std::size_t slash = text.rfind('/');
    search.folder = text.substr(0, slash + 1);
    search.names.push_back(text.substr(slash + 1));
    return true;
}

bool collect(const Pattern& pattern, Search& search) {
    DIR* const folder = opendir(search.folder.empty() ? "." : search.folder.c_str());
    if (folder == nullptr) return fail(errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
    const std::unique_ptr<DIR, int (*)(DIR*)> closing(folder, closedir);
    while (const dirent* entry = readdir(folder)) {
        wchar_t name[MAX_PATH];
        platform::wideName(entry->d_name, name, MAX_PATH);
        if (pattern.fits(name)) search.names.push_back(entry->d_name);
    }
    if (search.names.empty()) return fail(ERROR_FILE_NOT_FOUND);
    std::sort(search.names.begin(), search.names.end(),
              [](const std::string& a, const std::string& b) { return compareNames(a, b) < 0; });
    return true;
}

// An entry spelt exactly so needs no look through the folder.
bool collectExact(const std::string& path, Search& search) {
    struct stat status;
    if (!stateOf(path, status)) return false;
    search.names.push_back(path.substr(search.folder.size()));
    return true;
}

bool start(const wchar_t* path, Search& search) {
    if (path == nullptr || *path == 0) return fail(ERROR_PATH_NOT_FOUND);
    const wchar_t* last = path + wide::length(path);
    while (last > path && !isSeparator(last[-1])) --last;
    const auto folderLength = static_cast<std::size_t>(last - path);
    const bool prefixed = folderLength > 3 && wide::compare(path, L"\\\\?\\", 4) == 0;
    const std::size_t folderFrom = prefixed ? 4 : 0;
    if (hasWildcard(path + folderFrom, folderLength - folderFrom)) return fail(ERROR_INVALID_NAME);

    // The working directory stands for a folder that is not named; its dot keeps a separator at the end in place.
    if (folderLength > 0) {
        std::vector<wchar_t> folder(path, last);
        folder.insert(folder.end(), {L'.', 0});
        search.folder = platform::hostPath(folder.data());
        search.folder.pop_back();
    }
    const Pattern pattern(last);
    if (pattern.isDots()) return collectFolder(platform::hostPath(path), search);
    if (pattern.length == 0 || wide::find(last, pattern.length, L'/') != wide::npos) return fail(ERROR_FILE_NOT_FOUND);
    const bool exact = !hasWildcard(last, pattern.length) && collectExact(platform::hostPath(path), search);
    return exact || collect(pattern, search);
}

}  // namespace

HANDLE FindFirstFileW(const wchar_t* pattern, WIN32_FIND_DATAW* found) {
    try {
        auto search = std::make_unique<Search>();
        if (!start(pattern, *search)) return INVALID_HANDLE_VALUE;
        if (giveNext(*search, *found)) return search.release();
        SetLastError(ERROR_FILE_NOT_FOUND);
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return INVALID_HANDLE_VALUE;
}

BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* found) {
    if (search == nullptr || search == INVALID_HANDLE_VALUE) return fail(ERROR_INVALID_HANDLE);
    return giveNext(*static_cast<Search*>(search), *found) || fail(ERROR_NO_MORE_FILES);
}

BOOL FindClose(HANDLE search) {
    if (search == nullptr || search == INVALID_HANDLE_VALUE) return fail(ERROR_INVALID_HANDLE);
    delete static_cast<Search*>(search);
    return TRUE;
}
