// The file behind the registry: several processes, processes that are killed, and files that are no registry.
#include <sys/fsuid.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tests/support/ScratchRegistry.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// A value that repeats one number, under a name that has a number too.
LSTATUS write(HKEY key, int name, int number, DWORD count = 1) {
    const std::vector<int> data(count, number);
    const wchar_t text[] = {static_cast<wchar_t>(0x4E00 + name), 0};
    return RegSetValueExW(key, text, 0, REG_BINARY, reinterpret_cast<const BYTE*>(data.data()), count * 4);
}

// The number, or the error's with a minus.
int read(HKEY key, int name = 0) {
    int data[4000];
    DWORD size = sizeof data;
    const wchar_t text[] = {static_cast<wchar_t>(0x4E00 + name), 0};
    const LSTATUS result = RegQueryValueExW(key, text, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
    if (result != 0) return -result;
    EXPECT_EQ(std::count(data, data + size / 4, *data), size / 4);
    return *data;
}

template <class Work>
pid_t inChild(Work work) {
    const pid_t child = fork();
    if (child != 0) return child;
    work();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure());
}

void expectSuccess(pid_t child) {
    int status = 1;
    EXPECT_TRUE(waitpid(child, &status, 0) == child && status == 0) << status;
}

TEST(RegistryStore, HasEveryWriteOfAKilledProcessThatWasAnswered) {
    const ScratchRegistry registry;
    volatile int* const answered =  // shared with the children
        static_cast<int*>(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    write(registry.key, 0, 0);
    for (int round = 0; round < 200; ++round) {
        const pid_t writer = inChild([&] {
            for (int n = *answered + 1;; ++n)
                if (write(registry.key, 0, n, static_cast<DWORD>(n % 4000 + 1)) == 0) *answered = n;
        });
        for (const auto end = Clock::now() + std::chrono::microseconds(std::rand() % 25000); Clock::now() < end;)
            for (const int least = *answered; read(registry.key) < least;) FAIL() << "while it writes";
        EXPECT_TRUE(kill(writer, SIGKILL) == 0 && waitpid(writer, nullptr, 0) == writer);
        ASSERT_GE(read(registry.key), *answered) << "round " << round;
    }
    EXPECT_GT(*answered, 100);
    EXPECT_EQ(std::filesystem::status(registry.path()).permissions(), std::filesystem::perms(0600)) << "his alone";
}

TEST(RegistryStore, LetsTenProcessesWriteAtOnce) {
    const ScratchRegistry registry;
    std::vector<pid_t> children;
    for (int process = 0; process < 10; ++process)
        children.push_back(inChild([&, process] {
            for (int i = 0; i < 1000; ++i) EXPECT_EQ(write(registry.key, process * 1000 + i, i), 0) << "or it waited";
        }));
    std::for_each(children.begin(), children.end(), expectSuccess);
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(read(registry.key, i), i % 1000) << i;
}

TEST(RegistryStore, ServesThreadsAndTheProcessesThatTheyFork) {
    const ScratchRegistry registry;
    std::thread other([&registry] {
        for (int i = 0; i < 300; ++i) EXPECT_EQ(write(registry.key, 1, i), 0);
    });
    for (int i = 0; i < 30; ++i) expectSuccess(inChild([&] { EXPECT_EQ(write(registry.key, 2, i), 0); }));
    other.join();
    EXPECT_TRUE(read(registry.key, 1) == 299 && read(registry.key, 2) == 29);
}

TEST(RegistryStore, NoticesThatItsFileIsGone) {
    const ScratchRegistry registry;
    std::filesystem::rename(registry.path(), registry.path() + ".old");
    setEnvironment("KELROOTS_REGISTRY", ":memory:");
    EXPECT_EQ(ScratchKey(HKEY_CURRENT_USER, registry.name).disposition, DWORD{REG_CREATED_NEW_KEY});
    EXPECT_EQ(write(registry.key, 0, 1), 1018) << "the key of the old file is no key of the new one";
    EXPECT_TRUE(std::filesystem::is_regular_file(":memory:")) << "a file whatever its name";
}

TEST(RegistryStore, RefusesFilesThatItCannotUseAndSaysSoOnce) {
    using Path = const std::string&;
    const auto edit = [](std::size_t at, const std::string& with) {
        return [=](Path path) { writeFile(path, fileBytes(path).replace(at, with.size(), with)); };
    };
    const auto allow = [](mode_t file, mode_t folder) {
        return [=](Path path) { chmod(path.c_str(), file), chmod(path.substr(0, path.rfind('/')).c_str(), folder); };
    };
    // clang-format off
    const struct { const char* when; std::function<void(Path)> harm; int read; LSTATUS write; } rows[] = {
        {"unchanged", edit(0, ""), 1, 0}, {"no database", edit(0, "????"), -1017, 1017},
        {"a database of another program", edit(68, "none"), -1017, 1017},
        {"of a newer release", edit(60, bytes("\0\0\0\x2")), -1306, 1306},
        {"damaged", edit(100, std::string(4000, '\xFF')), -1009, 1009},
        {"to be read only", allow(0444, 0777), 1, 5}, {"not to be read", allow(0, 0777), -5, 5},
        {"in a folder to be read only", allow(0444, 0555), 1, 5}, {"in a closed folder", allow(0666, 0), -5, 5},
        {"far away", [](Path) { setEnvironment("KELROOTS_REGISTRY", std::string(505, '/').c_str()); }, -206, 206},
        {"a folder", [](Path path) { unlink(path.c_str()), mkdir(path.c_str(), 0777); }, -5, 5},
        {"empty", [](Path path) { writeFile(path, ""); }, -1018, 1018},
        {"where none can be", [](Path) { setEnvironment("KELROOTS_REGISTRY", "/dev/null/registry.db"); }, -1018, 5}};
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const ScratchRegistry registry;
        EXPECT_EQ(write(registry.key, 0, 1), 0);
        expectSuccess(inChild([] {}));  // has this process close the file
        allow(0666, 0777)(registry.path());
        row.harm(registry.path());
        testing::internal::CaptureStderr();
        expectSuccess(inChild([&] {
            setfsuid(65534);  // tests may run as a user who may do everything
            for (int again = 0; again < 2; ++again)
                EXPECT_TRUE(read(registry.key) == row.read && write(registry.key, 0, 1) == row.write);
        }));
        const std::string told = testing::internal::GetCapturedStderr(), start = "KelRoots: the registry /";
        EXPECT_EQ(told.substr(0, start.size()), row.write == 0 || row.write == 1018 ? "" : start);
        EXPECT_LE(std::count(told.begin(), told.end(), '\n'), 1) << told;
    }
}

}  // namespace
