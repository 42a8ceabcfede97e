// A command-line program without its main(): each program defines runProgram(), main.cpp calls it.
#pragma once

#include <roots/text/BryString.h>

#include <cstdio>
#include <vector>

// Runs the program with the arguments behind its name, writing UTF-8 to the two streams. Returns the exit status.
int runProgram(const std::vector<BryString>& arguments, std::FILE* output, std::FILE* errors);
