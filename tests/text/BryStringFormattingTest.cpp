#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <ctime>
#include <tuple>

#include "tests/support/Platform.h"
#include "tests/support/Printers.h"

TEST(BryStringFormat, TakesWideTextForSAndEightBitTextForCapitalS) {
    BryString text;
    EXPECT_EQ(text.format(L"%s-%d-%08x", L"HEA", 200, 0xBEEFu), L"HEA-200-0000beef");
    EXPECT_EQ(text.format(L"%S|%hs|%ls", "bytes", "bytes", L"wide"), L"bytes|bytes|wide");
    EXPECT_EQ(text.format("\xE4%s|%S|%5.1f", "bytes", L"wide", 2.25),
              L"\xE4"
              L"bytes|wide|  2.3")
        << "of the ANSI page";
    EXPECT_EQ(text.format(BryString(L"%d%%").getStringWAsUnsignedShort(), 7), L"7%");
    EXPECT_TRUE(text.format(L"").isEmpty());
    EXPECT_TRUE(text.format(static_cast<const wchar_t*>(nullptr)).isEmpty());
    EXPECT_TRUE(text.format(static_cast<const char*>(nullptr)).isEmpty());
    text = L"ab";
    EXPECT_EQ(text.format(L"%s%s", text.getStringW(), text.getStringW()), L"abab") << "its own text";
    EXPECT_EQ(text.format("%s+%s", text.getStringA(), text.getStringA()), L"abab+abab");
    EXPECT_EQ(text.format(text.getStringW()), L"abab+abab");
}

