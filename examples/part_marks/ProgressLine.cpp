#include "ProgressLine.h"

#include <roots/platform/posix/TerminalText.h>

#include <algorithm>
#include <new>
#include <system_error>

namespace {

using platform::fitted;
using Clock = std::chrono::steady_clock;

constexpr auto kInterval = std::chrono::nanoseconds(std::chrono::seconds(1)) / 30;
constexpr int kLeastColumns = 4;  // of a name that is cut
constexpr char kBetween[] = " > ";

std::string percentText(int percent) { return std::to_string(percent) + " %"; }

}  // namespace

ProgressLine::ProgressLine(Terminal& terminal) : m_terminal(terminal) {
    if (terminal.columns() == 0) return;
    try {
        m_thread = std::thread(&ProgressLine::drawChanges, this);
    } catch (const std::system_error&) {
        // without a thread nothing is shown
    }
}

ProgressLine::~ProgressLine() {
    if (!isOn()) return;
    {
        const std::lock_guard lock(m_noting);
        m_isEnding = true;
    }
    m_noted.notify_one();
    m_thread.join();
    replace("");
}

void ProgressLine::progressChanged(int key, int percent) {
    const std::lock_guard lock(m_noting);
    const auto at = static_cast<std::size_t>(key);
    if (key < 0 || at >= m_processes.size() || m_processes[at].percent == percent) return;
    m_processes[at].percent = percent;
    noteChange();
}

void ProgressLine::processRegistered(int key, BryString action, bool) {
    if (!isOn() || key < 0) return;
    const std::lock_guard lock(m_noting);
    const auto at = static_cast<std::size_t>(key);
    if (at >= m_processes.size()) m_processes.resize(at + 1);
    const wchar_t* const text = action.getStringW();
    m_processes[at] = {{text, text + action.length() + 1}, 0};
    noteChange();
}

void ProgressLine::processDeRegistered(int key) {
    const std::lock_guard lock(m_noting);
    if (key < 0 || key >= static_cast<int>(m_processes.size())) return;
    m_processes.erase(m_processes.begin() + key, key == 0 ? m_processes.end() : m_processes.begin() + key + 1);
    noteChange();
}

void ProgressLine::noteChange() {
    if (!m_isChanged) m_noted.notify_one();
    m_isChanged = true;
}

void ProgressLine::drawChanges() {
    Clock::time_point next = Clock::now();
    std::unique_lock noting(m_noting);
    while (!m_isEnding || m_isChanged) {
        m_noted.wait(noting, [this] { return m_isEnding || m_isChanged; });
        m_noted.wait_until(noting, next, [this] { return m_isEnding; });
        if (!m_isChanged) continue;
        m_isChanged = false;
        try {
            const std::string text = composed(m_processes, m_terminal.columns() - 1);
            noting.unlock();  // a terminal that is stopped does not stop the work
            const std::lock_guard drawing(m_drawing);
            replace(text);
        } catch (const std::bad_alloc&) {
            // the next change may be drawn
        }
        next = Clock::now() + kInterval;
        if (!noting.owns_lock()) noting.lock();
    }
}

// Blanks instead of control sequences: every terminal knows them.
void ProgressLine::replace(const std::string& text) {
    const int columns = m_terminal.columns();
    if (columns == 0 || (!m_isDrawn && text.empty())) return;
    m_terminal.write('\r' + std::string(static_cast<std::size_t>(columns - 1), ' ') + '\r' + text);
    m_isDrawn = !text.empty();
}

// The last column of the terminal stays free: behind it the cursor would be in the next row.
std::string ProgressLine::composed(const std::vector<Process>& processes, int columns) {
    for (auto first = processes.begin(); first != processes.end(); ++first) {
        std::vector<int> names;  // their columns
        int all = -3;
        for (auto process = first; process != processes.end(); ++process) {
            names.push_back(fitted(process->action.data(), columns).columns);
            all += names.back() + 1 + static_cast<int>(percentText(process->percent).size()) + 3;
        }
        for (; all > columns; --all) {
            const auto longest = std::max_element(names.begin(), names.end());
            if (*longest <= kLeastColumns) break;
            --*longest;
        }
        if (all > columns) continue;
        std::string text;
        for (auto process = first; process != processes.end(); ++process) {
            if (process != first) text += kBetween;
            text += fitted(process->action.data(), names[static_cast<std::size_t>(process - first)]).bytes;
            text += ' ' + percentText(process->percent);
        }
        return text;
    }
    const std::string last = processes.empty() ? "" : percentText(processes.back().percent);
    return static_cast<int>(last.size()) <= columns ? last : "";
}
