// The log of a run.
#pragma once

#include <roots/files/BryPerfMonitor.h>

#include <cstdint>
#include <string>

// Before open(), and where that has failed, all else does nothing.
class RunLog {
public:
    // Empties the file or makes it; false where that cannot be. Its name has 1 to 255 characters.
    bool open(const BryString& file, bool withTimes);

    // Each line of text, which is in UTF-8, becomes an entry: a line that begins with the time of day.
    void add(const std::string& text);

    // Entries on a step's beginning and end, with their times in ms, where times are wanted.
    void start(const wchar_t* step);
    void end(const wchar_t* step);

    // Ends the last line. Whether all entries are in the file: the library does not tell when one is lost.
    bool finish();

private:
    void beginLine();
    void expectGrowth(std::size_t bytes);

    BryString m_file;  // empty where there is no log
    bool m_withTimes = false;
    bool m_isComplete = true;
    std::uintmax_t m_size = 0;
    BryPerfMonitor m_stopwatch;
};
