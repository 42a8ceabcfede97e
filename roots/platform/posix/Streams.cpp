// What all streams share: the table of what is kept with them, positions, the end.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/StreamTable.h>

#include <cerrno>
#include <cstdint>
#include <new>
#include <unordered_map>

using platform::failWith;
using platform::windowsError;
using streams::Direction;
using streams::Encoding;
using streams::Stream;

namespace streams {
namespace {

using Table = std::unordered_map<std::FILE*, Stream>;

// Never destroyed: streams may be closed after everything else is gone.
Table& table() {
    static Table& streams = *new Table;
    return streams;
}

// The C library asks for a change of position between reading and writing; Windows' callers do not know that.
void turn(Stream& stream, Direction direction) {
    if (!stream.update || stream.last == direction) return;
    if (stream.last != Direction::eNone) {
        finishPair(stream);
        fseeko(stream.file, 0, SEEK_CUR);
        stream.ended = false;
        stream.waitingLow = 0;
    }
    stream.last = direction;
}

}  // namespace

bool enter(const Stream& stream) {
    try {
        table().insert_or_assign(stream.file, stream);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

Stream* find(std::FILE* file) {
    const auto at = table().find(file);
    return at != table().end() ? &at->second : nullptr;
}

StreamFor::StreamFor(std::FILE* file, Direction direction) : m_stream(find(file)) {
    m_foreign.file = file;
    if (m_stream == nullptr) m_stream = &m_foreign;
    turn(*m_stream, direction);
}

bool finishPair(Stream& stream) {
    if (stream.waitingHigh == 0) return true;
    stream.waitingHigh = 0;
    return std::fwrite("\xEF\xBF\xBD", 1, 3, stream.file) == 3;
}

}  // namespace streams

namespace {

constexpr int kBadArgument = 22;

int modeOf(const Stream& stream) {
    if (!stream.text) return _O_BINARY;
    if (stream.encoding == Encoding::eBytes) return _O_TEXT;
    return stream.encoding == Encoding::eUtf8 ? _O_U8TEXT : _O_WTEXT;
}

}  // namespace

namespace crt {

int fclose(std::FILE* file) {
    if (file == nullptr) return failWith(kBadArgument);
    bool whole = true;
    if (Stream* stream = streams::find(file)) whole = finishPair(*stream);
    streams::table().erase(file);
    return std::fclose(file) == 0 && whole ? 0 : failWith(windowsError(errno));
}

int feof(std::FILE* file) {
    if (file == nullptr) return 0;
    const Stream* stream = streams::find(file);
    return (stream != nullptr && stream->ended) || std::feof(file) != 0 ? 1 : 0;
}

int fseek(std::FILE* file, long offset, int origin) {
    if (file == nullptr) return failWith(kBadArgument);
    if (Stream* stream = streams::find(file)) {
        finishPair(*stream);
        stream->waitingLow = 0;
        stream->ended = false;
        stream->last = Direction::eNone;
    }
    return fseeko(file, offset, origin) == 0 ? 0 : failWith(windowsError(errno));
}

long ftell(std::FILE* file) {
    if (file == nullptr) return failWith(kBadArgument);
    const off_t position = ftello(file);
    if (position < 0) return failWith(windowsError(errno));
    return position <= INT32_MAX ? static_cast<long>(position) : failWith(kBadArgument);
}

int setmode(std::FILE* file, int mode) {
    Stream* const stream = file != nullptr ? streams::find(file) : nullptr;
    if (stream == nullptr) return failWith(kBadArgument);
    const int before = modeOf(*stream);
    stream->text = mode != _O_BINARY;
    stream->encoding = mode == _O_TEXT ? Encoding::eBytes : mode == _O_U8TEXT ? Encoding::eUtf8 : Encoding::eUtf16;
    return before;
}

}  // namespace crt
