// The registry as Windows answers it, on Windows below a key of its own.
#include <tests/support/FailNthAllocation.h>
#include <tests/support/ScratchRegistry.h>
#include <tests/support/Units.h>

namespace {

LSTATUS open(HKEY key, const wchar_t* path, HKEY handle = nullptr) {
    const LSTATUS result = RegOpenKeyExW(key, path, 0, KEY_READ, &handle);
    return result == 0 ? RegCloseKey(handle) : result;
}

LSTATUS create(HKEY key, const wchar_t* path) { return ScratchKey(key, path).result; }
LSTATUS set(HKEY key, const wchar_t* name, DWORD type = REG_BINARY, DWORD size = 4, const void* data = "a\0b\0##") {
    return RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
}
LSTATUS exists(HKEY key, const wchar_t* name) {
    return RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr);
}

// The name that the key and the value at an index have; else the numbers of the errors.
std::string listed(HKEY key, DWORD index, DWORD room = 20) {
    wchar_t name[2][20] = {};
    DWORD size[] = {room, room};
    const LSTATUS keys = RegEnumKeyExW(key, index, name[0], &size[0], nullptr, nullptr, nullptr, nullptr);
    const LSTATUS values = RegEnumValueW(key, index, name[1], &size[1], nullptr, nullptr, nullptr, nullptr);
    if (keys != 0 || values != 0) return std::to_string(keys) + ' ' + std::to_string(values);
    EXPECT_TRUE(narrow(name[0]) == narrow(name[1]) && size[0] == size[1] && name[0][size[0]] == 0);
    return narrow(name[0]);
}

TEST(RegistryValue, IsReadWithItsTypeWhereItFits) {
    const ScratchRegistry registry;
    // clang-format off
    const struct { DWORD type, size, room; LSTATUS answer; std::string read; } rows[] = {
        {REG_SZ, 4, 3, 234, "......."}, {REG_SZ, 4, 0, 234, "......."}, {REG_SZ, 4, 5, 0, bytes("a\0b\0...")},
        {REG_SZ, 4, 6, 0, bytes("a\0b\0\0\0.")}, {REG_EXPAND_SZ, 4, 7, 0, bytes("a\0b\0\0\0.")},
        {REG_MULTI_SZ, 4, 7, 0, bytes("a\0b\0\0\0.")}, {REG_BINARY, 4, 4, 0, bytes("a\0b\0...")},
        {REG_SZ, 5, 7, 0, bytes("a\0b\0#\0\0")}, {REG_SZ, 0, 7, 0, "......."}, {0xFFFFFFFF, 1, 7, 0, "a......"}};
    // clang-format on
    DWORD type, size;
    for (const auto& row : rows) {
        BYTE data[] = ".......";
        EXPECT_EQ(set(registry.key, L"v", row.type, row.size), 0);
        EXPECT_EQ(RegQueryValueExW(registry.key, L"V", nullptr, &type, data, &(size = row.room)), row.answer);
        EXPECT_TRUE(type == row.type && size == row.size && std::string(data, data + 7) == row.read)
            << row.type << ", size " << row.size << ", room " << row.room << ": " << type << ' ' << size << data;
    }
    BYTE data[8];
    EXPECT_TRUE(RegQueryValueExW(registry.key, L"v", nullptr, nullptr, nullptr, &size) == 0 && size == 1);
    EXPECT_TRUE(RegQueryValueExW(registry.key, L"none", nullptr, &type, data, &size) == 2 && type == 0xFFFFFFFF);
    EXPECT_TRUE(RegQueryValueExW(registry.key, L"none", nullptr, nullptr, nullptr, &size) == 2 && size == 0);
    EXPECT_EQ(RegQueryValueExW(registry.key, L"v", nullptr, nullptr, data, nullptr), 87);
    EXPECT_EQ(set(registry.key, L"v", REG_SZ, 4, nullptr), 998);
}

TEST(RegistryNames, KeepTheirCaseAndCompareWithoutIt) {
    const ScratchRegistry registry;
    // clang-format off
    const struct { const wchar_t* made; const wchar_t* asked; LSTATUS answer; } rows[] = {
        {L"Norrab", L"nORRAB", 0}, {L"\x141\xF3" L"d\x17A", L"\x142\xD3" L"D\x179", 0}, {L"\x17D", L"\x17E", 0},
        {L"\xFF", L"\x178", 0}, {L"\xDF", L"ss", 2}, {L"i", L"\x130", 2}, {L"\x3C3", L"\x3C2", 2}, {L"/a", L"/A", 0},
        {L"/a", L"a", 2}, {L"\xD83D\xDE00\xD800", L"\xD83D\xDE00\xD800", 0}, {L"\xD83D\xDE00", L"\xD83D\xDE01", 2}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.made) + " " + narrow(row.asked));
        EXPECT_EQ(create(registry.key, row.made) + set(registry.key, row.made), 0);
        EXPECT_TRUE(open(registry.key, row.asked) == row.answer && exists(registry.key, row.asked) == row.answer);
        EXPECT_TRUE(row.answer != 0 || set(registry.key, row.asked) == 0);
        EXPECT_EQ(listed(registry.key, 0), narrow(row.made)) << "the first spelling stays";
        RegDeleteTreeW(registry.key, nullptr);
    }
    EXPECT_EQ(set(registry.key, L"") + exists(registry.key, nullptr), 0) << "the default value";
}

