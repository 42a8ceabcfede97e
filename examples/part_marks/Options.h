// The command line.
#pragma once

#include "PartMarks.h"

struct Options {
    bool help = false;
    bool withSubfolders = true;
    BryString output = L"marks.csv";  // a file, or a folder in which marks.csv is written
    BryString log;                    // empty for none, as the next
    BryString modules;
    bool withTimes = false;
    MarkSettings marks;
    std::vector<BryString> inputs;
};

// False with an error that says what is wrong. Asking for help makes everything else right.
bool parseOptions(const std::vector<BryString>& arguments, Options& options, BryString& error);

extern const char* const helpText;  // in ASCII
