// Where a test runs, for the few expectations that differ by it.
#pragma once

#ifdef _WIN32
#    include <windows.h>
constexpr bool onWindows = true;

// Wine answers a handful of calls in its own way; the tests concerned name them and expect both.
inline bool underWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }
#else
constexpr bool onWindows = false;
constexpr bool underWine() { return false; }
#endif
