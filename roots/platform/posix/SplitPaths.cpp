#include <roots/platform/Win32.h>

#include "BoundedUnits.h"
#include "CharacterTypes.h"

using namespace platform;

namespace {

template <class Unit>
bool isSlash(Unit unit) {
    return unit == Unit('\\') || unit == Unit('/');
}

// Units of the character at text: a byte that looks like a slash or a point may be the second of a character.
std::size_t unitsAt(const char* text) { return isLeadByte(text[0]) && text[1] != '\0' ? 2 : 1; }

std::size_t unitsAt(const wchar_t*) { return 1; }

// A buffer for one of the parts of a path, and the part that goes there.
template <class Unit>
struct Part {
    Unit* to;
    std::size_t size;
    const Unit* text = nullptr;
    std::size_t length = 0;

    bool valid() const { return (to == nullptr) == (size == 0); }
    bool fits() const { return to == nullptr || length < size; }
    void hold(const Unit* first, const Unit* last) {
        text = first;
        length = static_cast<std::size_t>(last - first);
    }
};

template <class Unit>
struct Parts {
    Part<Unit> drive, dir, name, ext;

    // Any one character before a colon is a drive. The directory reaches through the last slash, the extension from the
    // last point behind that.
    void split(const Unit* path) {
        const Unit* const rest = path[0] != Unit{} && path[1] == Unit(':') ? path + 2 : path;
        const Unit* file = rest;
        const Unit* point = nullptr;
        const Unit* end = rest;
        for (; *end != Unit{}; end += unitsAt(end)) {
            if (isSlash(*end)) {
                file = end + 1;
                point = nullptr;
            } else if (*end == Unit('.')) {
                point = end;
            }
        }
        if (point == nullptr) point = end;
        drive.hold(path, rest);
        dir.hold(rest, file);
        name.hold(file, point);
        ext.hold(point, end);
    }

    template <class Visit>
    bool all(Visit visit) const {
        return visit(drive) && visit(dir) && visit(name) && visit(ext);
    }

    errno_t empty(int error) const {
        all([](const Part<Unit>& part) {
            if (part.to != nullptr && part.size != 0) *part.to = Unit{};
            return true;
        });
        return fail(error);
    }
};

template <class Unit>
errno_t splitPath(const Unit* path, Parts<Unit> parts) {
    if (path == nullptr || !parts.all([](const Part<Unit>& part) { return part.valid(); }))
        return parts.empty(kBadArgument);
    parts.split(path);
    if (!parts.all([](const Part<Unit>& part) { return part.fits(); })) return parts.empty(kTooSmall);
    parts.all([](const Part<Unit>& part) {
        if (part.to != nullptr) write(part.to, part.text, part.length);
        return true;
    });
    return 0;
}

template <class Unit>
bool endsInSlash(const Unit* text, std::size_t length) {
    std::size_t last = 0;
    for (std::size_t next = 0; next < length; next += unitsAt(text + next)) last = next;
    return isSlash(text[last]);
}

template <class Unit>
errno_t makePath(Unit* to, std::size_t size, const Unit* drive, const Unit* dir, const Unit* name, const Unit* ext) {
    if (to == nullptr || size == 0) return fail(kBadArgument);
    const auto lengthOrNone = [](const Unit* text) { return text != nullptr ? lengthOf(text) : 0; };
    const bool hasDrive = lengthOrNone(drive) != 0;
    const std::size_t dirLength = lengthOrNone(dir), nameLength = lengthOrNone(name), extLength = lengthOrNone(ext);
    const bool addSlash = dirLength != 0 && !endsInSlash(dir, dirLength);
    const bool addPoint = extLength != 0 && ext[0] != Unit('.');
    const std::size_t length = (hasDrive ? 2 : 0) + dirLength + addSlash + nameLength + addPoint + extLength;
    if (length >= size) return fail(to, kTooSmall);

    const auto add = [&to](const Unit* text, std::size_t count) {
        std::memcpy(to, text, count * sizeof(Unit));
        to += count;
    };
    if (hasDrive) {
        *to++ = *drive;
        *to++ = Unit(':');
    }
    if (dirLength != 0) add(dir, dirLength);
    if (addSlash) *to++ = Unit('\\');
    if (nameLength != 0) add(name, nameLength);
    if (addPoint) *to++ = Unit('.');
    if (extLength != 0) add(ext, extLength);
    *to = Unit{};
    return 0;
}

}  // namespace

errno_t _splitpath_s(const char* path, char* drive, std::size_t driveSize, char* dir, std::size_t dirSize, char* name,
                     std::size_t nameSize, char* ext, std::size_t extSize) {
    return splitPath<char>(path, {{drive, driveSize}, {dir, dirSize}, {name, nameSize}, {ext, extSize}});
}

errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* dir, std::size_t dirSize,
                      wchar_t* name, std::size_t nameSize, wchar_t* ext, std::size_t extSize) {
    return splitPath<wchar_t>(path, {{drive, driveSize}, {dir, dirSize}, {name, nameSize}, {ext, extSize}});
}

errno_t _makepath_s(char* to, std::size_t size, const char* drive, const char* dir, const char* name, const char* ext) {
    return makePath(to, size, drive, dir, name, ext);
}

errno_t _wmakepath_s(wchar_t* to, std::size_t size, const wchar_t* drive, const wchar_t* dir, const wchar_t* name,
                     const wchar_t* ext) {
    return makePath(to, size, drive, dir, name, ext);
}
