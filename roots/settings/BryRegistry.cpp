#include <roots/platform/Win32.h>
#include <roots/settings/BryRegistry.h>

const wchar_t* const BryRegistry::KorvelRegistryPath = L"Software\\Ozmira\\Norrab\\2009\\Environment";
const wchar_t* const BryRegistry::KorvelAddInConfig = L"Software\\Ozmira\\Norrab\\2009\\AddInConfig";
const wchar_t* const BryRegistry::DBConnect = L"DBConnect";
const wchar_t* const BryRegistry::DriverDescription = L"DriverDescription";
const wchar_t* const BryRegistry::ListOfAttributes = L"ListOfAttributes";
const wchar_t* const BryRegistry::KorvelCurrentUserPath = L"Software\\Ozmira\\Norrab\\2009\\Data";
const wchar_t* const BryRegistry::AddInEnvironmentPath = L"Software\\Ozmira\\Norrab\\2009\\AddInEnvironment";
const wchar_t* const BryRegistry::KorvelLocalMachinePath = L"Software\\Ozmira\\Norrab\\2009";
const wchar_t* const BryRegistry::KorvelUserSettingsLiveUpdate =
    L"Software\\Ozmira\\Norrab\\2009\\Settings\\LiveUpdate";

namespace {

constexpr wchar_t kDatabaseConnections[] = L"Software\\Ozmira\\DatabaseConnections";
constexpr wchar_t kLanguageKey[] = L"Software\\Ozmira\\Norrab\\2009";

constexpr DWORD kTextSize = 4096, kClassesTextSize = 2048;  // bytes

// An open key, closed when it goes; false where it could not be opened.
class Key {
public:
    Key() = default;
    Key(HKEY hive, const BryString& path, REGSAM access) {
        if (RegOpenKeyExW(hive, path.getStringW(), 0, access, &m_key) != ERROR_SUCCESS) m_key = nullptr;
    }
    ~Key() {
        if (m_key != nullptr) RegCloseKey(m_key);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    // Makes the key where it could not be opened.
    void create(HKEY hive, const BryString& path) {
        const LSTATUS result = RegCreateKeyExW(hive, path.getStringW(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                               KEY_ALL_ACCESS, nullptr, &m_key, nullptr);
        if (result != ERROR_SUCCESS) m_key = nullptr;
    }

    explicit operator bool() const { return m_key != nullptr; }

    // Reads at most size bytes and leaves the rest of the buffer alone. size becomes what was read.
    bool read(const BryString& name, void* buffer, DWORD& size) const {
        const LSTATUS result =
            RegQueryValueExW(m_key, name.getStringW(), nullptr, nullptr, static_cast<BYTE*>(buffer), &size);
        return result == ERROR_SUCCESS;
    }

    int write(const BryString& name, DWORD type, const void* data, DWORD size) const {
        const auto* const bytes = static_cast<const BYTE*>(data);
        return RegSetValueExW(m_key, name.getStringW(), 0, type, bytes, size) == ERROR_SUCCESS;
    }

private:
    HKEY m_key = nullptr;
};

// The zeros behind what is read end a text that was stored without one, also one that fills the buffer.
bool readText(const Key& key, const BryString& name, BryString& value, DWORD size) {
    wchar_t buffer[kTextSize / sizeof(wchar_t) + 1] = {};
    if (!key.read(name, buffer, size)) return false;
    value = buffer;
    return true;
}

bool readValue(const Key& key, const BryString& name, BryString& value) {
    return readText(key, name, value, kTextSize);
}

template <class Number>
bool readValue(const Key& key, const BryString& name, Number& value) {
    DWORD number = 0, size = sizeof number;
    if (!key.read(name, &number, size) || size != sizeof number) return false;
    value = static_cast<Number>(number);
    return true;
}

template <class Value>
int readFrom(HKEY hive, const BryString& path, const BryString& name, Value& value, int create) {
    Key key(hive, path, KEY_READ);
    if (!key && create != 0) key.create(hive, path);
    return key && readValue(key, name, value);
}

int writeTo(const BryString& path, const BryString& name, DWORD type, const void* data, DWORD size) {
    Key key(HKEY_CURRENT_USER, path, KEY_WRITE);
    if (!key) key.create(HKEY_CURRENT_USER, path);
    return key && key.write(name, type, data, size);
}

void dropTrailingBackslash(BryString& text) {
    const int last = text.length() - 1;
    if (last >= 1 && text.getStringW()[last] == L'\\') text = text.left(last);
}

}  // namespace

int BryRegistry::getRegValue(const BryString& keyPath, const BryString& valueName, BryString& value, int create) {
    const int result = readFrom(HKEY_LOCAL_MACHINE, keyPath, valueName, value, create);
    dropTrailingBackslash(value);
    return result;
}

int BryRegistry::getRegValue(const BryString& keyPath, const BryString& valueName, unsigned long& value, int create) {
    return readFrom(HKEY_LOCAL_MACHINE, keyPath, valueName, value, create);
}

int BryRegistry::getRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, BryString& value,
                                        int create) {
    return readFrom(HKEY_CURRENT_USER, keyPath, valueName, value, create);
}

int BryRegistry::getRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, int& value, int create) {
    return readFrom(HKEY_CURRENT_USER, keyPath, valueName, value, create);
}

