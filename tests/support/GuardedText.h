// Memory that ends where no page can be read any more: whoever reads past a text placed there into another page, or
// writes past it, is caught.
#pragma once

#include <cstddef>
#include <cstring>
#include <new>
#include <string>

#ifdef _WIN32
#    include <windows.h>
#else
#    include <sys/mman.h>
#endif

class GuardedText {
public:
    static constexpr std::size_t kBytes = 0x10000;

    GuardedText() {
#ifdef _WIN32
        m_memory = static_cast<char*>(VirtualAlloc(nullptr, 2 * kBytes, MEM_RESERVE, PAGE_NOACCESS));
        if (!m_memory || !VirtualAlloc(m_memory, kBytes, MEM_COMMIT, PAGE_READWRITE)) throw std::bad_alloc();
#else
        void* memory = mmap(nullptr, 2 * kBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(memory, kBytes, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
        m_memory = static_cast<char*>(memory);
#endif
    }

    ~GuardedText() {
#ifdef _WIN32
        VirtualFree(m_memory, 0, MEM_RELEASE);
#else
        munmap(m_memory, 2 * kBytes);
#endif
    }

    GuardedText(const GuardedText&) = delete;
    GuardedText& operator=(const GuardedText&) = delete;

    // The text and its terminator, so placed that spare units of junk follow before the unreadable page.
    wchar_t* place(const std::u16string& text, std::size_t spare) {
        std::memset(m_memory, 0x77, kBytes);
        wchar_t* const at = reinterpret_cast<wchar_t*>(m_memory + kBytes) - text.size() - 1 - spare;
        std::memcpy(at, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
        return at;
    }

private:
    char* m_memory;
};
