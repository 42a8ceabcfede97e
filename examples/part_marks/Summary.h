// What the program tells on the terminal, and how it writes numbers.
#pragma once

#include "PartMarks.h"

#include <string>

// Two decimals with a point, half a hundredth away from zero; the same on every system.
BryString hundredthsText(double value);
BryString countText(std::int64_t count);

// What follows is in UTF-8. "7 files read, 5 different parts, 0 errors", without a line end.
std::string countsText(const std::vector<MarkedPart>& parts, std::size_t errors);

// A table of the first marks, the totals of each profile code and of all, the counts.
std::string summaryText(const std::vector<MarkedPart>& parts, std::size_t errors);

// A line for each prefix that has parts without a mark, which come when limit marks are given.
std::string limitsText(const std::vector<MarkedPart>& parts, int limit);
