#include "Program.h"

#include "MarksFile.h"
#include "Options.h"
#include "PartFiles.h"
#include "Summary.h"
#include "Utf8.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr int allDone = 0;
constexpr int someFailed = 1;
constexpr int failed = 2;

void print(std::FILE* stream, const std::string& text) { std::fwrite(text.data(), 1, text.size(), stream); }

// FILE:LINE: REASON
void print(std::FILE* stream, const FileProblem& problem) {
    const std::string line = problem.line > 0 ? ":" + std::to_string(problem.line) : "";
    print(stream, stringToUtf8(problem.file) + line + ": " + stringToUtf8(problem.reason) + "\n");
}

int usageError(std::FILE* errors, const BryString& error) {
    print(errors, "part_marks: " + stringToUtf8(error) + "\nTry: part_marks --help\n");
    return failed;
}

// As the library takes the name: a backslash for a slash, points and blanks at its end for nothing.
BryString outputFile(BryString output) {
    output.replace(BryString(L"\\"), L"/");
    std::error_code error;
    if (fs::is_directory(toPath(output), error)) return toText(toPath(output) / "marks.csv");
    while (output.right(1) == L"." || output.right(1) == L" ") output = output.left(output.length() - 1);
    return output;
}

bool isOneOf(const std::vector<BryString>& files, const BryString& file) {
    const fs::path path = toPath(file);
    return std::any_of(files.begin(), files.end(), [&path](const BryString& other) {
        std::error_code error;
        return fs::equivalent(path, toPath(other), error);
    });
}

// The status where all that was printed has reached its place.
int flushed(std::FILE* output, std::FILE* errors, int status) {
    if (std::fflush(output) == 0 && !std::ferror(output)) return status;
    print(errors, "part_marks: not all could be shown (is the disk full?)\n");
    return failed;
}

// Reads the files; what is wrong with one is added to problems, the others are done all the same.
void readParts(const std::vector<BryString>& files, PartMarks& parts, std::vector<FileProblem>& problems) {
    for (const BryString& file : files) {
        NcPart part;
        NcError error;
        if (readPartFile(file, part, error))
            parts.add(part, file);
        else
            problems.push_back({file, error.line, error.reason});
    }
}

}  // namespace

int runPartMarks(const std::vector<BryString>& arguments, std::FILE* output, std::FILE* errors) {
    Options options;
    BryString error;
    if (!parseOptions(arguments, options, error)) return usageError(errors, error);
    if (options.help) {
        print(output, helpText);
        return flushed(output, errors, allDone);
    }

    std::vector<FileProblem> problems;
    const std::vector<BryString> files = findPartFiles(options.inputs, options.withSubfolders, problems);
    const BryString marksFile = outputFile(options.output);
    if (isOneOf(files, marksFile)) return usageError(errors, L"--output names a part file that is read");
    PartMarks read;
    readParts(files, read, problems);
    const std::vector<MarkedPart> parts = read.mark(options.marks);
    const std::string limits = limitsText(parts, options.marks.limit);
    for (const FileProblem& problem : problems) print(errors, problem);
    print(errors, limits);
    if (parts.empty()) {
        print(errors, "part_marks: no part was read, nothing is written\n");
        return failed;
    }

    if (!writeMarksFile(marksFile, parts, error)) {
        print(errors, FileProblem{marksFile, 0, error});
        return failed;
    }
    print(output, summaryText(parts, problems.size()));
    print(output, "  Written: " + stringToUtf8(marksFile) + "\n\n");
    return flushed(output, errors, problems.empty() && limits.empty() ? allDone : someFailed);
}
