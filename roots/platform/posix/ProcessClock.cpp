#include <roots/platform/Win32.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

// Milliseconds since the system started: counted while it sleeps too, and never set.
std::int64_t sinceBoot() {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

// When this process started on the same clock, as the 22nd field of its line tells; -1 where it does not. The second
// field is the program's name in brackets, which may hold anything.
std::int64_t toldStart() {
    char line[1024];
    const int file = open("/proc/self/stat", O_RDONLY | O_CLOEXEC);
    if (file < 0) return -1;
    const ssize_t length = read(file, line, sizeof line - 1);
    close(file);
    if (length <= 0) return -1;
    line[length] = '\0';
    const char* at = std::strrchr(line, ')');
    for (int field = 2; at != nullptr && field < 22; ++field) at = std::strchr(at + 1, ' ');
    const long ticks = sysconf(_SC_CLK_TCK);
    return at != nullptr && ticks > 0 ? std::strtoll(at, nullptr, 10) * 1000 / ticks : -1;
}

// Where the system does not tell it, or what it tells cannot be, the process starts when the library is loaded.
std::int64_t startOfProcess() {
    const std::int64_t now = sinceBoot(), told = toldStart();
    return told > 0 && told <= now ? told : now;
}

const std::int64_t started = startOfProcess();

}  // namespace

namespace crt {

std::clock_t clock() {
    const std::int64_t elapsed = sinceBoot() - started;
    return elapsed <= INT32_MAX ? static_cast<std::clock_t>(elapsed) : -1;
}

}  // namespace crt
