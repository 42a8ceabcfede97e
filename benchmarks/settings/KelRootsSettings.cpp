// Reads and writes of settings, by KelRoots.

#include <benchmarks/support/Measure.h>

#include <roots/platform/Win32.h>
#include <roots/settings/BryRegistry.h>

#include <cstdlib>

namespace {

constexpr char kLibrary[] = "KelRoots";

// A key with `size` values, of which the last is used.
BryString lastOf(std::size_t size) {
    BryString name;
    for (std::size_t i = 0; i < size; ++i) {
        name = std::to_string(i).c_str();
        BryRegistry::setData(L"Views", name, L"1.5;2.5;3.5");
    }
    return name;
}

const int registered = [] {
    setenv("KELROOTS_REGISTRY", "/tmp/kelroots-benchmark.db", 1);
    std::remove("/tmp/kelroots-benchmark.db");
    measure("read a setting, values in the key", kLibrary, {100}, [](std::size_t size) {
        return
            [name = lastOf(size), text = BryString()]() mutable { return BryRegistry::getData(L"Views", name, text); };
    });
    measure("read a setting of an open key, values in the key", kLibrary, {100}, [](std::size_t size) {
        BryString name = lastOf(size), path = BryRegistry::getKorvelCurrentUserPath() + L"\\Views";
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_CURRENT_USER, path.getStringW(), 0, KEY_READ, &key);
        return [name, key] {
            BYTE data[100];
            DWORD room = sizeof data;
            return RegQueryValueExW(key, name.getStringW(), nullptr, nullptr, data, &room);
        };
    });
    measure("write a setting, values in the key", kLibrary, {100}, [](std::size_t size) {
        return [name = lastOf(size), number = 0]() mutable { return BryRegistry::setData(L"Views", name, ++number); };
    });
    return 0;
}();

}  // namespace
