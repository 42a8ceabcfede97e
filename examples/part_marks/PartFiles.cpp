#include "PartFiles.h"

#include "Utf8.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

namespace fs = std::filesystem;

namespace {

BryString nameOf(const fs::path& path) {
    BryString text = toText(path);
    if (text.length() > 2 && text.left(2) == L"./") text >>= 2;
    return text;
}

// Whether the library takes the name of this file for another: it reads names as Windows does.
bool isForeignName(const fs::path& path) {
    const BryString name = nameOf(path.relative_path());
    for (int i = 0; i < name.length(); ++i)
        if (name[i] < L' ' || BryString(L"\\*?\"<>|").find_last_of(name[i]) >= 0) return true;
    const wchar_t drive = name.left(1).toLower()[0];
    const wchar_t last = name[name.length() - 1];
    return last == L'.' || last == L' ' || (!path.has_root_path() && drive >= L'a' && drive <= L'z' && name[1] == L':');
}

bool isPartFileName(const fs::path& path) {
    const BryString extension = toText(path.extension());
    return BryString::compareNoCase(extension, L".nc") == 0 || BryString::compareNoCase(extension, L".nc1") == 0;
}

class Finder {
public:
    Finder(bool withSubfolders, std::vector<FileProblem>& problems)
        : m_withSubfolders(withSubfolders), m_problems(problems) {}

    void add(const BryString& input) {
        const fs::path path = toPath(input);
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::is_directory(status)) return addFile(path, status);
        const std::size_t problemsBefore = m_problems.size();
        m_hasFound = false;
        addFolder(path);
        if (!m_hasFound && m_problems.size() == problemsBefore)
            addProblem(path, L"a folder without part files (*.nc, *.nc1)");
    }

    std::vector<BryString> found() {
        std::sort(m_found.begin(), m_found.end());
        return m_found;
    }

private:
    void addFile(const fs::path& path, const fs::file_status& status) {
        if (!fs::exists(status)) return addProblem(path, L"there is no such file or folder");
        // Anything else, such as a pipe, might never end.
        if (!fs::is_regular_file(status)) return addProblem(path, L"not a file");
        if (isForeignName(path)) return addProblem(path, L"this name cannot be opened here (its characters)");
        m_hasFound = true;
        if (isNew(path)) m_found.push_back(nameOf(path));
    }

    // Whether the file was not found before under any name. Names that differ in case only are asked about: they mean
    // one file on some systems.
    bool isNew(const fs::path& path) {
        std::error_code error;
        const BryString name = toText(fs::canonical(path, error)).toLower();
        const auto seen = m_seen.equal_range(name);
        for (auto same = seen.first; same != seen.second; ++same)
            if (fs::equivalent(same->second, path, error)) return false;
        m_seen.emplace(name, path);
        return true;
    }

    void addFolder(const fs::path& folder) {
        std::error_code error;
        fs::directory_iterator entry(folder, error);
        for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
            std::error_code unknown;  // a broken link is reported where it is named like a part file
            const bool isFolder = entry->is_directory(unknown);
            if (isFolder && m_withSubfolders && !entry->is_symlink(unknown)) addFolder(entry->path());
            if (!isFolder && isPartFileName(entry->path())) addFile(entry->path(), entry->status(unknown));
        }
        if (error) addProblem(folder, L"the folder cannot be read");
    }

    void addProblem(const fs::path& path, const wchar_t* reason) { m_problems.push_back({nameOf(path), 0, reason}); }

    bool m_withSubfolders;
    bool m_hasFound = false;                    // something, be it for the second time
    std::multimap<BryString, fs::path> m_seen;  // by the full name in small letters
    std::vector<BryString> m_found;
    std::vector<FileProblem>& m_problems;
};

}  // namespace

std::vector<BryString> findPartFiles(const std::vector<BryString>& inputs, bool withSubfolders,
                                     std::vector<FileProblem>& problems) {
    Finder finder(withSubfolders, problems);
    for (const BryString& input : inputs) finder.add(input);
    return finder.found();
}
