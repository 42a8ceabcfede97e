// Finds the objects of a run that are never destroyed, in development builds (those without NDEBUG). Elsewhere nothing
// is reported and nothing is left of it.
#pragma once

#include "Utf8.h"

#ifndef NDEBUG

#    include <roots/files/BryDebugInterfaces.h>

// A base of classes whose objects report that they are made and destroyed. Each destruction searches the reports so
// far: for objects that live long, not for those that come and go by the thousand.
class Tracked {
protected:
    explicit Tracked(const wchar_t* className) : m_className(className) {
        BryDebugInterfaces::objectConstructed(m_className, this);
    }
    Tracked(const Tracked&) = delete;
    Tracked& operator=(const Tracked&) = delete;
    ~Tracked() { BryDebugInterfaces::objectDestroied(m_className, this); }

private:
    const wchar_t* m_className;
};

// While one lives, objects that are made belong to it.
class TrackedRun {
public:
    static constexpr bool isOn = true;

    TrackedRun() { BryDebugInterfaces::setCurrentContextInitiator(this); }
    TrackedRun(const TrackedRun&) = delete;
    TrackedRun& operator=(const TrackedRun&) = delete;
    ~TrackedRun() {
        BryDebugInterfaces::contextInitiatorEnd(this);
        BryDebugInterfaces::clearAllDebugInfo(this);
    }

    // Those of its objects that still live, in UTF-8. Empty where there are none.
    std::string living() {
        const BryString results = BryDebugInterfaces::getResults(this);
        return results.isEmpty() ? "" : "part_marks: some objects are never destroyed" + stringToUtf8(results) + "\n";
    }
};

#else

class Tracked {
protected:
    explicit Tracked(const wchar_t*) {}
};

class TrackedRun {
public:
    static constexpr bool isOn = false;
    std::string living() const { return {}; }
};

#endif
