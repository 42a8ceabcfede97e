#include <roots/platform/Win32.h>
#include <roots/platform/posix/StreamText.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <limits>
#include <string>

namespace {

constexpr int atEnd = -1;

int valueOf(char byte) { return static_cast<unsigned char>(byte); }
int valueOf(wchar_t unit) { return unit; }

template <class Char>
class TextSource {
public:
    using Unit = Char;

    explicit TextSource(const Unit* text) : m_at(text) {}
    int get() { return *m_at == 0 ? atEnd : valueOf(*m_at++); }
    void unget(int) { --m_at; }

private:
    const Unit* m_at;
};

class StreamSource {
public:
    using Unit = wchar_t;

    explicit StreamSource(std::FILE* stream) : m_stream(stream) {}
    int get() { return streams::getUnit(m_stream); }
    void unget(int unit) { streams::ungetUnit(m_stream, unit); }

private:
    std::FILE* m_stream;
};

// The blanks of the 8-bit form are those of ASCII; the wide form knows those of Unicode.
bool isBlank(int unit, bool isWide) {
    if (unit == ' ' || (unit >= '\t' && unit <= '\r')) return true;
    return isWide && (unit == 0xA0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 ||
                      unit == 0x2029 || unit == 0x202F || unit == 0x205F || unit == 0x3000);
}

// The value of a digit, or 99, which is none in any base.
int digitValue(int unit) {
    if (unit >= '0' && unit <= '9') return unit - '0';
    const int letter = unit | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : 99;
}

enum class Text { plain, narrow, wide };  // what a size asks of %s: nothing, 8-bit, 16-bit

// What stands between "%" and the conversion's letter.
struct Options {
    bool suppressed = false;
    bool isLong = false;
    bool isDouble = false;  // what %f stores: else a float
    Text text = Text::plain;
    int bits = 32;
    int width = 0;  // no limit
};

// The units between the brackets of %[...].
template <class Unit>
struct Set {
    const Unit* begin;
    const Unit* end;
    bool negated;

    bool contains(int unit) const {
        for (const Unit* at = begin; at != end; ++at) {
            const int low = valueOf(*at);
            int high = low;
            if (end - at > 2 && at[1] == '-') high = valueOf(*(at += 2));
            if ((unit >= low && unit <= high) || (unit >= high && unit <= low)) return !negated;
        }
        return negated;
    }
};

enum class Outcome { matched, failed, ended };  // ended: nothing was left where a conversion begins

template <class Source>
class Scanner {
public:
    Scanner(Source source, std::va_list args) : m_source(source) { va_copy(m_args, args); }
    ~Scanner() { va_end(m_args); }
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    // Conversions that were stored, or -1 where the input ends before the first conversion.
    int run(const typename Source::Unit* format);

private:
    using Unit = typename Source::Unit;
    static constexpr bool isWide = sizeof(Unit) == sizeof(wchar_t);

    // One unit is looked at before it is taken, so the one behind a match stays in the source.
    int peek() {
        if (!m_peeked) {
            m_next = m_source.get();
            m_peeked = true;
        }
        return m_next;
    }
    int take() {
        const int unit = peek();
        m_peeked = false;
        ++m_taken;
        return unit;
    }
    void giveBack() {
        if (m_peeked && m_next != atEnd) m_source.unget(m_next);
        m_peeked = false;
    }
    void skipBlanks() {
        while (isBlank(peek(), isWide)) take();
    }

    Outcome runItems(const Unit* format);
    Outcome literal(int unit);
    Outcome conversion(const Unit*& at);
    void readOptions(const Unit*& at, Options& options);
    Set<Unit> readSet(const Unit*& at);
    Outcome convert(const Unit*& at, int letter, Options options);

    Outcome integer(const Options& options, int base, bool isSigned, bool prefixAllowed);
    Outcome pointer(Options options);
    Outcome floating(const Options& options);
    bool floatingToken(int width, std::string& token);
    template <class Accept>
    Outcome text(const Options& options, bool wideText, bool terminated, Accept accept);
    template <class To, class Accept>
    Outcome textInto(To* to, std::size_t size, int width, bool terminated, Accept accept);

