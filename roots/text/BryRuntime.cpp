#include <roots/text/BryRuntime.h>

#include <roots/platform/Win32.h>
#include <roots/text/BryString.h>

namespace {

// Text spelled unsigned short under the name that the runtime has for it: the same 16 bits.
wchar_t* wide(unsigned short* text) { return reinterpret_cast<wchar_t*>(text); }

const wchar_t* wide(const unsigned short* text) { return reinterpret_cast<const wchar_t*>(text); }

wchar_t** wide(unsigned short** text) { return reinterpret_cast<wchar_t**>(text); }

unsigned short* units(wchar_t* text) { return reinterpret_cast<unsigned short*>(text); }

}  // namespace

int brystrcpy(char* to, std::size_t size, const char* from) { return strcpy_s(to, size, from); }

int brywcscpy8(wchar_t* to, std::size_t size, const wchar_t* from) { return wcscpy_s(to, size, from); }

int brywcscpy6(unsigned short* to, std::size_t size, const unsigned short* from) {
    return wcscpy_s(wide(to), size, wide(from));
}

int brystrncpy(char* to, std::size_t size, const char* from, std::size_t count) {
    return strncpy_s(to, size, from, count);
}

int brywcsncpy8(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) {
    return wcsncpy_s(to, size, from, count);
}

int brywcsncpy6(unsigned short* to, std::size_t size, const unsigned short* from, std::size_t count) {
    return wcsncpy_s(wide(to), size, wide(from), count);
}

int brystrcat(char* to, std::size_t size, const char* from) { return strcat_s(to, size, from); }

int brywcscat8(wchar_t* to, std::size_t size, const wchar_t* from) { return wcscat_s(to, size, from); }

int brywcscat6(unsigned short* to, std::size_t size, const unsigned short* from) {
    return wcscat_s(wide(to), size, wide(from));
}

int brystrncat(char* to, std::size_t size, const char* from, std::size_t count) {
    return strncat_s(to, size, from, count);
}

int brywcsncat8(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) {
    return wcsncat_s(to, size, from, count);
}

int brywcsncat6(unsigned short* to, std::size_t size, const unsigned short* from, std::size_t count) {
    return wcsncat_s(wide(to), size, wide(from), count);
}

int brystrupr(char* text, std::size_t size) { return _strupr_s(text, size); }

int brywcsupr8(wchar_t* text, std::size_t size) { return _wcsupr_s(text, size); }

int brywcsupr6(unsigned short* text, std::size_t size) { return _wcsupr_s(wide(text), size); }

int brystrlwr(char* text, std::size_t size) { return _strlwr_s(text, size); }

int brywcslwr8(wchar_t* text, std::size_t size) { return _wcslwr_s(text, size); }

int brywcslwr6(unsigned short* text, std::size_t size) { return _wcslwr_s(wide(text), size); }

int brystrset(char* text, std::size_t size, int fill) { return _strset_s(text, size, fill); }

int brywcsset8(wchar_t* text, std::size_t size, int fill) { return _wcsset_s(text, size, static_cast<wchar_t>(fill)); }

int brywcsset6(unsigned short* text, std::size_t size, int fill) {
    return _wcsset_s(wide(text), size, static_cast<wchar_t>(fill));
}

char* brystrtok(char* text, const char* delimiters, char** context) { return strtok_s(text, delimiters, context); }

wchar_t* brywcstok8(wchar_t* text, const wchar_t* delimiters, wchar_t** context) {
    return wcstok_s(text, delimiters, context);
}

unsigned short* brywcstok6(unsigned short* text, const unsigned short* delimiters, unsigned short** context) {
    return units(wcstok_s(wide(text), wide(delimiters), wide(context)));
}

int bryitoa(int value, char* to, std::size_t size, int radix) { return _itoa_s(value, to, size, radix); }

int bryitow8(int value, wchar_t* to, std::size_t size, int radix) { return _itow_s(value, to, size, radix); }

int bryitow6(int value, unsigned short* to, std::size_t size, int radix) {
    return _itow_s(value, wide(to), size, radix);
}

int bryltoa(long value, char* to, std::size_t size, int radix) { return _ltoa_s(value, to, size, radix); }

