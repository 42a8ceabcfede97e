// The version resource of an executable or library in the format of Windows (PE), 32- or 64-bit: where in the file it
// lies. The file is read through a function, piece by piece, so that nothing of it need be in memory and anything can
// stand in for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace platform {

// Reads size bytes at an offset into a buffer; false where the file does not have all of them.
using ReadAt = std::function<bool(std::uint64_t offset, void* to, std::size_t size)>;

struct FileRange {
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
};

// Finds the version resource: type 16, name 1, of the languages the neutral one, else English, else the first. False
// where the file is no such file, has none, or says of any part of the way to it that it lies where it cannot lie.
// Whatever the file says: no loop follows its offsets, fewer than 10000 short pieces of it are read, and nothing is
// allocated. The range is in the file, not empty and no longer than 64 KB, since a version resource counts its bytes in
// 16 bits.
bool findVersionResource(const ReadAt& read, FileRange& found);

}  // namespace platform
