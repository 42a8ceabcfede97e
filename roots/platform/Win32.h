// The one seam between the library and the system. The library's code calls the Windows API and the bounded routines
// of its C runtime; on Windows they are the system's own, elsewhere roots/platform/posix/ implements the subset
// declared here, with the same names, types, argument orders and answers.
//
// Routines whose names the C library of every system has as well (fgetws, iswalpha, fclose ...) stand in the namespace
// crt on both systems: redeclared in the global namespace they would silently bind to routines for 32-bit wide
// characters or to streams without text mode.
//
// What is marked KELROOTS_API serves hosts as well; the rest is the library's own and not exported.
#pragma once

#include <roots/Export.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>

#ifdef _WIN32

#    ifndef WIN32_LEAN_AND_MEAN
#        define WIN32_LEAN_AND_MEAN
#    endif
#    ifndef NOMINMAX
#        define NOMINMAX
#    endif
#    include <windows.h>

#    include <commctrl.h>
#    include <direct.h>
#    include <errno.h>
#    include <fcntl.h>
#    include <io.h>
#    include <oleauto.h>
#    include <stdio.h>
#    include <stdlib.h>
#    include <string.h>
#    include <time.h>
#    include <tlhelp32.h>
#    include <wchar.h>
#    include <wctype.h>

namespace crt {
using ::clock;
using ::fclose;
using ::feof;
using ::fgets;
using ::fgetwc;
using ::fgetws;
using ::fputs;
using ::fputws;
using ::fread;
using ::fseek;
using ::ftell;
using ::iswalnum;
using ::iswalpha;
using ::iswdigit;
using ::strftime;

inline int setmode(std::FILE* stream, int mode) { return ::_setmode(::_fileno(stream), mode); }
}  // namespace crt

#else

// ---- types and constants -------------------------------------------------------------------------------------------

using BOOL = int;
using BYTE = unsigned char;
using WORD = unsigned short;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using HANDLE = void*;
using BSTR = wchar_t*;
using errno_t = int;
using __time64_t = std::int64_t;

#    define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)))

enum : BOOL { FALSE = 0, TRUE = 1 };
enum : UINT { CP_ACP = 0, CP_UTF8 = 65001 };
enum : std::size_t { MAX_PATH = 260 };
constexpr std::size_t _TRUNCATE = static_cast<std::size_t>(-1);
constexpr int STRUNCATE = 80;

enum : DWORD {
    ERROR_SUCCESS = 0,
    ERROR_FILE_NOT_FOUND = 2,
    ERROR_PATH_NOT_FOUND = 3,
    ERROR_TOO_MANY_OPEN_FILES = 4,
    ERROR_ACCESS_DENIED = 5,
    ERROR_INVALID_HANDLE = 6,
    ERROR_NOT_ENOUGH_MEMORY = 8,
    ERROR_NO_MORE_FILES = 18,
    ERROR_INVALID_PARAMETER = 87,
    ERROR_DISK_FULL = 112,
    ERROR_INSUFFICIENT_BUFFER = 122,
    ERROR_INVALID_NAME = 123,
    ERROR_BAD_PATHNAME = 161,
    ERROR_BUSY = 170,
    ERROR_FILENAME_EXCED_RANGE = 206,
    ERROR_MORE_DATA = 234,
    ERROR_NO_MORE_ITEMS = 259,
    ERROR_NOACCESS = 998,
    ERROR_INVALID_FLAGS = 1004,
    ERROR_BADDB = 1009,
    ERROR_REGISTRY_IO_FAILED = 1016,
    ERROR_NOT_REGISTRY_FILE = 1017,
    ERROR_KEY_DELETED = 1018,
    ERROR_NO_UNICODE_TRANSLATION = 1113,
    ERROR_REVISION_MISMATCH = 1306,
    ERROR_INVALID_WINDOW_HANDLE = 1400,
    ERROR_TLW_WITH_WSCHILD = 1406,
    ERROR_CANNOT_FIND_WND_CLASS = 1411,
    ERROR_CONTROL_ID_NOT_FOUND = 1421,
    ERROR_INVALID_MSGBOX_STYLE = 1438,
    ERROR_RESOURCE_DATA_NOT_FOUND = 1812,
    ERROR_RESOURCE_NAME_NOT_FOUND = 1814,
};

