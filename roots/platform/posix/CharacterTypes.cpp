#include "CharacterTypes.h"

#include <roots/platform/Win32.h>

#include "CharacterTables.h"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <iterator>

namespace platform {
namespace {

// A set of units, one bit each.
struct UnitSet {
    std::uint64_t words[1024] = {};

    template <std::size_t Count>
    explicit constexpr UnitSet(const UnitRun (&runs)[Count]) {
        for (const UnitRun& run : runs) {
            for (unsigned word = run.first / 64u; word <= run.last / 64u; ++word) {
                std::uint64_t bits = ~std::uint64_t{0};
                if (word == run.first / 64u) bits &= ~std::uint64_t{0} << (run.first % 64u);
                if (word == run.last / 64u) bits &= ~std::uint64_t{0} >> (63u - run.last % 64u);
                words[word] |= bits;
            }
        }
    }

    constexpr bool has(unsigned short unit) const noexcept { return words[unit / 64u] >> (unit % 64u) & 1u; }
};

constexpr UnitSet kLetters(kLetterRuns);
constexpr UnitSet kDigits(kDigitRuns);

// What to add to a unit for its other case. Few of the 256 blocks of 256 units have letters of two cases; block 0 here
// is the one that all others share.
struct CaseTable {
    std::uint8_t block[256] = {};
    std::uint16_t distance[20][256] = {};

    explicit constexpr CaseTable(Case to) {
        std::uint8_t used = 0;
        for (const CaseRun& run : kCaseRuns) {
            for (unsigned lower = run.first; lower <= run.last; lower += run.step) {
                const unsigned upper = lower + static_cast<unsigned>(run.toUpper);
                const unsigned from = (to == Case::eUpper ? lower : upper) & 0xFFFFu;
                std::uint8_t& at = block[from / 256];
                if (at == 0) at = ++used;
                const unsigned other = to == Case::eUpper ? upper : lower;
                distance[at][from % 256] = static_cast<std::uint16_t>(other - from);
            }
        }
    }

    constexpr wchar_t of(wchar_t unit) const noexcept {
        const auto u = static_cast<std::uint16_t>(unit);
        return static_cast<wchar_t>(u + distance[block[u / 256]][u % 256]);
    }
};

constexpr CaseTable kToUpper(Case::eUpper);
constexpr CaseTable kToLower(Case::eLower);

// The ANSI code page, asked byte by byte.
struct AnsiTable {
    char upper[256], lower[256];
    bool lead[256];

    AnsiTable() {
        for (int i = 0; i < 256; ++i) {
            const char pair[2] = {static_cast<char>(i), 'A'};
            wchar_t wide[4] = {};
            lead[i] = i >= 0x80 && MultiByteToWideChar(CP_ACP, 0, pair, 2, wide, 4) == 1;
            const bool single = !lead[i] && MultiByteToWideChar(CP_ACP, 0, pair, 1, wide, 4) == 1;
            upper[i] = single ? byteOf(kToUpper.of(wide[0]), pair[0]) : pair[0];
            lower[i] = single ? byteOf(kToLower.of(wide[0]), pair[0]) : pair[0];
        }
    }

    static char byteOf(wchar_t unit, char otherwise) {
        char bytes[8];
        const int count = WideCharToMultiByte(CP_ACP, 0, &unit, 1, bytes, 8, nullptr, nullptr);
        return count == 1 && bytes[0] != '?' ? bytes[0] : otherwise;
    }
};

const AnsiTable& ansi() {
    static const AnsiTable table;
    return table;
}

std::size_t index(char byte) { return static_cast<unsigned char>(byte); }

}  // namespace

wchar_t inCase(Case to, wchar_t unit) noexcept { return (to == Case::eUpper ? kToUpper : kToLower).of(unit); }

void changeCase(Case to, wchar_t* text, std::size_t length) noexcept {
    const CaseTable& table = to == Case::eUpper ? kToUpper : kToLower;
    for (std::size_t i = 0; i < length; ++i) text[i] = table.of(text[i]);
}

void changeCase(Case to, char* text, std::size_t length) noexcept {
    const AnsiTable& page = ansi();
    const char* const table = to == Case::eUpper ? page.upper : page.lower;
    for (std::size_t i = 0; i < length; ++i) {
        if (page.lead[index(text[i])])
            ++i;
        else
            text[i] = table[index(text[i])];
    }
}

bool isLeadByte(char byte) noexcept { return index(byte) >= 0x80 && ansi().lead[index(byte)]; }

bool isBlank(wchar_t unit) noexcept {
    if (unit < 0x80) return unit == L' ' || (unit >= L'\t' && unit <= L'\r');
    return std::find(std::begin(kBlanks), std::end(kBlanks), unit) != std::end(kBlanks);
}

int digitValue(wchar_t unit) noexcept {
    if (unit < 0x80) return unit >= L'0' && unit <= L'9' ? unit - L'0' : -1;
    const auto* zero = std::upper_bound(std::begin(kZeros), std::end(kZeros), unit);
    if (zero == std::begin(kZeros) || unit - zero[-1] > 9) return -1;
    return unit - zero[-1];
}

bool localeChosen() noexcept {
    const char* name = std::setlocale(LC_CTYPE, nullptr);
    return name != nullptr && std::strcmp(name, "C") != 0 && std::strcmp(name, "POSIX") != 0;
}

}  // namespace platform

namespace crt {

int iswalpha(unsigned short unit) { return platform::kLetters.has(unit); }

int iswdigit(unsigned short unit) { return platform::kDigits.has(unit); }

int iswalnum(unsigned short unit) { return platform::kLetters.has(unit) || platform::kDigits.has(unit); }

}  // namespace crt
