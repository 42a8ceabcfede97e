#include "MarksFile.h"
#include "Options.h"
#include "Program.h"
#include "Progress.h"
#include "RunLog.h"
#include "Summary.h"
#include "Tracked.h"
#include "Utf8.h"

#include <roots/Version.h>
#include <roots/settings/BryRegistry.h>
#include <tests/support/Platform.h>
#include <tests/support/Printers.h>
#include <tests/support/ScratchRegistry.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace fs = std::filesystem;

namespace {

// Lines 1 to 10, 11 to 16, 17 to 24 and 25 to 31.
// clang-format off
const std::vector<BryString> goodLines = {
    L"ST", L"** a comment", L"  HALL 7", L"  D 1", L"  2", L"  b1", L"  S355J2", L"  4", L"  FL100x8", L"  B",
    L"     250.00,251.00", L"     100.00", L"       8.00", L"       8.00", L"       8.50", L"       0.50",
    L"      6.280", L"      0.216", L"      0.000", L"      0.000", L"      0.000", L"      0.000", L"  a note", L"",
    L"", L"", L"BO", L"  v     30.00s    50.00     18.00", L"SI", L"  v     20.00u    10.00      0.00  10 b 1", L"EN"};
// clang-format on

BryString joined(const std::vector<BryString>& lines, const wchar_t* lineEnd = L"\r\n") {
    BryString text;
    for (const BryString& line : lines) text += line + lineEnd;
    return text;
}

// The good lines with one of them (from 1) replaced, or cut off from it on where there is nothing to replace it.
BryString changed(std::size_t line, const wchar_t* with) {
    std::vector<BryString> lines = goodLines;
    lines.resize(with ? std::max(line, lines.size()) : line - 1);
    if (with) lines[line - 1] = with;
    return joined(lines);
}

BryString contentOf(const BryString& text, double tolerance = 0) {
    NcPart part;
    NcError error;
    EXPECT_TRUE(readPartText(text, part, error, tolerance)) << error.line << ": " << error.reason.getStringA();
    return part.content;
}

// The marks of parts that all differ, one for each letter of codes, which are their profile codes.
BryString marksOf(const BryString& codes, const MarkSettings& settings) {
    PartMarks parts;
    for (int i = 0; i < codes.length(); ++i) {
        NcPart part;
        part.section.setDSTVType(codes[i] == L'I' ? BryProfTypeDSTVValues::eDSTV_I : BryProfTypeDSTVValues::eDSTV_U);
        part.content = BryString::integerToString(i, 10);
        parts.add(part, L"file");
    }
    BryString marks;
    for (const MarkedPart& part : parts.mark(settings)) marks += part.mark + L" ";
    return marks;
}

class PartMarksRun : public testing::Test {
protected:
    void SetUp() override { fs::create_directories("nc/sub.nc"); }

    void put(const std::string& name, const std::string& bytes) {
        std::ofstream(fs::u8path(name), std::ios::binary) << bytes;
    }

    int run(const std::vector<BryString>& arguments) { return run(arguments, std::tmpfile()); }

    // The exit status; what is written to the streams goes to m_output and m_errors.
    int run(std::vector<BryString> arguments, std::FILE* output) {
        std::FILE* const errors = std::tmpfile();
        if (!m_withSettings) arguments.insert(arguments.begin(), L"--no-settings");
        const int status = runProgram(arguments, output, errors);
        m_output = takeAll(output);
        m_errors = takeAll(errors);
        return status;
    }

    static std::string takeAll(std::FILE* file) {
        std::string text;
        std::rewind(file);
        for (int c; (c = std::getc(file)) != EOF;) text += static_cast<char>(c);
        std::fclose(file);
        return text;
    }

    TempFolder m_folder;
    std::string m_output, m_errors;
    bool m_withSettings = false;
};

const std::string goodBytes = joined(goodLines).getStringA();
const std::string heading = "\xEF\xBB\xBFmark,profile,code,steel,length,quantity,weight,files\r\n";

}  // namespace

