// Settings, on Windows below keys of the test's own; the application's are used only where nobody has any.
#include <roots/settings/BryRegistry.h>
#include <tests/support/Platform.h>
#include <tests/support/Printers.h>
#include <tests/support/ScratchRegistry.h>

namespace {

const BryString kPath = L"Software\\KelRootsTest\\Settings";

void put(HKEY hive, const BryString& path, const wchar_t* name, const void* data, int size) {
    const auto* const bytes = static_cast<const BYTE*>(data);
    const ScratchKey key(hive, path.getStringW());
    EXPECT_EQ(RegSetValueExW(key.handle, name, 0, REG_BINARY, bytes, static_cast<DWORD>(size)), 0);
}

TEST(BryRegistryTexts, AreReadToTheirEndAndNeverCut) {
    const ScratchRegistry registry;
    BryString many;
    many.format(L"%02049d", 1);
    // clang-format off
    const struct { const wchar_t* text; int size; BryString machine, user, classes; } rows[] = {
        {L"C:\\P\\", 10, L"C:\\P", L"C:\\P\\", L"C:\\P\\"}, {L"C\\\\", 6, L"C\\", L"C\\\\", L"C\\\\"},
        {L"\\", 2, L"\\", L"\\", L"\\"}, {L"", 0, L"", L"", L""}, {L"a\0b", 6, L"a", L"a", L"a"}, {L"ab", 3, L"ab", L"ab", L"ab"},
        {many.getStringW(), 2048, many.left(1024), many.left(1024), many.left(1024)},
        {many.getStringW(), 2050, many.left(1025), many.left(1025), L""},
        {many.getStringW(), 4096, many.left(2048), many.left(2048), L""}, {many.getStringW(), 4098, L"D:", L"D:\\", L""}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        BryString machine = L"D:\\", user = L"D:\\", classes = L"D:\\";
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) put(hive, kPath, L"Text", row.text, row.size);
        put(HKEY_CLASSES_ROOT, L"KelRootsTest", L"Text", row.text, row.size);
        EXPECT_EQ(BryRegistry::getRegValue(kPath, L"TEXT", machine, 0), row.size <= 4096);
        EXPECT_EQ(BryRegistry::getRegValueCurrentUser(kPath, L"Text", user, 0), row.size <= 4096);
        EXPECT_EQ(BryRegistry::getRegValueClassesRoot(L"KelRootsTest", L"Text", classes), 1);
        EXPECT_TRUE(machine == row.machine && user == row.user && classes == row.classes);
    }
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\KelRootsTest"), 0);
}

TEST(BryRegistryKeys, AreMadeByWritersAndByReadersThatAreToldTo) {
    const ScratchRegistry registry;
    const BryString path = kPath + L"\\New";
    BryString text = L"D:\\";
    unsigned long number = 5;
    int user = 5;
    for (const int create : {0, 1}) {
        EXPECT_EQ(BryRegistry::getRegValue(path, L"v", number, create), 0);
        EXPECT_EQ(BryRegistry::getRegValueCurrentUser(path, L"v", text, create), 0);
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            EXPECT_EQ(RegDeleteTreeW(hive, path.getStringW()), create != 0 ? 0 : 2);
    }
    EXPECT_EQ(BryRegistry::getRegValueClassesRoot(L"KelRootsTest\\None", L"v", text), 0);
    EXPECT_EQ(BryRegistry::setRegValueCurrentUser(L"\\refused", L"n", -7), 0);
    for (const int size : {2, 6, 4}) {
        put(HKEY_LOCAL_MACHINE, path, L"n", "\xFF\xFF\xFF\xFF\xFF", size);
        EXPECT_EQ(BryRegistry::getRegValue(path, L"n", number, 0), size == 4) << "a number has 4 bytes";
        EXPECT_EQ(number, size == 4 ? 0xFFFFFFFF : 5);
    }
    EXPECT_TRUE(BryRegistry::setRegValueCurrentUser(path, L"n", -7) == 1 && text == L"D:\\");
    EXPECT_TRUE(BryRegistry::getRegValueCurrentUser(path, L"n", user, 0) == 1 && user == -7);
    for (const BryString& written : {BryString(L"H\x1F1"), BryString(L"")}) {
        EXPECT_EQ(BryRegistry::setRegValueCurrentUser(path, L"t", written), 1);
        EXPECT_TRUE(BryRegistry::getRegValueCurrentUser(path, L"t", text, 0) == 1 && text == written);
    }
}

