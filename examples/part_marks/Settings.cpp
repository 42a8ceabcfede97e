#include "Settings.h"

#include "Utf8.h"

#include <roots/settings/BryRegistry.h>

#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr wchar_t kMarks[] = L"PartMarks", kPrefixes[] = L"PartMarks\\Prefixes";

// A text that is longer cannot be read again.
bool save(const wchar_t* key, const BryString& name, const BryString& value) {
    return value.length() <= 2047 && BryRegistry::setData(key, name, value);
}

// The folder as every module on this system reads it, wherever that runs.
bool saveFolder(const BryString& output, BryString& error) {
    std::error_code failure;
    const fs::path folder = fs::absolute(toPath(output), failure);
    if (failure || !fs::is_directory(folder, failure)) {
        error = BryString(L"--save needs a folder behind --output, not ") + output;
        return false;
    }
    BryString path = toText(folder);
    if (fs::path::preferred_separator == '\\') path.replace(BryString(L"/"), L"\\");
    if (BryRegistry::setRegValueCurrentUser(BryRegistry::getKorvelRegistryPath(), L"DataPath", path)) return true;
    error = L"the folder cannot be saved";
    return false;
}

}  // namespace

bool addSavedOptions(Options& options, BryString& error) {
    BryString type;
    BryRegistry::getData(kMarks, L"Type", type);
    const bool isLetters = type == L"letter", isNumeric = type.isEmpty() || type == L"numeric";
    if (!options.hasType && !isLetters && !isNumeric) {
        error = BryString(L"the saved type is numeric or letter, not ") + type;
        return false;
    }
    if (!options.hasType) options.marks.letters = isLetters;
    if (!options.hasStart && (options.marks.letters ? isLetters : isNumeric))
        BryRegistry::getData(kMarks, L"Start", options.marks.start);
    if (options.output.isEmpty()) {
        const BryString folder = BryRegistry::getNorrabDataPath();
        if (!folder.isEmpty()) options.output = folder + L"/marks.csv";
    }
    return true;
}

bool savedPrefix(const BryString& code, BryString& prefix) { return BryRegistry::getData(kPrefixes, code, prefix); }

bool saveOptions(const Options& options, BryString& error) {
    if (options.hasOutput && !saveFolder(options.output, error)) return false;
    error = L"the type and the start cannot be saved";
    if ((options.hasType || options.hasStart) &&
        !(save(kMarks, L"Type", options.marks.letters ? L"letter" : L"numeric") &&
          save(kMarks, L"Start", options.marks.start)))
        return false;
    for (const auto& [code, prefix] : options.marks.prefix)
        if (!save(kPrefixes, code, prefix)) {
            error = BryString(L"the prefix of ") + code + L" cannot be saved";
            return false;
        }
    return true;
}
