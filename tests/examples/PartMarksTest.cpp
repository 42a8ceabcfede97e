#include "MarksFile.h"
#include "Options.h"
#include "Program.h"
#include "Summary.h"
#include "Utf8.h"

#include <tests/support/Printers.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace fs = std::filesystem;

namespace {

std::vector<BryString> split(const BryString& text) {
    std::vector<BryString> lines;
    int from = 0;
    for (int end; (end = text.find(L"\n", from)) >= 0; from = end + 1) lines.push_back(text.mid(from, end - from));
    return lines;
}

const std::vector<BryString> goodLines = split(
    LR"(ST
** a comment
  HALL 7
  D 1
  2
  b1
  S355J2
  4
  FL100x8
  B
     250.00,251.00
     100.00
       8.00
       8.00
       8.00
       0.00
      6.280
      0.216
      0.000
      0.000
      0.000
      0.000
  a note



BO
  v     30.00s    50.00     18.00
SI
  v     20.00u    10.00      0.00  10 b 1
EN
)");

BryString joined(const std::vector<BryString>& lines, const wchar_t* lineEnd = L"\r\n") {
    BryString text;
    for (const BryString& line : lines) text += line + lineEnd;
    return text;
}

// The good lines with one of them (from 1) replaced, or cut off from it on where there is nothing to replace it.
BryString changed(int line, const wchar_t* with) {
    std::vector<BryString> lines = goodLines;
    const auto place = static_cast<std::size_t>(line - 1);
    if (!with)
        lines.resize(place);
    else if (place < lines.size())
        lines[place] = with;
    else
        lines.push_back(with);
    return joined(lines);
}

NcPart partOf(const BryString& text) {
    NcPart part;
    NcError error;
    EXPECT_TRUE(readPartText(text, part, error)) << error.line << ": " << error.reason.getStringA();
    return part;
}

class PartMarksRun : public testing::Test {
protected:
    void SetUp() override {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = fs::temp_directory_path() /
                   (std::string("part_marks_") + test->name() + std::to_string(std::random_device()()));
        fs::remove_all(m_folder);
        fs::create_directories(m_folder / "nc");
    }
    void TearDown() override { fs::remove_all(m_folder); }

