#include <gtest/gtest.h>
#include <roots/platform/Win32.h>

#include <string>

// Word by word: the header, the font, and of each control its styles, place, size, number, class and text.
TEST(DialogResources, AreInTheLibrary) {
    // clang-format off
    const std::u16string progress(
        u"\1\xFFFF\0\0\0\0\xC0\x9000\2\0\0\xA9\x30\0\0\0\x8\0\x100" u"MS Sans Serif\0"
        u"\0\0\0\0\0\1\x5000\7\4\x9E\x8\x3EA\0STATIC\0Progress of the process \0\0"
        u"\0\0\x20\0\x1001\x5000\x2E\x20\x4E\x8\x3EB\0STATIC\0\0", 89);
    const std::u16string forHosts(
        u"\x40\x4000\0\0\2\0\0\x8C\x2A\0\0\0\x8MS Sans Serif\0"
        u"\0\1\x5000\0\0\5\x1E\x82\x8\x3E8STATIC\0" u"0%\0\0"
        u"\1\x5000\0\0\5\xA\x82\x8\xFFFFSTATIC\0Progress of the process \0\0", 81);
    // clang-format on
    const HMODULE library = GetModuleHandleW(L"KelRoots.dll");
    for (const auto& [id, words] : {std::pair(101, progress), std::pair(103, forHosts)}) {
        const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(5));
        const void* const data = LockResource(LoadResource(library, found));
        EXPECT_EQ(std::u16string(static_cast<const char16_t*>(data), SizeofResource(library, found) / 2), words) << id;
    }
}
