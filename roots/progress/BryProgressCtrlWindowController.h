// The list of windows that show progress.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>
#include <roots/progress/BryProgressCtrlWindow.h>

// There is one, from the loading of the library until it is unloaded: BryProgressCtrl::m_ProgressCtrlWindowController.
// Position 0 is the library's own window, which starts switched on: a host that asks for progress sees it.
//
// The controller does not own the windows. They stay alive for as long as they are in the list, and leave it by
// removeOutputWindow alone.
class KELROOTS_API BryProgressCtrlWindowController {
public:
    BryProgressCtrlWindowController();
    ~BryProgressCtrlWindowController();
    BryProgressCtrlWindowController(const BryProgressCtrlWindowController&) = delete;
    BryProgressCtrlWindowController& operator=(const BryProgressCtrlWindowController&) = delete;

    // Adds the window at the end, switches the library's own one off, and answers the new position. A window that is in
    // the list already: its position, and nothing changes. Null: -1.
    int appendOutputWindow(BryProgressCtrlWindow* window);

    // Takes the window out and answers the position that it had; the others keep theirs, and nothing is switched on or
    // off. -1, and nothing changes, for null, for the library's own and for a window that is not in the list. The
    // window itself is compared, never looked into: a destructor may still call this.
    int removeOutputWindow(BryProgressCtrlWindow* window);

private:
    friend class BryProgressCtrl;

    BryArray<BryProgressCtrlWindow*> m_windows{0, 8};  // null where one was taken out
    BryProgressCtrlWindow m_defaultWindow;
};