TEST(NcPartReading, NamesTheLineAndTheReason) {
    const wchar_t *noStart = L"no part file: it does not begin with the block ST",
                  *bell = L"not a text: a control character of code 7", *noEnd = L"cut short: the file ends without EN";
    // clang-format off
    const struct { std::size_t line; const wchar_t* with; int errorLine; const wchar_t* reason; } rows[] = {
        {1, nullptr, 1, L"no part file: it has no block ST"}, {1, L"** x", 3, noStart},
        {7, nullptr, 6, L"cut short: the file ends where the header should have its steel quality"},
        {17, L"BO", 17, L"the block BO begins where the header should have its weight per metre"},
        {27, nullptr, 26, noEnd}, {31, nullptr, 30, noEnd}, {31, L"en", 31, noEnd}, {6, L" b\x7", 6, bell},
        {28, L"\x7", 28, bell}, {8, L"  ", 8, L"the quantity is missing"},
        {8, L"-1", 8, L"the quantity is no whole number: \"-1\""},
        {8, L"99999999999", 8, L"the quantity is no whole number: \"99999999999\""},
        {9, L"", 9, L"the profile is missing"}, {11, L"-5.00", 11, L"the length is negative: \"-5.00\""},
        {11, L" 1,2,3", 11, L"the saw length is no number: \"2,3\""},
        {12, L"1 0", 12, L"the profile height is no number: \"1 0\""},
        {16, L".", 16, L"the radius is no number: \".\""}, {16, L"1.0.0", 16, L"the radius is no number: \"1.0.0\""},
        {17, L"", 17, L"the weight per metre is no number: \"\""},
        {19, L" skew", 19, L"the web start cut angle is no number: \"skew\""},
        {27, L"five", 27, L"a block should begin here, not \"five\""},
        {32, L"ST", 32, L"text behind the end of the part (EN)"}};
    // clang-format on
    for (const auto& row : rows) {
        NcPart part;
        NcError error;
        EXPECT_FALSE(readPartText(changed(row.line, row.with), part, error)) << row.line;
        EXPECT_EQ(error.line, row.errorLine);
        EXPECT_EQ(error.reason, row.reason) << row.line;
    }
}

TEST(NcPartContent, TellsPartsApartByAllThatIsPhysical) {
    // clang-format off
    const std::pair<std::size_t, const wchar_t*> same[] = {
        {2, L"**"}, {3, L"X"}, {3, L""}, {4, L"X"}, {5, L"X"}, {6, L"X"}, {8, L"1"}, {10, L"B "}, {23, L"X"},
        {26, L" X"}, {3, L"BO"}, {6, L"B1"}, {23, L"OK"}, {26, L"AB"}, {17, L"\t6.280  "}, {9, L"FL 100 x8"},
        {28, L"v 30.00s 50.00\t18.00 "}, {28, L"v 30.00 s 50.00 18.00"}, {30, L"v 20.00u 10.00 0.00 10 b   1"},
        {30, L" v20.00 u 10.00 0.00 10\tb 1 "}, {29, L"SI\r\n  ** X"}, {32, L"** X"}, {32, L"\x1A"}};
    const std::pair<std::size_t, const wchar_t*> others[] = {
        {7, L"S235JR"}, {7, L"AK"}, {23, L"KA"}, {9, L"FL100x9"}, {10, L"RU"}, {11, L"250.01,251.00"},
        {11, L"250.00,251.01"}, {11, L"250.00"},
        {16, L"0.01"}, {17, L"6.281"}, {18, L"0.217"}, {22, L"0.001"}, {22, L"0.0000"}, {27, L"PU"}, {27, L"B1"},
        {28, L"v    30.01s    50.00    18.00"}, {28, L"v 30.00s 50.0018.00"}, {28, L"v 3 0.00s 50.00 18.00"},
        {30, L"v  20.00u  10.00  0.00  10 b 2"}, {30, L"v  20.00u  10.00  0.00  10 b1"},
        {30, L"v  20.00u  10.00  0.0010 b 1"}};
    // clang-format on
    const BryString content = contentOf(joined(goodLines));
    for (const auto& [line, with] : same)
        EXPECT_EQ(contentOf(changed(line, with)), content) << line << ' ' << stringToUtf8(with);
    for (const auto& [line, with] : others)
        EXPECT_NE(contentOf(changed(line, with)), content) << line << ' ' << stringToUtf8(with);
    for (const wchar_t* lineEnd : {L"\n", L"\r", L"\r\r\n"}) EXPECT_EQ(contentOf(joined(goodLines, lineEnd)), content);
    EXPECT_EQ(contentOf(changed(10, L"RO")), contentOf(changed(10, L"  RO"))) << "a code like a block's";
    EXPECT_EQ(contentOf(changed(29, L"SC\r\nv 1u 2 3 4 b 1")), contentOf(changed(29, L"SC\r\nv 1u 2 3 4 b1")));
    std::vector<BryString> spaced = goodLines;
    spaced.insert(spaced.begin() + 29, L" ");
    spaced.erase(spaced.begin() + 22, spaced.begin() + 26);
    EXPECT_EQ(contentOf(joined(spaced)), content) << "no text lines, a blank line in a block";
}

