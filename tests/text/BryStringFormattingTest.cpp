#include <roots/text/BryString.h>

#include <gtest/gtest.h>

#include <ctime>
#include <vector>

#include "tests/support/Platform.h"
#include "tests/support/Printers.h"

TEST(BryStringFormat, TakesWideTextForSAndEightBitTextForCapitalS) {
    BryString text;
    EXPECT_EQ(text.format(L"%s-%d-%08x", L"HEA", 200, 0xBEEFu), L"HEA-200-0000beef");
    EXPECT_EQ(text.format(L"%S|%hs|%ls", "bytes", "bytes", L"wide"), L"bytes|bytes|wide");
    EXPECT_EQ(text.format("%s|%S|%5.1f", "bytes", L"wide", 2.25), L"bytes|wide|  2.3");
    const wchar_t format[] = L"%d%%";
    EXPECT_EQ(text.format(reinterpret_cast<const unsigned short*>(format), 7), L"7%");
    EXPECT_EQ(text.format("\xE4%c", 'x'), L"\xE4x") << "8-bit results are in the ANSI code page";
    EXPECT_TRUE(text.format(L"").isEmpty());
    EXPECT_TRUE(text.format(static_cast<const wchar_t*>(nullptr)).isEmpty());
    EXPECT_TRUE(text.format(static_cast<const char*>(nullptr)).isEmpty());
}

TEST(BryStringFormat, AcceptsItsOwnTextAsArgument) {
    BryString text(L"ab");
    text.format(L"%s%s", text.getStringW(), text.getStringW());
    EXPECT_EQ(text, L"abab");
    text.format("%s+%s", text.getStringA(), text.getStringA());
    EXPECT_EQ(text, L"abab+abab");
    text.format(text.getStringW());
    EXPECT_EQ(text, L"abab+abab");
}

