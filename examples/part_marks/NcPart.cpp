#include "NcPart.h"

#include <roots/files/BryFileAccess.h>
#include <roots/numeric/BryDouble.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

namespace {

constexpr long maxFileSize = 32 * 1024 * 1024;
constexpr double maxNumber = 1e9;
constexpr const wchar_t* knownCodes[] = {L"BO", L"SI", L"AK", L"IK", L"PU", L"KO",
                                         L"SC", L"TO", L"UE", L"PR", L"KA", L"EN"};

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t'; }
bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool isCapital(wchar_t c) { return c >= L'A' && c <= L'Z'; }
bool isNumberUnit(wchar_t c) { return isDigit(c) || c == L'.'; }
bool isLetter(wchar_t c) { return isCapital(c) || (c >= L'a' && c <= L'z') || c > 0x7F; }

// A stretch of the file's text.
struct Range {
    const wchar_t* begin;
    const wchar_t* end;

    bool isEmpty() const { return begin == end; }
    std::size_t length() const { return static_cast<std::size_t>(end - begin); }
    BryString text() const {
        std::vector<wchar_t> units(begin, end);
        units.push_back(0);
        return BryString(units.data());
    }
};

Range trimmed(Range range) {
    while (!range.isEmpty() && isBlank(*range.begin)) ++range.begin;
    while (!range.isEmpty() && isBlank(range.end[-1])) --range.end;
    return range;
}

struct Line : Range {
    int number;

    // A code of two characters at the start of the line, nothing but blanks behind it.
    bool isBlockCode() const {
        return length() >= 2 && isCapital(begin[0]) && (isCapital(begin[1]) || isDigit(begin[1])) &&
               trimmed({begin + 2, end}).isEmpty();
    }
    bool isCode(const wchar_t* code) const { return isBlockCode() && begin[0] == code[0] && begin[1] == code[1]; }
    // One of the codes that blocks have: in the header other words of two characters are texts.
    bool isKnownCode() const {
        const auto isThis = [this](const wchar_t* code) { return isCode(code); };
        return (isBlockCode() && isDigit(begin[1])) ||
               std::any_of(std::begin(knownCodes), std::end(knownCodes), isThis);
    }
    bool isMarkingCode() const { return isCode(L"SI") || (isBlockCode() && begin[0] == L'S' && isDigit(begin[1])); }
    bool isComment() const { return length() >= 2 && begin[0] == L'*' && begin[1] == L'*'; }
};

// The lines of a text, comments left out.
class Lines {
public:
    explicit Lines(const BryString& text) : m_next(text.getStringW()), m_end(m_next + text.length()) {
        constexpr wchar_t endOfDosText = 0x1A;
        m_end = std::find(m_next, m_end, endOfDosText);
        if (std::find(m_next, m_end, L'\n') == m_end) m_lineEnd = L'\r';
    }