TEST(NcPartContent, TakesLengthsWithinTheToleranceForTheSame) {
    // clang-format off
    const struct { std::size_t line; const wchar_t* with; bool isSame; } rows[] = {
        {11, L"250.04,250.96", true}, {11, L"250.06,251.00", false}, {11, L"250.00,251.06", false}, {11, L"250,251", true},
        {12, L"100.04", false}, {28, L"v 29.96s 50.04 18", true}, {28, L"v 30.06s 50.00 18.00", false},
        {30, L"v 20.04u +10 -0.04 10 b 1", true}, {30, L"v 20.00u 10.00 0.00 10 b 1.04", false}};
    // clang-format on
    const BryString content = contentOf(joined(goodLines), 0.1);
    for (const auto& row : rows)
        EXPECT_EQ(contentOf(changed(row.line, row.with), 0.1) == content, row.isSame) << stringToUtf8(row.with);
    const wchar_t* const huge = L"v 999999999.04s 50.00 18.00";
    EXPECT_EQ(contentOf(changed(28, huge), 0.1).find(L"999999999.04s") > 0, true) << "too many steps";
}

TEST(NcPartSection, HasTypeAndDimensions) {
    const std::pair<const wchar_t*, int> codes[] = {{L"B", 3}, {L"RO", 5}, {L"CSE", 17}, {L"i", 16}, {L"X", 16}};
    for (const auto& [code, type] : codes) {
        NcPart part;
        NcError error;
        EXPECT_TRUE(readPartText(changed(10, code), part, error) && part.section.getDSTVType() == type) << type;
        EXPECT_TRUE(part.section.getH1() == 100 && part.section.getB1() == 8 && part.section.getTG() == 8);
        EXPECT_TRUE(part.section.getTS() == 8.5 && part.section.getR1() == 0.5);
    }
}

TEST(PartMarks, CountsEachPrefixForItself) {
    EXPECT_EQ(marksOf(L"UIUII", {}), L"I1 I2 I3 U1 U2 ");
    EXPECT_EQ(marksOf(L"UIUII", {false, L"099", {}}), L"I099 I100 I101 U099 U100 ");
    EXPECT_EQ(marksOf(L"UIUII", {true, L"Y", {}}), L"IY IZ IAA UY UZ ");
    EXPECT_EQ(marksOf(L"UIUII", {false, L"9", {{L"I", L"P"}, {L"U", L"P"}}}), L"P9 P10 P11 P12 P13 ");
    EXPECT_EQ(marksOf(L"UIUII", {true, L"", {{L"I", L""}}}), L"A B C UA UB ");
    // The first of prefix P1 has taken the eleventh of prefix P.
    EXPECT_EQ(marksOf(L"UIIIIIIIIIII", {false, L"", {{L"U", L"P1"}, {L"I", L"P"}}}),
              L"P1 P2 P3 P4 P5 P6 P7 P8 P9 P10 P12 P11 ");
}

