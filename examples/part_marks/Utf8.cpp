#include "Utf8.h"

#include <roots/platform/Win32.h>

#include <vector>

BryString utf8ToString(const std::string& text) {
    const int capacity = static_cast<int>(text.size()) + 1;  // never more units than bytes
    std::vector<wchar_t> units(static_cast<std::size_t>(capacity), 0);
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, units.data(), capacity);
    return BryString(units.data());
}

std::string stringToUtf8(const BryString& text) {
    const int length = text.length();
    if (length == 0) return std::string();
    std::string bytes(static_cast<std::size_t>(length) * 3, '\0');  // a unit takes at most three bytes
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.getStringW(), length, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}
