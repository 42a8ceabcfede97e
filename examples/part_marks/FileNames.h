// Names that files are read and written by.
#pragma once

#include <roots/text/BryString.h>

#include <vector>

// As the library takes the name: a backslash for a slash, points and blanks at its end for nothing.
BryString fileName(BryString name);

// Of the list of marks: marks.csv in a folder, here where output is empty.
BryString outputFile(BryString output);

bool exists(const BryString& file);
bool isSameFile(const BryString& file, const BryString& other);  // false where one is missing
bool isOneOf(const std::vector<BryString>& files, const BryString& file);

// Whether there is a file or nothing: anything else, such as a pipe, might never end, or keep nothing.
bool mayBeFile(const BryString& file);

// The file itself, not the links that lead to it.
void removeBehindLinks(const BryString& file);
