// One fixed entry point for each bounded routine of the C runtime, so that callers compiled with different settings for
// the wide-character type link against the same ones. Arguments and result are the routine's own, in its order.
//
//   brystrcpy    8-bit text
//   brywcscpy8   wide text spelled wchar_t
//   brywcscpy6   wide text spelled unsigned short; does what its twin with the 8 does
//
// Sizes count elements of the destination: bytes of 8-bit text, units of wide text, the terminator included. All texts
// are zero-terminated. A routine that returns an error number returns
//
//   0    success: the text and its terminator are written, nothing behind them
//   12   memory is out (only where the routine has to allocate)
//   22   a bad argument (EINVAL): a null pointer, size 0, a text without terminator within its size, an unknown radix
//   34   the destination is too small (ERANGE)
//   80   the text was cut to fit (STRUNCATE), where the count asked for that
//
// After 22 and 34 the destination holds the empty text, if there is a destination of at least one element; nothing
// behind its size is ever touched. On Windows the runtime's invalid-parameter handler is called before such a number is
// returned; elsewhere there is none, nothing of the destination but its first element has changed, and the process
// always goes on. The calls keep no state of their own.
#pragma once

#include <roots/Export.h>

#include <cstddef>
#include <cstdint>
#include <ctime>

class BryString;

// ---- copying and joining --------------------------------------------------------------------------------------------

// strcpy_s: the whole text, 34 where it does not fit. Source and destination may overlap where the destination comes
// first.
KELROOTS_API int brystrcpy(char* to, std::size_t size, const char* from);
KELROOTS_API int brywcscpy8(wchar_t* to, std::size_t size, const wchar_t* from);
KELROOTS_API int brywcscpy6(unsigned short* to, std::size_t size, const unsigned short* from);

// strncpy_s: at most count elements of the text, and a terminator in any case. With a count of (size_t)-1 (_TRUNCATE)
// as many as fit; 80 where that was not all.
KELROOTS_API int brystrncpy(char* to, std::size_t size, const char* from, std::size_t count);
KELROOTS_API int brywcsncpy8(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count);
KELROOTS_API int brywcsncpy6(unsigned short* to, std::size_t size, const unsigned short* from, std::size_t count);

// strcat_s: behind the text that the destination holds, which is lost after 22 and 34. size is that of the whole
// destination.
KELROOTS_API int brystrcat(char* to, std::size_t size, const char* from);
KELROOTS_API int brywcscat8(wchar_t* to, std::size_t size, const wchar_t* from);
KELROOTS_API int brywcscat6(unsigned short* to, std::size_t size, const unsigned short* from);

// strncat_s: the same with at most count elements; _TRUNCATE as above.
KELROOTS_API int brystrncat(char* to, std::size_t size, const char* from, std::size_t count);
KELROOTS_API int brywcsncat8(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count);
KELROOTS_API int brywcsncat6(unsigned short* to, std::size_t size, const unsigned short* from, std::size_t count);

// ---- changing in place ----------------------------------------------------------------------------------------------

// _strupr_s, _strlwr_s: case. a to z only, until the host chooses a locale with setlocale; then all letters that have
// one character for the other case, 8-bit text being in the ANSI code page.
KELROOTS_API int brystrupr(char* text, std::size_t size);
KELROOTS_API int brywcsupr8(wchar_t* text, std::size_t size);
KELROOTS_API int brywcsupr6(unsigned short* text, std::size_t size);
KELROOTS_API int brystrlwr(char* text, std::size_t size);
KELROOTS_API int brywcslwr8(wchar_t* text, std::size_t size);
KELROOTS_API int brywcslwr6(unsigned short* text, std::size_t size);

// _strset_s: every element before the terminator becomes the fill, of which the low 8 or 16 bits count. A fill of 0
// clears the whole text.
KELROOTS_API int brystrset(char* text, std::size_t size, int fill);
KELROOTS_API int brywcsset8(wchar_t* text, std::size_t size, int fill);
KELROOTS_API int brywcsset6(unsigned short* text, std::size_t size, int fill);

// strtok_s: the next token of a text, delimiters before it skipped; null where there is none. The delimiter behind the
// token is overwritten with a terminator. The first call takes the text, further ones null; where to go on stands in
// *context, which is the caller's, so that several texts may be in work at once. Null also for bad arguments.
KELROOTS_API char* brystrtok(char* text, const char* delimiters, char** context);
KELROOTS_API wchar_t* brywcstok8(wchar_t* text, const wchar_t* delimiters, wchar_t** context);
KELROOTS_API unsigned short* brywcstok6(unsigned short* text, const unsigned short* delimiters,
                                        unsigned short** context);

// ---- numbers --------------------------------------------------------------------------------------------------------

// _itoa_s, _ltoa_s: the number in a radix of 2 to 36, lower-case digits. A minus stands in radix 10 only; in others a
// negative number is its 32 bits. A long has a 32-bit value on every system.
KELROOTS_API int bryitoa(int value, char* to, std::size_t size, int radix);
KELROOTS_API int bryitow8(int value, wchar_t* to, std::size_t size, int radix);
KELROOTS_API int bryitow6(int value, unsigned short* to, std::size_t size, int radix);
KELROOTS_API int bryltoa(long value, char* to, std::size_t size, int radix);
KELROOTS_API int bryltow8(long value, wchar_t* to, std::size_t size, int radix);
KELROOTS_API int bryltow6(long value, unsigned short* to, std::size_t size, int radix);

