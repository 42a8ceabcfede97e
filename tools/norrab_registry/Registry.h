// The registry, read and written as entries of a file. Keys are named as readKeyName() gives them.
#pragma once

#include "RegFile.h"

enum class Subkeys { named, read };

// All answer ERROR_SUCCESS or the system's error number.

// Appends the key, its values and then its subkeys: their names alone, or all that is in them, in the registry's order.
LSTATUS readKey(const BryString& key, Subkeys subkeys, std::vector<RegEntry>& entries);

LSTATUS readValue(const BryString& key, const BryString& name, RegEntry& value);

// Does what the entries say, in their order, up to the first that is refused: its index is in done. Deleting what is
// not there is done. Values belong to the key before them and are stored with just the bytes they have.
LSTATUS writeEntries(const std::vector<RegEntry>& entries, std::size_t& done);

BryString errorText(LSTATUS error);
