#include "MarksFile.h"

#include "Summary.h"
#include "Utf8.h"

#include <roots/files/BryFileAccess.h>
#include <roots/platform/Win32.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace {

BryString joined(const std::vector<BryString>& files) {
    std::string text;
    for (const BryString& file : files) text += (text.empty() ? "" : "; ") + stringToUtf8(file);
    return utf8ToString(text);
}

BryString csvLine(const MarkedPart& marked) {
    const NcPart& part = marked.part;
    BryString line;
    line.format(L"%s,%s,%s,%s,%s,%s,%s,%s\n", csvField(marked.mark).getStringW(), csvField(part.profile).getStringW(),
                csvField(part.code).getStringW(), csvField(part.steel).getStringW(),
                hundredthsText(part.length).getStringW(), countText(marked.quantity).getStringW(),
                hundredthsText(marked.weight()).getStringW(), csvField(joined(marked.files)).getStringW());
    return line;
}

// Counts what reaches the disk: a stream that is closed does not say whether its last bytes were written.
class MarksWriter {
public:
    explicit MarksWriter(const BryString& path) : m_file(path, L"w", BryFileAccess::encodeUTF8) {}

    bool isOpen() const { return m_file.isOpen() != 0; }

    bool write(const BryString& line) {
        constexpr std::size_t carriageReturn = 1;
        const int size =
            WideCharToMultiByte(CP_UTF8, 0, line.getStringW(), line.length(), nullptr, 0, nullptr, nullptr);
        m_size += static_cast<std::size_t>(size) + carriageReturn;
        return m_file.puts(line) >= 0;
    }

    bool close(const BryString& path) {
        m_file.close();
        BryFileAccess written(path, L"rb", BryFileAccess::encodeANSI);
        return written.isOpen() && written.getFileLength() == static_cast<long>(m_size);
    }

private:
    BryFileAccess m_file;
    std::size_t m_size = 3;  // the mark of UTF-8
};

bool writeTable(const BryString& path, const std::vector<MarkedPart>& parts) {
    MarksWriter file(path);
    bool isWritten = file.write(L"mark,profile,code,steel,length,quantity,weight,files\n");
    for (const MarkedPart& part : parts) isWritten = isWritten && file.write(csvLine(part));
    return file.close(path) && isWritten;
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

BryString csvField(const BryString& text) {
    const int last = text.length() - 1;
    const bool hasBlankAtAnEnd = last >= 0 && (text[0] == L' ' || text[last] == L' ');
    bool hasSpecial = false;
    for (const wchar_t special : {L',', L'"', L'\n', L'\r'}) hasSpecial |= text.find_last_of(special) >= 0;
    if (!hasSpecial && !hasBlankAtAnEnd) return text;
    BryString inner = text;
    inner.replace(BryString(L"\""), L"\"\"");
    return BryString(L"\"") + inner + L"\"";
}

bool writeMarksFile(const BryString& output, const std::vector<MarkedPart>& parts, BryString& reason) {
    const fs::path file = linkTarget(toPath(output));
    if (!mayBeReplaced(file, reason)) return false;
    const BryString path = toText(file);
    const BryString incomplete = freeName(path, L".new");
    if (!writeTable(incomplete, parts) || !takePermissions(file, toPath(incomplete))) {
        reason = bryFileExists(incomplete) ? L"cannot be written (is the disk full?)" : L"cannot be written here";
        BryFileAccess::removeFile(incomplete);
        return false;
    }
    if (replaceFile(path, incomplete)) return true;
    BryFileAccess::removeFile(incomplete);
    reason = L"cannot be replaced (is it open in another program?)";
    return false;
}
