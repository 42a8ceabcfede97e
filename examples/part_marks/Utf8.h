// Between the library's text and UTF-8, in which the terminal, the command line and std::filesystem talk.
#pragma once

#include <roots/text/BryString.h>

#include <string>

BryString utf8ToString(const std::string& text);
std::string stringToUtf8(const BryString& text);
