// The command line.
#pragma once

#include "PartMarks.h"

#include <roots/platform/Win32.h>

struct Options {
    bool help = false;
    bool withSubfolders = true;
    bool withSettings = true;  // whether what was saved counts
    bool save = false;
    bool hasOutput = false, hasType = false, hasStart = false;  // whether the command line gives them
    BryString output;                                           // a file, or a folder for marks.csv; empty for here
    BryString log;                                              // empty for none, as the next
    BryString modules;
    bool withTimes = false;
    bool withDialog = false;
    double tolerance = 0;  // mm; 0 for none
    BryString match;       // a regular expression; empty for none
    bool hasSince = false;
    BryString sinceText;
    SYSTEMTIME since = {};
    MarkSettings marks;
    std::vector<BryString> inputs;
};

// False with an error that says what is wrong. Asking for help makes everything else right.
bool parseOptions(const std::vector<BryString>& arguments, Options& options, BryString& error);

// Whether all of the text matches the regular expression, as --match takes it.
bool matches(const BryString& expression, const BryString& text);

extern const char* const helpText;  // in ASCII
