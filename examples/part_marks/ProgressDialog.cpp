#include "ProgressDialog.h"

#include <roots/progress/BryProgressCtrl.h>

ProgressDialog::ProgressDialog() {
    BryProgressCtrl::isActive(1);  // switches the library's own window on
}

ProgressDialog::~ProgressDialog() { BryProgressCtrl::reset(); }

void ProgressDialog::progressChanged(int key, int percent) {
    if (key == 0) BryProgressCtrl::setPercentage(percent, 0);
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