TEST(BryRegistryApplication, ReadsItsOwnKeys) {
    if (onWindows && !underWine()) GTEST_SKIP() << "the application's keys may be somebody's";
    const ScratchRegistry registry(L"Software\\Ozmira");
    const BryString top = L"Software\\Ozmira\\Norrab\\2009", path = top + L"\\Environment";
    EXPECT_EQ(BryRegistry::getKorvelAddInConfig() + BryRegistry::getAddInEnvironmentPath() +
                  BryRegistry::getKorvelLocalMachinePath() + BryRegistry::getKorvelUserSettingsLiveUpdate(),
              top + L"\\AddInConfig" + top + L"\\AddInEnvironment" + top + top + L"\\Settings\\LiveUpdate");
    EXPECT_EQ(BryRegistry::getDBConnect() + BryRegistry::getDriverDescription() + BryRegistry::getListOfAttributes(),
              L"DBConnectDriverDescriptionListOfAttributes");
    EXPECT_EQ(BryRegistry::getCurrentLanguage(), 9u);
    const int rows[][3] = {{1036, 0, 12}, {3084, 0, 12}, {9, 3, 25}, {9, 2, 9}, {5, 3, 5}, {1031, 0, 1031}, {0, 3, 0}};
    for (const auto& [language, variant, expected] : rows) {
        put(HKEY_LOCAL_MACHINE, top, L"nLanguage", &language, 4);
        put(HKEY_LOCAL_MACHINE, top, L"nEnglishUK", &variant, 4);
        EXPECT_EQ(BryRegistry::getCurrentLanguage(), static_cast<unsigned long>(expected))
            << language << ' ' << variant;
    }
    EXPECT_TRUE(BryRegistry::getNorrabBinaryPath() == L"" && BryRegistry::getDatabaseConnectionsString(L"Main") == L"");
    put(HKEY_LOCAL_MACHINE, path, L"BinPath", L"C:\\Prog\\\\", 18);
    put(HKEY_LOCAL_MACHINE, path, L"DataPath", L"C:\\All\\\\\\", 18);
    put(HKEY_LOCAL_MACHINE, L"Software\\Ozmira\\DatabaseConnections", L"Main", L"Server=a\\", 18);
    EXPECT_TRUE(BryRegistry::getNorrabBinaryPath() == L"C:\\Prog" && BryRegistry::getNorrabDataPath() == L"C:\\All\\");
    EXPECT_EQ(BryRegistry::getDatabaseConnectionsString(L"Main"), L"Server=a\\");
    for (const auto& [own, expected] : {std::pair<BryString, BryString>{L"C:\\Me\\\\", L"C:\\Me\\"}, {L"", L""}}) {
        BryRegistry::setRegValueCurrentUser(path, L"DataPath", own);
        EXPECT_EQ(BryRegistry::getNorrabDataPath(), expected);
    }
    BryString text;
    int number = 0;
    EXPECT_EQ(BryRegistry::getData(L"Grid", L"Name", text) + BryRegistry::getData(L"Grid", L"Size", number), 0);
    EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, (top + L"\\Data\\Grid").getStringW()), 0) << "made by reading";
    EXPECT_EQ(BryRegistry::setData(L"Grid", L"Name", L"A-1") + BryRegistry::setData(L"Grid", L"Size", 6000), 2);
    EXPECT_EQ(BryRegistry::getData(L"Grid", L"Name", text) + BryRegistry::getData(L"Grid", L"Size", number), 2);
    EXPECT_TRUE(text == L"A-1" && number == 6000);
}

}  // namespace
