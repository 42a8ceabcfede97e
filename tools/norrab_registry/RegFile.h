// The text format in which registry editors exchange keys and values.
//
//   Windows Registry Editor Version 5.00     the first line; REGEDIT4 in 8-bit files
//
//   ; a comment, also behind keys and values
//   [HKEY_CURRENT_USER\Software\Ozmira]      makes the key; what follows are its values
//   @="text"                                 the default value
//   "name"="text"                            \\ and \" are a backslash and a quote, \n and \r the ends of lines
//   "name"=dword:0000040c                    32 bits, up to eight hexadecimal digits
//   "name"=hex:01,02,\                       bytes; a backslash continues them on the next line
//     03
//   "name"=hex(2):25,00,00,00                bytes of any type, whose number is hexadecimal
//   "name"=-                                 deletes the value
//   [-HKEY_CURRENT_USER\Software\Old]        deletes the key with all that is in it
//
// Words and hives are as above (hives in any case, HKLM, HKCU and HKCR for short). The key's name ends at the last
// bracket of its line. A text may reach over several lines, as some editors write it; a name may not.
#pragma once

#include <roots/platform/Win32.h>
#include <roots/text/BryString.h>

#include <string>
#include <vector>

// One line of the file: a key, or a value of the key before it.
struct RegEntry {
    enum Kind { key, deletedKey, value, deletedValue };

    Kind kind = key;
    BryString name;          // of a key with its hive, see readKeyName(); empty for the default value
    DWORD type = REG_NONE;   // of a value
    std::vector<BYTE> data;  // of a value, as the registry has it
    int line = 0;            // where it stands in the file, from 1

    static RegEntry makeKey(const BryString& name) { return {key, name, REG_NONE, {}, 0}; }
};

// Reads the bytes of a file: UTF-16LE with its mark, UTF-8 with or without, REGEDIT4 also in the ANSI code page. Lines
// end with CR LF, LF or CR. entries become what the file says, in its order. Nothing is skipped: what is not understood
// gives false with the line and the reason, and entries are of no use then.
bool parseRegFile(const std::string& bytes, std::vector<RegEntry>& entries, int& line, BryString& reason);

// The lines of a file of version 5.00, each with a line feed at its end. Reading them gives the same entries, whatever
// bytes the values have: a text with further zeros, ends of lines or half a surrogate pair is written as hex(1). Only
// the closing zero that a text lacks, as those that programs on Linux store, is added by reading. False with a reason
// where the name of a key has an end of line, or where with utf8 a name has half a surrogate pair, which that encoding
// cannot express.
bool makeRegFile(const std::vector<RegEntry>& entries, bool utf8, std::vector<BryString>& lines, BryString& reason);

// Texts as values have them: 16-bit units, the low byte first, with a zero at the end.
void appendText(const BryString& text, std::vector<BYTE>& data);
// The whole units of data; a zero is put behind them.
std::vector<wchar_t> unitsOf(const std::vector<BYTE>& data);
