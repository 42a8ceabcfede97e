#include "ProgressDialog.h"

#include <roots/progress/BryProgressCtrl.h>

#ifdef _WIN32
#    include <windows.h>

#    include <commctrl.h>
#endif

namespace {

// What the dialog needs of a Windows program: the bar's class, and that its messages are served at times.
#ifdef _WIN32
void prepareControls() { InitCommonControls(); }

void serveMessages() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}
#else
void prepareControls() {}
void serveMessages() {}
#endif

}  // namespace

ProgressDialog::ProgressDialog() {
    prepareControls();
    BryProgressCtrl::isActive(1);  // switches the library's own window on
}

ProgressDialog::~ProgressDialog() { BryProgressCtrl::reset(); }

void ProgressDialog::progressChanged(int key, int percent) {
    if (key == 0) BryProgressCtrl::setPercentage(percent, 0);
    serveMessages();
}

void ProgressDialog::processRegistered(int key, BryString action, bool) {
    if (key == 0)
        BryProgressCtrl::activate(m_run = action);
    else
        BryProgressCtrl::setTitle(m_run + L": " + action);
}

void ProgressDialog::processDeRegistered(int key) {
    if (key == 0)
        BryProgressCtrl::reset();
    else
        BryProgressCtrl::setTitle(m_run);
}
