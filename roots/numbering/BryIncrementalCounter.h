// A sequence of alphanumeric values: 0001, 0002 ... or A, B ... Z, AA ...
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>
#include <roots/text/BryString.h>

#include <cstddef>

// What a counter counts with. The counter takes it as it is and never reads the three user fields. A new record has
// empty texts and the numbers below, so that a counter set from it stands like a new one: no value, and no more to
// come.
struct StructIncrementalCounter {
    int userTag = -1;
    BryString userText1;
    BryString startValue;     // where the counter starts
    BryString initString;     // its last character is the first symbol of the alphabet
    int charRange = 1;        // the alphabet runs from the first symbol to the first symbol + charRange - 1
    BryString excludedChars;  // characters that a position skips
    int maxValues = 0;        // how many values there may be, the start value among them; -1 for no limit
    BryString userText2;
};

// Advances a value like an odometer: the last position takes the next symbol that is not excluded; one that passes the
// end of the alphabet wraps and carries to the left; where the leftmost one wraps, the value gets one position more.
//
//   counter.setDataFrom(data);                        // the start value
//   do use(counter.getCounterString());
//   while (counter.increment() == BryIncrementalCounter::eIncremented);
//
// A counter is numeric if all characters of startValue and initString are decimal digits. Its positions wrap to the
// digit 0, whatever the first symbol, and it never gains a leading 0: behind 9 comes 10. The positions of any other
// wrap to the first symbol, which may lead as well: behind Z comes AA.
//
// Nothing is checked; what follows from a step of one position, exactly:
//
// - The character gets the next one, and the next again while that is excluded and below the end of the alphabet. It
//   wraps if it comes to stand right behind the last symbol, and then to 0 or the first symbol even if these are
//   excluded. Characters above the alphabet therefore step up by one, those below it to the next that is not
//   excluded, and neither wraps: A9 is followed by A: in the alphabet A to Z.
// - Characters have 16 bits: 0xFFFF is followed by 0, which counts as excluded where any character is, and does not
//   stand in getCounterString(). An alphabet that ends at 0xFFFF therefore never wraps.
// - Where every character is excluded and the alphabet has no end, the position keeps its character.
// - Without initString the first symbol is character 0.
//
// Copies carry everything. When memory is out, std::bad_alloc passes through and the counter stays as it was.
class KELROOTS_API BryIncrementalCounter {
public:
    enum eIncrementStatus : int {
        eIncremented = 0,
        eMaxReached = 1,  // maxValues values are out already; the value stayed
    };

    // No value; every increment() answers eMaxReached until setDataFrom().
    BryIncrementalCounter();
    BryIncrementalCounter(const BryIncrementalCounter& other);
    BryIncrementalCounter& operator=(const BryIncrementalCounter& other);
    virtual ~BryIncrementalCounter();

    // Takes a copy of the record and resets. Always 1.
    int setDataFrom(const StructIncrementalCounter& data);

    // Back to the start value; the limit counts anew.
    void reset();

    // Goes on from any value; the limit counts on.
    void setCounterString(const BryString& value);

    BryString getCounterString() { return m_counterString; }

    // The next value. A value without positions gets one: the first symbol that is not excluded and, in a numeric
    // counter, not 0. Calls at the limit count too; a maxValues below -1 means none may follow.
    eIncrementStatus increment();

protected:
    // The first symbol of the alphabet.
    wchar_t initChar();

    // The character that follows c at one position; wrapped becomes 1 if it wrapped, else 0.
    wchar_t incrementAtPosition(wchar_t c, BryString excluded, int& wrapped);

private:
    // Whatever may fail in these does so before anything is touched.
    void advance();
    void widen();
    void showIn(BryString& room);

    wchar_t following(wchar_t c, const wchar_t* excluded, int& wrapped);
    wchar_t wrappedChar();

    StructIncrementalCounter m_data;
    int m_isNumeric = 1;
    BryString m_counterString;
    BryArray<wchar_t, BryArrayObjectCopyReallocator<wchar_t>, BryArrayMemoryController<wchar_t>> m_chars;
    int m_incrementCount = 0;    // calls since reset(); stops at its largest value
    bool m_isShownWhole = true;  // whether no character is 0
};
