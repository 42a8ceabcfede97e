// Takes the first line for a format and the rest for its arguments: 8 bytes a number, texts up to a zero. What must
// hold, in both widths:
// - the form that counts says how long the text is that the form with a size prints;
// - a text that does not fit is refused and leaves an empty one; cut to a size it is the beginning of the whole;
// - a format that is refused is refused by each form, and leaves an empty text;
// - nothing is written past the size, no text is read past its terminator;
// - the wide form gives the same characters as the narrow one, with %s and %S, %c and %C changed over;
// - integers without a size of Windows' own, and texts without one that are not filled up with zeros, look as the C
//   library shows them.
// Formats are cut off at 500 characters, and before the conversion that asks for a fifth argument. Numbers for widths
// and precisions may ask for any size; texts above 64 KB are only counted and cut.
#include <roots/platform/Win32.h>
#include <tests/support/Units.h>

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <string_view>
#include <variant>

namespace {

constexpr std::size_t kMostArguments = 4, kLongestFormat = 500;
constexpr int kLongestPrinted = 0x10000;

void require(bool holds) {
    if (!holds) std::abort();
}

// A format and what it asks for.
class Format {
public:
    Format(const std::string& text, std::string_view values) : narrow(text), swapped(text), m_values(values) {
        static const std::regex conversion(
            "%(?:%|([-0+ #]*)(\\*|\\d*)(?:\\.(\\*|\\d*))?"                    // flags, width, precision
            "((?:I64|I32|[hlLwj])*)([ztI](?:I64|I32|[hlLwjztI])*)?([^]?))");  // sizes, those of integers, letter
        for (std::sregex_iterator at(text.begin(), text.end(), conversion), end; at != end && narrow == text; ++at) {
            if (at->str() != "%%") ask(*at);
            if (arguments.size() > kMostArguments) narrow.resize(static_cast<std::size_t>(at->position()));
        }
        swapped.resize(narrow.size());
        arguments.resize(kMostArguments);
    }

    std::string narrow, swapped;  // for the forms of either width
    std::vector<std::variant<long long, double, const void*>> arguments;
    bool isPlain = true;  // means the same to the C library

private:
    void ask(const std::smatch& conversion) {
        for (const std::string& number : {conversion[2].str(), conversion[3].str()}) {
            if (number == "*") arguments.emplace_back(static_cast<long long>(take<short>()));
            if (number.size() > 9) isPlain = false;  // the C library refuses what no int can count
        }
        const std::string sizes = conversion[4], letter = conversion[6];
        const auto isOneOf = [&](std::string_view set) { return letter != "" && set.find(letter) != set.npos; };
        const bool isInteger = isOneOf("diuxXo"), zeros = conversion[1].str().find('0') != std::string::npos;
        isPlain = isPlain && !conversion[5].matched &&
                  (isInteger ? sizes == "" || sizes == "h" || sizes == "hh" || sizes == "ll"
                             : sizes == "" && letter == "s" && !zeros);
        if (isInteger) arguments.emplace_back(take<long long>());
        if (conversion[5].matched) return;

        const std::size_t kind = sizes.find_last_of("hlLw");
        const bool isWide = kind == sizes.npos ? letter == "S" : sizes[kind] != 'h';
        if (isOneOf("sScC")) swapped[static_cast<std::size_t>(conversion.position(6))] ^= 0x20;
        if (isOneOf("sS")) arguments.emplace_back(isWide ? takeText(m_wideTexts) : takeText(m_texts));
        if (isOneOf("cC")) arguments.emplace_back(take<long long>() & 0x7F);
        if (isOneOf("p")) arguments.emplace_back(take<const void*>());
        if (isOneOf("eEfgGaA")) arguments.emplace_back(take<double>());
    }

    // Beyond the end of the values all are 0.
    template <class Number>
    Number take() {
        Number value{};
        m_values.remove_prefix(m_values.copy(reinterpret_cast<char*>(&value), sizeof value));
        return value;
    }

    // ASCII text in memory of just its size.
    template <class Unit>
    const void* takeText(std::vector<std::vector<Unit>>& texts) {
        std::string text(m_values.substr(0, m_values.find('\0')));
        m_values.remove_prefix(std::min(text.size() + 1, m_values.size()));
        for (char& c : text) c &= 0x7F;
        return texts.emplace_back(units<Unit>(text)).data();
    }

    std::string_view m_values;
    std::vector<std::vector<char>> m_texts;
    std::vector<std::vector<wchar_t>> m_wideTexts;
};

// Arguments may be had any number of times.
template <class Form, class... Values>
int run(std::va_list given, Form form, Values... values) {
    std::va_list args;
    va_copy(args, given);
    const int result = form(values..., args);
    va_end(args);
    return result;
}

// The length, -1 for a format that is refused and for a text that no int can count; and the text that is not too long.
template <class Unit, class Count, class Print, class Cut>
auto shown(const std::string& narrowFormat, std::va_list args, Count count, Print print, Cut cut) {
    const std::vector<Unit> format = units<Unit>(narrowFormat);
    const int length = run(args, count, format.data());
    std::u16string text;
    const bool isPrinted = length >= 0 && length <= kLongestPrinted;
    const std::size_t whole = isPrinted ? static_cast<std::size_t>(length) : 98;
    for (const std::size_t size : {whole + 1, std::max(whole, std::size_t{1}), whole / 2 + 1, std::size_t{1}}) {
        std::vector<Unit> to(size, Unit{'#'}), part = to;
        const int expected = length < static_cast<int>(size) ? length : -1;
        require(run(args, print, to.data(), size, format.data()) == expected && to[expected < 0 ? 0 : whole] == 0);
        require(run(args, cut, part.data(), size, _TRUNCATE, format.data()) == expected);
        require(length < 0 ? part[0] == 0 || part.back() == 0 : part[expected < 0 ? size - 1 : whole] == 0);
        if (isPrinted && size > whole) text.assign(to.begin(), to.end() - 1);
        if (isPrinted) require(std::equal(part.begin(), part.end() - 1, text.begin()));
    }
    return std::pair(length, text);
}

void check(const Format* format, ...) {
    std::va_list args;
    va_start(args, format);
    const auto [length, text] = shown<char>(format->narrow, args, _vscprintf, vsprintf_s, _vsnprintf_s);
    const auto wide = shown<wchar_t>(format->swapped, args, _vscwprintf, vswprintf_s, _vsnwprintf_s);
    require(wide == std::pair(length, text));
    std::vector<char> reference(text.size() + 1);
    if (format->isPlain && length == static_cast<int>(text.size())) {
        require(std::vsnprintf(reference.data(), reference.size(), format->narrow.c_str(), args) == length);
        require(std::equal(text.begin(), text.end(), reference.begin()));
    }
    va_end(args);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    std::string line(input.substr(0, std::min(input.find('\n'), size)));
    const std::string_view values = input.substr(std::min(line.size() + 1, size));
    for (char& c : line) c &= 0x7F;
    const Format format(line.substr(0, std::min(line.find('\0'), kLongestFormat)), values);
    const auto* const given = format.arguments.data();
    std::visit([&](auto... value) { check(&format, value...); }, given[0], given[1], given[2], given[3]);
    return 0;
}
