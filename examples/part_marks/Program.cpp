#include "Program.h"

#include "MarksFile.h"
#include "Options.h"
#include "PartFiles.h"
#include "Summary.h"
#include "Utf8.h"

#include <filesystem>
#include <system_error>

namespace {

constexpr int allDone = 0;
constexpr int someFailed = 1;
constexpr int nothingWritten = 2;

void print(std::FILE* stream, const std::string& text) { std::fwrite(text.data(), 1, text.size(), stream); }

// FILE:LINE: REASON
void print(std::FILE* stream, const FileProblem& problem) {
    const std::string line = problem.line > 0 ? ":" + std::to_string(problem.line) : "";
    print(stream, stringToUtf8(problem.file) + line + ": " + stringToUtf8(problem.reason) + "\n");
}

int usageError(std::FILE* errors, const BryString& error) {
    print(errors, "part_marks: " + stringToUtf8(error) + "\nTry: part_marks --help\n");
    return nothingWritten;
}

BryString outputFile(const BryString& output) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::u8path(stringToUtf8(output));
    return std::filesystem::is_directory(path, error) ? utf8ToString((path / "marks.csv").generic_u8string()) : output;
}

// Reads the files; what is wrong with one is added to problems, the others are done all the same.
PartMarks readParts(const std::vector<BryString>& files, std::vector<FileProblem>& problems) {
    PartMarks parts;
    for (const BryString& file : files) {
        NcPart part;
        NcError error;
        if (readPartFile(file, part, error))
            parts.add(part, file);
        else
            problems.push_back({file, error.line, error.reason});
    }
    return parts;
}

}  // namespace

int runPartMarks(const std::vector<BryString>& arguments, std::FILE* output, std::FILE* errors) {
    Options options;
    BryString error;
    if (!parseOptions(arguments, options, error)) return usageError(errors, error);
    if (options.help) {
        print(output, helpText);
        return allDone;
    }

    std::vector<FileProblem> problems;
    const std::vector<BryString> files = findPartFiles(options.inputs, options.withSubfolders, problems);
    const std::vector<MarkedPart> parts = readParts(files, problems).mark(options.marks);
    for (const FileProblem& problem : problems) print(errors, problem);
    if (parts.empty()) {
        print(errors, "part_marks: no part was read, nothing is written\n");
        return someFailed;
    }

    const BryString marksFile = outputFile(options.output);
    if (!writeMarksFile(marksFile, parts, error)) {
        print(errors, FileProblem{marksFile, 0, error});
        return nothingWritten;
    }
    print(output, summaryText(parts, problems.size()));
    print(output, "  Written: " + stringToUtf8(marksFile) + "\n\n");
    return problems.empty() ? allDone : someFailed;
}
