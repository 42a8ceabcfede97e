// Formatted texts, numbers, clock, paths and foreign encodings.

#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/text/BryRuntime.h>
#include <roots/text/BryString.h>

#include <charconv>
#include <cstring>
#include <iterator>
#include <memory>

namespace {

constexpr std::size_t kScratchSize = 0x80000;  // elements in each of the two scratch buffers
constexpr std::size_t kPathSize = 260;

}  // namespace

// ---- formatting ----------------------------------------------------------------------------------

namespace {

// Composes a text in the scratch buffer; one that it cannot hold is measured and composed in memory of its own. The
// result is where the text stands.
template <class Unit>
Unit const* compose(Unit* scratch, std::unique_ptr<Unit[]>& own, Unit const* fmt, std::va_list args,
                    int (*formatCut)(Unit*, std::size_t, std::size_t, Unit const*, std::va_list),
                    int (*measure)(Unit const*, std::va_list),
                    int (*formatWhole)(Unit*, std::size_t, Unit const*, std::va_list)) {
    scratch[0] = 0;
    if (!fmt) return scratch;
    std::va_list measuring, whole;
    va_copy(measuring, args);
    va_copy(whole, args);
    if (formatCut(scratch, kScratchSize, _TRUNCATE, fmt, args) < 0) {
        scratch[0] = 0;
        const int length = measure(fmt, measuring);
        const std::size_t size = length < 0 ? 0 : static_cast<std::size_t>(length) + 1;
        if (size > kScratchSize) {
            own.reset(new Unit[size]);
            if (formatWhole(own.get(), size, fmt, whole) < 0) own.reset();
        }
    }
    va_end(whole);
    va_end(measuring);
    return own ? own.get() : scratch;
}

}  // namespace

BryString& BryString::vformat(wchar_t const* fmt, std::va_list args) {
    std::unique_ptr<wchar_t[]> own;
    return *this = compose(BryStringTempBufferWide, own, fmt, args, _vsnwprintf_s, _vscwprintf, vswprintf_s);
}

BryString& BryString::vformat(char const* fmt, std::va_list args) {
    std::unique_ptr<char[]> own;
    return *this = compose(BryStringTempBuffer, own, fmt, args, _vsnprintf_s, _vscprintf, vsprintf_s);
}

BryString& BryString::vformat(unsigned short const* fmt, std::va_list args) {
    return vformat(reinterpret_cast<wchar_t const*>(fmt), args);
}

BryString& BryString::format(wchar_t const* fmt, ...) {
    std::va_list args;
    va_start(args, fmt);
    vformat(fmt, args);
    va_end(args);
    return *this;
}

BryString& BryString::format(unsigned short const* fmt, ...) {
    std::va_list args;
    va_start(args, fmt);
    vformat(fmt, args);
    va_end(args);
    return *this;
}

BryString& BryString::format(char const* fmt, ...) {
    std::va_list args;
    va_start(args, fmt);
    vformat(fmt, args);
    va_end(args);
    return *this;
}

BryString& BryString::formatTime(unsigned maxSize, char const* fmt, std::tm const* t) {
    if (!fmt || !t || maxSize == 0) return empty();
    const std::unique_ptr<char[]> buffer(new char[maxSize]);
    return *this = crt::strftime(buffer.get(), maxSize, fmt, t) != 0 ? buffer.get() : "";
}

// ---- number and clock texts ----------------------------------------------------------------------

// The runtime's handling of bad arguments may end a process on Windows, so they do not get that far.

BryStringRepr* BryString::makeAsciiRep(char const* text, std::size_t length) {
    if (length == 0) return m_repEmpty;
    BryStringRepr* const rep = BryStringRepr::make(length);
    for (std::size_t i = 0; i < length; ++i) rep->m_buffer[i] = static_cast<wchar_t>(text[i]);
    return rep;
}

BryString BryString::integerToString(int value, int radix) {
    if (radix < 2 || radix > 36) return BryString();
    char digits[33];  // the 32 digits of radix 2, or a sign and ten
    char* const end = radix == 10 ? std::to_chars(digits, std::end(digits), value).ptr
                                  : std::to_chars(digits, std::end(digits), static_cast<unsigned>(value), radix).ptr;
    return BryString(makeAsciiRep(digits, static_cast<std::size_t>(end - digits)));
}

BryString BryString::longToString(long value, int radix) {
    if (radix < 2 || radix > 36) return BryString();
    wchar_t digits[34];
    bryltow8(value, digits, std::size(digits), radix);
    return BryString(digits);
}

BryString BryString::doubleToString(double value, int digits) {
    char text[1024];
    if (digits < 0 || digits >= static_cast<int>(sizeof text)) return BryString();
    brygcvt(text, sizeof text, value, digits);
    return BryString(makeAsciiRep(text, std::strlen(text)));
}

BryString BryString::time() {
    wchar_t text[18];
    brywstrtime8(text, std::size(text));
    return BryString(text);
}

BryString BryString::date() {
    wchar_t text[255];
    brywstrdate8(text, std::size(text));
    return BryString(text);
}

// ---- paths ---------------------------------------------------------------------------------------

void BryString::SplitPath(BryString& drive, BryString& dir, BryString& fname, BryString& ext) const {
    wchar_t parts[4][kPathSize];
    brywsplitpath8(getStringW(), parts[0], kPathSize, parts[1], kPathSize, parts[2], kPathSize, parts[3], kPathSize);
    drive = parts[0];
    dir = parts[1];
    fname = parts[2];
    ext = parts[3];
}

void BryString::MakePath(const BryString& drive, const BryString& dir, const BryString& fname, const BryString& ext) {
    wchar_t path[kPathSize];
    brywmakepath8(path, kPathSize, drive.getStringW(), dir.getStringW(), fname.getStringW(), ext.getStringW());
    *this = path;
}

// ---- foreign encodings ---------------------------------------------------------------------------

BryString BryString::setFromUnsignedShortString(unsigned short const* text) { return *this = text; }

namespace {

unsigned codePageOf(int selector) {
    switch (selector) {
        case 1: return 932;
        case 2: return 950;
        case 3: return 949;
        case 4: return 1361;
        case 5: return 936;
        default: return CP_ACP;
    }
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

char hexByte(char const* digits) {
    const int high = hexDigit(digits[0]), low = hexDigit(digits[1]);
    return high < 0 || low < 0 ? '?' : static_cast<char>(high * 16 + low);
}

}  // namespace

BryString BryString::setFromMIFString(char const* text) {
    const std::size_t bytes = text ? std::strlen(text) : 0;
    const std::unique_ptr<char[]> decoded(new char[bytes + 1]);
    char* to = decoded.get();
    int selector = 0;
    for (std::size_t i = 0; i < bytes;) {
        if (std::strncmp(text + i, "\\M+", 3) != 0) {
            *to++ = text[i++];
            continue;
        }
        const char digit = text[i + 3];  // the terminator where the text ends here
        selector = digit >= '0' && digit <= '9' ? digit - '0' : 0;
        if (i + 8 > bytes) {
            i += 5;
            continue;
        }
        *to++ = hexByte(text + i + 4);
        *to++ = hexByte(text + i + 6);
        i += 8;
    }
    *to = 0;
    return take(makeRep(decoded.get(), codePageOf(selector)));
}