// The error number of the last Windows service that failed on this thread. Successful services leave it alone.
KELROOTS_API DWORD GetLastError();
KELROOTS_API void SetLastError(DWORD error);

// Zeros that the compiler may not optimise away, however dead the memory is.
void* SecureZeroMemory(void* memory, std::size_t size);

// ---- text conversion (posix/TextConversion.cpp) ---------------------------------------------------------------------

// The code page that CP_ACP names: 1252, or the number in the environment variable KELROOTS_ANSI_CODE_PAGE, read once.
KELROOTS_API UINT GetACP();

// Code pages: CP_ACP, 874, 932, 936, 949, 950, 1250 to 1258, 1361, CP_UTF8. flags must be 0. A negative length means
// "through the terminator", which is then converted and counted. capacity 0 asks for the size. Results are counts of
// units; 0 is failure, GetLastError says why (too small: 122, and as much as fits is written).
KELROOTS_API int MultiByteToWideChar(UINT codePage, DWORD flags, const char* text, int length, wchar_t* buffer,
                                     int capacity);

// The same the other way, counting bytes. A character that the code page lacks becomes defaultChar ("?" where null)
// and sets *usedDefault (unless null); look-alikes are never chosen. CP_UTF8 lacks nothing and takes neither of the
// two: error 87.
KELROOTS_API int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* text, int length, char* buffer,
                                     int capacity, const char* defaultChar, BOOL* usedDefault);

// ---- OLE strings (posix/OleString.cpp) ------------------------------------------------------------------------------

// A new OLE string: its byte count in the four bytes before the text, a terminator behind it. Null for a null text or
// where memory is out. SysStringLen counts units; null has none. SysFreeString takes null as well.
KELROOTS_API BSTR SysAllocString(const wchar_t* text);
KELROOTS_API BSTR SysAllocStringLen(const wchar_t* text, UINT length);
KELROOTS_API UINT SysStringLen(BSTR text);
KELROOTS_API void SysFreeString(BSTR text);

// ---- bounded text (posix/BoundedText.cpp, Numbers.cpp, SplitPaths.cpp, Environment.cpp, ClockText.cpp) -------------

// Sizes count elements of the destination. 0 on success, else the error number (22 bad argument, 34 too small), the
// destination emptied where there is one; nothing is ever written beyond the size, and the process never ends.
errno_t strcpy_s(char* to, std::size_t size, const char* from);
errno_t wcscpy_s(wchar_t* to, std::size_t size, const wchar_t* from);
errno_t strncpy_s(char* to, std::size_t size, const char* from, std::size_t count);
errno_t wcsncpy_s(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count);
errno_t strcat_s(char* to, std::size_t size, const char* from);
errno_t wcscat_s(wchar_t* to, std::size_t size, const wchar_t* from);
errno_t strncat_s(char* to, std::size_t size, const char* from, std::size_t count);
errno_t wcsncat_s(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count);
errno_t _strupr_s(char* text, std::size_t size);
errno_t _wcsupr_s(wchar_t* text, std::size_t size);
errno_t _strlwr_s(char* text, std::size_t size);
errno_t _wcslwr_s(wchar_t* text, std::size_t size);
errno_t _strset_s(char* text, std::size_t size, int fill);
errno_t _wcsset_s(wchar_t* text, std::size_t size, wchar_t fill);
char* strtok_s(char* text, const char* delimiters, char** context);
wchar_t* wcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context);
int _wcsicmp(const wchar_t* a, const wchar_t* b);
int _wcsnicmp(const wchar_t* a, const wchar_t* b, std::size_t count);

// The byte of a unit in the runtime's locale, "C" here: units up to FF have one, the others are refused (42) and fill
// the destination with zeros. *count (unless null) is 1, or -1 after a failure. A null destination with a size only
// asks whether the encoding has states: *count is 0.
errno_t wctomb_s(int* count, char* to, std::size_t size, wchar_t unit);

