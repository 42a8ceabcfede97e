#include "Program.h"
#include "RegFile.h"
#include "Utf8.h"

#include <tests/support/ScratchRegistry.h>

namespace {

const std::string header = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string key = "[HKEY_CURRENT_USER\\Software\\KelRootsTest]\r\n";
const BryString keyName = L"HKEY_CURRENT_USER\\Software\\KelRootsTest";

// A key, or a value with its type and its bytes.
std::string told(const RegEntry& entry) {
    const std::string data(entry.data.begin(), entry.data.end()), name = stringToUtf8(entry.name);
    if (entry.kind == RegEntry::key) return "[" + name + "];";
    return name + "=" + (entry.kind == RegEntry::value ? std::to_string(entry.type) + ":" + data : "-") + ";";
}

std::string parsed(const std::string& bytes, std::vector<RegEntry>& entries) {
    int line = 0;
    BryString reason;
    if (!parseRegFile(bytes, entries, line, reason)) return std::to_string(line) + ": " + stringToUtf8(reason);
    std::string text;
    for (const RegEntry& entry : entries) text += told(entry);
    return text;
}

std::string repeated(const std::string& text, int count) { return count == 0 ? "" : text + repeated(text, count - 1); }

std::string lastLine(const std::vector<RegEntry>& entries) {
    std::vector<BryString> lines;
    BryString reason;
    EXPECT_TRUE(makeRegFile({entries.back()}, false, lines, reason)) << reason.getStringA();
    return stringToUtf8(lines.at(1));
}

// The exit status and what was printed.
std::string run(const std::vector<BryString>& arguments) {
    std::FILE* const output = std::tmpfile();
    std::string text = std::to_string(runProgram(arguments, output, output)) + " ";
    std::rewind(output);
    for (int c; (c = std::fgetc(output)) != EOF;) text += static_cast<char>(c);
    std::fclose(output);
    return text;
}

}  // namespace

TEST(RegFile, ReadsEveryKindOfLineAndWritesItAgain) {
    const struct {
        std::string line, means, again;  // again: where the line is not written as it was read
    } rows[] = {{R"("a"="b")", bytes("a=1:b\0\0\0"), ""},
                {R"(  "\\\"\n" = "\\" ; x)", bytes("\\\"\n=1:\\\0\0\0"), R"("\\\"\n"="\\")"},
                {"\"a\"=\"1\n;\"", bytes("a=1:1\0\n\0;\0\0\0"), R"("a"=hex(1):31,00,0a,00,3b,00,00,00)"},
                {"\"\xC3\xA4\"=\"\xE2\x82\xAC\"", bytes("\xC3\xA4=1:\xAC\x20\0\0"), ""},
                {R"("a"=dword: 4A;x)", bytes("a=4:J\0\0\0"), R"("a"=dword:0000004a)"},
                {"\"a\"=hex: 41 , 4b,\\ ; x\r\n\r\n;x\r\n  4C,", "a=3:AKL", R"("a"=hex:41,4b,4c)"},
                {R"("a"=hex(1):41)", "a=1:A", ""},
                {R"("a"=hex(1):)", "a=1:", R"("a"="")"},
                {R"("a"=hex(1):41,00)", bytes("a=1:A\0"), R"("a"="A")"},
                {R"("a"=hex(1):00,d8,00,00)", bytes("a=1:\0\xD8\0\0"), ""},
                {R"("a"=hex(1):41,00,00,00)", bytes("a=1:A\0\0\0"), R"("a"="A")"},
                {R"("a"=hex(4):41,0,0,0)", bytes("a=4:A\0\0\0"), R"("a"=dword:00000041)"},
                {R"("a"=hex(ffffffff):41)", "a=4294967295:A", ""},
                {R"("b23"=hex:)" + repeated("41,", 23) + "\\\n  " + repeated("41,", 25) + "\\\n  41",
                 "b23=3:" + repeated("A", 49), ""},
                {R"("a"=-;x)", "a=-", R"("a"=-)"}};
    for (const auto& [line, means, again] : rows) {  // again: where it is not written as it was read
        std::vector<RegEntry> entries;
        EXPECT_EQ(parsed(header + key + line, entries), told(RegEntry::makeKey(keyName)) + means + ";");
        EXPECT_EQ(lastLine(entries), (again.empty() ? line : again) + "\n");
    }
}

TEST(RegFile, ReadsKeysInEveryEncoding) {
    const std::pair<std::string, std::string> rows[] = {
        {header + "[hkcu\\\\a]b\\] ; x", "[HKEY_CURRENT_USER\\a]b];"},
        {header + " [HKey_Classes_Root]\r; x\n\n", "[HKEY_CLASSES_ROOT];"},
        {"\xEF\xBB\xBF" + header + "[HKCR\\\xC3\xA4]", "[HKEY_CLASSES_ROOT\\\xC3\xA4];"},
        {"REGEDIT4\n[HKCR\\\xE4]\n@=hex(2):e4,00", bytes("[HKEY_CLASSES_ROOT\\\xC3\xA4];=2:\xE4\0\0\0;")}};
    setEnvironment("KELROOTS_ANSI_CODE_PAGE", "1252");
    std::vector<RegEntry> entries;
    for (const auto& [file, means] : rows) EXPECT_EQ(parsed(file, entries), means);
}

