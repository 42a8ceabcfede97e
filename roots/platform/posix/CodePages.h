// What the bytes of the Windows code pages stand for, as tables: TextConversion.cpp only looks up.
#pragma once

#include <cstddef>
#include <cstdint>

struct CodePage {
    // What one byte stands for. A lead byte stands for nothing alone and has the page's sign for bad bytes here.
    wchar_t single[256];

    // Whether a byte begins a pair.
    bool lead[256];

    // What lead byte and trail byte stand for: the page's sign for bad bytes where nothing. Null if all are single.
    wchar_t (*pairs)[256];

    // The sign for bad bytes.
    wchar_t bad;

    // Whether the bytes A0 to FF stand for the units of the same number, as in Latin-1.
    bool latin1;

    // The bytes of every unit: one byte, or lead byte * 256 + trail byte; 0 for the units that the page lacks.
    std::uint16_t bytes[0x10000];
};

// The tables of a page, built on first use; they live as long as the process. Null where number is no such page (65001
// has no tables), where the C library cannot decode it (its converters may be left out of an installation; 1252 needs
// none) or where memory is out.
const CodePage* findCodePage(unsigned number) noexcept;

// Whether a code page of that number is among those that there are tables for.
bool isCodePage(unsigned number) noexcept;
