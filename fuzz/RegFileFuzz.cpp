// Takes the bytes for a registry file. What must hold:
// - reading them ends with entries, or with a reason and a line that the file has;
// - what was read can be written, but for names that the format or UTF-8 cannot express, and reads again as the same;
// - what is written has no line above 80 characters but those of names and texts.
#include "RegFile.h"
#include "Utf8.h"

#include <algorithm>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

// A text that had no closing zero may have one when it is read again.
bool isSame(const RegEntry& a, const RegEntry& b) {
    std::vector<BYTE> closed = a.data;
    if (a.type == REG_SZ) closed.insert(closed.end(), 2, 0);
    return a.kind == b.kind && a.name == b.name && a.type == b.type && (a.data == b.data || closed == b.data);
}

void checkWriting(const std::vector<RegEntry>& entries, bool utf8) {
    std::vector<BryString> lines;
    std::vector<RegEntry> again;
    BryString reason;
    if (!makeRegFile(entries, utf8, lines, reason)) return require(utf8 && !reason.isEmpty());
    std::string bytes = utf8 ? "" : "\xFF\xFE";
    for (const BryString& line : lines) {
        std::vector<BYTE> data;
        appendText(line, data);
        bytes += utf8 ? stringToUtf8(line) : std::string(data.begin(), data.end() - 2);
        const bool isBytes = line.find(L"=hex:") == 3;  // of a name of one character
        if (isBytes) require(line.left(81).find(L"\n") >= 0);
    }
    int line = 0;
    require(parseRegFile(bytes, again, line, reason));
    require(std::equal(entries.begin(), entries.end(), again.begin(), again.end(), isSame));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string bytes(data, data + size);
    std::vector<RegEntry> entries;
    BryString reason;
    int line = 0;
    if (parseRegFile(bytes, entries, line, reason)) {
        checkWriting(entries, false);
        checkWriting(entries, true);
    } else {
        require(!reason.isEmpty() && line >= 1 && static_cast<std::size_t>(line) <= size + 1);
    }
    return 0;
}
