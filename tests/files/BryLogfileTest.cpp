// The switch and the first-call flag belong to the process: this file is compiled without access control, so that each
// test sets them.
#include <gtest/gtest.h>
#include <roots/Version.h>
#include <roots/files/BryFileAccess.h>
#include <roots/files/BryLogfile.h>
#include <roots/files/BryPerfMonitor.h>

#include <map>
#include <regex>
#include <sstream>
#include <thread>

#include "tests/support/Environment.h"
#include "tests/support/FailNthAllocation.h"
#include "tests/support/MessageBoxes.h"
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
        const int on = status != 0;
        EXPECT_TRUE(BryLogfile::getLogStatus() == status && file.appendWithSave(L"A") == on && unnamed.reset() == on);
        EXPECT_TRUE(std::filesystem::exists("x.log") == on && std::filesystem::exists("Ravik.LOG") == on) << status;
        EXPECT_TRUE(missing.reset() == 0 && missing.appendWithSave(L"A") == 0);
    }
    EXPECT_EQ(log("x.log"), "[00:00:00] A[00:00:00] A");
    EXPECT_TRUE(file.reset() == 1 && fileBytes("x.log").empty() && file.assertClose() == 0);
    BryLogfile copy(file), assigned;
    (assigned = copy).appendWithSave(L"B\n");
    EXPECT_EQ(log("x.log"), "[00:00:00] B\r\n");
}

TEST_F(BryLogfileTest, WritesAnyTextAsTheBytesOfTheLocaleAndGoesOnWhereItCannot) {
    const std::string many(500000, 'x');
    BryString dashes(many.c_str());
    dashes.replace(L'x', L'\x2013');
    // clang-format off
    const std::pair<BryString, std::string> rows[] = {
        {dashes.getStringW(), std::string(500000, '?')}, {L"", ""}, {L"100%s%n\n\n", "100%s%n\r\n\r\n"}, {L"St\xFCtze \x80", "St\xFCtze \x80"}, {many.c_str(), many},
        {L"\x141\x3000 b\xD83D\xDE00z\xFFFF.", "?? b??z?."}};
    // clang-format on
    BryLogfile file(L"x.log"), cut(BryString(std::string(300, 'n').c_str()));
    for (const auto& [text, expected] : rows) {
        EXPECT_TRUE(file.reset() == 1 && file.appendWithSave(text) == 1);
        EXPECT_EQ(log("x.log"), "[00:00:00] " + expected);
    }
    EXPECT_TRUE(cut.reset() == 1 && std::filesystem::exists(std::string(255, 'n')));
    if (onWindows) return;  // has no disk that is always full
    BryLogfile(L"/dev/full").appendWithSave(many.c_str());
    BryLogfile::logToFile(L"/dev/full", L"M");
    BryLogfile::listModules(L"/dev/full");
}

TEST_F(BryLogfileTest, HoldsNothingBackWhenMemoryIsOut) {
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    BryLogfile file(L"x.log");
    const auto descriptors = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = descriptors();
    const auto logAll = [&] {
        file.appendWithSave(L"a\x3000 b");  // would wait for ever for one that is still open
        BryLogfile::logToFile(L"x.log", L"\x3000");
        BryLogfile::listModules(L"x.log");
    };
    logAll();  // what is made once for the process is there
    const long live = liveAllocations();
    for (long nth = 1; nth < 200; ++nth) {
        FailNthAllocation failing(nth);
        try {
            logAll();
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_EQ(liveAllocations(), live);
    EXPECT_EQ(descriptors(), before);
}

TEST_F(BryLogfileTest, WaitsForWhoHasTheFileForHimself) {
    BryLogfile file(L"x.log");
    file.reset();
    auto held = std::make_unique<HeldFile>(L"x.log");
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        held.reset();
    });
    EXPECT_EQ(file.appendWithSave(L"A"), 1);
    other.join();
    EXPECT_EQ(log("x.log"), "[00:00:00] A");
}

TEST_F(BryLogfileTest, EmptiesTheFirstFileOfTheProcessOnly) {
    BryLogfile::setLogStatus(0);
    for (const char* name : {"a", "b"}) writeFile(name, "old");
    for (const auto& names : {std::array{L"a", L"b", L"none/x", L"a"}, {L"none/x", L"b", L"none/x", L"b"}}) {
        BryLogfile::m_isFirstLogToFile = 1;  // also the one that cannot be opened is the first
        for (const wchar_t* name : names) BryLogfile::logToFile(name, L"M");
    }
    EXPECT_EQ(log("a"), "\r\n[00:00:00] M\r\n[00:00:00] M");
    EXPECT_EQ(log("b"), "old\r\n[00:00:00] M\r\n[00:00:00] M\r\n[00:00:00] M");
    if (onWindows && !underWine()) return;  // where c:\ is for administrators
    setEnvironment("KELROOTS_DRIVE_C", folder.path().string().c_str());
    BryLogfile::logToFile(L"", L"M");
    EXPECT_EQ(BryFileAccess::removeFile(L"c:\\Norrab.log"), 0);
}

