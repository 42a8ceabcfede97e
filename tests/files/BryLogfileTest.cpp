// The switch and the first-call flag belong to the process: this file is compiled without access control, so that each
// test sets them.
#include <gtest/gtest.h>
#include <roots/Version.h>
#include <roots/files/BryLogfile.h>
#include <roots/files/BryPerfMonitor.h>

#include <regex>
#include <thread>

#include "tests/support/Environment.h"
#include "tests/support/MessageBoxes.h"
#include "tests/support/Platform.h"
#include "tests/support/Printers.h"
#include "tests/support/TempFolder.h"
#include "tests/support/VersionedFile.h"

namespace {

class BryLogfileTest : public testing::Test {
protected:
    BryLogfileTest() {
        BryLogfile::setLogStatus(1);
        BryLogfile::m_isFirstLogToFile = 0;
    }
    ~BryLogfileTest() override { BryLogfile::setLogStatus(0); }

    TempFolder folder;
};

// Every time of day becomes 00:00:00.
std::string log(const char* name) {
    return std::regex_replace(fileBytes(name), std::regex("\\d\\d:\\d\\d:\\d\\d"), "00:00:00");
}

}  // namespace

TEST_F(BryLogfileTest, AppendsEntriesOnlyWhileLoggingIsOn) {
    BryLogfile file(L"x.log"), missing(L"none/x.log"), unnamed;
    for (const int status : {0, 1, -7}) {
        BryLogfile::setLogStatus(status);
        EXPECT_EQ(BryLogfile::getLogStatus(), status);
        EXPECT_EQ(file.appendWithSave(L"A"), status != 0);
        EXPECT_EQ(unnamed.reset(), status != 0);
        EXPECT_EQ(std::filesystem::exists("x.log") && std::filesystem::exists("Ravik.LOG"), status != 0);
        EXPECT_TRUE(missing.reset() == 0 && missing.appendWithSave(L"A") == 0);
    }
    EXPECT_EQ(log("x.log"), "[00:00:00] A[00:00:00] A");
    EXPECT_TRUE(file.reset() == 1 && fileBytes("x.log").empty() && file.assertClose() == 0);
    BryLogfile copy(file), assigned;
    (assigned = copy).appendWithSave(L"B\n");
    EXPECT_EQ(log("x.log"), "[00:00:00] B\r\n");
}

TEST_F(BryLogfileTest, WritesAnyTextAsTheBytesOfTheLocale) {
    const std::string many(500000, 'x');
    const std::pair<BryString, std::string> rows[] = {{L"", ""},
                                                      {L"100%s%n\n\n", "100%s%n\r\n\r\n"},
                                                      {L"St\xFCtze \x80", "St\xFCtze \x80"},
                                                      {many.c_str(), many},
                                                      {L"\x141\x3000 b\xD83D\xDE00z\xFFFF.", "?? b??z?."}};
    BryLogfile file(L"x.log");
    for (const auto& [text, expected] : rows) {
        file.reset();
        EXPECT_EQ(file.appendWithSave(text), 1);
        EXPECT_EQ(log("x.log"), "[00:00:00] " + expected);
    }
    BryLogfile cut(BryString(std::string(300, 'n').c_str()));
    EXPECT_EQ(cut.reset(), 1);
    EXPECT_TRUE(std::filesystem::exists(std::string(255, 'n')));
}

TEST_F(BryLogfileTest, EmptiesTheFirstFileOfTheProcessOnly) {
    BryLogfile::setLogStatus(0);
    BryLogfile::m_isFirstLogToFile = 1;
    for (const char* name : {"a", "b"}) writeFile(name, "old");
    for (const wchar_t* name : {L"a", L"b", L"none/x", L"a"}) BryLogfile::logToFile(name, L"M");
    BryLogfile::logToFile(BryString(std::string(300, 'n').c_str()), L"M");
    EXPECT_EQ(log("a"), "\r\n[00:00:00] M\r\n[00:00:00] M");
    EXPECT_EQ(log("b"), "old\r\n[00:00:00] M");
    BryLogfile::m_isFirstLogToFile = 1;
    BryLogfile::logToFile(L"none/x", L"M");  // was the first, though it could not be opened
    BryLogfile::logToFile(L"b", L"N");
    EXPECT_EQ(log("b"), "old\r\n[00:00:00] M\r\n[00:00:00] N");
}

TEST_F(BryLogfileTest, GoesOnWhereTheDiskIsFull) {
    if (onWindows) GTEST_SKIP() << "Windows has no disk that is always full";
    BryLogfile file(L"/dev/full");
    file.appendWithSave(std::string(500000, 'x').c_str());
    BryLogfile::logToFile(L"/dev/full", L"M");
    BryLogfile::listModules(L"/dev/full");
    EXPECT_EQ(file.reset(), 1);
}