    // False at the end of the text; line is then the last one.
    bool next(Line& line) {
        while (m_next != m_end) {
            const wchar_t* const lineEnd = std::find(m_next, m_end, m_lineEnd);
            line = Line{{m_next, lineEnd}, ++m_number};
            while (!line.isEmpty() && line.end[-1] == L'\r') --line.end;
            m_next = lineEnd == m_end ? m_end : lineEnd + 1;
            if (!line.isComment()) return true;
        }
        return false;
    }

private:
    const wchar_t* m_next;
    const wchar_t* m_end;
    wchar_t m_lineEnd = L'\n';
    int m_number = 0;
};

BryString quoted(Range range) {
    constexpr std::size_t shown = 40;
    const bool cut = range.length() > shown;
    if (cut) range.end = range.begin + shown;
    return BryString(L"\"") + range.text() + (cut ? L"...\"" : L"\"");
}

// An optional sign, digits, an optional point among them; at most 1e9.
bool parseNumber(Range range, double& value) {
    range = trimmed(range);
    const wchar_t* c = range.begin;
    if (c != range.end && (*c == L'+' || *c == L'-')) ++c;
    const auto digits = std::count_if(c, range.end, isDigit);
    const auto points = std::count(c, range.end, L'.');
    if (digits == 0 || points > 1 || digits + points != range.end - c) return false;
    value = range.text().toDouble();
    return value <= maxNumber && value >= -maxNumber;
}

// What a line of the header is, and what becomes of it.
enum class Kind {
    unread,  // not part of the content
    quantity,
    name,  // a text that must be there
    code,  // of the profile, as name
    text,
    lengths,  // a number, or two with a comma between them
    number,
    optionalNumber,  // may be blank, and all lines from the first of these on may be missing
    note,
};

struct HeaderLine {
    const wchar_t* name;
    Kind kind;
    BryString NcPart::*text = nullptr;
    double NcPart::*number = nullptr;
    BryProfTypeDSTVValues& (BryProfTypeDSTVValues::*setDimension)(const double&) = nullptr;
};

constexpr HeaderLine headerLines[] = {
    {L"order", Kind::unread},
    {L"drawing", Kind::unread},
    {L"phase", Kind::unread},
    {L"piece identification", Kind::unread},
    {L"steel quality", Kind::text, &NcPart::steel},
    {L"quantity", Kind::quantity},
    {L"profile", Kind::name, &NcPart::profile},
    {L"profile code", Kind::code},
    {L"length", Kind::lengths, nullptr, &NcPart::length},
    {L"profile height", Kind::number, nullptr, nullptr, &BryProfTypeDSTVValues::setH1},
    {L"flange width", Kind::number, nullptr, nullptr, &BryProfTypeDSTVValues::setB1},
    {L"flange thickness", Kind::number, nullptr, nullptr, &BryProfTypeDSTVValues::setTG},
    {L"web thickness", Kind::number, nullptr, nullptr, &BryProfTypeDSTVValues::setTS},
    {L"radius", Kind::number, nullptr, nullptr, &BryProfTypeDSTVValues::setR1},
    {L"weight per metre", Kind::number, nullptr, &NcPart::weightPerMetre},
    {L"painting surface per metre", Kind::optionalNumber},
    {L"web start cut angle", Kind::optionalNumber},
    {L"web end cut angle", Kind::optionalNumber},
    {L"flange start cut angle", Kind::optionalNumber},
    {L"flange end cut angle", Kind::optionalNumber},
    {L"first text line", Kind::note},
    {L"second text line", Kind::note},
    {L"third text line", Kind::note},
    {L"fourth text line", Kind::note},
};
constexpr int headerLineCount = static_cast<int>(sizeof headerLines / sizeof headerLines[0]);

// Whether all that must be there stands before line i.
bool mayHeaderEndAt(int i) {
    return i >= headerLineCount || headerLines[i].kind == Kind::optionalNumber || headerLines[i].kind == Kind::note;
}

// Whether line i of the header is a text of any words, be they like the code of a block.
bool isFreeText(int i) {
    if (i >= headerLineCount) return false;
    const Kind kind = headerLines[i].kind;
    return kind == Kind::unread || kind == Kind::name || kind == Kind::code || kind == Kind::text;
}

BryProfTypeDSTVValues::eDSTVType typeOfCode(const BryString& code) {
    BryProfTypeDSTVValues section;
    for (int i = BryProfTypeDSTVValues::eDSTV_I; i <= BryProfTypeDSTVValues::eDSTV_CSE; ++i) {
        section.setDSTVType(static_cast<BryProfTypeDSTVValues::eDSTVType>(i));
        if (section.getProftypeString() == code) return section.getDSTVType();
    }
    return BryProfTypeDSTVValues::eDSTV_SO;
}

// The text of a number as the nearest multiple of step, which is above 0. One with so many steps that no multiple is
// meant stays as it is.
BryString roundedText(Range number, double step) {
    constexpr double mostSteps = 2e9;
    double value = 0;
    if (!parseNumber(number, value) || value / step > mostSteps) return number.text();
    BryString text;
    return text.format(L"%.6f", BryDouble::round(value, 6, step));
}

// A line of a block of marking texts.
class MarkingLine {
public:
    explicit MarkingLine(Range line) : m_line(line), m_at(line.begin) {}

