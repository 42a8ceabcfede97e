// A registry for one test: on Windows keys of the test's own, elsewhere a file in a folder of its own; gone afterwards.
#pragma once

#include <roots/platform/Win32.h>

#include "Environment.h"
#include "TempFolder.h"

// A key that is made where it is missing, and closed at the end.
struct ScratchKey {
    ScratchKey(HKEY parent, const wchar_t* path)
        : result(RegCreateKeyExW(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, &disposition)) {}
    ~ScratchKey() { RegCloseKey(handle); }

    HKEY handle = nullptr;
    DWORD disposition = 0;
    LSTATUS result;
};

// name is made below HKEY_CURRENT_USER; with all it holds, it is removed there and below HKEY_LOCAL_MACHINE.
struct ScratchRegistry {
    explicit ScratchRegistry(const wchar_t* keyName = L"Software\\KelRootsTest") : name(keyName) {
        setEnvironment("KELROOTS_REGISTRY", path().c_str());
        RegCreateKeyExW(HKEY_CURRENT_USER, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    }
    ~ScratchRegistry() {
        RegCloseKey(key);
        for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) RegDeleteTreeW(hive, name);
    }
    std::string path() const { return (folder.path() / "made/registry.db").string(); }

    TempFolder folder;
    const wchar_t* name;
    HKEY key = nullptr;
};
