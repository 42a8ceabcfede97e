// Log lines by the C library: the file opened, locked and closed for each, as by those who write without KelRoots.

#include <benchmarks/support/Measure.h>

#include <sys/file.h>

#include <cstdio>
#include <ctime>

namespace {

int append(const char* name, const std::string& line) {
    std::FILE* const file = std::fopen(name, "a+");
    if (file == nullptr) return -1;
    flock(fileno(file), LOCK_EX);
    const std::time_t now = std::time(nullptr);
    std::tm local;
    localtime_r(&now, &local);
    char time[16];
    std::strftime(time, sizeof time, "%H:%M:%S", &local);
    const int written = std::fprintf(file, "[%s] %s", time, line.c_str());
    return std::fclose(file) == 0 ? written : -1;
}

const int registered = [] {
    measure("log line", "stdio", {100}, [](std::size_t size) {
        std::remove("/tmp/kelroots-benchmark-stdio.log");
        return [line = std::string(size, 'x')] { return append("/tmp/kelroots-benchmark-stdio.log", line); };
    });
    return 0;
}();

}  // namespace