    void store(const Options& options, bool isSigned, std::uint64_t value);
    template <class Value>
    void storeAs(std::uint64_t value) {
        *va_arg(m_args, Value*) = static_cast<Value>(value);
    }
    // A long has 32-bit values whatever its width.
    void storeLong(bool isSigned, std::uint64_t value) {
        *va_arg(m_args, long*) =
            isSigned ? static_cast<long>(static_cast<std::int32_t>(value)) : static_cast<long>(value & UINT32_MAX);
    }

    Source m_source;
    std::va_list m_args;
    int m_next = atEnd;
    bool m_peeked = false;
    int m_taken = 0;
    int m_stored = 0;
    bool m_anyMatched = false;
};

template <class Source>
int Scanner<Source>::run(const Unit* format) {
    const Outcome outcome = runItems(format);
    giveBack();
    return outcome == Outcome::ended && !m_anyMatched ? -1 : m_stored;
}

template <class Source>
Outcome Scanner<Source>::runItems(const Unit* format) {
    Outcome outcome = Outcome::matched;
    while (*format != 0 && outcome == Outcome::matched) {
        const int unit = valueOf(*format++);
        if (isBlank(unit, isWide)) {
            skipBlanks();
        } else if (unit != '%') {
            outcome = literal(unit);
        } else if (*format == '%') {
            ++format;
            skipBlanks();
            outcome = literal('%');
        } else {
            outcome = conversion(format);
        }
    }
    return outcome;
}

template <class Source>
Outcome Scanner<Source>::literal(int unit) {
    if (peek() == atEnd) return Outcome::ended;
    if (peek() != unit) return Outcome::failed;
    take();
    return Outcome::matched;
}

template <class Source>
Outcome Scanner<Source>::conversion(const Unit*& at) {
    Options options;
    readOptions(at, options);
    const int letter = valueOf(*at);
    if (letter == 0) return Outcome::failed;
    ++at;
    if (letter == 'n') {
        if (!options.suppressed) store(options, true, static_cast<std::uint64_t>(m_taken));
        return Outcome::matched;
    }
    if (letter != 'c' && letter != 'C' && letter != '[') skipBlanks();
    if (peek() == atEnd) return Outcome::ended;

    const Outcome outcome = convert(at, letter, options);
    if (outcome == Outcome::matched) {
        m_anyMatched = true;
        if (!options.suppressed) ++m_stored;
    }
    return outcome;
}

template <class Source>
void Scanner<Source>::readOptions(const Unit*& at, Options& options) {
    if (*at == '*') {
        options.suppressed = true;
        ++at;
    }
    for (; *at >= '0' && *at <= '9'; ++at) {
        const int digit = *at - '0';
        options.width = options.width > (INT_MAX - digit) / 10 ? INT_MAX : options.width * 10 + digit;
    }
    for (;; ++at) {
        switch (*at) {
            case 'h':
                options.bits = at[1] == 'h' ? 8 : 16;
                options.text = Text::narrow;
                if (at[1] == 'h') ++at;
                break;
            case 'l':
                options.isLong = true;
                options.isDouble = true;
                options.text = Text::wide;
                if (at[1] == 'l') {
                    ++at;
                    options.bits = 64;
                }
                break;
            case 'L': options.isDouble = true; break;
            case 'w': options.text = Text::wide; break;
            case 'j':
            case 'z':
            case 't': options.bits = 64; break;
            case 'I':
                options.bits = at[1] == '3' && at[2] == '2' ? 32 : 64;
                if ((at[1] == '6' && at[2] == '4') || options.bits == 32) at += 2;
                break;
            default: return;
        }
    }
}

// A closing bracket that comes first is one of the set; a set that is never closed reaches to the format's end.
template <class Source>
Set<typename Source::Unit> Scanner<Source>::readSet(const Unit*& at) {
    Set<Unit> set{at, at, *at == '^'};
    if (set.negated) set.begin = ++at;
    if (*at == ']') ++at;
    while (*at != 0 && *at != ']') ++at;
    set.end = at;
    if (*at != 0) ++at;
    return set;
}

template <class Source>
Outcome Scanner<Source>::convert(const Unit*& at, int letter, Options options) {
    const bool likeFormat = options.text == Text::plain ? isWide : options.text == Text::wide;
    const bool unlikeFormat = options.text == Text::plain ? !isWide : options.text == Text::wide;
    const int width = options.width > 0 ? options.width : letter == 'c' || letter == 'C' ? 1 : INT_MAX;
    const auto any = [](int) { return true; };
    const auto notBlank = [](int unit) { return !isBlank(unit, isWide); };
    options.width = width;
    switch (letter) {
        case 'd': return integer(options, 10, true, false);
        case 'i': return integer(options, 0, true, true);
        case 'u': return integer(options, 10, false, false);
        case 'o': return integer(options, 8, false, false);
        case 'x':
        case 'X': return integer(options, 16, false, true);
        case 'p': return pointer(options);
        case 'e':
        case 'E':
        case 'f':
        case 'g':
        case 'G': return floating(options);
        case 's': return text(options, likeFormat, true, notBlank);
        case 'S': return text(options, unlikeFormat, true, notBlank);
        case 'c': return text(options, likeFormat, false, any);
        case 'C': return text(options, unlikeFormat, false, any);
        case '[': {
            const Set<Unit> set = readSet(at);
            return text(options, likeFormat, true, [&](int unit) { return set.contains(unit); });
        }
        default: return Outcome::failed;
    }
}

// The digits wrap around at 64 bits, and the caller's variable takes the low ones.
template <class Source>
Outcome Scanner<Source>::integer(const Options& options, int base, bool isSigned, bool prefixAllowed) {
    int width = options.width;
    const auto takeOne = [&] {
        --width;
        return take();
    };
    const bool negative = peek() == '-';
    if (negative || peek() == '+') takeOne();
    bool anyDigit = false;
    if (prefixAllowed && width > 0 && peek() == '0') {
        takeOne();
        anyDigit = width == 0 || (peek() | 0x20) != 'x';
        if (anyDigit && base == 0) base = 8;
        if (!anyDigit) {
            takeOne();
            base = 16;
        }
    }
    if (base == 0) base = 10;
    std::uint64_t value = 0;
    while (width > 0 && digitValue(peek()) < base) {
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digitValue(takeOne()));
        anyDigit = true;
    }
    if (!anyDigit) return Outcome::failed;
    if (!options.suppressed) store(options, isSigned, negative ? 0 - value : value);
    return Outcome::matched;
}

