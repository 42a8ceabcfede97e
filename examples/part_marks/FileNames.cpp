#include "FileNames.h"

#include "Utf8.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

BryString fileName(BryString name) {
    name.replace(BryString(L"\\"), L"/");
    while (name.length() > 1 && (name.right(1) == L"." || name.right(1) == L" ")) name = name.left(name.length() - 1);
    return name;
}

BryString outputFile(BryString output) {
    if (output.isEmpty()) return L"marks.csv";
    output.replace(BryString(L"\\"), L"/");
    std::error_code error;
    if (fs::is_directory(toPath(output), error)) return toText(toPath(output) / "marks.csv");
    return fileName(output);
}

bool isSameFile(const BryString& file, const BryString& other) {
    std::error_code error;
    return fs::equivalent(toPath(file), toPath(other), error);
}

bool exists(const BryString& file) {
    std::error_code error;
    return fs::exists(toPath(file), error);
}

bool isOneOf(const std::vector<BryString>& files, const BryString& file) {
    const auto isSame = [&file](const BryString& other) { return isSameFile(file, other); };
    return exists(file) && std::any_of(files.begin(), files.end(), isSame);
}

void removeBehindLinks(const BryString& file) {
    std::error_code error;
    fs::remove(fs::canonical(toPath(file), error), error);
}

bool mayBeFile(const BryString& file) {
    std::error_code error;
    return !exists(file) || fs::is_regular_file(toPath(file), error);
}