TEST(PartMarks, CountsWithoutExcludedCharactersUpToTheLimit) {
    // clang-format off
    const struct { const wchar_t* codes; MarkSettings settings; const wchar_t* expected; } rows[] = {
        {L"UIUII", {false, L"099", {}, true}, L"I099 I100 I101 U099 U100 "},
        {L"UIUII", {true, L"Y", {}, true}, L"IY IZ IAA UY UZ "},
        {L"III", {true, L"H", {}, true, L"IO"}, L"IH IJ IK "},
        {L"III", {true, L"Z", {}, true, L"A"}, L"IZ IBB IBC "},
        {L"III", {true, L"", {}, true, L"AB"}, L"IC ID IE "},
        {L"III", {false, L"", {}, true, L"1"}, L"I2 I3 I4 "},
        {L"III", {false, L"9", {}, true, L"1"}, L"I9 I20 I22 "},
        {L"III", {false, L"998", {}, true, L"0"}, L"I998 I999 I1111 "},
        {L"III", {false, L"", {}, true, L"12345678"}, L"I9 I90 I99 "},
        {L"UIUII", {false, L"", {}, true, L"", 2}, L"I1 I2  U1 U2 "},
        {L"IUI", {false, L"5", {{L"I", L""}}, true, L"", 1}, L"5  U5 "},
        // What the prefix P1 has taken does not count for P.
        {L"UIIIIIIIIIIII", {false, L"", {{L"U", L"P1"}, {L"I", L"P"}}, true, L"", 11},
         L"P1 P2 P3 P4 P5 P6 P7 P8 P9 P10 P12  P11 "},
        {L"UIIIIIIIIIII", {false, L"", {{L"U", L"P1"}, {L"I", L"P"}}, true, L"0"},
         L"P1 P2 P3 P4 P5 P6 P7 P8 P9 P12 P13 P11 "}};
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(marksOf(row.codes, row.settings), row.expected);
    const MarkSettings onlyNine = {false, L"", {}, true, L"012345678"};
    const BryString nines = std::string(60, '9').c_str();
    EXPECT_EQ(marksOf(std::string(60, 'I').c_str(), onlyNine).right(62), BryString(L"I") + nines + L" ");
}

TEST(MarksTable, WritesNumbersAndFieldsTheSameEverywhere) {
    const std::pair<double, const wchar_t*> numbers[] = {
        {0.004, L"0.00"}, {0.125, L"0.13"}, {-0.125, L"-0.13"}, {7, L"7.00"}, {1234567.5, L"1234567.50"}};
    for (const auto& [value, text] : numbers) EXPECT_EQ(hundredthsText(value), text);
    const std::pair<const wchar_t*, const wchar_t*> fields[] = {
        {L"", L""},         {L"a b;c", L"a b;c"},   {L"a,b", L"\"a,b\""}, {L"2\" pipe", L"\"2\"\" pipe\""},
        {L" a", L"\" a\""}, {L"a\nb", L"\"a\nb\""}, {L"a ", L"\"a \""}};
    for (const auto& [text, field] : fields) EXPECT_EQ(csvField(text), field);
    for (const char* bytes : {"\xE9", "a\xC3", "\xC3\xA9\xFF\xF0\x9F\x98\x80", "\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF"})
        EXPECT_EQ(stringToUtf8(utf8ToString(bytes)), bytes);
    MarkedPart part;
    part.mark = std::string(41, 'x').c_str();
    EXPECT_NE(summaryText({part}, 0).find(" " + std::string(37, 'x') + "... "), std::string::npos);
}

