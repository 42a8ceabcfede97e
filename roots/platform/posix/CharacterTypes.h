// Letters, digits and case as Windows knows them, for the routines of this folder that ask about single characters.
#pragma once

#include <cstddef>

namespace platform {

enum class Case { eUpper, eLower };

// The unit in that case by Windows' simple mapping, whatever the locale; the unit itself where it has none.
wchar_t inCase(Case to, wchar_t unit) noexcept;

// The same for length units in place, or for bytes in the ANSI code page: a byte stays where its other case is not a
// single byte, and so do both bytes of a character of two.
void changeCase(Case to, wchar_t* text, std::size_t length) noexcept;
void changeCase(Case to, char* text, std::size_t length) noexcept;

// Whether a byte begins a character of two bytes in the ANSI code page.
bool isLeadByte(char byte) noexcept;

// Whether a number may begin behind the unit: what Windows' runtime skips before one.
bool isBlank(wchar_t unit) noexcept;

// The value of a decimal digit of any script that numbers are read in, or -1.
int digitValue(wchar_t unit) noexcept;

// Whether the host has chosen a locale of its own with setlocale; until then case is a matter of a to z.
bool localeChosen() noexcept;

}  // namespace platform
