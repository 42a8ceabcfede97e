#include <roots/platform/WideText.h>
#include <roots/platform/posix/ProgressLine.h>
#include <roots/platform/posix/TerminalText.h>

#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using namespace platform;
using Clock = std::chrono::steady_clock;

constexpr auto kInterval = std::chrono::nanoseconds(std::chrono::seconds(1)) / 30;
constexpr int kNarrowForBar = 30, kShortestBar = 10, kLongestBar = 40;  // columns
constexpr int kPercentColumns = 5;                                      // " 100%"

// ---- what the line says --------------------------------------------------------------------------------------------

int columns() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::string bar(int length, int percent) {
    const auto full = static_cast<std::size_t>(length * percent / 100);
    return " [" + std::string(full, '#') + std::string(static_cast<std::size_t>(length) - full, ' ') + "]";
}

std::string percentage(int percent) {
    const std::string number = std::to_string(percent) + '%';
    return std::string(kPercentColumns - number.size(), ' ') + number;
}

// One column stays free: a terminal whose last column is written to begins another line with what follows.
std::string composed(const wchar_t* title, int percent, const wchar_t* label, int width) {
    if (--width < kPercentColumns) return {};
    if (percent < 0) {
        const TerminalText end = fitted(label, width / 2);
        return fitted(title, width - end.columns - 1).bytes + ' ' + end.bytes;
    }
    const int length = width < kNarrowForBar ? 0 : std::clamp(width / 3, kShortestBar, kLongestBar);
    const int room = width - kPercentColumns - (length > 0 ? length + 3 : 0);
    return fitted(title, room).bytes + (length > 0 ? bar(length, percent) : "") + percentage(percent);
}

// ---- the terminal --------------------------------------------------------------------------------------------------

bool isInBackground() {
    const pid_t foreground = tcgetpgrp(STDERR_FILENO);
    return foreground != -1 && foreground != getpgrp();
}

void write(const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(STDERR_FILENO, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR) return;
        if (count > 0) done += static_cast<std::size_t>(count);
    }
}

constexpr char kErased[] = "\r\x1b[K";
constexpr int kEndings[] = {SIGHUP, SIGINT, SIGQUIT, SIGABRT, SIGTERM};

std::atomic<pid_t> g_begunBy{0};  // the process that has a line, 0 where there is none

// The action for signals that end the process.
extern "C" void eraseAndEnd(int signal) {
    if (g_begunBy == getpid() && !isInBackground()) {
        const ssize_t ignored = ::write(STDERR_FILENO, kErased, sizeof kErased - 1);
        static_cast<void>(ignored);
    }
    raise(signal);  // ends the process once this action, which serves one signal, has returned
}

// Where the host has chosen neither of them, its own action stays.
void replaceAction(void (*from)(int), void (*to)(int)) {
    for (const int ending : kEndings) {
        struct sigaction action {};
        sigaction(ending, nullptr, &action);
        if ((action.sa_flags & SA_SIGINFO) != 0 || action.sa_handler != from) continue;
        action.sa_handler = to;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(ending, &action, nullptr);
    }
}

// While it lives, new threads of this one take no signals: those are for the host's own.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before;
};

// A line that cannot be composed is not drawn.
template <class Action>
void unlessMemoryIsOut(Action action) noexcept {
    try {
        action();
    } catch (const std::bad_alloc&) {
    }
}

class Line {
public:
    void show(const wchar_t* title, int percent, const wchar_t* label);
    void hide();
    void setAside();
    void putBack();
    void endForGood();

private:
    bool isOurs() const { return m_owner == getpid(); }
    void begin();
    bool holds(const wchar_t* title, int percent, const wchar_t* label) const;
    void draw();
    void erase();
    void drawLater();
    void drawInTime();
    void endThread();

    pid_t m_owner = 0;  // the process that has begun the line; 0 while there is none, -1 when the process exits
    bool m_terminal = false;

