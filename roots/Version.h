// Which KelRoots is loaded.
#pragma once

#include <roots/Export.h>

// The version of the library that the process has loaded, "major.minor.patch" in ASCII. It stands in the file's name on
// Linux and in its version resource on Windows, so that BryLogfile::listModules shows it too.
KELROOTS_API const char* bryVersion();
