// What a user has saved for his runs to come, in the registry, where other modules and norrab-registry find it too:
//
//     current user, Software\Ozmira\Norrab\2009\Data\PartMarks           "Type" (numeric or letter) and "Start"
//     current user, Software\Ozmira\Norrab\2009\Data\PartMarks\Prefixes  a value for each profile code
//     current user, Software\Ozmira\Norrab\2009\Environment              "DataPath", the folder of marks.csv
//
// Where the user has no "DataPath", the one of the local machine counts.
#pragma once

#include "Options.h"

// Gives the options what was saved where the command line has left it open: type and start, which belong together, and
// the output. False with an error where what was saved makes no sense.
bool addSavedOptions(Options& options, BryString& error);

// The prefix that was saved for a profile code. False where there is none.
bool savedPrefix(const BryString& code, BryString& prefix);

// Saves type, start, prefixes and the output, which must be a folder, as far as the command line gives them. False with
// an error where one cannot be saved; those before it are.
bool saveOptions(const Options& options, BryString& error);
