#include <roots/files/BryFileAccess.h>
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int kExists = 17;
constexpr unsigned kUtf8 = 65001;

const wchar_t* modeSuffix(BryFileAccess::encodeType encoding) {
    switch (encoding) {
        case BryFileAccess::encodeUNICODE: return L", ccs=UNICODE";
        case BryFileAccess::encodeUTF8: return L", ccs=UTF-8";
        case BryFileAccess::encodeUTF16LE: return L", ccs=UTF-16LE";
        default: return L"";
    }
}

std::FILE* openFile(const BryString& name, const BryString& mode) {
    std::FILE* stream = nullptr;
    return _wfopen_s(&stream, name.getStringW(), mode.getStringW()) == 0 ? stream : nullptr;
}

// ---- lines ---------------------------------------------------------------------------------------------------------

std::size_t lengthOf(const char* text) { return std::strlen(text); }

std::size_t lengthOf(const wchar_t* text) { return wide::length(text); }

// Reads a line with the runtime's reader, through a buffer of the given size where more is asked for.
template <class Unit, int size>
BryString readLine(std::FILE* stream, int maxChars, Unit* (*reader)(Unit*, int, std::FILE*)) {
    Unit buffer[size];
    if (maxChars <= size)
        return maxChars > 1 && reader(buffer, maxChars, stream) != nullptr ? BryString(buffer) : BryString();

    std::vector<Unit> line;
    for (int left = maxChars - 1; left > 0;) {
        const int wanted = std::min(left, size - 1);
        if (reader(buffer, wanted + 1, stream) == nullptr) break;
        const int got = static_cast<int>(lengthOf(buffer));
        line.insert(line.end(), buffer, buffer + got);
        left -= got;
        if (got < wanted || buffer[got - 1] == '\n') break;
    }
    line.push_back(0);
    return BryString(line.data());
}

// ---- whole files ---------------------------------------------------------------------------------------------------

enum class Mark { eNone, eUtf16, eUtf16Swapped, eUtf8 };

// How a stream is translated while its file is read byte by byte. The position goes back to the given byte with each
// change; the translated side of it comes last on the way in and first on the way out, because only a translated stream
// is sure to drop what it has buffered.
class Translation {
public:
    explicit Translation(std::FILE* stream) : m_stream(stream) {
        crt::fseek(stream, 0, SEEK_SET);
        m_before = crt::setmode(stream, _O_BINARY);
    }

    bool wasText() const { return m_before != _O_BINARY && m_before != -1; }

    // Reads on from a byte, as 8-bit text where the stream is one for text.
    void readBytesFrom(long position) {
        if (wasText()) crt::setmode(m_stream, _O_TEXT);
        crt::fseek(m_stream, position, SEEK_SET);
    }

    // As it was. The runtime does not tell UTF-8 from UTF-16, but mark and encoding do.
    void restore(BryFileAccess::encodeType encoding, Mark mark) {
        if (!wasText()) return;
        const bool hasEncoding = encoding != BryFileAccess::encodeANSI;
        const bool isUtf8 = mark == Mark::eUtf8 || (mark != Mark::eUtf16 && encoding == BryFileAccess::encodeUTF8);
        const bool isUtf16 = mark == Mark::eUtf16 || (mark != Mark::eUtf8 && encoding == BryFileAccess::encodeUTF16LE);
        crt::setmode(m_stream, hasEncoding && isUtf8 ? _O_U8TEXT : hasEncoding && isUtf16 ? _O_WTEXT : _O_TEXT);
    }

private:
    std::FILE* m_stream;
    int m_before;
};

Mark readMark(std::FILE* stream) {
    unsigned char start[3] = {};
    const std::size_t got = crt::fread(start, 1, sizeof start, stream);
    if (got >= 2 && start[0] == 0xFF && start[1] == 0xFE) return Mark::eUtf16;
    if (got >= 2 && start[0] == 0xFE && start[1] == 0xFF) return Mark::eUtf16Swapped;
    return got == 3 && std::memcmp(start, "\xEF\xBB\xBF", 3) == 0 ? Mark::eUtf8 : Mark::eNone;
}

// The units from here to the end of the file, at most count.
template <class Unit>
std::vector<Unit> readUnits(std::FILE* stream, std::uint64_t count) {
    std::vector<Unit> units;
    std::size_t got = 0;
    for (bool more = true; more && got < count;) {
        const auto block =
            static_cast<std::size_t>(std::min<std::uint64_t>(count - got, std::max<std::size_t>(got, 0x8000)));
        units.resize(got + block);
        const std::size_t now = crt::fread(units.data() + got, sizeof(Unit), block, stream);
        more = now == block;
        got += now;
    }
    units.resize(got);
    return units;
}