errno_t _itoa_s(int value, char* to, std::size_t size, int radix);
errno_t _itow_s(int value, wchar_t* to, std::size_t size, int radix);
errno_t _ltoa_s(long value, char* to, std::size_t size, int radix);
errno_t _ltow_s(long value, wchar_t* to, std::size_t size, int radix);
errno_t _gcvt_s(char* to, std::size_t size, double value, int digits);
int _wtoi(const wchar_t* text);
long _wtol(const wchar_t* text);
double _wtof(const wchar_t* text);

errno_t _splitpath_s(const char* path, char* drive, std::size_t driveSize, char* dir, std::size_t dirSize, char* name,
                     std::size_t nameSize, char* ext, std::size_t extSize);
errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* dir, std::size_t dirSize,
                      wchar_t* name, std::size_t nameSize, wchar_t* ext, std::size_t extSize);
errno_t _makepath_s(char* to, std::size_t size, const char* drive, const char* dir, const char* name, const char* ext);
errno_t _wmakepath_s(wchar_t* to, std::size_t size, const wchar_t* drive, const wchar_t* dir, const wchar_t* name,
                     const wchar_t* ext);

// The copies that _dupenv_s hands out come from malloc.
errno_t _dupenv_s(char** copy, std::size_t* count, const char* name);
errno_t _wdupenv_s(wchar_t** copy, std::size_t* count, const wchar_t* name);
errno_t _searchenv_s(const char* file, const char* variable, char* path, std::size_t size);
errno_t _wsearchenv_s(const wchar_t* file, const wchar_t* variable, wchar_t* path, std::size_t size);
errno_t strerror_s(char* to, std::size_t size, int error);
errno_t _wcserror_s(wchar_t* to, std::size_t size, int error);

errno_t _strtime_s(char* to, std::size_t size);
errno_t _wstrtime_s(wchar_t* to, std::size_t size);
errno_t _strdate_s(char* to, std::size_t size);
errno_t _wstrdate_s(wchar_t* to, std::size_t size);
errno_t _localtime64_s(std::tm* result, const __time64_t* time);

// ---- formatted text (posix/FormattedText.cpp, ScannedText.cpp) ------------------------------------------------------

// The Windows meaning of every conversion: in a wide format %s takes wide text and %S 8-bit text, in a narrow one the
// other way round; %n and unknown conversions are refused. Results count units without the terminator; -1 where the
// text does not fit or the format is refused, and the destination is then empty. The _vsc forms only count.
int vsprintf_s(char* to, std::size_t size, const char* format, std::va_list args);
int vswprintf_s(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list args);
// The same, but a text that does not fit is cut, with a result of -1 all the same: where the others would end a
// process on Windows, these do not. count is _TRUNCATE, the one use here.
int _vsnprintf_s(char* to, std::size_t size, std::size_t count, const char* format, std::va_list args);
int _vsnwprintf_s(wchar_t* to, std::size_t size, std::size_t count, const wchar_t* format, std::va_list args);
int _vscprintf(const char* format, std::va_list args);
int _vscwprintf(const wchar_t* format, std::va_list args);
int vfprintf_s(std::FILE* stream, const char* format, std::va_list args);
int vfwprintf_s(std::FILE* stream, const wchar_t* format, std::va_list args);

// Text conversions (%s %c %[) are followed by the size of their buffer as unsigned int.
int sscanf_s(const char* text, const char* format, ...);
int swscanf_s(const wchar_t* text, const wchar_t* format, ...);
int fwscanf_s(std::FILE* stream, const wchar_t* format, ...);

// ---- streams (posix/Streams.cpp) ------------------------------------------------------------------------------------

// Opens a stream in a Windows mode: text mode (CR LF on disk) unless the mode has a b, "ccs=" encodings in text mode.
errno_t _wfopen_s(std::FILE** stream, const wchar_t* name, const wchar_t* mode);

int _wremove(const wchar_t* path);
int _wrename(const wchar_t* oldName, const wchar_t* newName);
int _wchdir(const wchar_t* path);
int _wmkdir(const wchar_t* path);

