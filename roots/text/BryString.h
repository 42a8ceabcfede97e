// BryString: wide text in a shared, reference-counted body; the currency of every interface of the library.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <ctime>

// The body that strings share: a zero-terminated text that never changes while it is shared, and the number of strings
// that share it. Its text is overwritten with zeros before it is released.
class KELROOTS_API BryStringRepr {
    friend class BryString;
    friend class BryIncrementalCounter;
    friend class BryNumberCreator;

    // A body whose text, length units of it, is for the caller to fill; the terminator stands. Body and text are one
    // block of memory.
    static BryStringRepr* make(std::size_t length);

    explicit BryStringRepr(wchar_t* buffer) noexcept : m_buffer(buffer), m_count(1) {}
    virtual ~BryStringRepr();
    static void operator delete(void* block) { ::operator delete(block); }

    BryStringRepr(const BryStringRepr&) = delete;
    BryStringRepr& operator=(const BryStringRepr&) = delete;

    wchar_t* m_buffer;
    int m_count;  // 1 when the body is made; the shared empty body is never counted
};

// Text of 16-bit code units, terminated by a zero unit.
//
// - Copying shares the body. Every operation that changes a string composes the complete new text in a new body and
//   leaves the old one to the strings that still share it. A string's own text, or a part of it, may therefore be an
//   argument of any of its operations.
// - Positions and lengths count 16-bit units from 0; a character outside the Basic Multilingual Plane counts two. They
//   are signed 32-bit numbers, and a text has at most 2^31 - 1 units.
// - 8-bit text is in the system's ANSI code page. A character that the code page lacks becomes "?".
// - The operations that take unsigned short are those that take wchar_t, for callers that spell 16-bit characters so.
// - The length is not stored: length() costs a scan of the text, isEmpty() does not.
// - No operation reports an error. When memory is out, std::bad_alloc passes through and the string keeps its text.
// - Strings are for one thread: bodies, counts and the two scratch buffers of the class are shared without locks.
class KELROOTS_API BryString {
    // Their values are their own and change with every step.
    friend class BryIncrementalCounter;
    friend class BryNumberCreator;

public:
    // ---- construction, assignment ----------------------------------------------------------------------------------

    // The empty text. A null pointer given to any constructor or assignment means the empty text too.
    BryString() noexcept : m_rep(m_repEmpty), m_ansi(nullptr) {}
    BryString(wchar_t const* text);
    BryString(unsigned short const* text);
    // From text in the ANSI code page, of any length.
    BryString(char const* text);
    BryString(const BryString& other) noexcept : m_rep(other.m_rep), m_ansi(nullptr) { share(); }
    // Takes other's body; other is empty afterwards.
    BryString(BryString&& other) noexcept : m_rep(other.m_rep), m_ansi(other.m_ansi) { other.forget(); }
    ~BryString() {
        ReleaseRep();
        ReleaseCharCache();
    }

    // Strings that share a body already are left alone, the 8-bit form kept. A string that is moved from is empty then,
    // unless it shared this one's body.
    BryString& operator=(const BryString& other) noexcept {
        if (m_rep != other.m_rep) {
            BryStringRepr* const rep = other.m_rep;  // other may be a part of what is released
            if (rep != m_repEmpty) ++rep->m_count;
            ReleaseCharCache();
            ReleaseRep();
            m_rep = rep;
        }
        return *this;
    }
    BryString& operator=(BryString&& other) noexcept;
    BryString& operator=(wchar_t const* text);
    BryString& operator=(unsigned short const* text);
    BryString& operator=(char const* text);

    // ---- comparison: the order of unsigned 16-bit units, a text that begins the other comes first ------------------

    bool operator==(const BryString& other) const {
        return m_rep == other.m_rep || (*m_rep->m_buffer == *other.m_rep->m_buffer && hasSameText(other));
    }
    bool operator!=(const BryString& other) const { return !(*this == other); }
    bool operator<(const BryString& other) const { return compare(*this, other) < 0; }
    bool operator>(const BryString& other) const { return compare(*this, other) > 0; }

