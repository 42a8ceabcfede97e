// A stopwatch that writes its readings to a log.
#pragma once

#include <roots/Export.h>
#include <roots/files/BryLogfile.h>

// Readings are milliseconds of wall time since the process started, signed 32-bit numbers as is their difference.
// Entries are BryLogfile's: written only while logging is switched on, and without a line end; a line feed in the label
// comes before the numbers. A monitor can be started and ended any number of times; one that was never started counts
// from 0.
class KELROOTS_API BryPerfMonitor : public BryLogfile {
public:
    BryPerfMonitor(const BryString& logName = "RavikPerf.LOG");

    // Takes a reading and logs "Start = label : 1500".
    void start(const BryString& label);

    // Takes a reading and logs "End = label : 1500 -> 3250 (Diff = 1750)".
    void end(const BryString& label);

    // The same, and then shows "label : 1500 -> 3250 (Diff = 1750)" in a message box, also where logging is off.
    void endWithMessageBox(const BryString& label);

private:
    BryString readings(const wchar_t* before, const BryString& label) const;

    int m_start = 0;
    int m_end = 0;
};
