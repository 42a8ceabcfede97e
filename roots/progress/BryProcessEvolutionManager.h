// Where long work reports how far it is, whoever shows it, and where it learns that the user cancelled it.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>
#include <roots/text/BryString.h>

// A registered process.
struct ProcessInfo {
    int key = -1;     // the key it was given; after processes below it have been deregistered it is at a lower one
    int percent = 0;  // the last value reported, whatever that is
    BryString action;
};

// What shows processes: derive from it and register with the manager. A display ignores keys that it was not told of.
class ProgressDisplayProtocol {
public:
    virtual void progressChanged(int key, int percent) = 0;

    // cancelable: the display may offer to cancel, by cancelProcess(). True for the main process at most.
    virtual void processRegistered(int key, BryString action, bool cancelable) = 0;

    // Processes above key move down by one, but not where the manager's cancelProcess() withdraws them all.
    virtual void processDeRegistered(int key) = 0;

protected:
    // Not virtual: nobody deletes a display by this class. Make yours final, or give it a virtual destructor.
    ~ProgressDisplayProtocol() = default;
};

// Tells displays of processes. A long command is the main process, key 0; its nested steps are the processes above it.
// Keys are positions, counted from 0: deregistering a process or a display moves those above it down by one.
//
//     manager->EnableCancel(true);                              // while nothing runs
//     const int command = manager->registerProcess(L"Marking");
//     const int step = manager->registerProcess(L"Reading");
//     for (int i = 0; i < 100 && !manager->getIsCanceled(); ++i) manager->increaseProgress(step, i);
//     manager->deRegisterProcess(step);                         // innermost first; refused after a cancel
//     manager->deRegisterProcess(command);                      // ends the cancel as well
//
// Displays are told one after another, in the order of their keys, before the operation returns. They are the caller's,
// not null, and live until they are deregistered. What a display throws passes through: those behind it are not told, a
// process being deregistered or cancelled stays, and a display that throws in its replay is not registered. When memory
// is out while registering, std::bad_alloc passes through and nothing has changed.
//
// Displays may call the manager from inside their operations. Such a call is complete, its notifications included,
// before it returns, so displays whose turn has not come hear of the later event first. Nobody is left out and nobody
// is told twice:
//
// - A notification goes to the displays that are registered when it begins and still are when their turn comes; one
//   that deregisters itself may be destroyed at once. Those that come meanwhile know the state from their replay.
// - A process that is being deregistered keeps its place, and those above it their keys, until every display has been
//   told, those included that came meanwhile: it stands in their replay. Deregistering it again is refused, and a
//   cancel does not withdraw it again.
// - A notification names the process by the key that this has by then. Where the process has been deregistered or
//   cancelled meanwhile, displays whose turn has not come are told of that only.
// - While a cancel goes round the processes stand still: registering and deregistering one is refused, cancelling again
//   does nothing. A display that comes meanwhile is told of the main process alone, as it would be afterwards.
//
// For one thread.
class KELROOTS_API BryProcessEvolutionManager {
public:
    // The one manager of this process; there from the loading of the library to the end.
    static BryProcessEvolutionManager* getProcessEvolutionManager();

    // Copies processes, displays (as pointers) and the state of the cancel. The copy is told nothing of the original's
    // changes. Assign only from outside the displays' operations.
    BryProcessEvolutionManager(const BryProcessEvolutionManager& other);
    BryProcessEvolutionManager& operator=(const BryProcessEvolutionManager& other);

    // The new key, after every display was told processRegistered; -1, and nobody is told, after a cancel, and where
    // the process has been taken away from inside a display already.
    int registerProcess(BryString action);

    // Tells every display processDeRegistered, even where no process has that key, and removes the process. Key 0 ends
    // and disarms cancelling. 1; or 0, and nothing happens, for a negative key and, after a cancel, any but 0.
    int deRegisterProcess(int key);

    // Sets the percentage of a process and tells every display progressChanged. A key of no process changes nothing.
    void increaseProgress(int key, int percent);

    // Brings the display up to date: processRegistered (never cancelable) and progressChanged for each process. The
    // display's key; -1 where it has deregistered itself already. A display registered twice is told twice.
    int registerDisplay(ProgressDisplayProtocol* display);

    // 1, or 0 for a key of no display. The display is not told.
    int deRegisterDisplay(int key);

    // Only while no process is registered, else nothing changes: arms cancelling, with false as well; offered says
    // whether displays are told that the main process is cancelable. Always 0.
    int EnableCancel(bool offered);

    // If cancelling is armed and a process is registered: tells every display processDeRegistered of each process, the
    // main one included, and removes all but that one.
    void cancelProcess();

    // From the end of a cancel until key 0 is deregistered.
    bool getIsCanceled() const { return m_isCanceled; }

    // For a key of no process: key -1, 0 percent, no action.
    ProcessInfo getProcessInfo(int key);

    // Empty for a key of no process.
    BryString getProcessCurentAction(int key);

    // The key itself where it is of no process.
    int getProcessCurentPercent(int key) const;

    int getNumberOfActiveProcesses() const;

    // The lowest key with that action, or -1.
    int getKeyForAction(const BryString& action) const;

private:
    class Round;

    BryProcessEvolutionManager();
    virtual ~BryProcessEvolutionManager();

    bool isProcess(int key) const { return key >= 0 && key < m_processes.length(); }

    // Calls notify with each display whose turn comes.
    template <class Notify>
    void tell(Round& round, Notify notify);

    void replay(Round& round, ProgressDisplayProtocol& display);

    BryArray<ProcessInfo, BryArrayObjectCopyReallocator<ProcessInfo>, BryArrayMemoryController<ProcessInfo>>
        m_processes;
    BryArray<ProgressDisplayProtocol*, BryArrayObjectCopyReallocator<ProgressDisplayProtocol*>,
             BryArrayMemoryController<ProgressDisplayProtocol*>>
        m_displays;
    BryArray<BryString, BryArrayObjectCopyReallocator<BryString>, BryArrayMemoryController<BryString>> m_actionNames;
    bool m_isCanceled = false;
    bool m_cancelEnabled = false;
    bool m_cancelOffered = false;

    static BryProcessEvolutionManager* m_pProcessEvolutionManager;
};
