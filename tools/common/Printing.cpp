#include "Printing.h"

#include "Utf8.h"

void print(std::FILE* stream, const std::string& text) { std::fwrite(text.data(), 1, text.size(), stream); }

std::string problemText(const FileProblem& problem) {
    const std::string line = problem.line > 0 ? ":" + std::to_string(problem.line) : "";
    return stringToUtf8(problem.file) + line + ": " + stringToUtf8(problem.reason) + "\n";
}

bool isFlushed(std::FILE* stream) { return std::fflush(stream) == 0 && !std::ferror(stream); }