TEST(PartMarksOptions, AreTakenOrRefusedWithAReason) {
    const wchar_t *const maxRange = L"--max needs a whole number from 1 to 2147483647",
                         *const mm = L"--tolerance needs a length in mm, from 0.001 to 1000",
                         *const noTime = L"--since needs a time: 2026-05-31 or \"2026-05-31 14:30:05\"";
    // clang-format off
    const std::pair<std::vector<BryString>, const wchar_t*> rows[] = {
        {{L"-o", L"x.csv", L"--type=letter", L"--start", L"AA", L"--prefix", L"I=B=", L"--no-subfolders", L"nc"}, L""},
        {{L"--", L"--type"}, L""}, {{L"--help", L"--bad"}, L""}, {{L"--bad", L"--help"}, L"unknown option: --bad"},
        {{}, L"no folder and no file is given"}, {{L"nc", L""}, L"a file name is empty"},
        {{L"--type"}, L"--type needs a value"}, {{L"--type", L"roman"}, L"--type is numeric or letter"},
        {{L"--start="}, L"--start needs a number or letters"},
        {{L"nc", L"--start", L"A"}, L"--start A: a number has digits only"},
        {{L"nc", L"--type", L"letter", L"--start", L"a"}, L"--start a: letters are A to Z"},
        {{L"--prefix", L"=X"}, L"--prefix needs a profile code and a text: --prefix I=BEAM"},
        {{L"--counter", L"--exclude", L"I, O", L"--exclude=5", L"--max", L"2147483647", L"nc"}, L""},
        {{L"--exclude", L"IO", L"nc"}, L"--exclude needs --counter"}, {{L"--max=3"}, L"--max needs --counter"},
        {{L"--exclude", L", "}, L"--exclude needs digits or letters: --exclude IO"},
        {{L"--exclude=Io"}, L"--exclude Io: only digits and letters A to Z can be excluded"},
        {{L"--counter", L"--exclude", L"123456789"}, L"--exclude leaves no digit from 1 to 9"},
        {{L"--counter", L"--type=letter", L"--exclude", L"ABCDEFGHIJKLMNOPQRSTUVWXYZ"}, L"--exclude leaves no letter"},
        {{L"--counter", L"--start=120", L"--exclude=0"}, L"--start 120: --exclude leaves out one of its characters"},
        {{L"--timing", L"nc"}, L"--timing needs --log"}, {{L"--log="}, L"--log needs a file"},
        {{L"--modules", std::string(256, 'x').c_str()}, L"--modules: the name has more than 255 characters"},
        {{L"--max", L"0"}, maxRange}, {{L"--max=2147483648"}, maxRange}, {{L"--max=3.0"}, maxRange},
        {{L"--match=(b|c.*", L"nc"}, L"--match (b|c.*: no regular expression"},
        {{L"--match=b\\", L"nc"}, L"--match b\\: no regular expression"}, {{L"--match=(b)|\\Qc", L"nc"}, L""},
        {{L"--tolerance=0.001", L"nc"}, L""}, {{L"--tolerance=0"}, mm}, {{L"--tolerance", L"1x"}, mm},
        {{L"--since=2024-02-29 23:59:59", L"nc"}, L""}, {{L"--since=2023-04-31"}, noTime}, {{L"--since=2024-1-1"}, noTime},
        {{L"--since=2024-01-01 24:00"}, noTime},
        {{L"--help=no"}, L"unknown option, or one that takes no value: --help"}};
    // clang-format on
    for (auto [arguments, expected] : rows) {
        arguments.insert(arguments.begin(), L"--no-settings");
        Options options;
        BryString error;
        EXPECT_EQ(parseOptions(arguments, options, error), *expected == 0) << stringToUtf8(expected);
        EXPECT_EQ(error, expected);
    }
}

TEST_F(PartMarksRun, DoesTheRestWhereAFileIsBad) {
    put("nc/good.nc", goodBytes);
    put("nc/sub.nc/again.NC1", goodBytes);
    put("nc/notes.txt", "not looked at");
    put("nc/empty.nc", "");
    put("nc/zero.nc", std::string(goodBytes).replace(30, 1, 1, '\0'));
    put("nc/endless.nc", std::string(5000000, 'x'));
    put("nc/huge.nc", "ST");
    fs::resize_file("nc/huge.nc", 40 * 1024 * 1024);
    put("nc/short.nc", goodBytes.substr(0, goodBytes.size() / 2));
    put("nc/what?.nc", goodBytes);  // Windows has no such name
    const std::string foreign = "nc/what?.nc: this name cannot be opened here (its characters)\n";
    EXPECT_EQ(run({L"nc", L"missing.nc"}), 1);
    EXPECT_EQ(m_errors, (fs::exists("nc/what?.nc") ? foreign : "") +
                            "missing.nc: there is no such file or folder\n"
                            "nc/empty.nc:1: the file is empty\n"
                            "nc/endless.nc:1: no part file: it does not begin with the block ST\n"
                            "nc/huge.nc: too large for a part file (above 32 MB)\n"
                            "nc/short.nc:17: cut short: the file ends without EN\n"
                            "nc/zero.nc:4: not a text: a zero byte\n");
    EXPECT_EQ(fileBytes("marks.csv"),
              heading + "B1,FL100x8,B,S355J2,250.00,8,12.56,nc/good.nc; nc/sub.nc/again.NC1\r\n");
}

