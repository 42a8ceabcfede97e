// Diagnostic text logs, the list of loaded modules and the version of a file.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

#include <cstdio>

// A log file that is open only while an entry is written: when a call returns, its entry is in the file.
//
// Logs are 8-bit text. In the "C" locale, which is all there is elsewhere than on Windows, the byte of a character is
// its number, up to U+00FF; a host on Windows that sets another locale gets its code page. A character that has no
// byte becomes "?", or what the locale thinks nearest, and the rest follows. A line feed is CR LF on every system.
//
// Processes that append to the same file take turns, so no entry is lost or divided: one that is halted while it writes
// holds up the others. A log is a file; a pipe makes a call wait for its reader.
//
// The object operations do something only while logging is switched on for the process; it is off at first. Only
// std::bad_alloc passes through, and nothing shows a message. For one thread at a time.
class KELROOTS_API BryLogfile {
public:
    // The file is named by the first 255 characters. Nothing is opened.
    BryLogfile(BryString name = "Ravik.LOG");
    BryLogfile(const BryLogfile& other);
    BryLogfile& operator=(const BryLogfile& other);
    ~BryLogfile();

    // Makes the file, or empties it. 1, or 0 where it cannot be opened or logging is off.
    int reset();

    // Appends "[09:05:07] " with the local time, and the message. An entry ends with its message: one that wants a line
    // of its own brings a line feed. 0 where the file cannot be opened or logging is off, else 1; a disk that is full
    // shows only when the file is closed, and is not told.
    int appendWithSave(const BryString& message);

    // The switch of the process; 0 is off.
    static void setLogStatus(int status) { doLogging = status; }
    static int getLogStatus() { return doLogging; }

    // ---- whatever the switch says; an empty file name means "c:\Norrab.log" ----------------------------------------

    // Appends a line feed, "[09:05:07] " and the message. The first call of the process empties its file before; later
    // calls append to whatever file they name. Where the file cannot be opened nothing happens.
    static void logToFile(const BryString& fileName, const BryString& message);

    // Empties the file and writes the process and its modules to it, a line each: base address, size, both in
    // hexadecimal, file version, which is blank where there is none, and path. Addresses and sizes beyond 32 bits are
    // written in full.
    static void listModules(const BryString& fileName);

    // The file version of a program or library, as 8.01.0000.0123. 1, or 0 where the file has none or cannot be read;
    // version stays then. On Windows a name without a folder is searched for as the system searches for libraries.
    static int GetFileVersion(BryString& fileName, BryString& version);

protected:
    // 1 where a file was open and is closed now.
    int assertClose();

private:
    static int doLogging;
    static int m_isFirstLogToFile;

    BryString m_name;
    std::FILE* m_stream;  // null between calls
};
