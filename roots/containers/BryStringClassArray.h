// An array of strings for interfaces that templates should not cross.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>
#include <roots/text/BryString.h>

// A BryArray of BryString behind one pointer. Its code and its layout are the library's own, so modules built apart
// can hold it and hand it to each other. Every operation is BryArray's of the same name: growth, bounds, what happens
// when memory is out and what arguments may be are said there. Copies are deep arrays whose strings share their bodies.
class KELROOTS_API BryStringClassArray {
public:
    using Compare = int (*)(void const*, void const*);  // of two BryString; BryString::strCompare is one

    BryStringClassArray(long physicalLength = 0, long growLength = 8);
    BryStringClassArray(const BryStringClassArray& other);
    ~BryStringClassArray();
    BryStringClassArray& operator=(const BryStringClassArray& other);

    // Positions are not checked.
    BryString& operator[](long i) { return (*m_body)[i]; }
    BryString const& operator[](long i) const { return (*m_body)[i]; }
    BryString at(long i) { return m_body->at(i); }

    // The array must not be empty.
    BryString& first() { return m_body->first(); }
    BryString const& first() const { return m_body->first(); }
    BryString& last() { return m_body->last(); }
    BryString const& last() const { return m_body->last(); }

    long length() const { return m_body->length(); }
    long logicalLength() const { return m_body->logicalLength(); }
    long physicalLength() const { return m_body->physicalLength(); }
    long growLength() const { return m_body->growLength(); }
    int isEmpty() const { return m_body->isEmpty(); }

    BryStringClassArray& setPhysicalLength(long n);
    BryStringClassArray& setLogicalLength(long n);
    BryStringClassArray& setGrowLength(long g);

    BryStringClassArray& setAt(long i, const BryString& s);
    BryStringClassArray& setAll(const BryString& s);
    long append(const BryString& s);  // its position
    BryStringClassArray& append(const BryStringClassArray& other);
    BryStringClassArray& insertAt(long i, const BryString& s);

    BryStringClassArray& removeAt(long i);
    BryStringClassArray& removeFirst();
    BryStringClassArray& removeLast();

    // Non-zero where there is a string equal to s, letter case included, at start or behind it: the first of them is
    // removed, or its position goes to index, which find leaves alone otherwise.
    int remove(const BryString& s, long start = 0);
    int find(const BryString& s, long& index, long start = 0) const;
    int contains(const BryString& s, long start = 0) const;

    // Non-zero and the position of a string that compare finds equal to s, else 0 and -1. lfind takes the first from
    // start on; bsearch looks into the whole array, which must be in the order of compare.
    int lfind(const BryString& s, long& index, Compare compare, long start = 0) const;
    int bsearch(const BryString& s, long& index, Compare compare) const;

    // All strings, or those from .. to, inclusive and not checked. Strings that are equal stand in any order.
    void sort(Compare compare);
    void sort(long from, long to, Compare compare);

    BryStringClassArray& swap(long i, long j);
    BryStringClassArray& reverse();

private:
    using Strings = BryArray<BryString, BryArrayObjectCopyReallocator<BryString>, BryArrayMemoryController<BryString>>;

    Strings* m_body;  // this object's own, never null
};
