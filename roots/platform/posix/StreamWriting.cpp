// Writes streams as Windows' runtime does. 8-bit text on a stream with an encoding is text in the ANSI code page.
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/StreamTable.h>
#include <roots/platform/posix/StreamText.h>
#include <roots/platform/posix/Utf.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace {

using namespace platform;
using streams::Encoding;
using streams::Stream;

constexpr unsigned kBroken = 0xFFFD;
constexpr int kBadArgument = 22;

// Collects encoded text and writes it block by block.
class BlockWriter {
public:
    explicit BlockWriter(Stream& stream) : m_stream(stream) {}

    void put(const wchar_t* text, std::size_t length) {
        switch (m_stream.encoding) {
            case Encoding::eBytes: return putAll<&BlockWriter::putByteUnit>(text, length);
            case Encoding::eUtf16: return putAll<&BlockWriter::putPlainUnit>(text, length);
            case Encoding::eUtf8: return putAll<&BlockWriter::putUtf8Unit>(text, length);
        }
    }

    // Writes what is left; false if anything could not be written.
    bool finish() {
        flush();
        return m_good;
    }

private:
    template <void (BlockWriter::*putUnit)(unsigned)>
    void putAll(const wchar_t* text, std::size_t length) {
        for (std::size_t i = 0; i < length && m_good; ++i) {
            if (m_used > sizeof m_block - kMostPerUnit) flush();
            if (text[i] == L'\n' && m_stream.text) (this->*putUnit)(L'\r');
            (this->*putUnit)(text[i]);
        }
    }

    void putByteUnit(unsigned unit) { add(unit <= 0xFF ? unit : '?'); }

    void putPlainUnit(unsigned unit) {
        add(unit & 0xFF);
        add(unit >> 8);
    }

    void putUtf8Unit(unsigned unit) {
        if (m_stream.waitingHigh != 0) {
            const unsigned high = m_stream.waitingHigh;
            m_stream.waitingHigh = 0;
            if (isLowSurrogate(unit)) return putSequence(pairValue(high, unit));
            putSequence(kBroken);
        }
        if (isHighSurrogate(unit))
            m_stream.waitingHigh = static_cast<wchar_t>(unit);
        else
            putSequence(isLowSurrogate(unit) ? kBroken : unit);
    }

    void putSequence(unsigned value) {
        encodeUtf8(value, [this](unsigned byte) { add(byte); });
    }

    void add(unsigned byte) { m_block[m_used++] = static_cast<char>(byte); }

    void flush() {
        if (m_used > 0 && std::fwrite(m_block, 1, m_used, m_stream.file) != m_used) m_good = false;
        m_used = 0;
    }

    static constexpr std::size_t kMostPerUnit = 8;

    Stream& m_stream;
    bool m_good = true;
    std::size_t m_used = 0;
    char m_block[4096];
};

bool writeBytes(std::FILE* file, const char* text, std::size_t length) {
    return length == 0 || std::fwrite(text, 1, length, file) == length;
}

bool writeTextBytes(std::FILE* file, const char* text, std::size_t length) {
    while (const void* lineEnd = std::memchr(text, '\n', length)) {
        const auto before = static_cast<std::size_t>(static_cast<const char*>(lineEnd) - text);
        if (!writeBytes(file, text, before) || !writeBytes(file, "\r\n", 2)) return false;
        text += before + 1;
        length -= before + 1;
    }
    return writeBytes(file, text, length);
}

bool writeWidened(Stream& stream, const char* text, std::size_t length) {
    std::vector<wchar_t> units(length);  // never more units than bytes
    const int count =
        MultiByteToWideChar(CP_ACP, 0, text, static_cast<int>(length), units.data(), static_cast<int>(length));
    BlockWriter writer(stream);
    writer.put(units.data(), static_cast<std::size_t>(count));
    return writer.finish();
}

int answer(bool written) { return written ? 0 : failWith(windowsError(errno)); }

}  // namespace

namespace streams {

bool putUnits(std::FILE* file, const wchar_t* text, std::size_t length) {
    streams::StreamFor stream(file, streams::Direction::eWriting);
    BlockWriter writer(*stream);
    writer.put(text, length);
    return writer.finish();
}

bool putBytes(std::FILE* file, const char* text, std::size_t length) {
    streams::StreamFor stream(file, streams::Direction::eWriting);
    if (stream->isEncoded()) return length == 0 || writeWidened(*stream, text, length);
    return stream->text ? writeTextBytes(file, text, length) : writeBytes(file, text, length);
}

}  // namespace streams

namespace crt {

int fputs(const char* text, std::FILE* file) {
    if (text == nullptr || file == nullptr) return failWith(kBadArgument);
    return answer(streams::putBytes(file, text, std::strlen(text)));
}

int fputws(const wchar_t* text, std::FILE* file) {
    if (text == nullptr || file == nullptr) return failWith(kBadArgument);
    return answer(streams::putUnits(file, text, wide::length(text)));
}

}  // namespace crt
