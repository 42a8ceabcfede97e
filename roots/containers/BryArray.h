// The library's one growable container.
#pragma once

#include <roots/containers/BryMemoryController.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

// Turns raw bytes into a run of live elements and back.
template <class T>
class BryArrayMemoryController {
public:
    // Storage of count slots (count >= 1), every one of them alive: zero-filled, then default-constructed. Plain types
    // are zero-filled only; of their first `overwritten` slots, which the caller fills at once, not even that.
    // Throws std::bad_alloc when memory is exhausted or the bytes do not fit 32 bits, and whatever T's constructor
    // throws; nothing is left behind then.
    [[gnu::noinline]] static T* create(long count, long overwritten = 0);

    // Destroys all count slots, releases the storage and sets the pointer to null.
    static void destroy(T*& slots, long count);

private:
    static constexpr bool isPlain = std::is_trivial<T>::value;

    static void construct(T* slots, long count);
    static void destroyElements(T* slots, long count);
    static void release(T* slots);
};

// Moves surviving elements into new storage with one block copy of their bytes.
template <class T>
class BryArrayMemCopyReallocator {
public:
    static void reallocate(T* to, T* from, long count) {
        static_assert(std::is_trivially_copyable<T>::value,
                      "the bytes of this type are not its value: use BryArrayObjectCopyReallocator");
        if (count > 0) std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(T));
    }
};

// Moves surviving elements into new storage by assigning them one by one, in ascending order. A type whose move
// assignment cannot fail is moved: the old element is destroyed right after.
template <class T>
class BryArrayObjectCopyReallocator {
public:
    static void reallocate(T* to, T* from, long count) {
        if constexpr (std::is_nothrow_move_assignable<T>::value) {
            std::move(from, from + count, to);
        } else {
            std::copy(from, from + count, to);
        }
    }
};

// A growable array. It owns its elements; copies are deep.
//
//   logical length   elements in use, positions 0 .. logical length - 1
//   physical length  slots in the storage
//   grow length      step by which the physical length is raised
//
// To grow to hold k elements means: if k exceeds the physical length, the storage is replaced by one of k slots rounded
// up to a multiple of the grow length. A grow length of 0 or below counts as 8 there. The storage shrinks only through
// setPhysicalLength. References to elements are valid until the storage is replaced.
//
// Every slot up to the physical length holds a live element: a default one (zero for plain types) until something is
// stored there. Slots beyond the logical length keep their last values, and show them again when the logical length is
// raised within the same storage.
//
// Positions and lengths are 32-bit values; positions are not checked, except where an operation says so.
// std::bad_alloc is thrown when memory is exhausted, and before anything is touched when a length would exceed
// 2,147,483,647 or the storage 4,294,967,295 bytes. Whatever an element's constructor or assignment throws passes
// through; new storage is obtained and filled before the old one is given up, so the array keeps its elements and
// lengths then, as far as the elements' own assignments within one storage allow.
//
// sort moves elements as bytes, whatever their type: no element may hold a pointer into itself.
template <class T, class Reallocator = BryArrayObjectCopyReallocator<T>,
          class MemoryController = BryArrayMemoryController<T>>
class BryArray {
public:
    // Less than, equal to or greater than 0, as *a goes before, with or after *b. Both point to elements.
    using Compare = int (*)(const void* a, const void* b);

    // An empty array with storage for physicalLength elements; none if that is below 1. growLength 0 means 8.
    BryArray(long physicalLength = 0, long growLength = 8);

    // The same elements, physical length and grow length as the other array.
    BryArray(const BryArray& other);
    BryArray& operator=(const BryArray& other);

    ~BryArray();

    // Replaces the storage by one of n slots and cuts the logical length to n where it exceeds it; 0 releases the
    // storage. Nothing changes if n is at most the physical length but above three quarters of it, or negative.
    BryArray& setPhysicalLength(long n);

    // Grows to hold n elements; the logical length becomes n. Elements are neither constructed nor destroyed.
    BryArray& setLogicalLength(long n);

    // Stores g as it is, for when the array next has to grow.
    BryArray& setGrowLength(long g);

    long length() const { return m_logicalLength; }
    long logicalLength() const { return m_logicalLength; }
    long physicalLength() const { return m_physicalLength; }
    long growLength() const { return m_growLength; }

    // Non-zero when the logical length is 0.
    int isEmpty() const { return m_logicalLength == 0; }

    T& operator[](long i) { return m_storage[i]; }
    const T& operator[](long i) const { return m_storage[i]; }

