#include <gtest/gtest.h>
#include <roots/platform/Win32.h>

#include <string>

using namespace std::string_literals;

// Word by word: the header, the font, and of each control its styles, place, size, number, class and text.
TEST(DialogResources, AreInTheLibrary) {
    const std::u16string dialogs[] = {
        u"\1\xFFFF\0\0\0\0\xC0\x9000\2\0\0\xA9\x30\0\0\0\x8\0\x100MS Sans Serif\0\0"
        u"\0\0\0\0\1\x5000\7\4\x9E\x8\x3EA\0STATIC\0Progress of the process \0\0\0"
        u"\0\0\x20\0\x1001\x5000\x2E\x20\x4E\x8\x3EB\0STATIC\0\0\0"s,
        u"\x40\x4000\0\0\2\0\0\x8C\x2A\0\0\0\x8MS Sans Serif\0\0"
        u"\1\x5000\0\0\5\x1E\x82\x8\x3E8STATIC\0\x30%\0\0"
        u"\1\x5000\0\0\5\xA\x82\x8\xFFFFSTATIC\0Progress of the process \0\0"s};
    const HMODULE library = GetModuleHandleW(L"KelRoots.dll");
    for (const int id : {101, 103}) {
        const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(5));
        const auto* const words = static_cast<const char16_t*>(LockResource(LoadResource(library, found)));
        EXPECT_EQ(std::u16string(words, SizeofResource(library, found) / 2), dialogs[id == 103]) << id;
    }
}
