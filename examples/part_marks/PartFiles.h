// Which files are to be read.
#pragma once

#include "Printing.h"

#include <vector>

// The files named by inputs, and the files *.nc and *.nc1 (in any case) of the folders named by them, with or without
// their subfolders, in the order of their names (16-bit units), each once however often it is named. Names are as they
// are first reached from inputs, with slashes. A link to a folder is not followed within a folder. What cannot be
// looked at, a folder without part files included, is added to problems.
std::vector<BryString> findPartFiles(const std::vector<BryString>& inputs, bool withSubfolders,
                                     std::vector<FileProblem>& problems);
