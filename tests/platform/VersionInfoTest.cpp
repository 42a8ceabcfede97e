// Version information of files: which resource of a library it is, and what damaged, huge and other files answer.
#include <gtest/gtest.h>
#include <roots/platform/Win32.h>
#include <tests/support/Platform.h>
#include <tests/support/TempFolder.h>
#include <tests/support/Units.h>
#include <tests/support/VersionedFile.h>

#include <set>

namespace {

class VersionInfo : public testing::Test {
protected:
    // The file version that the block tells, or the error.
    static std::string of(const std::string& name) {
        const auto path = units<wchar_t>(name);
        const DWORD size = GetFileVersionInfoSizeW(path.data(), nullptr);
        std::vector<WORD> block(size / 2 + 50, 0x7777);
        EXPECT_EQ(GetFileVersionInfoW(path.data(), 0, size, block.data()), size != 0 ? TRUE : FALSE);
        if (size == 0) return "error " + std::to_string(GetLastError());
        const auto number = [&block](std::size_t word) { return std::to_string(block[word]); };
        return number(25) + '.' + number(24) + '.' + number(27) + '.' + number(26);
    }

    static std::string ofBytes(const std::string& bytes) {
        writeFile("file.dll", bytes);
        return of("file.dll");
    }

    const TempFolder folder;
    const std::string sound = libraryFile({3, 16, 24}, {0, 1, 2}, {7, 9, 0x409});
    const std::string fine = "3.1.0.123", none = "error 1812";
};

TEST_F(VersionInfo, IsTheResourceOfTypeSixteenAndNameOneInTheBestLanguage) {
    const Ids types = {3, 16, 24}, names = {0, 1, 2}, german = {0x407, 0x807, 0xC07};
    // clang-format off
    const struct { const char* what; Ids types, names, languages; std::string version; } rows[] = {
        {"English", types, names, {7, 9, 0x409}, fine}, {"neutral", types, names, {0, 9, 0x409}, "1.1.0.123"},
        {"any English", types, names, {7, 9, 0x809}, "2.1.0.123"}, {"the first", types, names, german, "1.1.0.123"},
        {"the first name", types, {1, 2, 3}, german, "4.1.0.123"}, {"no such name", types, {2, 3, 4}, german, none},
        {"first type", {16, 17, 24}, names, german, "4.1.0.123"}, {"no such type", {3, 5, 24}, names, german, none}};
    // clang-format on
    for (const auto& row : rows)
        for (const bool is64 : {true, false})
            EXPECT_EQ(ofBytes(libraryFile(row.types, row.names, row.languages, is64)), row.version) << row.what;
    std::string many = sound;
    put(many, 0x150, 0x800), put(many, 0x158, 0x800), put(many, 0x244, 0x80000400), put(many, 0x60C, 100 << 16);
    for (std::uint64_t i = 0; i < 100; ++i)
        put(many, 0x610 + 8 * i, (0x3B0 + i) | (i == 0x59 ? 0xE8ull : 0xC8) << 32, 8);
    many.resize(0xA00);
    EXPECT_EQ(ofBytes(many), fine) << "English among a hundred";
}

TEST_F(VersionInfo, FillsABlockOfAnySize) {
    ASSERT_EQ(ofBytes(sound), fine);
    for (const unsigned size : {0u, 1u, 51u, 92u, 188u, 1000u}) {
        std::string block(1001, '#'), expected = sound.substr(0x3C0, std::min(size, 92u)) + '#';
        EXPECT_TRUE(GetFileVersionInfoW(L"file.dll", 0, size, block.data()));
        EXPECT_EQ(block.substr(0, expected.size() - 1) + block[size], expected);
    }
}

TEST_F(VersionInfo, IsNotTakenFromDamagedFiles) {
    // clang-format off
    const struct { const char* what; std::size_t at, number, size; std::string version;
                   bool onWindowsToo = true; } rows[] = {
        {"any machine", 0x44, 0x1234, 2, fine}, {"no sections", 0x46, 0, 2, none}, {"no header", 0x54, 0, 2, none},
        {"two directories", 0xC4, 2, 4, none}, {"three directories", 0xC4, 3, 4, fine}, {"no tree", 0xDC, 0, 4, none},
        {"types in a circle", 0x21C, 0x80000000, 4, none}, {"type is no directory", 0x21C, 0x28, 4, none},
        {"data just long enough", 0x158, 0x21C, 4, fine}, {"data up to the end", 0x2EC, 0x240, 4, fine},
        // Windows reads on where nothing is, and Wine dies of it
        {"data cut off", 0x158, 0x21B, 4, none, false}, {"data past the end", 0x2EC, 0x241, 4, none, false},
        {"no data", 0x2EC, 0, 4, none, false}, {"names in a circle", 0x244, 0x80000028, 4, none, false},
        {"a name's data", 0x244, 0x50, 4, none, false}, {"a language's names", 0x274, 0x80000000, 4, none, false}};
    const std::set<std::size_t> needed = {  // words that lead to the version; all others may be anything
        0, 0x3C, 0x3E, 0x40, 0x42, 0x46, 0x54, 0x58, 0xD8, 0xDA, 0x154, 0x156, 0x15C, 0x15E, 0x20C, 0x20E, 0x218, 0x21A,
        0x21C, 0x21E, 0x234, 0x236, 0x240, 0x242, 0x244, 0x246, 0x25C, 0x25E, 0x270, 0x272, 0x274, 0x276, 0x2E8, 0x2EA,
        0x2EC, 0x2EE};
    // clang-format on
    const auto damaged = [this](std::size_t at, std::size_t number, std::size_t size) {
        std::string file = sound;
        put(file, at, number, size);
        return ofBytes(file);
    };
    for (const auto& row : rows)
        EXPECT_TRUE((onWindows && !row.onWindowsToo) || damaged(row.at, row.number, row.size) == row.version)
            << row.what;
    if (onWindows) return;
    for (std::size_t at = 0; at < 0x3C0; at += 2)
        EXPECT_EQ(damaged(at, 0xFFFF, 2) == fine, needed.count(at) == 0) << std::hex << at;
    for (std::size_t size = 0; size < sound.size(); ++size)
        EXPECT_EQ(ofBytes(sound.substr(0, size)) == fine, size >= 0x41C) << size;
}

TEST_F(VersionInfo, OfWhatIsNoLibraryIsAnError) {
    std::filesystem::create_directory("folder");
    writeFile("text", "hello");
    for (const auto& [name, error] :
         {std::pair{"text", 1812}, {"folder", 5}, {"none", 2}, {"none\\x", 3}, {"a*b", 123}})
        EXPECT_EQ(of(name), "error " + std::to_string(error)) << name;
    EXPECT_EQ(GetFileVersionInfoSizeW(nullptr, nullptr) + GetFileVersionInfoSizeW(L"", nullptr), 0u);
    if (onWindows) return;  // no such files
    ASSERT_EQ(std::system("mkfifo pipe"), 0);
    for (const char* name : {"pipe", "/dev/zero"}) EXPECT_EQ(of(name), none) << name << ": neither waits nor reads on";
    writeFile("huge", sound);
    std::filesystem::resize_file("huge", std::uintmax_t{1} << 40);
    EXPECT_EQ(of("huge"), fine);
}

}  // namespace
