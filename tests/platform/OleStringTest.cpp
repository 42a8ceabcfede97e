#include <gtest/gtest.h>
#include <roots/platform/Win32.h>

#include <climits>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using OleString = std::unique_ptr<wchar_t, decltype(&SysFreeString)>;

OleString own(BSTR text) { return OleString(text, &SysFreeString); }

std::uint32_t bytesBefore(BSTR text) {
    std::uint32_t count;
    std::memcpy(&count, reinterpret_cast<const char*>(text) - 4, 4);
    return count;
}

}  // namespace

TEST(OleString, HasItsByteCountInFrontAndATerminatorBehind) {
    for (const UINT length : {0u, 1u, 7u, 8u, 1000u}) {
        std::vector<wchar_t> text(length, L'\x20AC');
        text.push_back(0);
        for (const BSTR made : {SysAllocString(text.data()), SysAllocStringLen(text.data(), length)}) {
            const OleString string = own(made);
            ASSERT_NE(made, nullptr) << length;
            EXPECT_EQ(bytesBefore(made), 2 * length);
            EXPECT_EQ(SysStringLen(made), length);
            EXPECT_EQ(std::memcmp(made, text.data(), 2 * (length + 1)), 0) << length;
        }
    }
}

TEST(OleString, KeepsZerosWithinItsLength) {
    const OleString string = own(SysAllocStringLen(L"a\0bc", 3));
    EXPECT_EQ(SysStringLen(string.get()), 3u);
    EXPECT_EQ(std::memcmp(string.get(), L"a\0b", 4 * sizeof(wchar_t)), 0);
}

TEST(OleString, OfNoTextIsNullOrWaitsToBeFilled) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    SysFreeString(nullptr);

    const OleString empty = own(SysAllocStringLen(nullptr, 5));
    EXPECT_EQ(SysStringLen(empty.get()), 5u);
    EXPECT_EQ(empty.get()[5], 0);
}

TEST(OleString, IsNullWhereItsByteCountWouldOverflow) {
    for (const UINT length : {UINT_MAX, UINT_MAX / 2 + 1, UINT_MAX / 2})
        EXPECT_EQ(SysAllocStringLen(nullptr, length), nullptr);
}
