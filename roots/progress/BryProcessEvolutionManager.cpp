#include <roots/progress/BryProcessEvolutionManager.h>

#include <algorithm>

// What one operation tells the displays. It lives on the stack while displays are called; the rounds under way form a
// chain, so that what a display changes from inside reaches all of them. Nothing is allocated.
class BryProcessEvolutionManager::Round {
public:
    enum Kind { eNews, eReplay, eDeRegistration, eCancel };

    Round(const BryProcessEvolutionManager* manager, Kind kind, long process)
        : process(process), displays(manager->m_displays.length()), m_manager(manager), m_kind(kind) {
        m_innermost = this;
    }
    ~Round() { m_innermost = m_outer; }
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;

    long process;         // the key of the process it is about, as it is now; of the one behind, once that one is gone
    long processes = 0;   // a replay's: below this key they are to be told
    long display = 0;     // whose turn is next
    long displays;        // from this key on they are not told
    bool isGone = false;  // the process is registered no more, or withdrawn by a cancel

    // A replay's, too: its display is still registered.
    bool goesOn() const { return display < displays; }

    static bool isCancelling(const BryProcessEvolutionManager* manager) {
        return find(manager, [](const Round& round) { return round.m_kind == eCancel; }) != nullptr;
    }

    // The deregistration under way of that key, of a process or (gone) of none; or null.
    static const Round* deRegistrationOf(const BryProcessEvolutionManager* manager, long key, bool gone = false) {
        return find(manager, [key, gone](const Round& round) {
            return round.m_kind == eDeRegistration && round.process == key && round.isGone == gone;
        });
    }

    // Deregistrations under way reach the new display: they stand in its replay.
    static void displayAdded(const BryProcessEvolutionManager* manager) {
        find(manager, [](Round& round) {
            if (round.m_kind == eDeRegistration && !round.isGone) ++round.displays;
            return false;
        });
    }

    static void displayRemoved(const BryProcessEvolutionManager* manager, long key) {
        find(manager, [key](Round& round) {
            if (key < round.display) --round.display;
            if (key < round.displays) --round.displays;
            return false;
        });
    }

    static void processRemoved(const BryProcessEvolutionManager* manager, long key) {
        find(manager, [key](Round& round) {
            if (key == round.process) {
                round.isGone = true;
                if (round.m_kind == eNews) round.displays = 0;
            }
            if (key < round.process) --round.process;
            if (key < round.processes) --round.processes;
            return false;
        });
    }

    // This cancel has withdrawn every process, and only the main one is left. All who knew of a process that is being
    // deregistered have been told; displays that came during the cancel know of the main one alone.
    void processesCut() const {
        find(m_manager, [this](Round& round) {
            const bool isNested = round.process > 0;
            if (round.m_kind == eDeRegistration && !round.isGone) {
                round.display = displays;
                if (isNested) round.displays = displays;
            }
            if (round.m_kind == eNews) round.displays = 0;
            if (isNested || round.m_kind == eReplay) round.isGone = true;
            round.processes = 0;
            return false;
        });
    }

private:
    // The first round of the manager, the innermost first, for which action answers true; or null.
    template <class Action>
    static Round* find(const BryProcessEvolutionManager* manager, Action action) {
        Round* round = m_innermost;
        while (round != nullptr && !(round->m_manager == manager && action(*round))) round = round->m_outer;
        return round;
    }

    const BryProcessEvolutionManager* const m_manager;
    const Kind m_kind;
    Round* const m_outer = m_innermost;
    static Round* m_innermost;
};

BryProcessEvolutionManager::Round* BryProcessEvolutionManager::Round::m_innermost = nullptr;

template <class Notify>
inline void BryProcessEvolutionManager::tell(Round& round, Notify notify) {
    while (round.goesOn()) notify(m_displays[round.display++]);
}

BryProcessEvolutionManager::BryProcessEvolutionManager() = default;

BryProcessEvolutionManager::BryProcessEvolutionManager(const BryProcessEvolutionManager& other) = default;

BryProcessEvolutionManager& BryProcessEvolutionManager::operator=(const BryProcessEvolutionManager& other) = default;

BryProcessEvolutionManager::~BryProcessEvolutionManager() = default;

BryProcessEvolutionManager* BryProcessEvolutionManager::getProcessEvolutionManager() {
    return m_pProcessEvolutionManager;
}