// How setmode has a stream translated: 8-bit text, none at all, UTF-16 or UTF-8 text.
enum { _O_TEXT = 0x4000, _O_BINARY = 0x8000, _O_WTEXT = 0x10000, _O_U8TEXT = 0x40000 };

namespace crt {

// Streams opened by _wfopen_s are read, written and closed through these, never through the C library's own.
int fclose(std::FILE* stream);
int feof(std::FILE* stream);
char* fgets(char* buffer, int count, std::FILE* stream);
wchar_t* fgetws(wchar_t* buffer, int count, std::FILE* stream);
unsigned short fgetwc(std::FILE* stream);
int fputs(const char* text, std::FILE* stream);
int fputws(const wchar_t* text, std::FILE* stream);
std::size_t fread(void* buffer, std::size_t size, std::size_t count, std::FILE* stream);
int fseek(std::FILE* stream, long offset, int origin);
long ftell(std::FILE* stream);

// Changes how an open stream is translated from the next read on, which must follow a change of position. The mode
// that it had; Windows answers _O_WTEXT for every encoding.
int setmode(std::FILE* stream, int mode);

int iswalpha(unsigned short unit);
int iswalnum(unsigned short unit);
int iswdigit(unsigned short unit);

std::size_t strftime(char* to, std::size_t size, const char* format, const std::tm* time);

// Milliseconds since this process started, also those that it or the machine slept (posix/ProcessClock.cpp). -1 when
// they exceed 32 bits, after 24 days.
std::clock_t clock();

}  // namespace crt

// ---- file search (posix/FileSearch.cpp) -----------------------------------------------------------------------------

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    wchar_t cFileName[MAX_PATH];
    wchar_t cAlternateFileName[14];
};

enum : DWORD { FILE_ATTRIBUTE_DIRECTORY = 0x10, FILE_ATTRIBUTE_NORMAL = 0x80 };

HANDLE FindFirstFileW(const wchar_t* pattern, WIN32_FIND_DATAW* found);
BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* found);
BOOL FindClose(HANDLE search);

// ---- time (posix/Time.cpp) ------------------------------------------------------------------------------------------

// A time of the calendar, whichever zone it is of. The day of the week counts from Sunday, 0; it is filled in where a
// time is made and not looked at where one is given. Headers declare the name that Windows has behind SYSTEMTIME, and
// do without this one.
struct _SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
using SYSTEMTIME = _SYSTEMTIME;

// The number of 100 ns since the beginning of 1601, in the calendar of today. Years are 1601 to 30827. A field outside
// its range, a day that its month lacks: false, error 87, and nothing is written.
KELROOTS_API BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* count);

// The time of a count, cut to milliseconds. Counts from 2^63 on are refused in the same way; the last time is in the
// year 30828, which SystemTimeToFileTime refuses.
KELROOTS_API BOOL FileTimeToSystemTime(const FILETIME* count, SYSTEMTIME* time);

// -1, 0 or 1, as first is less than, equal to or greater than second.
KELROOTS_API LONG CompareFileTime(const FILETIME* first, const FILETIME* second);

// Now, in the zone of the environment and in UTC. A host that changes TZ calls tzset.
KELROOTS_API void GetLocalTime(SYSTEMTIME* time);
KELROOTS_API void GetSystemTime(SYSTEMTIME* time);

// ---- processes and modules (posix/Modules.cpp) ----------------------------------------------------------------------

using ULONG_PTR = std::uintptr_t;
using HMODULE = void*;

struct PROCESSENTRY32W {
    DWORD dwSize;
    DWORD cntUsage;
    DWORD th32ProcessID;
    ULONG_PTR th32DefaultHeapID;
    DWORD th32ModuleID;
    DWORD cntThreads;
    DWORD th32ParentProcessID;
    LONG pcPriClassBase;
    DWORD dwFlags;
    wchar_t szExeFile[MAX_PATH];
};

enum : std::size_t { MAX_MODULE_NAME32 = 255 };

