// Values that the modules of a process share through this library.
#pragma once

#include <roots/Export.h>

class BryString;

class KELROOTS_API BryGlobalStorage {
public:
    BryGlobalStorage() {}

    // The support paths of the Acad host; null until a module sets it. The library neither sets nor reads it, and the
    // string stays the property of whoever set it.
    static BryString* g_pAcadSupportPaths;
};
