// Successive part numbers made of a prefix, a running value and a suffix.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

#include <cstddef>

// Whether a setter took the new value.
enum SetCodeTag {
    eCodeSet = 0,     // it did
    eCodeNotSet = 2,  // nothing changed: the value is the one held already, or was refused
};

// The alphabet of a running value: symbolCount consecutive characters from the first one of firstSymbol on. A new
// record has empty texts and zeros. The creator takes it as it is and never reads the three user fields.
struct StructNumberingDataRange {
    int userTag = 0;
    BryString userText1;
    BryString firstSymbol;  // its first character begins the alphabet; the whole text is a start value as well
    int symbolCount = 0;
    BryString defaultStart;
    BryString userText2;
};

// Hands out prefix + running value + suffix and steps the running value like an odometer: the last character moves on
// in the alphabet; one that passes the end wraps to the first symbol and carries to the left; a carry out of the
// leftmost character adds one in front. 8 is followed by 9, AZ by BA, and 9 by 10 (numeric type) or by 00 (any other).
//
// Typical use: overrideDataRange() with an alphabet and a type other than the one held, prefix and suffix, then
// getNextNumber() once per number. A copy carries everything, the alphabet and the running value included.
class KELROOTS_API BryNumberCreator {
public:
    // Any small integer is a type; only the numeric one is special: the character added in front is the second symbol
    // of the alphabet, not the first.
    enum eNumberingType : int { eNumberingNumeric = 3 };

    // Type 0, all texts empty, a new data range.
    BryNumberCreator();
    BryNumberCreator(eNumberingType type, const BryString& prefix);
    BryNumberCreator(const BryNumberCreator& other);
    BryNumberCreator& operator=(const BryNumberCreator& other);
    virtual ~BryNumberCreator();

    int getNumberingType() const { return m_type; }
    const BryString& getNumberingPrefix() const { return m_prefix; }
    const BryString& getNumberingStart() const { return m_start; }
    const BryString& getNumberingSufix() const { return m_sufix; }

    // Not set if it is the one held already. The running value stays.
    SetCodeTag setNumberingPrefix(const BryString& prefix);
    SetCodeTag setNumberingSufix(const BryString& sufix);

    // Not set if a character lies outside the alphabet; the empty text is fine. The running value stays until reset().
    SetCodeTag setNumberingStart(const BryString& start);

    // Not set if it is the type held already. Otherwise start and running value become the whole text firstSymbol.
    SetCodeTag setNumberingType(eNumberingType type);

    // Takes the range in any case. Not set if type is the one held already: start and running value stay then.
    // Otherwise both become the range's defaultStart.
    SetCodeTag overrideDataRange(const StructNumberingDataRange& range, eNumberingType type);

    // The running value becomes the start value.
    void reset();

    // Prefix + running value + suffix; then steps the running value. The first number after reset() has the start
    // value itself. An empty running value counts as a carry: it is followed by one character.
    //
    // Nothing is checked. With c the character, b the first symbol and n their count, a step stores b + d with
    // d = c - b + 1, or its remainder by n where n is above 0, and carries when that d is n or more. Characters outside
    // the alphabet step by that as well, results count modulo 65,536, and one that comes out as 0 ends the text there.
    BryString getNextNumber();

protected:
    // 1 if every character lies in the alphabet, else 0.
    int checkNumber(const BryString& text) const;

private:
    // Both are given the length of the running value.
    BryString composeNumber(std::size_t length) const;
    void step(std::size_t length);
    void startFrom(const BryString& start);

    eNumberingType m_type;
    BryString m_prefix;
    BryString m_sufix;
    BryString m_start;
    StructNumberingDataRange m_range;
    BryString m_current;
};