struct MODULEENTRY32W {
    DWORD dwSize;
    DWORD th32ModuleID;
    DWORD th32ProcessID;
    DWORD GlblcntUsage;
    DWORD ProccntUsage;
    BYTE* modBaseAddr;
    DWORD modBaseSize;
    HMODULE hModule;
    wchar_t szModule[MAX_MODULE_NAME32 + 1];
    wchar_t szExePath[MAX_PATH];
};

enum : DWORD { TH32CS_SNAPPROCESS = 2, TH32CS_SNAPMODULE = 8 };

DWORD GetCurrentProcessId();

// Takes a list of the processes, or of the modules of one (0 is this one); CloseHandle releases it. Here the processes
// are this one alone, of which the number, the parent's and the file name are told; the only modules are its own, in
// the order of the dynamic loader: the program first, each with the path by which it was loaded (MAX_PATH - 1
// units of it; it opens the file as long as that and the working folder stay where they are) and its whole pages in
// memory. What the kernel lends every process is no file and is left out. INVALID_HANDLE_VALUE for any other kind or
// process.
HANDLE CreateToolhelp32Snapshot(DWORD flags, DWORD process);

// The first entry, then one after the other; entry->dwSize is its size. False at the end (ERROR_NO_MORE_FILES; so too
// for the entries of the other kind), for a size too small (ERROR_INSUFFICIENT_BUFFER) and for what is no snapshot.
BOOL Process32FirstW(HANDLE snapshot, PROCESSENTRY32W* entry);
BOOL Process32NextW(HANDLE snapshot, PROCESSENTRY32W* entry);
BOOL Module32FirstW(HANDLE snapshot, MODULEENTRY32W* entry);
BOOL Module32NextW(HANDLE snapshot, MODULEENTRY32W* entry);

// Snapshots are the handles there are here; any other value is refused (ERROR_INVALID_HANDLE).
BOOL CloseHandle(HANDLE handle);

// ---- stack (posix/StackLimits.cpp) ----------------------------------------------------------------------------------

// Where the stack of this thread ends and where it began; it grows down to low. Both are 0 where the system does not
// tell: for the first thread where /proc is missing.
void GetCurrentThreadStackLimits(ULONG_PTR* low, ULONG_PTR* high);

// ---- version information (posix/VersionInfo.cpp) --------------------------------------------------------------------

// The size of the block that holds the version resource of a PE file, 32- or 64-bit, or 0: error 1812 where there is
// none or the file is damaged, else why it cannot be read. path is opened as it is, without a search. *handle (unless
// null) becomes 0.
//
// The block is larger than the resource: at least 64 zeros follow, so that a reader that looks for the end of the
// resource's key and for 13 words behind it stays inside, whatever the resource holds.
DWORD GetFileVersionInfoSizeW(const wchar_t* path, DWORD* handle);

// Fills a block of any size with the start of the resource, or with all of it and zeros. False like the above.
BOOL GetFileVersionInfoW(const wchar_t* path, DWORD handle, DWORD size, void* block);

// ---- registry (posix/Registry.cpp, RegistryStore.cpp) ---------------------------------------------------------------

// Keys, values and their bytes as Windows keeps them, in one SQLite database: the file in the environment variable
// KELROOTS_REGISTRY, by default ~/.local/share/norrab/registry.db, made with its folders when something is first
// written. Any number of processes may use it at once, and each sees what the others have written. What a call answers
// with ERROR_SUCCESS is on disk: a process killed right after, or a machine without power, loses nothing of it.
//
// Paths are separated by backslashes, of which several count as one, and one at the end as none. Names keep their case
// and compare without it, whatever the locale. A key's name has 1 to 255 units, a value's up to 16383; keys are at most
// 512 levels deep. The default value is named by an empty text or null. Every service answers ERROR_SUCCESS or the
// error number, and nothing else changes where it fails, but that *result is null.
using LSTATUS = LONG;
using HKEY = struct HKEY__*;
using REGSAM = DWORD;
struct SECURITY_ATTRIBUTES;

