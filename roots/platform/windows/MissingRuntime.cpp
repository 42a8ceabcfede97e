// What the C runtime of Windows has and the import library of MinGW lacks.
#ifdef __MINGW32__

// Here they are no imports.
#    define _CRTIMP
#    include <roots/platform/Win32.h>

namespace {

std::size_t lengthOf(const char* text) { return strlen(text); }

std::size_t lengthOf(const wchar_t* text) { return wcslen(text); }

template <class Unit>
errno_t duplicate(const Unit* value, Unit** copy, std::size_t* count) {
    if (value == nullptr) return 0;
    const std::size_t size = lengthOf(value) + 1;
    *copy = static_cast<Unit*>(malloc(size * sizeof(Unit)));
    if (*copy == nullptr) return ENOMEM;
    memcpy(*copy, value, size * sizeof(Unit));
    if (count != nullptr) *count = size;
    return 0;
}

template <class Unit>
bool begin(Unit** copy, std::size_t* count, const Unit* name) {
    if (copy != nullptr) *copy = nullptr;
    if (count != nullptr) *count = 0;
    return copy != nullptr && name != nullptr;
}

}  // namespace

extern "C" {

errno_t __cdecl _dupenv_s(char** copy, std::size_t* count, const char* name) {
    return begin(copy, count, name) ? duplicate(getenv(name), copy, count) : EINVAL;
}

errno_t __cdecl _wdupenv_s(wchar_t** copy, std::size_t* count, const wchar_t* name) {
    return begin(copy, count, name) ? duplicate(_wgetenv(name), copy, count) : EINVAL;
}

// What the callers go through, to whom the headers have declared them as imports.
decltype(&_dupenv_s) __MINGW_IMP_SYMBOL(_dupenv_s) = &_dupenv_s;
decltype(&_wdupenv_s) __MINGW_IMP_SYMBOL(_wdupenv_s) = &_wdupenv_s;

#    ifdef __i386__

// long is as wide as int.
errno_t __cdecl _ltoa_s(long value, char* to, std::size_t size, int radix) { return _itoa_s(value, to, size, radix); }
errno_t __cdecl _ltow_s(long value, wchar_t* to, std::size_t size, int radix) {
    return _itow_s(value, to, size, radix);
}

errno_t(__cdecl* __MINGW_IMP_SYMBOL(_ltoa_s))(long, char*, std::size_t, int) = &_ltoa_s;
errno_t(__cdecl* __MINGW_IMP_SYMBOL(_ltow_s))(long, wchar_t*, std::size_t, int) = &_ltow_s;

#    endif

}  // extern "C"

#endif
