// The tables come from the C library's decoders. Those know the standards; Windows fills what the standards leave open
// and differs in some characters. The differences are the tables of this file, and where a character has several
// pairs, this file says which one Windows takes on the way back. Everything else on the way back is the inverse.
#include "CodePages.h"

#include <iconv.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <mutex>

namespace {

using Byte = unsigned char;

struct Range {
    Byte first, last;
};

struct Page {
    unsigned number;
    wchar_t bad;     // for bad pairs and lone lead bytes
    wchar_t spares;  // the bytes from A0 on that stand for nothing get private units from here on, in their order
    Range leads[3];
};

const Page knownPages[] = {
    {1252, 0, 0, {}},  // the usual one is found first
    {874, 0, 0xF8C1, {}},
    {932, 0x30FB, 0xF8F0, {{0x81, 0x9F}, {0xE0, 0xFC}}},
    {936, '?', 0xF8F5, {{0x81, 0xFE}}},
    {949, '?', 0xF8F7, {{0x81, 0xFE}}},
    {950, '?', 0xF8F8, {{0x81, 0xFE}}},
    {1250, 0, 0, {}},
    {1251, 0, 0, {}},
    {1253, 0, 0xF8F9, {}},
    {1254, 0, 0, {}},
    {1255, 0, 0xF88D, {}},
    {1256, 0, 0, {}},
    {1257, 0, 0xF8FC, {}},
    {1258, 0, 0, {}},
    {1361, '?', 0xF8EC, {{0x84, 0xD3}, {0xD8, 0xDE}, {0xE0, 0xF9}}},
};

// 1252 from 80 on; the rest is Latin-1. The default page works without any converter of the C library.
const wchar_t latin1Exceptions[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                      0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

// Pairs that count up: row by row, in each the trail bytes of the first range, then those of the second.
struct Area {
    unsigned page;
    Range leads;
    Range trails, moreTrails;
    wchar_t first;
};

constexpr Range none{1, 0};

// The users' own characters, from U+E000 on.
const Area userAreas[] = {
    {932, {0xF0, 0xF9}, {0x40, 0x7E}, {0x80, 0xFC}, 0xE000}, {936, {0xAA, 0xAF}, {0xA1, 0xFE}, none, 0xE000},
    {936, {0xF8, 0xFE}, {0xA1, 0xFE}, none, 0xE234},         {936, {0xA1, 0xA7}, {0x40, 0x7E}, {0x80, 0xA0}, 0xE4C6},
    {949, {0xC9, 0xC9}, {0xA1, 0xFE}, none, 0xE000},         {949, {0xFE, 0xFE}, {0xA1, 0xFE}, none, 0xE05E},
    {950, {0xFA, 0xFE}, {0x40, 0x7E}, {0xA1, 0xFE}, 0xE000}, {950, {0x8E, 0xA0}, {0x40, 0x7E}, {0xA1, 0xFE}, 0xE311},
    {950, {0x81, 0x8D}, {0x40, 0x7E}, {0xA1, 0xFE}, 0xEEB8}, {1361, {0xD8, 0xD8}, {0x31, 0x7E}, {0x91, 0xFE}, 0xE000},
};

struct Run {
    std::uint16_t pair;
    std::uint16_t count;
};

// 936: the holes between the characters of the standard are private units, counted on from U+E766.
const Run holesOf936[] = {
    {0xA2AB, 6},  {0xA2E3, 2},  {0xA2EF, 2},  {0xA2FD, 2},  {0xA4F4, 11}, {0xA5F7, 8},  {0xA6B9, 8},
    {0xA6D9, 7},  {0xA6EC, 2},  {0xA6F3, 1},  {0xA6F6, 9},  {0xA7C2, 15}, {0xA7F2, 13}, {0xA896, 11},
    {0xA8BC, 1},  {0xA8BF, 1},  {0xA8C1, 4},  {0xA8EA, 21}, {0xA958, 1},  {0xA95B, 1},  {0xA95D, 3},
    {0xA989, 13}, {0xA997, 13}, {0xA9F0, 15}, {0xD7FA, 5},  {0xFE50, 47}, {0xFE80, 33},
};

// 1361: a pair is 1, then five bits each for the first consonant, the vowel and the last consonant of a syllable. With
// two of them blank it is that letter alone, for which Windows has the joining letters from U+1100 on. These are the
// five bits of each letter in the order of its units, and those of a blank.
const Byte blankFirst = 1, blankVowel = 2, blankLast = 1;
const Byte firstLetters[] = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
const Byte vowels[] = {3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15, 18, 19, 20, 21, 22, 23, 26, 27, 28, 29};
const Byte lastLetters[] = {2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                            16, 17, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29};

// 1361: DAD4 and on, the old letters, joining ones as well.
const wchar_t oldLetters[] = {0x115F, 0x1114, 0x1115, 0x11C7, 0x11C8, 0x11CC, 0x11CE, 0x11D3, 0x11D7, 0x11D9, 0x111C,
                              0x11DD, 0x11DF, 0x111D, 0x111E, 0x1120, 0x1122, 0x1123, 0x1127, 0x1128, 0x112B, 0x112C,
                              0x112D, 0x112E, 0x112F, 0x1132, 0x1136, 0x1140, 0x1147, 0x114C, 0x1145, 0x1146, 0x1157,
                              0x1158, 0x1159, 0x1184, 0x1185, 0x1188, 0x1191, 0x1192, 0x1194, 0x119E, 0x11A1};

// Pairs that Windows reads but never writes: their characters stand in the page a second time.
const struct {
    unsigned page;
    std::uint16_t first, last;
} readOnly[] = {
    {932, 0xED40, 0xEEFC},  // NEC's selection of IBM's characters, which are written as FA40 and on
    {950, 0xA2A4, 0xA2A7},  // double lines, written as F9F9 F9E9 F9EA F9EB
    {950, 0xA2CC, 0xA2CC},  // the ideographs for ten and thirty among the numerals,
    {950, 0xA2CE, 0xA2CE},  // written as A451 and A4CA
};

// One decoder of the C library.
class Decoder {
public:
    explicit Decoder(unsigned page) noexcept {
        char name[16];
        std::snprintf(name, sizeof name, "CP%u", page);
        m_handle = iconv_open("UTF-16LE", name);
    }
    ~Decoder() {
        if (works()) iconv_close(m_handle);
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    bool works() const noexcept { return m_handle != reinterpret_cast<iconv_t>(-1); }

    // The unit of these bytes, or 0 where they are not one character of the page.
    wchar_t unit(char* bytes, std::size_t count) noexcept {
        Byte out[8];
        char* to = reinterpret_cast<char*>(out);
        std::size_t room = sizeof out;
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        if (iconv(m_handle, &bytes, &count, &to, &room) == static_cast<std::size_t>(-1)) return 0;
        // Letters that a mark may follow are held back until it is clear that none does.
        iconv(m_handle, nullptr, nullptr, &to, &room);
        return room == sizeof out - 2 ? static_cast<wchar_t>(out[0] | out[1] << 8) : L'\0';
    }

private:
    iconv_t m_handle;
};

bool decodeSingles(CodePage& table, const Page& page) noexcept {
    for (unsigned byte = 0; byte < 256; ++byte) table.single[byte] = static_cast<wchar_t>(byte);
    if (page.number == 1252) {
        for (unsigned i = 0; i < 32; ++i) table.single[0x80 + i] = latin1Exceptions[i];
        table.latin1 = true;
        return true;
    }
    Decoder decoder(page.number);
    if (!decoder.works()) return false;
    wchar_t spare = page.spares;
    for (unsigned byte = 0x80; byte < 256; ++byte) {
        char text = static_cast<char>(byte);
        if (table.lead[byte]) continue;
        if (const wchar_t unit = decoder.unit(&text, 1))
            table.single[byte] = unit;
        else if (page.number == 1255 && byte == 0xCA)
            table.single[byte] = 0x05BA;
        else if (byte >= 0xA0)
            table.single[byte] = spare++;
    }
    return true;
}

bool decodePairs(CodePage& table, unsigned page) noexcept {
    Decoder decoder(page);
    if (!decoder.works()) return false;
    for (unsigned lead = 0; lead < 256; ++lead) {
        for (unsigned trail = 1; table.lead[lead] && trail < 256; ++trail) {
            char pair[] = {static_cast<char>(lead), static_cast<char>(trail)};
            table.pairs[lead][trail] = decoder.unit(pair, 2);
        }
    }
    return true;
}

void setPair(CodePage& table, unsigned pair, wchar_t unit) noexcept { table.pairs[pair >> 8][pair & 0xFF] = unit; }

void addUserAreas(CodePage& table, unsigned page) noexcept {
    for (const Area& area : userAreas) {
        if (area.page != page) continue;
        wchar_t unit = area.first;
        for (unsigned lead = area.leads.first; lead <= area.leads.last; ++lead)
            for (const Range& trails : {area.trails, area.moreTrails})
                for (unsigned trail = trails.first; trail <= trails.last; ++trail) table.pairs[lead][trail] = unit++;
    }
}

void fillHolesOf936(CodePage& table) noexcept {
    wchar_t unit = 0xE766;
    for (const Run& run : holesOf936)
        for (unsigned i = 0; i < run.count; ++i) setPair(table, run.pair + i, unit++);
}

unsigned syllable(unsigned first, unsigned vowel, unsigned last) noexcept {
    return 0x8000u | first << 10 | vowel << 5 | last;
}

void setLettersOf1361(CodePage& table) noexcept {
    wchar_t unit = 0x1100;
    for (const Byte letter : firstLetters) setPair(table, syllable(letter, blankVowel, blankLast), unit++);
    unit = 0x1161;
    for (const Byte letter : vowels) setPair(table, syllable(blankFirst, letter, blankLast), unit++);
    unit = 0x11A8;
    for (const Byte letter : lastLetters) setPair(table, syllable(blankFirst, blankVowel, letter), unit++);
    unsigned pair = 0xDAD4;
    for (const wchar_t letter : oldLetters) setPair(table, pair++, letter);
    setPair(table, 0xD9E8, 0);
}

bool isReadOnly(unsigned page, unsigned pair) noexcept {
    for (const auto& range : readOnly)
        if (range.page == page && range.first <= pair && pair <= range.last) return true;
    return false;
}

// The way back. The first of several pairs wins, and single bytes win over pairs. Pairs that stand for nothing get the
// sign for bad bytes only then, so that the sign itself goes back to the pair it really has.
void invert(CodePage& table, unsigned page) noexcept {
    for (unsigned byte = 0; byte < 256; ++byte)
        if (!table.lead[byte]) table.bytes[table.single[byte]] = static_cast<std::uint16_t>(byte);
    if (!table.pairs) return;
    for (unsigned pair = 0; pair < 0x10000; ++pair) {
        wchar_t& unit = table.pairs[pair >> 8][pair & 0xFF];
        if (unit && !table.bytes[unit] && !isReadOnly(page, pair)) table.bytes[unit] = static_cast<std::uint16_t>(pair);
        if (!unit) unit = table.bad;
    }
}

bool fill(CodePage& table, const Page& page) noexcept {
    table.bad = page.bad;
    for (const Range& leads : page.leads)
        for (unsigned byte = leads.first; leads.first && byte <= leads.last; ++byte) table.lead[byte] = true;
    if (!decodeSingles(table, page)) return false;
    if (table.pairs) {
        if (!decodePairs(table, page.number)) return false;
        addUserAreas(table, page.number);
        if (page.number == 936) fillHolesOf936(table);
        if (page.number == 1361) setLettersOf1361(table);
    }
    invert(table, page.number);
    for (unsigned byte = 0; byte < 256; ++byte)
        if (table.lead[byte]) table.single[byte] = table.bad;
    return true;
}

// From the C library's heap rather than operator new: a conversion never throws.
CodePage* build(const Page& page) noexcept {
    CodePage* table = static_cast<CodePage*>(std::calloc(1, sizeof(CodePage)));
    if (!table) return nullptr;
    const bool hasPairs = page.leads[0].first != 0;
    if (hasPairs) table->pairs = static_cast<wchar_t(*)[256]>(std::calloc(256, sizeof *table->pairs));
    if (hasPairs == (table->pairs != nullptr) && fill(*table, page)) return table;
    std::free(table->pairs);
    std::free(table);
    return nullptr;
}

std::atomic<const CodePage*> builtPages[std::size(knownPages)];

// Where a page stands among the known ones, or their count.
std::size_t indexOf(unsigned number) noexcept {
    std::size_t index = 0;
    while (index < std::size(knownPages) && knownPages[index].number != number) ++index;
    return index;
}

}  // namespace

bool isCodePage(unsigned number) noexcept { return indexOf(number) < std::size(knownPages); }

const CodePage* findCodePage(unsigned number) noexcept {
    const std::size_t index = indexOf(number);
    if (index == std::size(knownPages)) return nullptr;
    if (const CodePage* built = builtPages[index].load(std::memory_order_acquire)) return built;

    static std::mutex building;
    const std::lock_guard<std::mutex> lock(building);
    const CodePage* table = builtPages[index].load(std::memory_order_relaxed);
    if (!table) {
        table = build(knownPages[index]);
        builtPages[index].store(table, std::memory_order_release);
    }
    return table;
}