TEST_F(PartMarksRun, ListsThePartsThatTheLimitLeavesWithoutAMark) {
    const char* const lengths[] = {"250.00", "260.00", "270.00"};
    for (const char* length : lengths)
        put(std::string("nc/") + length + ".nc", std::string(goodBytes).replace(goodBytes.find("250.00"), 6, length));
    EXPECT_EQ(run({L"nc", L"--counter", L"--max=01", L"--exclude=B", L"--exclude=1", L"--prefix=B="}), 1);
    EXPECT_EQ(m_errors, "part_marks: --max 1 reached: prefix \"\": 2 parts have no mark\n");
    const std::string marks = fileBytes("marks.csv");
    for (const char* line : {"\n2,FL100x8,B,S355J2,250.00,4", "\n,FL100x8,B,S355J2,270.00,4"})
        EXPECT_NE(marks.find(line), std::string::npos) << marks;
}

TEST_F(PartMarksRun, CountsAFileOnceAndKeepsItsName) {
    const std::string name = "nc/Gel\xC3\xA4nder \xE9\x8B\xBC.nc";
    put(name, goodBytes);
    if (!fs::exists(fs::u8path(name))) GTEST_SKIP() << "Wine has such names only in a locale of UTF-8";
    EXPECT_EQ(run({utf8ToString(name), L"nc", L"nc/../nc", L"--prefix", L"B=Tr\x00E4ger "}), 0);
    EXPECT_EQ(m_errors, "");
    EXPECT_EQ(fileBytes("marks.csv"), heading + "Tr\xC3\xA4ger 1,FL100x8,B,S355J2,250.00,4,6.28," + name + "\r\n");
}

TEST_F(PartMarksRun, LeavesTheOldMarksWhereItFails) {
    put("marks.csv", "old");
    put("nc/sub.nc/bad.nc", "x");
    EXPECT_EQ(run({L"nc", L"--no-subfolders"}), 2);
    EXPECT_EQ(m_errors,
              "nc: a folder without part files (*.nc, *.nc1)\n"
              "part_marks: no part was read, nothing is written\n");
    EXPECT_EQ(run({L"nc"}), 2) << "no part at all";
    EXPECT_EQ(run({L"nc", L"--bad"}), 2);
    put("nc/good.nc", goodBytes);
    fs::create_directories("sub/marks.csv");
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"none/marks.csv", "none/marks.csv: cannot be written here"},
        {L"none\\", "none/: there is no such folder"},
        {L"sub\\", "sub/marks.csv: a folder"},
        {L"nc/good.nc.", "--output names a part file that is read"}};
    for (const auto& [output, reason] : rows) {
        EXPECT_EQ(run({L"nc", L"-o", output}), 2);
        EXPECT_NE(m_errors.find(std::string(reason) + "\n"), std::string::npos) << m_errors;
    }
    EXPECT_EQ(fileBytes("nc/good.nc"), goodBytes);
    EXPECT_EQ(fileBytes("marks.csv"), "old");
    EXPECT_EQ(run({L"--help"}, std::fopen("nc/good.nc", "rb")), 2) << "a stream that takes nothing";
    fs::remove_all("sub");
    fs::permissions("marks.csv", fs::perms::owner_all);
    const fs::perms permissions = fs::status("marks.csv").permissions();
    EXPECT_EQ(run({L"nc/good.nc", L"-o", L"."}), 0) << "an output folder";
    EXPECT_EQ(fs::status("marks.csv").permissions(), permissions);
    std::error_code noLinks;
    fs::create_symlink("../marks.csv", "nc/link.csv", noLinks);
    EXPECT_EQ(run({L"nc/good.nc", L"-o", L"nc/link.csv"}), 0);
    EXPECT_TRUE(noLinks || fs::is_symlink("nc/link.csv"));
    EXPECT_EQ(fileBytes("marks.csv").substr(0, heading.size()), heading);
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2) << "nothing but the marks and the folder";
}

