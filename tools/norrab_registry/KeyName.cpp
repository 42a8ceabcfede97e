#include "KeyName.h"

namespace {

constexpr int longestKeyName = 255;
constexpr long deepestKey = 512;

const struct {
    const wchar_t *name, *shortName;
} hives[] = {
    {L"HKEY_LOCAL_MACHINE", L"HKLM"},
    {L"HKEY_CURRENT_USER", L"HKCU"},
    {L"HKEY_CLASSES_ROOT", L"HKCR"},
};

}  // namespace

bool readKeyName(const BryString& text, BryString& name, BryString& reason) {
    BryString names = text;
    BryArray<BryString> parts;
    BryString::getTokens(names, parts, L"\\");
    name.empty();
    if (text[0] != L'\\' && parts.length() > 0)
        for (const auto& hive : hives)
            if (BryString::compareNoCase(parts[0], hive.name) == 0 ||
                BryString::compareNoCase(parts[0], hive.shortName) == 0)
                name = hive.name;
    if (name.isEmpty()) {
        reason = L"a key begins with HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER or HKEY_CLASSES_ROOT";
        return false;
    }
    if (parts.length() - 1 > deepestKey) {
        reason = L"a key is more than 512 levels deep";
        return false;
    }
    for (long i = 1; i < parts.length(); ++i) {
        name += BryString(L"\\") + parts[i];
        if (parts[i].length() <= longestKeyName) continue;
        reason = L"the name of a key is longer than 255 characters";
        return false;
    }
    return true;
}

int lengthOfHive(const BryString& name) {
    const int backslash = name.find(L"\\");
    return backslash < 0 ? name.length() : backslash;
}