TEST_F(BryLogfileTest, ListsTheModulesOfThisProcess) {
    writeFile("modules", std::string(100, 'x'));
    for (const wchar_t* name : {L"none/x", L"modules", L"modules"}) BryLogfile::listModules(name);
    const std::string list = fileBytes("modules");
    const std::regex head(
        "^\\S*library_tests\\S* PID : \\d+\r\n\r\n\r\nBase        Size      Version         Path\r\n"),
        line("0x[0-9a-f]{8,16}  0x[0-9a-f][0-9a-f ]{7}[0-9. ]{16}[^ \r][^\r]*\r\n"),
        library(onWindows ? "  0\\.\\d\\d\\.\\d{4}\\.\\d{4} +\\S[^\r]*KelRoots.dll\r\n"
                          : "libKelRoots\\.so\\." + std::string(bryVersion()) + "\r\n");
    EXPECT_TRUE(std::regex_search(list, head) && std::regex_search(list, library)) << list;
    EXPECT_EQ(std::distance(std::sregex_iterator(list.begin(), list.end(), line), std::sregex_iterator()),
              std::count(list.begin(), list.end(), '\n') - 4);
}

TEST_F(BryLogfileTest, ReadsTheVersionOfAProgramFile) {
    std::string bytes = libraryFile({5, 16, 17}, {0, 1, 2}, {0, 9, 0x409});
    writeFile("program", bytes);
    for (std::size_t at = 0x308 + 2; at < 0x308 + 4 * 92; at += 92) put(bytes, at, 0, 2);
    writeFile("without a value", bytes);
    writeFile("plain", "MZ");
    for (const wchar_t* name : {L"program", L"without a value", L"plain", L"none", L"", L"."}) {
        BryString file(name), version(L"old");
        const BryString expected = file == L"program" ? L"1.01.0000.0123" : L"old";
        EXPECT_EQ(BryLogfile::GetFileVersion(file, version), expected == L"old" ? 0 : 1);
        EXPECT_TRUE(version == expected && file == name) << file.getStringA() << ": " << version.getStringA();
    }
}

TEST_F(BryLogfileTest, LosesAndTearsNothingThatTwoProcessesAppend) {
    if (const char* const path = std::getenv("KELROOTS_TEST_APPENDS")) {
        BryLogfile file{BryString(path)};
        BryString entry;
        for (int i = 0; i < 10000; ++i)
            ASSERT_EQ(file.appendWithSave(entry.format(L"%d%*s\n", i, i % 50 == 0 ? 9000 : 1, L"|")), 1);
        return;
    }
    setEnvironment("KELROOTS_TEST_APPENDS", (folder.path() / "shared.log").string().c_str());
    const auto self = (folder.workingFolderBefore() / testing::internal::GetArgvs().front()).string();
    const std::string command = "\"" + self + "\" --gtest_filter=*TwoProcesses* --gtest_brief=1";
    const auto run = [&] { EXPECT_EQ(std::system(command.c_str()), 0); };
    std::thread other(run);
    run();
    other.join();

    std::istringstream lines(fileBytes("shared.log"));
    std::map<std::string, int> counts;
    for (std::string line; std::getline(lines, line);) ++counts[line.erase(0, 11)];  // without the time
    EXPECT_EQ(counts.size(), 10000u);
    for (const auto& [line, count] : counts) ASSERT_EQ(count, 2) << line;
}

TEST_F(BryLogfileTest, HoldsTheReadingsOfAStopwatchWhichAMessageBoxShowsToo) {
    BryPerfMonitor monitor, boxed(L"x.log");
    const auto wait = [] { std::this_thread::sleep_for(std::chrono::milliseconds(60)); };
    monitor.end(L"Never");
    const int never = monitor.m_end;
    wait();
    monitor.start(L"Load\n");
    wait();
    monitor.end(L"Load");
    const int start = monitor.m_start, end = monitor.m_end;
    BryString expected;
    expected.format(
        L"[00:00:00] End = Never : 0 -> %d (Diff = %d)[00:00:00] Start = Load\r\n : %d"
        L"[00:00:00] End = Load : %d -> %d (Diff = %d)",
        never, never, start, start, end, end - start);
    EXPECT_EQ(log("RavikPerf.LOG"), expected.getStringA());
    EXPECT_TRUE(never >= 0 && start - never >= 55 && end - start >= 55 && end < 600000) << "milliseconds of wall time";
    if (!hasDisplay()) GTEST_SKIP() << "there is no display for the box";
    for (const int status : {0, 1}) {
        BryLogfile::setLogStatus(status);
        const BryString shown = shownInBox(L"Norrab", [&] { boxed.endWithMessageBox(L"100%s"); });
        EXPECT_EQ(shown, expected.format(L"100%%s : 0 -> %d (Diff = %d)", boxed.m_end, boxed.m_end));
        EXPECT_EQ(std::filesystem::exists("x.log"), status != 0);
    }
    EXPECT_EQ(log("x.log"), std::string("[00:00:00] End = ") + expected.getStringA());
}