// The hives of the user and of the machine. The classes are the machine's Software\Classes under a name of their own:
// what a user has in his Software\Classes does not show there. These keys cannot be removed.
#    define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<std::intptr_t>(INT32_MIN)))
#    define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<std::intptr_t>(INT32_MIN + 1)))
#    define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<std::intptr_t>(INT32_MIN + 2)))

// The rights that matter: to read values, to write them, to make and to list keys.
enum : REGSAM {
    KEY_QUERY_VALUE = 1,
    KEY_SET_VALUE = 2,
    KEY_CREATE_SUB_KEY = 4,
    KEY_ENUMERATE_SUB_KEYS = 8,
    KEY_READ = 0x20019,
    KEY_WRITE = 0x20006,
    KEY_ALL_ACCESS = 0xF003F,
};

enum : DWORD { REG_OPTION_NON_VOLATILE = 0 };
enum : DWORD { REG_CREATED_NEW_KEY = 1, REG_OPENED_EXISTING_KEY = 2 };

enum : DWORD {
    REG_NONE = 0,
    REG_SZ = 1,
    REG_EXPAND_SZ = 2,
    REG_BINARY = 3,
    REG_DWORD = 4,
    REG_MULTI_SZ = 7,
    REG_QWORD = 11,
};

// Opens a key, which must exist. *result is a handle that RegCloseKey releases; opening a hive itself (path empty or
// null) gives the hive's own.
KELROOTS_API LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* path, DWORD options, REGSAM access, HKEY* result);

// The same, but makes the key and those above it where they are missing. keyClass and security are not used, options is
// REG_OPTION_NON_VOLATILE. *disposition (unless null) says whether the key is new.
KELROOTS_API LSTATUS RegCreateKeyExW(HKEY key, const wchar_t* path, DWORD reserved, wchar_t* keyClass, DWORD options,
                                     REGSAM access, const SECURITY_ATTRIBUTES* security, HKEY* result,
                                     DWORD* disposition);

// Releases a handle; the hives' own stay.
KELROOTS_API LSTATUS RegCloseKey(HKEY key);

// Reads a value. *size is the room in data and becomes the size of the value; where the room is too small, the answer
// is ERROR_MORE_DATA and data stays as it was. Without data only *size and *type (each unless null) are told.
KELROOTS_API LSTATUS RegQueryValueExW(HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type, BYTE* data,
                                      DWORD* size);

// Stores just the size bytes of data under name, with any type. A name that is there keeps its spelling.
KELROOTS_API LSTATUS RegSetValueExW(HKEY key, const wchar_t* name, DWORD reserved, DWORD type, const BYTE* data,
                                    DWORD size);

KELROOTS_API LSTATUS RegDeleteValueW(HKEY key, const wchar_t* name);

// Removes the key below key that path names with all that is in it; without a path, all that is in key, which stays.
// Handles that are open on what is removed answer ERROR_KEY_DELETED from then on.
KELROOTS_API LSTATUS RegDeleteTreeW(HKEY key, const wchar_t* path);

// The name of a key's subkey number index, counted from 0 in the order of their names, until ERROR_NO_MORE_ITEMS. *size
// is the room in name with the terminator (else ERROR_MORE_DATA) and becomes the length without it. The class is empty
// and the time is not kept: keyClass, classSize and written are null.
KELROOTS_API LSTATUS RegEnumKeyExW(HKEY key, DWORD index, wchar_t* name, DWORD* size, DWORD* reserved,
                                   wchar_t* keyClass, DWORD* classSize, FILETIME* written);

// The same for a key's values, with type and data as RegQueryValueExW tells them.
KELROOTS_API LSTATUS RegEnumValueW(HKEY key, DWORD index, wchar_t* name, DWORD* nameSize, DWORD* reserved, DWORD* type,
                                   BYTE* data, DWORD* size);

// ---- message box (posix/MessageBox.cpp) -----------------------------------------------------------------------------

using HWND = void*;

enum : UINT { MB_OK = 0, MB_ICONHAND = 0x10, MB_ICONQUESTION = 0x20, MB_ICONWARNING = 0x30, MB_ICONINFORMATION = 0x40 };
enum { IDOK = 1, IDCANCEL = 2 };

