#include "RegFile.h"

#include "KeyName.h"

#include <algorithm>

namespace {

constexpr std::size_t longestValueName = 16383;
constexpr const wchar_t* header = L"Windows Registry Editor Version 5.00";
constexpr const wchar_t* oldHeader = L"REGEDIT4";

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t'; }
bool isLineEnd(wchar_t c) { return c == L'\n' || c == L'\r'; }
bool isText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// The value of a hexadecimal digit, or -1.
int digitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    const wchar_t letter = static_cast<wchar_t>(c | 0x20);
    return letter >= L'a' && letter <= L'f' ? letter - L'a' + 10 : -1;
}

void appendUnits(const wchar_t* units, std::size_t count, std::vector<BYTE>& data) {
    for (std::size_t i = 0; i < count; ++i) {
        data.push_back(static_cast<BYTE>(units[i] & 0xFF));
        data.push_back(static_cast<BYTE>(units[i] >> 8));
    }
}

// ---- bytes to text --------------------------------------------------------------------------------------------------

// The text of a file, ending with a zero, which is nowhere else in it.
class RegText {
public:
    bool decode(const std::string& bytes) {
        const bool isWide = bytes.compare(0, 2, "\xFF\xFE") == 0;
        const std::size_t mark = isWide ? 2 : bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
        isAnsi = mark == 0 && bytes.compare(0, 8, "REGEDIT4") == 0;
        const bool isDecoded = isWide ? takeUnits(bytes, mark) : takeLines(bytes, mark);
        return isDecoded && endWithZero();
    }

    std::vector<wchar_t> units;
    bool isAnsi = false;
    int badLine = 1;
    BryString reason;

private:
    bool takeUnits(const std::string& bytes, std::size_t start) {
        const std::vector<BYTE> data(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end());
        units = unitsOf(data);
        units.pop_back();
        if (data.size() % 2 == 0) return true;
        badLine = 1 + static_cast<int>(std::count(units.begin(), units.end(), L'\n'));
        reason = L"cut short: the file ends within a character";
        return false;
    }

    // Line by line, so that the line of what cannot be converted is known.
    bool takeLines(const std::string& bytes, std::size_t start) {
        const UINT codePage = isAnsi ? CP_ACP : CP_UTF8;
        for (std::size_t end = 0; start < bytes.size(); start = end, ++badLine) {
            end = std::min(bytes.find('\n', start), bytes.size() - 1) + 1;
            const int size = static_cast<int>(end - start);
            const std::size_t before = units.size();
            units.resize(before + end - start);  // no encoding has fewer bytes than units
            const int length = MultiByteToWideChar(codePage, 0, &bytes[start], size, &units[before], size);
            units.resize(before + static_cast<std::size_t>(length));
            if (isAnsi || isUtf8(bytes, start, size, &units[before], length)) continue;
            reason = L"not a text: neither UTF-8 nor UTF-16LE with its mark";
            return false;
        }
        return true;
    }

    // What is broken has become another character, which leads back to other bytes.
    static bool isUtf8(const std::string& bytes, std::size_t start, int size, const wchar_t* units, int length) {
        std::string back(static_cast<std::size_t>(size), 0);
        const int backSize = WideCharToMultiByte(CP_UTF8, 0, units, length, &back[0], size, nullptr, nullptr);
        return backSize == size && bytes.compare(start, back.size(), back) == 0;
    }

    bool endWithZero() {
        const auto zero = std::find(units.begin(), units.end(), L'\0');
        badLine = 1 + static_cast<int>(std::count(units.begin(), zero, L'\n'));
        reason = L"not a text: a zero character";
        const bool isComplete = zero == units.end();
        units.push_back(0);
        return isComplete;
    }
};

// ---- text to entries ------------------------------------------------------------------------------------------------

class Parser {
public:
    Parser(const RegText& text, std::vector<RegEntry>& entries, int& line, BryString& reason)
        : m_at(text.units.data()), m_entries(entries), m_line(line), m_reason(reason) {}

    bool parse() {
        m_line = 1;
        const BryString first = restOfLine();
        if (first != header && first != oldHeader)
            return m_line = 1,
                   fail(L"not a registry file: it does not begin with \"Windows Registry Editor Version 5.00\"");
        m_isOld = first == oldHeader;
        while (*m_at != 0) {
            skipBlanks();
            if (*m_at == L'[' ? !parseKey() : *m_at == L'"' || *m_at == L'@' ? !parseValue() : !endLine(nullptr))
                return false;
        }
        return true;
    }

private:
    // ---- lines ----

