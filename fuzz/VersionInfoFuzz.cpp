// Takes any bytes for a library and asks for its version. What must hold:
// - nothing outside the file is read: a read behind its end fails, and the file lies in memory of just its size;
// - fewer than 10000 reads are made, however the file's offsets and counts refer to each other;
// - what is found lies in the file, is not empty and has at most 64 KB;
// - the block of a file begins with just those bytes, zeros follow up to its size, at least 64 of them;
// - whoever looks through the block for the end of the key and for the 13 words behind it stays inside.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/PortableExecutable.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Byte = std::uint8_t;

void require(bool holds) {
    if (!holds) std::abort();
}

// The file under a path of its own, as the services of the seam open it.
class OpenFile {
public:
    OpenFile(const Byte* bytes, std::size_t size) : m_descriptor(memfd_create("library", MFD_CLOEXEC)) {
        require(write(m_descriptor, bytes, size) == static_cast<ssize_t>(size));
        const std::string path = "/proc/self/fd/" + std::to_string(m_descriptor);
        m_path.assign(path.c_str(), path.c_str() + path.size() + 1);
    }
    ~OpenFile() { close(m_descriptor); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const wchar_t* path() const { return m_path.data(); }

private:
    int m_descriptor;
    std::vector<wchar_t> m_path;
};

bool find(const Byte* bytes, std::size_t size, platform::FileRange& found) {
    int reads = 0;
    const auto read = [&](std::uint64_t offset, void* to, std::size_t count) {
        require(++reads < 10000);
        if (offset > size || count > size - offset) return false;
        std::memcpy(to, bytes + offset, count);
        return true;
    };
    return platform::findVersionResource(read, found);
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
    const bool has = find(exact.data(), size, found);

    const OpenFile file(bytes, size);
    const DWORD blockSize = GetFileVersionInfoSizeW(file.path(), nullptr);
    require(has == (blockSize != 0));
    if (!has) return 0;
    std::vector<Byte> block(blockSize, 0x77);
    require(GetFileVersionInfoW(file.path(), 0, blockSize, block.data()) != FALSE);

    require(found.size > 0 && found.size <= 0x10000 && found.offset <= size && found.size <= size - found.offset);
    require(blockSize >= found.size + 64);
    const auto rest = std::mismatch(block.begin(), block.begin() + found.size, bytes + found.offset).first;
    require(std::count(rest, block.end(), 0) == static_cast<std::ptrdiff_t>(blockSize - found.size));
    require(rest == block.begin() + found.size);
    readVersion(block);
    return 0;
}