    // A copy of element i.
    T at(long i) const { return m_storage[i]; }

    // The array must not be empty.
    T& first() { return m_storage[0]; }
    const T& first() const { return m_storage[0]; }
    T& last() { return m_storage[m_logicalLength - 1]; }
    const T& last() const { return m_storage[m_logicalLength - 1]; }

    // Element i becomes value. From the logical length on: grows to hold i + 1 elements, and that becomes the logical
    // length; slots in between are not touched. A negative i changes nothing. value may be an element of this array.
    BryArray& setAt(long i, const T& value);

    // Adds value at the end and returns its position. value may be an element of this array.
    long append(const T& value);

    // Adds the other array's elements at the end. The other array may be this one, whose elements then stand twice.
    BryArray& append(const BryArray& other);

    // Moves element i and those behind it one position up and puts value at i, 0 .. logical length. value may be an
    // element of this array.
    BryArray& insertAt(long i, const T& value);

    // Moves the elements behind i one position down. The physical length stays; the slot behind the new last element
    // keeps the old last element. removeLast leaves the element in its slot as well. On an empty array nothing happens.
    BryArray& removeAt(long i);
    BryArray& removeFirst() { return removeAt(0); }
    BryArray& removeLast() { return removeAt(m_logicalLength - 1); }

    // Assigns value to every element, from the last to the first. value may be one of them.
    BryArray& setAll(const T& value);

    BryArray& swap(long i, long j);
    BryArray& reverse();

    // 1 and the position of the first element == value from start on; 0 if there is none, and index stays as it was.
    // A negative start counts as 0, here and in the operations below.
    int find(const T& value, long& index, long start = 0) const;

    // The same answer without the position.
    int contains(const T& value, long start = 0) const;

    // Removes the first element == value from start on. 1 if there was one, else 0.
    int remove(const T& value, long start = 0);

    // Sorts all elements, or those from .. to (inclusive; not checked) only. Equal elements stand in any order. compare
    // should not throw: the elements are all kept then, but the runtime may lose memory, or end a 32-bit process.
    void sort(Compare compare);
    void sort(long from, long to, Compare compare);

    // 1 and the position of an element equal to key, else 0 and -1. bsearch expects the elements in the order of
    // compare; lfind takes the first from start on. compare gets the address of key as its first argument.
    int bsearch(const T& key, long& index, Compare compare) const;
    int lfind(const T& key, long& index, Compare compare, long start = 0) const;

private:
    static constexpr long long kLongest = 0x7fffffff;

    void growToHold(long long count);
    [[gnu::noinline]] void replaceStorage(long n);
    [[gnu::cold, gnu::noinline]] void setBeyond(
        long i, T value);  // by value: it may stand in the storage that growing replaces

    long m_logicalLength = 0;
    long m_physicalLength = 0;
    long m_growLength = 8;
    T* m_storage = nullptr;
    Reallocator m_reallocator;
    MemoryController m_memory;
};

// ---- BryArrayMemoryController ---------------------------------------------------------------------------------------

template <class T>
T* BryArrayMemoryController<T>::create(long count, long overwritten) {
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__,
                  "BryArray's storage is aligned as operator new[] aligns, which is too little for this type");
    // allocateArray multiplies in 32 bits: what does not fit would come out short.
    if (count < 0 || count > INT32_MAX || static_cast<unsigned long long>(count) > UINT32_MAX / sizeof(T))
        throw std::bad_alloc();

    T* slots =
        reinterpret_cast<T*>(BryMemoryControllerController::allocateArray(count, static_cast<unsigned int>(sizeof(T))));
    if constexpr (std::is_trivially_default_constructible<T>::value) {
        const long kept = isPlain ? std::clamp(overwritten, 0L, count) : 0;
        std::memset(static_cast<void*>(slots + kept), 0, static_cast<std::size_t>(count - kept) * sizeof(T));
    } else {
        construct(slots, count);
    }
    return slots;
}

template <class T>
void BryArrayMemoryController<T>::destroy(T*& slots, long count) {
    destroyElements(slots, count);
    release(slots);
    slots = nullptr;
}

