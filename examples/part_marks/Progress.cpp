#include "Progress.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

void interrupt(int) {
    isInterrupted = 1;
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace

ShownOn::ShownOn(ProgressDisplayProtocol& display)
    : m_key(BryProcessEvolutionManager::getProcessEvolutionManager()->registerDisplay(&display)) {}

ShownOn::~ShownOn() { BryProcessEvolutionManager::getProcessEvolutionManager()->deRegisterDisplay(m_key); }

Progress::Progress(const BryString& run) : m_manager(*BryProcessEvolutionManager::getProcessEvolutionManager()) {
    isInterrupted = 0;
    m_before = std::signal(SIGINT, SIG_IGN);
    if (m_before != SIG_IGN) std::signal(SIGINT, interrupt);
    m_manager.EnableCancel(true);
    m_key = m_manager.registerProcess(run);
}

Progress::~Progress() {
    m_manager.deRegisterProcess(m_key);
    std::signal(SIGINT, m_before);
}

void Progress::completeInAnyCase() { std::signal(SIGINT, SIG_IGN); }

bool Progress::isCanceled() {
    if (isInterrupted != 0 && !m_manager.getIsCanceled()) m_manager.cancelProcess();
    return m_manager.getIsCanceled();
}

Progress::Step::Step(Progress& progress, const BryString& action, int from, int to)
    : m_progress(progress), m_key(progress.m_manager.registerProcess(action)), m_from(from), m_to(to) {}

// In a run that was canceled meanwhile the step is gone already.
Progress::Step::~Step() {
    if (m_key >= 0) m_progress.m_manager.deRegisterProcess(m_key);
    m_progress.m_manager.increaseProgress(m_progress.m_key, m_to);
}

bool Progress::Step::advance(std::size_t done, std::size_t all) {
    const int percent = all == 0 ? 100 : static_cast<int>(done * 100 / all);
    if (percent != m_percent) {
        m_percent = percent;
        if (!m_progress.m_manager.getIsCanceled()) m_progress.m_manager.increaseProgress(m_key, percent);
        m_progress.m_manager.increaseProgress(m_progress.m_key, m_from + (m_to - m_from) * percent / 100);
    }
    return !m_progress.isCanceled();
}