    // The text behind face, x with its reference, y, angle and letter height (the face may be missing; an r may
    // follow the height); empty at the line's end where the line has not that shape.
    Range text() {
        skipLetter();
        bool isShape = skipNumber();
        skipLetter();
        for (int i = 0; i < 3; ++i) isShape = isShape && skipNumber();
        if (isShape && m_at != m_line.end && *m_at == L'r') ++m_at;
        if (!isShape || m_at == m_line.end || !isBlank(*m_at)) return {m_line.end, m_line.end};
        return trimmed({m_at, m_line.end});
    }

private:
    void skipBlanks() {
        while (m_at != m_line.end && isBlank(*m_at)) ++m_at;
    }
    void skipLetter() {
        skipBlanks();
        if (m_at != m_line.end && isLetter(*m_at)) ++m_at;
    }
    bool skipNumber() {
        skipBlanks();
        if (m_at != m_line.end && (*m_at == L'+' || *m_at == L'-')) ++m_at;
        const wchar_t* const begin = m_at;
        while (m_at != m_line.end && isNumberUnit(*m_at)) ++m_at;
        return m_at != begin;
    }

    Range m_line;
    const wchar_t* m_at;
};

// Reads one text; each step is false where it has named what is wrong.
class PartReader {
public:
    PartReader(const BryString& text, NcPart& part, NcError& error, double tolerance)
        : m_lines(text),
          m_line{{text.getStringW(), text.getStringW()}, 1},
          m_part(part),
          m_error(error),
          m_tolerance(tolerance) {}

    bool read() {
        m_part = NcPart();
        if (!findHeader() || !readHeader() || !readBlocks() || !expectNothingMore()) return false;
        m_content.push_back(0);
        m_part.content = m_content.data();
        return true;
    }

private:
    bool findHeader() {
        do {
            if (!nextLine()) return fail(L"no part file: it has no block ST");
        } while (trimmed(m_line).isEmpty());
        return m_line.isCode(L"ST") || fail(L"no part file: it does not begin with the block ST");
    }

    // On return the line is the code of the first block behind the header.
    bool readHeader() {
        for (int i = 0;; ++i) {
            if (!nextLine()) return cutShortInHeader(i);
            const bool isBlock = i < headerLineCount ? m_line.isKnownCode() : m_line.isBlockCode();
            if (isBlock && !isFreeText(i)) return endHeader(i);
            if (!checkCharacters() || !takeHeaderLine(i)) return false;
        }
    }

    bool endHeader(int i) {
        if (mayHeaderEndAt(i)) return true;
        return fail(BryString(L"the block ") + trimmed(m_line).text() + L" begins where the header should have its " +
                    headerLines[i].name);
    }

    bool takeHeaderLine(int i) {
        const Range value = trimmed(m_line);
        if (i >= headerLineCount)
            return value.isEmpty() || fail(BryString(L"a block should begin here, not ") + quoted(value));
        const HeaderLine& line = headerLines[i];
        switch (line.kind) {
            case Kind::unread:
            case Kind::note: return true;
            case Kind::quantity: return takeQuantity(value);
            case Kind::name:
            case Kind::code:
                if (value.isEmpty()) return fail(BryString(L"the ") + line.name + L" is missing");
                if (line.kind == Kind::code) m_part.section.setDSTVType(typeOfCode(value.text()));
                break;
            case Kind::text: break;
            case Kind::lengths:
                if (!takeLengths(line, value)) return false;
                break;
            case Kind::optionalNumber:
                if (value.isEmpty()) break;
                [[fallthrough]];
            case Kind::number:
                if (!takeNumber(line, value)) return false;
                break;
        }
        if (line.text) m_part.*line.text = value.text();
        m_rounds = line.kind == Kind::lengths;
        addContent(value);
        return true;
    }

