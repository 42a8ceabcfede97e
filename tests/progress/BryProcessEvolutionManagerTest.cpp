#include <gtest/gtest.h>
#include <roots/progress/BryProcessEvolutionManager.h>

#include <deque>
#include <functional>
#include <random>
#include <set>
#include <sstream>

#include "tests/support/FailNthAllocation.h"

namespace {

using std::string, std::to_string;

// A manager, its displays and a log of what they are told (display b of process 1: "b+1:8! " registered, action 8,
// cancelable, "b=1:5 " at 5 %, "b-1 " deregistered) and of commands with their answers: n registers one more display, x
// deregisters one; r, d and p are for processes (r8: one of action 8, p1:5: 5 %), e arms cancelling, c cancels.
struct World {
    struct Display final : ProgressDisplayProtocol {
        Display(World* world, int number) : world(world), name(static_cast<char>('a' + number)) {}
        void tell(const string& event) { world->log += name + event + " ", world->react(*this, event); }
        void progressChanged(int key, int percent) override { tell("=" + to_string(key) + ":" + to_string(percent)); }
        void processRegistered(int key, BryString action, bool cancelable) override {
            tell("+" + to_string(key) + ":" + action.getStringA() + (cancelable ? "!" : ""));
        }
        void processDeRegistered(int key) override { tell("-" + to_string(key)); }
        World* world;
        char name;
        std::set<string> known, lost;
    };
    BryProcessEvolutionManager manager;
    std::deque<Display> displays;
    std::function<void(Display&, const string&)> react = [](Display&, const string&) {};
    string log;

    virtual int answer(char op, int key, int value) {
        if (op == 'n') return manager.registerDisplay(&displays.back());
        if (op == 'x') return manager.deRegisterDisplay(key);
        if (op == 'r') return manager.registerProcess(to_string(key).c_str());
        if (op == 'd') return manager.deRegisterProcess(key);
        if (op == 'e') return manager.EnableCancel(key != 0);
        op == 'c' ? manager.cancelProcess() : manager.increaseProgress(key, value);
        return manager.getIsCanceled();
    }
    void run(const string& commands) {
        std::istringstream words(commands);
        char op = 0;
        for (int key = 0, value = 0; words >> op >> key;) {
            if (words.peek() == ':') words.ignore() >> value;
            if (op == 'n') displays.emplace_back(this, static_cast<int>(displays.size()));
            log += op + to_string(answer(op, key, value)) + " ";
        }
    }
    string actionOf(int key) { return manager.getProcessCurentAction(key).getStringA(); }
};

// The rules in their plainest form, for calls from outside the displays only.
struct Model : World {
    std::deque<ProcessInfo> processes;
    std::deque<Display*> shown;
    bool canceled = false, enabled = false, offered = false;

    int answer(char op, int key, int value) override {
        const int count = static_cast<int>(processes.size()), last = static_cast<int>(shown.size());
        const bool has = key >= 0 && key < count, stopped = enabled && canceled;
        if ((op == 'd' && (key < 0 || (stopped && key > 0))) || (op == 'x' && (key < 0 || key >= last))) return 0;
        if (op == 'r' && stopped && count > 0) return -1;
        if (op == 'r') processes.push_back({count, 0, to_string(key).c_str()});
        if (op == 'p' && has) (processes.begin() + key)->percent = value;
        for (Display* display : shown) {
            if (op == 'r') display->processRegistered(count, processes.back().action, count == 0 && offered);
            if (op == 'd') display->processDeRegistered(key);
            if (op == 'p' && has) display->progressChanged(key, value);
        }
        for (int i = 0; op == 'c' && enabled && i < count; ++i)
            for (Display* display : shown) display->processDeRegistered(i);
        if (op == 'c' && enabled && count > 0) processes.resize(1), canceled = true;
        if (op == 'd' && has) processes.erase(processes.begin() + key);
        if (op == 'd' && key == 0) canceled = enabled = offered = false;
        if (op == 'e' && count == 0) enabled = true, offered = key != 0;
        if (op == 'x') shown.erase(shown.begin() + key);
        if (op == 'n') shown.push_back(&displays.back());
        for (int i = 0; op == 'n' && i < count; ++i) {
            shown.back()->processRegistered(i, (processes.begin() + i)->action, false);
            shown.back()->progressChanged(i, (processes.begin() + i)->percent);
        }
        return op == 'r' ? count : op == 'n' ? last : op == 'e' ? 0 : op == 'd' || op == 'x' || canceled;
    }
};

string randomCommand(std::mt19937& random) {
    const char op = "nrrrrrrpppppppdddddddxec"[random() % 24];
    const int key = static_cast<int>(random() % (op == 'r' ? 1 << 30 : 7)) - 1;
    return op + to_string(key) + ":" + to_string(random() % 200);
}

}  // namespace

TEST(BryProcessEvolutionManager, AnswersAndTellsAsTheModelDoes) {
    std::mt19937 random(6);
    for (int round = 0; round < 200; ++round) {
        World world;
        Model model;
        for (string commands, command; commands.size() < 400; commands += command + " ") {
            command = randomCommand(random);
            world.run(command), model.run(command);
            ASSERT_EQ(world.log, model.log) << commands << command;
        }
    }
}

