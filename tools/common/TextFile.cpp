#include "TextFile.h"

#include "Utf8.h"

#include <roots/platform/Win32.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// In bytes of its own: a text stream of Windows hands them to the disk in pieces, and spoils a character that lies in
// two of them.
std::string bytesOf(const BryString& line, BryFileAccess::encodeType encoding) {
    BryString text = line;
    text.replace(BryString(L"\n"), L"\r\n");
    const wchar_t* const units = text.getStringW();
    const int length = text.length();
    if (encoding != BryFileAccess::encodeUTF8)
        return {reinterpret_cast<const char*>(units), static_cast<std::size_t>(length) * sizeof(wchar_t)};
    std::string bytes(static_cast<std::size_t>(length) * 3, 0);  // at most three for each unit
    bytes.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, units, length, bytes.data(),
                                                              static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

bool writeLines(const BryString& path, BryFileAccess::encodeType encoding, const std::vector<BryString>& lines) {
    std::FILE* file = nullptr;
    if (bryfopen(&file, path, L"wb") != 0) return false;
    const auto write = [&](const BryString& line) {
        const std::string bytes = bytesOf(line, encoding);
        return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    };
    const bool isWritten = write(L"\xFEFF") && std::all_of(lines.begin(), lines.end(), write);
    return bryfclose(file) == 0 && isWritten;
}

// A name beside path that nothing has yet.
BryString freeName(const BryString& path, const wchar_t* ending) {
    BryString name = BryString(path) + ending;
    for (int i = 2; bryFileExists(name); ++i) name = BryString(path) + ending + BryString::integerToString(i, 10);
    return name;
}

// Renaming never replaces, so the old file steps aside, and comes back if the new one cannot take its place.
bool replaceFile(const BryString& path, const BryString& by) {
    if (!bryFileExists(path)) return BryFileAccess::renameFile(by, path) == 0;
    const BryString aside = freeName(path, L".old");
    if (BryFileAccess::renameFile(path, aside) != 0) return false;
    if (BryFileAccess::renameFile(by, path) != 0) {
        BryFileAccess::renameFile(aside, path);
        return false;
    }
    BryFileAccess::removeFile(aside);
    return true;
}

// The file itself where the path leads to it over links.
fs::path linkTarget(const fs::path& path) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(path, error);
    return error ? path : target;
}

bool mayBeReplaced(const fs::path& file, BryString& reason) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(file, error);
    if (!fs::exists(status)) {
        if (file.has_filename()) return true;
        reason = L"there is no such folder";
    } else if (!fs::is_regular_file(status)) {
        reason = fs::is_directory(status) ? L"a folder" : L"not a file";
    } else if ((status.permissions() & fs::perms::owner_write) == fs::perms::none) {
        reason = L"cannot be replaced (it is read-only)";
    } else {
        return true;
    }
    return false;
}

bool takePermissions(const fs::path& from, const fs::path& to) {
    std::error_code error;
    const fs::file_status old = fs::status(from, error);
    if (!fs::exists(old)) return true;
    fs::permissions(to, old.permissions(), error);
    return !error;
}

}  // namespace

bool writeTextFile(const BryString& output, BryFileAccess::encodeType encoding, const std::vector<BryString>& lines,
                   BryString& reason) {
    const fs::path file = linkTarget(toPath(output));
    if (!mayBeReplaced(file, reason)) return false;
    const BryString path = toText(file);
    const BryString incomplete = freeName(path, L".new");
    if (!writeLines(incomplete, encoding, lines) || !takePermissions(file, toPath(incomplete))) {
        reason = bryFileExists(incomplete) ? L"cannot be written (is the disk full?)" : L"cannot be written here";
        BryFileAccess::removeFile(incomplete);
        return false;
    }
    if (replaceFile(path, incomplete)) return true;
    BryFileAccess::removeFile(incomplete);
    reason = L"cannot be replaced (is it open in another program?)";
    return false;
}
