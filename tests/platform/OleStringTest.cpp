#include <gtest/gtest.h>
#include <roots/platform/Win32.h>

#include <climits>
#include <cstring>
#include <vector>

TEST(OleString, HasItsByteCountInFrontAndATerminatorBehind) {
    for (const UINT length : {0u, 1u, 7u, 8u, 1000u}) {
        std::vector<wchar_t> text(length, L'\x20AC');
        text.push_back(0);
        const BSTR whole = SysAllocString(text.data());
        if (length > 1) text[1] = 0;  // a zero within the length is kept
        for (const BSTR made : {whole, SysAllocStringLen(text.data(), length)}) {
            if (length > 1 && made == whole) made[1] = 0;
            std::uint32_t bytes;
            std::memcpy(&bytes, reinterpret_cast<const char*>(made) - sizeof bytes, sizeof bytes);
            EXPECT_EQ(bytes, 2 * length);
            EXPECT_EQ(SysStringLen(made), length);
            EXPECT_EQ(std::memcmp(made, text.data(), 2 * (length + 1)), 0) << length;
            SysFreeString(made);
        }
    }
}

TEST(OleString, OfNoTextIsNullOrWaitsToBeFilled) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    SysFreeString(nullptr);
    const BSTR empty = SysAllocStringLen(nullptr, 5);
    EXPECT_EQ(SysStringLen(empty), 5u);
    EXPECT_EQ(empty[5], 0);
    SysFreeString(empty);
    for (const UINT length : {UINT_MAX, UINT_MAX / 2 + 1, UINT_MAX / 2})
        EXPECT_EQ(SysAllocStringLen(nullptr, length), nullptr) << "its byte count would overflow";
}