template <class T>
void BryArrayMemoryController<T>::construct(T* slots, long count) {
    // Zeroed a stretch at a time, which is still in the cache when its elements are constructed.
    constexpr long kStretch = sizeof(T) < 4096 ? static_cast<long>(4096 / sizeof(T)) : 1;
    long alive = 0;
    try {
        while (alive < count) {
            const long end = (std::min)(count, alive + kStretch);
            std::memset(static_cast<void*>(slots + alive), 0, static_cast<std::size_t>(end - alive) * sizeof(T));
#if defined(__GNUC__)
            // Members that a constructor leaves alone keep the zeros: without this they count as dead stores, which
            // the compiler may drop.
            __asm__ __volatile__("" : : "r"(slots) : "memory");
#endif
            for (; alive < end; ++alive) ::new (static_cast<void*>(slots + alive)) T;
        }
    } catch (...) {
        destroyElements(slots, alive);
        release(slots);
        throw;
    }
}

template <class T>
void BryArrayMemoryController<T>::destroyElements(T* slots, long count) {
    if constexpr (!std::is_trivially_destructible<T>::value) {
        for (long i = 0; i < count; ++i) slots[i].~T();
    }
}

template <class T>
void BryArrayMemoryController<T>::release(T* slots) {
    unsigned char* bytes = reinterpret_cast<unsigned char*>(slots);
    BryMemoryControllerController::deallocateArray(bytes);
}

// ---- BryArray: life -------------------------------------------------------------------------------------------------

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>::BryArray(long physicalLength, long growLength)
    : m_physicalLength(physicalLength), m_growLength(growLength == 0 ? 8 : growLength) {
    if (physicalLength >= 1) m_storage = m_memory.create(physicalLength);
}