TEST(RegFile, NamesLineAndReasonOfDamage) {
    const std::pair<std::string, std::string> rows[] = {
        {"\"a\"=\"b\"", "3: a value before any key"},
        {"[-HKCU\\]", "3: a whole hive cannot be deleted"},
        {"[HKCU\\a", "3: a key without ] at its end"},
        {"[HKU\\a]", "3: a key begins with HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER or HKEY_CLASSES_ROOT"},
        {"[HKCU\\" + repeated("k", 256) + "]", "3: the name of a key is longer than 255 characters"},
        {"[HKCU" + repeated("\\k", 513) + "]", "3: a key is more than 512 levels deep"},
        {"x", "3: neither a [key], a \"name\"=value nor a ; comment"},
        {"[HKCU]\n\"a=\"b\"", "4: no = behind the name of a value"},
        {"[HKCU]\n\"a\n\"", "4: no quote at the end of the name"},
        {"[HKCU]\n@=\"a\n\"b\"=\"\"\n", "4: no quote at the end of the text"},
        {"[HKCU]\n@=\"c:\\x\"", "4: a single backslash: write \\\\ for a backslash and \\\" for a quote"},
        {"[HKCU]\n@=DWORD:1", "4: a value is \"text\", dword:, hex: or hex(TYPE):, or - for none"},
        {"[HKCU]\n@=dword:123456789", "4: dword: needs one to eight hexadecimal digits"},
        {"[HKCU]\n@=hex:1,\\\n  123", "5: bytes have one or two hexadecimal digits, with commas between them"},
        {"[HKCU]\n@=hex:1,\\\n", "5: cut short: the file ends where a line is continued"},
        {bytes("[HKCU\\\0]"), "3: not a text: a zero character"},
        {"[HKCU\\\xFF]", "3: not a text: neither UTF-8 nor UTF-16LE with its mark"}};
    std::vector<RegEntry> entries;
    for (const auto& [lines, error] : rows) EXPECT_EQ(parsed(header + lines, entries), error) << lines;
    EXPECT_EQ(parsed("\xFF\xFEx", entries), "1: cut short: the file ends within a character");
    EXPECT_EQ(parsed("Windows\n", entries).substr(0, 24), "1: not a registry file: ");
}

TEST(NorrabRegistry, CarriesAKeyThroughFilesOfBothEncodings) {
    const ScratchRegistry registry;
    const std::string values = "@=\"" + repeated("\xF0\x9F\x98\x80", 600) + "\"\r\n\"odd\"=hex(1):41,00,42\r\n";
    const std::string sub = key.substr(0, key.size() - 3) + "\\sub]\r\n", deleted = "[-" + key.substr(1);
    writeFile("in.reg", header + deleted + key + values + "\"gone\"=\"\"\r\n\"gone\"=-\r\n" + sub);
    writeFile("bad.reg", header + key + "\"never\"=\"\"\r\nx");
    EXPECT_EQ(run({L"import", L"in.reg"}), "0 ");
    EXPECT_EQ(run({L"import", L"in.reg", L"bad.reg"}).substr(0, 12), "1 bad.reg:5:");
    EXPECT_EQ(run({L"export", keyName, L"8.reg", L"--utf8"}) + run({L"export", keyName, L"16.reg"}), "0 0 ");
    EXPECT_EQ(fileBytes("8.reg"), "\xEF\xBB\xBF" + header + key + values + "\r\n" + sub + "\r\n");
    for (const wchar_t* carrier : {L"8.reg", L"16.reg"}) {
        EXPECT_EQ(run({L"delete", keyName}), "0 ");
        EXPECT_EQ(run({L"import", carrier}), "0 ");
        EXPECT_EQ(run({L"export", keyName, L"again.reg"}), "0 ");
        EXPECT_EQ(fileBytes("again.reg"), fileBytes("16.reg"));
    }
}

TEST(NorrabRegistry, GetsWhatWasSet) {
    const ScratchRegistry registry;
    const std::pair<std::vector<BryString>, std::string> rows[] = {
        {{L"\xE4"}, "0 \xC3\xA4\n"},
        {{L"0x1F", L"--type", L"dword"}, "0 31\n"},
        {{L"18446744073709551615", L"--type", L"qword"}, "0 18446744073709551615\n"},
        {{L"a", L"b c", L"--type", L"multi"}, "0 a\nb c\n"},
        {{L"0a,fF01", L"--type", L"hex"}, "0 0a,ff,01\n"},
        {{L"4294967296", L"--type", L"dword"}, "2 "}};
    const BryString made = keyName + L"\\made";
    for (const auto& [value, get] : rows) {
        std::vector<BryString> arguments = {L"set", L"hkcu\\software\\kelrootstest\\made", L"n"};
        arguments.insert(arguments.end(), value.begin(), value.end());
        const std::string set = run(arguments);
        EXPECT_EQ(set == "0 " ? run({L"get", made, L"N"}) : set.substr(0, 2), get);
    }
    EXPECT_EQ(run({L"delete", made, L"n"}), "0 ");
    EXPECT_EQ(run({L"get", made, L"n"}).substr(0, 2), "1 ");
    EXPECT_EQ(run({L"delete", L"HKCU"}).substr(0, 2), "2 ");
}