int BryProcessEvolutionManager::registerProcess(BryString action) {
    if (m_cancelEnabled && m_isCanceled && !m_processes.isEmpty()) return -1;
    if (Round::isCancelling(this)) return -1;
    const long key = m_processes.length();
    m_actionNames.setLogicalLength(key + 1).setLogicalLength(key);  // room, so that only one append can fail
    m_processes.append({static_cast<int>(key), 0, action});
    m_actionNames.append(action);

    const bool cancelable = key == 0 && m_cancelOffered;
    Round round(this, Round::eNews, key);
    tell(round, [&](ProgressDisplayProtocol* display) {
        display->processRegistered(static_cast<int>(round.process), action, cancelable);
    });
    return round.isGone ? -1 : static_cast<int>(round.process);
}

int BryProcessEvolutionManager::deRegisterProcess(int key) {
    if (key < 0 || (m_cancelEnabled && m_isCanceled && key != 0)) return 0;
    const bool wasProcess = isProcess(key);
    if (Round::isCancelling(this) || Round::deRegistrationOf(this, key, !wasProcess) != nullptr) return 0;

    Round round(this, Round::eDeRegistration, key);
    round.isGone = !wasProcess;
    tell(round, [&](ProgressDisplayProtocol* display) {
        if (wasProcess || !isProcess(key))
            display->processDeRegistered(wasProcess ? static_cast<int>(round.process) : key);
    });
    if (!round.isGone) {
        const long removed = round.process;
        m_processes.removeAt(removed);
        m_actionNames.removeAt(removed);
        Round::processRemoved(this, removed);
    }
    const bool hasBegunAnew = !wasProcess && isProcess(key);  // from inside a display
    if (key == 0 && !hasBegunAnew) m_isCanceled = m_cancelEnabled = m_cancelOffered = false;
    return 1;
}

void BryProcessEvolutionManager::increaseProgress(int key, int percent) {
    if (!isProcess(key)) return;
    m_processes[key].percent = percent;
    Round round(this, Round::eNews, key);
    tell(round,
         [&](ProgressDisplayProtocol* display) { display->progressChanged(static_cast<int>(round.process), percent); });
}

int BryProcessEvolutionManager::registerDisplay(ProgressDisplayProtocol* display) {
    const long key = m_displays.append(display);
    Round::displayAdded(this);
    Round round(this, Round::eReplay, 0);
    round.display = key;
    round.processes = Round::isCancelling(this) ? (std::min)(m_processes.length(), 1L) : m_processes.length();
    try {
        replay(round, *display);
    } catch (...) {
        if (round.goesOn()) deRegisterDisplay(static_cast<int>(round.display));
        throw;
    }
    return round.goesOn() ? static_cast<int>(round.display) : -1;
}

void BryProcessEvolutionManager::replay(Round& round, ProgressDisplayProtocol& display) {
    while (round.process < round.processes && round.goesOn()) {
        display.processRegistered(static_cast<int>(round.process), m_processes[round.process].action, false);
        if (round.goesOn() && !round.isGone)
            display.progressChanged(static_cast<int>(round.process), m_processes[round.process].percent);
        if (!round.isGone) ++round.process;
        round.isGone = false;
    }
}

int BryProcessEvolutionManager::deRegisterDisplay(int key) {
    if (key < 0 || key >= m_displays.length()) return 0;
    m_displays.removeAt(key);
    Round::displayRemoved(this, key);
    return 1;
}

int BryProcessEvolutionManager::EnableCancel(bool offered) {
    if (m_processes.isEmpty()) {
        m_cancelEnabled = true;
        m_cancelOffered = offered;
    }
    return 0;
}

void BryProcessEvolutionManager::cancelProcess() {
    if (!m_cancelEnabled || m_processes.isEmpty() || Round::isCancelling(this)) return;
    Round round(this, Round::eCancel, 0);
    for (; round.process < m_processes.length(); ++round.process) {
        const Round* deRegistration = Round::deRegistrationOf(this, round.process);
        round.display = deRegistration != nullptr ? deRegistration->display : 0;
        tell(round,
             [&](ProgressDisplayProtocol* display) { display->processDeRegistered(static_cast<int>(round.process)); });
    }
    m_isCanceled = true;
    m_processes.setLogicalLength(1);
    m_actionNames.setLogicalLength(1);
    round.processesCut();
}

ProcessInfo BryProcessEvolutionManager::getProcessInfo(int key) {
    return isProcess(key) ? m_processes[key] : ProcessInfo();
}

BryString BryProcessEvolutionManager::getProcessCurentAction(int key) { return getProcessInfo(key).action; }

int BryProcessEvolutionManager::getProcessCurentPercent(int key) const {
    return isProcess(key) ? m_processes[key].percent : key;
}

int BryProcessEvolutionManager::getNumberOfActiveProcesses() const { return static_cast<int>(m_processes.length()); }

int BryProcessEvolutionManager::getKeyForAction(const BryString& action) const {
    long key = -1;
    m_actionNames.find(action, key);
    return static_cast<int>(key);
}