int BryRegistry::setRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, const BryString& value) {
    const DWORD size = static_cast<DWORD>(value.length()) * sizeof(wchar_t);
    return writeTo(keyPath, valueName, REG_SZ, value.getStringW(), size);
}

int BryRegistry::setRegValueCurrentUser(const BryString& keyPath, const BryString& valueName, const int& value) {
    return writeTo(keyPath, valueName, REG_DWORD, &value, sizeof value);
}

int BryRegistry::setData(const BryString& subKey, const BryString& valueName, const BryString& value) {
    return setRegValueCurrentUser(getKorvelCurrentUserPath() + L"\\" + subKey, valueName, value);
}

int BryRegistry::setData(const BryString& subKey, const BryString& valueName, const int& value) {
    return setRegValueCurrentUser(getKorvelCurrentUserPath() + L"\\" + subKey, valueName, value);
}

int BryRegistry::getData(const BryString& subKey, const BryString& valueName, BryString& value) {
    return getRegValueCurrentUser(getKorvelCurrentUserPath() + L"\\" + subKey, valueName, value, 1);
}

int BryRegistry::getData(const BryString& subKey, const BryString& valueName, int& value) {
    return getRegValueCurrentUser(getKorvelCurrentUserPath() + L"\\" + subKey, valueName, value, 1);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts call it with a value of their own
int BryRegistry::getRegValueClassesRoot(BryString keyPath, const BryString& valueName, BryString& value) {
    const Key key(HKEY_CLASSES_ROOT, keyPath, KEY_ALL_ACCESS);
    if (!key) return 0;
    if (!readText(key, valueName, value, kClassesTextSize)) value = L"";
    return 1;
}

unsigned long BryRegistry::getCurrentLanguage() {
    constexpr unsigned long english = 9, french = 12, britishEnglish = 25, britain = 3;
    unsigned long language = english, variant = 0;
    const Key key(HKEY_LOCAL_MACHINE, kLanguageKey, KEY_READ);
    if (!key || !readValue(key, L"nLanguage", language)) return english;
    if (language == 1036 || language == 3084) return french;
    if (language == english && readValue(key, L"nEnglishUK", variant) && variant == britain) return britishEnglish;
    return language;
}

BryString BryRegistry::getNorrabBinaryPath() {
    BryString path;
    getRegValue(KorvelRegistryPath, L"BinPath", path, 0);
    dropTrailingBackslash(path);
    return path;
}

BryString BryRegistry::getNorrabDataPath() {
    BryString path;
    if (!getRegValueCurrentUser(KorvelRegistryPath, L"DataPath", path, 0))
        getRegValue(KorvelRegistryPath, L"DataPath", path, 0);
    dropTrailingBackslash(path);
    return path;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts call it with a value of their own
BryString BryRegistry::getDatabaseConnectionsString(BryString valueName) {
    BryString text;
    readFrom(HKEY_LOCAL_MACHINE, kDatabaseConnections, valueName, text, 0);
    return text;
}

const BryString BryRegistry::getKorvelRegistryPath() { return KorvelRegistryPath; }
const BryString BryRegistry::getKorvelAddInConfig() { return KorvelAddInConfig; }
const BryString BryRegistry::getDBConnect() { return DBConnect; }
const BryString BryRegistry::getDriverDescription() { return DriverDescription; }
const BryString BryRegistry::getListOfAttributes() { return ListOfAttributes; }
const BryString BryRegistry::getKorvelCurrentUserPath() { return KorvelCurrentUserPath; }
const BryString BryRegistry::getAddInEnvironmentPath() { return AddInEnvironmentPath; }
const BryString BryRegistry::getKorvelLocalMachinePath() { return KorvelLocalMachinePath; }
const BryString BryRegistry::getKorvelUserSettingsLiveUpdate() { return KorvelUserSettingsLiveUpdate; }
