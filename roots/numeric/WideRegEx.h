// The regular expressions behind BryRegExWrapper. What implements them is compiled with the platform's own wide
// characters, which may have 32 bits: this header has none, and includes nothing that has.
#pragma once

#include <cstddef>
#include <cstdint>

namespace regex {

using Unit = std::uint16_t;

struct Text {
    const Unit* units;
    std::size_t length;
};

// How far a match may go: the stack ends at lowestStack, and no more than so many characters are looked at and ways
// back remembered.
struct Bounds {
    std::uintptr_t lowestStack;
    std::uint64_t steps;
};

// Gets where a text that was found stands in the text searched.
using Take = void (*)(void* taker, std::size_t start, std::size_t length);

// Whether the whole text matches the pattern. If it does, take gets the match, then the groups in the order of their
// opening parentheses, without those that are empty. What the pattern is refused for is thrown, and so it is where the
// bounds may not suffice; take may throw as well.
bool matchWhole(Text pattern, Text text, Bounds bounds, Take take, void* taker);

}  // namespace regex
