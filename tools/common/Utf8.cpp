#include "Utf8.h"

#include <roots/platform/Win32.h>

#include <algorithm>
#include <vector>

namespace {

bool isHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool isEscapedByte(wchar_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

// What the library makes of bytes that are not UTF-8.
constexpr wchar_t replacement = 0xFFFD;

// The bytes of a character that begins with lead.
int sizeOfCharacter(unsigned char lead) {
    if (lead < 0xC0) return 1;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

}  // namespace

BryString utf8ToString(const std::string& text) {
    std::vector<wchar_t> units;
    const int end = static_cast<int>(text.size());
    for (int at = 0; at < end;) {
        const char* const next = text.data() + at;
        const int size = std::min(sizeOfCharacter(static_cast<unsigned char>(*next)), end - at);
        wchar_t character[2];
        int length = MultiByteToWideChar(CP_UTF8, 0, next, size, character, 2);
        if (std::find(character, character + length, replacement) != character + length &&
            text.compare(static_cast<std::size_t>(at), 3, "\xEF\xBF\xBD") != 0)
            length = 0;
        if (length == 0) units.push_back(static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(*next)));
        units.insert(units.end(), character, character + length);
        at += length == 0 ? 1 : size;
    }
    units.push_back(0);
    return BryString(units.data());
}

std::string stringToUtf8(const BryString& text) {
    std::string bytes;
    const wchar_t* const units = text.getStringW();  // ends with a zero
    for (int at = 0; at < text.length();) {
        const int length = isHighSurrogate(units[at]) && isLowSurrogate(units[at + 1]) ? 2 : 1;
        char character[4];
        int size = 1;
        if (isEscapedByte(units[at]))
            character[0] = static_cast<char>(units[at] & 0xFF);
        else
            size = WideCharToMultiByte(CP_UTF8, 0, units + at, length, character, 4, nullptr, nullptr);
        bytes.append(character, static_cast<std::size_t>(size));
        at += length;
    }
    return bytes;
}

std::filesystem::path toPath(const BryString& text) { return std::filesystem::u8path(stringToUtf8(text)); }
BryString toText(const std::filesystem::path& path) { return utf8ToString(path.generic_u8string()); }