    void put(const std::string& name, const std::string& bytes) {
        fs::create_directories((m_folder / fs::u8path(name)).parent_path());
        std::ofstream(m_folder / fs::u8path(name), std::ios::binary) << bytes;
    }
    std::string bytesOf(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    BryString path(const std::string& name) { return utf8ToString((m_folder / fs::u8path(name)).generic_u8string()); }
    std::string marks() { return bytesOf(m_folder / "marks.csv"); }

    // The exit status; what is written to the error stream goes to m_errors, without the name of the folder.
    int run(const std::vector<BryString>& inputs) {
        std::vector<BryString> arguments = {L"--output", path("marks.csv")};
        arguments.insert(arguments.end(), inputs.begin(), inputs.end());
        std::FILE* const output = std::tmpfile();
        std::FILE* const errors = std::tmpfile();
        const int status = runPartMarks(arguments, output, errors);
        std::rewind(errors);
        m_errors.clear();
        for (int c; (c = std::getc(errors)) != EOF;)
            if (c != '\r') m_errors += static_cast<char>(c);
        std::fclose(output);
        std::fclose(errors);
        const std::string folder = m_folder.generic_u8string() + "/";
        for (std::size_t at; (at = m_errors.find(folder)) != std::string::npos;) m_errors.erase(at, folder.size());
        return status;
    }

    fs::path m_folder;
    std::string m_errors;
};

const std::string goodBytes = joined(goodLines).getStringA();
const std::string heading = "\xEF\xBB\xBFmark,profile,code,steel,length,quantity,weight,files\r\n";

}  // namespace

TEST(NcPartReading, TakesWhatTheHeaderSays) {
    const NcPart part = partOf(joined(goodLines));
    EXPECT_EQ(part.profile, L"FL100x8");
    EXPECT_EQ(part.code, L"B");
    EXPECT_EQ(part.steel, L"S355J2");
    EXPECT_EQ(part.quantity, 4);
    EXPECT_EQ(part.length, 250);
    EXPECT_EQ(part.weightPerMetre, 6.28);
}

TEST(NcPartReading, NamesTheLineAndTheReason) {
    const struct {
        const char* when;
        int line;
        const wchar_t* with;
        int errorLine;
        const wchar_t* reason;
    } rows[] = {
        {"no line at all", 1, nullptr, 1, L"no part file: it has no block ST"},
        {"only a comment", 1, L"** x", 3, L"no part file: it does not begin with the block ST"},
        {"other text", 1, L"Dear Sirs", 1, L"no part file: it does not begin with the block ST"},
        {"ends in the header", 7, nullptr, 6,
         L"cut short: the file ends where the header should have its steel quality"},
        {"ends before the blocks", 27, nullptr, 26, L"cut short: the file ends without EN"},
        {"ends in a block", 29, nullptr, 28, L"cut short: the file ends without EN"},
        {"EN missing", 31, nullptr, 30, L"cut short: the file ends without EN"},
        {"EN in small letters", 31, L"en", 31, L"cut short: the file ends without EN"},
        {"a block too early", 17, L"BO", 17, L"the block BO begins where the header should have its weight per metre"},
        {"a bell in the header", 6, L"  b\x7", 6, L"not a text: a control character of code 7"},
        {"quantity blank", 8, L"  ", 8, L"the quantity is no whole number: \"\""},
        {"quantity with decimals", 8, L"  2.0", 8, L"the quantity is no whole number: \"2.0\""},
        {"quantity negative", 8, L"  -1", 8, L"the quantity is no whole number: \"-1\""},
        {"quantity beyond all", 8, L"  99999999999", 8, L"the quantity is no whole number: \"99999999999\""},
        {"profile blank", 9, L"", 9, L"the profile is missing"},
        {"code blank", 10, L"", 10, L"the profile code is missing"},
        {"length in words", 11, L"  long", 11, L"the length is no number: \"long\""},
        {"length negative", 11, L"  -5.00", 11, L"the length is negative: \"-5.00\""},
        {"three lengths", 11, L" 1,2,3", 11, L"the saw length is no number: \"2,3\""},
        {"two numbers in one", 12, L"  1 0", 12, L"the profile height is no number: \"1 0\""},
        {"two points", 16, L"  1.0.0", 16, L"the radius is no number: \"1.0.0\""},
        {"a point alone", 16, L"  .", 16, L"the radius is no number: \".\""},
        {"weight blank", 17, L"", 17, L"the weight per metre is no number: \"\""},
        {"angle in words", 19, L"  skew", 19, L"the web start cut angle is no number: \"skew\""},
        {"a fifth text line", 27, L"  five", 27, L"a block should begin here, not \"five\""},
        {"a bell in a block", 28, L"  v \x7", 28, L"not a text: a control character of code 7"},
        {"a second part", 32, L"ST", 32, L"text behind the end of the part (EN)"},
    };
    for (const auto& row : rows) {
        NcPart part;
        NcError error;
        EXPECT_FALSE(readPartText(changed(row.line, row.with), part, error)) << row.when;
        EXPECT_EQ(error.line, row.errorLine) << row.when;
        EXPECT_EQ(error.reason, row.reason) << row.when;
    }
}

TEST(NcPartContent, TellsPartsApartByAllThatIsPhysical) {
    constexpr bool same = true, other = false;
    const struct {
        const char* when;
        int line;
        const wchar_t* with;
        bool isSame;
    } rows[] = {
        {"comment", 2, L"**", same},
        {"order", 3, L"  X", same},
        {"order blank", 3, L"", same},
        {"drawing", 4, L"  X", same},
        {"phase", 5, L"  X", same},
        {"piece", 6, L"  X", same},
        {"quantity", 8, L"  1", same},
        {"text line", 23, L"  X", same},
        {"fourth text line", 26, L" X", same},
        {"comment at the end", 32, L"** X", same},
        {"Ctrl-Z at the end", 32, L"\x1A", same},
        {"steel", 7, L"  S235JR", other},
        {"profile", 9, L"  FL100x9", other},
        {"code", 10, L"  RU", other},
        {"code at the start of the line", 10, L"B ", same},
        {"length", 11, L" 250.01,251.00", other},
        {"saw length", 11, L" 250.00,251.01", other},
        {"no saw length", 11, L" 250.00", other},
        {"radius", 16, L" 0.01", other},
        {"weight", 17, L" 6.281", other},
        {"surface", 18, L" 0.217", other},
        {"angle", 22, L" 0.001", other},
        {"more zeros", 22, L" 0.0000", other},
        {"blanks around a number", 17, L"\t6.280  ", same},
        {"blank in a name", 9, L"FL 100 x8", same},
        {"a hole elsewhere", 28, L"  v    30.01s    50.00    18.00", other},
        {"other blanks", 28, L"v 30.00s 50.00\t18.00 ", same},
        {"blank before the reference", 28, L"v 30.00 s 50.00 18.00", same},
        {"numbers run into one", 28, L"v 30.00s 50.0018.00", other},
        {"a number torn apart", 28, L"v 3 0.00s 50.00 18.00", other},
        {"other block", 27, L"PU", other},
        {"block of a digit", 27, L"B1", other},
        {"other stamp", 30, L"  v  20.00u  10.00  0.00  10 b 2", other},
        {"stamp without its blank", 30, L"  v  20.00u  10.00  0.00  10 b1", other},
        {"stamp with other blanks", 30, L"v 20.00u 10.00 0.00 10 b   1", same},
    };
    const BryString content = partOf(joined(goodLines)).content;
    for (const auto& row : rows)
        EXPECT_EQ(partOf(changed(row.line, row.with)).content == content, row.isSame) << row.when;
    for (const wchar_t* lineEnd : {L"\n", L"\r", L"\r\r\n"})
        EXPECT_EQ(partOf(joined(goodLines, lineEnd)).content, content);
    EXPECT_EQ(partOf(changed(10, L"RO")).content, partOf(changed(10, L"  RO")).content) << "a code like a block's";
    std::vector<BryString> spaced = goodLines;
    spaced.insert(spaced.begin() + 29, L" ");
    spaced.erase(spaced.begin() + 22, spaced.begin() + 26);
    EXPECT_EQ(partOf(joined(spaced)).content, content) << "no text lines, a blank line in a block";
}

TEST(PartMarks, CountsEachPrefixForItself) {
    const auto with = [](bool letters, const wchar_t* start, std::map<BryString, BryString> prefix) {
        MarkSettings settings;
        settings.letters = letters;
        settings.start = start;
        settings.prefix = std::move(prefix);
        return settings;
    };
    const struct {
        const char* when;
        MarkSettings settings;
        const wchar_t* marks;
    } rows[] = {
        {"by default", with(false, L"", {}), L"I1 I2 I3 U1 U2 "},
        {"in natural order", with(false, L"9", {}), L"I9 I10 I11 U9 U10 "},
        {"with leading zeros", with(false, L"099", {}), L"I099 I100 I101 U099 U100 "},
        {"in letters", with(true, L"Y", {}), L"IY IZ IAA UY UZ "},
        {"one prefix for all", with(false, L"", {{L"I", L"P"}, {L"U", L"P"}}), L"P1 P2 P3 P4 P5 "},
        {"no prefix", with(true, L"", {{L"I", L""}}), L"A B C UA UB "},
    };
    PartMarks parts;
    for (const wchar_t* code : {L"U", L"I", L"U", L"I", L"I"}) {
        NcPart part;
        part.code = code;
        part.content = BryString::integerToString(static_cast<int>(parts.mark({}).size()), 10);
        parts.add(part, L"file");
    }
    for (const auto& row : rows) {
        BryString marks;
        for (const MarkedPart& part : parts.mark(row.settings)) marks += part.mark + L" ";
        EXPECT_EQ(marks, row.marks) << row.when;
    }
}

TEST(PartMarks, PassesOverAMarkThatIsTaken) {
    PartMarks parts;
    for (int i = 0; i < 12; ++i) {
        NcPart part;
        part.code = i == 0 ? L"U" : L"I";
        part.content = BryString::integerToString(i, 10);
        parts.add(part, L"file");
    }
    MarkSettings settings;
    settings.prefix = {{L"U", L"P1"}, {L"I", L"P"}};
    const std::vector<MarkedPart> marked = parts.mark(settings);
    EXPECT_EQ(marked[10].mark, L"P12") << "the eleventh of prefix P";
    EXPECT_EQ(marked[11].mark, L"P11") << "the first of prefix P1";
}

TEST(MarksTable, WritesNumbersAndFieldsTheSameEverywhere) {
    const struct {
        double value;
        const wchar_t* text;
    } numbers[] = {{0, L"0.00"},       {0.004, L"0.00"}, {0.125, L"0.13"},
                   {-0.125, L"-0.13"}, {7, L"7.00"},     {1234567.5, L"1234567.50"}};
    for (const auto& row : numbers) EXPECT_EQ(hundredthsText(row.value), row.text);
    const struct {
        const wchar_t* text;
        const wchar_t* field;
    } fields[] = {{L"", L""},         {L"a b", L"a b"},       {L"a,b", L"\"a,b\""}, {L"2\" pipe", L"\"2\"\" pipe\""},
                  {L" a", L"\" a\""}, {L"a\nb", L"\"a\nb\""}, {L"a;b", L"a;b"},     {L"a ", L"\"a \""}};
    for (const auto& row : fields) EXPECT_EQ(csvField(row.text), row.field);
}

TEST(PartMarksOptions, AreTakenOrRefusedWithAReason) {
    const struct {
        std::vector<BryString> arguments;
        const wchar_t* error;
    } rows[] = {
        {{L"nc"}, L""},
        {{L"-o", L"x.csv", L"--type=letter", L"--start", L"AA", L"--prefix", L"I=B=", L"--no-subfolders", L"nc"}, L""},
        {{L"--", L"--type"}, L""},
        {{L"--bad", L"--help"}, L"unknown option: --bad"},
        {{L"--help", L"--bad"}, L""},
        {{}, L"no folder and no file is given"},
        {{L"nc", L""}, L"a file name is empty"},
        {{L"nc", L"--type"}, L"--type needs a value"},
        {{L"nc", L"--type", L"roman"}, L"--type is numeric or letter"},
        {{L"nc", L"--start", L"A"}, L"--start A: a number has digits only"},
        {{L"nc", L"--type", L"letter", L"--start", L"a"}, L"--start a: letters are A to Z"},
        {{L"nc", L"--start="}, L"--start needs a number or letters"},
        {{L"nc", L"--prefix", L"=X"}, L"--prefix needs a profile code and a text: --prefix I=BEAM"},
        {{L"nc", L"--help=no"}, L"unknown option, or one that takes no value: --help"},
    };
    for (const auto& row : rows) {
        Options options;
        BryString error;
        EXPECT_EQ(parseOptions(row.arguments, options, error), *row.error == 0) << stringToUtf8(row.error);
        EXPECT_EQ(error, row.error);
    }
}

TEST_F(PartMarksRun, DoesTheRestWhereAFileIsBad) {
    put("nc/good.nc", goodBytes);
    put("nc/sub.nc/again.NC1", goodBytes);
    put("nc/notes.txt", "not looked at");
    put("nc/empty.nc", "");
    put("nc/zero.nc", std::string(goodBytes).replace(30, 1, 1, '\0'));
    put("nc/binary.nc", "MZ\x90\x03");
    put("nc/endless.nc", std::string(5000000, 'x'));
    put("nc/huge.nc", "ST");
    fs::resize_file(m_folder / "nc/huge.nc", 40 * 1024 * 1024);
    put("nc/short.nc", goodBytes.substr(0, goodBytes.size() / 2));
    EXPECT_EQ(run({path("nc"), path("missing.nc")}), 1);
    EXPECT_EQ(m_errors,
              "missing.nc: there is no such file or folder\n"
              "nc/binary.nc:1: no part file: it does not begin with the block ST\n"
              "nc/empty.nc:1: the file is empty\n"
              "nc/endless.nc:1: no part file: it does not begin with the block ST\n"
              "nc/huge.nc: too large for a part file (above 32 MB)\n"
              "nc/short.nc:17: cut short: the file ends without EN\n"
              "nc/zero.nc:4: not a text: a zero byte\n");
    const std::string folder = m_folder.generic_u8string();
    EXPECT_EQ(marks(), heading + "B1,FL100x8,B,S355J2,250.00,8,12.56," + folder + "/nc/good.nc; " + folder +
                           "/nc/sub.nc/again.NC1\r\n");
}

TEST_F(PartMarksRun, CountsAFileOnceAndKeepsItsName) {
    const std::string name = "nc/Gel\xC3\xA4nder \xE9\x8B\xBC.nc";
    put(name, goodBytes);
    if (!fs::exists(m_folder / fs::u8path(name))) GTEST_SKIP() << "Wine has such names only in a locale of UTF-8";
    EXPECT_EQ(run({path(name), path("nc"), path("nc/../nc"), L"--prefix", L"B=Tr\x00E4ger "}), 0);
    EXPECT_EQ(m_errors, "");
    EXPECT_EQ(marks(), heading + "Tr\xC3\xA4ger 1,FL100x8,B,S355J2,250.00,4,6.28," + m_folder.generic_u8string() + "/" +
                           name + "\r\n");
}

TEST_F(PartMarksRun, LeavesTheOldMarksWhereItFails) {
    put("marks.csv", "old");
    put("nc/bad.nc", "x");
    EXPECT_EQ(run({path("nc")}), 1) << "no part at all";
    EXPECT_EQ(run({path("nc"), L"--bad"}), 2);
    put("nc/good.nc", goodBytes);
    EXPECT_EQ(run({path("nc"), L"-o", path("none/marks.csv")}), 2);
    EXPECT_NE(m_errors.find("none/marks.csv: cannot be written here\n"), std::string::npos);
    EXPECT_EQ(marks(), "old");
    EXPECT_EQ(run({path("nc/good.nc"), L"-o", path("")}), 0) << "an output folder";
    EXPECT_EQ(marks().substr(0, heading.size()), heading);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 2) << "nothing but the marks and the folder";
}

TEST_F(PartMarksRun, SaysWhatAFolderLacks) {
    put("nc/sub/a.nc", goodBytes);
    EXPECT_EQ(run({path("nc"), L"--no-subfolders"}), 1);
    EXPECT_EQ(m_errors,
              "nc: a folder without part files (*.nc, *.nc1)\n"
              "part_marks: no part was read, nothing is written\n");
}