    void skipBlanks() {
        while (isBlank(*m_at)) ++m_at;
    }
    bool isAtEndOfLine() const { return *m_at == 0 || isLineEnd(*m_at); }
    const wchar_t* endOfLine() const {
        const wchar_t* end = m_at;
        while (*end != 0 && !isLineEnd(*end)) ++end;
        return end;
    }
    void skipLineEnd() {
        if (*m_at == 0) return;
        m_at += m_at[0] == L'\r' && m_at[1] == L'\n' ? 2 : 1;
        ++m_line;
    }
    // Without blanks at its end; what follows is the next line.
    BryString restOfLine() {
        std::vector<wchar_t> text(m_at, endOfLine());
        m_at += text.size();
        skipLineEnd();
        while (!text.empty() && isBlank(text.back())) text.pop_back();
        text.push_back(0);
        return BryString(text.data());
    }
    // Nothing but a comment may stand in front of the end. what names what stands before, null for nothing.
    bool endLine(const wchar_t* what) {
        skipBlanks();
        if (*m_at == L';') m_at = endOfLine();
        if (!isAtEndOfLine())
            return fail(what ? BryString(L"unexpected text behind ") + what
                             : BryString(L"neither a [key], a \"name\"=value nor a ; comment"));
        skipLineEnd();
        return true;
    }
    // From the backslash at the end of a line to what continues it.
    bool skipContinuation() {
        ++m_at;
        if (!endLine(L"the backslash that ends the line")) return false;
        for (skipBlanks(); isLineEnd(*m_at) || *m_at == L';'; skipBlanks()) {
            m_at = endOfLine();
            skipLineEnd();
        }
        return *m_at != 0 || fail(L"cut short: the file ends where a line is continued");
    }

    // ---- keys and values ----

    bool parseKey() {
        const wchar_t* const end = endOfLine();
        const wchar_t* close = end;
        while (close != m_at && *close != L']') --close;
        if (close == m_at) return fail(L"a key without ] at its end");
        RegEntry entry;
        entry.line = m_line;
        entry.kind = m_at[1] == L'-' ? RegEntry::deletedKey : RegEntry::key;
        m_at += entry.kind == RegEntry::deletedKey ? 2 : 1;
        std::vector<wchar_t> text(m_at, close);
        text.push_back(0);
        if (!readKeyName(text.data(), entry.name, m_reason)) return false;
        if (entry.kind == RegEntry::deletedKey && lengthOfHive(entry.name) == entry.name.length())
            return fail(L"a whole hive cannot be deleted");
        m_at = close + 1;
        m_hasKey = entry.kind == RegEntry::key;
        m_entries.push_back(std::move(entry));
        return endLine(L"the key");
    }

    bool parseValue() {
        if (!m_hasKey) return fail(m_entries.empty() ? L"a value before any key" : L"a value below a deleted key");
        RegEntry entry;
        entry.kind = RegEntry::value;
        entry.line = m_line;
        if (!parseValueName(entry.name)) return false;
        skipBlanks();
        if (*m_at++ != L'=') return --m_at, fail(L"no = behind the name of a value");
        skipBlanks();
        if (!parseData(entry) || !endValue(entry.line)) return false;
        m_entries.push_back(std::move(entry));
        return true;
    }

    // Where a text that reaches over lines ends oddly, its first line is most likely the one without its quote.
    bool endValue(int firstLine) {
        const bool hasLines = m_line != firstLine && m_at[-1] == L'"';
        if (endLine(L"the value")) return true;
        if (hasLines) m_line = firstLine, m_reason = L"no quote at the end of the text";
        return false;
    }

    bool parseValueName(BryString& name) {
        std::vector<wchar_t> text;
        if (*m_at == L'@')
            ++m_at;
        else if (!parseQuoted(text, false))
            return false;
        if (text.size() > longestValueName) return fail(L"the name of a value is longer than 16383 characters");
        text.push_back(0);
        name = text.data();
        return true;
    }

    bool parseData(RegEntry& entry) {
        if (*m_at == L'"') return parseText(entry);
        if (take(L"dword:")) return parseDword(entry);
        if (take(L"hex")) return parseHex(entry);
        if (!take(L"-")) return fail(L"a value is \"text\", dword:, hex: or hex(TYPE):, or - for none");
        entry.kind = RegEntry::deletedValue;
        return true;
    }

    bool take(const wchar_t* word) {
        const wchar_t* at = m_at;
        for (; *word != 0; ++word, ++at)
            if (*at != *word) return false;
        m_at = at;
        return true;
    }

    bool parseText(RegEntry& entry) {
        std::vector<wchar_t> text;
        if (!parseQuoted(text, true)) return false;
        text.push_back(0);
        entry.type = REG_SZ;
        appendUnits(text.data(), text.size(), entry.data);
        return true;
    }

