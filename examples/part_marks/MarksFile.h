// The table of the marks as a file.
#pragma once

#include "PartMarks.h"

// Comma-separated values in UTF-8 with its mark, lines ending with CR LF: a heading, then one line for each part with
// mark, profile, code, steel, length (mm), quantity, weight (kg, of all pieces) and its files, joined by "; ".
//
// The file is written beside output under another name and takes its place only when it is complete, with the
// permissions of the file that was there: a failure leaves what was there, returns false and says in reason what went
// wrong. Where output is a link, the file it leads to is replaced; what is no file (a folder, a device) is left alone.
bool writeMarksFile(const BryString& output, const std::vector<MarkedPart>& parts, BryString& reason);

// A field of the table: in quotes, inner ones doubled, where it has a comma, a quote, a line end or a blank at an end.
BryString csvField(const BryString& text);
