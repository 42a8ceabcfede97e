// Which files are newer than a time, and by how much.
#pragma once

#include <roots/platform/Win32.h>
#include <roots/text/BryString.h>

#include <string>
#include <vector>

// Local time, as 2026-05-31 or "2026-05-31 14:30" or "2026-05-31 14:30:05". False where it is none of these.
bool parseTime(const BryString& text, SYSTEMTIME& time);

// A line for each file, in UTF-8: newer, older or the same, its name and how far it is from the time.
std::string agesText(const std::vector<BryString>& files, const SYSTEMTIME& since);