    bool parseQuoted(std::vector<wchar_t>& text, bool mayHaveLines) {
        const int firstLine = m_line;
        for (++m_at; *m_at != L'"';) {
            if (*m_at == 0 || (isLineEnd(*m_at) && !mayHaveLines)) {
                m_line = firstLine;
                return fail(mayHaveLines ? L"no quote at the end of the text" : L"no quote at the end of the name");
            }
            if (*m_at == L'\\') {
                if (!parseEscape(text)) return false;
            } else {
                if (*m_at == L'\n' || (*m_at == L'\r' && m_at[1] != L'\n')) ++m_line;
                text.push_back(*m_at++);
            }
        }
        ++m_at;
        return true;
    }

    bool parseEscape(std::vector<wchar_t>& text) {
        switch (m_at[1]) {
            case L'\\':
            case L'"': text.push_back(m_at[1]); break;
            case L'n': text.push_back(L'\n'); break;
            case L'r': text.push_back(L'\r'); break;
            default: return fail(L"a single backslash: write \\\\ for a backslash and \\\" for a quote");
        }
        m_at += 2;
        return true;
    }

    // False where there are none, or more than mostDigits.
    bool parseNumber(int mostDigits, DWORD& number) {
        number = 0;
        const wchar_t* const start = m_at;
        for (; digitValue(*m_at) >= 0; ++m_at) {
            if (m_at - start == mostDigits) return false;
            number = number << 4 | static_cast<DWORD>(digitValue(*m_at));
        }
        return m_at != start;
    }

    bool parseDword(RegEntry& entry) {
        DWORD number;
        skipBlanks();
        if (!parseNumber(8, number)) return fail(L"dword: needs one to eight hexadecimal digits");
        entry.type = REG_DWORD;
        for (int shift = 0; shift < 32; shift += 8) entry.data.push_back(static_cast<BYTE>(number >> shift));
        return true;
    }

    bool parseHex(RegEntry& entry) {
        entry.type = REG_BINARY;
        if (*m_at == L'(') {
            ++m_at;
            if (!parseNumber(8, entry.type) || !take(L")"))
                return fail(L"hex(TYPE): needs a type of one to eight hexadecimal digits");
        }
        if (!take(L":")) return fail(L"no : behind hex");
        if (!parseBytes(entry.data)) return false;
        if (m_isOld && isText(entry.type)) widen(entry.data);
        return true;
    }

    bool parseBytes(std::vector<BYTE>& data) {
        for (;; ++m_at) {
            skipBlanks();
            if (*m_at == L'\\' && !skipContinuation()) return false;
            if (isAtEndOfLine() || *m_at == L';') return true;
            DWORD byte;
            if (!parseNumber(2, byte))
                return fail(L"bytes have one or two hexadecimal digits, with commas between them");
            data.push_back(static_cast<BYTE>(byte));
            skipBlanks();
            if (*m_at != L',') return true;
        }
    }

    // Files of the old version have 8-bit texts, as bytes too.
    static void widen(std::vector<BYTE>& data) {
        const std::string text(data.begin(), data.end());
        std::vector<wchar_t> units(text.size());
        const int size = static_cast<int>(text.size());
        const int length = size == 0 ? 0 : MultiByteToWideChar(CP_ACP, 0, text.data(), size, units.data(), size);
        data.clear();
        appendUnits(units.data(), static_cast<std::size_t>(length), data);
    }

    bool fail(const BryString& reason) {
        m_reason = reason;
        return false;
    }

    bool m_isOld = false;
    bool m_hasKey = false;
    const wchar_t* m_at;
    std::vector<RegEntry>& m_entries;
    int& m_line;
    BryString& m_reason;
};

// ---- entries to text ------------------------------------------------------------------------------------------------

bool hasHalfPair(const wchar_t* text, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        if ((text[i] & 0xF800) != 0xD800) continue;
        const bool isPair = (text[i] & 0x0400) == 0 && i + 1 < length && (text[i + 1] & 0xFC00) == 0xDC00;
        if (!isPair) return true;
        ++i;
    }
    return false;
}

// Whether quotes can hold the text. That a text is stored without its closing zero, as programs on Linux do it, is not
// worth bytes that nobody can read.
bool isQuotable(const RegEntry& entry) {
    if (entry.type != REG_SZ || entry.data.size() % 2 != 0) return false;
    const std::vector<wchar_t> units = unitsOf(entry.data);
    const auto isEnd = [](wchar_t c) { return c == 0 || isLineEnd(c); };
    const auto end = std::find_if(units.begin(), units.end(), isEnd);
    return *end == 0 && units.end() - end <= 2 &&
           !hasHalfPair(units.data(), static_cast<std::size_t>(end - units.begin()));
}

