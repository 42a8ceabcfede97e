#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/FloatingText.h>
#include <roots/platform/posix/StreamText.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

namespace {

constexpr int illegalSequence = 42;  // the Windows number, which another error has elsewhere

unsigned valueOf(char byte) { return static_cast<unsigned char>(byte); }
unsigned valueOf(wchar_t unit) { return unit; }

// Text is written as far as it fits, and counted to its end.
template <class Unit>
class Output {
public:
    Output(Unit* to, std::size_t capacity) : m_to(to), m_capacity(capacity) {}

    std::size_t length() const { return m_length; }

    // Text of the other kind keeps its values: a byte becomes the unit of the same number and the other way round.
    template <class From>
    void put(const From* text, std::size_t count) {
        const std::size_t start = m_length, fitting = take(count);
        if (fitting == 0) return;
        Unit* const at = m_to + start;
        if constexpr (sizeof(From) == sizeof(Unit)) {
            std::memcpy(at, text, fitting * sizeof(Unit));
        } else {
            for (std::size_t i = 0; i < fitting; ++i) at[i] = static_cast<Unit>(valueOf(text[i]));
        }
    }

    void fill(char with, std::size_t count) {
        const std::size_t start = m_length, fitting = take(count);
        if (fitting != 0) std::fill_n(m_to + start, fitting, static_cast<Unit>(with));
    }

private:
    // Counts units; answers how many of them fit.
    std::size_t take(std::size_t count) {
        const std::size_t left = m_length < m_capacity ? m_capacity - m_length : 0;
        m_length += count;
        return std::min(count, left);
    }

    Unit* m_to;
    std::size_t m_capacity;
    std::size_t m_length = 0;
};

enum class Text { plain, narrow, wide };  // what a size asks of %s: nothing, 8-bit, 16-bit

// What stands between "%" and the conversion's letter.
struct Options {
    bool left = false;
    bool zeros = false;
    bool plus = false;
    bool space = false;
    bool alternate = false;
    bool isLong = false;
    bool integersOnly = false;  // %I, %z, %t name an integer's size and nothing else
    Text text = Text::plain;
    int bits = 32;
    int precision = -1;  // none
    std::size_t width = 0;
};

const char* signOf(const Options& options, bool negative) {
    return negative ? "-" : options.plus ? "+" : options.space ? " " : "";
}

template <class Unit>
class Formatter {
public:
    Formatter(Unit* to, std::size_t capacity, std::va_list args) : m_output(to, capacity) { va_copy(m_args, args); }
    ~Formatter() { va_end(m_args); }
    Formatter(const Formatter&) = delete;
    Formatter& operator=(const Formatter&) = delete;

    // 0, or the error number of a refused format or of a wide text that a narrow format cannot show.
    int run(const Unit* format);

    // Units of the text, whether they fit or not.
    std::size_t length() const { return m_output.length(); }

private:
    static constexpr bool isWide = sizeof(Unit) == sizeof(wchar_t);

    int convert(const Unit*& at);
    void readFlags(const Unit*& at, Options& options);
    void readWidth(const Unit*& at, Options& options);
    void readPrecision(const Unit*& at, Options& options);
    void readSize(const Unit*& at, Options& options);

    std::int64_t fetchSigned(const Options& options);
    std::uint64_t fetchUnsigned(const Options& options);

    void putSigned(const Options& options);
    void putDecimal(const Options& options, std::uint64_t value, const char* sign);
    void putPowerOfTwo(const Options& options, std::uint64_t value, unsigned shift, bool upper);
    void putDigits(const Options& options, const char* prefix, const char* digits, std::size_t count);
    void putPointer(Options options);
    void putFloating(const Options& options, char conversion);
    void putCharacter(const Options& options, bool wideText);
    int putText(const Options& options, bool wideText);
    int putWideText(const Options& options, const wchar_t* text);
    template <class From>
    void putField(const Options& options, const From* text, std::size_t count);

    // Fills up to the width: blanks on one side of prefix and body, or zeros between the two where these are allowed.
    template <class Body>
    void putField(const Options& options, bool zerosAllowed, const char* prefix, std::size_t bodyLength, Body body);

