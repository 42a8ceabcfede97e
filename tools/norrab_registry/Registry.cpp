#include "Registry.h"

#include "KeyName.h"

namespace {

constexpr DWORD longestKeyName = 255;
constexpr DWORD longestValueName = 16383;

HKEY hiveOf(const BryString& name) {
    const BryString hive = name.left(lengthOfHive(name));
    if (hive == L"HKEY_LOCAL_MACHINE") return HKEY_LOCAL_MACHINE;
    return hive == L"HKEY_CURRENT_USER" ? HKEY_CURRENT_USER : HKEY_CLASSES_ROOT;
}

BryString pathOf(const BryString& name) { return name >> (lengthOfHive(name) + 1); }

// An open key.
class Key {
public:
    Key() = default;
    ~Key() { close(); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    LSTATUS open(const BryString& name) {
        close();
        return RegOpenKeyExW(hiveOf(name), pathOf(name).getStringW(), 0, KEY_READ, &m_key);
    }
    LSTATUS create(const BryString& name) {
        close();
        const HKEY hive = hiveOf(name);
        const BryString path = pathOf(name);
        // Not everybody may make keys in a hive itself, which is there anyway.
        if (path.isEmpty()) return RegOpenKeyExW(hive, L"", 0, KEY_SET_VALUE, &m_key);
        return RegCreateKeyExW(hive, path.getStringW(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr,
                               &m_key, nullptr);
    }
    void close() {
        if (m_key) RegCloseKey(m_key);
        m_key = nullptr;
    }
    operator HKEY() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

LSTATUS readValues(HKEY key, std::vector<RegEntry>& entries) {
    std::vector<wchar_t> name(longestValueName + 1);
    std::vector<BYTE> data(1024);
    for (DWORD index = 0;;) {
        DWORD length = static_cast<DWORD>(name.size()), size = static_cast<DWORD>(data.size()), type = REG_NONE;
        const LSTATUS error = RegEnumValueW(key, index, name.data(), &length, nullptr, &type, data.data(), &size);
        if (error == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
        if (error == ERROR_MORE_DATA) {
            data.resize(2 * data.size());
            continue;
        }
        if (error != ERROR_SUCCESS) return error;
        entries.push_back({RegEntry::value, name.data(), type, {data.begin(), data.begin() + size}, 0});
        ++index;
    }
}

LSTATUS readSubkeyNames(HKEY key, const BryString& parent, std::vector<BryString>& names) {
    wchar_t name[longestKeyName + 1];
    for (DWORD index = 0;; ++index) {
        DWORD length = longestKeyName + 1;
        const LSTATUS error = RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (error == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
        if (error != ERROR_SUCCESS) return error;
        names.push_back(parent + L"\\" + name);
    }
}

LSTATUS setValue(HKEY key, const RegEntry& value) {
    // Windows looks at the unit behind a text and stores it too where it is zero.
    std::vector<BYTE> data = value.data;
    data.insert(data.end(), 2, 0xFF);
    return RegSetValueExW(key, value.name.getStringW(), 0, value.type, data.data(),
                          static_cast<DWORD>(value.data.size()));
}

LSTATUS writeEntry(const RegEntry& entry, Key& key) {
    LSTATUS error = ERROR_SUCCESS;
    switch (entry.kind) {
        case RegEntry::key: return key.create(entry.name);
        case RegEntry::value: return setValue(key, entry);
        case RegEntry::deletedValue: error = RegDeleteValueW(key, entry.name.getStringW()); break;
        case RegEntry::deletedKey:
            key.close();
            error = RegDeleteTreeW(hiveOf(entry.name), pathOf(entry.name).getStringW());
            break;
    }
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return ERROR_SUCCESS;
    return error;
}

}  // namespace

LSTATUS readKey(const BryString& name, Subkeys subkeys, std::vector<RegEntry>& entries) {
    Key key;
    LSTATUS error = key.open(name);
    if (error != ERROR_SUCCESS) return error;
    entries.push_back(RegEntry::makeKey(name));
    std::vector<BryString> names;
    if ((error = readValues(key, entries)) != ERROR_SUCCESS) return error;
    if ((error = readSubkeyNames(key, name, names)) != ERROR_SUCCESS) return error;
    key.close();
    for (const BryString& subkey : names) {
        if (subkeys == Subkeys::named)
            entries.push_back(RegEntry::makeKey(subkey));
        else if ((error = readKey(subkey, subkeys, entries)) != ERROR_SUCCESS)
            return error;
    }
    return ERROR_SUCCESS;
}

LSTATUS readValue(const BryString& keyName, const BryString& name, RegEntry& value) {
    Key key;
    LSTATUS error = key.open(keyName);
    value = {RegEntry::value, name, REG_NONE, {}, 0};
    if (error != ERROR_SUCCESS) return error;
    // Others may make the value longer in between.
    for (DWORD size = 1024;;) {
        value.data.resize(size);
        error = RegQueryValueExW(key, name.getStringW(), nullptr, &value.type, value.data.data(), &size);
        if (error == ERROR_MORE_DATA) continue;
        value.data.resize(error == ERROR_SUCCESS ? size : 0);
        return error;
    }
}

LSTATUS writeEntries(const std::vector<RegEntry>& entries, std::size_t& done) {
    Key key;
    for (done = 0; done < entries.size(); ++done) {
        const LSTATUS error = writeEntry(entries[done], key);
        if (error != ERROR_SUCCESS) return error;
    }
    return ERROR_SUCCESS;
}

BryString errorText(LSTATUS error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND: return L"there is no such key or value";
        case ERROR_ACCESS_DENIED: return L"access denied";
        default: return BryString(L"the registry answers with error ") + BryString::integerToString(error, 10);
    }
}