// Writes caption and text to the error stream, as UTF-8 without control characters other than line feeds and tabs, and
// waits for Enter where both that stream and the input are a terminal. A null caption is "Error", a null text is empty.
// IDOK. There is one button and no icon: any other style than MB_OK with an icon is refused (0, error 1438). owner is
// not used.
int MessageBoxW(HWND owner, const wchar_t* text, const wchar_t* caption, UINT style);

// ---- windows (posix/Windows.cpp; drawn by posix/ProgressLine.cpp) ---------------------------------------------------

using HINSTANCE = void*;
using HMENU = void*;
using LPVOID = void*;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using INT_PTR = std::intptr_t;
#    define CALLBACK
using DLGPROC = INT_PTR(CALLBACK*)(HWND dialog, UINT message, WPARAM first, LPARAM second);

struct RECT {
    LONG left, top, right, bottom;
};

struct PBRANGE {
    int iLow, iHigh;
};

enum : DWORD { WS_VISIBLE = 0x10000000, WS_CHILD = 0x40000000, WS_EX_NOPARENTNOTIFY = 4 };
enum { SW_HIDE = 0, SW_SHOW = 5 };
enum : UINT {
    WM_CREATE = 0x1,
    WM_DESTROY = 0x2,
    WM_SETTEXT = 0xC,
    WM_GETTEXT = 0xD,
    WM_GETTEXTLENGTH = 0xE,
    WM_CLOSE = 0x10,
    WM_SHOWWINDOW = 0x18,
    WM_SETFONT = 0x30,
    WM_NCDESTROY = 0x82,
    WM_INITDIALOG = 0x110,
    WM_COMMAND = 0x111,
    WM_PARENTNOTIFY = 0x210,
    WM_USER = 0x400,
    PBM_SETRANGE = WM_USER + 1,
    PBM_SETPOS,
    PBM_DELTAPOS,
    PBM_SETSTEP,
    PBM_STEPIT,
    PBM_SETRANGE32,
    PBM_GETRANGE,
    PBM_GETPOS,
    PBM_GETSTEP = WM_USER + 13,
};

template <class Number>
constexpr WORD LOWORD(Number value) {
    return static_cast<WORD>(static_cast<std::uintptr_t>(value) & 0xFFFF);
}
template <class Number>
constexpr WORD HIWORD(Number value) {
    return static_cast<WORD>(static_cast<std::uintptr_t>(value) >> 16 & 0xFFFF);
}
template <class Low, class High>
constexpr DWORD MAKELONG(Low low, High high) {
    return LOWORD(low) | DWORD{LOWORD(high)} << 16;
}
template <class Low, class High>
constexpr LPARAM MAKELPARAM(Low low, High high) {
    return MAKELONG(low, high);
}
inline const wchar_t* MAKEINTRESOURCEW(WORD id) { return reinterpret_cast<const wchar_t*>(std::uintptr_t{id}); }

namespace platform {

// A dialog as a module's resources describe it, as far as it matters without a screen.
struct DialogItem {
    const wchar_t* text;
    int id;
    DWORD style;
};

struct DialogTemplate {
    WORD id;
    DWORD style;
    const DialogItem* items;  // the first of count
    std::size_t count;
};

// Gives a module its dialogs, in place of those that it had; null is the program. The caller keeps them.
void setDialogs(HINSTANCE module, const DialogTemplate* dialogs, std::size_t count);

}  // namespace platform

