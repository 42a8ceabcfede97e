#include <roots/platform/Win32.h>

#include <sys/file.h>

#include <cerrno>

namespace crt {

bool lockWhileOpen(std::FILE* stream) {
    if (stream == nullptr) return false;
    int result;
    do result = flock(fileno(stream), LOCK_EX);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

bool waitsForOthers() { return false; }

}  // namespace crt