    bool takeQuantity(Range value) {
        if (value.isEmpty()) return fail(L"the quantity is missing");
        double quantity = 0;
        if (!std::all_of(value.begin, value.end, isDigit) || !parseNumber(value, quantity))
            return fail(BryString(L"the quantity is no whole number: ") + quoted(value));
        m_part.quantity = static_cast<int>(quantity);
        return true;
    }

    bool takeLengths(const HeaderLine& line, Range value) {
        const wchar_t* const comma = std::find(value.begin, value.end, L',');
        if (comma == value.end) return takeNumber(line, value);
        double sawLength = 0;
        return takeNumber(line, {value.begin, comma}) &&
               (parseNumber({comma + 1, value.end}, sawLength) ||
                fail(BryString(L"the saw length is no number: ") + quoted({comma + 1, value.end})));
    }

    bool takeNumber(const HeaderLine& line, Range value) {
        double number = 0;
        if (!parseNumber(value, number))
            return fail(BryString(L"the ") + line.name + L" is no number: " + quoted(value));
        if (line.number)
            m_part.*line.number = number;
        else if (line.setDimension)
            (m_part.section.*line.setDimension)(number);
        else
            return true;
        return number >= 0 || fail(BryString(L"the ") + line.name + L" is negative: " + quoted(value));
    }

    // From the code of the first block to the one that ends the file.
    bool readBlocks() {
        bool hasTexts = false;
        m_rounds = true;
        while (!m_line.isCode(L"EN")) {
            if (!checkCharacters()) return false;
            if (m_line.isBlockCode()) hasTexts = m_line.isMarkingCode();
            const Range line = trimmed(m_line);
            const bool isComment = line.length() >= 2 && line.begin[0] == L'*' && line.begin[1] == L'*';
            if (!line.isEmpty() && !isComment) hasTexts ? addMarking(line) : addContent(line);
            if (!nextLine()) return cutShort();
        }
        return true;
    }

    bool expectNothingMore() {
        while (nextLine())
            if (!trimmed(m_line).isEmpty()) return fail(L"text behind the end of the part (EN)");
        return true;
    }

    // One line of the content.
    void addContent(Range line) {
        addWords(line, false);
        m_content.push_back(L'\n');
    }

    void addMarking(Range line) {
        const Range text = MarkingLine(line).text();
        addWords(trimmed({line.begin, text.begin}), false);
        if (!text.isEmpty()) m_content.push_back(L' ');
        addWords(text, true);
        m_content.push_back(L'\n');
    }

    void addWords(Range range, bool everyBlankCounts) {
        BryString text = range.text();
        BryString::getTokens(text, m_words, m_blanks);
        for (long i = 0; i < m_words.length(); ++i) {
            const BryString& word = m_words[i];
            if (i > 0 && (everyBlankCounts || keepsApart(m_content.back(), word[0]))) m_content.push_back(L' ');
            addWord({word.getStringW(), word.getStringW() + word.length()},
                    m_rounds && m_tolerance > 0 && !everyBlankCounts);
        }
    }

    void addWord(Range word, bool rounds) {
        while (rounds && !word.isEmpty()) {
            const wchar_t* const number = std::find_if(word.begin, word.end, isNumberUnit);
            m_content.insert(m_content.end(), word.begin, number);
            word.begin = std::find_if_not(number, word.end, isNumberUnit);
            if (number != word.begin) addRounded({number, word.begin});
        }
        m_content.insert(m_content.end(), word.begin, word.end);
    }

