// Small files in the format of Windows' libraries, made number by number, for tests to damage.
#pragma once

#include <array>
#include <cstdint>
#include <string>

// Puts a number, the low byte first, in place of what is there or behind the end.
inline void put(std::string& bytes, std::size_t at, std::uint64_t number, std::size_t size = 4) {
    if (bytes.size() < at + size) bytes.resize(at + size);
    for (std::size_t i = 0; i < size; ++i) bytes[at + i] = static_cast<char>(number >> 8 * i);
}

using Ids = std::array<unsigned, 3>;

// A directory of the resources, whose places count from 0x200. Directories are marked so where they are a target.
inline void putDirectory(std::string& file, std::size_t at, const Ids& ids, const Ids& targets) {
    put(file, at + 14, ids.size(), 2);
    for (std::size_t i = 0; i < ids.size(); ++i)
        put(file, at + 16 + 8 * i, ids[i] | std::uint64_t{targets[i]} << 32, 8);
}

// A library with resources of three types. Those of the second type have three names, that of the second name has three
// languages: version 1.1.0.123, 2.1.0.123 and 3.1.0.123. All others are version 4.1.0.123.
inline std::string libraryFile(const Ids& types, const Ids& names, const Ids& languages, bool is64 = true) {
    const unsigned directories = is64 ? 0xC8 : 0xB8, section = directories + 128, otherNames = 0x80000078,
                   otherLanguages = 0x800000A0;
    std::string file = "MZ";
    // clang-format off
    const struct { std::size_t at; std::uint64_t number; std::size_t size = 4; } numbers[] = {
        // the header, the optional one, the section
        {0x3C, 0x40}, {0x40, 0x4550}, {0x44, is64 ? 0x8664u : 0x14C, 2}, {0x46, 1, 2}, {0x54, section - 0x58, 2},
        {0x56, 0x2102, 2},
        {0x58, is64 ? 0x20Bu : 0x10B, 2}, {is64 ? 0x70u : 0x74, 0x10000000}, {0x78, 0x1000}, {0x7C, 0x200}, {0x80, 4, 2},
        {0x88, 4, 2}, {0x90, 0x2000}, {0x94, 0x200}, {0x9C, 2, 2}, {directories - 4, 16}, {directories + 16, 0x1000},
        {directories + 20, 0x278},
        {section, 0x637273722E, 8}, {section + 8, 0x278}, {section + 12, 0x1000}, {section + 16, 0x400},
        {section + 20, 0x200}, {section + 36, 0x40000040}, {0x5FF, 0, 1}};
    // clang-format on
    for (const auto& [at, number, size] : numbers) put(file, at, number, size);
    putDirectory(file, 0x200, types, {otherNames, 0x80000028, otherNames});
    putDirectory(file, 0x228, names, {otherLanguages, 0x80000050, otherLanguages});
    putDirectory(file, 0x250, languages, {0xC8, 0xD8, 0xE8});
    putDirectory(file, 0x278, {1, 1, 1}, {otherLanguages, otherLanguages, otherLanguages});
    putDirectory(file, 0x2A0, {0, 0, 0}, {0xF8, 0xF8, 0xF8});
    for (unsigned i = 0, at = 0x308; i < 4; ++i, at += 92) {
        put(file, 0x2C8 + 16 * i, (std::uint64_t{92} << 32) + 0x1000 + at - 0x200, 8);
        put(file, at, 92 | 52 << 16);
        for (unsigned k = 0; k < 15; ++k) put(file, at + 6 + 2 * k, static_cast<unsigned>("VS_VERSION_INFO"[k]), 2);
        put(file, at + 40, 0x10000FEEF04BD, 8);
        put(file, at + 48, (i + 1) << 16 | 1 | std::uint64_t{123} << 32, 8);
    }
    return file;
}