bool isPairAt(const std::vector<wchar_t>& text, std::size_t at) {
    return (text[at] & 0xFC00) == 0xD800 && (text[at + 1] & 0xFC00) == 0xDC00;
}

std::vector<wchar_t> decodeUtf8(const std::vector<char>& bytes, unsigned int count) {
    std::vector<wchar_t> text;
    const int size = static_cast<int>(bytes.size());
    if (size == 0 || count == 0) return text;
    text.resize(static_cast<std::size_t>(MultiByteToWideChar(kUtf8, 0, bytes.data(), size, nullptr, 0)));
    MultiByteToWideChar(kUtf8, 0, bytes.data(), size, text.data(), static_cast<int>(text.size()));
    if (text.size() > count) text.resize(isPairAt(text, count - 1) ? count - 1 : count);
    return text;
}

template <class Unit>
unsigned int give(std::vector<Unit> units, BryString& text) {
    const auto count = static_cast<unsigned int>(units.size());
    units.push_back(0);
    text = BryString(units.data());
    return count;
}

unsigned int readWide(std::FILE* stream, BryString& text, unsigned int count, bool swapped) {
    crt::fseek(stream, 2, SEEK_SET);
    std::vector<wchar_t> units = readUnits<wchar_t>(stream, count);
    for (wchar_t& unit : units)
        if (swapped) unit = static_cast<wchar_t>(unit >> 8 | (unit & 0xFF) << 8);
    return give(std::move(units), text);
}

// A unit takes four bytes at most, so these hold at least count units, the last of them whole.
std::uint64_t bytesFor(unsigned int count) { return std::min<std::uint64_t>(std::uint64_t{count} * 4, INT32_MAX); }

}  // namespace

// ---- BryFileAccess: construction, queries ---------------------------------------------------------------------------

struct BryFileAccess::Shared {
    std::FILE* stream;  // null once it is closed
    int owners;
};

BryFileAccess::BryFileAccess(const BryString& fileName, const BryString& mode, encodeType encoding)
    : m_shared(nullptr), m_encoding(encoding) {
    if (fileName.isEmpty()) return;
    const BryString openMode = mode + modeSuffix(encoding);
    std::unique_ptr<Shared> shared(new Shared{nullptr, 1});
    shared->stream = openFile(fileName, openMode);
    m_shared = shared.release();
}

BryFileAccess::BryFileAccess(const BryFileAccess& other) noexcept
    : m_shared(other.m_shared), m_encoding(other.m_encoding) {
    if (m_shared != nullptr) ++m_shared->owners;
}

BryFileAccess& BryFileAccess::operator=(const BryFileAccess& other) noexcept {
    Shared* const shared = other.m_shared;
    if (shared != nullptr) ++shared->owners;  // first, in case it is this object's own
    m_encoding = other.m_encoding;
    release();
    m_shared = shared;
    return *this;
}

BryFileAccess::~BryFileAccess() { release(); }

void BryFileAccess::release() noexcept {
    if (m_shared == nullptr || --m_shared->owners > 0) return;
    close();
    delete m_shared;
}

void BryFileAccess::close() {
    if (std::FILE* const open = stream()) crt::fclose(open);
    if (m_shared != nullptr) m_shared->stream = nullptr;
}

std::FILE* BryFileAccess::stream() const noexcept { return m_shared != nullptr ? m_shared->stream : nullptr; }

int BryFileAccess::isOpen() const { return stream() != nullptr ? 1 : 0; }

int BryFileAccess::eof() const { return isOpen() ? crt::feof(stream()) : 1; }

long BryFileAccess::getFileLength() {
    if (!isOpen()) return 0;
    crt::fseek(stream(), 0, SEEK_END);
    const long length = crt::ftell(stream());
    crt::fseek(stream(), 0, SEEK_SET);
    return length;
}

// ---- BryFileAccess: output ------------------------------------------------------------------------------------------

int BryFileAccess::write(const char* format, ...) const {
    if (!isOpen()) return 0;
    const BryString wideFormat(format);
    std::va_list args;
    va_start(args, format);
    const int result = vfwprintf_s(stream(), wideFormat.getStringW(), args);
    va_end(args);
    return result;
}

int BryFileAccess::write(const wchar_t* format, ...) const {
    if (!isOpen()) return 0;
    std::va_list args;
    va_start(args, format);
    const int result = vfwprintf_s(stream(), format, args);
    va_end(args);
    return result;
}

