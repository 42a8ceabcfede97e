// The table of the marks as a file.
#pragma once

#include "PartMarks.h"

// Comma-separated values in UTF-8 with its mark, lines ending with CR LF: a heading, then one line for each part with
// mark, profile, code, steel, length (mm), quantity, weight (kg, of all pieces) and its files, joined by "; ".
// Complete or not at all, as writeTextFile() says.
bool writeMarksFile(const BryString& output, const std::vector<MarkedPart>& parts, BryString& reason);

// A field of the table: in quotes, inner ones doubled, where it has a comma, a quote, a line end or a blank at an end.
BryString csvField(const BryString& text);
