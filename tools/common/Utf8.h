// Between the library's text and UTF-8, in which the terminal, the command line and std::filesystem talk.
#pragma once

#include <roots/text/BryString.h>

#include <filesystem>
#include <string>

// A byte that is not UTF-8 is the unit DC00 + byte, as in the library's own names of files, and leads back to itself.
BryString utf8ToString(const std::string& text);
std::string stringToUtf8(const BryString& text);

std::filesystem::path toPath(const BryString& text);
BryString toText(const std::filesystem::path& path);  // with slashes
