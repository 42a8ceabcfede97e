// Plain texts in units of either width, for tests that run for both.
#pragma once

#include <string>
#include <vector>

// Zero-terminated, with no unit more.
template <class Unit>
std::vector<Unit> units(const std::string& text) {
    return std::vector<Unit>(text.c_str(), text.c_str() + text.size() + 1);
}

template <class Unit>
std::string narrow(const Unit* text) {
    std::string result;
    while (*text != 0) result += static_cast<char>(*text++);
    return result;
}
