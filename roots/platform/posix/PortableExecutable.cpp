#include <roots/platform/posix/PortableExecutable.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace platform {
namespace {

using Byte = unsigned char;

constexpr std::uint32_t kVersionType = 16, kVersionName = 1;
constexpr std::uint32_t kNeutral = 0, kEnglishUS = 0x409, kEnglish = 9;
constexpr std::uint32_t kLongestVersion = 0x10000;
constexpr std::uint32_t kIsDirectory = 0x80000000;

std::uint32_t number16(const Byte* at) { return at[0] | at[1] * 0x100u; }

std::uint32_t number32(const Byte* at) { return number16(at) | number16(at + 2) << 16; }

// The smaller the better; kUnfit is no choice at all.
using Rank = unsigned (*)(std::uint32_t id);

constexpr unsigned kUnfit = ~0u;

unsigned rankOfType(std::uint32_t id) { return id == kVersionType ? 0 : kUnfit; }

unsigned rankOfName(std::uint32_t id) { return id == kVersionName ? 0 : kUnfit; }

unsigned rankOfLanguage(std::uint32_t id) { return id == kNeutral ? 0 : id == kEnglishUS ? 1 : id == kEnglish ? 2 : 3; }

class Image {
public:
    explicit Image(const ReadAt& read) : m_read(read) {}

    bool findVersion(FileRange& found) {
        std::uint32_t type = 0, name = 0, data = 0;
        return readHeaders() && locate(m_resources, m_tree) && choose(0, rankOfType, type) && (type & kIsDirectory) &&
               choose(type & ~kIsDirectory, rankOfName, name) && (name & kIsDirectory) &&
               choose(name & ~kIsDirectory, rankOfLanguage, data) && !(data & kIsDirectory) && readData(data, found);
    }

private:
    // Sections and the address of the resources.
    bool readHeaders() {
        Byte dos[64], pe[26];
        if (!m_read(0, dos, sizeof dos) || std::memcmp(dos, "MZ", 2) != 0) return false;
        const std::uint64_t start = number32(dos + 60), optional = start + 24;
        if (!m_read(start, pe, sizeof pe) || std::memcmp(pe, "PE\0", 4) != 0) return false;
        m_sectionCount = number16(pe + 6);
        const std::uint32_t optionalSize = number16(pe + 20), kind = number16(pe + 24);
        m_sections = optional + optionalSize;
        if (kind != 0x10B && kind != 0x20B) return false;

        // The number of directories and the first three of them; the third is the resources'.
        const std::uint32_t directories = kind == 0x10B ? 92 : 108;
        Byte list[28];
        if (optionalSize < directories + sizeof list || !m_read(optional + directories, list, sizeof list))
            return false;
        m_resources = number32(list + 20);
        return number32(list) > 2 && number32(list + 24) >= 16;
    }

    // Where an address of the loaded file lies in the file, and how many bytes its section has there. The first section
    // with that address counts, but all of them have to be there.
    bool locate(std::uint32_t address, FileRange& place) const {
        bool found = false;
        for (std::uint32_t i = 0; i < m_sectionCount;) {
            Byte sections[64][40];
            const std::uint32_t count = std::min<std::uint32_t>(m_sectionCount - i, std::size(sections));
            if (!m_read(m_sections + std::uint64_t{i} * 40, sections, count * sizeof sections[0])) return false;
            for (std::uint32_t k = 0; k < count && !found; ++k) found = holds(sections[k], address, place);
            i += count;
        }
        return found;
    }

    static bool holds(const Byte* section, std::uint32_t address, FileRange& place) {
        const std::uint32_t start = number32(section + 12), size = number32(section + 16);
        if (address < start || address - start >= size) return false;
        place.offset = std::uint64_t{number32(section + 20)} + (address - start);
        place.size = size - (address - start);
        return true;
    }

    // What the entry that ranks best in a directory of the resources leads to: the first of several that rank the same.
    bool choose(std::uint32_t directory, Rank rank, std::uint32_t& target) const {
        Byte header[16];
        if (!readTree(directory, header, sizeof header)) return false;
        const std::uint32_t count = number16(header + 12) + number16(header + 14);  // with names, with numbers
        if (count * 8 > m_tree.size - directory - 16) return false;
        unsigned best = kUnfit;
        for (std::uint32_t i = 0; i < count && best != 0;) {
            Byte entries[64][8];
            const std::uint32_t some = std::min<std::uint32_t>(count - i, std::size(entries));
            if (!readTree(directory + 16 + i * 8, entries, some * sizeof entries[0])) return false;
            for (std::uint32_t k = 0; k < some; ++k) {
                const unsigned its = rank(number32(entries[k]));
                if (its >= best) continue;
                best = its;
                target = number32(entries[k] + 4);
            }
            i += some;
        }
        return best != kUnfit;
    }

    bool readData(std::uint32_t entry, FileRange& found) const {
        Byte data[16];
        if (!readTree(entry, data, sizeof data) || !locate(number32(data), found)) return false;
        const std::uint32_t size = std::min(number32(data + 4), kLongestVersion);
        Byte last;
        if (size == 0 || size > found.size || !m_read(found.offset + size - 1, &last, 1)) return false;
        found.size = size;
        return true;
    }

    bool readTree(std::uint32_t offset, void* to, std::uint32_t size) const {
        return offset <= m_tree.size && size <= m_tree.size - offset && m_read(m_tree.offset + offset, to, size);
    }

    const ReadAt& m_read;
    std::uint64_t m_sections = 0;
    std::uint32_t m_sectionCount = 0;
    std::uint32_t m_resources = 0;
    FileRange m_tree;
};

}  // namespace

bool findVersionResource(const ReadAt& read, FileRange& found) { return Image(read).findVersion(found); }

}  // namespace platform
