// What runs, and how far it is, on one line of the terminal.
#pragma once

#include <roots/progress/BryProcessEvolutionManager.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "Terminal.h"

// Shows processes as "part_marks 45 % > reading 90 %", the innermost last. What does not fit the terminal is cut: first
// the longest names, then whole processes from the outermost on.
//
// The line is drawn over where it stands, by a thread of its own: a report only notes the percentage, the line is drawn
// at most 30 times a second, and the last report is drawn in any case. Its row is blank when the line is destroyed.
// Where the terminal has no columns nothing is done. All operations are for the one thread that the manager is used in.
class ProgressLine final : public ProgressDisplayProtocol {
public:
    // The terminal lives longer than the line.
    explicit ProgressLine(Terminal& terminal);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine();

    void progressChanged(int key, int percent) override;
    void processRegistered(int key, BryString action, bool cancelable) override;

    // Without the main process there is nothing to show: a cancel clears the line, whatever still ends behind it.
    void processDeRegistered(int key) override;

    // While one lives, the line is off the terminal and stays so: for what else is written to it. One at a time.
    class Aside {
    public:
        explicit Aside(ProgressLine& line) : m_line(line), m_drawing(line.m_drawing) { line.replace(""); }
        Aside(const Aside&) = delete;
        Aside& operator=(const Aside&) = delete;
        ~Aside() {
            const std::lock_guard lock(m_line.m_noting);
            m_line.noteChange();
        }

    private:
        ProgressLine& m_line;
        const std::lock_guard<std::mutex> m_drawing;
    };

private:
    struct Process {
        std::vector<wchar_t> action{0};  // its own units: the thread reads them
        int percent = 0;
    };

    static std::string composed(const std::vector<Process>& processes, int columns);

    bool isOn() const { return m_thread.joinable(); }
    void noteChange();  // m_noting is locked
    void drawChanges();
    void replace(const std::string& text);  // m_drawing is locked, or the thread has ended

    Terminal& m_terminal;

    std::mutex m_noting;  // for the next three
    std::vector<Process> m_processes;
    bool m_isChanged = false;
    bool m_isEnding = false;
    std::condition_variable m_noted;

    std::mutex m_drawing;  // for the terminal
    bool m_isDrawn = false;

    std::thread m_thread;
};
