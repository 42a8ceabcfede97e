// What Windows keeps with a stream and this system's FILE has no room for. The FILE itself is opened without any
// translation, so that its positions are the file's bytes.
#pragma once

#include <cstdio>

namespace streams {

// How a wide character stands in the file: as one byte, as UTF-8 or as two bytes, the low one first.
enum class Encoding : unsigned char { eBytes, eUtf8, eUtf16 };

enum class Direction : unsigned char { eNone, eReading, eWriting };

struct Stream {
    std::FILE* file = nullptr;
    Encoding encoding = Encoding::eBytes;
    bool text = false;        // CR LF in the file is LF in the program, Ctrl-Z ends the file
    bool update = false;      // opened for reading and writing
    bool ended = false;       // Ctrl-Z was read
    wchar_t waitingLow = 0;   // the second half of a pair whose first half was read
    wchar_t waitingHigh = 0;  // the first half of a pair whose second half may still be written
    Direction last = Direction::eNone;

    // Whether 8-bit text has to be converted on its way.
    bool isEncoded() const { return text && encoding != Encoding::eBytes; }
};

// Keeps the entry of a stream just opened, in place of any that was left at its address. False where memory is out.
bool enter(const Stream& stream);

// The entry of a stream that _wfopen_s opened; null for any other.
Stream* find(std::FILE* file);

// Writes half a pair that no other half followed, as a broken character; false on a write error.
bool finishPair(Stream& stream);

// A stream that is about to be read or written. One that _wfopen_s did not open is an 8-bit stream without translation.
class StreamFor {
public:
    StreamFor(std::FILE* file, Direction direction);
    StreamFor(const StreamFor&) = delete;
    StreamFor& operator=(const StreamFor&) = delete;

    Stream* operator->() { return m_stream; }
    Stream& operator*() { return *m_stream; }

private:
    Stream* m_stream;
    Stream m_foreign;
};

}  // namespace streams