    // What follows is shared with the thread.
    std::mutex m_mutex;
    std::condition_variable m_ending;
    std::thread m_thread;
    bool m_waiting = false;  // the thread is to draw
    bool m_ended = false;    // the thread is to end
    bool m_onScreen = false;
    std::vector<wchar_t> m_title{0}, m_label{0};
    int m_percent = 0;
    Clock::time_point m_next;  // not to be drawn before
};

void Line::begin() {
    const char* const kind = std::getenv("TERM");
    m_owner = getpid();
    m_terminal = isatty(STDERR_FILENO) != 0 && (kind == nullptr || std::strcmp(kind, "dumb") != 0);
    if (!m_terminal) return;
    g_begunBy = m_owner;
    replaceAction(SIG_DFL, eraseAndEnd);
}

bool Line::holds(const wchar_t* title, int percent, const wchar_t* label) const {
    return percent == m_percent && wide::equal(title, m_title.data()) && wide::equal(label, m_label.data());
}

void Line::show(const wchar_t* title, int percent, const wchar_t* label) {
    if (m_owner == 0) begin();
    if (!m_terminal || !isOurs()) return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if ((m_onScreen || m_waiting) && holds(title, percent, label)) return;
    m_title.assign(title, title + wide::length(title) + 1);
    m_label.assign(label, label + wide::length(label) + 1);
    m_percent = percent;
    if (m_waiting) return;
    if (Clock::now() >= m_next) {
        draw();
    } else {
        drawLater();
    }
}

void Line::draw() {
    m_next = Clock::now() + kInterval;
    if (isInBackground()) return;
    write('\r' + composed(m_title.data(), m_percent, m_label.data(), columns()) + "\x1b[K");
    m_onScreen = true;
}

void Line::erase() {
    if (m_onScreen && !isInBackground()) write(kErased);
    m_onScreen = false;
}

void Line::drawLater() {
    if (m_thread.joinable()) m_thread.join();  // it has drawn, and holds no lock any more
    try {
        const SignalsBlocked blocked;
        m_thread = std::thread(&Line::drawInTime, this);
        m_waiting = true;
    } catch (const std::system_error&) {
        std::this_thread::sleep_until(m_next);
        draw();
    }
}

void Line::drawInTime() {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_ending.wait_until(lock, m_next, [this] { return m_ended; })) {
        unlessMemoryIsOut([this] { draw(); });
    }
    m_waiting = false;
}

void Line::endThread() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ended = true;
    }
    m_ending.notify_one();
    if (m_thread.joinable()) m_thread.join();
    m_ended = false;
}

void Line::setAside() {
    if (!m_terminal || !isOurs()) return;
    endThread();
    erase();
}

void Line::putBack() {
    if (m_terminal && isOurs()) draw();
}

void Line::hide() {
    if (m_owner == 0 || !isOurs()) return;
    setAside();
    m_owner = g_begunBy = 0;
    if (m_terminal) replaceAction(eraseAndEnd, SIG_DFL);
}

void Line::endForGood() {
    hide();
    m_owner = -1;
}

// Lives on when the process exits, for destructors of the host that still report.
Line& line() {
    static Line& line = *new Line;
    static const struct AtExit {
        ~AtExit() { line.endForGood(); }
    } atExit;
    return line;
}

}  // namespace

void platform::showProgressLine(const wchar_t* title, int percent, const wchar_t* label) noexcept {
    unlessMemoryIsOut([=] { line().show(title, percent, label); });
}

void platform::hideProgressLine() noexcept {
    unlessMemoryIsOut([] { line().hide(); });
}

platform::ProgressLineAside::ProgressLineAside() noexcept {
    unlessMemoryIsOut([] { line().setAside(); });
}

platform::ProgressLineAside::~ProgressLineAside() {
    unlessMemoryIsOut([] { line().putBack(); });
}