// Windows live in memory: dialogs, and in them the controls STATIC and msctls_progress32, which is always registered. A
// handle is a number that no other window of the process ever gets, so that a stale one is refused like a null one:
// FALSE, 0 or null and ERROR_INVALID_WINDOW_HANDLE, nothing touched. All calls come from one thread.
//
// A dialog procedure gets what Windows sends it, in that order and with those parameters: WM_SETFONT (with a font of no
// use), WM_INITDIALOG (with the first control), WM_PARENTNOTIFY, WM_SHOWWINDOW, WM_DESTROY, WM_NCDESTROY, and whatever
// is sent to the dialog. What comes of a screen, a keyboard or a mouse is left out: positions, painting, activation,
// focus. There is no queue: WM_CLOSE sends the WM_COMMAND with IDCANCEL that Windows posts. A procedure may destroy any
// window, its own too.
//
// Where the error stream is a terminal, the visible dialog whose content changed last is drawn on it, as one line that
// is rewritten in place: the text of its first static control, its progress bar and how much of that is full, in
// per cent (the text of its second static control where it has no bar). The line
// - fits the terminal's width, which is asked anew each time; what is too long is cut, between characters;
// - is drawn at once, but never within 1/30 s of the last time. What changes faster waits for that moment, in a thread
//   that lives until the last value is drawn and touches nothing but the line (where none can be had, the caller
//   waits). What changes nothing draws nothing;
// - is erased when the dialog is hidden or destroyed, while a message box shows, and when the process ends: by exit or
//   by SIGHUP, SIGINT, SIGQUIT, SIGABRT or SIGTERM, as far as the host has no action of its own for them. It changes no
//   mode of the terminal, so that a process that ends in another way leaves nothing behind it but the line;
// - is left to its process: forked children draw nothing, nor do processes in the background. Where TERM is dumb there
//   is none.

// A modeless dialog after one of the module's templates: name is MAKEINTRESOURCEW of its number. It comes without an
// owner, whatever owner is. Null where there is no such template (ERROR_RESOURCE_NAME_NOT_FOUND), memory is out or the
// procedure destroyed it.
HWND CreateDialogParamW(HINSTANCE module, const wchar_t* name, HWND owner, DLGPROC procedure, LPARAM param);

// A control, a child of any window: menu is its number. Other classes and windows without a parent are refused.
HWND CreateWindowExW(DWORD exStyle, const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width,
                     int height, HWND parent, HMENU menu, HINSTANCE module, void* param);

BOOL DestroyWindow(HWND window);

// Hides the dialog, which lives on.
BOOL EndDialog(HWND dialog, INT_PTR result);

// Hides (SW_HIDE) or shows (anything else); answers whether the window was visible.
BOOL ShowWindow(HWND window, int command);
BOOL SetDlgItemTextW(HWND dialog, int id, const wchar_t* text);

// The topmost dialog with this class ("#32770"; null: any) and text (null: any), both without regard to case.
KELROOTS_API HWND FindWindowW(const wchar_t* className, const wchar_t* text);

// The control with that number, or null (ERROR_CONTROL_ID_NOT_FOUND).
KELROOTS_API HWND GetDlgItem(HWND dialog, int id);

// Copies the control's text, cut to capacity - 1 units, and answers its length there; the empty text where there is no
// such control.
KELROOTS_API UINT GetDlgItemTextW(HWND dialog, int id, wchar_t* buffer, int capacity);
KELROOTS_API BOOL IsWindow(HWND window);
KELROOTS_API BOOL IsWindowVisible(HWND window);

// Every window knows WM_SETTEXT, WM_GETTEXT and WM_GETTEXTLENGTH; bars know the PBM_ messages above. Other messages end
// in the dialog's procedure, or answer 0.
KELROOTS_API LRESULT SendMessageW(HWND window, UINT message, WPARAM first, LPARAM second);

// ---- the module -----------------------------------------------------------------------------------------------------

#    define WINAPI
enum : DWORD { DLL_PROCESS_DETACH = 0, DLL_PROCESS_ATTACH = 1, DLL_THREAD_ATTACH = 2, DLL_THREAD_DETACH = 3 };

#endif

// ---- locks on streams (windows/StreamLock.cpp, posix/StreamLock.cpp) ------------------------------------------------

namespace crt {

// Waits until no other stream of any process holds this lock on the file, and holds it until the stream is closed:
// processes that append to one file take turns, so that none overwrites or divides what another writes. It keeps nobody
// from reading or writing who does not ask for it. False where the file cannot be locked, as on some network
// drives.
bool lockWhileOpen(std::FILE* stream);

// After an open that failed: waits a moment and is true where it failed because another stream has the file for itself,
// as every stream that Windows opens for writing has. Always false elsewhere.
bool waitsForOthers();

}  // namespace crt
