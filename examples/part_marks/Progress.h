// How far a run has come, and the user's wish to stop it.
#pragma once

#include <roots/progress/BryProcessEvolutionManager.h>

#include <cstddef>

// Registers a display with the process's manager for as long as it lives.
class ShownOn {
public:
    explicit ShownOn(ProgressDisplayProtocol& display);
    ~ShownOn();
    ShownOn(const ShownOn&) = delete;
    ShownOn& operator=(const ShownOn&) = delete;

private:
    int m_key;
};

// A run and its steps, registered with the process's BryProcessEvolutionManager, whose displays show them. There is one
// at a time. While it lives, Ctrl-C asks for it to be canceled; a second one ends the program as ever. Where Ctrl-C is
// ignored, as in the background of a script, it stays so.
class Progress {
public:
    explicit Progress(const BryString& run);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Whether the user, by Ctrl-C or by a display, has canceled the run.
    bool isCanceled();

    // From now on Ctrl-C does nothing: what is begun now must not be left half done.
    void completeInAnyCase();

    // A step while it lives, which takes the run from one percentage to another.
    class Step {
    public:
        Step(Progress& progress, const BryString& action, int from, int to);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

        // Tells that so many of all are done. False where the run is canceled.
        bool advance(std::size_t done, std::size_t all);

    private:
        Progress& m_progress;
        int m_key;  // -1 in a run that is canceled
        int m_from, m_to;
        int m_percent = 0;
    };

private:
    BryProcessEvolutionManager& m_manager;
    int m_key;
    void (*m_before)(int);  // what Ctrl-C did
};
