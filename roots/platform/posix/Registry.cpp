// The registry's services: open keys, the rights that they were opened with, names and their case.
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/CharacterTypes.h>
#include <roots/platform/posix/RegistryStore.h>
#include <roots/platform/posix/Utf.h>

#include <algorithm>
#include <new>
#include <unordered_map>
#include <vector>

namespace {

using platform::Bytes;
using platform::kClassesKey;
using platform::KeyId;
using platform::kMachineKey;
using platform::kNoKey;
using platform::kUserKey;
using platform::Query;
using platform::RegistryFailure;
using platform::RegistryStore;
using platform::Statement;

constexpr std::size_t kLongestKeyName = 255, kLongestValueName = 16383;
constexpr int kDeepestKey = 512;

struct OpenKey {
    KeyId id;
    std::string path;  // in upper case, from its hive on
    REGSAM access;
};

// By numbers that are given only once, so that a handle that is closed or was never one leads nowhere.
std::unordered_map<std::uintptr_t, OpenKey>& openKeys() {
    static auto& keys = *new std::unordered_map<std::uintptr_t, OpenKey>;
    return keys;
}

HKEY newHandle(OpenKey key) {
    static std::uintptr_t lastHandle = 0;
    openKeys().emplace(lastHandle + 4, std::move(key));
    return reinterpret_cast<HKEY>(lastHandle += 4);
}

const OpenKey* hive(HKEY key) {
    static const auto& machine = *new OpenKey{kMachineKey, "HKEY_LOCAL_MACHINE", KEY_ALL_ACCESS};
    static const auto& user = *new OpenKey{kUserKey, "HKEY_CURRENT_USER", KEY_ALL_ACCESS};
    static const auto& classes = *new OpenKey{kClassesKey, "HKEY_LOCAL_MACHINE\\SOFTWARE\\CLASSES", KEY_ALL_ACCESS};
    return key == HKEY_LOCAL_MACHINE  ? &machine
           : key == HKEY_CURRENT_USER ? &user
           : key == HKEY_CLASSES_ROOT ? &classes
                                      : nullptr;
}

const OpenKey& opened(HKEY handle, REGSAM needed = 0) {
    const OpenKey* key = hive(handle);
    if (key == nullptr) {
        const auto at = openKeys().find(reinterpret_cast<std::uintptr_t>(handle));
        if (at == openKeys().end()) throw RegistryFailure{ERROR_INVALID_HANDLE};
        key = &at->second;
    }
    if ((key->access & needed) != needed) throw RegistryFailure{ERROR_ACCESS_DENIED};
    return *key;
}

// Every service runs in here: one at a time, and nothing is thrown out of it.
template <class Service>
LSTATUS serve(Service service) {
    const std::lock_guard<std::mutex> lock(platform::registryMutex());
    try {
        service();
        return ERROR_SUCCESS;
    } catch (const RegistryFailure& failure) {
        return static_cast<LSTATUS>(failure.error);
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

void refuseUnless(bool condition, DWORD error = ERROR_INVALID_PARAMETER) {
    if (!condition) throw RegistryFailure{error};
}

void requireAlive(RegistryStore& store, KeyId key) {
    refuseUnless(key <= platform::kLastFixedKey || store.run(Query::eHasKey, key).next(), ERROR_KEY_DELETED);
}

// ---- names ----------------------------------------------------------------------------------------------------------

void appendUtf8(std::string& to, const wchar_t* text, std::size_t length, bool folded) {
    const auto add = [&to](unsigned byte) { to += static_cast<char>(byte); };
    for (std::size_t i = 0; i < length; ++i) {
        const wchar_t unit = folded ? platform::inCase(platform::Case::eUpper, text[i]) : text[i];
        if (platform::isHighSurrogate(unit) && i + 1 < length && platform::isLowSurrogate(text[i + 1]))
            platform::encodeUtf8(platform::pairValue(unit, text[++i]), add);
        else
            platform::encodeUtf8(unit, add);
    }
}

// The wide form of what appendUtf8 made; lone surrogates come back as they were.
std::vector<wchar_t> fromUtf8(Bytes text) {
    std::vector<wchar_t> units;
    const auto* at = static_cast<const unsigned char*>(text.data);
    for (const auto* const end = at + text.size; at < end;) {
        const int trails = std::min(platform::trailCount(*at), static_cast<int>(end - at) - 1);
        unsigned value = trails == 0 ? *at : platform::leadBits(*at, trails);
        for (int i = 1; i <= trails; ++i) value = value << 6 | (at[i] & 0x3Fu);
        at += trails + 1;
        if (value > 0xFFFF) units.push_back(platform::highSurrogate(value));
        units.push_back(value > 0xFFFF ? platform::lowSurrogate(value) : static_cast<wchar_t>(value));
    }
    return units;
}

struct Name {
    std::string folded, spelt;

    Name(const wchar_t* text, std::size_t length) {
        appendUtf8(folded, text, length, true);
        appendUtf8(spelt, text, length, false);
    }
};

// The name of a value; a longer one than there can be is refused with the error.
Name valueName(const wchar_t* name, DWORD errorWhereTooLong) {
    const std::size_t length = name != nullptr ? wide::length(name, kLongestValueName + 1) : 0;
    refuseUnless(length <= kLongestValueName, errorWhereTooLong);
    return {name, length};
}

// Calls visit with each name in a path.
template <class Visit>
void eachName(const wchar_t* path, DWORD errorWhereTooLong, Visit visit) {
    if (path == nullptr) return;
    refuseUnless(*path != L'\\', ERROR_BAD_PATHNAME);
    for (std::size_t left = wide::length(path); left != 0;) {
        const std::size_t length = std::min(wide::find(path, left, L'\\'), left);
        refuseUnless(length <= kLongestKeyName, errorWhereTooLong);
        if (length != 0) visit(path, length);
        path += std::min(length + 1, left);
        left -= std::min(length + 1, left);
    }
}

std::string pathBelow(const OpenKey& key, const wchar_t* path, DWORD errorWhereTooLong) {
    std::string below = key.path;
    eachName(path, errorWhereTooLong, [&below](const wchar_t* name, std::size_t length) {
        below += '\\';
        appendUtf8(below, name, length, true);
    });
    return below;
}

// ---- keys -----------------------------------------------------------------------------------------------------------

KeyId findKey(RegistryStore& store, const std::string& path) {
    Statement found = store.run(Query::eFindKey, path);
    return found.next() ? found.number(0) : kNoKey;
}

// The handle of the key that path names below another; null where it is missing.
HKEY openBelow(const OpenKey& key, const std::string& path, REGSAM access) {
    RegistryStore store((access & KEY_SET_VALUE) != 0 ? RegistryStore::eReadToWrite : RegistryStore::eRead);
    requireAlive(store, key.id);
    const KeyId id = path == key.path ? key.id : findKey(store, path);
    return id != kNoKey ? newHandle({id, path, access}) : nullptr;
}

// Makes the keys that are missing on a path.
void addKeys(const OpenKey& key, const wchar_t* path) {
    RegistryStore store(RegistryStore::eWrite);
    requireAlive(store, key.id);
    KeyId parent = key.id;
    std::string below = key.path;
    eachName(path, ERROR_INVALID_PARAMETER, [&](const wchar_t* text, std::size_t length) {
        const Name name(text, length);
        below += '\\' + name.folded;
        KeyId id = findKey(store, below);
        if (id == kNoKey) {
            store.run(Query::eAddKey, below, parent, name.spelt).next();
            id = findKey(store, below);
        }
        parent = id;
    });
    store.commit();
}

// ---- values ---------------------------------------------------------------------------------------------------------

bool isText(std::int64_t type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// Tells a value that is the current row of found: its type, then its data. A text that does not end with a zero is
// followed by one where there is room for it; an empty value is not.
void tellValue(Statement& found, DWORD* type, BYTE* data, DWORD* size) {
    const Bytes bytes = found.bytes(1);
    const DWORD room = size != nullptr ? *size : 0;
    if (type != nullptr) *type = static_cast<DWORD>(found.number(0));
    if (size != nullptr) *size = static_cast<DWORD>(bytes.size);
    if (data == nullptr) return;
    refuseUnless(bytes.size <= room, ERROR_MORE_DATA);
    const BYTE* const end = std::copy_n(static_cast<const BYTE*>(bytes.data), bytes.size, data);
    const bool isEnded = bytes.size == 0 || (bytes.size >= 2 && end[-1] == 0 && end[-2] == 0);
    if (isText(found.number(0)) && !isEnded && room - bytes.size >= sizeof(wchar_t))
        std::fill_n(data + bytes.size, sizeof(wchar_t), BYTE{0});
}

void tellName(Bytes utf8, wchar_t* name, DWORD* size) {
    const std::vector<wchar_t> text = fromUtf8(utf8);
    refuseUnless(text.size() < *size, ERROR_MORE_DATA);
    std::copy(text.begin(), text.end(), name);
    name[text.size()] = 0;
    *size = static_cast<DWORD>(text.size());
}

}  // namespace

LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* path, DWORD, REGSAM access, HKEY* result) {
    if (result == nullptr) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    return serve([&] {
        const OpenKey& base = opened(key);
        if (hive(key) != nullptr && (path == nullptr || *path == 0))
            *result = key;
        else
            *result = openBelow(base, pathBelow(base, path, ERROR_FILE_NOT_FOUND), access);
        refuseUnless(*result != nullptr, ERROR_FILE_NOT_FOUND);
    });
}

LSTATUS RegCreateKeyExW(HKEY key, const wchar_t* path, DWORD reserved, wchar_t*, DWORD options, REGSAM access,
                        const SECURITY_ATTRIBUTES*, HKEY* result, DWORD* disposition) {
    if (reserved != 0 || options != REG_OPTION_NON_VOLATILE || result == nullptr) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    return serve([&] {
        const OpenKey& base = opened(key);
        const std::string whole = pathBelow(base, path, ERROR_INVALID_PARAMETER);
        *result = hive(key) == &base && whole == base.path ? key : openBelow(base, whole, access);
        if (disposition != nullptr) *disposition = *result != nullptr ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
        if (*result != nullptr) return;
        refuseUnless(std::count(whole.begin(), whole.end(), '\\') <= kDeepestKey);
        addKeys(base, path);
        *result = openBelow(base, whole, access);
        refuseUnless(*result != nullptr, ERROR_KEY_DELETED);  // another process was quick
    });
}

LSTATUS RegCloseKey(HKEY key) {
    return serve([key] {
        if (hive(key) == nullptr)
            refuseUnless(openKeys().erase(reinterpret_cast<std::uintptr_t>(key)) != 0, ERROR_INVALID_HANDLE);
    });
}

LSTATUS RegQueryValueExW(HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
    if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
    return serve([&] {
        const OpenKey& base = opened(key, KEY_QUERY_VALUE);
        std::string folded;
        const std::size_t length = name != nullptr ? wide::length(name) : 0;
        appendUtf8(folded, name, length, true);
        RegistryStore store(RegistryStore::eRead);
        Statement found = store.run(Query::eReadValue, base.id, folded);
        if (found.next()) return tellValue(found, type, data, size);
        requireAlive(store, base.id);
        if (data == nullptr && size != nullptr) *size = 0;
        throw RegistryFailure{ERROR_FILE_NOT_FOUND};
    });
}

LSTATUS RegSetValueExW(HKEY key, const wchar_t* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    if (data == nullptr && size != 0) return ERROR_NOACCESS;
    return serve([&] {
        const OpenKey& base = opened(key, KEY_SET_VALUE);
        const Name names = valueName(name, ERROR_INVALID_PARAMETER);
        RegistryStore store(RegistryStore::eWrite);
        requireAlive(store, base.id);
        store.run(Query::eWriteValue, base.id, names.folded, names.spelt, type, Bytes{data, size}).next();
        store.commit();
    });
}

LSTATUS RegDeleteValueW(HKEY key, const wchar_t* name) {
    return serve([&] {
        const OpenKey& base = opened(key, KEY_SET_VALUE);
        const Name names = valueName(name, ERROR_FILE_NOT_FOUND);
        RegistryStore store(RegistryStore::eWrite);
        requireAlive(store, base.id);
        refuseUnless(store.run(Query::eReadValue, base.id, names.folded).next(), ERROR_FILE_NOT_FOUND);
        store.run(Query::eRemoveValue, base.id, names.folded).next();
        store.commit();
    });
}

LSTATUS RegDeleteTreeW(HKEY key, const wchar_t* path) {
    return serve([&] {
        const bool wholeKey = path != nullptr && *path != 0;
        const OpenKey& base = opened(key, wholeKey ? 0 : KEY_SET_VALUE | KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS);
        const std::string whole = pathBelow(base, path, ERROR_FILE_NOT_FOUND);
        RegistryStore store(RegistryStore::eWrite);
        requireAlive(store, base.id);
        const KeyId id = whole == base.path ? base.id : findKey(store, whole);
        refuseUnless(id != kNoKey, ERROR_FILE_NOT_FOUND);
        store.run(Query::eClearTree, whole, id).next();
        store.run(Query::eRemoveBelow, whole).next();
        if (wholeKey) store.run(Query::eRemoveKey, whole).next();
        store.commit();
    });
}

LSTATUS RegEnumKeyExW(HKEY key, DWORD index, wchar_t* name, DWORD* size, DWORD* reserved, wchar_t* keyClass,
                      DWORD* classSize, FILETIME* written) {
    if (name == nullptr || size == nullptr || reserved != nullptr || keyClass != nullptr || classSize != nullptr ||
        written != nullptr)
        return ERROR_INVALID_PARAMETER;
    return serve([&] {
        const OpenKey& base = opened(key, KEY_ENUMERATE_SUB_KEYS);
        RegistryStore store(RegistryStore::eRead);
        requireAlive(store, base.id);
        Statement found = store.run(Query::eNthKey, base.id, index);
        refuseUnless(found.next(), ERROR_NO_MORE_ITEMS);
        tellName(found.bytes(0), name, size);
    });
}

LSTATUS RegEnumValueW(HKEY key, DWORD index, wchar_t* name, DWORD* nameSize, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
    if (name == nullptr || nameSize == nullptr || reserved != nullptr || (data != nullptr && size == nullptr))
        return ERROR_INVALID_PARAMETER;
    return serve([&] {
        const OpenKey& base = opened(key, KEY_QUERY_VALUE);
        RegistryStore store(RegistryStore::eRead);
        requireAlive(store, base.id);
        Statement found = store.run(Query::eNthValue, base.id, index);
        refuseUnless(found.next(), ERROR_NO_MORE_ITEMS);
        tellName(found.bytes(2), name, nameSize);
        tellValue(found, type, data, size);
    });
}
