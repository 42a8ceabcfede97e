#include <roots/containers/BryStringClassArray.h>

BryStringClassArray::BryStringClassArray(long physicalLength, long growLength)
    : m_body(new Strings(physicalLength, growLength)) {}

BryStringClassArray::BryStringClassArray(const BryStringClassArray& other) : m_body(new Strings(*other.m_body)) {}

BryStringClassArray::~BryStringClassArray() {
    delete m_body;
    m_body = nullptr;
}

BryStringClassArray& BryStringClassArray::operator=(const BryStringClassArray& other) {
    if (this != &other) *m_body = *other.m_body;
    return *this;
}

BryStringClassArray& BryStringClassArray::setPhysicalLength(long n) { return m_body->setPhysicalLength(n), *this; }
BryStringClassArray& BryStringClassArray::setLogicalLength(long n) { return m_body->setLogicalLength(n), *this; }
BryStringClassArray& BryStringClassArray::setGrowLength(long g) { return m_body->setGrowLength(g), *this; }

BryStringClassArray& BryStringClassArray::setAt(long i, const BryString& s) { return m_body->setAt(i, s), *this; }
BryStringClassArray& BryStringClassArray::setAll(const BryString& s) { return m_body->setAll(s), *this; }
long BryStringClassArray::append(const BryString& s) { return m_body->append(s); }
BryStringClassArray& BryStringClassArray::append(const BryStringClassArray& other) {
    return m_body->append(*other.m_body), *this;
}
BryStringClassArray& BryStringClassArray::insertAt(long i, const BryString& s) { return m_body->insertAt(i, s), *this; }

BryStringClassArray& BryStringClassArray::removeAt(long i) { return m_body->removeAt(i), *this; }
BryStringClassArray& BryStringClassArray::removeFirst() { return m_body->removeFirst(), *this; }
BryStringClassArray& BryStringClassArray::removeLast() { return m_body->removeLast(), *this; }
int BryStringClassArray::remove(const BryString& s, long start) { return m_body->remove(s, start); }

int BryStringClassArray::find(const BryString& s, long& index, long start) const {
    return m_body->find(s, index, start);
}
int BryStringClassArray::contains(const BryString& s, long start) const { return m_body->contains(s, start); }
int BryStringClassArray::lfind(const BryString& s, long& index, Compare compare, long start) const {
    return m_body->lfind(s, index, compare, start);
}
int BryStringClassArray::bsearch(const BryString& s, long& index, Compare compare) const {
    return m_body->bsearch(s, index, compare);
}

void BryStringClassArray::sort(Compare compare) { m_body->sort(compare); }
void BryStringClassArray::sort(long from, long to, Compare compare) { m_body->sort(from, to, compare); }

BryStringClassArray& BryStringClassArray::swap(long i, long j) { return m_body->swap(i, j), *this; }
BryStringClassArray& BryStringClassArray::reverse() { return m_body->reverse(), *this; }