    void addRounded(Range number) {
        const BryString text = roundedText(number, m_tolerance);
        const wchar_t sign = m_content.empty() ? L'0' : m_content.back();
        if (sign == L'+' || (sign == L'-' && text == L"0.000000")) dropSign();
        m_content.insert(m_content.end(), text.getStringW(), text.getStringW() + text.length());
    }

    // A plus says nothing, nor does the sign of what rounds to zero. It kept the number from the one before it.
    void dropSign() {
        m_content.pop_back();
        if (!m_content.empty() && isNumberUnit(m_content.back())) m_content.push_back(L' ');
    }

    // Whether a blank between the two counts.
    static bool keepsApart(wchar_t before, wchar_t behind) {
        return (isNumberUnit(before) && isNumberUnit(behind)) || (isLetter(before) && isLetter(behind));
    }

    bool checkCharacters() {
        const auto isControl = [](wchar_t c) { return c < 0x20 && c != L'\t' && c != L'\f'; };
        const wchar_t* const found = std::find_if(m_line.begin, m_line.end, isControl);
        if (found == m_line.end) return true;
        return fail(BryString(L"not a text: a control character of code ") + BryString::integerToString(*found, 10));
    }

    bool nextLine() { return m_lines.next(m_line); }
    bool cutShort() { return fail(L"cut short: the file ends without EN"); }
    bool cutShortInHeader(int i) {
        if (mayHeaderEndAt(i)) return cutShort();
        return fail(BryString(L"cut short: the file ends where the header should have its ") + headerLines[i].name);
    }
    bool fail(const BryString& reason) {
        m_error.line = m_line.number;
        m_error.reason = reason;
        return false;
    }

    Lines m_lines;
    Line m_line;
    NcPart& m_part;
    NcError& m_error;
    const double m_tolerance;
    bool m_rounds = false;  // whether numbers of the line are to be rounded
    std::vector<wchar_t> m_content;
    const BryString m_blanks = L" \t";
    BryArray<BryString> m_words;  // of the stretch that is being added
};

bool fileFails(NcError& error, const BryString& reason, int line = 0) {
    error.line = line;
    error.reason = reason;
    return false;
}

// Whether all size bytes can be read and are none of them zero, which 8-bit text never has; 16-bit text passes.
bool checkBytes(const BryFileAccess& file, long size, NcError& error) {
    std::vector<char> bytes(static_cast<std::size_t>(size));
    if (file.read(bytes.data(), 1, static_cast<unsigned>(size)) != static_cast<unsigned>(size))
        return fileFails(error, L"cannot be read to its end");
    const bool is16Bit =
        size >= 2 && (std::memcmp(bytes.data(), "\xFF\xFE", 2) == 0 || std::memcmp(bytes.data(), "\xFE\xFF", 2) == 0);
    const auto zero = std::find(bytes.begin(), bytes.end(), '\0');
    if (is16Bit || zero == bytes.end()) return true;
    return fileFails(error, L"not a text: a zero byte", 1 + static_cast<int>(std::count(bytes.begin(), zero, '\n')));
}

}  // namespace

bool readPartText(const BryString& text, NcPart& part, NcError& error, double tolerance) {
    return PartReader(text, part, error, tolerance).read();
}

bool readPartFile(const BryString& path, NcPart& part, NcError& error, double tolerance) {
    // Binary: what the file has, not what a text stream makes of it. The marks of encodings are readFile()'s affair.
    BryFileAccess file(path, L"rb", BryFileAccess::encodeANSI);
    if (!file.isOpen()) return fileFails(error, L"cannot be opened");
    const long size = file.getFileLength();
    if (size < 0 || size > maxFileSize) return fileFails(error, L"too large for a part file (above 32 MB)");
    if (size == 0) return fileFails(error, L"the file is empty", 1);
    if (!checkBytes(file, size, error)) return false;
    BryString text;
    file.seek(0, SEEK_SET);
    file.readFile(text, static_cast<unsigned>(size));
    return readPartText(text, part, error, tolerance);
}