    Output<Unit> m_output;
    std::va_list m_args;
};

template <class Unit>
int Formatter<Unit>::run(const Unit* format) {
    for (;;) {
        const Unit* const start = format;
        while (*format != 0 && *format != '%') ++format;
        if (format != start) m_output.put(start, static_cast<std::size_t>(format - start));
        if (*format == 0) return 0;
        ++format;
        if (*format == '%') {
            m_output.put(format++, 1);
        } else if (const int error = convert(format)) {
            return error;
        }
    }
}

template <class Unit>
int Formatter<Unit>::convert(const Unit*& at) {
    Options options;
    readFlags(at, options);
    readWidth(at, options);
    readPrecision(at, options);
    readSize(at, options);

    const Unit letter = *at++;
    switch (letter) {
        case 'd':
        case 'i': putSigned(options); return 0;
        case 'u': putDecimal(options, fetchUnsigned(options), ""); return 0;
        case 'o': putPowerOfTwo(options, fetchUnsigned(options), 3, false); return 0;
        case 'x': putPowerOfTwo(options, fetchUnsigned(options), 4, false); return 0;
        case 'X': putPowerOfTwo(options, fetchUnsigned(options), 4, true); return 0;
        default: break;
    }
    if (options.integersOnly) return EINVAL;
    const bool likeFormat = options.text == Text::plain ? isWide : options.text == Text::wide;
    const bool unlikeFormat = options.text == Text::plain ? !isWide : options.text == Text::wide;
    switch (letter) {
        case 's': return putText(options, likeFormat);
        case 'S': return putText(options, unlikeFormat);
        case 'c': putCharacter(options, likeFormat); return 0;
        case 'C': putCharacter(options, unlikeFormat); return 0;
        case 'p': putPointer(options); return 0;
        case 'e':
        case 'E':
        case 'f':
        case 'g':
        case 'G':
        case 'a':
        case 'A': putFloating(options, static_cast<char>(letter)); return 0;
        default: return EINVAL;  // %n too: it would write wherever the caller's arguments happen to point
    }
}

template <class Unit>
void Formatter<Unit>::readFlags(const Unit*& at, Options& options) {
    for (;; ++at) {
        switch (*at) {
            case '-': options.left = true; break;
            case '0': options.zeros = true; break;
            case '+': options.plus = true; break;
            case ' ': options.space = true; break;
            case '#': options.alternate = true; break;
            default: return;
        }
    }
}

// A number beyond an int's reach is as good as the greatest int: no text fits such a field.
template <class Unit>
int readNumber(const Unit*& at) {
    int number = 0;
    for (; *at >= '0' && *at <= '9'; ++at) {
        const int digit = *at - '0';
        number = number > (INT_MAX - digit) / 10 ? INT_MAX : number * 10 + digit;
    }
    return number;
}

template <class Unit>
void Formatter<Unit>::readWidth(const Unit*& at, Options& options) {
    if (*at != '*') {
        options.width = static_cast<std::size_t>(readNumber(at));
        return;
    }
    ++at;
    const std::int64_t width = va_arg(m_args, int);
    options.left = options.left || width < 0;
    options.width = static_cast<std::size_t>(width < 0 ? -width : width);
}

template <class Unit>
void Formatter<Unit>::readPrecision(const Unit*& at, Options& options) {
    if (*at != '.') return;
    ++at;
    if (*at != '*') {
        options.precision = readNumber(at);
        return;
    }
    ++at;
    options.precision = std::max(-1, va_arg(m_args, int));
}

// Of several sizes the last one counts, but 64 bits stay 64.
template <class Unit>
void Formatter<Unit>::readSize(const Unit*& at, Options& options) {
    const auto setBits = [&](int bits) {
        if (options.bits != 64) options.bits = bits;
    };
    for (;; ++at) {
        const bool twice = *at != 0 && at[1] == *at;  // hh, ll
        switch (*at) {
            case 'h':
                setBits(twice ? 8 : 16);
                options.text = Text::narrow;
                at += twice;
                break;
            case 'l':
                setBits(twice ? 64 : 32);
                options.isLong = true;
                options.text = Text::wide;
                at += twice;
                break;
            case 'L':
            case 'w':
                setBits(32);
                options.text = Text::wide;
                break;
            case 'j': setBits(64); break;
            case 'z':
            case 't':
                setBits(64);
                options.integersOnly = true;
                break;
            case 'I':
                if (at[1] == '6' && at[2] == '4') {
                    at += 2;
                    setBits(64);
                } else if (at[1] == '3' && at[2] == '2') {
                    at += 2;
                    setBits(32);
                } else {
                    setBits(64);
                    options.integersOnly = true;
                }
                break;
            default: return;
        }
    }
}

// A long has 32-bit values whatever its width, so an int where the format says long is right as well.
template <class Unit>
std::int64_t Formatter<Unit>::fetchSigned(const Options& options) {
    if (options.bits == 64) return va_arg(m_args, std::int64_t);
    const auto value = static_cast<std::int32_t>(options.isLong ? va_arg(m_args, long) : va_arg(m_args, int));
    return options.bits == 32   ? value
           : options.bits == 16 ? static_cast<std::int16_t>(value)
                                : static_cast<std::int8_t>(value);
}

template <class Unit>
std::uint64_t Formatter<Unit>::fetchUnsigned(const Options& options) {
    const auto value = static_cast<std::uint64_t>(fetchSigned(options));
    return options.bits == 64 ? value : value & ((std::uint64_t(1) << options.bits) - 1);
}

template <class Unit>
void Formatter<Unit>::putSigned(const Options& options) {
    const std::int64_t value = fetchSigned(options);
    const auto magnitude = static_cast<std::uint64_t>(value);
    putDecimal(options, value < 0 ? 0 - magnitude : magnitude, signOf(options, value < 0));
}

constexpr char decimalPairs[] =
    "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
    "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

// Writes the digits in front of end; 0 has none.
template <class Number>
char* writeDecimalBackwards(char* end, Number value) {
    for (; value >= 100; value /= 100) std::memcpy(end -= 2, decimalPairs + 2 * (value % 100), 2);
    if (value >= 10) {
        std::memcpy(end -= 2, decimalPairs + 2 * value, 2);
    } else if (value != 0) {
        *--end = static_cast<char>('0' + value);
    }
    return end;
}

template <class Unit>
void Formatter<Unit>::putDecimal(const Options& options, std::uint64_t value, const char* sign) {
    char digits[20];
    char* const end = std::end(digits);
    const char* const start = value <= UINT32_MAX ? writeDecimalBackwards(end, static_cast<std::uint32_t>(value))
                                                  : writeDecimalBackwards(end, value);
    putDigits(options, sign, start, static_cast<std::size_t>(end - start));
}

template <class Unit>
void Formatter<Unit>::putPowerOfTwo(const Options& options, std::uint64_t value, unsigned shift, bool upper) {
    char digits[24];
    char* const end = std::end(digits);
    char* start = end;
    const char* const alphabet = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    for (std::uint64_t rest = value; rest != 0; rest >>= shift) *--start = alphabet[rest & ((1u << shift) - 1)];
    const bool octal = shift == 3;
    if (options.alternate && octal && options.precision <= end - start) *--start = '0';
    const char* const prefix = !options.alternate || octal || value == 0 ? "" : upper ? "0X" : "0x";
    putDigits(options, prefix, start, static_cast<std::size_t>(end - start));
}

// 0 comes without digits: the precision says how many there are at least, and without one that is 1.
template <class Unit>
void Formatter<Unit>::putDigits(const Options& options, const char* prefix, const char* digits, std::size_t count) {
    const std::size_t least = options.precision < 0 ? 1 : static_cast<std::size_t>(options.precision);
    const std::size_t zeros = count < least ? least - count : 0;
    putField(options, options.precision < 0, prefix, zeros + count, [&] {
        m_output.fill('0', zeros);
        m_output.put(digits, count);
    });
}

template <class Unit>
void Formatter<Unit>::putPointer(Options options) {
    options.precision = 2 * sizeof(void*);
    putPowerOfTwo(options, reinterpret_cast<std::uintptr_t>(va_arg(m_args, void*)), 4, true);
}

template <class Unit>
void Formatter<Unit>::putFloating(const Options& options, char conversion) {
    const FloatingText number(va_arg(m_args, double), conversion, options.precision, options.alternate);
    char prefix[4];
    std::strcat(std::strcpy(prefix, signOf(options, number.negative)), number.prefix);
    putField(options, true, prefix, number.bodyLength + number.closingZeros + number.suffixLength, [&] {
        m_output.put(number.body, number.bodyLength);
        m_output.fill('0', number.closingZeros);
        m_output.put(number.suffix, number.suffixLength);
    });
}

// In a narrow format a wide character above FF leaves nothing, not even its field.
template <class Unit>
void Formatter<Unit>::putCharacter(const Options& options, bool wideText) {
    const int argument = va_arg(m_args, int);
    if (!wideText) {
        const char byte = static_cast<char>(argument);
        putField(options, &byte, 1);
        return;
    }
    const wchar_t unit = static_cast<wchar_t>(argument);
    if (isWide || unit <= 0xFF) putField(options, &unit, 1);
}

// Units before the terminator, of which at most limit are looked at; a negative limit is none.
std::size_t lengthWithin(const char* text, int limit) {
    return limit < 0 ? std::strlen(text) : ::strnlen(text, static_cast<std::size_t>(limit));
}

std::size_t lengthWithin(const wchar_t* text, int limit) {
    if (limit < 0) return wide::length(text);
    std::size_t length = 0;
    while (length < static_cast<std::size_t>(limit) && text[length] != 0) ++length;
    return length;
}

template <class Unit>
int Formatter<Unit>::putText(const Options& options, bool wideText) {
    const void* const text = va_arg(m_args, const void*);
    if (text != nullptr && wideText) return putWideText(options, static_cast<const wchar_t*>(text));
    const char* const bytes = text != nullptr ? static_cast<const char*>(text) : "(null)";
    putField(options, bytes, lengthWithin(bytes, options.precision));
    return 0;
}

template <class Unit>
int Formatter<Unit>::putWideText(const Options& options, const wchar_t* text) {
    const std::size_t count = lengthWithin(text, options.precision);
    if (!isWide && std::any_of(text, text + count, [](wchar_t unit) { return unit > 0xFF; })) return illegalSequence;
    putField(options, text, count);
    return 0;
}

template <class Unit>
template <class From>
void Formatter<Unit>::putField(const Options& options, const From* text, std::size_t count) {
    putField(options, true, "", count, [&] { m_output.put(text, count); });
}

template <class Unit>
template <class Body>
void Formatter<Unit>::putField(const Options& options, bool zerosAllowed, const char* prefix, std::size_t bodyLength,
                               Body body) {
    const std::size_t prefixLength = std::strlen(prefix);
    const std::size_t length = prefixLength + bodyLength;
    const std::size_t missing = options.width > length ? options.width - length : 0;
    const bool zeros = options.zeros && zerosAllowed && !options.left;
    if (!zeros && !options.left) m_output.fill(' ', missing);
    m_output.put(prefix, prefixLength);
    if (zeros) m_output.fill('0', missing);
    body();
    if (options.left) m_output.fill(' ', missing);
}

int fail(int error) {
    errno = error;
    return -1;
}

template <class Unit>
int formatInto(Unit* to, std::size_t size, const Unit* format, std::va_list args) {
    if (to == nullptr) return fail(EINVAL);
    if (size == 0) return fail(ERANGE);
    *to = 0;
    if (format == nullptr) return fail(EINVAL);
    Formatter<Unit> formatter(to, size - 1, args);
    int error = formatter.run(format);
    if (error == 0 && formatter.length() >= std::min<std::size_t>(size, INT_MAX)) error = ERANGE;
    to[error == 0 ? formatter.length() : 0] = 0;
    return error == 0 ? static_cast<int>(formatter.length()) : fail(error);
}

template <class Unit>
int formatWhatFits(Unit* to, std::size_t size, const Unit* format, std::va_list args) {
    if (to == nullptr || size == 0) return fail(EINVAL);
    *to = 0;
    if (format == nullptr) return fail(EINVAL);
    Formatter<Unit> formatter(to, size - 1, args);
    if (const int error = formatter.run(format)) {
        *to = 0;
        return fail(error);
    }
    to[std::min(formatter.length(), size - 1)] = 0;
    return formatter.length() < std::min<std::size_t>(size, INT_MAX) ? static_cast<int>(formatter.length()) : -1;
}

template <class Unit>
int measure(const Unit* format, std::va_list args) {
    if (format == nullptr) return fail(EINVAL);
    Formatter<Unit> formatter(nullptr, 0, args);
    if (const int error = formatter.run(format)) return fail(error);
    return formatter.length() < INT_MAX ? static_cast<int>(formatter.length()) : fail(ERANGE);
}

// The text is complete before its first unit is written: a refused format leaves nothing in the file.
template <class Unit>
int formatTo(std::FILE* stream, const Unit* format, std::va_list args,
             bool (*put)(std::FILE*, const Unit*, std::size_t)) {
    if (stream == nullptr || format == nullptr) return fail(EINVAL);
    Unit nearby[512];
    Formatter<Unit> formatter(nearby, std::size(nearby), args);
    if (const int error = formatter.run(format)) return fail(error);
    const std::size_t length = formatter.length();
    if (length >= INT_MAX) return fail(ERANGE);
    if (length <= std::size(nearby)) return put(stream, nearby, length) ? static_cast<int>(length) : -1;

    const std::unique_ptr<Unit[]> text(new (std::nothrow) Unit[length]);
    if (text == nullptr) return fail(ENOMEM);
    Formatter<Unit>(text.get(), length, args).run(format);
    return put(stream, text.get(), length) ? static_cast<int>(length) : -1;
}

}  // namespace

int vsprintf_s(char* to, std::size_t size, const char* format, std::va_list args) {
    return formatInto(to, size, format, args);
}

int vswprintf_s(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list args) {
    return formatInto(to, size, format, args);
}

int _vsnprintf_s(char* to, std::size_t size, std::size_t, const char* format, std::va_list args) {
    return formatWhatFits(to, size, format, args);
}

int _vsnwprintf_s(wchar_t* to, std::size_t size, std::size_t, const wchar_t* format, std::va_list args) {
    return formatWhatFits(to, size, format, args);
}

int _vscprintf(const char* format, std::va_list args) { return measure(format, args); }

int _vscwprintf(const wchar_t* format, std::va_list args) { return measure(format, args); }

int vfprintf_s(std::FILE* stream, const char* format, std::va_list args) {
    return formatTo(stream, format, args, streams::putBytes);
}

int vfwprintf_s(std::FILE* stream, const wchar_t* format, std::va_list args) {
    return formatTo(stream, format, args, streams::putUnits);
}
