// Text files that are written completely or not at all.
#pragma once

#include <roots/files/BryFileAccess.h>

#include <vector>

// Writes the lines, each with its line feed, as UTF-8 or UTF-16LE with its mark, lines ending with CR LF on every
// system.
//
// The file is written beside path under another name and takes its place only when it is complete, with the permissions
// of the file that was there: a failure leaves what was there, returns false and says in reason what went wrong. Where
// path is a link, the file it leads to is replaced; what is no file (a folder, a device) is left alone.
bool writeTextFile(const BryString& path, BryFileAccess::encodeType encoding, const std::vector<BryString>& lines,
                   BryString& reason);
