#include <roots/platform/Win32.h>

#include <cstring>

void* SecureZeroMemory(void* memory, std::size_t size) {
    if (size == 0) return memory;
    std::memset(memory, 0, size);
    // For all that the compiler knows, this reads the zeros.
    __asm__ __volatile__("" : : "r"(memory) : "memory");
    return memory;
}