// Starts from a complete empty array, whose destructor cleans up when an assignment throws.
template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>::BryArray(const BryArray& other) : BryArray() {
    if (other.m_storage != nullptr) {
        m_storage = m_memory.create(other.m_physicalLength, other.m_logicalLength);
    }
    m_physicalLength = other.m_physicalLength;
    m_growLength = other.m_growLength;
    if (other.m_logicalLength > 0) std::copy_n(other.m_storage, other.m_logicalLength, m_storage);
    m_logicalLength = other.m_logicalLength;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::operator=(
    const BryArray& other) {
    if (this == &other) return *this;
    BryArray copy(other);
    std::swap(m_logicalLength, copy.m_logicalLength);
    std::swap(m_physicalLength, copy.m_physicalLength);
    std::swap(m_growLength, copy.m_growLength);
    std::swap(m_storage, copy.m_storage);
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>::~BryArray() {
    if (m_storage != nullptr) m_memory.destroy(m_storage, m_physicalLength);
}

// ---- BryArray: lengths ----------------------------------------------------------------------------------------------

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::setPhysicalLength(long n) {
    if (n <= m_physicalLength && static_cast<double>(n) > 0.75 * static_cast<double>(m_physicalLength)) return *this;
    if (n > 0) {
        replaceStorage(n);
    } else if (n == 0 && m_storage != nullptr) {
        m_memory.destroy(m_storage, m_physicalLength);
        m_logicalLength = m_physicalLength = 0;
    }
    return *this;
}

template <class T, class Reallocator, class MemoryController>
void BryArray<T, Reallocator, MemoryController>::replaceStorage(long n) {
    const long kept = std::clamp(m_logicalLength, 0L, n);
    T* fresh = m_memory.create(n, kept);
    try {
        m_reallocator.reallocate(fresh, m_storage, kept);
    } catch (...) {
        m_memory.destroy(fresh, n);
        throw;
    }
    if (m_storage != nullptr) m_memory.destroy(m_storage, m_physicalLength);
    m_storage = fresh;
    m_physicalLength = n;
    m_logicalLength = (std::min)(m_logicalLength, n);
}

template <class T, class Reallocator, class MemoryController>
void BryArray<T, Reallocator, MemoryController>::growToHold(long long count) {
    if (count <= m_physicalLength) return;
    if (count > kLongest) throw std::bad_alloc();
    const long long step = m_growLength > 0 ? (std::min<long long>)(m_growLength, kLongest) : 8;
    const long long rounded = ((count - 1) / step + 1) * step;
    if (rounded > kLongest) throw std::bad_alloc();
    if (rounded > 0) replaceStorage(static_cast<long>(rounded));
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::setLogicalLength(long n) {
    growToHold(n);
    m_logicalLength = n;
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::setGrowLength(long g) {
    m_growLength = g;
    return *this;
}

// ---- BryArray: storing and removing ---------------------------------------------------------------------------------

template <class T, class Reallocator, class MemoryController>
inline BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::setAt(long i,
                                                                                                     const T& value) {
    if (i >= 0 && i < m_logicalLength) {
        m_storage[i] = value;
    } else {
        setBeyond(i, value);
    }
    return *this;
}

template <class T, class Reallocator, class MemoryController>
inline long BryArray<T, Reallocator, MemoryController>::append(const T& value) {
    const long i = m_logicalLength;
    if (i >= 0 && i < m_physicalLength) {
        m_storage[i] = value;
        m_logicalLength = i + 1;
    } else {
        setBeyond(i, value);
    }
    return i;
}

template <class T, class Reallocator, class MemoryController>
void BryArray<T, Reallocator, MemoryController>::setBeyond(long i, T value) {
    if (i < 0) return;
    growToHold((std::min<long long>)(i, kLongest) + 1);
    m_storage[i] = std::move(value);
    m_logicalLength = i + 1;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::append(const BryArray& other) {
    const long count = other.m_logicalLength;
    if (count < 1) return *this;
    const long end = (std::max)(m_logicalLength, 0L);
    growToHold(static_cast<long long>(end) + count);
    std::copy_n(other.m_storage, count, m_storage + end);
    m_logicalLength = end + count;
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::insertAt(long i,
                                                                                                 const T& value) {
    T copy(value);  // value may be moved up, or stand in the storage that growing replaces
    const long end = m_logicalLength;
    growToHold(static_cast<long long>(end) + 1);
    m_logicalLength = end + 1;
    if (i < end) std::copy_backward(m_storage + i, m_storage + end, m_storage + end + 1);
    m_storage[i] = std::move(copy);
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::removeAt(long i) {
    if (m_logicalLength <= 0) return *this;
    if (i < m_logicalLength - 1) std::copy(m_storage + i + 1, m_storage + m_logicalLength, m_storage + i);
    --m_logicalLength;
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::setAll(const T& value) {
    for (long i = m_logicalLength - 1; i >= 0; --i) m_storage[i] = value;
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::swap(long i, long j) {
    const T copy(m_storage[i]);
    m_storage[i] = m_storage[j];
    m_storage[j] = copy;
    return *this;
}

template <class T, class Reallocator, class MemoryController>
BryArray<T, Reallocator, MemoryController>& BryArray<T, Reallocator, MemoryController>::reverse() {
    for (long k = 0; k < m_logicalLength / 2; ++k) swap(k, m_logicalLength - 1 - k);
    return *this;
}

// ---- BryArray: searching and sorting --------------------------------------------------------------------------------

template <class T, class Reallocator, class MemoryController>
int BryArray<T, Reallocator, MemoryController>::find(const T& value, long& index, long start) const {
    for (long i = (std::max)(start, 0L); i < m_logicalLength; ++i) {
        if (m_storage[i] == value) {
            index = i;
            return 1;
        }
    }
    return 0;
}

template <class T, class Reallocator, class MemoryController>
int BryArray<T, Reallocator, MemoryController>::contains(const T& value, long start) const {
    long index = 0;
    return find(value, index, start);
}

template <class T, class Reallocator, class MemoryController>
int BryArray<T, Reallocator, MemoryController>::remove(const T& value, long start) {
    long index = 0;
    const int found = find(value, index, start);
    if (found) removeAt(index);
    return found;
}

template <class T, class Reallocator, class MemoryController>
void BryArray<T, Reallocator, MemoryController>::sort(Compare compare) {
    sort(0, m_logicalLength - 1, compare);
}

template <class T, class Reallocator, class MemoryController>
void BryArray<T, Reallocator, MemoryController>::sort(long from, long to, Compare compare) {
    if (m_logicalLength <= 0 || to <= from) return;
    std::qsort(m_storage + from, static_cast<std::size_t>(to - from) + 1, sizeof(T), compare);
}

template <class T, class Reallocator, class MemoryController>
int BryArray<T, Reallocator, MemoryController>::bsearch(const T& key, long& index, Compare compare) const {
    index = -1;
    if (m_logicalLength <= 0) return 0;
    const void* found = std::bsearch(&key, m_storage, static_cast<std::size_t>(m_logicalLength), sizeof(T), compare);
    if (found == nullptr) return 0;
    index = static_cast<long>(static_cast<const T*>(found) - m_storage);
    return 1;
}

template <class T, class Reallocator, class MemoryController>
int BryArray<T, Reallocator, MemoryController>::lfind(const T& key, long& index, Compare compare, long start) const {
    index = -1;
    for (long i = (std::max)(start, 0L); i < m_logicalLength; ++i) {
        if (compare(&key, m_storage + i) == 0) {
            index = i;
            return 1;
        }
    }
    return 0;
}