TEST_F(BryLogfileTest, ListsTheModulesOfThisProcess) {
    writeFile("modules", std::string(100, 'x'));
    BryLogfile::listModules(L"none/x");
    for (int i = 0; i < 2; ++i) BryLogfile::listModules(L"modules");
    const std::string list = fileBytes("modules");
    EXPECT_TRUE(std::regex_search(
        list,
        std::regex("^\\S*library_tests\\S* PID : \\d+\r\n\r\n\r\nBase        Size      Version         Path\r\n")))
        << list;
    const std::regex line("0x[0-9a-f]{8,16}  0x[0-9a-f]{1,8} +([0-9.]{14,} +)?\\S[^\r]*\r\n");
    const std::ptrdiff_t lines = std::count(list.begin(), list.end(), '\n') - 4;
    EXPECT_EQ(std::distance(std::sregex_iterator(list.begin(), list.end(), line), std::sregex_iterator()), lines);
    // The version stands in the name, or in its column: 1.2.3 as 1.02.0003.0000.
    int parts[3] = {};
    char version[32];
    ASSERT_EQ(std::sscanf(bryVersion(), "%d.%d.%d", &parts[0], &parts[1], &parts[2]), 3);
    std::snprintf(version, sizeof version, "%d.%02d.%04d.0000 ", parts[0], parts[1], parts[2]);
    EXPECT_NE(list.find(onWindows ? version : std::string("libKelRoots.so.") + bryVersion() + "\r\n"),
              std::string::npos)
        << list;
}

TEST_F(BryLogfileTest, ReadsTheVersionOfAProgramFile) {
    for (const bool is64 : {false, true}) {
        writeFile("program", libraryFile({5, 16, 17}, {0, 1, 2}, {0, 9, 0x409}, is64));
        BryString file(L"program"), version(L"old");
        EXPECT_EQ(BryLogfile::GetFileVersion(file, version), 1);
        EXPECT_TRUE(version == L"1.01.0000.0123" && file == L"program") << is64 << version.getStringA();
    }
    writeFile("plain", "MZ");
    for (BryString file : {L"plain", L"none", L"", L"."}) {
        BryString version(L"old");
        EXPECT_EQ(BryLogfile::GetFileVersion(file, version), 0) << file.getStringA();
        EXPECT_EQ(version, L"old");
    }
}

// ---- two processes -------------------------------------------------------------------------------

namespace {

void appendEntries() {
    BryLogfile::setLogStatus(1);
    BryLogfile file(L"shared.log");
    BryString entry;
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(file.appendWithSave(entry.format(L"entry %05d%*s\n", i, i % 50 == 0 ? 9000 : 1, L"|")), 1);
}

}  // namespace

TEST(BryLogfileProcesses, LoseAndTearNothingInOneFile) {
    if (std::getenv("KELROOTS_TEST_APPENDS")) return appendEntries();
    TempFolder folder;
    setEnvironment("KELROOTS_TEST_APPENDS", "1");
    const std::filesystem::path self = folder.workingFolderBefore() / testing::internal::GetArgvs().front();
    const std::string command = "\"" + self.string() + "\" --gtest_filter=BryLogfileProcesses.* --gtest_brief=1";
    const auto run = [&] { EXPECT_EQ(std::system(command.c_str()), 0); };
    std::thread other(run);
    run();
    other.join();

    std::string text = fileBytes("shared.log");
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    std::vector<int> counts(10000);
    const std::size_t size = std::string("[00:00:00]entry00000|\r\n").size();
    for (std::size_t at = 0; at < text.size(); at += size) {
        const std::string line = text.substr(at, size);
        ASSERT_TRUE(line[0] == '[' && line.compare(9, 6, "]entry") == 0 && line.compare(20, 3, "|\r\n") == 0) << line;
        ++counts.at(std::stoul(line.substr(15, 5)));
    }
    EXPECT_EQ(counts, std::vector<int>(10000, 2));
}

// ---- readings ------------------------------------------------------------------------------------

TEST_F(BryLogfileTest, HoldsTheReadingsOfAStopwatch) {
    BryPerfMonitor monitor;
    monitor.end(L"Never");
    monitor.start(L"Load\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    monitor.end(L"Load");
    std::smatch m;
    const std::string text = fileBytes("RavikPerf.LOG");
    ASSERT_TRUE(std::regex_match(
        text, m,
        std::regex(
            "\\[..:..:..\\] End = Never : 0 -> (\\d+) \\(Diff = (\\d+)\\)\\[..:..:..\\] Start = Load\r\n : (\\d+)"
            "\\[..:..:..\\] End = Load : (\\d+) -> (\\d+) \\(Diff = (\\d+)\\)")))
        << text;
    const auto number = [&m](std::size_t i) { return std::stol(m[i]); };
    EXPECT_TRUE(number(1) == number(2) && number(3) == number(4) && number(5) - number(4) == number(6));
    EXPECT_TRUE(number(6) >= 55 && number(6) < 30000 && number(3) < 600000) << "milliseconds of wall time: " << text;
}

TEST_F(BryLogfileTest, HoldsTheReadingThatAMessageBoxShows) {
    if (!hasDisplay()) GTEST_SKIP() << "there is no display for the box";
    for (const int status : {0, 1}) {
        BryLogfile::setLogStatus(status);
        BryPerfMonitor monitor(L"x.log");
        const BryString shown = shownInBox(L"Norrab", [&] { monitor.endWithMessageBox(L"100%s"); });
        BryString expected;
        EXPECT_EQ(shown, expected.format(L"100%%s : 0 -> %d (Diff = %d)", monitor.m_end, monitor.m_end));
        EXPECT_EQ(std::filesystem::exists("x.log"), status != 0);
    }
    EXPECT_EQ(log("x.log").find("[00:00:00] End = 100%s : 0 -> "), 0u);
}