    // -1, 0 or +1.
    static int compare(const BryString& a, const BryString& b);
    // Over at most n units: negative, 0 or positive. An n of 0 compares nothing, a negative one the whole texts.
    static int compare(const BryString& a, const BryString& b, int n);
    // Without regard to case, as the C runtime's locale has it (in the "C" locale the letters A to Z only): negative,
    // 0 or positive.
    static int compareNoCase(const BryString& a, const BryString& b);
    static int compareNoCase(const BryString& a, const BryString& b, int n);
    // For sort, bsearch and lfind of string arrays: the arguments point to BryString. 0 if either is null.
    static int strCompare(void const* a, void const* b);

    // ---- access ----------------------------------------------------------------------------------------------------

    // Unit i, 0 <= i <= length(), where length() gives the terminating zero; i is not checked.
    wchar_t const& operator[](int i) const { return m_rep->m_buffer[i]; }
    wchar_t const& at(int i) const { return m_rep->m_buffer[i]; }

    // The text, never null; valid until the string is next changed or destroyed.
    wchar_t const* getStringW() const { return m_rep->m_buffer; }
    unsigned short const* getStringWAsUnsignedShort() const {
        return reinterpret_cast<unsigned short const*>(m_rep->m_buffer);
    }
    // The text in the ANSI code page, converted once and kept with this string object until it gets another body;
    // copies of the string convert anew. Never null; valid until the string is next changed or destroyed.
    char const* getStringA() const { return m_ansi ? m_ansi : makeAnsiForm(); }

    int length() const;
    int isEmpty() const { return *m_rep->m_buffer == 0; }

    // ---- search ----------------------------------------------------------------------------------------------------

    // The position of the first sub at or after start, or -1. A start below 0 or not below length() finds nothing; an
    // empty sub is found at any other start.
    int find(const BryString& sub, int start = 0) const;

    // The position of the last unit equal to c, or -1. The 8-bit form searches the bytes of getStringA() below
    // position length() and gives a byte position.
    int find_last_of(wchar_t c) const;
    int find_last_of(unsigned short c) const;
    int find_last_of(char c) const;

    // ---- classification: whether every unit is of the class; the empty text passes ---------------------------------

    bool IsAlphaNumeric() const;
    bool IsAlphabetic() const;
    bool IsNumeric() const;  // digits alone: a sign, a point or a blank fails

    // ---- numbers ---------------------------------------------------------------------------------------------------

    // The number at the start of the text behind any blanks; what follows it is ignored. No number gives 0. Integers
    // stop at the limits of 32 bits.
    int toInteger() const;
    int toIntPtr() const;  // what toInteger() gives
    long toLong() const;
    double toDouble() const;

    // ---- concatenation ---------------------------------------------------------------------------------------------

    BryString operator+(const BryString& other) const;
    const BryString& operator+=(const BryString& other);

    // ---- substrings ------------------------------------------------------------------------------------------------

    // The first (last) n characters; the whole string where it has no more than n; empty where n is negative.
    BryString left(int n) const;
    BryString right(int n) const;

    // The min(count, length() - start) characters from start on. start lies in 0 .. length(), count is not negative;
    // anything else gives the empty string.
    BryString mid(int start, int count) const;
    BryString mid(int start) const;

    // This string becomes at most count characters of src from start on, or empty where start is not a position of
    // src (0 .. length() - 1) or count is negative. Returns a copy of this string.
    BryString copy(const BryString& src, int start, int count);
    BryString copy(const BryString& src, int start);

    // This string without its first n characters; an n below 1 changes nothing, an n above length() gives the empty
    // string.
    BryString& operator>>=(int n);
    BryString operator>>(int n) const;

    // ---- replacement, removal --------------------------------------------------------------------------------------

    // Replaces every unit equal to from and returns how many were. A to of 0 cuts the text at the first of them.
    int replace(wchar_t from, wchar_t to);
    int replace(unsigned short from, unsigned short to);
    int replace(char from, char to);

