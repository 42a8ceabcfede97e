// Takes any bytes for a library and asks for its version. What must hold:
// - nothing outside the file is read: a read behind its end fails, and the file lies in memory of just its size;
// - fewer than 10000 reads are made, however the file's offsets and counts refer to each other;
// - what is found lies in the file, is not empty and has at most 64 KB;
// - the block of a file begins with just those bytes, zeros follow up to its size, at least 64 of them;
// - whoever looks through the block for the end of the key and for the 13 words behind it stays inside.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/PortableExecutable.h>
#include <sys/mman.h>
#include <tests/support/Units.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

using Byte = std::uint8_t;

void require(bool holds) {
    if (!holds) std::abort();
}

// The block that the services of the seam give for a file under this path.
std::vector<Byte> blockOf(const std::string& path) {
    const auto name = units<wchar_t>(path);
    std::vector<Byte> block(GetFileVersionInfoSizeW(name.data(), nullptr), 0x77);
    const auto size = static_cast<DWORD>(block.size());
    require(size == 0 || GetFileVersionInfoW(name.data(), 0, size, block.data()) != FALSE);
    return block;
}

// Where a reader of the block finds the file version; the vector ends where the block does.
void readVersion(const std::vector<Byte>& block) {
    std::size_t at = 6;
    while (block.at(at) != 0 || block.at(at + 1) != 0) at += 2;
    at = (at + 2 + 3) / 4 * 4;
    require(at + 13 * 4 <= block.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* bytes, std::size_t size) {
    const std::vector<Byte> exact(bytes, bytes + size);
    platform::FileRange found;
    const auto read = [&exact, reads = 0](std::uint64_t offset, void* to, std::size_t count) mutable {
        require(++reads < 10000);
        if (offset > exact.size() || count > exact.size() - offset) return false;
        std::memcpy(to, exact.data() + offset, count);
        return true;
    };
    const bool has = platform::findVersionResource(read, found);
    const int descriptor = memfd_create("library", MFD_CLOEXEC);
    require(write(descriptor, bytes, size) == static_cast<ssize_t>(size));
    const std::vector<Byte> block = blockOf("/proc/self/fd/" + std::to_string(descriptor));
    close(descriptor);
    require(has != block.empty());
    if (!has) return 0;

    require(found.size > 0 && found.size <= 0x10000 && found.offset <= size && found.size <= size - found.offset);
    require(block.size() >= found.size + 64 && std::memcmp(block.data(), bytes + found.offset, found.size) == 0);
    const auto rest = block.begin() + found.size;
    require(std::count(rest, block.end(), 0) == block.end() - rest);
    readVersion(block);
    return 0;
}