template <class Source>
Outcome Scanner<Source>::pointer(Options options) {
    options.bits = CHAR_BIT * sizeof(void*);
    return integer(options, 16, false, false);
}

template <class Source>
void Scanner<Source>::store(const Options& options, bool isSigned, std::uint64_t value) {
    switch (options.bits) {
        case 8: storeAs<std::uint8_t>(value); break;
        case 16: storeAs<std::uint16_t>(value); break;
        case 64: storeAs<std::uint64_t>(value); break;
        default: options.isLong ? storeLong(isSigned, value) : storeAs<std::uint32_t>(value);
    }
}

// Whether a number that its type cannot hold is too large for it, rather than too small.
bool isLarge(const std::string& token) {
    const std::size_t mark = std::min(token.find('e'), token.size());
    const std::size_t point = std::min(token.find('.'), mark);
    std::int64_t exponent = 0;
    if (mark < token.size()) {
        const char* const digits = token.data() + mark + 1 + (token[mark + 1] == '+');
        if (std::from_chars(digits, token.data() + token.size(), exponent).ec == std::errc::result_out_of_range)
            exponent = *digits == '-' ? INT64_MIN / 2 : INT64_MAX / 2;
    }
    const auto firstDigit = static_cast<std::int64_t>(token.find_first_of("123456789"));
    return static_cast<std::int64_t>(point) - firstDigit + exponent > 0;
}

template <class Value>
Value toNumber(const std::string& token) {
    Value value = 0;
    if (std::from_chars(token.data(), token.data() + token.size(), value).ec == std::errc::result_out_of_range) {
        value = isLarge(token) ? std::numeric_limits<Value>::infinity() : 0;
        if (token[0] == '-') value = -value;
    }
    return value;
}