    // Replaces every occurrence of what, from left to right, and returns how many. The text put in is not searched
    // again: a by aa in aaa gives aaaaaa and 3. An empty what replaces nothing.
    int replace(const BryString& what, const BryString& with);

    // Replaces the count characters from start on by with. A count below 1 changes nothing. Where the range reaches
    // beyond either end, the characters that are there are replaced; beyond the end altogether, with is appended.
    BryString& replace(int start, int count, const BryString& with);

    // Removes every unit equal to c. Where there is none, or c is 0, the string keeps its body.
    void removeAll(wchar_t const& c);
    void removeAll(unsigned short const& c);
    void removeAll(char const& c);

    // Sets unit i, 0 <= i < length(); a c of 0 cuts the text there. Any other i changes nothing.
    BryString& setAt(int i, wchar_t const& c);
    BryString& setAt(int i, unsigned short const& c);
    BryString& setAt(int i, char const& c);

    BryString& empty();

    // ---- trimming --------------------------------------------------------------------------------------------------

    // Removes the longest run at the start (end) whose characters all occur in set; without a set: tab, line feed and
    // space, not carriage return. Where nothing is trimmed the string keeps its body.
    void TrimLeft(const BryString& set);
    void TrimRight(const BryString& set);
    void TrimLeft();
    void TrimRight();

    // ---- splitting -------------------------------------------------------------------------------------------------

    // The stretches of text between separators, in order; each character of separators separates on its own, and no
    // token is empty. They replace the elements of tokens, whose storage grows at most once, to the physical length
    // that append() would have come to. text stays as it is, unless it is an element of tokens, which it and the sets
    // may be. When memory is out, tokens holds some of the first tokens.
    //
    // Up to 16 short tokens share a block of memory of at most 3 kB, which lives as long as one of them.
    static void getTokens(BryString& text, BryArray<BryString>& tokens, const BryString& separators);

    // The same, but each character of quotes opens a stretch in which separators and other quotes are ordinary
    // characters. The same character closes it, unless it stands there twice, which does not; a stretch that is not
    // closed reaches to the end. Quotes stay in the token: 'it''s' x becomes 'it''s' and x. A character that is in both
    // sets is a quote.
    static void getTokens(BryString& text, BryArray<BryString>& tokens, const BryString& separators, BryString quotes);

    // ---- case, order -----------------------------------------------------------------------------------------------

    // As the C runtime's locale maps case: in the "C" locale the letters A to Z only.
    BryString& toUpper();
    BryString& toLower();

    // The text reversed unit by unit; this string keeps its text.
    BryString strRev() const;

    // ---- formatting ------------------------------------------------------------------------------------------------

    // This string becomes the formatted text, in the conversions of the Windows runtime: in a wide format %s takes
    // wide text and %S 8-bit text, in an 8-bit format the other way round. Texts of any length come out whole. A
    // format that the runtime refuses (%n, an unknown conversion) gives the empty string, a null format too.
    BryString& format(wchar_t const* fmt, ...);
    BryString& format(unsigned short const* fmt, ...);
    BryString& format(char const* fmt, ...);
    BryString& vformat(wchar_t const* fmt, std::va_list args);
    BryString& vformat(unsigned short const* fmt, std::va_list args);
    BryString& vformat(char const* fmt, std::va_list args);

    // This string becomes t in strftime's conversions; empty where the result does not fit below maxSize bytes.
    BryString& formatTime(unsigned maxSize, char const* fmt, std::tm const* t);

    // ---- number and clock texts ------------------------------------------------------------------------------------

    // radix 2 .. 36, digits in lower case; a minus sign in radix 10 only, elsewhere the 32-bit two's complement. A
    // radix outside gives the empty text.
    static BryString integerToString(int value, int radix);
    static BryString longToString(long value, int radix);

