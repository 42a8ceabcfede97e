// Reads streams as Windows' runtime does.
//
// 8-bit lines of a stream with an encoding come through the ANSI code page, so that a line means the same whichever
// routine reads it; block reads give the wide characters themselves, as on Windows.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/StreamTable.h>
#include <roots/platform/posix/StreamText.h>
#include <roots/platform/posix/Utf.h>

#include <cstdint>

namespace {

using namespace platform;
using streams::Direction;
using streams::Encoding;
using streams::Stream;
using streams::StreamFor;

constexpr int kEnd = -1;
constexpr int kEndMark = 0x1A;
constexpr wchar_t kBroken = 0xFFFD;
constexpr int kBadArgument = 22;

int endHere(Stream& stream) {
    stream.ended = true;
    return kEnd;
}

void putBack(int byte, std::FILE* file) {
    if (byte != EOF) ungetc(byte, file);
}

// The next byte as the program sees it, CR LF being LF.
int nextByte(Stream& stream) {
    if (stream.ended) return kEnd;
    const int byte = getc_unlocked(stream.file);
    if (!stream.text) return byte;
    if (byte == kEndMark) return endHere(stream);
    if (byte != '\r') return byte;
    const int next = getc_unlocked(stream.file);
    if (next == '\n') return next;
    putBack(next, stream.file);
    return byte;
}

// Two bytes; a single one before the end is none.
int nextPlainUnit(std::FILE* file) {
    const int low = getc_unlocked(file);
    const int high = getc_unlocked(file);
    return high == EOF ? kEnd : high << 8 | low;
}

void putBackPlainUnit(int unit, std::FILE* file) {
    if (unit == kEnd) return;
    putBack(unit >> 8 & 0xFF, file);
    putBack(unit & 0xFF, file);
}

int nextUtf16(Stream& stream) {
    if (stream.ended) return kEnd;
    const int unit = nextPlainUnit(stream.file);
    if (!stream.text) return unit;
    if (unit == kEndMark) return endHere(stream);
    if (unit != '\r') return unit;
    const int next = nextPlainUnit(stream.file);
    if (next == '\n') return next;
    putBackPlainUnit(next, stream.file);
    return unit;
}

// A sequence that breaks off is one broken character, and what broke it is read next.
int nextUtf8(Stream& stream) {
    const int lead = nextByte(stream);
    if (lead < 0x80) return lead;
    const int trails = trailCount(static_cast<unsigned>(lead));
    if (trails == 0) return kBroken;
    unsigned value = leadBits(static_cast<unsigned>(lead), trails);
    for (int i = 0; i < trails; ++i) {
        const int byte = getc_unlocked(stream.file);
        if (!isTrail(byte)) {
            putBack(byte, stream.file);
            return kBroken;
        }
        if (i == 0 && isOutOfRange(static_cast<unsigned>(lead), static_cast<unsigned>(byte))) return kBroken;
        value = value << 6 | (static_cast<unsigned>(byte) & 0x3Fu);
    }
    if (value < 0x10000) return static_cast<int>(value);
    stream.waitingLow = lowSurrogate(value);
    return highSurrogate(value);
}

int nextUnit(Stream& stream) {
    switch (stream.encoding) {
        case Encoding::eBytes: return nextByte(stream);
        case Encoding::eUtf16: return nextUtf16(stream);
        default: break;
    }
    if (stream.waitingLow == 0) return nextUtf8(stream);
    const wchar_t low = stream.waitingLow;
    stream.waitingLow = 0;
    return low;
}

void putBackUtf8(Stream& stream, unsigned unit) {
    if (isLowSurrogate(unit)) {
        stream.waitingLow = static_cast<wchar_t>(unit);
        return;
    }
    unsigned value = unit;
    if (isHighSurrogate(unit) && stream.waitingLow != 0) {
        value = pairValue(unit, stream.waitingLow);
        stream.waitingLow = 0;
    }
    int bytes[4], count = 0;
    encodeUtf8(value, [&](unsigned byte) { bytes[count++] = static_cast<int>(byte); });
    while (count > 0) putBack(bytes[--count], stream.file);
}

void putBackUnit(Stream& stream, int unit) {
    if (unit == kEnd) return;
    switch (stream.encoding) {
        case Encoding::eBytes: return putBack(unit, stream.file);
        case Encoding::eUtf16: return putBackPlainUnit(unit, stream.file);
        case Encoding::eUtf8: return putBackUtf8(stream, static_cast<unsigned>(unit));
    }
}

// The next character in the ANSI code page; what has no room is put back. The bytes stored, 0 where it has no room,
// -1 at the end.
int nextAnsiCharacter(Stream& stream, char* to, int room) {
    wchar_t units[2];
    int count = 0;
    const int first = nextUnit(stream);
    if (first == kEnd) return kEnd;
    units[count++] = static_cast<wchar_t>(first);
    if (isHighSurrogate(units[0])) {
        const int second = nextUnit(stream);
        if (second != kEnd && isLowSurrogate(static_cast<unsigned>(second)))
            units[count++] = static_cast<wchar_t>(second);
        else
            putBackUnit(stream, second);
    }
    const int stored = WideCharToMultiByte(CP_ACP, 0, units, count, to, room, nullptr, nullptr);
    for (int i = count; stored == 0 && i-- > 0;) putBackUnit(stream, units[i]);
    return stored;
}

int readAnsiLine(Stream& stream, char* buffer, int room) {
    int length = 0;
    while (length < room) {
        const int stored = nextAnsiCharacter(stream, buffer + length, room - length);
        if (stored <= 0) break;
        length += stored;
        if (buffer[length - 1] == '\n') break;
    }
    if (length == 0 && room > 0 && nextUnit(stream) != kEnd) buffer[length++] = '?';  // has no room at all
    return length;
}

int readLine(Stream& stream, char* buffer, int room) {
    if (stream.isEncoded()) return readAnsiLine(stream, buffer, room);
    int length = 0;
    while (length < room) {
        const int byte = nextByte(stream);
        if (byte == kEnd) break;
        buffer[length++] = static_cast<char>(byte);
        if (byte == '\n') break;
    }
    return length;
}

int readLine(Stream& stream, wchar_t* buffer, int room) {
    int length = 0;
    while (length < room) {
        const int unit = nextUnit(stream);
        if (unit == kEnd) break;
        buffer[length++] = static_cast<wchar_t>(unit);
        if (unit == '\n') break;
    }
    return length;
}

template <class Unit>
Unit* getLine(Unit* buffer, int count, std::FILE* file) {
    if (buffer == nullptr || file == nullptr || count < 1) {
        failWith(kBadArgument);
        return nullptr;
    }
    StreamFor stream(file, Direction::eReading);
    const int length = readLine(*stream, buffer, count - 1);
    if (length == 0) return nullptr;  // what the buffer had stays
    buffer[length] = 0;
    return buffer;
}

std::size_t readTextBytes(Stream& stream, char* buffer, std::size_t size) {
    std::size_t got = 0;
    for (int byte; got < size && (byte = nextByte(stream)) != kEnd;) buffer[got++] = static_cast<char>(byte);
    return got;
}

// Whole units only.
std::size_t readTextUnits(Stream& stream, char* buffer, std::size_t size) {
    std::size_t got = 0;
    for (int unit; got + 2 <= size && (unit = nextUnit(stream)) != kEnd; got += 2) {
        buffer[got] = static_cast<char>(unit & 0xFF);
        buffer[got + 1] = static_cast<char>(unit >> 8);
    }
    return got;
}

}  // namespace

namespace streams {

int getUnit(std::FILE* file) {
    StreamFor stream(file, Direction::eReading);
    return nextUnit(*stream);
}

void ungetUnit(std::FILE* file, int unit) {
    StreamFor stream(file, Direction::eReading);
    putBackUnit(*stream, unit);
}

}  // namespace streams

namespace crt {

char* fgets(char* buffer, int count, std::FILE* file) { return getLine(buffer, count, file); }

wchar_t* fgetws(wchar_t* buffer, int count, std::FILE* file) { return getLine(buffer, count, file); }

unsigned short fgetwc(std::FILE* file) {
    return static_cast<unsigned short>(file != nullptr ? streams::getUnit(file) : failWith(kBadArgument));
}

std::size_t fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file) {
    if (size == 0 || count == 0) return 0;
    if (buffer == nullptr || file == nullptr || count > SIZE_MAX / size) {
        failWith(kBadArgument);
        return 0;
    }
    StreamFor stream(file, Direction::eReading);
    if (!stream->text) return std::fread(buffer, size, count, file);
    const auto read = stream->isEncoded() ? readTextUnits : readTextBytes;
    return read(*stream, static_cast<char*>(buffer), size * count) / size;
}

}  // namespace crt
