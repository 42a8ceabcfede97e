// The command line.
#pragma once

#include "RegFile.h"

struct Options {
    enum Command { help, get, set, list, remove, import, exportKey };

    Command command = help;
    BryString key;                 // as readKeyName() gives it
    bool hasName = false;          // delete: one value, not the key
    RegEntry value;                // its name; set: all of it
    bool recursive = false;        // list
    bool utf8 = false;             // export
    std::vector<BryString> files;  // import; export: one, or none for the output
};

// False with an error that says what is wrong. Asking for help makes everything else right.
bool parseOptions(const std::vector<BryString>& arguments, Options& options, BryString& error);

extern const char* const helpText;  // in ASCII

// The word that --type has for a type of values, null where it has none.
const wchar_t* typeWord(DWORD type);