int BryFileAccess::write(const unsigned short* format, ...) const {
    if (!isOpen()) return 0;
    std::va_list args;
    va_start(args, format);
    const int result = vfwprintf_s(stream(), reinterpret_cast<const wchar_t*>(format), args);
    va_end(args);
    return result;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts call it with a value of their own
int BryFileAccess::puts(BryString text) const {
    if (!isOpen()) return -1;
    if (m_encoding == encodeANSI) return crt::fputs(text.getStringA(), stream());
    const int result = crt::fputws(text.getStringW(), stream());
    return result == 0xFFFF ? -1 : result;  // some runtimes answer with the end mark of wide characters
}

// ---- BryFileAccess: input -------------------------------------------------------------------------------------------

unsigned int BryFileAccess::read(void* buffer, unsigned int size, unsigned int count) const {
    return isOpen() ? static_cast<unsigned int>(crt::fread(buffer, size, count, stream())) : 0;
}

BryString BryFileAccess::gets(BryString& line, int maxChars) {
    if (!isOpen())
        line.empty();
    else if (m_encoding == encodeANSI)
        line = readLine<char, 512>(stream(), maxChars, crt::fgets);
    else
        line = readLine<wchar_t, 256>(stream(), maxChars, crt::fgetws);
    return line;
}

int BryFileAccess::seek(long offset, int origin) const { return isOpen() ? crt::fseek(stream(), offset, origin) : -1; }

int BryFileAccess::getc() const { return isOpen() ? static_cast<int>(crt::fgetwc(stream())) : 0; }

int BryFileAccess::readString(BryString& token) const {
    if (!isOpen()) return 0;
    wchar_t buffer[256];
    const int result = fwscanf_s(stream(), L"%255s", buffer, static_cast<unsigned>(std::size(buffer)));
    if (result == 1) token = buffer;
    return result;
}

int BryFileAccess::readInt(int& value) const {
    int number = 0;
    const int result = isOpen() ? fwscanf_s(stream(), L"%d", &number) : 0;
    if (result == 1) value = number;
    return result;
}

int BryFileAccess::readDouble(double& value) const {
    double number = 0;
    const int result = isOpen() ? fwscanf_s(stream(), L"%lf", &number) : 0;
    if (result == 1) value = number;
    return result;
}

unsigned int BryFileAccess::readFile(BryString& text, unsigned int count) const {
    text.empty();
    if (!isOpen()) return 0;
    Translation translation(stream());
    const Mark mark = readMark(stream());
    unsigned int result = 0;
    if (mark == Mark::eUtf16 || mark == Mark::eUtf16Swapped) {
        result = readWide(stream(), text, count, mark == Mark::eUtf16Swapped);
    } else {
        translation.readBytesFrom(mark == Mark::eUtf8 ? 3 : 0);
        result = mark == Mark::eUtf8 ? give(decodeUtf8(readUnits<char>(stream(), bytesFor(count)), count), text)
                                     : give(readUnits<char>(stream(), count), text);
    }
    translation.restore(m_encoding, mark);
    return result;
}

// ---- BryFileAccess: files and folders -------------------------------------------------------------------------------

int BryFileAccess::removeFile(const BryString& path) { return _wremove(path.getStringW()); }

int BryFileAccess::renameFile(const BryString& oldName, const BryString& newName) {
    return _wrename(oldName.getStringW(), newName.getStringW());
}

int BryFileAccess::changeWorkingDir(const BryString& path) { return _wchdir(path.getStringW()); }

int BryFileAccess::makeDir(const BryString& path) {
    return _wmkdir(path.getStringW()) == 0 || errno == kExists ? 0 : -1;
}

// ---- the runtime's stream routines ----------------------------------------------------------------------------------

int bryfopen(FILE** stream, const BryString& fileName, const BryString& mode) {
    return _wfopen_s(stream, fileName.getStringW(), mode.getStringW());
}

int bryfprintf(FILE* stream, const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    const int result = vfprintf_s(stream, format, args);
    va_end(args);
    return result;
}

int bryfprintf(FILE* stream, const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    const int result = vfwprintf_s(stream, format, args);
    va_end(args);
    return result;
}

int bryfclose(FILE* stream) { return crt::fclose(stream); }

unsigned int bryfread(void* buffer, unsigned int size, unsigned int count, FILE* stream) {
    return static_cast<unsigned int>(crt::fread(buffer, size, count, stream));
}

int bryfeof(FILE* stream) { return crt::feof(stream); }

char* bryfgets(char* buffer, int maxChars, FILE* stream) { return crt::fgets(buffer, maxChars, stream); }

int bryfputs(const char* text, FILE* stream) { return crt::fputs(text, stream); }

int bryFileExists(const BryString& path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(path.getStringW(), &found);
    if (search == INVALID_HANDLE_VALUE) return 0;
    FindClose(search);
    return 1;
}
