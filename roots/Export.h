// What every public header stands on: the export mark and the width of wide characters.
#pragma once

#if defined(_WIN32)
#    if defined(KELROOTS_BUILDING)
#        define KELROOTS_API __declspec(dllexport)
#    else
#        define KELROOTS_API __declspec(dllimport)
#    endif
#else
#    define KELROOTS_API __attribute__((visibility("default")))
#endif

// Wide characters are 16-bit code units on every platform.
static_assert(sizeof(wchar_t) == 2,
              "KelRoots has 16-bit wide characters: link the CMake target KelRoots::KelRoots, "
              "or compile with -fshort-wchar");