int bryltow8(long value, wchar_t* to, std::size_t size, int radix) { return _ltow_s(value, to, size, radix); }

int bryltow6(long value, unsigned short* to, std::size_t size, int radix) {
    return _ltow_s(value, wide(to), size, radix);
}

int brygcvt(char* to, std::size_t size, double value, int digits) { return _gcvt_s(to, size, value, digits); }

int brysplitpath(const char* path, char* drive, std::size_t driveSize, char* dir, std::size_t dirSize, char* name,
                 std::size_t nameSize, char* ext, std::size_t extSize) {
    return _splitpath_s(path, drive, driveSize, dir, dirSize, name, nameSize, ext, extSize);
}

int brywsplitpath8(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* dir, std::size_t dirSize,
                   wchar_t* name, std::size_t nameSize, wchar_t* ext, std::size_t extSize) {
    return _wsplitpath_s(path, drive, driveSize, dir, dirSize, name, nameSize, ext, extSize);
}

int brywsplitpath6(const unsigned short* path, unsigned short* drive, std::size_t driveSize, unsigned short* dir,
                   std::size_t dirSize, unsigned short* name, std::size_t nameSize, unsigned short* ext,
                   std::size_t extSize) {
    return _wsplitpath_s(wide(path), wide(drive), driveSize, wide(dir), dirSize, wide(name), nameSize, wide(ext),
                         extSize);
}

int brymakepath(char* to, std::size_t size, const char* drive, const char* dir, const char* name, const char* ext) {
    return _makepath_s(to, size, drive, dir, name, ext);
}

int brywmakepath8(wchar_t* to, std::size_t size, const wchar_t* drive, const wchar_t* dir, const wchar_t* name,
                  const wchar_t* ext) {
    return _wmakepath_s(to, size, drive, dir, name, ext);
}

int brywmakepath6(unsigned short* to, std::size_t size, const unsigned short* drive, const unsigned short* dir,
                  const unsigned short* name, const unsigned short* ext) {
    return _wmakepath_s(wide(to), size, wide(drive), wide(dir), wide(name), wide(ext));
}

int brystrtime(char* to, std::size_t size) { return _strtime_s(to, size); }

int brywstrtime8(wchar_t* to, std::size_t size) { return _wstrtime_s(to, size); }

int brywstrtime6(unsigned short* to, std::size_t size) { return _wstrtime_s(wide(to), size); }

int brystrdate(char* to, std::size_t size) { return _strdate_s(to, size); }

int brywstrdate8(wchar_t* to, std::size_t size) { return _wstrdate_s(to, size); }

int brywstrdate6(unsigned short* to, std::size_t size) { return _wstrdate_s(wide(to), size); }

int brylocaltime(std::tm* result, const std::int64_t* time) { return _localtime64_s(result, time); }

int brydupenv(char** copy, std::size_t* count, const char* name) { return _dupenv_s(copy, count, name); }

int brywdupenv8(wchar_t** copy, std::size_t* count, const wchar_t* name) { return _wdupenv_s(copy, count, name); }

int brywdupenv6(unsigned short** copy, std::size_t* count, const unsigned short* name) {
    return _wdupenv_s(wide(copy), count, wide(name));
}

int brysearchenv(const char* file, const char* variable, char* path, std::size_t size) {
    return _searchenv_s(file, variable, path, size);
}

int brywsearchenv8(const wchar_t* file, const wchar_t* variable, wchar_t* path, std::size_t size) {
    return _wsearchenv_s(file, variable, path, size);
}

int brywsearchenv6(const unsigned short* file, const unsigned short* variable, unsigned short* path, std::size_t size) {
    return _wsearchenv_s(wide(file), wide(variable), wide(path), size);
}

int brystrerror(char* to, std::size_t size, int error) { return strerror_s(to, size, error); }

int brywcserror8(wchar_t* to, std::size_t size, int error) { return _wcserror_s(to, size, error); }

int brywcserror6(unsigned short* to, std::size_t size, int error) { return _wcserror_s(wide(to), size, error); }

wchar_t* bryGetBSTR8(const BryString& text) { return SysAllocString(text.getStringW()); }

unsigned short* bryGetBSTR6(const BryString& text) { return units(bryGetBSTR8(text)); }
