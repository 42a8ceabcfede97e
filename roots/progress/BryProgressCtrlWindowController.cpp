#include <roots/progress/BryProgressCtrl.h>

BryProgressCtrlWindowController::BryProgressCtrlWindowController() {
    appendOutputWindow(&m_defaultWindow);
    m_defaultWindow.switchOn();
}

// Destructors that run later find nothing to talk to.
BryProgressCtrlWindowController::~BryProgressCtrlWindowController() {
    BryProgressCtrl::m_ProgressCtrlWindowController = nullptr;
}

int BryProgressCtrlWindowController::appendOutputWindow(BryProgressCtrlWindow* window) {
    if (window == nullptr) return -1;
    long position = 0;
    if (m_windows.find(window, position) != 0) return static_cast<int>(position);
    position = m_windows.append(window);
    m_defaultWindow.switchOff();
    return static_cast<int>(position);
}

int BryProgressCtrlWindowController::removeOutputWindow(BryProgressCtrlWindow* window) {
    long position = 0;
    if (window == nullptr || window == &m_defaultWindow || m_windows.find(window, position) == 0) return -1;
    // The slot is cleared before it is given up: a call that is on its way through the list may still come to it.
    m_windows[position] = nullptr;
    while (m_windows.last() == nullptr) m_windows.removeLast();
    return static_cast<int>(position);
}
