// Snapshots of this process and of what the dynamic loader has loaded into it.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>

#include <link.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <map>
#include <new>
#include <vector>

namespace {

struct Snapshot {
    std::vector<PROCESSENTRY32W> processes;
    std::vector<MODULEENTRY32W> modules;
    std::size_t next = 0;
};

// By numbers that are given only once, so that a handle that is closed or was never one leads nowhere.
std::map<std::uintptr_t, Snapshot>& snapshots() {
    static auto& open = *new std::map<std::uintptr_t, Snapshot>;
    return open;
}

BOOL fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

const char* fileName(const char* path) {
    const char* const slash = std::strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

// The path of the running program, empty where the system does not tell it.
struct ProgramPath {
    char text[PATH_MAX];

    ProgramPath() {
        const ssize_t length = readlink("/proc/self/exe", text, sizeof text - 1);
        text[std::max<ssize_t>(length, 0)] = '\0';
    }
};

PROCESSENTRY32W thisProcess() {
    PROCESSENTRY32W process = {};
    process.dwSize = sizeof process;
    process.th32ProcessID = GetCurrentProcessId();
    process.th32ParentProcessID = static_cast<DWORD>(getppid());
    platform::wideName(fileName(ProgramPath().text), process.szExeFile, MAX_PATH);
    return process;
}

// The whole pages from the first loaded segment to the end of the last one.
void setExtent(const dl_phdr_info& loaded, MODULEENTRY32W& module) {
    const auto page = static_cast<ElfW(Addr)>(sysconf(_SC_PAGESIZE));
    ElfW(Addr) start = ~ElfW(Addr){0}, end = 0;
    for (int i = 0; i < loaded.dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = loaded.dlpi_phdr[i];
        if (segment.p_type != PT_LOAD) continue;
        start = std::min(start, segment.p_vaddr);
        end = std::max(end, segment.p_vaddr + segment.p_memsz);
    }
    if (start > end) return;
    start -= start % page;
    module.modBaseAddr = reinterpret_cast<BYTE*>(loaded.dlpi_addr + start);
    module.modBaseSize = static_cast<DWORD>((end - start + page - 1) / page * page);
    module.hModule = module.modBaseAddr;
}

int addModule(dl_phdr_info* loaded, std::size_t, void* list) {
    auto& modules = *static_cast<std::vector<MODULEENTRY32W>*>(list);
    MODULEENTRY32W module = {};
    setExtent(*loaded, module);
    // What the kernel lends every process (linux-vdso.so.1) has no file.
    if (reinterpret_cast<std::uintptr_t>(module.modBaseAddr) == getauxval(AT_SYSINFO_EHDR)) return 0;

    module.dwSize = sizeof module;
    module.th32ModuleID = 1;
    module.th32ProcessID = GetCurrentProcessId();
    module.GlblcntUsage = module.ProccntUsage = 0xFFFF;
    const ProgramPath program;
    const char* const path = *loaded->dlpi_name != '\0' ? loaded->dlpi_name : program.text;
    platform::wideName(fileName(path), module.szModule, MAX_MODULE_NAME32 + 1);
    platform::wideName(path, module.szExePath, MAX_PATH);
    try {
        modules.push_back(module);
        return 0;
    } catch (const std::bad_alloc&) {
        return 1;  // ends the walk
    }
}

Snapshot take(DWORD flags) {
    Snapshot snapshot;
    if (flags == TH32CS_SNAPPROCESS)
        snapshot.processes.push_back(thisProcess());
    else if (dl_iterate_phdr(addModule, &snapshot.modules) != 0)
        throw std::bad_alloc();
    return snapshot;
}

// The first entry of a kind, or the one after that which was given last.
template <class Entry>
BOOL give(HANDLE handle, std::vector<Entry> Snapshot::*entries, bool first, Entry* entry) {
    const auto at = snapshots().find(reinterpret_cast<std::uintptr_t>(handle));
    if (at == snapshots().end()) return fail(ERROR_INVALID_HANDLE);
    if (entry->dwSize < sizeof *entry) return fail(ERROR_INSUFFICIENT_BUFFER);
    Snapshot& snapshot = at->second;
    if (first) snapshot.next = 0;
    if (snapshot.next >= (snapshot.*entries).size()) return fail(ERROR_NO_MORE_FILES);
    *entry = (snapshot.*entries)[snapshot.next++];
    return TRUE;
}

}  // namespace

DWORD GetCurrentProcessId() { return static_cast<DWORD>(getpid()); }

HANDLE CreateToolhelp32Snapshot(DWORD flags, DWORD process) {
    static std::uintptr_t lastHandle = 0;
    DWORD error = ERROR_INVALID_PARAMETER;
    const bool known = flags == TH32CS_SNAPPROCESS || flags == TH32CS_SNAPMODULE;
    if (known && (flags == TH32CS_SNAPPROCESS || process == 0 || process == GetCurrentProcessId())) {
        try {
            snapshots().emplace(lastHandle + 4, take(flags));
            return reinterpret_cast<HANDLE>(lastHandle += 4);
        } catch (const std::bad_alloc&) {
            error = ERROR_NOT_ENOUGH_MEMORY;
        }
    }
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

BOOL Process32FirstW(HANDLE snapshot, PROCESSENTRY32W* entry) {
    return give(snapshot, &Snapshot::processes, true, entry);
}

BOOL Process32NextW(HANDLE snapshot, PROCESSENTRY32W* entry) {
    return give(snapshot, &Snapshot::processes, false, entry);
}

BOOL Module32FirstW(HANDLE snapshot, MODULEENTRY32W* entry) { return give(snapshot, &Snapshot::modules, true, entry); }

BOOL Module32NextW(HANDLE snapshot, MODULEENTRY32W* entry) { return give(snapshot, &Snapshot::modules, false, entry); }

BOOL CloseHandle(HANDLE handle) {
    const bool closed = snapshots().erase(reinterpret_cast<std::uintptr_t>(handle)) != 0;
    return closed ? TRUE : fail(ERROR_INVALID_HANDLE);
}
