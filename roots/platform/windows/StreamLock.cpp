#include <roots/platform/Win32.h>

namespace crt {

// The byte that is locked lies where no file reaches: locked bytes cannot be read or written by others.
bool lockWhileOpen(std::FILE* stream) {
    if (stream == nullptr) return false;
    const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    OVERLAPPED lastByte = {};
    lastByte.Offset = 0xFFFFFFFE;
    lastByte.OffsetHigh = 0x7FFFFFFF;
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &lastByte) != FALSE;
}

bool waitsForOthers() {
    if (_doserrno != ERROR_SHARING_VIOLATION) return false;
    Sleep(1);
    return true;
}

}  // namespace crt