TEST(BryStringFormat, ComposesTextsBeyondTheScratchBuffersWhole) {
    for (const int units : {524'286, 524'287, 524'288, 1'500'000}) {
        const std::vector<wchar_t> filler = [units] {
            std::vector<wchar_t> text(static_cast<std::size_t>(units), L'x');
            text.push_back(0);
            return text;
        }();
        BryString text;
        text.format(L"%s", filler.data());
        EXPECT_EQ(text.length(), units);
        text.format(L"%s%s", text.getStringW(), L"end");
        EXPECT_EQ(text.length(), units + 3);
        EXPECT_EQ(text.right(4), L"xend");
        text.format("%s", text.getStringA());
        EXPECT_EQ(text.length(), units + 3);
        EXPECT_EQ(text.right(4), L"xend");
    }
}

TEST(BryStringFormatTime, IsEmptyWhereTheTextDoesNotFit) {
    std::tm time = {};
    time.tm_year = 109;
    time.tm_mon = 1;
    time.tm_mday = 3;
    time.tm_hour = 14;
    BryString text(L"old");
    EXPECT_EQ(text.formatTime(11, "%Y-%m-%d", &time), L"2009-02-03");
    EXPECT_TRUE(text.formatTime(10, "%Y-%m-%d", &time).isEmpty());
    EXPECT_TRUE(text.formatTime(0, "%Y", &time).isEmpty());
    EXPECT_TRUE(text.formatTime(99, nullptr, &time).isEmpty());
    EXPECT_TRUE(text.formatTime(99, "%Y", nullptr).isEmpty());
}

TEST(BryStringNumberTexts, AreTheRuntimes) {
    const struct {
        int value, radix;
        BryString expected;
    } rows[] = {
        {0, 10, L"0"},
        {-5, 10, L"-5"},
        {255, 16, L"ff"},
        {-1, 16, L"ffffffff"},
        {-2147483647 - 1, 10, L"-2147483648"},
        {-2147483647 - 1, 2, L"10000000000000000000000000000000"},
        {35, 36, L"z"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(BryString::integerToString(row.value, row.radix), row.expected);
        EXPECT_EQ(BryString::longToString(row.value, row.radix), row.expected);
    }
    for (const int radix : {-1, 0, 1, 37}) EXPECT_TRUE(BryString::integerToString(5, radix).isEmpty()) << radix;
    EXPECT_EQ(BryString::doubleToString(0.5, 3), L"0.5");
    EXPECT_EQ(BryString::doubleToString(-2.25, 6), L"-2.25");
    EXPECT_EQ(BryString::doubleToString(123456.5, 5), L"1.2346e+005");
    EXPECT_EQ(BryString::doubleToString(3.0, 5), underWine() ? L"3" : L"3.") << "Wine drops the point";
    EXPECT_TRUE(BryString::doubleToString(1.5, 5000).isEmpty());
}

TEST(BryStringClock, HasTheFixedForms) {
    const auto shaped = [](const BryString& text, const char* shape) {
        for (int i = 0; i <= 8; ++i) {
            const bool digit = text[i] >= L'0' && text[i] <= L'9';
            if (i < 8 && shape[i] == '0' ? !digit : text[i] != static_cast<wchar_t>(shape[i])) return false;
        }
        return true;
    };
    EXPECT_TRUE(shaped(BryString::time(), "00:00:00")) << testing::PrintToString(BryString::time());
    EXPECT_TRUE(shaped(BryString::date(), "00/00/00")) << testing::PrintToString(BryString::date());
}

TEST(BryStringPath, IsSplitIntoFourParts) {
    const struct {
        BryString path, drive, dir, name, ext;
    } rows[] = {
        {L"c:\\parts\\P1.nc", L"c:", L"\\parts\\", L"P1", L".nc"},
        {L"parts/a.b.nc1", L"", L"parts/", L"a.b", L".nc1"},
        {L"P1", L"", L"", L"P1", L""},
        {L"", L"", L"", L"", L""},
        {L".profile", L"", L"", L"", L".profile"},
        {L"\\\\server\\share\\x", L"", L"\\\\server\\share\\", L"x", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.path));
        BryString drive, dir, name, ext, joined;
        row.path.SplitPath(drive, dir, name, ext);
        EXPECT_EQ(drive, row.drive);
        EXPECT_EQ(dir, row.dir);
        EXPECT_EQ(name, row.name);
        EXPECT_EQ(ext, row.ext);
        joined.MakePath(drive, dir, name, ext);
        EXPECT_EQ(joined, row.path);
    }
}

TEST(BryStringPath, TakesItsOwnPartsAndRefusesLongOnes) {
    BryString path(L"c:\\parts\\P1.nc"), dir, ext;
    path.SplitPath(ext, dir, path, ext);
    EXPECT_EQ(path, L"P1");
    path.MakePath(path, L"parts", path, L"nc");
    EXPECT_EQ(path, L"P:parts\\P1.nc");

    BryString longName(L"n");
    while (longName.length() < 260) longName += longName;
    BryString drive(L"x"), name(L"x");
    longName.SplitPath(drive, dir, name, ext);
    EXPECT_TRUE(drive.isEmpty() && dir.isEmpty() && name.isEmpty() && ext.isEmpty());
    path.MakePath(L"c", L"", longName, L"");
    EXPECT_TRUE(path.isEmpty());
    const BryString fits = longName.left(257);
    path.MakePath(L"c", L"", fits, L"");
    EXPECT_EQ(path.length(), 259);
}

TEST(BryStringForeignText, DecodesTheMIFNotation) {
    const struct {
        const char* text;
        BryString expected;
    } rows[] = {
        {"plain text", L"plain text"},
        {"", L""},
        {nullptr, L""},
        {"\xE4", L"\xE4"},
        {"\\M+182A0", L"\x3042"},
        {"a\\M+182A0b\\M+182a2c",
         L"a\x3042"
         L"b\x3044"
         L"c"},
        {"\\M+2A440", L"\x4E00"},
        {"\\M+3B0A1", L"\xAC00"},
        {"\\M+48861", L"\xAC00"},
        {"\\M+5B0A1", L"\x554A"},
        {"\\M+", L""},
        {"\\M+1", L""},
        {"\\M+18", L""},
        {"\\M+182", L"2"},
        {"\\M+182A", L"2A"},
        {"\\M+1zz41", L"?A"},
        {"\\M1\\m+182A0", L"\\M1\\m+182A0"},
    };
    for (const auto& row : rows) {
        BryString text(L"old");
        EXPECT_EQ(text.setFromMIFString(row.text), row.expected) << (row.text ? row.text : "null");
        EXPECT_EQ(text, row.expected);
    }
    // The last selector holds for the whole text: 82 A0 is no character of 950, whatever stands for it.
    BryString mixed;
    mixed.setFromMIFString("\\M+182A0\\M+2A440");
    EXPECT_EQ(mixed.right(1), L"\x4E00");
    EXPECT_EQ(mixed.find(L"\x3042"), -1);
}

TEST(BryStringForeignText, TakesUnsignedShortText) {
    const unsigned short units[] = {'I', 0x4E00, 0};
    BryString text(L"old");
    EXPECT_EQ(text.setFromUnsignedShortString(units), L"I\x4E00");
    EXPECT_EQ(text, L"I\x4E00");
    EXPECT_TRUE(text.setFromUnsignedShortString(nullptr).isEmpty());
}
