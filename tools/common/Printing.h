// What the terminal gets, in UTF-8.
#pragma once

#include <roots/text/BryString.h>

#include <cstdio>
#include <string>

// What is wrong with a file or folder.
struct FileProblem {
    BryString file;
    int line;  // 0 where the file as a whole is meant
    BryString reason;
};

void print(std::FILE* stream, const std::string& text);
std::string problemText(const FileProblem& problem);  // FILE:LINE: REASON, and a line end

// Whether all that was printed has reached its place.
bool isFlushed(std::FILE* stream);
