// What the program tells on the terminal, and how it writes numbers.
#pragma once

#include "PartMarks.h"

#include <string>

// Two decimals with a point, half a hundredth away from zero; the same on every system.
BryString hundredthsText(double value);
BryString countText(std::int64_t count);

// In UTF-8: a table of the first marks, the totals of each profile code and of all.
std::string summaryText(const std::vector<MarkedPart>& parts, std::size_t errors);