// _gcvt_s: the value rounded to that many significant digits, without trailing zeros but with its point: "3.", "0.25".
// From 10 to the power of digits on, and below 0.1, with an exponent of three digits: "1.e+006". size must be above
// digits whatever the value; 34 otherwise, for size 0 and negative digits too.
KELROOTS_API int brygcvt(char* to, std::size_t size, double value, int digits);

// ---- paths ----------------------------------------------------------------------------------------------------------

// _splitpath_s: drive ("c:"), directory (through its last slash of either kind), file name and extension (from its last
// point on). A part is left out with a null buffer of size 0. Where a part does not fit, or null and 0 do not go
// together, all four are empty.
KELROOTS_API int brysplitpath(const char* path, char* drive, std::size_t driveSize, char* dir, std::size_t dirSize,
                              char* name, std::size_t nameSize, char* ext, std::size_t extSize);
KELROOTS_API int brywsplitpath8(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* dir,
                                std::size_t dirSize, wchar_t* name, std::size_t nameSize, wchar_t* ext,
                                std::size_t extSize);
KELROOTS_API int brywsplitpath6(const unsigned short* path, unsigned short* drive, std::size_t driveSize,
                                unsigned short* dir, std::size_t dirSize, unsigned short* name, std::size_t nameSize,
                                unsigned short* ext, std::size_t extSize);

// _makepath_s: the way back. Parts may be null or empty; the colon, a backslash behind the directory and the point of
// the extension are added where they are missing. Only the first character of the drive counts.
KELROOTS_API int brymakepath(char* to, std::size_t size, const char* drive, const char* dir, const char* name,
                             const char* ext);
KELROOTS_API int brywmakepath8(wchar_t* to, std::size_t size, const wchar_t* drive, const wchar_t* dir,
                               const wchar_t* name, const wchar_t* ext);
KELROOTS_API int brywmakepath6(unsigned short* to, std::size_t size, const unsigned short* drive,
                               const unsigned short* dir, const unsigned short* name, const unsigned short* ext);

// ---- clock ----------------------------------------------------------------------------------------------------------

// _strtime_s, _strdate_s: the local time "14:05:09" and the local date "02/03/09" (month first). A size below 9 gives
// 34, size 0 as well.
KELROOTS_API int brystrtime(char* to, std::size_t size);
KELROOTS_API int brywstrtime8(wchar_t* to, std::size_t size);
KELROOTS_API int brywstrtime6(unsigned short* to, std::size_t size);
KELROOTS_API int brystrdate(char* to, std::size_t size);
KELROOTS_API int brywstrdate8(wchar_t* to, std::size_t size);
KELROOTS_API int brywstrdate6(unsigned short* to, std::size_t size);

// _localtime64_s: the local calendar time of so many seconds since 1970-01-01 00:00 UTC. A negative time, or one past
// the year 3000, gives 22 and sets every field to -1.
KELROOTS_API int brylocaltime(std::tm* result, const std::int64_t* time);

// ---- environment and errors -----------------------------------------------------------------------------------------

// _dupenv_s: a copy of the value of an environment variable, whose name compares without case, and its element count
// with the terminator. The caller releases the copy with free. A variable that does not exist is no failure: 0, with a
// null copy and count 0.
KELROOTS_API int brydupenv(char** copy, std::size_t* count, const char* name);
KELROOTS_API int brywdupenv8(wchar_t** copy, std::size_t* count, const wchar_t* name);
KELROOTS_API int brywdupenv6(unsigned short** copy, std::size_t* count, const unsigned short* name);

// _searchenv_s: looks for a file in the working directory (path is then the full path) and in the folders that an
// environment variable lists (path is then the folder as written there, a slash and the file). Entries are separated by
// ";", outside Windows by ":" as well unless it follows the letter of a drive; quotes around them are dropped. 2
// (ENOENT) and an empty path where the file is nowhere. Outside Windows the slashes added are "/".
KELROOTS_API int brysearchenv(const char* file, const char* variable, char* path, std::size_t size);
KELROOTS_API int brywsearchenv8(const wchar_t* file, const wchar_t* variable, wchar_t* path, std::size_t size);
KELROOTS_API int brywsearchenv6(const unsigned short* file, const unsigned short* variable, unsigned short* path,
                                std::size_t size);

// strerror_s: the text of an error number of the Windows runtime (0 to 42), in English; "Unknown error" for any other.
// A text that does not fit is cut, and that is success.
KELROOTS_API int brystrerror(char* to, std::size_t size, int error);
KELROOTS_API int brywcserror8(wchar_t* to, std::size_t size, int error);
KELROOTS_API int brywcserror6(unsigned short* to, std::size_t size, int error);

// ---- OLE strings ----------------------------------------------------------------------------------------------------

// A new OLE string with the wide text; an empty text gives an empty OLE string. The caller releases it with
// SysFreeString. Null where memory is out.
KELROOTS_API wchar_t* bryGetBSTR8(const BryString& text);
KELROOTS_API unsigned short* bryGetBSTR6(const BryString& text);