    // With digits significant digits, rounded, trailing zeros dropped, the decimal point kept ("3."); an exponent of
    // three digits where the value is below 0.1 or has more than digits digits before the point.
    static BryString doubleToString(double value, int digits);

    static BryString time();  // the local time, hh:mm:ss, 24 hours
    static BryString date();  // the local date, mm/dd/yy

    // ---- paths -----------------------------------------------------------------------------------------------------

    // Splits this text into the drive letter with its colon, the directory with its trailing separator, the file name
    // and the extension with its point; a part that is not there becomes empty. A part of 260 characters or more makes
    // all four empty. The four may include this string.
    void SplitPath(BryString& drive, BryString& dir, BryString& fname, BryString& ext) const;

    // This string becomes the path made of the four parts, with the separator, colon and point that are missing
    // between them; empty where the path would have 260 characters or more.
    void MakePath(const BryString& drive, const BryString& dir, const BryString& fname, const BryString& ext);

    // ---- foreign encodings -----------------------------------------------------------------------------------------

    BryString setFromUnsignedShortString(unsigned short const* text);

    // This string becomes 8-bit text in the MIF notation, decoded; returns a copy. In it \M+ is followed by a selector
    // digit and four hexadecimal digits, the lead and the trail byte of a character of a code page. The last selector
    // names the page of the whole text: 1 932, 2 950, 3 949, 4 1361, 5 936, anything else the ANSI code page. A byte
    // not spelled by two hexadecimal digits becomes "?"; an escape with fewer than four characters behind its
    // selector is dropped together with the character that follows the selector. Null means the empty text.
    BryString setFromMIFString(char const* text);

private:
    using Characters = BryArray<wchar_t, BryArrayObjectCopyReallocator<wchar_t>, BryArrayMemoryController<wchar_t>>;

    // The characters from through to, zero characters left out; empty where the range does not lie in chars.
    BryString(const Characters& chars, int from, int to);
    static void StringToArr(const BryString& text, Characters& chars);

    explicit BryString(BryStringRepr* rep) noexcept : m_rep(rep), m_ansi(nullptr) {}  // takes the share that rep has

    void share() const noexcept {
        if (m_rep != m_repEmpty) ++m_rep->m_count;
    }
    void forget() noexcept {
        m_rep = m_repEmpty;
        m_ansi = nullptr;
    }
    void ReleaseRep() noexcept {
        if (m_rep != m_repEmpty && --m_rep->m_count < 1) destroyRep();
    }
    void ReleaseCharCache() noexcept {
        if (m_ansi) destroyCharCache();
    }
    void destroyRep() noexcept;
    void destroyCharCache() noexcept;

    class TokenWriter;

    // Bodies holding a copy of length units of text, or text converted from a code page; the shared empty body where
    // there is nothing to hold.
    static BryStringRepr* makeRep(wchar_t const* text, std::size_t length);
    static BryStringRepr* makeRep(char const* text, unsigned codePage);
    static BryStringRepr* makeAsciiRep(char const* text, std::size_t length);
    BryString& take(BryStringRepr* rep) noexcept;  // replaces the body by rep, whose share passes to this string

    bool hasSameText(const BryString& other) const;
    char const* makeAnsiForm() const;
    bool isUnshared() const { return m_rep->m_count == 1 && m_rep != m_repEmpty; }
    // Puts a text of the same length into the body; false, and nothing done, where others share it.
    bool overwrite(wchar_t const* text, std::size_t length) noexcept;
    BryString& keep(std::size_t from, std::size_t to);  // nothing but the units from .. to - 1
    void trimLeft(wchar_t const* set);
    void trimRight(wchar_t const* set);

    BryStringRepr* m_rep;
    mutable char* m_ansi;  // what getStringA() gave, this object's own; null until then

    static BryStringRepr* m_repEmpty;         // the body of every empty string; never destroyed
    static wchar_t* BryStringTempBufferWide;  // 0x80000 units in which texts are composed
    static char* BryStringTempBuffer;         // 0x80000 bytes
};
