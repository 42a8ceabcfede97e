// Takes the first line for a format and the rest for its arguments: 8 bytes a number, texts up to a zero. What must
// hold, in both widths:
// - the form that counts says how long the text is that the form with a size prints;
// - a text that does not fit is refused and leaves an empty one; cut to a size it is the beginning of the whole;
// - a format that is refused is refused by each form, and leaves an empty text;
// - nothing is written past the size, no text is read past its terminator;
// - the wide form gives the same characters as the narrow one, with %s and %S, %c and %C changed over;
// - integers without a size of Windows' own, and texts without one that are not filled up with zeros, look as the C
//   library shows them.
// Formats of more than four arguments are cut off before the one that is too many. Numbers for widths and precisions
// may ask for any size; texts above 64 KB are only counted and cut.
#include <roots/platform/Win32.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace {

constexpr std::size_t kMostArguments = 4;
constexpr int kLongestPrinted = 0x10000;

using Argument = std::variant<long long, double, const void*>;

void require(bool holds) {
    if (!holds) std::abort();
}

// Hands out the values of the arguments. What it is asked for beyond its end is 0.
class Values {
public:
    explicit Values(std::string_view bytes) : m_bytes(bytes) {}

    template <class Number>
    Number number() {
        Number value{};
        const std::string_view bytes = take(sizeof value);
        std::memcpy(&value, bytes.data(), bytes.size());
        return value;
    }

    // ASCII text in memory of just its size.
    const void* text(bool isWide) {
        const std::string_view bytes = take(m_bytes.find('\0'));
        take(1);
        if (isWide) return copy<wchar_t>(bytes, m_wideTexts);
        return copy<char>(bytes, m_texts);
    }

private:
    std::string_view take(std::size_t size) {
        const std::string_view taken = m_bytes.substr(0, size);
        m_bytes.remove_prefix(taken.size());
        return taken;
    }

    template <class Unit>
    static const void* copy(std::string_view bytes, std::vector<std::unique_ptr<Unit[]>>& texts) {
        texts.emplace_back(new Unit[bytes.size() + 1]());
        for (std::size_t i = 0; i < bytes.size(); ++i) texts.back()[i] = static_cast<Unit>(bytes[i] & 0x7F);
        return texts.back().get();
    }

    std::string_view m_bytes;
    std::vector<std::unique_ptr<char[]>> m_texts;
    std::vector<std::unique_ptr<wchar_t[]>> m_wideTexts;
};

// A format and what it asks for, found by a reader of formats that knows no more than it must.
class Format {
public:
    Format(std::string_view text, Values& values) : m_text(text), m_values(values) {
        while (m_at < m_text.size() && readPiece()) {
        }
        m_narrow.assign(m_text.substr(0, m_at));
    }

    const std::string& narrow() const { return m_narrow; }
    const std::vector<Argument>& arguments() const { return m_arguments; }
    bool isPlainC() const { return m_plainC; }

    // The same for the wide forms, with its terminator.
    std::vector<wchar_t> wide() const {
        std::vector<wchar_t> text(m_narrow.c_str(), m_narrow.c_str() + m_narrow.size() + 1);
        for (const std::size_t at : m_letters) text[at] = static_cast<wchar_t>(text[at] ^ 0x20);
        return text;
    }

private:
    char next() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
    bool isNext(std::string_view set) const { return next() != '\0' && set.find(next()) != set.npos; }

    // A character or a conversion; false before one that needs too many arguments.
    bool readPiece() {
        const std::size_t start = m_at++, argumentsBefore = m_arguments.size();
        if (m_text[start] != '%') return true;
        if (next() == '%') {
            ++m_at;
            return true;
        }
        m_zeros = false;
        for (; isNext("-0+ #"); ++m_at) m_zeros = m_zeros || next() == '0';
        readNumber();
        if (next() == '.') ++m_at, readNumber();
        readSizes();
        if (next() != '\0') readLetter();
        if (m_arguments.size() <= kMostArguments) return true;
        m_arguments.resize(argumentsBefore);
        if (!m_letters.empty() && m_letters.back() >= start) m_letters.pop_back();
        m_at = start;
        return false;
    }

    void readNumber() {
        if (next() == '*') {
            ++m_at;
            m_arguments.emplace_back(static_cast<long long>(m_values.number<short>()));
        } else {
            const std::size_t start = m_at;
            while (isNext("0123456789")) ++m_at;
            if (m_at - start > 9) m_plainC = false;  // the C library refuses what no int can count
        }
    }

    void readSizes() {
        const std::size_t start = m_at;
        m_textIs = ' ';
        m_integersOnly = false;
        for (; isNext("hlLwjztI"); ++m_at) {
            if (isNext("hlLw")) m_textIs = next() == 'h' ? 'h' : 'w';
            const bool named = m_text.substr(m_at, 3) == "I64" || m_text.substr(m_at, 3) == "I32";
            if (named) m_at += 2;
            if (isNext("zt") || (next() == 'I' && !named)) m_integersOnly = true;
        }
        const std::string_view sizes = m_text.substr(start, m_at - start);
        if (sizes != "" && sizes != "h" && sizes != "hh" && sizes != "ll") m_plainC = false;
    }