TEST(BryStringFormat, ComposesTextsBeyondTheScratchBuffersWhole) {
    for (const int units : {524'286, 524'287, 524'288, 1'500'000}) {
        BryString text;
        EXPECT_EQ(text.format(L"%*s", units, L"x").length(), units);
        EXPECT_EQ(text.format(L"%s%s", text.getStringW(), L"end").length(), units + 3);
        EXPECT_EQ(text.format("%s", text.getStringA()).length(), units + 3);
        EXPECT_EQ(text.right(5), L" xend");
    }
}

TEST(BryStringFormatTime, IsEmptyWhereTheTextDoesNotFit) {
    std::tm time = {};
    time.tm_year = 109;
    time.tm_mon = 1;
    time.tm_mday = 3;
    BryString text(L"old");
    EXPECT_EQ(text.formatTime(11, "%Y-%m-%d", &time), L"2009-02-03");
    EXPECT_TRUE(text.formatTime(10, "%Y-%m-%d", &time).isEmpty());
    EXPECT_TRUE(text.formatTime(0, "%Y", &time).isEmpty());
    EXPECT_TRUE(text.formatTime(99, nullptr, &time).isEmpty());
    EXPECT_TRUE(text.formatTime(99, "%Y", nullptr).isEmpty());
}

TEST(BryStringNumberTexts, AreTheRuntimes) {
    const int lowest = -2147483647 - 1;
    // clang-format off
    const std::tuple<int, int, BryString> rows[] = {
        {-5, 10, L"-5"}, {255, 16, L"ff"}, {-1, 16, L"ffffffff"}, {lowest, 10, L"-2147483648"}, {5, 1, L""},
        {lowest, 2, L"10000000000000000000000000000000"}, {35, 36, L"z"}, {5, -1, L""}, {5, 0, L""}, {5, 37, L""}};
    // clang-format on
    for (const auto& [value, radix, expected] : rows) {
        EXPECT_EQ(BryString::integerToString(value, radix), expected);
        EXPECT_EQ(BryString::longToString(value, radix), expected);
    }
    EXPECT_EQ(BryString::doubleToString(-2.25, 6), L"-2.25");
    EXPECT_EQ(BryString::doubleToString(123456.5, 5), L"1.2346e+005");
    EXPECT_EQ(BryString::doubleToString(3.0, 5), underWine() ? L"3" : L"3.") << "Wine drops the point";
    EXPECT_TRUE(BryString::doubleToString(1.5, 5000).isEmpty());
}

TEST(BryStringClock, HasTheFixedForms) {
    for (const auto& [text, separator] : {std::pair(BryString::time(), L':'), std::pair(BryString::date(), L'/')}) {
        ASSERT_EQ(text.length(), 8);
        for (int i = 0; i < 8; ++i)
            EXPECT_TRUE(i % 3 == 2 ? text[i] == separator : text[i] >= L'0' && text[i] <= L'9') << i;
    }
}

TEST(BryStringPath, IsSplitIntoFourPartsAndMadeOfThem) {
    // clang-format off
    const std::tuple<BryString, BryString, BryString, BryString, BryString> rows[] = {
        {L"c:\\parts\\P1.nc", L"c:", L"\\parts\\", L"P1", L".nc"}, {L"P1", L"", L"", L"P1", L""},
        {L"parts/a.b.nc1", L"", L"parts/", L"a.b", L".nc1"}, {L".profile", L"", L"", L"", L".profile"},
        {L"", L"", L"", L"", L""}};
    // clang-format on
    for (const auto& [path, drive, dir, name, ext] : rows) {
        BryString parts[5];
        path.SplitPath(parts[0], parts[1], parts[2], parts[3]);
        EXPECT_TRUE(parts[0] == drive && parts[1] == dir && parts[2] == name && parts[3] == ext) << path.getStringA();
        parts[4].MakePath(drive, dir, name, ext);
        EXPECT_EQ(parts[4], path);
    }
    BryString path(L"c:\\parts\\P1.nc"), dir, ext;
    path.SplitPath(ext, dir, path, ext);
    EXPECT_EQ(path, L"P1") << "taken by the string itself";
    path.MakePath(path, L"parts", path, L"nc");
    EXPECT_EQ(path, L"P:parts\\P1.nc");
}

TEST(BryStringPath, RefusesLongParts) {
    BryString drive(L"x"), dir(L"x"), name(L"x"), ext(L"x"), path, longName;
    longName.format(L"%0260d", 7).SplitPath(drive, dir, name, ext);
    EXPECT_TRUE(drive.isEmpty() && dir.isEmpty() && name.isEmpty() && ext.isEmpty());
    path.MakePath(L"c", L"", longName.left(257), L"");
    EXPECT_EQ(path.length(), 259);
    path.MakePath(L"c", L"", longName.left(258), L"");
    EXPECT_TRUE(path.isEmpty());
}

TEST(BryStringForeignText, DecodesTheMIFNotation) {
    // clang-format off
    const std::pair<const char*, BryString> rows[] = {
        {"plain text", L"plain text"}, {"", L""}, {nullptr, L""}, {"\xE4", L"\xE4"}, {"\\M+182A0", L"\x3042"},
        {"a\\M+182A0b\\M+182a2c", L"a\x3042" L"b\x3044" L"c"}, {"\\M+2A440", L"\x4E00"}, {"\\M+3B0A1", L"\xAC00"},
        {"\\M+48861", L"\xAC00"}, {"\\M+5B0A1", L"\x554A"}, {"\\M+", L""}, {"\\M+1", L""}, {"\\M+18", L""},
        {"\\M+182", L"2"}, {"\\M+182A", L"2A"}, {"\\M+1zz41", L"?A"}, {"\\M1\\m+182A0", L"\\M1\\m+182A0"}};
    // clang-format on
    for (const auto& [mif, expected] : rows) {
        BryString text(L"old");
        EXPECT_EQ(text.setFromMIFString(mif), expected) << (mif ? mif : "null");
        EXPECT_EQ(text, expected);
    }
    // The last selector holds for the whole text: 82 A0 is no character of 950, whatever stands for it.
    const BryString mixed = BryString().setFromMIFString("\\M+182A0\\M+2A440");
    EXPECT_TRUE(mixed.right(1) == L"\x4E00" && mixed.find(L"\x3042") == -1);
}

TEST(BryStringForeignText, TakesUnsignedShortText) {
    const unsigned short units[] = {'I', 0x4E00, 0};
    BryString text(L"old");
    EXPECT_TRUE(text.setFromUnsignedShortString(units) == L"I\x4E00" && text == L"I\x4E00");
    EXPECT_TRUE(text.setFromUnsignedShortString(nullptr).isEmpty());
}