class Line {
public:
    Line& operator<<(const wchar_t* text) {
        for (; *text != 0; ++text) m_units.push_back(*text);
        return *this;
    }

    Line& quote(const wchar_t* text) {
        m_units.push_back(L'"');
        for (; *text != 0; ++text) {
            const bool isEnd = isLineEnd(*text);
            if (isEnd || *text == L'\\' || *text == L'"') m_units.push_back(L'\\');
            m_units.push_back(!isEnd ? *text : *text == L'\n' ? L'n' : L'r');
        }
        m_units.push_back(L'"');
        return *this;
    }

    Line& hex(DWORD number, int digits) {
        BryString text;
        return *this << text.format(L"%0*x", digits, static_cast<unsigned>(number)).getStringW();
    }

    // Lines have at most 80 characters, as registry editors break them, but at least one byte.
    Line& bytes(const std::vector<BYTE>& data) {
        constexpr wchar_t digits[] = L"0123456789abcdef";
        std::size_t column = m_units.size();
        for (std::size_t i = 0; i < data.size(); ++i) {
            m_units.push_back(digits[data[i] >> 4]);
            m_units.push_back(digits[data[i] & 15]);
            if (i + 1 == data.size()) break;
            m_units.push_back(L',');
            column += 3;
            if (column + 3 < 80) continue;
            *this << L"\\\n  ";
            column = 2;
        }
        return *this;
    }

    BryString end() {
        m_units.push_back(L'\n');
        m_units.push_back(0);
        return BryString(m_units.data());
    }

private:
    std::vector<wchar_t> m_units;
};

BryString keyLine(const RegEntry& entry) {
    return (Line() << (entry.kind == RegEntry::key ? L"\n[" : L"\n[-") << entry.name.getStringW() << L"]").end();
}

BryString valueLine(const RegEntry& entry) {
    Line line;
    entry.name.isEmpty() ? line << L"@" : line.quote(entry.name.getStringW());
    line << L"=";
    if (entry.kind == RegEntry::deletedValue) return (line << L"-").end();
    if (isQuotable(entry)) return line.quote(unitsOf(entry.data).data()).end();
    if (entry.type == REG_DWORD && entry.data.size() == 4) {
        line << L"dword:";
        for (std::size_t i = 4; i-- > 0;) line.hex(entry.data[i], 2);
        return line.end();
    }
    line << L"hex";
    if (entry.type != REG_BINARY) (line << L"(").hex(entry.type, 1) << L")";
    return (line << L":").bytes(entry.data).end();
}

bool canBeWritten(const RegEntry& entry, bool utf8, BryString& reason) {
    const wchar_t* const name = entry.name.getStringW();
    const bool isKey = entry.kind == RegEntry::key || entry.kind == RegEntry::deletedKey;
    const bool hasLineEnd = std::any_of(name, name + entry.name.length(), isLineEnd);
    if (isKey && hasLineEnd)
        return reason = L"the name of a key has the end of a line, which a file cannot express", false;
    if (!utf8 || !hasHalfPair(name, static_cast<std::size_t>(entry.name.length()))) return true;
    return reason = L"a name has half a surrogate pair, which UTF-8 cannot express", false;
}

}  // namespace

void appendText(const BryString& text, std::vector<BYTE>& data) {
    appendUnits(text.getStringW(), static_cast<std::size_t>(text.length()) + 1, data);
}

std::vector<wchar_t> unitsOf(const std::vector<BYTE>& data) {
    std::vector<wchar_t> units(data.size() / 2 + 1);
    for (std::size_t i = 0; i + 1 < units.size(); ++i)
        units[i] = static_cast<wchar_t>(data[2 * i] | data[2 * i + 1] << 8);
    return units;
}

bool parseRegFile(const std::string& bytes, std::vector<RegEntry>& entries, int& line, BryString& reason) {
    RegText text;
    entries.clear();
    if (text.decode(bytes)) return Parser(text, entries, line, reason).parse();
    line = text.badLine;
    reason = text.reason;
    return false;
}

bool makeRegFile(const std::vector<RegEntry>& entries, bool utf8, std::vector<BryString>& lines, BryString& reason) {
    lines.push_back(BryString(header) + L"\n");
    for (const RegEntry& entry : entries) {
        if (!canBeWritten(entry, utf8, reason)) return false;
        const bool isValue = entry.kind == RegEntry::value || entry.kind == RegEntry::deletedValue;
        lines.push_back(isValue ? valueLine(entry) : keyLine(entry));
    }
    lines.push_back(L"\n");
    return true;
}
