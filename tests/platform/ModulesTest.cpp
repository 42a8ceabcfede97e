// This process as the system lists it, and what it tells the user.
#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>
#include <tests/support/Units.h>

#include <cstring>

namespace {

template <class Entry>
std::vector<Entry> entries(DWORD kind, BOOL(WINAPI* first)(HANDLE, Entry*), BOOL(WINAPI* next)(HANDLE, Entry*)) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(kind, GetCurrentProcessId());
    std::vector<Entry> all;
    Entry entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = first(snapshot, &entry); more; more = next(snapshot, &entry)) all.push_back(entry);
    EXPECT_TRUE(!next(snapshot, &entry) && first(snapshot, &entry)) << "the end stays, the start can be had again";
    EXPECT_TRUE(CloseHandle(snapshot));
    return all;
}

TEST(Modules, AreTheProgramAndWhatItHasLoaded) {
    const auto modules = entries(TH32CS_SNAPMODULE, Module32FirstW, Module32NextW);
    ASSERT_GT(modules.size(), 2u);
    const auto isIn = [](const void* at, const MODULEENTRY32W& module) {
        return at >= module.modBaseAddr && at < module.modBaseAddr + module.modBaseSize;
    };
    EXPECT_TRUE(isIn(reinterpret_cast<const void*>(&writeFile), modules[0])) << "the program comes first";
    const std::string maps = onWindows ? "" : '\n' + fileBytes("/proc/self/maps");
    for (const MODULEENTRY32W& module : modules) {
        const std::string path = narrow(module.szExePath);
        EXPECT_EQ(narrow(module.szModule), path.substr(path.find_last_of("\\/") + 1));
        for (const MODULEENTRY32W& other : modules)
            EXPECT_EQ(isIn(other.modBaseAddr, module), &other == &module) << path;
        char start[32];
        std::snprintf(start, sizeof start, "\n%zx-", reinterpret_cast<std::size_t>(module.modBaseAddr));
        EXPECT_TRUE(onWindows || maps.find(start) != std::string::npos) << path;
    }
    std::string name;
    for (const auto& process : entries(TH32CS_SNAPPROCESS, Process32FirstW, Process32NextW))
        if (process.th32ProcessID == GetCurrentProcessId()) name = narrow(process.szExeFile);
    EXPECT_EQ(name, narrow(modules[0].szModule)) << "the process";
}

TEST(Snapshots, RefuseWhatTheyCannotDo) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W process = {};
    MODULEENTRY32W module = {};
    module.dwSize = sizeof module;
    const auto error = [](BOOL done) { return done ? 0 : GetLastError(); };
    for (const auto& [size, answer] : {std::pair<DWORD, DWORD>{0, 122}, {sizeof process - 1, 122}, {9999, 0}})
        EXPECT_EQ((process.dwSize = size, error(Process32FirstW(snapshot, &process))), answer) << size;
    EXPECT_EQ(error(Module32FirstW(snapshot, &module)), DWORD{ERROR_NO_MORE_FILES}) << "an entry of the other kind";
    EXPECT_TRUE(CloseHandle(snapshot));
    for (const HANDLE none : {snapshot, HANDLE{}, reinterpret_cast<HANDLE>(0x7FF4), HANDLE{&module}})
        EXPECT_EQ(error(Process32FirstW(none, &process) || CloseHandle(none)), DWORD{ERROR_INVALID_HANDLE}) << none;
    for (const auto& [flags, id] : {std::pair<DWORD, DWORD>{0, 0}, {0x100, 0}, {TH32CS_SNAPMODULE, 0x7FFFFFF0}})
        EXPECT_EQ(CreateToolhelp32Snapshot(flags, id), INVALID_HANDLE_VALUE) << flags;
}

TEST(WideCharacterAsByte, IsRefusedAboveFF) {
    char to[4];
    // clang-format off
    const struct { char* to; std::size_t size; unsigned unit; int error, count; const char* written; } rows[] = {
        {to, 1, 'a', 0, 1, "a###"}, {to, 4, 0, 0, 1, "\0###"}, {to, 4, 0x80, 0, 1, "\x80###"},
        {to, 4, 0xFF, 0, 1, "\xFF###"}, {to, 4, 0x100, 42, -1, "\0\0\0\0"}, {to, 2, 0x20AC, 42, -1, "\0\0##"},
        {to, 0, 0x20AC, 42, -1, "####"}, {to, 0, 'a', 34, -1, "####"}, {to, SIZE_MAX, 'a', 22, -1, "####"},
        {nullptr, 0, 'a', 34, -1, "####"}, {nullptr, 8, 'a', 0, 0, "####"}};
    // clang-format on
    for (const auto& row : rows) {
        int count = 99;
        std::memset(to, '#', 4);
        const int error = wctomb_s(&count, row.to, row.size, static_cast<wchar_t>(row.unit));
        EXPECT_TRUE(error == row.error && count == row.count && std::memcmp(to, row.written, 4) == 0) << row.unit;
    }
}

TEST(MessageBoxes, ShowsCaptionAndTextWithoutWhatMovesTheCursor) {
    if (onWindows) GTEST_SKIP() << "the box waits for somebody to close it";
    const wchar_t* const text = L"HEA\t200\r\n\x20AC\xD83D\xDE00\x1B[2J\x9B\x7F\xD83D\r!";
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxW(nullptr, text, L"Norrab", MB_ICONINFORMATION), IDOK);
    EXPECT_EQ(MessageBoxW(nullptr, nullptr, nullptr, MB_OK), IDOK);
    EXPECT_EQ(MessageBoxW(nullptr, L"Go on?", L"Norrab", 4), 0) << "there is nobody to say yes or no";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Norrab: HEA\t200\n\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD[2J\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\n!\n"
              "Error: \n");
}

}  // namespace
