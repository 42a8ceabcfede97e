#include <roots/files/BryLogfile.h>

#include <roots/files/BryFileAccess.h>
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/text/BryRuntime.h>

#include <cstring>
#include <vector>

namespace {

constexpr int kLongestName = 255;
constexpr int kMostAttempts = 1000;

// Left to itself, the Windows runtime drops a character that its locale lacks and all that follows it.
BryString withoutForeignCharacters(const BryString& text) {
    const wchar_t* const units = text.getStringW();
    std::vector<wchar_t> result(units, units + wide::length(units) + 1);
    for (wchar_t& unit : result) {
        char bytes[16];
        int count;
        if (unit > 0x7F && wctomb_s(&count, bytes, sizeof bytes, unit) != 0) unit = L'?';
    }
    return BryString(result.data());
}

// Windows gives the file to one stream at a time, so another process may have to finish first.
std::FILE* open(const BryString& file, const wchar_t* mode) {
    std::FILE* stream = nullptr;
    for (int attempt = 0; bryfopen(&stream, file, mode) != 0; ++attempt)
        if (attempt == kMostAttempts || !crt::waitsForOthers()) return nullptr;
    return stream;
}

std::FILE* openForAppending(const BryString& file) {
    std::FILE* const stream = open(file, L"a+");
    if (stream != nullptr) crt::lockWhileOpen(stream);
    return stream;
}

// Non-zero as the formatted write has it. message is withoutForeignCharacters: nothing throws while the file is open.
int writeEntry(std::FILE* stream, const wchar_t* format, const BryString& message) {
    wchar_t time[80];
    brywstrtime8(time, sizeof time / sizeof *time);
    return bryfprintf(stream, format, time, message.getStringW());
}

BryString targetOf(const BryString& fileName) { return fileName.isEmpty() ? BryString(L"c:\\Norrab.log") : fileName; }

void truncate(const BryString& file) {
    std::FILE* const stream = open(file, L"w");
    if (stream != nullptr) bryfclose(stream);
}

void append(const BryString& file, const BryString& text) {
    const BryString written = withoutForeignCharacters(text);
    std::FILE* const stream = openForAppending(file);
    if (stream == nullptr) return;
    bryfprintf(stream, L"%s", written.getStringW());
    bryfclose(stream);
}

}  // namespace

// ---- one log -------------------------------------------------------------------------------------

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts call it with a value of their own
BryLogfile::BryLogfile(BryString name) : m_name(name.left(kLongestName)), m_stream(nullptr) {}
BryLogfile::BryLogfile(const BryLogfile& other) = default;
BryLogfile& BryLogfile::operator=(const BryLogfile& other) = default;
BryLogfile::~BryLogfile() { assertClose(); }

int BryLogfile::reset() {
    if (!doLogging) return 0;
    assertClose();
    m_stream = open(m_name, L"w");
    return assertClose();
}

int BryLogfile::appendWithSave(const BryString& message) {
    if (!doLogging) return 0;
    const BryString entry = withoutForeignCharacters(message);
    m_stream = openForAppending(m_name);
    if (m_stream == nullptr) return 0;
    const int written = writeEntry(m_stream, L"[%s] %s", entry);
    assertClose();
    return written != 0;
}

int BryLogfile::assertClose() {
    if (!doLogging || m_stream == nullptr) return 0;
    bryfclose(m_stream);
    m_stream = nullptr;
    return 1;
}

// ---- the log of the process ----------------------------------------------------------------------

void BryLogfile::logToFile(const BryString& fileName, const BryString& message) {
    const BryString target = targetOf(fileName), entry = withoutForeignCharacters(message);
    if (m_isFirstLogToFile) {
        m_isFirstLogToFile = 0;
        truncate(target);
    }
    std::FILE* const stream = openForAppending(target);
    if (stream == nullptr) return;
    writeEntry(stream, L"\n[%s] %s", entry);
    bryfclose(stream);
}

