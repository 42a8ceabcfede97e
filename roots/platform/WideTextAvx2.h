// The loops of WideText for processors with AVX2. Call them only where kAvx2 is compiled in and the processor has it.
#pragma once

#include <cstddef>

#if defined(__x86_64__) || defined(__i386__)
#    define KELROOTS_AVX2 1
#endif

namespace wide::avx2 {

#ifdef KELROOTS_AVX2
inline bool usable() noexcept { return __builtin_cpu_supports("avx2"); }

// As the loops of the same names in WideTextVector.h, over 16 units a step.
std::size_t length(const wchar_t* text, std::size_t max) noexcept;
std::size_t mismatch(const wchar_t* a, const wchar_t* b, std::size_t i, std::size_t count, bool& found) noexcept;
std::size_t find(const wchar_t* text, std::size_t length, wchar_t unit) noexcept;
std::size_t findLast(const wchar_t* text, std::size_t length, wchar_t unit) noexcept;
std::size_t count(const wchar_t* text, std::size_t length, wchar_t unit, std::size_t& counted) noexcept;
std::size_t copyReplaced(wchar_t* out, const wchar_t* text, std::size_t count, wchar_t from, wchar_t to) noexcept;
std::size_t copyReversed(wchar_t* out, const wchar_t* text, std::size_t count) noexcept;
wchar_t* wipe(wchar_t* text) noexcept;

// As in WideText.h, 64 bytes or 32 units a step.
std::size_t widen(const unsigned char* from, std::size_t count, wchar_t* to, bool latin1) noexcept;
std::size_t narrow(const wchar_t* from, std::size_t count, unsigned char* to, bool latin1) noexcept;

// Copies the units that are not unit, eight a step, as long as eight can be stored; out moves on. Returns where in text
// it stopped.
std::size_t copyWithout(wchar_t*& out, const wchar_t* outEnd, const wchar_t* text, std::size_t length,
                        wchar_t unit) noexcept;
std::size_t findEach(const wchar_t* text, std::size_t length, std::size_t i, const wchar_t* what,
                     std::size_t whatLength, std::size_t firstAnchor, std::size_t secondAnchor, std::size_t* positions,
                     std::size_t max, std::size_t& stored, bool& tooMuch) noexcept;
#endif

}  // namespace wide::avx2