TEST(BryProcessEvolutionManager, TellsNobodyTwiceAndForgetsNobodyWhenDisplaysCallIt) {
    // Displays a and b and processes 0 to 2 of the actions 7 to 9 are there when the command comes.
    // clang-format off
    const struct { const char *command, *event, *reaction, *log; } rows[] = {
        {"p1:5", "a=1:5", "x0", "a=1:5 x1 b=1:5 p0 "},
        {"p1:5", "a=1:5", "p1:6", "a=1:5 a=1:6 b=1:6 p0 b=1:5 p0 "},
        {"p0:5", "a=0:5", "c0", "a=0:5 a-0 b-0 a-1 b-1 a-2 b-2 c1 p1 "},
        {"r1", "a+3:1", "n0", "a+3:1 c+0:7 c=0:0 c+1:8 c=1:0 c+2:9 c=2:0 c+3:1 c=3:0 n2 b+3:1 r3 "},
        {"r1", "a+3:1", "d0", "a+3:1 a-0 b-0 d1 b+2:1 r2 "},
        {"r1", "a+3:1", "c0", "a+3:1 a-0 b-0 a-1 b-1 a-2 b-2 a-3 b-3 c1 r-1 "},
        {"d1", "a-1", "n0", "a-1 c+0:7 c=0:0 c+1:8 c=1:0 c+2:9 c=2:0 n2 b-1 c-1 d1 "},
        {"d1", "b-1", "d1", "a-1 b-1 d0 d1 "},
        {"d1", "a-1", "d0", "a-1 a-0 b-0 d1 b-0 d1 "},
        {"d1", "a-1", "c0 n0", "a-1 a-0 b-0 b-1 a-2 b-2 c1 c+0:7 c=0:0 n2 d1 "},
        {"d0", "a-0", "c0", "a-0 b-0 a-1 b-1 a-2 b-2 c1 d1 "},
        {"c0", "b-1", "c0 r1 d0 d2 e1 n0", "a-0 b-0 a-1 b-1 c0 r-1 d0 d0 e0 c+0:7 c=0:0 n2 a-2 b-2 c1 "},
        {"n0", "c+1:8", "x2", "c+0:7 c=0:0 c+1:8 x1 n-1 "},
        {"n0", "c+1:8", "d1", "c+0:7 c=0:0 c+1:8 a-1 b-1 c-1 d1 c+1:9 c=1:0 n2 "}};
    // clang-format on
    for (const auto& row : rows) {
        World world;
        world.run("n0 n0 e1 r7 r8 r9");
        world.log.clear();
        world.react = [&](auto& to, auto& event) { to.name + event == row.event ? world.run(row.reaction) : void(); };
        world.run(row.command);
        EXPECT_EQ(world.log, row.log) << row.event << "> " << row.reaction;
    }
}

TEST(BryProcessEvolutionManager, LeavesEveryDisplayWithTheProcessesThatThereAre) {
    std::mt19937 random(7);
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        World world;
        const auto act = [&] { world.run(randomCommand(random)); };
        world.react = [&](World::Display& display, const string& event) {
            const string action = world.actionOf(std::stoi(event.substr(1)));
            EXPECT_TRUE(event[0] != '+' || display.known.insert(action).second) << world.log;
            if (event[0] == '-') display.known.erase(action);
            EXPECT_TRUE(event[0] != '-' || action.empty() || display.lost.insert(action).second ||
                        world.manager.m_isCanceled)
                << world.log;
            if (world.log.size() < 2000 && random() % 4 == 0) act();
        };
        for (int i = 0; i < 40; ++i) act();
        std::set<string> all;
        for (int i = 0; i < world.manager.getNumberOfActiveProcesses(); ++i) all.insert(world.actionOf(i));
        for (long i = 0; i < world.manager.m_displays.length() && !world.manager.getIsCanceled(); ++i)
            EXPECT_EQ(static_cast<World::Display*>(world.manager.m_displays[i])->known, all) << world.log;
    }
}

TEST(BryProcessEvolutionManager, KeepsProcessesInCopiesAndWhenMemoryIsOut) {
    World world;
    world.run("r5 r6 r7 r7 r8 r9 r9 r9 r9 r9 p3:300 d1");
    BryProcessEvolutionManager& manager = world.manager;
    const BryProcessEvolutionManager copy(manager);
    world.run("d0");
    EXPECT_TRUE(copy.getKeyForAction(L"7") == 1 && manager.getKeyForAction(L"7") == 0);
    const ProcessInfo last = manager.getProcessInfo(1), none = manager.getProcessInfo(8);
    EXPECT_TRUE(last.key == 3 && last.percent == 300 && none.key == -1 && none.percent == 0 && none.action.isEmpty());
    EXPECT_TRUE(manager.getKeyForAction(L"5") == -1 && manager.getProcessCurentPercent(1) == 300 &&
                manager.getProcessCurentPercent(8) == 8);
    world.react = [](auto&...) { throw std::bad_alloc(); };
    EXPECT_THROW(world.run("n0"), std::bad_alloc);
    EXPECT_EQ(manager.m_displays.length(), 0) << "whoever throws in the replay is not registered";
    SKIP_UNLESS_LIBRARY_MEMORY_IS_SEEN();
    world.run("r1 r2 r3 r4 r5 r6 r7 r8");  // the next one needs room
    const auto check = [&] { EXPECT_TRUE(manager.m_processes.length() == 16 && manager.m_actionNames.length() == 16); };
    EXPECT_EQ(failEachAllocation([&] { manager.registerProcess(L"8"); }, check), 3);
}