// ---- modules -------------------------------------------------------------------------------------

namespace {

class Snapshot {
public:
    Snapshot(DWORD kind, DWORD process) : m_handle(CreateToolhelp32Snapshot(kind, process)) {}
    ~Snapshot() {
        if (isTaken()) CloseHandle(m_handle);
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    bool isTaken() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return m_handle; }

private:
    HANDLE m_handle;
};

bool findThisProcess(PROCESSENTRY32W& process) {
    const Snapshot processes(TH32CS_SNAPPROCESS, 0);
    if (!processes.isTaken()) return false;
    process.dwSize = sizeof process;
    for (BOOL more = Process32FirstW(processes.handle(), &process); more;
         more = Process32NextW(processes.handle(), &process))
        if (process.th32ProcessID == GetCurrentProcessId()) return true;
    return false;
}

BryString moduleLine(const MODULEENTRY32W& module) {
    BryString path(module.szExePath), version, line;
    BryLogfile::GetFileVersion(path, version);
    const unsigned long long base = reinterpret_cast<std::uintptr_t>(module.modBaseAddr);
    return line.format(L"0x%08I64x  0x%-8x%-16s%s\n", base, module.modBaseSize, version.getStringW(),
                       path.getStringW());
}

}  // namespace

void BryLogfile::listModules(const BryString& fileName) {
    PROCESSENTRY32W process = {};
    if (!findThisProcess(process)) return;
    const BryString target = targetOf(fileName);
    truncate(target);
    BryString processLine, header;
    processLine.format(L"%s PID : %d\n\n\n", process.szExeFile, static_cast<int>(process.th32ProcessID));
    header.format(L"%-12s%-10s%-16s%s\n", L"Base", L"Size", L"Version", L"Path");
    append(target, processLine + header);

    const Snapshot modules(TH32CS_SNAPMODULE, process.th32ProcessID);
    if (!modules.isTaken()) return;
    MODULEENTRY32W module = {};
    module.dwSize = sizeof module;
    for (BOOL more = Module32FirstW(modules.handle(), &module); more; more = Module32NextW(modules.handle(), &module))
        append(target, moduleLine(module));
}

// ---- file versions -------------------------------------------------------------------------------

namespace {

template <class T>
T valueAt(const std::vector<BYTE>& block, std::size_t offset) {
    T value = 0;
    if (offset <= block.size() && block.size() - offset >= sizeof value)
        std::memcpy(&value, block.data() + offset, sizeof value);
    return value;
}

// The block begins with its length, the length of the fixed information and a type, 16 bits each; a key follows, wide
// text with its terminator, and at the next multiple of four bytes the fixed information.
std::size_t offsetOfFixedInformation(const std::vector<BYTE>& block) {
    std::size_t offset = 3 * sizeof(WORD);
    while (valueAt<WORD>(block, offset) != 0) offset += sizeof(WORD);
    return (offset + sizeof(WORD) + 3) / 4 * 4;
}

}  // namespace

int BryLogfile::GetFileVersion(BryString& fileName, BryString& version) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(fileName.getStringW(), &ignored);
    if (size == 0) return 0;
    std::vector<BYTE> block(size);
    if (!GetFileVersionInfoW(fileName.getStringW(), 0, size, block.data())) return 0;
    if (valueAt<WORD>(block, sizeof(WORD)) == 0) return 0;

    const std::size_t fixed = offsetOfFixedInformation(block);
    if (fixed > block.size() || block.size() - fixed < 4 * sizeof(DWORD)) return 0;
    const DWORD most = valueAt<DWORD>(block, fixed + 2 * sizeof(DWORD));
    const DWORD least = valueAt<DWORD>(block, fixed + 3 * sizeof(DWORD));
    version.format(L"%d.%02d.%04d.%04d", most >> 16, most & 0xFFFF, least >> 16, least & 0xFFFF);
    return 1;
}