template <class Source>
Outcome Scanner<Source>::floating(const Options& options) {
    std::string token;
    if (!floatingToken(options.width, token)) return Outcome::failed;
    if (options.suppressed) return Outcome::matched;
    if (options.isDouble) {
        *va_arg(m_args, double*) = toNumber<double>(token);
    } else {
        *va_arg(m_args, float*) = toNumber<float>(token);
    }
    return Outcome::matched;
}

// Takes what reads like a number; false where it breaks off. The exponent's mark is e, E, d or D.
template <class Source>
bool Scanner<Source>::floatingToken(int width, std::string& token) {
    const auto takeOne = [&] {
        --width;
        return take();
    };
    const auto takeInto = [&] { token += static_cast<char>(takeOne()); };
    const auto takeDigits = [&] {
        const std::size_t before = token.size();
        while (width > 0 && peek() >= '0' && peek() <= '9') takeInto();
        return token.size() > before;
    };
    if (peek() == '-') {
        takeInto();
    } else if (peek() == '+') {
        takeOne();
    }
    bool anyDigit = takeDigits();
    if (width > 0 && peek() == '.') {
        takeInto();
        anyDigit = takeDigits() || anyDigit;
    }
    if (!anyDigit) return false;
    const int letter = width > 0 ? peek() | 0x20 : 0;
    if (letter != 'e' && letter != 'd') return true;
    takeOne();
    token += 'e';
    if (width > 0 && (peek() == '+' || peek() == '-')) takeInto();
    return takeDigits();
}

template <class Source>
template <class Accept>
Outcome Scanner<Source>::text(const Options& options, bool wideText, bool terminated, Accept accept) {
    if (options.suppressed) return textInto<char>(nullptr, 0, options.width, terminated, accept);
    void* const to = va_arg(m_args, void*);
    const std::size_t size = va_arg(m_args, unsigned int);
    return wideText ? textInto(static_cast<wchar_t*>(to), size, options.width, terminated, accept)
                    : textInto(static_cast<char*>(to), size, options.width, terminated, accept);
}

void storeUnit(wchar_t& to, int unit) { to = static_cast<wchar_t>(unit); }
void storeUnit(char& to, int unit) { to = static_cast<char>(unit <= 0xFF ? unit : '?'); }

// A unit for which there is no room is taken all the same, and the text becomes empty.
template <class Source>
template <class To, class Accept>
Outcome Scanner<Source>::textInto(To* to, std::size_t size, int width, bool terminated, Accept accept) {
    std::size_t count = 0;
    for (; width > 0 && peek() != atEnd && accept(peek()); --width, ++count) {
        const int unit = take();
        if (to == nullptr) continue;
        if (count + terminated >= size) {
            if (size > 0) *to = 0;
            return Outcome::failed;
        }
        storeUnit(to[count], unit);
    }
    if (to != nullptr && terminated && size > 0) to[count] = 0;
    return count > 0 ? Outcome::matched : Outcome::failed;
}

template <class Source>
int scan(Source source, const typename Source::Unit* format, std::va_list args) {
    return Scanner<Source>(source, args).run(format);
}

int refuse() {
    errno = EINVAL;
    return -1;
}

}  // namespace

int sscanf_s(const char* text, const char* format, ...) {
    if (text == nullptr || format == nullptr) return refuse();
    std::va_list args;
    va_start(args, format);
    const int count = scan(TextSource<char>(text), format, args);
    va_end(args);
    return count;
}

int swscanf_s(const wchar_t* text, const wchar_t* format, ...) {
    if (text == nullptr || format == nullptr) return refuse();
    std::va_list args;
    va_start(args, format);
    const int count = scan(TextSource<wchar_t>(text), format, args);
    va_end(args);
    return count;
}

int fwscanf_s(std::FILE* stream, const wchar_t* format, ...) {
    if (stream == nullptr || format == nullptr) return refuse();
    std::va_list args;
    va_start(args, format);
    const int count = scan(StreamSource(stream), format, args);
    va_end(args);
    return count;
}