TEST_F(PartMarksRun, TakesThePartsThatMatchAndSaysWhichAreNewer) {
    for (const char* name : {"a.nc", "b1.nc", "b2.nc"}) put(std::string("nc/") + name, goodBytes);
    fs::last_write_time("nc/b1.nc", fs::last_write_time("nc/a.nc") - std::chrono::hours(24 * 365 * 40));
    EXPECT_EQ(run({L"nc", L"--match", L"b\\d[.]nc", L"--since", L"2001-01-01"}), 0);
    const std::size_t ages = m_output.find("  Since 2001-01-01\n  older  nc/b1.nc (");
    EXPECT_TRUE(ages < m_output.find(" days)\n  newer  nc/b2.nc (") && m_output.find("a.nc") > m_output.size())
        << m_output;
    EXPECT_EQ(run({L"nc", L"--match=FL.*"}), 0);
    EXPECT_EQ(run({L"nc", L"--match=fl"}), 2);
    EXPECT_EQ(m_errors, "part_marks: no part matches --match, nothing is written\n");
}

// Cancels when the first file was read: as a user does who presses Ctrl-C, or a button.
struct Canceling : ProgressDisplayProtocol {
    explicit Canceling(bool byKey) : isByKey(byKey) { key = manager().registerDisplay(this); }
    ~Canceling() { manager().deRegisterDisplay(key); }
    static BryProcessEvolutionManager& manager() { return *BryProcessEvolutionManager::getProcessEvolutionManager(); }

    void progressChanged(int process, int percent) override {
        if (process == 1 && percent % 100 != 0) isByKey ? void(std::raise(SIGINT)) : manager().cancelProcess();
    }
    void processRegistered(int, BryString action, bool isCancelable) override {
        told += stringToUtf8(action) + (isCancelable ? "! " : " ");
        if (action == L"writing") std::raise(SIGINT), std::raise(SIGINT);  // too late
    }
    void processDeRegistered(int process) override { told += std::to_string(process) + " "; }

    bool isByKey;
    int key;
    std::string told;
};

TEST_F(PartMarksRun, WritesWhatItHasReadWhenItIsCanceled) {
    for (const char* name : {"a", "b", "c"}) put(std::string("nc/") + name + ".nc", goodBytes);
    for (const bool byKey : {false, true}) {
        const Canceling display(byKey);
        EXPECT_EQ(run({L"nc"}), 1);
        EXPECT_EQ(m_errors, "part_marks: canceled when 1 of 3 files were read\n");
        EXPECT_EQ(fileBytes("marks.csv"), heading + "B1,FL100x8,B,S355J2,250.00,4,6.28,nc/a.nc\r\n");
        EXPECT_EQ(display.told, "part_marks! reading 0 1 0 ");
    }
    const Canceling display(true);
    put("nc/c.nc", "");
    fs::remove("nc/b.nc");
    std::signal(SIGINT, SIG_IGN);
    EXPECT_EQ(run({L"nc"}), 1);
    EXPECT_EQ(std::signal(SIGINT, SIG_DFL), SIG_IGN) << "as in the background of a script";
    EXPECT_EQ(display.told, "part_marks! reading 1 comparing 1 marking 1 writing 1 0 ");
}

