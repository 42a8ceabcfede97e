// Names of registry keys: a hive, then the keys below it, separated by backslashes.
#pragma once

#include <roots/text/BryString.h>

// Takes the name of a key. The hive is HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT or its short form HKLM,
// HKCU, HKCR, in any case; name then has the long form in capitals. Several backslashes count as one, and those at the
// end as none. False with a reason where the hive is another one, a key's name is longer than 255 units or there are
// more than 512 of them.
bool readKeyName(const BryString& text, BryString& name, BryString& reason);

// Where the name that readKeyName() gave has its first backslash, or its length where it is a hive.
int lengthOfHive(const BryString& name);