TEST(RegistryPaths, AreNamesBetweenBackslashes) {
    const ScratchRegistry registry;
    EXPECT_EQ(ScratchKey(registry.key, L"a\\\\b\\c\\").disposition, DWORD{REG_CREATED_NEW_KEY});
    EXPECT_EQ(ScratchKey(registry.key, L"A\\B").disposition, DWORD{REG_OPENED_EXISTING_KEY});
    const std::pair<const wchar_t*, LSTATUS> rows[] = {
        {L"a\\", 0}, {L"a\\\\b\\\\", 0}, {L"A\\b\\C", 0},    {L"", 0},   {nullptr, 0},  {L"b", 2},
        {L"a/b", 2}, {L"a\\c", 2},       {L"a\\b\\c\\d", 2}, {L" a", 2}, {L"\\a", 161}, {L"\\", 161}};
    for (const auto& [path, answer] : rows)
        EXPECT_EQ(open(registry.key, path), answer) << (path != nullptr ? narrow(path) : "null");
    EXPECT_EQ(create(registry.key, L"\\a"), 161);
    HKEY hive = nullptr;
    EXPECT_TRUE(RegOpenKeyExW(HKEY_CURRENT_USER, L"", 0, KEY_READ, &hive) == 0 && hive == HKEY_CURRENT_USER);
    EXPECT_EQ(create(HKEY_CLASSES_ROOT, L"KelRootsTest"), 0);
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\KelRootsTest"), 0);
    const auto name = [](std::size_t length) { return units<wchar_t>(std::string(length, 'n')); };
    EXPECT_EQ(create(registry.key, name(255).data()) + set(registry.key, name(16383).data()), 0);
    EXPECT_EQ(create(registry.key, name(256).data()), underWine() ? 0 : 87);
    EXPECT_EQ(set(registry.key, name(16384).data()), 87);
}

TEST(RegistryHandles, HaveTheRightsThatTheyWereOpenedWith) {
    const ScratchRegistry registry;
    const std::tuple<REGSAM, LSTATUS, LSTATUS, const char*> rows[] = {
        {KEY_ALL_ACCESS, 0, 0, "sub"},  {KEY_READ, 5, 0, "sub"},      {KEY_WRITE, 0, 5, "5 5"},
        {KEY_QUERY_VALUE, 5, 0, "5 0"}, {KEY_SET_VALUE, 0, 5, "5 5"}, {KEY_ENUMERATE_SUB_KEYS, 5, 5, "0 5"}};
    for (const auto& [access, writing, reading, lists] : rows) {
        HKEY key;
        EXPECT_EQ(set(registry.key, L"sub") + RegOpenKeyExW(registry.key, nullptr, 0, access, &key), 0);
        EXPECT_EQ(create(key, L"sub"), 0) << "whatever the rights";
        EXPECT_TRUE(set(key, L"sub") == writing && exists(key, L"sub") == reading && listed(key, 0) == lists) << access;
        EXPECT_EQ(RegDeleteValueW(key, L"sub") + RegCloseKey(key), writing) << access;
    }
}

TEST(RegistryHandles, LeadNowhereOnceTheyAreClosedOrTheirKeyIsGone) {
    const ScratchRegistry registry;
    const ScratchKey gone(registry.key, L"a\\b");
    EXPECT_EQ(RegDeleteTreeW(registry.key, L"a") + create(registry.key, L"a\\b"), 0) << "another key of that name";
    for (const LSTATUS error : {1018, 6}) {
        const HKEY key = gone.handle;
        EXPECT_TRUE(set(key, L"v") == error && exists(key, L"v") == error && RegDeleteValueW(key, L"v") == error);
        EXPECT_TRUE(open(key, L"b") == error && open(key, L"") == error && create(key, L"b") == error);
        EXPECT_EQ(listed(key, 0), std::to_string(error) + ' ' + std::to_string(error));
        EXPECT_EQ(RegCloseKey(key), error == 6 ? 6 : 0);
    }
}

TEST(RegistryLists, GoThroughTheNamesInOrderAndTreesGoWithAllTheyHold) {
    const ScratchRegistry registry;
    std::string names;
    for (const wchar_t* const name : {L"beta", L"Alpha", L"beta2", L"gamma"}) {
        EXPECT_EQ(create(registry.key, name) + set(registry.key, name), 0);
        names = listed(registry.key, 0) + listed(registry.key, 1) + listed(registry.key, 2) + listed(registry.key, 3);
    }
    EXPECT_EQ(names + listed(registry.key, 4), "Alphabetabeta2gamma259 259");
    EXPECT_TRUE(listed(registry.key, 0, 5) == "234 234" && listed(registry.key, 0, 6) == "Alpha");
    const ScratchKey neighbour(registry.key, L"beta2");
    EXPECT_EQ(create(registry.key, L"beta\\x") + set(neighbour.handle, L"v"), 0);
    EXPECT_EQ(RegDeleteTreeW(registry.key, L"BETA") + exists(neighbour.handle, L"v"), 0);
    EXPECT_EQ(open(registry.key, L"beta"), 2);
    EXPECT_EQ(RegDeleteTreeW(registry.key, nullptr) + open(registry.key, L""), 0) << "the key itself stays";
    EXPECT_TRUE(open(registry.key, L"gamma") == 2 && exists(registry.key, L"gamma") == 2);
}

TEST(RegistryMemory, RunsOutWithAnErrorNumber) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    const ScratchRegistry registry;
    long nth = 0;
    for (bool failed = true; failed;) {
        const FailNthAllocation failing(++nth);
        const wchar_t* const name = L"A key with a name too long for the string itself\\Another one";
        const LSTATUS made = create(registry.key, name), result = made != 0 ? made : set(registry.key, name);
        failed = failing.happened();
        EXPECT_EQ(result, failed ? 8 : 0) << nth;
    }
    EXPECT_GT(nth, 7);
}

}  // namespace