TEST_F(PartMarksRun, TakesWhatWasSavedWhereTheCommandLineLeavesItOpen) {
    if (onWindows && !underWine()) GTEST_SKIP() << "the settings may be somebody's";
    const ScratchRegistry registry(L"Software\\Ozmira");  // a folder of its own too
    for (const char* folder : {"nc", "saved"}) fs::create_directory(folder);
    put("nc/good.nc", goodBytes);
    m_withSettings = true;
    const std::vector<BryString> save = {L"--save", L"--type=letter", L"--start=Q", L"--prefix=B=Bar ",
                                         L"-o",     L"saved"};
    const struct {
        std::vector<BryString> arguments;
        const char *file, *start;
        int status;
    } rows[] = {{{L"nc"}, "marks.csv", "B1,", 0},
                {save, "", "", 0},
                {{L"--save", L"--output=saved/none"}, "", "", 2},
                {{L"nc"}, "saved/marks.csv", "Bar Q,", 0},
                {{L"nc", L"--type", L"numeric"}, "saved/marks.csv", "Bar 1,", 0},
                {{L"nc", L"--start=R", L"--prefix=B=", L"--output=saved/own"}, "saved/own", "R,", 0},
                {{L"nc", L"--no-settings"}, "marks.csv", "B1,", 0},
                {{L"nc", L"--start", L"7"}, "", "", 2},
                {{L"nc", L"--counter", L"--exclude=Q"}, "", "", 2},
                {{L"--save"}, "", "", 2},
                {{L"--save", L"--prefix", BryString(L"B=") + std::string(3000, 'x').c_str()}, "", "", 2},
                {{L"--save", L"--start=5", L"--type=numeric"}, "", "", 0},
                {{L"nc"}, "saved/marks.csv", "Bar 5,", 0}};
    for (const auto& row : rows) {
        fs::remove("marks.csv"), fs::remove("saved/marks.csv");
        EXPECT_EQ(run(row.arguments), row.status) << m_errors;
        EXPECT_EQ(*row.file ? fileBytes(row.file).substr(0, heading.size() + std::strlen(row.start)) : "",
                  *row.file ? heading + row.start : "");
    }
    const BryString folder = utf8ToString(fs::absolute("saved").u8string());
    EXPECT_EQ(toText(toPath(BryRegistry::getNorrabDataPath())), toText(toPath(folder)));
}

TEST_F(PartMarksRun, LogsWhatItReadsFindsAndWrites) {
    put("nc/good.nc", goodBytes);
    put("run.log", "old");
    EXPECT_EQ(run({L"nc", L"none", L"--log", L"run.log", L"--timing", L"--modules=list.txt"}), 1);
    std::istringstream file(fileBytes("run.log"));
    std::string log;  // without times
    for (std::string line; std::getline(file, line, '\r');)
        log += line.substr(std::min<std::size_t>(line.size(), 12), line.find(" : ") - 12) + "|";
    EXPECT_EQ(log, std::string("|part_marks with KelRoots ") + bryVersion() +
                       "|Start = reading|reads nc/good.nc|End = reading|Start = comparing|End = comparing"
                       "|Start = marking|End = marking|Start = writing|End = writing"
                       "|none: there is no such file or folder|has written marks.csv|1 file read, 1 different part, 1 "
                       "error|has written list.txt||");
    RunLog shrunk;
    EXPECT_TRUE(shrunk.open(L"run.log", false) && shrunk.finish());
    fs::resize_file("run.log", 0);
    EXPECT_FALSE(shrunk.finish());
}

TEST_F(PartMarksRun, LogsOnlyToFilesOfTheirOwn) {
    put("nc/good.nc", goodBytes);
    const std::pair<std::vector<BryString>, const char*> rows[] = {
        {{L"nc", L"--log", L"none/x"}, "none/x: the log cannot be written here\n"},
        {{L"nc", L"--modules", L".."}, ".: the list of modules cannot be written here\n"},
        {{L"nc", L"--log=nc\\good.nc. "}, "--log names a part file that is read\n"},
        {{L"nc", L"--modules=nc/../x", L"-o", L"x"}, "--modules names the same file as --output\n"},
        {{L"nc", L"--log=./new", L"--modules=new"}, "--modules names the same file as --log\n"}};
    for (const auto& [arguments, error] : rows)
        EXPECT_TRUE(run(arguments) == (*error == '-' ? 2 : 1) && m_errors.find(error) < 20) << error << m_errors;
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2) << "nothing but the marks and the folder";
}

TEST(Tracked, NamesTheObjectsOfARunThatLive) {
    const PartMarks before;
    TrackedRun run;
    { const PartMarks destroyed; }
    EXPECT_EQ(run.living(), "");
    const PartMarks living;
    EXPECT_EQ(run.living().find(" PartMarks\n") != std::string::npos, TrackedRun::isOn);
}
