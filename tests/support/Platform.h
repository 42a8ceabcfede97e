// Where a test runs, for the few expectations that differ by it.
#pragma once

#ifdef _WIN32
#    include <windows.h>
constexpr bool onWindows = true;

// Wine answers a handful of calls in its own way; the tests concerned name them and expect both.
inline bool underWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

// A file that nobody else may open while it lives, as the system lets a program ask for.
class HeldFile {
public:
    explicit HeldFile(const wchar_t* name)
        : m_handle(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile() { CloseHandle(m_handle); }

private:
    HANDLE m_handle;
};
#else
constexpr bool onWindows = false;
constexpr bool underWine() { return false; }
struct HeldFile {
    explicit HeldFile(const wchar_t*) {}  // everybody may always open
};
#endif