    void readLetter() {
        const char letter = m_text[m_at++];
        const std::string_view integers = "diuxXo";
        if (integers.find(letter) != integers.npos) {
            m_arguments.emplace_back(m_values.number<long long>());
            return;
        }
        if (letter != 's' || m_textIs != ' ' || m_zeros) m_plainC = false;
        if (m_integersOnly) return;
        const bool isWide = m_textIs == ' ' ? letter == 'S' : m_textIs == 'w';
        if (letter == 's' || letter == 'S') m_arguments.emplace_back(m_values.text(isWide));
        if (letter == 'c' || letter == 'C') m_arguments.emplace_back(m_values.number<long long>() & 0x7F);
        if (letter == 'p') m_arguments.emplace_back(m_values.number<const void*>());
        if (std::string_view("eEfgGaA").find(letter) != std::string_view::npos)
            m_arguments.emplace_back(m_values.number<double>());
        if (std::string_view("sScC").find(letter) != std::string_view::npos) m_letters.push_back(m_at - 1);
    }

    std::string_view m_text;
    Values& m_values;
    std::size_t m_at = 0;
    char m_textIs = ' ';
    bool m_integersOnly = false;
    bool m_zeros = false;
    bool m_plainC = true;
    std::string m_narrow;
    std::vector<std::size_t> m_letters;
    std::vector<Argument> m_arguments;
};

int count(const char* format, std::va_list args) { return _vscprintf(format, args); }
int count(const wchar_t* format, std::va_list args) { return _vscwprintf(format, args); }

int print(char* to, std::size_t size, const char* format, std::va_list args) {
    return vsprintf_s(to, size, format, args);
}
int print(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list args) {
    return vswprintf_s(to, size, format, args);
}

int printCut(char* to, std::size_t size, const char* format, std::va_list args) {
    return _vsnprintf_s(to, size, _TRUNCATE, format, args);
}
int printCut(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list args) {
    return _vsnwprintf_s(to, size, _TRUNCATE, format, args);
}

// What the forms give for one format; arguments may be had any number of times.
template <class Unit>
class Forms {
public:
    Forms(const Unit* format, std::va_list args) : m_format(format) { va_copy(m_args, args); }
    ~Forms() { va_end(m_args); }
    Forms(const Forms&) = delete;
    Forms& operator=(const Forms&) = delete;

    // -1 for a format that is refused and for a text that no int can count.
    int length() const {
        return with([this](std::va_list args) { return count(m_format, args); });
    }

    // The text in memory of just its size; checks the sizes that are too small as well.
    std::vector<Unit> text(int length) const {
        const auto whole = static_cast<std::size_t>(std::max(length, 0));
        for (const std::size_t size : {std::size_t{1}, whole / 2 + 1, whole}) {
            if (size == 0 || size > kLongestPrinted || static_cast<int>(size) > length) continue;
            std::vector<Unit> small(size, Unit{'#'});
            require(printInto(small, print) == -1 && small[0] == 0);
        }
        std::vector<Unit> text(length <= kLongestPrinted ? whole + 1 : 99, Unit{'#'});
        require(printInto(text, print) == (length <= kLongestPrinted ? length : -1));
        require(length >= 0 && length <= kLongestPrinted ? text[whole] == 0 : text[0] == 0);
        checkCut(text, length);
        return text;
    }

private:
    using Printer = int (*)(Unit*, std::size_t, const Unit*, std::va_list);

    template <class Action>
    int with(Action action) const {
        std::va_list args;
        va_copy(args, m_args);
        const int result = action(args);
        va_end(args);
        return result;
    }

    int printInto(std::vector<Unit>& to, Printer printer) const {
        return with([&](std::va_list args) { return printer(to.data(), to.size(), m_format, args); });
    }

    void checkCut(const std::vector<Unit>& text, int length) const {
        for (const std::size_t size : {std::size_t{1}, text.size() / 2 + 1, text.size()}) {
            std::vector<Unit> cut(size, Unit{'#'});
            const int result = printInto(cut, printCut);
            require(result == (length < static_cast<int>(size) ? length : -1));
            if (length < 0) require(cut[0] == 0 || cut[size - 1] == 0);
            if (length >= 0) require(cut[std::min(size - 1, static_cast<std::size_t>(length))] == 0);
            if (length >= 0 && length <= kLongestPrinted) require(std::equal(cut.begin(), cut.end() - 1, text.begin()));
        }
    }

    const Unit* m_format;
    mutable std::va_list m_args;  // copied from, which the type does not see as reading
};

void check(const Format* format, ...) {
    std::va_list args;
    va_start(args, format);
    const std::vector<wchar_t> wideFormat = format->wide();
    const Forms<char> narrow(format->narrow().c_str(), args);
    const Forms<wchar_t> wide(wideFormat.data(), args);
    const int length = narrow.length();
    require(wide.length() == length);
    const std::vector<char> text = narrow.text(length);
    const std::vector<wchar_t> wideText = wide.text(length);
    require(length < 0 || length > kLongestPrinted ||
            std::equal(text.begin(), text.end(), wideText.begin(), wideText.end()));

    if (format->isPlainC() && length >= 0 && length <= kLongestPrinted) {
        std::vector<char> reference(text.size() + 1);
        require(std::vsnprintf(reference.data(), reference.size(), format->narrow().c_str(), args) == length);
        require(std::equal(text.begin(), text.end(), reference.begin()));
    }
    va_end(args);
}

// Turns the list of arguments into arguments.
template <class... Given>
void checkWith(const Format& format, Given... given) {
    if constexpr (sizeof...(given) < kMostArguments) {
        if (sizeof...(given) < format.arguments().size()) {
            std::visit([&](auto value) { checkWith(format, given..., value); }, format.arguments()[sizeof...(given)]);
            return;
        }
    }
    check(&format, given...);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    const std::string_view line = input.substr(0, input.find('\n'));
    Values values(input.substr(std::min(line.size() + 1, size)));
    std::string text(line);
    for (char& c : text) c = static_cast<char>(c & 0x7F);
    text.resize(std::min(text.find('\0'), text.size()));
    checkWith(Format(text, values));
    return 0;
}
