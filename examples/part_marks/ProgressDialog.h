// The library's progress dialog as a display of the run.
#pragma once

#include <roots/progress/BryProcessEvolutionManager.h>

// Shows the main process in the dialog: its action and that of the innermost step, and how far it is.
class ProgressDialog final : public ProgressDisplayProtocol {
public:
    ProgressDialog();
    ProgressDialog(const ProgressDialog&) = delete;
    ProgressDialog& operator=(const ProgressDialog&) = delete;
    ~ProgressDialog();

    void progressChanged(int key, int percent) override;
    void processRegistered(int key, BryString action, bool cancelable) override;
    void processDeRegistered(int key) override;

private:
    BryString m_run;
};
