// Parts that are the same, found and marked.
#pragma once

#include "NcPart.h"
#include "Tracked.h"

#include <roots/containers/BryBalancedTree.h>

#include <cstdint>
#include <map>
#include <set>
#include <vector>

// How marks are made: a prefix for each profile code, and behind it a number or letters, counted for each prefix alone.
struct MarkSettings {
    bool letters = false;                   // A, B, ... Z, AA, AB ... instead of 1, 2, ... 9, 10, 11 ...
    BryString start;                        // the first number or letters; empty for 1 or A
    std::map<BryString, BryString> prefix;  // by profile code; the code itself where there is none

    bool withCounter = false;  // whether an incremental counter makes them, which the rest is for
    BryString excluded = {};   // characters that stand in no number and no letters; prefixes may have them
    int limit = -1;            // how many marks a prefix may have, at least 1; -1 for no limit

    // Whether start can be counted on from, but for excluded characters in it.
    bool isStartValid() const;
    bool hasExcluded(const BryString& text) const;
    // Whether something is left to count with: a digit other than 0, or a letter.
    bool leavesSymbols() const;
};

struct MarkedPart {
    NcPart part;  // as the first of its files has it; the quantity is that file's
    BryString prefix;
    BryString mark;                // empty where the limit was reached
    std::int64_t quantity = 0;     // of all files
    std::vector<BryString> files;  // in the order of add()

    // kg, of all pieces, rounded to hundredths: length times weight per metre times quantity, as the file has them.
    double weight() const;
};

// Cannot be copied, as the tree cannot.
class PartMarks : Tracked {
public:
    PartMarks() : Tracked(L"PartMarks") {}

    void add(const NcPart& part, const BryString& file);

    // The profile codes of the parts.
    std::set<BryString> codes() const;

    // The distinct parts with their marks, in the order of the marks: by prefix, and as they were numbered. Within a
    // prefix they are numbered as they were first added. No mark is given twice: one that another prefix has led to
    // already (P1 + 1 and P + 11) is passed over, which does not count for the limit. The settings must be valid: a
    // start that can be counted on from, without excluded characters, and symbols left.
    std::vector<MarkedPart> mark(const MarkSettings& settings) const;

private:
    std::vector<MarkedPart> m_parts;
    BryBalancedTree m_byContent;  // of PartPlace
};
