// Boost.Xpressive over 16-bit units. This file has the platform's own wide characters, so it includes no header of the
// library but its own.
#include "WideRegEx.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#define BOOST_ENABLE_ASSERT_HANDLER
#include <boost/xpressive/xpressive_dynamic.hpp>

// Xpressive asserts where a pattern refers back to a group that it does not have.
void boost::assertion_failed(char const* expression, char const*, char const*, long) {
    throw std::logic_error(expression);
}

namespace regex {
namespace {

using namespace boost::xpressive;

// Xpressive recurses for each repetition of a group and for each element of a pattern, and backtracks for as long as it
// takes. Its every step goes over the iterators below, which throw before the stack ends and when there are too many.
struct TooMuch : std::runtime_error {
    using std::runtime_error::runtime_error;
};

[[noreturn, gnu::cold]] void refuse(const char* reason) { throw TooMuch(reason); }

inline void check(Bounds& left) {
    if (reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) < left.lowestStack)
        refuse("the stack is at its end");
    if (left.steps-- == 0) refuse("it takes too long");
}

// What an iterator over units offers, one wide character a unit; Derived adds the checks.
template <class Derived>
class UnitIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = wchar_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const wchar_t*;
    using reference = wchar_t;

    Derived& operator+=(difference_type n) {
        m_at += n;
        return static_cast<Derived&>(*this);
    }
    Derived& operator-=(difference_type n) { return *this += -n; }
    Derived& operator++() { return *this += 1; }
    Derived& operator--() { return *this += -1; }
    Derived operator++(int) {
        Derived old = static_cast<Derived&>(*this);
        ++*this;
        return old;
    }
    friend Derived operator+(Derived at, difference_type n) { return at += n; }
    friend Derived operator-(Derived at, difference_type n) { return at -= n; }
    friend difference_type operator-(const Derived& a, const Derived& b) { return a.m_at - b.m_at; }
    friend bool operator==(const Derived& a, const Derived& b) { return a.m_at == b.m_at; }
    friend bool operator!=(const Derived& a, const Derived& b) { return a.m_at != b.m_at; }
    friend bool operator<(const Derived& a, const Derived& b) { return a.m_at < b.m_at; }

protected:
    UnitIterator() = default;
    explicit UnitIterator(const Unit* at) : m_at(at) {}

    const Unit* m_at = nullptr;
};

// The parser goes into a group, or stays where it is, only at one of a few characters.
class PatternIterator : public UnitIterator<PatternIterator> {
public:
    PatternIterator() = default;
    PatternIterator(const Unit* at, Bounds& left) : UnitIterator(at), m_left(&left) {}

    wchar_t operator*() const {
        const Unit c = *m_at;
        if ((c & ~3) == 0x28 || (c | 0x44) == 0x7F) check(*m_left);  // ( ) * + or ? {
        return c;
    }

private:
    Bounds* m_left = nullptr;
};

// Every way back is a copy that waits on the stack; every way forward reads a character.
class TextIterator : public UnitIterator<TextIterator> {
public:
    TextIterator() = default;
    TextIterator(const Unit* at, Bounds& left) : UnitIterator(at), m_left(&left) {}
    TextIterator(const TextIterator& other) : UnitIterator(other), m_left(other.m_left) {
        if (m_left != nullptr) check(*m_left);
    }
    TextIterator& operator=(const TextIterator&) = default;

    wchar_t operator*() const {
        if (m_left->steps-- == 0) refuse("it takes too long");
        return *m_at;
    }

private:
    Bounds* m_left = nullptr;
};

// Xpressive reads each digit of a pattern through a stream of its own.
struct Traits : cpp_regex_traits<wchar_t> {
    static int value(wchar_t c, int radix) {
        const int digit = c >= L'0' && c <= L'9'   ? c - L'0'
                          : c >= L'a' && c <= L'f' ? c - L'a' + 10
                          : c >= L'A' && c <= L'F' ? c - L'A' + 10
                                                   : radix;
        return digit < radix ? digit : -1;
    }
};

// Linking and releasing a compiled pattern, and matching what takes no character, recurse from element to element
// without a look at an iterator. Only these characters make elements; the text between two of them is one.
constexpr std::size_t kStackPerOperator = 512;  // four times as much as optimised code takes
constexpr std::size_t kStackReserve = 0x10000;  // for what is called on the way, and for throwing

bool isOperator(Unit c) {
    switch (c) {
        case '.':
        case '^':
        case '$':
        case '|':
        case '(':
        case ')':
        case '[':
        case '\\':
        case '*':
        case '+':
        case '?':
        case '{': return true;
        default: return false;
    }
}

std::size_t uncheckedStack(Text pattern) {
    const auto operators = std::count_if(pattern.units, pattern.units + pattern.length, isOperator);
    return kStackReserve + kStackPerOperator * static_cast<std::size_t>(operators);
}

}  // namespace

bool matchWhole(Text pattern, Text text, Bounds bounds, Take take, void* taker) {
    bounds.lowestStack += uncheckedStack(pattern);
    check(bounds);

    regex_compiler<TextIterator, Traits> compiler;
    const auto expression = compiler.compile(PatternIterator(pattern.units, bounds),
                                             PatternIterator(pattern.units + pattern.length, bounds));
    const TextIterator begin(text.units, bounds), end(text.units + text.length, bounds);
    match_results<TextIterator> found;
    if (!regex_match(begin, end, found, expression)) return false;
    for (const auto& group : found) {
        if (group.length() == 0) continue;  // also one that took no part
        take(taker, static_cast<std::size_t>(group.first - begin), static_cast<std::size_t>(group.length()));
    }
    return true;
}

}  // namespace regex
